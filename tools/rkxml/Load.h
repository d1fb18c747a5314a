#ifndef RKXML_TOOL_LOAD_H
#define RKXML_TOOL_LOAD_H

#include "Commands.h"

// Fills `document` from the bytes of options.input. Failures name the file.
void LoadDocument(RkXmlLib16::CXmlDocument& document, const Options& options, Bytes& bytes);

// The wrapper around the bytes, told by its magic number.
enum class Wrapper { None, Gzip, Zlib };
Wrapper WrapperOf(const Bytes& bytes);

// Takes the wrapper off, within the limits that reading has.
RkXmlLib16::InflateResult Unwrap(const Bytes& bytes, const Options& options, RkXmlLib16::CBinaryData& content);

#endif
