#include "RkXmlLib16/binding/ElementInfoChoice.h"

#include "RkXmlLib16/base/internal/TextOrEmpty.h"
#include "RkXmlLib16/binding/internal/ElementRules.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/context/internal/ErrorSession.h"
#include "RkXmlLib16/document/ElementTree.h"

namespace RkXmlLib16Data {

using namespace RkXmlLib16;

namespace {

// Whether a collection that has read up to `next` is the chosen member. What it read in an inline owner is taken out
// again when the count is not acceptable.
bool IsChosen(CXmlCollectionBase& collection, int countBefore, const CElementInfo& info,
              const CSerializationContext& context, const CXmlElement* parent, CXmlElement* next, CXmlElement** cursor,
              XmlElementType ownerType) {
  if (next == *cursor) return false;
  if (ownerType != XmlElementType_Element && !collection.IsValidCount(context)) {
    if (countBefore == 0) collection.Clear();
    for (int i = collection.GetCount(); i > countBefore; --i) collection.Remove(i - 1);
    return false;
  }
  *cursor = next;
  if (ownerType == XmlElementType_Element) RequireCount(context, collection, info, parent, next);
  return true;
}

}  // namespace

CElementInfoChoiceCol::CElementInfoChoiceCol(const wchar_t* name, const wchar_t* ns, int propertyIndex,
                                             XmlElementType memberType)
    : CElementInfo(name, ns, propertyIndex, MemberKind::Collection, memberType) {}

CElementInfoChoiceCol::~CElementInfoChoiceCol() = default;

bool CElementInfoChoiceCol::ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                                         CXmlWriter* writer) const {
  return ElementToXmlCol(context, object, writer);
}

bool CElementInfoChoiceCol::ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object,
                                           CXmlElement* parent, CXmlElement** cursor, const wchar_t*,
                                           XmlElementType ownerType) {
  const auto collection = GetCollection(*this, object);
  if (collection == nullptr) return false;
  const int countBefore = collection->GetCount();
  CErrorSession::Attempt attempt(context);
  CXmlElement* next = FromXml_Int(collection, parent, *cursor, context, /*isOptionalChoice=*/false);
  const bool isChosen = IsChosen(*collection, countBefore, *this, context, parent, next, cursor, ownerType);
  if (isChosen) attempt.Keep();
  return isChosen;
}

CElementInfoChoiceClsCol::CElementInfoChoiceClsCol(const wchar_t* name, const wchar_t* ns, int propertyIndex,
                                                   XmlElementType memberType)
    : CElementInfoChoiceCol(name, ns, propertyIndex, memberType) {}

CElementInfoChoiceClsCol::~CElementInfoChoiceClsCol() = default;

CElementInfoChoiceAbsClsCol::CElementInfoChoiceAbsClsCol(const wchar_t* name, const wchar_t* ns, int propertyIndex,
                                                         XmlElementType memberType)
    : CElementInfoChoiceCol(name, ns, propertyIndex, memberType) {}

CElementInfoChoiceAbsClsCol::~CElementInfoChoiceAbsClsCol() = default;

CElementInfoChoicePrimCol::CElementInfoChoicePrimCol(const wchar_t* name, const wchar_t* ns, int propertyIndex)
    : CElementInfoChoiceCol(name, ns, propertyIndex) {}

CElementInfoChoicePrimCol::~CElementInfoChoicePrimCol() = default;

CElementInfoChoiceEnumCol::CElementInfoChoiceEnumCol(const wchar_t* name, const wchar_t* ns, int propertyIndex)
    : CElementInfoChoiceCol(name, ns, propertyIndex) {}

CElementInfoChoiceEnumCol::~CElementInfoChoiceEnumCol() = default;

CElementInfoChoiceUntpdCol::CElementInfoChoiceUntpdCol(const wchar_t* name, const wchar_t* ns, int propertyIndex)
    : CElementInfoChoiceCol(name, ns, propertyIndex) {}

CElementInfoChoiceUntpdCol::~CElementInfoChoiceUntpdCol() = default;

bool CElementInfoChoiceUntpdCol::ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object,
                                                CXmlElement* parent, CXmlElement** cursor, const wchar_t*,
                                                XmlElementType ownerType) {
  const auto collection = GetCollection(*this, object);
  if (collection == nullptr) return false;
  const int countBefore = collection->GetCount();
  CXmlElement* next = ReadWildcards(*this, context, collection, parent, *cursor);
  return IsChosen(*collection, countBefore, *this, context, parent, next, cursor, ownerType);
}

CElementInfoChoiceClsOpt::CElementInfoChoiceClsOpt(const wchar_t* name, const wchar_t* ns, int propertyIndex,
                                                   XmlElementType memberType, ClassFactory factory, int classId)
    : CElementInfo(name, ns, propertyIndex, memberType, factory, classId) {}

CElementInfoChoiceClsOpt::~CElementInfoChoiceClsOpt() = default;

bool CElementInfoChoiceClsOpt::ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                                            CXmlWriter* writer) const {
  return ElementToXmlCls(context, object, writer, /*isOptionalChoice=*/false);
}

