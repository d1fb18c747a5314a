#include "RkXmlLib16/binding/ElementInfoAll.h"

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/base/internal/TextOrEmpty.h"
#include "RkXmlLib16/binding/internal/ElementRules.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/document/ElementTree.h"

namespace RkXmlLib16Data {

using namespace RkXmlLib16;

namespace {

// `found`; throws when a mandatory member is missing for good.
bool RequireFound(const CElementInfo& info, bool found, bool final) {
  if (!found && final)
    throw CRkValidationException(
        FormatString(L"Failed to find the mandatory element [%ls].", info.GetElementName().c_str()), std::wstring());
  return found;
}

// Lets a new child read and stores it when it consumed something; whether it did.
bool ReadAndStore(CElementInfo& info, const CSerializationContext& context, CXmlGeneratedClass* object,
                  const CSmartPtr<CXmlObjectBase>& child, CXmlElement* parent, CXmlElement** cursor) {
  if (child == nullptr) return false;
  const CXmlElement& element = **cursor;
  if (!info.IsInlineGroup())
    ReadOwnElement(info, context, child, cursor);
  else if (!ReadInline(info, context, child, parent, cursor))
    return false;
  StoreChild(info, object, child, element);
  return true;
}

}  // namespace

CElementInfoAllCol::CElementInfoAllCol(const wchar_t* name, const wchar_t* ns, int propertyIndex,
                                       XmlElementType memberType)
    : CElementInfo(name, ns, propertyIndex, MemberKind::Collection, memberType) {}

CElementInfoAllCol::~CElementInfoAllCol() = default;

bool CElementInfoAllCol::ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                                      CXmlWriter* writer) const {
  return CheckedColToXml(*this, context, object, writer);
}

bool CElementInfoAllCol::ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object,
                                        CXmlElement* parent, CXmlElement** cursor, const wchar_t*, XmlElementType) {
  const auto collection = GetCollection(*this, object);
  if (collection != nullptr) *cursor = FromXml_Int(collection, parent, *cursor, context, /*isOptionalChoice=*/false);
  return false;
}

CElementInfoAllClsCol::CElementInfoAllClsCol(const wchar_t* name, const wchar_t* ns, int propertyIndex,
                                             XmlElementType memberType)
    : CElementInfoAllCol(name, ns, propertyIndex, memberType) {}

CElementInfoAllClsCol::~CElementInfoAllClsCol() = default;

CElementInfoAllAbsClsCol::CElementInfoAllAbsClsCol(const wchar_t* name, const wchar_t* ns, int propertyIndex,
                                                   XmlElementType memberType)
    : CElementInfoAllCol(name, ns, propertyIndex, memberType) {}

CElementInfoAllAbsClsCol::~CElementInfoAllAbsClsCol() = default;

CElementInfoAllPrimCol::CElementInfoAllPrimCol(const wchar_t* name, const wchar_t* ns, int propertyIndex)
    : CElementInfoAllCol(name, ns, propertyIndex) {}

CElementInfoAllPrimCol::~CElementInfoAllPrimCol() = default;

CElementInfoAllEnumCol::CElementInfoAllEnumCol(const wchar_t* name, const wchar_t* ns, int propertyIndex)
    : CElementInfo(name, ns, propertyIndex, MemberKind::Collection, XmlElementType_Element) {}

CElementInfoAllEnumCol::~CElementInfoAllEnumCol() = default;

CElementInfoAllUntpdCol::CElementInfoAllUntpdCol(const wchar_t* name, const wchar_t* ns, int propertyIndex)
    : CElementInfoAllCol(name, ns, propertyIndex) {}

CElementInfoAllUntpdCol::~CElementInfoAllUntpdCol() = default;

CElementInfoAllClsMnd::CElementInfoAllClsMnd(const wchar_t* name, const wchar_t* ns, int propertyIndex,
                                             XmlElementType memberType, ClassFactory factory, int classId,
                                             bool required)
    : CElementInfo(name, ns, propertyIndex, memberType, factory, classId), m_required(required) {}

