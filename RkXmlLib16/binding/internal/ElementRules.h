#ifndef RKXMLLIB16_BINDING_INTERNAL_ELEMENTRULES_H
#define RKXMLLIB16_BINDING_INTERNAL_ELEMENTRULES_H

#include <string>
#include <utility>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/SmartPtr.h"
#include "RkXmlLib16/binding/ElementInfo.h"
#include "RkXmlLib16/collections/CollectionBase.h"

// The rules that records of more than one content model share.
namespace RkXmlLib16Data {

using RkXmlLib16::CRkException;
using RkXmlLib16::CRkValidationException;
using RkXmlLib16::CXmlCollectionBase;

// `written`, or CRkInvalidParamException "The Property [%ls] is mandatory, it may not be NULL".
bool RequireWritten(const CElementInfo& info, bool written);
// Checks the bounds of the collection, unless the context ignores them, and writes it.
bool CheckedColToXml(const CElementInfo& info, const CSerializationContext& context, const CXmlGeneratedClass* object,
                     CXmlWriter* writer);

// CRkValidationException with the path of `parent`: "Failed to find the required child element [%ls].".
CRkValidationException MissingChild(const CElementInfo& info, const CXmlElement* parent);
// "Failed to find a suitable substitution element for [%ls].".
CRkValidationException MissingSubstitution(const CElementInfo& info, const CXmlElement* parent);

// Below, `standing` is the child of `parent` that stands where something else was expected, null at the end. Errors are
// refused: these return only when reading goes on.

// Refuses the absence of an element, with what stands there.
void RefuseMissing(const CSerializationContext& context, CRkException error, const std::wstring& name,
                   const std::wstring& namespaceUri, const CXmlElement* parent, const CXmlElement* standing);
inline void RefuseMissing(const CSerializationContext& context, CRkException error, const CElementInfo& info,
                          const CXmlElement* parent, const CXmlElement* standing) {
  RefuseMissing(context, std::move(error), info.GetElementName(), info.GetNamespace(), parent, standing);
}
// Checks the count of a collection that was read, and refuses a wrong one.
void RequireCount(const CSerializationContext& context, const CXmlCollectionBase& collection, const CElementInfo& info,
                  const CXmlElement* parent, const CXmlElement* standing);
// Refuses an element that no member reads.
void RefuseUnread(const CSerializationContext& context, const CXmlGeneratedClass& object, const CXmlElement* parent,
                  const CXmlElement* unread);

// For reads that go on after errors, which have an error handler.
// Whether a record of the object's class after `behind` (null: any record) could take the element.
bool IsTaken(const CSerializationContext& context, const CXmlGeneratedClass& object, const CXmlElement* element,
             const CElementInfo* behind = nullptr);
// Passes over elements that no record behind `behind`, nor that record itself, could take.
void PassOverUnexpected(const CSerializationContext& context, const CXmlGeneratedClass& object, CXmlElement* parent,
                        CXmlElement** cursor, const CElementInfo* behind = nullptr);

// The member as the object holds it; null when it holds none.
CSmartPtr<CXmlObjectBase> GetChild(const CElementInfo& info, const CXmlGeneratedClass* object);
CSmartPtr<CXmlCollectionBase> GetCollection(const CElementInfo& info, const CXmlGeneratedClass* object);
// The child that the owner created, or one that the factory makes and the property then holds; null when neither does.
// `element` is named when the setter refuses.
CSmartPtr<CXmlObjectBase> GetOrCreateChild(const CElementInfo& info, CXmlGeneratedClass* object, ClassFactory factory,
                                           int classId, const CXmlElement& element);
CSmartPtr<CXmlObjectBase> CreateChild(const CElementInfo& info, ClassFactory factory, int classId);
CSmartPtr<CXmlObjectBase> CreateAbstractChild(AbstractClassFactory factory, CXmlElement* element);
// Stores the child (may be null); `element` is named when the setter refuses.
void StoreChild(const CElementInfo& info, CXmlGeneratedClass* object, CXmlObjectBase* child,
                const CXmlElement& element);
// Takes the child out again; a property that is null already is left alone, so that its setter is not called.
void StoreNull(const CElementInfo& info, CXmlGeneratedClass* object, const CXmlElement& element);

// Lets the child read the element under the cursor and moves the cursor to the next sibling.
void ReadOwnElement(CElementInfo& info, const CSerializationContext& context, CXmlObjectBase* child,
                    CXmlElement** cursor, bool isOptionalChoice = false);
// Lets the object or collection read from the cursor's place among the children of `parent`; whether it consumed
// anything. The cursor moves over what was consumed.
// `keeps`: what went wrong counts even if nothing was consumed.
bool ReadInline(CElementInfo& info, const CSerializationContext& context, CXmlObjectBase* child, CXmlElement* parent,
                CXmlElement** cursor, bool keeps = false);

// Wildcards. A record called "AnyElement" takes elements of any local name.
bool AcceptsName(const CElementInfo& info, const CXmlElement* element);
// Lets a wildcard collection read from the cursor's place; the first element that it left.
CXmlElement* ReadWildcards(CElementInfo& info, const CSerializationContext& context, CXmlCollectionBase* collection,
                           CXmlElement* parent, CXmlElement* current);
// A new wildcard element that has read the element under the cursor, with the cursor behind it; null when the record
// does not take the element.
CSmartPtr<CXmlObjectBase> ReadNewWildcard(CElementInfo& info, const CSerializationContext& context, CXmlElement* parent,
                                          CXmlElement** cursor, const wchar_t* ownerNamespace,
                                          const std::wstring& constraint, const std::wstring& targetNamespace);

}  // namespace RkXmlLib16Data

#endif
