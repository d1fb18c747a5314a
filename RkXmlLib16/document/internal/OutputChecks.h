#ifndef RKXMLLIB16_DOCUMENT_INTERNAL_OUTPUTCHECKS_H
#define RKXMLLIB16_DOCUMENT_INTERNAL_OUTPUTCHECKS_H

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace RkXmlLib16 {

// Refuses what a reader would not give back as it was written. Every operation throws CRkException "Refused to write
// ...", which names it.
class OutputChecks {
 public:
  enum class Form { Xml, Json, FastInfoset };

  explicit OutputChecks(Form form) : m_form(form), m_attributes(1) {}

  // An element begins. `isInDefault` tells whether one without a prefix here is in a default namespace.
  void Element(std::wstring_view localName, std::wstring_view namespaceUri, bool isInDefault);
  void EndElement() noexcept { m_depth -= m_depth > 0; }
  void Attribute(std::wstring_view localName, std::wstring_view namespaceUri, std::wstring_view value);
  void Declaration(std::wstring_view prefix, std::wstring_view namespaceUri) const;
  void TypeName(std::wstring_view name) const;
  static void Text(std::wstring_view text);
  // A text that begins like a CDATA section and is written unescaped.
  static void Section(std::wstring_view text);
  static void Comment(std::wstring_view text);
  static void ProcessingInstruction(std::wstring_view text);
  [[noreturn]] static void Refuse(const wchar_t* what, std::wstring_view text);

 private:
  void Namespace(std::wstring_view namespaceUri) const;

  const Form m_form;
  std::vector<std::unordered_set<std::wstring>> m_attributes;  // of the open elements; JSON takes some after a child
  std::size_t m_depth = 0;                                     // of the innermost one
};

}  // namespace RkXmlLib16

#endif