CElementInfoAllClsMnd::~CElementInfoAllClsMnd() = default;

bool CElementInfoAllClsMnd::ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                                         CXmlWriter* writer) const {
  return RequireWritten(*this, ElementToXmlCls(context, object, writer, /*isOptionalChoice=*/false));
}

bool CElementInfoAllClsMnd::ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object,
                                           CXmlElement* parent, CXmlElement** cursor, const wchar_t*, XmlElementType) {
  const bool inlineGroup = IsInlineGroup();
  if (!inlineGroup && !IsThisElement(context, *cursor)) return false;
  const auto child = GetOrCreateChild(*this, object, GetFactory(), GetClassId(), inlineGroup ? *parent : **cursor);
  if (child == nullptr) return false;
  if (inlineGroup) return ReadInline(*this, context, child, parent, cursor);
  ReadOwnElement(*this, context, child, cursor);
  return true;
}

bool CElementInfoAllClsMnd::Validate(const CSerializationContext&, const CXmlGeneratedClass*, bool found,
                                     bool final) const {
  if (!m_required && !IsInlineGroup()) return true;
  return RequireFound(*this, found, final);
}

CElementInfoAllClsOpt::CElementInfoAllClsOpt(const wchar_t* name, const wchar_t* ns, int propertyIndex,
                                             XmlElementType memberType, ClassFactory factory, int classId)
    : CElementInfo(name, ns, propertyIndex, memberType, factory, classId) {}

CElementInfoAllClsOpt::~CElementInfoAllClsOpt() = default;

bool CElementInfoAllClsOpt::ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                                         CXmlWriter* writer) const {
  return ElementToXmlCls(context, object, writer, /*isOptionalChoice=*/false);
}

bool CElementInfoAllClsOpt::ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object,
                                           CXmlElement* parent, CXmlElement** cursor, const wchar_t*, XmlElementType) {
  if (IsInlineGroup() ? *cursor == nullptr : !IsThisElement(context, *cursor)) return false;
  return ReadAndStore(*this, context, object, CreateChild(*this, GetFactory(), GetClassId()), parent, cursor);
}

bool CElementInfoAllClsOpt::Validate(const CSerializationContext&, const CXmlGeneratedClass*, bool, bool) const {
  return true;
}

CElementInfoAllAbsClsMnd::CElementInfoAllAbsClsMnd(const wchar_t* name, const wchar_t* ns, int propertyIndex,
                                                   XmlElementType memberType, AbstractClassFactory factory, int extra)
    : CElementInfo(name, ns, propertyIndex, memberType, factory), m_extra(extra) {}

CElementInfoAllAbsClsMnd::~CElementInfoAllAbsClsMnd() = default;

bool CElementInfoAllAbsClsMnd::ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                                            CXmlWriter* writer) const {
  return RequireWritten(*this, ElementToXmlCls(context, object, writer, /*isOptionalChoice=*/false));
}

bool CElementInfoAllAbsClsMnd::ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object,
                                              CXmlElement* parent, CXmlElement** cursor, const wchar_t*,
                                              XmlElementType) {
  if (IsInlineGroup() ? *cursor == nullptr : !IsThisElement(context, *cursor)) return false;
  return ReadAndStore(*this, context, object, CreateAbstractChild(GetAbstractFactory(), *cursor), parent, cursor);
}

bool CElementInfoAllAbsClsMnd::Validate(const CSerializationContext&, const CXmlGeneratedClass*, bool found,
                                        bool final) const {
  return RequireFound(*this, found, final);
}

CElementInfoAllAbsClsOpt::CElementInfoAllAbsClsOpt(const wchar_t* name, const wchar_t* ns, int propertyIndex,
                                                   XmlElementType memberType, AbstractClassFactory factory)
    : CElementInfo(name, ns, propertyIndex, memberType, factory) {}

CElementInfoAllAbsClsOpt::~CElementInfoAllAbsClsOpt() = default;

bool CElementInfoAllAbsClsOpt::ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                                            CXmlWriter* writer) const {
  return ElementToXmlCls(context, object, writer, /*isOptionalChoice=*/false);
}

