#ifndef RKXMLLIB16_BINDING_INTERNAL_READSESSION_H
#define RKXMLLIB16_BINDING_INTERNAL_READSESSION_H

#include <cstdint>

#include "RkXmlLib16/object/Variant.h"

namespace RkXmlLib16Data {

class SiblingSearch;

// What one read keeps. The outermost object that is read makes it, all objects inside share it, also those that a
// setter reads meanwhile, and it goes with the outermost object. One thread has at most one.
struct ReadSession {
  ReadSession() noexcept { t_current = this; }
  ReadSession(const ReadSession&) = delete;
  ReadSession& operator=(const ReadSession&) = delete;
  ~ReadSession() { t_current = nullptr; }

  // That of this thread; null outside of a read, as when a program calls a record itself.
  static ReadSession* Current() noexcept { return t_current; }

  // Objects being read inside each other.
  unsigned long depth = 0;
  // Of the innermost element whose unknown children are skipped: the index of its children, failed attempts to read
  // them and how much those have taken.
  SiblingSearch* siblings = nullptr;
  // Elements that were taken by anyone, also by attempts that failed later.
  std::uint64_t takenCount = 0;
  // The storage of the values that are read, see ReadingValue.
  RkXmlLib16::RkVariant value;
  bool isValueTaken = false;

 private:
  static inline thread_local ReadSession* t_current = nullptr;
};

}  // namespace RkXmlLib16Data

#endif
