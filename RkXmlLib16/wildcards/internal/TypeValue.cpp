#include "RkXmlLib16/wildcards/internal/TypeValue.h"

#include "RkXmlLib16/document/XmlWriter.h"

namespace RkXmlLib16 {

bool CTypeValue::IsType(std::wstring_view localName, std::wstring_view namespaceUri) {
  return localName == L"type" && namespaceUri == CXmlWriter::XSI_NAMESPACE;
}

CTypeValue::CTypeValue(std::wstring_view value) : m_value(value) {
  const std::size_t colon = value.find(L':');
  m_hasPrefix = colon != std::wstring_view::npos;
  if (m_hasPrefix) m_prefix = value.substr(0, colon);
}

bool CTypeValue::IsName() const {
  if (m_hasPrefix) return m_prefix != L"xml" && m_prefix != L"xmlns";
  return !m_value.empty() && StartsName(m_value.front());
}

bool CTypeValue::WriteIfChanged(CXmlWriter& writer, const std::shared_ptr<const std::wstring>& namespaceUri) const {
  writer.TellNamespace(namespaceUri);
  if (m_hasPrefix ? writer.DeclareNamespace(std::wstring(m_prefix), *namespaceUri)
                  : writer.IsDefaultNamespace(*namespaceUri))
    return false;
  const std::wstring prefix = writer.DeclareNamespace(*namespaceUri);
  writer.WriteAttributeString(L"type", CXmlWriter::XSI_NAMESPACE,
                              prefix + L':' + std::wstring(m_value.substr(m_hasPrefix ? m_prefix.size() + 1 : 0)),
                              ItemType_string);
  return true;
}

}  // namespace RkXmlLib16
