#ifndef RKXML_TOOL_LOAD_H
#define RKXML_TOOL_LOAD_H

#include "Commands.h"
#include "Files.h"

// Fills `document` from the file of options.input. Failures name the file.
void LoadDocument(RkXmlLib16::CXmlDocument& document, const Options& options, const InputFile& file);

// Throws DocumentError for what the library says about the file of options.input, with what may help.
[[noreturn]] void ThrowUnreadable(const RkXmlLib16::CRkException& e, const Options& options, const InputFile& file);

#endif
