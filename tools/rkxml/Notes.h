#ifndef RKXML_TOOL_NOTES_H
#define RKXML_TOOL_NOTES_H

#include <cstdint>

#include "Files.h"

// What a writer asks that only the rest of the document can answer.
enum class Question {
  None,
  IsMixed,  // before a child element: does text follow the blanks that stand before it?
  IsRow     // before a child element that has another name than the one before: does one of the same name follow?
};

// What the first reading of a document notes for the second one: the answers to one kind of question, in one bit each.
// All but the last ones are in a temporary file, so that they take no memory.
class Notes {
 public:
  explicit Notes(Question kind) : m_kind(kind) {}
  Question GetKind() const { return m_kind; }

  // In the first reading. A question is answered by no unless Answer says yes, once.
  std::uint64_t Ask();
  void Answer(std::uint64_t question);
  // In the second one: the answers in the order of the questions.
  bool Next();

 private:
  static constexpr std::size_t kWindow = std::size_t{1} << 16;

  const Question m_kind;
  TemporaryFile m_file;  // the bytes before the window
  Bytes m_window;
  std::uint64_t m_windowStart = 0;
  std::uint64_t m_asked = 0;
  std::uint64_t m_read = 0;
  Bytes m_piece;  // of the file, where Next is
};

#endif
