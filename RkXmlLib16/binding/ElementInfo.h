#ifndef RKXMLLIB16_BINDING_ELEMENTINFO_H
#define RKXMLLIB16_BINDING_ELEMENTINFO_H

#include <atomic>
#include <cstdint>
#include <string>
#include <string_view>

#include "RkXmlLib16/base/Enumerations.h"
#include "RkXmlLib16/base/Export.h"
#include "RkXmlLib16/base/Likely.h"
#include "RkXmlLib16/base/NameToken.h"
#include "RkXmlLib16/base/SmartPtr.h"
#include "RkXmlLib16/document/ElementTree.h"
#include "RkXmlLib16/facets/PrimitiveRestrictions.h"
#include "RkXmlLib16/types/Whitespace.h"

namespace RkXmlLib16 {
class CMetaDataCheck;
class CModelObject;
class CSerializationContext;
class CXmlCollectionBase;
class CXmlElement;
class CXmlGeneratedClass;
class CXmlObjectBase;
class CXmlWriter;
class RkVariant;
}  // namespace RkXmlLib16

namespace RkXmlLib16Data {

using RkXmlLib16::CPrimitiveRestrictions;
using RkXmlLib16::CSerializationContext;
using RkXmlLib16::CSmartPtr;
using RkXmlLib16::CWhitespaceUtils;
using RkXmlLib16::CXmlElement;
using RkXmlLib16::CXmlGeneratedClass;
using RkXmlLib16::CXmlObjectBase;
using RkXmlLib16::CXmlWriter;
using RkXmlLib16::ItemType;
using RkXmlLib16::RkVariant;
using RkXmlLib16::XmlElementType;

// Generated functions that create a child: by class and element name, or by looking at the element itself. They return
// a fresh object of count 0 by counted reference; the second may return null for an element of no known type.
using ClassFactory = CSmartPtr<CXmlObjectBase> (*)(int classId, const wchar_t* elementName);
using AbstractClassFactory = CSmartPtr<CXmlObjectBase> (*)(CXmlElement* element);
// Generated functions between an enumeration and its lexical form.
using EnumToString = const wchar_t* (*)(int);
using EnumFromString = int (*)(const wchar_t*);

// Reads the property that a record called `name` describes. A CRkException of the accessor is wrapped in
// CRkValidationException "Failed to get the property value for [%ls].".
void GetProperty(CXmlGeneratedClass& object, int index, const RkXmlLib16::CNameToken& name, RkVariant& value);

// What a record describes, as far as the reader of a content model must know it.
enum class MemberKind : std::int32_t {
  Single,      // one value or object
  Wildcard,    // an optional wildcard element
  Collection,  // repeated; bounds are checked by the collection
};

// Describes one child element of a generated class: its name, the property that holds it and how to read and write it.
// Records are static: generated code creates them once with new, hands them out in an array and frees them with
// CXmlGeneratedClass::CleanMetaData. What they describe never changes, and what they find out about their class is kept
// by an atomic, so threads share them freely.
//
// The classes are named CElementInfo<Group><Kind><Cardinality>:
//   Group        Seq, Choice, All: the content model that the member belongs to
//   Kind         Cls a generated class, AbsCls one chosen by the element or its xsi:type, Prim an XSD primitive,
//                Enum an enumeration, Untpd a wildcard element
//   Cardinality  Mnd exactly one, Opt zero or one, Col a collection
//
// Reading: *cursor is the child element of `parent` that is next to be read, null at the end; a record moves it over
// what it consumes. `ownerType` is 0 when the owner is read from an element of its own, else the owner is an inline
// group whose absence the enclosing reader judges. The answer false gives the element back to the reader.
class RKXML_EXPORT CElementInfo {
 public:
  // Class, abstract class, collection and wildcard members. Without a member type the record is asked for attributes
  // of its own, see PseudoChildAttributeToXml.
  CElementInfo(const wchar_t* name, const wchar_t* ns, int propertyIndex, MemberKind kind = MemberKind::Single);
  CElementInfo(const wchar_t* name, const wchar_t* ns, int propertyIndex, MemberKind kind, XmlElementType memberType);
  // Members of one class, or of one that the factory chooses by the element.
  CElementInfo(const wchar_t* name, const wchar_t* ns, int propertyIndex, XmlElementType memberType,
               ClassFactory factory, int classId);
  CElementInfo(const wchar_t* name, const wchar_t* ns, int propertyIndex, XmlElementType memberType,
               AbstractClassFactory factory);
  // Enumerations. `defaultValue` may be null.
  CElementInfo(const wchar_t* name, const wchar_t* ns, int propertyIndex, bool nillable, EnumToString enumToString,
               EnumFromString enumFromString, const wchar_t* defaultValue);
  // Primitives. `format` and `defaultValue` may be null; the facets are copied.
  CElementInfo(const wchar_t* name, const wchar_t* ns, int propertyIndex, bool nillable, ItemType type,
               const wchar_t* format, CWhitespaceUtils::WhitespaceRule whitespace, const CPrimitiveRestrictions& facets,
               const wchar_t* defaultValue);
  CElementInfo(const CElementInfo&) = delete;
  CElementInfo& operator=(const CElementInfo&) = delete;
  virtual ~CElementInfo();