bool CElementInfoAllAbsClsOpt::ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object,
                                              CXmlElement* parent, CXmlElement** cursor, const wchar_t*,
                                              XmlElementType) {
  if (IsInlineGroup() ? *cursor == nullptr : !IsThisElement(context, *cursor)) return false;
  return ReadAndStore(*this, context, object, CreateAbstractChild(GetAbstractFactory(), *cursor), parent, cursor);
}

bool CElementInfoAllAbsClsOpt::Validate(const CSerializationContext&, const CXmlGeneratedClass*, bool, bool) const {
  return true;
}

CElementInfoAllPrimMnd::CElementInfoAllPrimMnd(const wchar_t* name, const wchar_t* ns, int propertyIndex, bool nillable,
                                               ItemType type, const wchar_t* format,
                                               CWhitespaceUtils::WhitespaceRule whitespace,
                                               const CPrimitiveRestrictions& facets, const wchar_t* defaultValue)
    : CElementInfo(name, ns, propertyIndex, nillable, type, format, whitespace, facets, defaultValue) {}

CElementInfoAllPrimMnd::~CElementInfoAllPrimMnd() = default;

bool CElementInfoAllPrimMnd::ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                                          CXmlWriter* writer) const {
  return RequireWritten(*this, ElementToXmlPrim(context, object, writer));
}

bool CElementInfoAllPrimMnd::ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object,
                                            CXmlElement*, CXmlElement** cursor, const wchar_t*, XmlElementType) {
  if (!IsThisElement(context, *cursor)) return false;
  ElementFromXmlPrim(context, object, cursor);
  return true;
}

bool CElementInfoAllPrimMnd::Validate(const CSerializationContext&, const CXmlGeneratedClass*, bool found,
                                      bool final) const {
  return RequireFound(*this, found, final);
}

CElementInfoAllPrimOpt::CElementInfoAllPrimOpt(const wchar_t* name, const wchar_t* ns, int propertyIndex, bool nillable,
                                               ItemType type, const wchar_t* format,
                                               CWhitespaceUtils::WhitespaceRule whitespace,
                                               const CPrimitiveRestrictions& facets, const wchar_t* defaultValue)
    : CElementInfo(name, ns, propertyIndex, nillable, type, format, whitespace, facets, defaultValue) {}

CElementInfoAllPrimOpt::~CElementInfoAllPrimOpt() = default;

bool CElementInfoAllPrimOpt::ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                                          CXmlWriter* writer) const {
  return ElementToXmlPrim(context, object, writer);
}

bool CElementInfoAllPrimOpt::ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object,
                                            CXmlElement*, CXmlElement** cursor, const wchar_t*, XmlElementType) {
  if (!IsThisElement(context, *cursor)) return false;
  ElementFromXmlPrim(context, object, cursor);
  return true;
}

bool CElementInfoAllPrimOpt::Validate(const CSerializationContext&, const CXmlGeneratedClass*, bool, bool) const {
  return true;
}

CElementInfoAllEnumMnd::CElementInfoAllEnumMnd(const wchar_t* name, const wchar_t* ns, int propertyIndex, bool nillable,
                                               EnumToString enumToString, EnumFromString enumFromString,
                                               const wchar_t* defaultValue)
    : CElementInfo(name, ns, propertyIndex, nillable, enumToString, enumFromString, defaultValue) {}

CElementInfoAllEnumMnd::~CElementInfoAllEnumMnd() = default;

bool CElementInfoAllEnumMnd::ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                                          CXmlWriter* writer) const {
  return RequireWritten(*this, ElementToXmlEnum(context, object, writer, GetEnumToString()));
}

bool CElementInfoAllEnumMnd::ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object,
                                            CXmlElement*, CXmlElement** cursor, const wchar_t*, XmlElementType) {
  if (!IsThisElement(context, *cursor)) return false;
  ElementFromXmlEnum(context, object, cursor);
  return true;
}