bool CElementInfoChoiceClsOpt::ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object,
                                              CXmlElement* parent, CXmlElement** cursor, const wchar_t*,
                                              XmlElementType) {
  if (IsInlineGroup() ? *cursor == nullptr : !IsThisElement(context, *cursor)) return false;
  const auto child = CreateChild(*this, GetFactory(), GetClassId());
  if (child == nullptr) return false;
  CXmlElement* element = *cursor;
  StoreChild(*this, object, child, *element);
  if (!IsInlineGroup()) {
    ReadOwnElement(*this, context, child, cursor, /*isOptionalChoice=*/true);
    return true;
  }
  if (ReadInline(*this, context, child, parent, cursor)) return true;
  StoreNull(*this, object, *element);
  return false;
}

CElementInfoChoiceAbsClsOpt::CElementInfoChoiceAbsClsOpt(const wchar_t* name, const wchar_t* ns, int propertyIndex,
                                                         XmlElementType memberType, AbstractClassFactory factory)
    : CElementInfo(name, ns, propertyIndex, memberType, factory) {}

CElementInfoChoiceAbsClsOpt::~CElementInfoChoiceAbsClsOpt() = default;

bool CElementInfoChoiceAbsClsOpt::ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                                               CXmlWriter* writer) const {
  return ElementToXmlCls(context, object, writer, /*isOptionalChoice=*/false);
}

bool CElementInfoChoiceAbsClsOpt::ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object,
                                                 CXmlElement*, CXmlElement** cursor, const wchar_t*, XmlElementType) {
  if (!IsThisElement(context, *cursor)) return false;
  const auto child = CreateAbstractChild(GetAbstractFactory(), *cursor);
  if (child == nullptr) {
    StoreNull(*this, object, **cursor);
    return false;
  }
  StoreChild(*this, object, child, **cursor);
  ReadOwnElement(*this, context, child, cursor);
  return true;
}

CElementInfoChoicePrimOpt::CElementInfoChoicePrimOpt(const wchar_t* name, const wchar_t* ns, int propertyIndex,
                                                     bool nillable, ItemType type, const wchar_t* format,
                                                     CWhitespaceUtils::WhitespaceRule whitespace,
                                                     const CPrimitiveRestrictions& facets, const wchar_t* defaultValue)
    : CElementInfo(name, ns, propertyIndex, nillable, type, format, whitespace, facets, defaultValue) {}

CElementInfoChoicePrimOpt::~CElementInfoChoicePrimOpt() = default;

bool CElementInfoChoicePrimOpt::ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                                             CXmlWriter* writer) const {
  return ElementToXmlPrim(context, object, writer);
}

bool CElementInfoChoicePrimOpt::ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object,
                                               CXmlElement*, CXmlElement** cursor, const wchar_t*, XmlElementType) {
  if (!IsThisElement(context, *cursor)) return false;
  ElementFromXmlPrim(context, object, cursor);
  return true;
}

CElementInfoChoiceEnumOpt::CElementInfoChoiceEnumOpt(const wchar_t* name, const wchar_t* ns, int propertyIndex,
                                                     bool nillable, EnumToString enumToString,
                                                     EnumFromString enumFromString, const wchar_t* defaultValue)
    : CElementInfo(name, ns, propertyIndex, nillable, enumToString, enumFromString, defaultValue) {}

CElementInfoChoiceEnumOpt::~CElementInfoChoiceEnumOpt() = default;

bool CElementInfoChoiceEnumOpt::ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                                             CXmlWriter* writer) const {
  return ElementToXmlEnum(context, object, writer, GetEnumToString());
}

bool CElementInfoChoiceEnumOpt::ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object,
                                               CXmlElement*, CXmlElement** cursor, const wchar_t*, XmlElementType) {
  if (!IsThisElement(context, *cursor)) return false;
  ElementFromXmlEnum(context, object, cursor);
  return true;
}

CElementInfoChoiceUntpdOpt::CElementInfoChoiceUntpdOpt(const wchar_t* name, const wchar_t* ns, int propertyIndex,
                                                       const wchar_t* namespaceConstraint,
                                                       const wchar_t* targetNamespace)
    : CElementInfo(name, ns, propertyIndex, MemberKind::Wildcard, XmlElementType_Element),
      m_namespaceConstraint(TextOrEmpty(namespaceConstraint)),
      m_targetNamespace(TextOrEmpty(targetNamespace)) {}

CElementInfoChoiceUntpdOpt::~CElementInfoChoiceUntpdOpt() = default;

bool CElementInfoChoiceUntpdOpt::ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                                              CXmlWriter* writer) const {
  return ElementToXmlCls(context, object, writer, /*isOptionalChoice=*/false);
}

bool CElementInfoChoiceUntpdOpt::ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object,
                                                CXmlElement* parent, CXmlElement** cursor,
                                                const wchar_t* ownerNamespace, XmlElementType) {
  CXmlElement* current = *cursor;
  if (current == nullptr) return false;
  const auto element =
      ReadNewWildcard(*this, context, parent, cursor, ownerNamespace, m_namespaceConstraint, m_targetNamespace);
  if (element == nullptr) {
    StoreNull(*this, object, *current);
    return false;
  }
  StoreChild(*this, object, element, *current);
  return true;
}

}  // namespace RkXmlLib16Data
