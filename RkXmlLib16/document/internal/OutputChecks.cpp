#include "RkXmlLib16/document/internal/OutputChecks.h"

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/base/internal/CodePoints.h"
#include "RkXmlLib16/document/XmlWriter.h"
#include "RkXmlLib16/document/internal/Names.h"
#include "RkXmlLib16/document/internal/Section.h"

namespace RkXmlLib16 {

namespace {

bool StartsWith(std::wstring_view text, std::wstring_view start) { return text.substr(0, start.size()) == start; }

bool IsAsciiXml(std::wstring_view name) {
  return name.size() == 3 && (name[0] | 0x20) == L'x' && (name[1] | 0x20) == L'm' && (name[2] | 0x20) == L'l';
}

// Surrogates come in pairs only.
void Characters(std::wstring_view text, bool allowsReturns) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto c = static_cast<char32_t>(text[i]);
    const auto next = i + 1 < text.size() ? static_cast<char32_t>(text[i + 1]) : U'\0';
    if (IsHighSurrogate(c) && IsLowSurrogate(next)) {
      ++i;
      continue;
    }
    const bool isText = c == U'\t' || c == U'\n' || (c == U'\r' && allowsReturns) || (c >= 0x20 && c < 0xD800) ||
                        (c >= 0xE000 && c < 0xFFFE) || (c > 0xFFFF && c <= 0x10FFFF);
    if (!isText) throw CRkException(FormatString(L"Refused to write the character U+%04X.", static_cast<unsigned>(c)));
  }
}

void Name(std::wstring_view name) {
  if (!IsNCName(name)) OutputChecks::Refuse(L"name", name);
}

}  // namespace

void OutputChecks::Refuse(const wchar_t* what, std::wstring_view text) {
  throw CRkException(FormatString(L"Refused to write the %ls [%ls].", what, std::wstring(text).c_str()));
}

void OutputChecks::Namespace(std::wstring_view namespaceUri) const {
  const bool isLegal =
      m_form == Form::FastInfoset ? IsNamespaceName(namespaceUri) : namespaceUri.find(L'|') == std::wstring_view::npos;
  if (!isLegal || namespaceUri == CXmlWriter::XMLNS_NAMESPACE) Refuse(L"namespace", namespaceUri);
  Characters(namespaceUri, m_form != Form::FastInfoset);
}

void OutputChecks::Element(std::wstring_view localName, std::wstring_view namespaceUri, bool isInDefault) {
  Name(localName);
  Namespace(namespaceUri);
  if (namespaceUri.empty() && isInDefault && m_form != Form::FastInfoset)
    Refuse(L"element without a namespace below a default namespace", localName);
  if (++m_depth == m_attributes.size()) m_attributes.emplace_back();
  m_attributes[m_depth].clear();
}

void OutputChecks::Attribute(std::wstring_view localName, std::wstring_view namespaceUri, std::wstring_view value) {
  if (namespaceUri == CXmlWriter::XMLNS_NAMESPACE) return Declaration(localName, value);
  Name(localName);
  if (namespaceUri.empty() && localName == L"xmlns") Refuse(L"name", localName);
  Namespace(namespaceUri);
  Characters(value, m_form == Form::FastInfoset);
  std::wstring key(namespaceUri);
  key += L'|';
  if (!m_attributes[m_depth].insert(key += localName).second) Refuse(L"second attribute", localName);
}

void OutputChecks::Declaration(std::wstring_view prefix, std::wstring_view namespaceUri) const {
  const bool isXml = prefix == L"xml";
  if (!IsNCName(prefix) || prefix == L"xmlns" || isXml != (namespaceUri == CXmlWriter::XML_NAMESPACE))
    Refuse(L"prefix", prefix);
  if (namespaceUri.empty()) Refuse(L"namespace", namespaceUri);
  Namespace(namespaceUri);
}

void OutputChecks::TypeName(std::wstring_view name) const { Name(name); }

void OutputChecks::Text(std::wstring_view text) { Characters(text, /*allowsReturns=*/false); }

void OutputChecks::Section(std::wstring_view text) {
  const std::size_t end = text.find(kSectionEnd, kSectionStart.size());
  if (end == std::wstring_view::npos || end + kSectionEnd.size() != text.size()) Refuse(L"CDATA section", text);
}

void OutputChecks::Comment(std::wstring_view text) {
  Characters(text, /*allowsReturns=*/false);
  const bool endsInHyphen = !text.empty() && text.back() == L'-';
  if (endsInHyphen || text.find(L"--") != std::wstring_view::npos) Refuse(L"comment", text);
}

void OutputChecks::ProcessingInstruction(std::wstring_view text) {
  constexpr std::wstring_view kStart = L"<?", kEnd = L"?>";
  Characters(text, /*allowsReturns=*/true);
  const std::size_t end = text.find(kEnd);
  const bool isWhole = StartsWith(text, kStart) && end != std::wstring_view::npos && end >= kStart.size() &&
                       end + kEnd.size() == text.size();
  if (!isWhole) Refuse(L"processing instruction", text);
  const std::wstring_view content = text.substr(kStart.size(), end - kStart.size());
  const std::wstring_view target = content.substr(0, content.find_first_of(L" \t\r\n"));
  if (!IsNCName(target) || IsAsciiXml(target)) Refuse(L"processing instruction", text);
}

}  // namespace RkXmlLib16