bool CElementInfoAllEnumMnd::Validate(const CSerializationContext&, const CXmlGeneratedClass*, bool found,
                                      bool final) const {
  return RequireFound(*this, found, final);
}

CElementInfoAllEnumOpt::CElementInfoAllEnumOpt(const wchar_t* name, const wchar_t* ns, int propertyIndex, bool nillable,
                                               EnumToString enumToString, EnumFromString enumFromString,
                                               const wchar_t* defaultValue)
    : CElementInfo(name, ns, propertyIndex, nillable, enumToString, enumFromString, defaultValue) {}

CElementInfoAllEnumOpt::~CElementInfoAllEnumOpt() = default;

bool CElementInfoAllEnumOpt::ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                                          CXmlWriter* writer) const {
  return ElementToXmlEnum(context, object, writer, GetEnumToString());
}

bool CElementInfoAllEnumOpt::ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object,
                                            CXmlElement*, CXmlElement** cursor, const wchar_t*, XmlElementType) {
  if (!IsThisElement(context, *cursor)) return false;
  ElementFromXmlEnum(context, object, cursor);
  return true;
}

bool CElementInfoAllEnumOpt::Validate(const CSerializationContext&, const CXmlGeneratedClass*, bool, bool) const {
  return true;
}

CElementInfoAllUntpdMnd::CElementInfoAllUntpdMnd(const wchar_t* name, const wchar_t* ns, int propertyIndex,
                                                 const wchar_t* namespaceConstraint, const wchar_t* targetNamespace)
    : CElementInfo(name, ns, propertyIndex, MemberKind::Single, XmlElementType_Element),
      m_namespaceConstraint(TextOrEmpty(namespaceConstraint)),
      m_targetNamespace(TextOrEmpty(targetNamespace)) {}

CElementInfoAllUntpdMnd::~CElementInfoAllUntpdMnd() = default;

bool CElementInfoAllUntpdMnd::ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                                           CXmlWriter* writer) const {
  return RequireWritten(*this, ElementToXmlCls(context, object, writer, /*isOptionalChoice=*/false));
}

bool CElementInfoAllUntpdMnd::ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object,
                                             CXmlElement* parent, CXmlElement** cursor, const wchar_t*,
                                             XmlElementType) {
  if (*cursor == nullptr || !AcceptsName(*this, *cursor)) return false;
  const auto element = GetChild(*this, object);
  return element != nullptr && ReadInline(*this, context, element, parent, cursor);
}

bool CElementInfoAllUntpdMnd::Validate(const CSerializationContext&, const CXmlGeneratedClass*, bool found,
                                       bool final) const {
  return RequireFound(*this, found, final);
}

CElementInfoAllUntpdOpt::CElementInfoAllUntpdOpt(const wchar_t* name, const wchar_t* ns, int propertyIndex,
                                                 const wchar_t* namespaceConstraint, const wchar_t* targetNamespace)
    : CElementInfo(name, ns, propertyIndex, MemberKind::Wildcard, XmlElementType_Element),
      m_namespaceConstraint(TextOrEmpty(namespaceConstraint)),
      m_targetNamespace(TextOrEmpty(targetNamespace)) {}

CElementInfoAllUntpdOpt::~CElementInfoAllUntpdOpt() = default;

bool CElementInfoAllUntpdOpt::ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                                           CXmlWriter* writer) const {
  return ElementToXmlCls(context, object, writer, /*isOptionalChoice=*/false);
}

bool CElementInfoAllUntpdOpt::ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object,
                                             CXmlElement* parent, CXmlElement** cursor, const wchar_t* ownerNamespace,
                                             XmlElementType) {
  CXmlElement* current = *cursor;
  const auto element =
      ReadNewWildcard(*this, context, parent, cursor, ownerNamespace, m_namespaceConstraint, m_targetNamespace);
  if (element != nullptr) StoreChild(*this, object, element, *current);
  return element != nullptr;
}

bool CElementInfoAllUntpdOpt::Validate(const CSerializationContext&, const CXmlGeneratedClass*, bool, bool) const {
  return true;
}

}  // namespace RkXmlLib16Data
