#include "RkXmlLib16/binding/ElementInfoSeq.h"

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/base/internal/TextOrEmpty.h"
#include "RkXmlLib16/binding/internal/ElementRules.h"
#include "RkXmlLib16/binding/internal/SiblingSearch.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/document/ElementTree.h"
#include "RkXmlLib16/document/internal/Refusal.h"

namespace RkXmlLib16Data {

using namespace RkXmlLib16;

namespace {

enum class Seek {
  Found,   // the element is under the cursor
  GoOn,    // it is missing, and that is accepted
  NotMine  // it is missing, and the enclosing reader judges
};

// Looks for the element of a mandatory member, past unknown elements where the context ignores those. `missing` makes
// the error for its absence.
template <class Missing>
Seek SeekMandatory(const CElementInfo& info, const CSerializationContext& context, const CXmlGeneratedClass* object,
                   CXmlElement* parent, CXmlElement** cursor, XmlElementType ownerType, Missing&& missing) {
  if (info.IsThisElement(context, *cursor)) return Seek::Found;
  const bool ownElement = ownerType == XmlElementType_Element;
  if (ownElement && context.GetIgnoreMissingMandatoryElements()) return Seek::GoOn;
  if (context.GetIgnoreUnknownElements()) {
    CXmlElement* const found = SiblingSearch::Find(info, context, *cursor);
    if (found != nullptr || !ownElement || context.GetErrorHandler() == nullptr) *cursor = found;
    if (found != nullptr) return Seek::Found;
  }
  if (!ownElement) return Seek::NotMine;
  if (context.GetErrorHandler() != nullptr && !context.GetIgnoreUnknownElements()) {
    PassOverUnexpected(context, *object, parent, cursor, &info);
    if (info.IsThisElement(context, *cursor)) return Seek::Found;
  }
  RefuseMissing(context, missing(info, parent), info, parent, *cursor);
  return Seek::GoOn;
}

bool IsCountAccepted(const CXmlCollectionBase& collection, const CElementInfo& info,
                     const CSerializationContext& context, const CXmlElement* parent, const CXmlElement* standing,
                     XmlElementType ownerType) {
  if (ownerType != XmlElementType_Element) return collection.IsValidCount(context);
  RequireCount(context, collection, info, parent, standing);
  return true;
}

// Lets a collection read with `read`, again behind elements that nobody takes where reading goes on after those.
template <class Read>
void ReadPastUnexpected(const CSerializationContext& context, const CXmlGeneratedClass* object, CXmlElement* parent,
                        CXmlElement** cursor, XmlElementType ownerType, Read&& read) {
  *cursor = read(*cursor);
  if (context.GetErrorHandler() == nullptr || ownerType != XmlElementType_Element || context.GetIgnoreUnknownElements())
    return;
  for (;;) {
    const CXmlElement* const before = *cursor;
    PassOverUnexpected(context, *object, parent, cursor);
    if (*cursor == before) return;
    *cursor = read(*cursor);
  }
}

}  // namespace

CElementInfoSeqCol::CElementInfoSeqCol(const wchar_t* name, const wchar_t* ns, int propertyIndex,
                                       XmlElementType memberType)
    : CElementInfo(name, ns, propertyIndex, MemberKind::Collection, memberType) {}

CElementInfoSeqCol::~CElementInfoSeqCol() = default;

bool CElementInfoSeqCol::ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                                      CXmlWriter* writer) const {
  return CheckedColToXml(*this, context, object, writer);
}

bool CElementInfoSeqCol::ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object,
                                        CXmlElement* parent, CXmlElement** cursor, const wchar_t*,
                                        XmlElementType ownerType) {
  const auto collection = GetCollection(*this, object);
  if (collection == nullptr) return true;
  ReadPastUnexpected(context, object, parent, cursor, ownerType, [&](CXmlElement* current) {
    return FromXml_Int(collection, parent, current, context, /*isOptionalChoice=*/false);
  });
  return IsCountAccepted(*collection, *this, context, parent, *cursor, ownerType);
}

