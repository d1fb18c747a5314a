#ifndef RKXMLLIB16_BINDING_ELEMENTINFOKINDS_H
#define RKXMLLIB16_BINDING_ELEMENTINFOKINDS_H

#include <cstdint>
#include <string>

#include "RkXmlLib16/binding/ElementInfo.h"
#include "RkXmlLib16/object/XmlObjectBase.h"

// What the records are made of. A record is named after its group, its kind of member and how often the member occurs,
// and derived from what its name says: CElementInfoSeqPrimOpt from CElementInfoSeq<CElementInfoPrim, Cardinality::Opt>.
// The kinds, here, hold what a member needs in any group. The templates CElementInfoSeq, CElementInfoChoice and
// CElementInfoAll hold the rules of their group, and a table behind each of them lists its records.
namespace RkXmlLib16Data {

enum class RKXML_EXPORT Cardinality : std::int32_t { Mnd, Opt, Col };

// In the kinds, Write writes the member (false: there was nothing to write), Read reads the element under the cursor
// and moves on, and Create makes the object for an element (null: none).

class RKXML_EXPORT CElementInfoCol : public CElementInfo {
 public:
  CElementInfoCol(const wchar_t* name, const wchar_t* ns, int propertyIndex,
                  XmlElementType memberType = RkXmlLib16::XmlElementType_Element)
      : CElementInfo(name, ns, propertyIndex, MemberKind::Collection, memberType) {}
  bool Write(const CSerializationContext& context, const CXmlGeneratedClass* object, CXmlWriter* writer) const {
    return ElementToXmlCol(context, object, writer);
  }
};

class RKXML_EXPORT CElementInfoCls : public CElementInfo {
 public:
  CElementInfoCls(const wchar_t* name, const wchar_t* ns, int propertyIndex, XmlElementType memberType,
                  ClassFactory factory, int classId)
      : CElementInfo(name, ns, propertyIndex, memberType, factory, classId) {}
  bool Write(const CSerializationContext& context, const CXmlGeneratedClass* object, CXmlWriter* writer) const {
    return ElementToXmlCls(context, object, writer, /*isOptionalChoice=*/false);
  }
  CSmartPtr<CXmlObjectBase> Create(CXmlElement*) const {
    return GetFactory() != nullptr ? GetFactory()(GetClassId(), GetElementName().c_str()) : nullptr;
  }
};

// `required`: an inline group must consume something; in an all group, the element must be there.
class RKXML_EXPORT CElementInfoClsMnd : public CElementInfoCls {
 public:
  CElementInfoClsMnd(const wchar_t* name, const wchar_t* ns, int propertyIndex, XmlElementType memberType,
                     ClassFactory factory, int classId, bool required)
      : CElementInfoCls(name, ns, propertyIndex, memberType, factory, classId), m_required(required) {}
  bool IsRequired() const noexcept { return m_required; }

