#ifndef RKXML_TOOL_FILES_H
#define RKXML_TOOL_FILES_H

#include <cstddef>
#include <cstdint>
#include <memory>
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

// A file to read from its start, as often as wanted; "-" is standard input. What cannot be read twice, such as a pipe,
// is copied first to a temporary file without a name.
class InputFile {
 public:
  // Throws FileError, as the others do.
  explicit InputFile(const std::string& name);
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;
  ~InputFile();

  std::uint64_t GetLength() const { return m_length; }
  // Up to `room` bytes from the offset on; 0 at the end.
  std::size_t ReadAt(std::uint64_t offset, unsigned char* to, std::size_t room) const;
  Bytes ReadAll() const;

 private:
  void CopyAside();

  std::string m_name;
  int m_file;
  std::uint64_t m_start = 0;
  std::uint64_t m_length = 0;
};

// A temporary file without a name, which is made when something is first written. Throws FileError.
class TemporaryFile {
 public:
  TemporaryFile() = default;
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile();

  void WriteAt(std::uint64_t offset, const unsigned char* data, std::size_t length);
  // All of it was written before.
  void ReadAt(std::uint64_t offset, unsigned char* to, std::size_t length) const;

 private:
  int m_file = -1;
};

// A file that is written from its start to its end; "-" is standard output. It appears complete or not at all: the
// bytes go to a temporary file beside it, which takes its place when all is done, and which an interruption removes.
// One at a time.
class OutputFile {
 public:
  // Throws FileError, as the others do.
  explicit OutputFile(const std::string& name);
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  ~OutputFile();

  void Write(const unsigned char* data, std::size_t length);
  std::uint64_t GetLength() const { return m_length; }
  void Complete();

 private:
  class Temporary;

  std::string m_name;
  int m_file = -1;
  unsigned m_mode = 0;                     // that the file is to have
  std::unique_ptr<Temporary> m_temporary;  // null for what is written directly
  std::uint64_t m_length = 0;
};

// Writes a whole file. Throws FileError.
void WriteFile(const std::string& name, const unsigned char* data, std::size_t length);

#endif