CElementInfoSeqClsCol::CElementInfoSeqClsCol(const wchar_t* name, const wchar_t* ns, int propertyIndex,
                                             XmlElementType memberType)
    : CElementInfoSeqCol(name, ns, propertyIndex, memberType) {}

CElementInfoSeqClsCol::~CElementInfoSeqClsCol() = default;

CElementInfoSeqAbsClsCol::CElementInfoSeqAbsClsCol(const wchar_t* name, const wchar_t* ns, int propertyIndex,
                                                   XmlElementType memberType)
    : CElementInfoSeqCol(name, ns, propertyIndex, memberType) {}

CElementInfoSeqAbsClsCol::~CElementInfoSeqAbsClsCol() = default;

CElementInfoSeqPrimCol::CElementInfoSeqPrimCol(const wchar_t* name, const wchar_t* ns, int propertyIndex)
    : CElementInfoSeqCol(name, ns, propertyIndex) {}

CElementInfoSeqPrimCol::~CElementInfoSeqPrimCol() = default;

CElementInfoSeqEnumCol::CElementInfoSeqEnumCol(const wchar_t* name, const wchar_t* ns, int propertyIndex)
    : CElementInfoSeqCol(name, ns, propertyIndex) {}

CElementInfoSeqEnumCol::~CElementInfoSeqEnumCol() = default;

CElementInfoSeqUntpdCol::CElementInfoSeqUntpdCol(const wchar_t* name, const wchar_t* ns, int propertyIndex)
    : CElementInfoSeqCol(name, ns, propertyIndex) {}

CElementInfoSeqUntpdCol::~CElementInfoSeqUntpdCol() = default;

bool CElementInfoSeqUntpdCol::ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object,
                                             CXmlElement* parent, CXmlElement** cursor, const wchar_t*,
                                             XmlElementType ownerType) {
  const auto collection = GetCollection(*this, object);
  if (collection == nullptr) return true;
  ReadPastUnexpected(context, object, parent, cursor, ownerType,
                     [&](CXmlElement* current) { return ReadWildcards(*this, context, collection, parent, current); });
  return IsCountAccepted(*collection, *this, context, parent, *cursor, ownerType);
}

CElementInfoSeqClsMnd::CElementInfoSeqClsMnd(const wchar_t* name, const wchar_t* ns, int propertyIndex,
                                             XmlElementType memberType, ClassFactory factory, int classId,
                                             bool required)
    : CElementInfo(name, ns, propertyIndex, memberType, factory, classId), m_required(required) {}

CElementInfoSeqClsMnd::~CElementInfoSeqClsMnd() = default;

bool CElementInfoSeqClsMnd::ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                                         CXmlWriter* writer) const {
  return RequireWritten(*this, ElementToXmlCls(context, object, writer, /*isOptionalChoice=*/false));
}

bool CElementInfoSeqClsMnd::ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object,
                                           CXmlElement* parent, CXmlElement** cursor, const wchar_t*,
                                           XmlElementType ownerType) {
  if (IsInlineGroup()) return ReadGroup(context, object, parent, cursor, ownerType);
  if (ownerType != XmlElementType_Element && !IsThisElement(context, *cursor)) return false;
  if (SeekMandatory(*this, context, object, parent, cursor, ownerType, MissingChild) == Seek::GoOn) return true;
  const auto child = GetOrCreateChild(*this, object, GetFactory(), GetClassId(), **cursor);
  if (child != nullptr) {
    ReadOwnElement(*this, context, child, cursor);
  } else {
    Refuse(context, MissingChild(*this, parent), **cursor);
    *cursor = (*cursor)->GetNextSiblingElement();
  }
  return true;
}

