#ifndef RKXML_TOOL_FILES_H
#define RKXML_TOOL_FILES_H

#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

using Bytes = std::vector<unsigned char>;

// A file that cannot be read or written; the text names the file and the reason.
class FileError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The whole file; "-" is standard input. Throws FileError.
Bytes ReadFile(const std::string& name);

// Writes the whole file; "-" is standard output. The file appears complete or not at all: the bytes go to a temporary
// file beside it, which then takes its place, and an interruption removes the temporary file. Throws FileError.
void WriteFile(const std::string& name, const unsigned char* data, std::size_t length);

#endif
