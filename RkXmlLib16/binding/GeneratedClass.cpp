#include "RkXmlLib16/binding/GeneratedClass.h"

#include "RkXmlLib16/binding/AttributeInfo.h"
#include "RkXmlLib16/binding/ElementInfo.h"
#include "RkXmlLib16/binding/ModelObject.h"
#include "RkXmlLib16/binding/ParentElementInfo.h"
#include "RkXmlLib16/document/ElementTree.h"

namespace RkXmlLib16 {

using RkXmlLib16Data::CAttributeInfo;
using RkXmlLib16Data::CElementInfo;
using RkXmlLib16Data::CParentElementInfo;

CXmlGeneratedClass::~CXmlGeneratedClass() = default;

int CXmlGeneratedClass::GetClassElementInfoCount() const {
  CElementInfo** const infos = GetClassElementInfo();
  int count = 0;
  while (infos != nullptr && infos[count] != nullptr) ++count;
  return count;
}

bool CXmlGeneratedClass::IsNilByInterface() const {
  const auto* const nillable = dynamic_cast<const INillable*>(this);
  return nillable != nullptr && nillable->IsNil();
}

void CXmlGeneratedClass::ReadProperty(int propertyIndex, RkVariant& value) const {
  const_cast<CXmlGeneratedClass*>(this)->AccessProperty(propertyIndex, /*get=*/true,
                                                        value);  // a getter changes nothing
}

bool CXmlGeneratedClass::IsElementInList(const CSerializationContext& context, CXmlElement* element) const {
  CElementInfo** const infos = GetClassElementInfo();
  if (infos == nullptr) return false;
  for (CElementInfo** info = infos; *info != nullptr; ++info)
    if ((*info)->IsThisElement(context, element)) return true;
  return false;
}

bool CXmlGeneratedClass::DoesElementContainOptionalElements() const { return GetClassInfo()->CanContentBeEmpty(); }

bool CXmlGeneratedClass::HasElement(const CXmlElement* first, const wchar_t* localName) {
  const std::wstring_view name = localName;
  for (; first != nullptr; first = first->GetNextSiblingElement())
    if (first->GetLocalName() == name) return true;
  return false;
}

void CXmlGeneratedClass::CleanMetaData(CParentElementInfo*& classInfo, CElementInfo**& elementInfos,
                                       CAttributeInfo**& attributeInfos) {
  const auto deleteAll = [](auto**& infos) {
    if (infos == nullptr) return;
    for (auto** info = infos; *info != nullptr; ++info) delete *info;
    delete[] infos;
    infos = nullptr;
  };
  delete classInfo;
  classInfo = nullptr;
  deleteAll(elementInfos);
  deleteAll(attributeInfos);
}

}  // namespace RkXmlLib16
