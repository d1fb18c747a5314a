#include "RkXmlLib16/binding/ClassFactory.h"

#include <string_view>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/document/ElementTree.h"
#include "RkXmlLib16/document/XmlWriter.h"

namespace RkXmlLib16 {

namespace {

CXmlText TypeOf(const CXmlElement* element) {
  if (element == nullptr) throw CRkInvalidParamException(L"The element may not be NULL");
  return element->GetAttribute(L"type", CXmlWriter::XSI_NAMESPACE.c_str());
}

}  // namespace

CClassfactoryBase::~CClassfactoryBase() = default;

std::wstring CClassfactoryBase::GetElementType(CXmlElement* element) {
  const std::wstring_view type = TypeOf(element);
  return std::wstring(type.substr(type.find(L':') + 1));  // without a colon find is npos, and npos + 1 is 0
}

std::wstring CClassfactoryBase::GetElementTypeNamespaceUri(CXmlElement* element) {
  const std::wstring_view type = TypeOf(element);
  const std::size_t colon = type.find(L':');
  if (colon != std::wstring_view::npos) {
    const std::wstring prefix(type.substr(0, colon));
    const CXmlText namespaceUri = element->GetDocument()->LookupNamespaceFromAlias(prefix.c_str());
    if (!namespaceUri.empty()) return namespaceUri;
  }
  return element->GetNamespaceURI();
}

}  // namespace RkXmlLib16
