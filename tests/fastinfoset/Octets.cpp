#include "Octets.h"

namespace RkXmlTest {

using RkXmlLib16::CXmlElement;

std::wstring Describe(const CXmlElement* root) {
  std::wstring out;
  std::size_t depth = 0;
  for (const CXmlElement* at = root; at != nullptr;) {
    out += L'{' + at->GetNamespaceURI().ToString() + L'}' + at->GetLocalName().ToString() + L'[';
    for (const auto* attribute : at->GetAttributes()) {
      out += L'{' + attribute->GetNamespaceURI().ToString() + L'}' + attribute->GetLocalName().ToString() + L'=' +
             attribute->GetValue().ToString() + L';';
    }
    out += L"](" + at->GetText().ToString() + L')';
    if (at->GetFirstElement() != nullptr) {
      out += L'<';
      at = at->GetFirstElement();
      ++depth;
      continue;
    }
    while (depth > 0 && at->GetNextSiblingElement() == nullptr) {
      out += L'>';
      at = at->GetParentElement();
      --depth;
    }
    at = depth > 0 ? at->GetNextSiblingElement() : nullptr;
  }
  return out;
}

std::wstring DescribeOctets(Octets octets) {
  RkXmlLib16::CXmlDocument document;
  document.LoadXmlStream(octets.data(), octets.size());
  return Describe(document.GetDocumentElement());
}

}  // namespace RkXmlTest
