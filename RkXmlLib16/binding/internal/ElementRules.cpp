#include "RkXmlLib16/binding/internal/ElementRules.h"

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/binding/ElementInfoAll.h"
#include "RkXmlLib16/binding/ElementInfoChoice.h"
#include "RkXmlLib16/binding/ElementInfoSeq.h"
#include "RkXmlLib16/binding/GeneratedClass.h"
#include "RkXmlLib16/binding/internal/ReadingValue.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/document/ElementTree.h"
#include "RkXmlLib16/document/XmlWriter.h"
#include "RkXmlLib16/document/internal/Refusal.h"
#include "RkXmlLib16/document/internal/SiblingIndex.h"
#include "RkXmlLib16/object/Variant.h"
#include "RkXmlLib16/wildcards/Element.h"
#include "RkXmlLib16/wildcards/ElementCol.h"

namespace RkXmlLib16Data {

using namespace RkXmlLib16;

namespace {

// Groups within groups that are looked into for a record that could take an element.
constexpr int kDeepestGroup = 8;
constexpr std::size_t kLongestName = 30;

bool IsAnyElement(const CElementInfo& info) { return info.GetElementName() == L"AnyElement"; }

std::wstring Quoted(std::wstring_view name) {
  const bool isLong = name.size() > kLongestName;
  return L'[' + std::wstring(name.substr(0, isLong ? kLongestName - 3 : name.size())) + (isLong ? L"...]" : L"]");
}

bool HasNameFromHere(const CXmlElement& element, const std::wstring& name) {
  if (CSiblingIndex* const index = CSiblingIndex::Of(element)) return index->HasNameFromHere(element, name);
  const CXmlElement* e = &element;
  while (e != nullptr && e->GetLocalName() != name) e = e->GetNextSiblingElement();
  return e != nullptr;
}

// Of a member that was expected before `standing`.
std::wstring WhatStandsThere(const std::wstring& name, const std::wstring& namespaceUri, const CXmlElement* standing) {
  if (standing == nullptr) return L"the content ends there";
  if (standing->GetLocalName() == name)
    return L"the same name in another namespace, " + Quoted(standing->GetNamespaceURI()) + L" instead of " +
           Quoted(namespaceUri);
  std::wstring hint = L"found " + Quoted(standing->GetLocalName());
  return HasNameFromHere(*standing, name) ? hint + L", the expected one follows later" : hint;
}

bool HasLikeBefore(const CXmlElement& element) {
  if (CSiblingIndex* const index = CSiblingIndex::Of(element)) return index->Find(element).before > 0;
  const CXmlElement* const parent = element.GetParentElement();
  for (const CXmlElement* e = parent != nullptr ? parent->GetFirstElement() : nullptr; e != nullptr && e != &element;
       e = e->GetNextSiblingElement())
    if (e->HasNameOf(&element)) return true;
  return false;
}

std::wstring WhyUnexpected(const CSerializationContext& context, const CXmlGeneratedClass& object,
                           const CXmlElement* unread) {
  CElementInfo** const infos = object.GetClassElementInfo();
  for (CElementInfo** info = infos; info != nullptr && *info != nullptr; ++info) {
    if ((*info)->IsThisElement(context, unread)) {
      return HasLikeBefore(*unread) ? L"repeated, or out of order" : L"out of order";
    }
  }
  for (CElementInfo** info = infos; info != nullptr && *info != nullptr; ++info)
    if (unread->GetLocalName() == (*info)->GetElementName())
      return L"the same name in another namespace, " + Quoted(unread->GetNamespaceURI()) + L" instead of " +
             Quoted((*info)->GetNamespace());
  return std::wstring();
}

// Whether only the collection itself knows which elements are its own: those of its groups, or of substitutes.
bool TakesMoreNames(const CElementInfo& info) {
  if (info.GetMemberKind() != MemberKind::Collection) return false;
  return info.IsInlineGroup() || dynamic_cast<const CElementInfoSeqAbsClsCol*>(&info) != nullptr ||
         dynamic_cast<const CElementInfoChoiceAbsClsCol*>(&info) != nullptr ||
         dynamic_cast<const CElementInfoAllAbsClsCol*>(&info) != nullptr;
}

bool IsTakenWithin(const CSerializationContext& context, const CXmlGeneratedClass& object, const CXmlElement* element,
                   const CElementInfo* behind, int depth) {
  for (CElementInfo** info = object.GetClassElementInfo(); info != nullptr && *info != nullptr; ++info) {
    const CElementInfo& record = **info;
    if (behind != nullptr) {
      if (behind == &record) behind = nullptr;
    } else if (IsAnyElement(record) || TakesMoreNames(record) || record.IsThisElement(context, element)) {
      return true;
    } else if (record.IsInlineGroup() && record.GetMemberKind() == MemberKind::Single && depth > 0) {
      CSmartPtr<CXmlObjectBase> child = GetChild(record, &object);
      if (child == nullptr) child = record.CreateGroup();
      const auto* const group = dynamic_cast<const CXmlGeneratedClass*>(child.Get());
      if (group != nullptr && IsTakenWithin(context, *group, element, nullptr, depth - 1)) return true;
    }
  }
  return false;
}

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

CRkValidationException MissingChild(const CElementInfo& info, const CXmlElement* parent) {
  return {FormatString(L"Failed to find the required child element [%ls].", info.GetElementName().c_str()),
          parent->GetXPath()};
}

CRkValidationException MissingSubstitution(const CElementInfo& info, const CXmlElement* parent) {
  return {FormatString(L"Failed to find a suitable substitution element for [%ls].", info.GetElementName().c_str()),
          parent->GetXPath()};
}

void RefuseMissing(const CSerializationContext& context, CRkException error, const std::wstring& name,
                   const std::wstring& namespaceUri, const CXmlElement* parent, const CXmlElement* standing) {
  error.SetHint(WhatStandsThere(name, namespaceUri, standing));
  Refuse(context, error, standing != nullptr ? *standing : *parent);
}

void RequireCount(const CSerializationContext& context, const CXmlCollectionBase& collection, const CElementInfo& info,
                  const CXmlElement* parent, const CXmlElement* standing) {
  try {
    collection.ValidateCount(context);
  } catch (CRkException& e) {
    if (e.GetCode() == RkErrorCode_TooFewElements)
      e.SetHint(WhatStandsThere(info.GetElementName(), info.GetNamespace(), standing));
    RefuseCaught(context, e, standing != nullptr ? *standing : *parent);
  }
}

void RefuseUnread(const CSerializationContext& context, const CXmlGeneratedClass& object, const CXmlElement* parent,
                  const CXmlElement* unread) {
  CRkValidationException error(
      FormatString(L"Failed read all the elements held within the element [%ls]. The unexpected element [%ls] remains "
                   L"un processed",  // sic
                   parent->GetLocalName().c_str(), unread->GetLocalName().c_str()),
      parent->GetXPath());
  error.SetHint(WhyUnexpected(context, object, unread));
  Refuse(context, error, *unread);
}

bool IsTaken(const CSerializationContext& context, const CXmlGeneratedClass& object, const CXmlElement* element,
             const CElementInfo* behind) {
  return IsTakenWithin(context, object, element, behind, kDeepestGroup);
}

void PassOverUnexpected(const CSerializationContext& context, const CXmlGeneratedClass& object, CXmlElement* parent,
                        CXmlElement** cursor, const CElementInfo* behind) {
  while (*cursor != nullptr && !(behind != nullptr && behind->IsThisElement(context, *cursor)) &&
         !IsTaken(context, object, *cursor, behind)) {
    RefuseUnread(context, object, parent, *cursor);
    *cursor = (*cursor)->GetNextSiblingElement();
  }
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

CSmartPtr<CXmlObjectBase> GetOrCreateChild(const CElementInfoCls& info, const MemberRead& read,
                                           const CXmlElement& element) {
  CSmartPtr<CXmlObjectBase> child = GetChild(info, read.object);
  if (child != nullptr) return child;
  child = info.Create(nullptr);
  if (child != nullptr) StoreChild(info, read, child, element);
  return child;
}

void StoreNull(const CElementInfo& info, const MemberRead& read, const CXmlElement& element) {
  if (GetChild(info, read.object) != nullptr) StoreChild(info, read, nullptr, element);
}

bool ReadInline(CElementInfo& info, const MemberRead& read, CXmlObjectBase* child, bool keeps) {
  CErrorSession::Attempt attempt(read.context);
  CXmlElement* next = info.FromXml_Int(child, read.parent, read.At(), read.context, /*isOptionalChoice=*/false);
  const bool consumed = next != read.At();
  if (consumed || keeps) attempt.Keep();
  *read.cursor = next;
  return consumed;
}

bool AcceptsName(const CElementInfo& info, const CXmlElement* element) {
  return IsAnyElement(info) || element->GetLocalName() == info.GetElementName();
}

CXmlElement* ReadWildcards(CElementInfo& info, const MemberRead& read, CXmlCollectionBase* collection) {
  if (IsAnyElement(info))
    return info.FromXml_Int(collection, read.parent, read.At(), read.context, /*isOptionalChoice=*/false);
  auto* elements = dynamic_cast<CElementCol*>(collection);
  if (elements == nullptr)
    throw CRkException(L"Serialization Data Error : The collection should be a CElementCol, it was not!");
  return elements->FromXmlLockElementName_Int(info.GetElementName().c_str(),
                                              read.At() == nullptr ? L"" : read.At()->GetNamespaceURI().c_str(),
                                              read.parent, read.At(), read.context);
}

bool ReadNewWildcard(CElementInfoUntpd& info, const MemberRead& read) {
  const CXmlElement* const current = read.At();
  if (current == nullptr || !AcceptsName(info, current)) return false;
  const wchar_t* const constraint = info.GetNamespaceConstraint().c_str();
  const wchar_t* const targetNamespace = info.GetTargetNamespace().c_str();
  const std::wstring ns = CElementInfo::GetAnyDefaultNamespace(constraint, read.ownerNamespace, targetNamespace);
  CSmartPtr<CXmlObjectBase> element(
      new CElement(info.GetElementName().c_str(), ns.c_str(), constraint, targetNamespace));
  if (!ReadInline(info, read, element)) return false;
  StoreChild(info, read, element, *current);
  return true;
}

}  // namespace RkXmlLib16Data
