#ifndef RKXMLLIB16_FUZZ_CHECK_H
#define RKXMLLIB16_FUZZ_CHECK_H

#include <RkXmlLib16/RkXmlLib16.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// What the targets have in common.
namespace Fuzz {

using namespace RkXmlLib16;

// Tells what failed, with the evidence, and aborts.
[[noreturn]] void Fail(const char* property, const std::wstring& evidence);

inline void Require(bool holds, const char* property, const std::wstring& evidence = L"") {
  if (!holds) Fail(property, evidence);
}

// Settings for untrusted documents, small enough for quick runs; JSON is strict. `aliases` names the prefixes of the
// namespaces in `tree`, which JSON needs.
CSerializationContext MakeContext(const CElement* tree = nullptr);

// The tree in one text: two trees are equal, character by character, when their texts are. Types are told without their
// prefixes, which may change.
std::wstring Describe(const CElement& tree);

// Whether XML text can hold the tree unchanged: its names are names and its characters XML characters, no name stands
// twice on an element.
bool IsXml(const CElement& tree);

// Whether JSON, which may be nested 100 levels deep, has space for the tree.
bool FitsJson(const CElement& tree);

// The tree is the same after XML text, JSON text and Fast Infoset.
void CheckAllForms(const CElement& tree);

// Calls `work` and catches the exceptions that documents may cause.
template <class Work>
bool Succeeds(Work&& work) {
  try {
    work();
    return true;
  } catch (const CRkException&) {
    return false;
  }
}

// What was read with an error handler fits what was read without one: errors are told of what is refused, and of
// nothing else, and reports can be made of all that was told.
void CheckCollected(const CErrorCollector& collector, bool isRead, bool isAccepted);

// Reads into the tree without and with an error handler, by `read(tree, context)`; both accept the document and read
// the same, or neither. Whether it was accepted.
template <class Read>
bool ReadBothWays(CElement& tree, CSerializationContext& context, Read&& read) {
  const bool isAccepted = Succeeds([&] { read(tree, context); });
  CErrorCollector collector(5);
  context.SetErrorHandler(&collector);
  CElement again;
  const bool isRead = Succeeds([&] { read(again, context); });
  context.SetErrorHandler(nullptr);
  CheckCollected(collector, isRead, isAccepted);
  if (isAccepted) Require(Describe(again) == Describe(tree), "the same with an error handler", Describe(tree));
  return isAccepted;
}

// The text as Fast Infoset brings it, with each surrogate pair as the one character that it stands for and U+FFFD for a
// lone one; and as XML text brings it, with pairs for such characters.
std::wstring Joined(const std::wstring& text);
std::wstring Split(const std::wstring& text);

// The bytes as UTF-8, whatever they are, without NUL.
std::wstring TextOf(std::string_view bytes);

}  // namespace Fuzz

#endif
