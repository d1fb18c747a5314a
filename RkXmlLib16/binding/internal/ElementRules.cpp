#include "RkXmlLib16/binding/internal/ElementRules.h"

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/binding/GeneratedClass.h"
#include "RkXmlLib16/binding/internal/ReadingValue.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/document/ElementTree.h"
#include "RkXmlLib16/document/XmlWriter.h"
#include "RkXmlLib16/object/Variant.h"
#include "RkXmlLib16/wildcards/Element.h"
#include "RkXmlLib16/wildcards/ElementCol.h"

namespace RkXmlLib16Data {

using namespace RkXmlLib16;

namespace {

bool IsAnyElement(const CElementInfo& info) { return info.GetElementName() == L"AnyElement"; }

}  // namespace

bool RequireWritten(const CElementInfo& info, bool written) {
  if (!written)
    throw CRkInvalidParamException(
        FormatString(L"The Property [%ls] is mandatory, it may not be NULL", info.GetElementName().c_str()));
  return true;
}

bool CheckedColToXml(const CElementInfo& info, const CSerializationContext& context, const CXmlGeneratedClass* object,
                     CXmlWriter* writer) {
  RkVariant& value = writer->BeginValue();
  info.ReadProperty(object, value);
  const CSmartPtr<CXmlCollectionBase> collection = value.TakeXmlCollection();
  if (collection != nullptr && !context.GetIgnoreInvalidCollectionCounts()) collection->ValidateCount(context);
  return info.WriteCollection(context, collection, writer);
}

void ThrowMissingChild(const CElementInfo& info, const CXmlElement* parent) {
  throw CRkValidationException(
      FormatString(L"Failed to find the required child element [%ls].", info.GetElementName().c_str()),
      parent->GetXPath());
}

CSmartPtr<CXmlObjectBase> GetChild(const CElementInfo& info, const CXmlGeneratedClass* object) {
  ReadingValue value(/*charCount=*/0);
  info.ReadProperty(object, value.Get());
  return value.Get().TakeXmlObject();
}

CSmartPtr<CXmlCollectionBase> GetCollection(const CElementInfo& info, const CXmlGeneratedClass* object) {
  ReadingValue value(/*charCount=*/0);
  info.ReadProperty(object, value.Get());
  return value.Get().TakeXmlCollection();
}

CSmartPtr<CXmlObjectBase> CreateChild(const CElementInfo& info, ClassFactory factory, int classId) {
  return factory == nullptr ? nullptr : factory(classId, info.GetElementName().c_str());
}

CSmartPtr<CXmlObjectBase> CreateAbstractChild(AbstractClassFactory factory, CXmlElement* element) {
  return factory == nullptr ? nullptr : factory(element);
}

CSmartPtr<CXmlObjectBase> GetOrCreateChild(const CElementInfo& info, CXmlGeneratedClass* object, ClassFactory factory,
                                           int classId, const CXmlElement& element) {
  CSmartPtr<CXmlObjectBase> child = GetChild(info, object);
  if (child != nullptr) return child;
  child = CreateChild(info, factory, classId);
  if (child != nullptr) StoreChild(info, object, child, element);
  return child;
}

void StoreChild(const CElementInfo& info, CXmlGeneratedClass* object, CXmlObjectBase* child,
                const CXmlElement& element) {
  ReadingValue value(/*charCount=*/0);
  value.Get().SetXmlObject(child);
  info.InvokePropertySet(object, value.Get(), element);
}

void StoreNull(const CElementInfo& info, CXmlGeneratedClass* object, const CXmlElement& element) {
  if (GetChild(info, object) != nullptr) StoreChild(info, object, nullptr, element);
}

void ReadOwnElement(CElementInfo& info, const CSerializationContext& context, CXmlObjectBase* child,
                    CXmlElement** cursor, bool isOptionalChoice) {
  CXmlElement* element = *cursor;
  info.FromXml_Int(child, element, element->GetFirstElement(), context, isOptionalChoice);
  *cursor = element->GetNextSiblingElement();
}

bool ReadInline(CElementInfo& info, const CSerializationContext& context, CXmlObjectBase* child, CXmlElement* parent,
                CXmlElement** cursor) {
  CXmlElement* next = info.FromXml_Int(child, parent, *cursor, context, /*isOptionalChoice=*/false);
  const bool consumed = next != *cursor;
  *cursor = next;
  return consumed;
}

bool AcceptsName(const CElementInfo& info, const CXmlElement* element) {
  return IsAnyElement(info) || element->GetLocalName() == info.GetElementName();
}

CXmlElement* ReadWildcards(CElementInfo& info, const CSerializationContext& context, CXmlCollectionBase* collection,
                           CXmlElement* parent, CXmlElement* current) {
  if (IsAnyElement(info)) return info.FromXml_Int(collection, parent, current, context, /*isOptionalChoice=*/false);
  auto* elements = dynamic_cast<CElementCol*>(collection);
  if (elements == nullptr)
    throw CRkException(L"Serialization Data Error : The collection should be a CElementCol, it was not!");
  return elements->FromXmlLockElementName_Int(info.GetElementName().c_str(),
                                              current == nullptr ? L"" : current->GetNamespaceURI().c_str(), parent,
                                              current, context);
}

CSmartPtr<CXmlObjectBase> ReadNewWildcard(CElementInfo& info, const CSerializationContext& context, CXmlElement* parent,
                                          CXmlElement** cursor, const wchar_t* ownerNamespace,
                                          const std::wstring& constraint, const std::wstring& targetNamespace) {
  if (*cursor == nullptr || !AcceptsName(info, *cursor)) return nullptr;
  const std::wstring ns =
      CElementInfo::GetAnyDefaultNamespace(constraint.c_str(), ownerNamespace, targetNamespace.c_str());
  CSmartPtr<CXmlObjectBase> element(
      new CElement(info.GetElementName().c_str(), ns.c_str(), constraint.c_str(), targetNamespace.c_str()));
  return ReadInline(info, context, element, parent, cursor) ? element : nullptr;
}

}  // namespace RkXmlLib16Data