bool CElementInfoSeqClsMnd::ReadGroup(const CSerializationContext& context, CXmlGeneratedClass* object,
                                      CXmlElement* parent, CXmlElement** cursor, XmlElementType ownerType) {
  const bool ownElement = ownerType == XmlElementType_Element;
  const bool atEnd = *cursor == nullptr;
  // True when reading goes on without the group.
  const auto refuseAbsence = [&] {
    if (ownElement) RefuseMissing(context, MissingChild(*this, parent), *this, parent, *cursor);
    return ownElement;
  };
  if (m_required && atEnd) return refuseAbsence();
  const auto child = GetOrCreateChild(*this, object, GetFactory(), GetClassId(), *parent);
  if (child == nullptr) {
    RefuseMissing(context, MissingChild(*this, parent), *this, parent, *cursor);
    return true;
  }
  const bool mayBeAbsent = !m_required && (atEnd || !ownElement || !context.GetIgnoreUnknownElements());
  if (ReadInline(*this, context, child, parent, cursor, /*keeps=*/mayBeAbsent)) return true;
  return m_required ? refuseAbsence() : mayBeAbsent;
}

CElementInfoSeqClsOpt::CElementInfoSeqClsOpt(const wchar_t* name, const wchar_t* ns, int propertyIndex,
                                             XmlElementType memberType, ClassFactory factory, int classId)
    : CElementInfo(name, ns, propertyIndex, memberType, factory, classId) {
  if (!IsInlineGroup()) SkipOtherElements();
}

CElementInfoSeqClsOpt::~CElementInfoSeqClsOpt() = default;

bool CElementInfoSeqClsOpt::ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                                         CXmlWriter* writer) const {
  return ElementToXmlCls(context, object, writer, /*isOptionalChoice=*/false);
}

bool CElementInfoSeqClsOpt::ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object,
                                           CXmlElement* parent, CXmlElement** cursor, const wchar_t*, XmlElementType) {
  if (IsInlineGroup() ? *cursor == nullptr : !IsThisElement(context, *cursor)) return true;
  const auto child = CreateChild(*this, GetFactory(), GetClassId());
  if (child == nullptr) return true;
  const CXmlElement& element = **cursor;
  if (!IsInlineGroup()) {
    ReadOwnElement(*this, context, child, cursor);
    StoreChild(*this, object, child, element);
  } else if (ReadInline(*this, context, child, parent, cursor)) {
    StoreChild(*this, object, child, element);
  }
  return true;
}

CElementInfoSeqAbsClsMnd::CElementInfoSeqAbsClsMnd(const wchar_t* name, const wchar_t* ns, int propertyIndex,
                                                   XmlElementType memberType, AbstractClassFactory factory)
    : CElementInfo(name, ns, propertyIndex, memberType, factory) {}

CElementInfoSeqAbsClsMnd::~CElementInfoSeqAbsClsMnd() = default;

bool CElementInfoSeqAbsClsMnd::ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                                            CXmlWriter* writer) const {
  return RequireWritten(*this, ElementToXmlCls(context, object, writer, /*isOptionalChoice=*/false));
}

bool CElementInfoSeqAbsClsMnd::ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object,
                                              CXmlElement* parent, CXmlElement** cursor, const wchar_t*,
                                              XmlElementType ownerType) {
  const bool ownElement = ownerType == XmlElementType_Element;
  if (!IsThisElement(context, *cursor)) {
    if (!ownElement) return false;
    if (context.GetErrorHandler() != nullptr) PassOverUnexpected(context, *object, parent, cursor, this);
    if (!IsThisElement(context, *cursor)) {
      RefuseMissing(context, MissingSubstitution(*this, parent), *this, parent, *cursor);
      return true;
    }
  }
  const auto child = CreateAbstractChild(GetAbstractFactory(), *cursor);
  CXmlElement* element = *cursor;
  if (child == nullptr) {
    if (!ownElement) return false;
    Refuse(context, MissingSubstitution(*this, parent), *element);
    *cursor = element->GetNextSiblingElement();
    return true;
  }
  FromXml_Int(child, element, element->GetFirstElement(), context, /*isOptionalChoice=*/false);
  StoreChild(*this, object, child, *parent);
  *cursor = element->GetNextSiblingElement();
  return true;
}

CElementInfoSeqAbsClsOpt::CElementInfoSeqAbsClsOpt(const wchar_t* name, const wchar_t* ns, int propertyIndex,
                                                   XmlElementType memberType, AbstractClassFactory factory)
    : CElementInfo(name, ns, propertyIndex, memberType, factory) {
  SkipOtherElements();
}

