#ifndef RKXML_TOOL_CONVERT_H
#define RKXML_TOOL_CONVERT_H

#include <string>

#include "Commands.h"
#include "Files.h"
#include "Progress.h"

// The two ways of a conversion. Both put into `leftOut` what the output does not keep, in words.

// Tag by tag, in constant memory, after a look at the whole document; false, and nothing done, when the result would
// not be that of the whole document.
bool ConvertInPieces(const Options& options, const InputFile& input, Progress& progress, std::string& leftOut);
// By way of a tree of the whole document.
void ConvertWhole(const Options& options, const InputFile& input, Progress& progress, std::string& leftOut);

#endif