 private:
  bool m_required;
};

class RKXML_EXPORT CElementInfoAbsCls : public CElementInfo {
 public:
  CElementInfoAbsCls(const wchar_t* name, const wchar_t* ns, int propertyIndex, XmlElementType memberType,
                     AbstractClassFactory factory)
      : CElementInfo(name, ns, propertyIndex, memberType, factory) {}
  bool Write(const CSerializationContext& context, const CXmlGeneratedClass* object, CXmlWriter* writer) const {
    return ElementToXmlCls(context, object, writer, /*isOptionalChoice=*/false);
  }
  CSmartPtr<CXmlObjectBase> Create(CXmlElement* element) const {
    return GetAbstractFactory() != nullptr ? GetAbstractFactory()(element) : nullptr;
  }
};

class RKXML_EXPORT CElementInfoPrim : public CElementInfo {
 public:
  CElementInfoPrim(const wchar_t* name, const wchar_t* ns, int propertyIndex, bool nillable, ItemType type,
                   const wchar_t* format, CWhitespaceUtils::WhitespaceRule whitespace,
                   const CPrimitiveRestrictions& facets, const wchar_t* defaultValue)
      : CElementInfo(name, ns, propertyIndex, nillable, type, format, whitespace, facets, defaultValue) {}
  bool Write(const CSerializationContext& context, const CXmlGeneratedClass* object, CXmlWriter* writer) const {
    return ElementToXmlPrim(context, object, writer);
  }
  void Read(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement** cursor) {
    ElementFromXmlPrim(context, object, cursor);
  }
};

class RKXML_EXPORT CElementInfoEnum : public CElementInfo {
 public:
  CElementInfoEnum(const wchar_t* name, const wchar_t* ns, int propertyIndex, bool nillable, EnumToString enumToString,
                   EnumFromString enumFromString, const wchar_t* defaultValue)
      : CElementInfo(name, ns, propertyIndex, nillable, enumToString, enumFromString, defaultValue) {}
  bool Write(const CSerializationContext& context, const CXmlGeneratedClass* object, CXmlWriter* writer) const {
    return ElementToXmlEnum(context, object, writer, GetEnumToString());
  }
  void Read(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement** cursor) {
    ElementFromXmlEnum(context, object, cursor);
  }
};

// A wildcard element, with the namespaces that it admits.
class RKXML_EXPORT CElementInfoUntpd : public CElementInfo {
 public:
  // The constraint as GetAnyDefaultNamespace takes it; null for none.
  CElementInfoUntpd(const wchar_t* name, const wchar_t* ns, int propertyIndex, const wchar_t* namespaceConstraint,
                    const wchar_t* targetNamespace)
      : CElementInfoUntpd(name, ns, propertyIndex, namespaceConstraint, targetNamespace, MemberKind::Wildcard) {}
  bool Write(const CSerializationContext& context, const CXmlGeneratedClass* object, CXmlWriter* writer) const {
    return ElementToXmlCls(context, object, writer, /*isOptionalChoice=*/false);
  }
  const std::wstring& GetNamespaceConstraint() const noexcept { return m_namespaceConstraint; }
  const std::wstring& GetTargetNamespace() const noexcept { return m_targetNamespace; }

 protected:
  CElementInfoUntpd(const wchar_t* name, const wchar_t* ns, int propertyIndex, const wchar_t* namespaceConstraint,
                    const wchar_t* targetNamespace, MemberKind kind)
      : CElementInfo(name, ns, propertyIndex, kind, RkXmlLib16::XmlElementType_Element),
        m_namespaceConstraint(namespaceConstraint != nullptr ? namespaceConstraint : L""),
        m_targetNamespace(targetNamespace != nullptr ? targetNamespace : L"") {}

 private:
  std::wstring m_namespaceConstraint;
  std::wstring m_targetNamespace;
};

class RKXML_EXPORT CElementInfoUntpdMnd : public CElementInfoUntpd {
 public:
  CElementInfoUntpdMnd(const wchar_t* name, const wchar_t* ns, int propertyIndex, const wchar_t* namespaceConstraint,
                       const wchar_t* targetNamespace)
      : CElementInfoUntpd(name, ns, propertyIndex, namespaceConstraint, targetNamespace, MemberKind::Single) {}
};

}  // namespace RkXmlLib16Data

// For the rows of a table: declare a record, derived from what follows its name, and define it in the library.
#define RKXML_DECLARE_RECORD(Name, ...)          \
  class RKXML_EXPORT Name : public __VA_ARGS__ { \
    using Name##Base = __VA_ARGS__;              \
                                                 \
   public:                                       \
    using Name##Base::Name##Base;                \
    ~Name() override;                            \
  };
#define RKXML_DEFINE_RECORD(Name, ...) Name::~Name() = default;
#define RKXML_DECLARE_RECORD_BASE(Name, ...) extern template class __VA_ARGS__;
#define RKXML_DEFINE_RECORD_BASE(Name, ...) template class __VA_ARGS__;
#define RKXML_NO_RECORD_BASE(Name, ...)

#endif