CElementInfoSeqAbsClsOpt::~CElementInfoSeqAbsClsOpt() = default;

bool CElementInfoSeqAbsClsOpt::ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                                            CXmlWriter* writer) const {
  return ElementToXmlCls(context, object, writer, /*isOptionalChoice=*/false);
}

bool CElementInfoSeqAbsClsOpt::ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object,
                                              CXmlElement*, CXmlElement** cursor, const wchar_t*, XmlElementType) {
  if (!IsThisElement(context, *cursor)) return true;
  const auto child = CreateAbstractChild(GetAbstractFactory(), *cursor);
  if (child == nullptr) return true;
  CXmlElement* element = *cursor;
  FromXml_Int(child, element, element->GetFirstElement(), context, /*isOptionalChoice=*/false);
  StoreChild(*this, object, child, *element);
  *cursor = element->GetNextSiblingElement();
  return true;
}

CElementInfoSeqPrimMnd::CElementInfoSeqPrimMnd(const wchar_t* name, const wchar_t* ns, int propertyIndex, bool nillable,
                                               ItemType type, const wchar_t* format,
                                               CWhitespaceUtils::WhitespaceRule whitespace,
                                               const CPrimitiveRestrictions& facets, const wchar_t* defaultValue)
    : CElementInfo(name, ns, propertyIndex, nillable, type, format, whitespace, facets, defaultValue) {}

CElementInfoSeqPrimMnd::~CElementInfoSeqPrimMnd() = default;

bool CElementInfoSeqPrimMnd::ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                                          CXmlWriter* writer) const {
  return RequireWritten(*this, ElementToXmlPrim(context, object, writer));
}

bool CElementInfoSeqPrimMnd::ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object,
                                            CXmlElement* parent, CXmlElement** cursor, const wchar_t*,
                                            XmlElementType ownerType) {
  const Seek at = SeekMandatory(*this, context, object, parent, cursor, ownerType, MissingChild);
  if (at == Seek::Found) ElementFromXmlPrim(context, object, cursor);
  return at != Seek::NotMine;
}

CElementInfoSeqPrimOpt::CElementInfoSeqPrimOpt(const wchar_t* name, const wchar_t* ns, int propertyIndex, bool nillable,
                                               ItemType type, const wchar_t* format,
                                               CWhitespaceUtils::WhitespaceRule whitespace,
                                               const CPrimitiveRestrictions& facets, const wchar_t* defaultValue)
    : CElementInfo(name, ns, propertyIndex, nillable, type, format, whitespace, facets, defaultValue) {
  SkipOtherElements();
}

CElementInfoSeqPrimOpt::~CElementInfoSeqPrimOpt() = default;

bool CElementInfoSeqPrimOpt::ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                                          CXmlWriter* writer) const {
  return ElementToXmlPrim(context, object, writer);
}

bool CElementInfoSeqPrimOpt::ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object,
                                            CXmlElement*, CXmlElement** cursor, const wchar_t*, XmlElementType) {
  if (IsThisElement(context, *cursor)) ElementFromXmlPrim(context, object, cursor);
  return true;
}

CElementInfoSeqEnumMnd::CElementInfoSeqEnumMnd(const wchar_t* name, const wchar_t* ns, int propertyIndex, bool nillable,
                                               EnumToString enumToString, EnumFromString enumFromString,
                                               const wchar_t* defaultValue)
    : CElementInfo(name, ns, propertyIndex, nillable, enumToString, enumFromString, defaultValue) {}

CElementInfoSeqEnumMnd::~CElementInfoSeqEnumMnd() = default;

bool CElementInfoSeqEnumMnd::ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                                          CXmlWriter* writer) const {
  return RequireWritten(*this, ElementToXmlEnum(context, object, writer, GetEnumToString()));
}

bool CElementInfoSeqEnumMnd::ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object,
                                            CXmlElement* parent, CXmlElement** cursor, const wchar_t*,
                                            XmlElementType ownerType) {
  const Seek at = SeekMandatory(*this, context, object, parent, cursor, ownerType, MissingChild);
  if (at == Seek::Found) ElementFromXmlEnum(context, object, cursor);
  return at != Seek::NotMine;
}

