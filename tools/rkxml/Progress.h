#ifndef RKXML_TOOL_PROGRESS_H
#define RKXML_TOOL_PROGRESS_H

#include <RkXmlLib16/RkXmlLib16.h>

#include <cstddef>

// One line on a terminal's standard error that tells how far a long conversion is: bytes read, elements, bytes
// written. Silent during the first second and where standard error is no terminal. One at a time.
class Progress {
 public:
  Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  // Wipes the line.
  ~Progress();

  // Counts the elements of a document while it loads; drops none. Null where nothing is shown.
  RkXmlLib16::CXmlDocument::ElementFilter Counter() const;

  void Read(std::size_t byteCount);
  void Writing();
  void Written(std::size_t byteCount);
};

#endif
