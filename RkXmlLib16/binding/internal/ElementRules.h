#ifndef RKXMLLIB16_BINDING_INTERNAL_ELEMENTRULES_H
#define RKXMLLIB16_BINDING_INTERNAL_ELEMENTRULES_H

#include <string>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/SmartPtr.h"
#include "RkXmlLib16/binding/ElementInfoKinds.h"
#include "RkXmlLib16/collections/CollectionBase.h"

// The rules that records of more than one content model share.
namespace RkXmlLib16Data {

using RkXmlLib16::CRkException;
using RkXmlLib16::CRkValidationException;
using RkXmlLib16::CXmlCollectionBase;

// What ElementFromXml is called with.
struct MemberRead {
  const CSerializationContext& context;
  CXmlGeneratedClass* object;
  CXmlElement* parent;
  CXmlElement** cursor;
  const wchar_t* ownerNamespace;
  XmlElementType ownerType;

  CXmlElement* At() const { return *cursor; }
  void MoveOn() const { *cursor = At()->GetNextSiblingElement(); }
  bool HasOwnElement() const { return ownerType == RkXmlLib16::XmlElementType_Element; }
};

// `written`, or CRkInvalidParamException "The Property [%ls] is mandatory, it may not be NULL".
bool RequireWritten(const CElementInfo& info, bool written);
// Checks the bounds of the collection, unless the context ignores them, and writes it.
bool CheckedColToXml(const CElementInfo& info, const CSerializationContext& context, const CXmlGeneratedClass* object,
                     CXmlWriter* writer);
// The ElementToXml of a sequence and of an all group.
template <Cardinality kCardinality, class Kind>
bool WriteMember(const Kind& info, const CSerializationContext& context, const CXmlGeneratedClass* object,
                 CXmlWriter* writer) {
  if constexpr (kCardinality == Cardinality::Col)
    return CheckedColToXml(info, context, object, writer);
  else if constexpr (kCardinality == Cardinality::Mnd)
    return RequireWritten(info, info.Write(context, object, writer));
  else
    return info.Write(context, object, writer);
}

// CRkValidationException with the path of `parent`: "Failed to find the required child element [%ls].".
[[gnu::cold]] CRkValidationException MissingChild(const CElementInfo& info, const CXmlElement* parent);
// "Failed to find a suitable substitution element for [%ls].".
[[gnu::cold]] CRkValidationException MissingSubstitution(const CElementInfo& info, const CXmlElement* parent);

// Below, `standing` is the child of `parent` that stands where something else was expected, null at the end. Errors are
// refused: these return only when reading goes on.

// Refuses the absence of an element, with what stands there.
[[gnu::cold]] void RefuseMissing(const CSerializationContext& context, CRkException error, const std::wstring& name,
                                 const std::wstring& namespaceUri, const CXmlElement* parent,
                                 const CXmlElement* standing);
inline void RefuseMissing(const CSerializationContext& context, const CRkException& error, const CElementInfo& info,
                          const CXmlElement* parent, const CXmlElement* standing) {
  RefuseMissing(context, error, info.GetElementName(), info.GetNamespace(), parent, standing);
}
inline void RefuseMissing(const MemberRead& read, const CRkException& error, const CElementInfo& info) {
  RefuseMissing(read.context, error, info, read.parent, read.At());
}
// Checks the count of a collection that was read, and refuses a wrong one.
void RequireCount(const CSerializationContext& context, const CXmlCollectionBase& collection, const CElementInfo& info,
                  const CXmlElement* parent, const CXmlElement* standing);
// Refuses an element that no member reads.
[[gnu::cold]] void RefuseUnread(const CSerializationContext& context, const CXmlGeneratedClass& object,
                                const CXmlElement* parent, const CXmlElement* unread);

// For reads that go on after errors, which have an error handler.
// Whether a record of the object's class after `behind` (null: any record) could take the element.
[[gnu::cold]] bool IsTaken(const CSerializationContext& context, const CXmlGeneratedClass& object,
                           const CXmlElement* element, const CElementInfo* behind = nullptr);
// Passes over elements that no record behind `behind`, nor that record itself, could take.
[[gnu::cold]] void PassOverUnexpected(const CSerializationContext& context, const CXmlGeneratedClass& object,
                                      CXmlElement* parent, CXmlElement** cursor, const CElementInfo* behind = nullptr);

// The member as the object holds it; null when it holds none.
CSmartPtr<CXmlObjectBase> GetChild(const CElementInfo& info, const CXmlGeneratedClass* object);
CSmartPtr<CXmlCollectionBase> GetCollection(const CElementInfo& info, const CXmlGeneratedClass* object);
// The child that the owner created, or one that the record makes and the property then holds; null when neither does.
// `element` is named when the setter refuses.
CSmartPtr<CXmlObjectBase> GetOrCreateChild(const CElementInfoCls& info, const MemberRead& read,
                                           const CXmlElement& element);
// Stores the child (may be null); `element` is named when the setter refuses.
inline void StoreChild(const CElementInfo& info, const MemberRead& read, CXmlObjectBase* child,
                       const CXmlElement& element) {
  info.InvokeObjectSet(read.object, child, element);
}
// Takes the child out again; a property that is null already is left alone, so that its setter is not called.
void StoreNull(const CElementInfo& info, const MemberRead& read, const CXmlElement& element);

// Lets the child read the element under the cursor and moves the cursor to the next sibling.
inline void ReadOwnElement(CElementInfo& info, const MemberRead& read, CXmlObjectBase* child,
                           bool isOptionalChoice = false) {
  CXmlElement* const element = read.At();
  info.FromXml_Int(child, element, element->GetFirstElement(), read.context, isOptionalChoice);
  *read.cursor = element->GetNextSiblingElement();
}
// Lets the object or collection read from the cursor's place among the children of the parent; whether it consumed
// anything. The cursor moves over what was consumed.
// `keeps`: what went wrong counts even if nothing was consumed.
bool ReadInline(CElementInfo& info, const MemberRead& read, CXmlObjectBase* child, bool keeps = false);

// Wildcards. A record called "AnyElement" takes elements of any local name.
bool AcceptsName(const CElementInfo& info, const CXmlElement* element);
// Lets a wildcard collection read from the cursor's place; the first element that it left.
CXmlElement* ReadWildcards(CElementInfo& info, const MemberRead& read, CXmlCollectionBase* collection);
// Lets a new wildcard element read the element under the cursor, moves on and stores it; whether the record takes it.
bool ReadNewWildcard(CElementInfoUntpd& info, const MemberRead& read);

// Whether a member may stand at the cursor: an element of its own, or, `isInline`, anything that a group could begin
// with.
inline bool MayRead(const CElementInfo& info, const MemberRead& read, bool isInline) {
  return isInline ? read.At() != nullptr : info.IsThisElement(read.context, read.At());
}
// Read the element under the cursor if it is the member's own, and move on; whether they consumed anything.
template <class Value>
bool ReadValue(Value& info, const MemberRead& read) {
  if (!info.IsThisElement(read.context, read.At())) return false;
  info.Read(read.context, read.object, read.cursor);
  return true;
}
// The object is a new one, stored when it consumed something.
template <class Kind>
bool ReadNewObject(Kind& info, const MemberRead& read, bool isInline) {
  if (!MayRead(info, read, isInline)) return false;
  const CXmlElement& element = *read.At();
  const CSmartPtr<CXmlObjectBase> child = info.Create(read.At());
  if (child == nullptr) return false;
  if (!isInline)
    ReadOwnElement(info, read, child);
  else if (!ReadInline(info, read, child))
    return false;
  StoreChild(info, read, child, element);
  return true;
}

}  // namespace RkXmlLib16Data

#endif
