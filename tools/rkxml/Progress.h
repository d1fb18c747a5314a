#ifndef RKXML_TOOL_PROGRESS_H
#define RKXML_TOOL_PROGRESS_H

#include <cstdint>

// One line on a terminal's standard error that tells how far a long call is: what it does, a bar, the bytes read and
// written. Silent during the first second and where standard error is no terminal. One at a time.
class Progress {
 public:
  Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  // Wipes the line.
  ~Progress();

  // A part of the work begins: `doing` (kept) so many bytes, 0 where nobody knows.
  void Begin(const char* doing, std::uint64_t total);
  // So many bytes are done, of this part.
  void Tell(std::uint64_t done);
  void TellWritten(std::uint64_t byteCount);
};

#endif