CElementInfoSeqEnumOpt::CElementInfoSeqEnumOpt(const wchar_t* name, const wchar_t* ns, int propertyIndex, bool nillable,
                                               EnumToString enumToString, EnumFromString enumFromString,
                                               const wchar_t* defaultValue)
    : CElementInfo(name, ns, propertyIndex, nillable, enumToString, enumFromString, defaultValue) {
  SkipOtherElements();
}

CElementInfoSeqEnumOpt::~CElementInfoSeqEnumOpt() = default;

bool CElementInfoSeqEnumOpt::ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                                          CXmlWriter* writer) const {
  return ElementToXmlEnum(context, object, writer, GetEnumToString());
}

bool CElementInfoSeqEnumOpt::ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object,
                                            CXmlElement*, CXmlElement** cursor, const wchar_t*, XmlElementType) {
  if (IsThisElement(context, *cursor)) ElementFromXmlEnum(context, object, cursor);
  return true;
}

CElementInfoSeqUntpdMnd::CElementInfoSeqUntpdMnd(const wchar_t* name, const wchar_t* ns, int propertyIndex,
                                                 const wchar_t* namespaceConstraint, const wchar_t* targetNamespace)
    : CElementInfo(name, ns, propertyIndex, MemberKind::Single, XmlElementType_Element),
      m_namespaceConstraint(TextOrEmpty(namespaceConstraint)),
      m_targetNamespace(TextOrEmpty(targetNamespace)) {}

CElementInfoSeqUntpdMnd::~CElementInfoSeqUntpdMnd() = default;

bool CElementInfoSeqUntpdMnd::ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                                           CXmlWriter* writer) const {
  return RequireWritten(*this, ElementToXmlCls(context, object, writer, /*isOptionalChoice=*/false));
}

bool CElementInfoSeqUntpdMnd::ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object,
                                             CXmlElement* parent, CXmlElement** cursor, const wchar_t*,
                                             XmlElementType ownerType) {
  const auto element = GetChild(*this, object);
  if (*cursor == nullptr || element == nullptr) {
    RefuseMissing(context, MissingChild(*this, parent), *this, parent, *cursor);
    return true;
  }
  if (AcceptsName(*this, *cursor) && ReadInline(*this, context, element, parent, cursor)) return true;
  if (ownerType != XmlElementType_Element) return false;
  RefuseMissing(context,
                CRkValidationException(
                    FormatString(L"Failed to find the required element from namespace [%ls].", GetNamespace().c_str()),
                    parent->GetXPath()),
                *this, parent, *cursor);
  return true;
}

CElementInfoSeqUntpdOpt::CElementInfoSeqUntpdOpt(const wchar_t* name, const wchar_t* ns, int propertyIndex,
                                                 const wchar_t* namespaceConstraint, const wchar_t* targetNamespace)
    : CElementInfo(name, ns, propertyIndex, MemberKind::Wildcard, XmlElementType_Element),
      m_namespaceConstraint(TextOrEmpty(namespaceConstraint)),
      m_targetNamespace(TextOrEmpty(targetNamespace)) {}

CElementInfoSeqUntpdOpt::~CElementInfoSeqUntpdOpt() = default;

bool CElementInfoSeqUntpdOpt::ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                                           CXmlWriter* writer) const {
  return ElementToXmlCls(context, object, writer, /*isOptionalChoice=*/false);
}

bool CElementInfoSeqUntpdOpt::ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object,
                                             CXmlElement* parent, CXmlElement** cursor, const wchar_t* ownerNamespace,
                                             XmlElementType) {
  CXmlElement* current = *cursor;
  const auto element =
      ReadNewWildcard(*this, context, parent, cursor, ownerNamespace, m_namespaceConstraint, m_targetNamespace);
  if (element != nullptr) StoreChild(*this, object, element, *current);
  return true;
}

}  // namespace RkXmlLib16Data