  // Writes the member; false when there was nothing to write.
  virtual bool ElementToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                            CXmlWriter* writer) const = 0;
  virtual bool ElementFromXml(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement* parent,
                              CXmlElement** cursor, const wchar_t* ownerNamespace, XmlElementType ownerType) = 0;
  // After an all group has been read: throws CRkValidationException "Failed to find the mandatory element [%ls]." when
  // the member is mandatory, was not `found` and `final` is set; otherwise the answer is whether the group is complete.
  // Records of other groups throw CRkException "Not implemented, should never be called".
  virtual bool Validate(const CSerializationContext& context, const CXmlGeneratedClass* object, bool found,
                        bool final) const;
  // Writes the attributes of an inline group, object or collection, onto the open start tag of its owner. Where it is
  // not overridden, it is not called for records that can have none.
  virtual void PseudoChildAttributeToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                                         CXmlWriter* writer) const;

  const std::wstring& GetElementName() const noexcept { return m_name.GetLocalName(); }
  const std::wstring& GetNamespace() const noexcept { return m_name.GetNamespace(); }
  const RkXmlLib16::CNameToken& GetName() const noexcept { return m_name; }
  int GetPropertyIndex() const noexcept { return m_propertyIndex; }
  MemberKind GetMemberKind() const noexcept { return m_memberKind; }
  // Whether the member stands directly in its owner's element.
  bool IsInlineGroup() const noexcept { return m_memberType == RkXmlLib16::XmlElementType_InlineGroup; }
  // A new object for an inline group; null when the record makes none.
  CSmartPtr<CXmlObjectBase> CreateGroup() const;
  // Whether ElementFromXml would accept that the element is absent and do nothing else, for the element that is next.
  bool IsSkipped(const CSerializationContext& context, const CXmlElement* next) const {
    return Is(kSkipper) && !IsThisElement(context, next);
  }
  // Whether ElementToXml does nothing but WriteValue, if the property has a value.
  bool IsPlainValue() const { return Is(kPlainValue); }
  // For values of CModelObject, which reads and writes their text itself.
  bool IsModelValue() const noexcept { return m_isModelValue; }
  void SetModelValue() noexcept { m_isModelValue = true; }
  // The same where an element without attributes and children is read by its text alone, so that the driver can do it.
  bool IsModelText() const noexcept { return m_isModelText; }
  void SetModelText() noexcept { m_isModelText = true; }
  // For all records of CModelObject.
  void SetOfModel() noexcept { m_isOfModel = true; }
  // Writes an element with a text that was checked.
  inline void WriteText(const CSerializationContext& context, std::wstring_view text, CXmlWriter* writer) const;
  // Whether PseudoChildAttributeToXml may have something to write.
  bool MayHaveAttributes() const { return Is(kWithAttributes); }

  // Whether the element has the record's local name and, unless the context ignores namespaces, its namespace.
  bool IsThisElement(const CSerializationContext& context, const CXmlElement* element) const {
    if (element == nullptr) return false;
    const RkXmlLib16::CXmlExpandedName& name = *element->GetNameRef();
    return name.IsKnownAs(m_name) || (name.MayBe(m_name) && CompareName(context, *element));
  }
  // Throws CRkException when the value breaks a facet.
  void CheckRestriction(const RkVariant& value) const;

  // The property of `object`. A CRkException of the accessor is wrapped in CRkValidationException
  // "Failed to get the property value for [%ls]." or "Failed to set the property value." with the path of `element`.
  void InvokePropertyGet(CXmlGeneratedClass* object, RkVariant& value) const;
  void ReadProperty(const CXmlGeneratedClass* object, RkVariant& value) const;
  void InvokePropertySet(CXmlGeneratedClass* object, RkVariant& value, const CXmlElement& element) const;
  // The same for a property that holds an object, which may be null and is held meanwhile.
  void InvokeObjectSet(CXmlGeneratedClass* object, CXmlObjectBase* child, const CXmlElement& element) const;

  // Write a member of the kind; false when there was nothing to write.
  bool ElementToXmlCol(const CSerializationContext& context, const CXmlGeneratedClass* object,
                       CXmlWriter* writer) const;
  // The same with the collection at hand; null writes nothing.
  bool WriteCollection(const CSerializationContext& context, const RkXmlLib16::CXmlCollectionBase* collection,
                       CXmlWriter* writer) const;
  bool ElementToXmlCls(const CSerializationContext& context, const CXmlGeneratedClass* object, CXmlWriter* writer,
                       bool isOptionalChoice) const;
  bool ElementToXmlPrim(const CSerializationContext& context, const CXmlGeneratedClass* object,
                        CXmlWriter* writer) const;
  // The same with the valid value at hand, which writes it.
  [[gnu::noinline]] bool WriteValue(const CSerializationContext& context, const RkVariant& value,
                                    CXmlWriter* writer) const;
  bool ElementToXmlEnum(const CSerializationContext& context, const CXmlGeneratedClass* object, CXmlWriter* writer,
                        EnumToString toString) const;
  // Read the element under the cursor, which the caller has matched, and move the cursor to its next sibling.
  void ElementFromXmlPrim(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement** cursor);
  void ElementFromXmlEnum(const CSerializationContext& context, CXmlGeneratedClass* object, CXmlElement** cursor);

  // Forward to the child's virtual operations.
  void AttributesToXml_Int(const CXmlObjectBase* child, CXmlWriter* writer, const CSerializationContext& context) const;
  CXmlElement* FromXml_Int(CXmlObjectBase* child, CXmlElement* parent, CXmlElement* current,
                           const CSerializationContext& context, bool isOptionalChoice);

  // The namespace in which a wildcard element is written: `defaultNs` for "##any", `targetNs` for "##targetNamespace",
  // none for "##local"; for "##other" none, or "DefaultNamespace" when `defaultNs` is empty. Of a list that begins with
  // "##" the first word counts; URIs give none.
  static std::wstring GetAnyDefaultNamespace(const wchar_t* constraint, const wchar_t* defaultNs,
                                             const wchar_t* targetNs);

 protected:
  // For records that override ElementFromXml, and still do nothing but accept where their element is absent.
  void SetReadsOnlyItsElement() noexcept { m_readsOnlyItsElement = true; }
  EnumToString GetEnumToString() const noexcept { return m_enumToString; }
  ClassFactory GetFactory() const noexcept { return m_factory; }
  int GetClassId() const noexcept { return m_classId; }
  AbstractClassFactory GetAbstractFactory() const noexcept { return m_abstractFactory; }

 private:
  friend class RkXmlLib16::CMetaDataCheck;
  // What the property of the record holds.
  enum class Content : std::uint8_t { Object, ObjectOfFactory, ObjectOfAbstractFactory, Enumeration, Primitive };
  // What the record's class does, which may override that of a class of the library. Found out when a record is first
  // asked, and kept.
  enum Facts : std::uint8_t { kUnknown = 0, kKnown = 1, kSkipper = 2, kPlainValue = 4, kWithAttributes = 8 };
  bool Is(Facts fact) const {
    const std::uint8_t facts = m_facts.load(std::memory_order_relaxed);
    return ((RKXML_LIKELY(facts != kUnknown) ? facts : FindFacts()) & fact) != 0;
  }
  [[gnu::cold, gnu::noinline]] std::uint8_t FindFacts() const;
  bool CompareName(const CSerializationContext& context, const CXmlElement& element) const;
  template <class Set>
  static void InvokeSet(const CXmlElement& element, Set&& set);
  bool IsDefault(std::wstring_view text) const noexcept { return !m_defaultValue.empty() && text == m_defaultValue; }
  inline void WriteText(const CSerializationContext& context, CXmlWriter* writer, std::wstring_view text, ItemType type,
                        bool isCanonical) const;
  [[gnu::cold, gnu::noinline]] void WriteEmpty(CXmlWriter* writer) const;
  bool WriteNil(CXmlWriter* writer) const;
  CSmartPtr<CXmlObjectBase> GetChild(const CXmlGeneratedClass& object, CXmlWriter& writer) const;
  // Looks through the attributes of a primitive element; true for xsi:nil="true".
  bool ReadNil(const CSerializationContext& context, const CXmlElement& element) const;

  RkXmlLib16::CNameToken m_name;
  int m_propertyIndex;
  CPrimitiveRestrictions m_facets;
  ItemType m_itemType = RkXmlLib16::ItemType_none;
  std::wstring m_format;
  CWhitespaceUtils::WhitespaceRule m_whitespace = CWhitespaceUtils::none;
  std::wstring m_defaultValue;
  bool m_nillable = false;
  EnumToString m_enumToString = nullptr;
  EnumFromString m_enumFromString = nullptr;
  ClassFactory m_factory = nullptr;
  int m_classId = 0;
  AbstractClassFactory m_abstractFactory = nullptr;
  Content m_content = Content::Object;
  bool m_hasFacets = false;
  bool m_mayHaveAttributes = false;
  bool m_readsOnlyItsElement = false;
  bool m_isModelValue = false;
  bool m_isModelText = false;
  bool m_isOfModel = false;
  mutable std::atomic<std::uint8_t> m_facts{kUnknown};
  XmlElementType m_memberType = RkXmlLib16::XmlElementType_Element;
  MemberKind m_memberKind = MemberKind::Single;
};

}  // namespace RkXmlLib16Data

#endif
