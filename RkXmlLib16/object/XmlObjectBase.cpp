#include "RkXmlLib16/object/XmlObjectBase.h"

#include "RkXmlLib16/base/internal/TextOrEmpty.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/facets/FacetChecks.h"
#include "RkXmlLib16/object/internal/ObjectMemory.h"

namespace RkXmlLib16 {

const CSerializationContext& GetDefaultContext() noexcept { return CSerializationContext::m_defaultContext; }

void IEventSink::OnEvent(CXmlObjectBase* /*source*/, MsgType /*type*/, void* /*data*/) {}

CXmlObjectBase::~CXmlObjectBase() = default;

void* CXmlObjectBase::operator new(std::size_t size) { return CObjectMemory::Allocate(size); }
void* CXmlObjectBase::operator new(std::size_t size, const std::nothrow_t&) noexcept {
  try {
    return operator new(size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}
void CXmlObjectBase::operator delete(void* object) noexcept { CObjectMemory::Free(object); }

void CXmlObjectBase::AttributesToXml_Int(CXmlWriter* /*writer*/, const CSerializationContext& /*context*/) const {}

void CXmlObjectBase::SetElementName(const wchar_t* name) { m_elementName.Set(name); }

void CXmlObjectBase::ToXml_Int(const CXmlObjectBase* object, CXmlWriter* writer, bool registerNamespaces,
                               const wchar_t* namespaceUri, const CSerializationContext& context,
                               bool isOptionalChoice) {
  object->ToXml_Int(writer, registerNamespaces, namespaceUri, context, isOptionalChoice);
}

CXmlElement* CXmlObjectBase::FromXml_Int(CXmlObjectBase* object, CXmlElement* element, CXmlElement* firstChild,
                                         const CSerializationContext& context) {
  return object->FromXml_Int(element, firstChild, context, false);
}

void CXmlObjectBase::AttributesToXml_Int(const CXmlObjectBase* object, CXmlWriter* writer,
                                         const CSerializationContext& context) {
  object->AttributesToXml_Int(writer, context);
}

void CXmlObjectBase::TestNamespace(const wchar_t* namespaceUri, const wchar_t* constraint,
                                   const wchar_t* targetNamespace) const {
  CXmlObjectHelper::TestNamespace(TextOrEmpty(namespaceUri), TextOrEmpty(constraint), TextOrEmpty(targetNamespace));
}

bool CXmlObjectBase::IsNamespaceValid(const wchar_t* namespaceUri, const wchar_t* constraint,
                                      const wchar_t* targetNamespace) const {
  return CXmlObjectHelper::IsNamespaceValid(TextOrEmpty(namespaceUri), TextOrEmpty(constraint),
                                            TextOrEmpty(targetNamespace));
}

}  // namespace RkXmlLib16
