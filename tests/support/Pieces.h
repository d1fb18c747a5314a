#ifndef RKXMLLIB16_TESTS_SUPPORT_PIECES_H
#define RKXMLLIB16_TESTS_SUPPORT_PIECES_H

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/binding/DocumentStream.h"
#include "RkXmlLib16/context/JsonContext.h"
#include "RkXmlLib16/document/ElementTree.h"
#include "RkXmlLib16/io/ByteSource.h"

// What reading in pieces gives, and what reading the whole document gives in its place.
namespace RkXmlTest {

using namespace RkXmlLib16;

// Hands out `size` bytes at a time.
class CSlicedSource : public CByteSource {
 public:
  CSlicedSource(std::string_view bytes, std::size_t size) : m_left(bytes), m_size(size) {}

  std::size_t Read(unsigned char* buffer, std::size_t room) override {
    const std::size_t count = std::min({room, m_size, m_left.size()});
    if (count != 0) std::memcpy(buffer, m_left.data(), count);
    m_left.remove_prefix(count);
    return count;
  }

 private:
  std::string_view m_left;
  std::size_t m_size;
};

inline std::wstring PlaceOf(const CRkLocation& location) {
  return L" " + location.GetFileName() + L":" + std::to_wstring(location.GetLine()) + L":" +
         std::to_wstring(location.GetColumn()) + L"@" +
         (location.IsKnown() ? std::to_wstring(location.GetOffset()) : L"?") +
         (location.IsInflatedOffset() ? L"i" : L"");
}

// An element with all that is in it, with places.
inline std::wstring Describe(const CXmlElement& top) {
  const auto name = [](const auto& node) {
    return L"{" + node.GetNamespaceURI().ToString() + L"}" + node.GetLocalName().ToString();
  };
  std::wstring text;
  const auto begin = [&](const CXmlElement& element) {
    text += L"<" + name(element) + PlaceOf(element.GetLocationWithoutPath());
    for (const CXmlAttribute* attribute : element.GetAttributes())
      text +=
          L" " + name(*attribute) + L"=[" + attribute->GetValue().ToString() + L"]" + PlaceOf(attribute->GetLocation());
    for (const auto& declaration : element.GetDocument()->GetDeclarations(&element))
      text +=
          L" xmlns:" + declaration.prefix->GetText().ToString() + L"=" + declaration.namespaceUri->GetText().ToString();
    text += L">" + element.GetText().ToString();
    if (const auto* sections = element.GetSections())
      for (const std::size_t at : *sections) text += L"!" + std::to_wstring(at);
  };
  for (const CXmlElement* element = &top; element != nullptr;) {
    begin(*element);
    if (element->GetFirstElement() != nullptr) {
      element = element->GetFirstElement();
      continue;
    }
    for (text += L"</>"; element != &top && element->GetNextSiblingElement() == nullptr; text += L"</>")
      element = element->GetParentElement();
    element = element != &top ? element->GetNextSiblingElement() : nullptr;
  }
  return text;
}

// "*" or a local name for each level.
inline std::vector<std::wstring> StepsOf(const std::wstring& path) {
  std::vector<std::wstring> steps;
  for (std::size_t at = 0; at < path.size();) {
    const std::size_t end = std::min(path.find(L'/', at + 1), path.size());
    steps.push_back(path.substr(at + 1, end - at - 1));
    at = end;
  }
  return steps;
}

// The elements of a document that a path names, in their order.
inline std::vector<const CXmlElement*> FindElements(const CXmlElement* root, const std::wstring& path) {
  const auto steps = StepsOf(path);
  std::vector<const CXmlElement*> found;
  std::vector<const CXmlElement*> level{root};
  for (const std::wstring& step : steps) {
    found.clear();
    for (const CXmlElement* element : level)
      if (element != nullptr && (step == L"*" || element->GetLocalName() == step)) found.push_back(element);
    level.clear();
    for (const CXmlElement* element : found)
      for (const CXmlElement* child = element->GetFirstElement(); child != nullptr;
           child = child->GetNextSiblingElement())
        level.push_back(child);
  }
  return found;
}

// The positions that a path in pieces bears and an ordinary one may not: "/a/b[1]" is "/a/b".
inline std::wstring WithoutPositions(const std::wstring& path) {
  std::wstring plain;
  bool isIn = false;
  for (const wchar_t c : path) {
    isIn = isIn || c == L'[';
    if (!isIn) plain += c;
    isIn = isIn && c != L']';
  }
  return plain;
}

inline std::wstring Describe(const CRkException& error) {
  return std::to_wstring(error.GetCode()) + PlaceOf(error.GetLocation()) + L" " +
         WithoutPositions(error.GetLocation().GetPath()) + L" " + WithoutPositions(error.GetFullMessage());
}

// What comes of a document: the elements of a path, and the error that it ends with, if it does.
struct Outcome {
  std::vector<std::wstring> elements;
  std::wstring error;
};

inline Outcome ReadInPieces(CByteSource&& source, const std::wstring& path,
                            const CSerializationContext& context = CSerializationContext::m_defaultContext,
                            DocumentForm form = DocumentForm_Any) {
  Outcome outcome;
  CDocumentStream stream(source, context, form);
  stream.AddPath(path.c_str());
  try {
    while (stream.Next() != CDocumentStream::Event::Done) outcome.elements.push_back(Describe(*stream.GetElement()));
  } catch (const CRkException& e) {
    outcome.error = Describe(e);
  }
  return outcome;
}

inline Outcome ReadWhole(std::string_view bytes, const std::wstring& path,
                         const CSerializationContext& context = CSerializationContext::m_defaultContext,
                         DocumentForm form = DocumentForm_Xml) {
  Outcome outcome;
  auto* const data = reinterpret_cast<unsigned char*>(const_cast<char*>(bytes.data()));
  CSerializationContext plain(context);
  CXmlDocument document(plain);
  try {
    if (form == DocumentForm_Json) {
      if (context.GetJsonContext()->GetSupportRoundtrip() != JsonRoundTrip_Namespaces) plain.SetIgnoreNamespaces(true);
      CXmlDocument json(plain);
      json.SetInputStays(true);
      json.SetIndentsJson(false);
      const CBinaryData xml = json.LoadJsonStream(data, bytes.size());
      document.LoadConverted(xml, json);
    } else {
      document.SetInputStays(true);
      document.LoadXmlStream(data, bytes.size());
    }
  } catch (const CRkException& e) {
    outcome.error = Describe(e);
  }
  for (const CXmlElement* element : FindElements(document.GetDocumentElement(), path))
    outcome.elements.push_back(Describe(*element));
  return outcome;
}

}  // namespace RkXmlTest

#endif
