// The operations of CXmlObjectBase behind the setters of generated classes.
#include <string>
#include <string_view>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/base/internal/TextOrEmpty.h"
#include "RkXmlLib16/base/internal/WideText.h"
#include "RkXmlLib16/collections/CollectionBase.h"
#include "RkXmlLib16/object/XmlObjectBase.h"

namespace RkXmlLib16 {

namespace {

[[noreturn]] void ThrowAlreadySet(const std::wstring& selected) {
  throw CRkInvalidStateException(FormatString(
      L"The Property [%ls] is already set. Only one element within this class bay be set at a time",  // sic
      selected.c_str()));
}

}  // namespace

void CXmlObjectBase::Choice_SetElementValid(bool valid, const wchar_t* name, std::wstring& selected) {
  if (!valid) {
    selected.clear();
  } else if (selected != TextOrEmpty(name)) {
    throw CRkInvalidStateException(FormatString(
        L"The Property %ls is already set. Only one element within this class bay be set at a time",  // sic
        selected.c_str()));
  }
}

void CXmlObjectBase::Choice_SelectElement(const wchar_t* name, CXmlObjectBase* value, std::wstring& selected) {
  const std::wstring_view wanted = TextOrEmpty(name);
  if (WideText::IsEqual(selected, wanted)) {
    if (value == nullptr) selected.clear();
  } else if (selected.empty()) {
    selected = std::wstring(wanted);  // in fewer steps than an assignment
  } else if (value != nullptr) {
    ThrowAlreadySet(selected);
  }
}

void CXmlObjectBase::Choice_CollectionChanged(const wchar_t* name, long count, std::wstring& selected) {
  if (selected == TextOrEmpty(name)) {
    if (count == 0) selected.clear();
  } else if (selected.empty()) {
    if (count > 0) selected = TextOrEmpty(name);
  } else if (count != 0) {
    ThrowAlreadySet(selected);
  }
}

void CXmlObjectBase::Choice_Read_Collection(CXmlCollectionBase* collection, CXmlElement* parent, CXmlElement*& current,
                                            long& itemsRead, const CSerializationContext& context) {
  if (collection == nullptr) throw CRkInvalidParamException(L"The collection may not be NULL");
  if (itemsRead > 0) return;
  CXmlElement* const next = collection->FromXml_Int(parent, current, context, false);
  if (next == current) return;
  current = next;
  collection->ValidateCount(context);
  ++itemsRead;
}

void CXmlObjectBase::Throw_IfPropertyIsNull(CXmlObjectBase* value, const wchar_t* propertyName) {
  if (value != nullptr) return;
  throw CRkInvalidParamException(FormatString(L"The Property [%ls] is mandatory, it may node be NULL",  // sic
                                              TextOrEmpty(propertyName)));
}

void CXmlObjectBase::Throw_IfElementNameDiffers(CXmlObjectBase* value, const wchar_t* requiredName) {
  if (value == nullptr) return;
  const std::wstring& name = value->GetBase()->GetElementNameRef();
  if (WideText::IsEqual(name, TextOrEmpty(requiredName))) return;
  throw CRkInvalidParamException(FormatString(
      L"This property requires an element with the name %ls the element being set has the element name %ls",
      TextOrEmpty(requiredName), name.c_str()));
}

}  // namespace RkXmlLib16
