#include "RkXmlLib16/binding/ElementInfo.h"

#include <string_view>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/base/internal/Overrider.h"
#include "RkXmlLib16/base/internal/TextOrEmpty.h"
#include "RkXmlLib16/binding/ElementInfoSeq.h"
#include "RkXmlLib16/binding/GeneratedClass.h"
#include "RkXmlLib16/binding/ModelObject.h"
#include "RkXmlLib16/binding/internal/NilValue.h"
#include "RkXmlLib16/binding/internal/ReadingValue.h"
#include "RkXmlLib16/binding/internal/RecordText.h"
#include "RkXmlLib16/collections/CollectionBase.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/document/ElementTree.h"
#include "RkXmlLib16/document/XmlWriter.h"
#include "RkXmlLib16/document/internal/NodeText.h"
#include "RkXmlLib16/document/internal/Refusal.h"
#include "RkXmlLib16/facets/FacetChecks.h"
#include "RkXmlLib16/object/Variant.h"

namespace RkXmlLib16Data {

using namespace RkXmlLib16;

namespace {

// Tells the writer by what name the object is written, as long as it is.
class ExpectedName {
 public:
  ExpectedName(CXmlWriter& writer, const CNameToken& name) : m_writer(writer) { writer.SetExpectedName(&name); }
  ExpectedName(const ExpectedName&) = delete;
  ExpectedName& operator=(const ExpectedName&) = delete;
  ~ExpectedName() { m_writer.SetExpectedName(nullptr); }

 private:
  CXmlWriter& m_writer;
};

}  // namespace

CElementInfo::CElementInfo(const wchar_t* name, const wchar_t* ns, int propertyIndex, MemberKind kind)
    : m_name(TextOrEmpty(name), TextOrEmpty(ns)),
      m_propertyIndex(propertyIndex),
      m_mayHaveAttributes(true),
      m_memberKind(kind) {}

CElementInfo::CElementInfo(const wchar_t* name, const wchar_t* ns, int propertyIndex, MemberKind kind,
                           XmlElementType memberType)
    : m_name(TextOrEmpty(name), TextOrEmpty(ns)),
      m_propertyIndex(propertyIndex),
      m_mayHaveAttributes(memberType == XmlElementType_InlineGroup),
      m_memberType(memberType),
      m_memberKind(kind) {}

CElementInfo::CElementInfo(const wchar_t* name, const wchar_t* ns, int propertyIndex, XmlElementType memberType,
                           ClassFactory factory, int classId)
    : CElementInfo(name, ns, propertyIndex, MemberKind::Single, memberType) {
  m_factory = factory;
  m_classId = classId;
  m_content = Content::ObjectOfFactory;
}

CElementInfo::CElementInfo(const wchar_t* name, const wchar_t* ns, int propertyIndex, XmlElementType memberType,
                           AbstractClassFactory factory)
    : CElementInfo(name, ns, propertyIndex, MemberKind::Single, memberType) {
  m_abstractFactory = factory;
  m_content = Content::ObjectOfAbstractFactory;
}

CElementInfo::CElementInfo(const wchar_t* name, const wchar_t* ns, int propertyIndex, bool nillable,
                           EnumToString enumToString, EnumFromString enumFromString, const wchar_t* defaultValue)
    : m_name(TextOrEmpty(name), TextOrEmpty(ns)),
      m_propertyIndex(propertyIndex),
      m_defaultValue(TextOrEmpty(defaultValue)),
      m_nillable(nillable),
      m_enumToString(enumToString),
      m_enumFromString(enumFromString),
      m_content(Content::Enumeration) {}

CElementInfo::CElementInfo(const wchar_t* name, const wchar_t* ns, int propertyIndex, bool nillable, ItemType type,
                           const wchar_t* format, CWhitespaceUtils::WhitespaceRule whitespace,
                           const CPrimitiveRestrictions& facets, const wchar_t* defaultValue)
    : m_name(TextOrEmpty(name), TextOrEmpty(ns)),
      m_propertyIndex(propertyIndex),
      m_facets(facets),
      m_itemType(type),
      m_format(TextOrEmpty(format)),
      m_whitespace(whitespace),
      m_defaultValue(TextOrEmpty(defaultValue)),
      m_nillable(nillable),
      m_content(Content::Primitive),
      m_hasFacets(true) {}

CElementInfo::~CElementInfo() = default;

bool CElementInfo::Validate(const CSerializationContext&, const CXmlGeneratedClass*, bool, bool) const {
  throw CRkException(L"Not implemented, should never be called");
}

void CElementInfo::PseudoChildAttributeToXml(const CSerializationContext& context, const CXmlGeneratedClass* object,
                                             CXmlWriter* writer) const {
  if (!IsInlineGroup()) return;
  RkVariant value;
  ReadProperty(object, value);
  const CXmlObjectBase* child = value.PeekXmlObject();
  if (child == nullptr) child = value.PeekXmlCollection();
  if (child != nullptr) AttributesToXml_Int(child, writer, context);
}

std::uint8_t CElementInfo::FindFacts() const {
  struct Functions {
    explicit Functions(const CElementInfo& record)
        : read(FindOverrider(record, &CElementInfo::ElementFromXml)),
          write(FindOverrider(record, &CElementInfo::ElementToXml)),
          writeAttributes(FindOverrider(record, &CElementInfo::PseudoChildAttributeToXml)) {}
    const void *read, *write, *writeAttributes;
  };
  static const Functions value(CElementInfoSeqPrimOpt(L"", L"", 0, false, ItemType_string, nullptr,
                                                      CWhitespaceUtils::none, CPrimitiveRestrictions(), nullptr));
  static const Functions enumeration(CElementInfoSeqEnumOpt(L"", L"", 0, false, nullptr, nullptr, nullptr));
  static const Functions object(CElementInfoSeqClsOpt(L"", L"", 0, XmlElementType_Element, nullptr, 0));
  static const Functions abstractObject(CElementInfoSeqAbsClsOpt(L"", L"", 0, XmlElementType_Element, nullptr));

  const Functions own(*this);
  const bool isSkipper = m_readsOnlyItsElement || own.read == value.read || own.read == enumeration.read ||
                         own.read == abstractObject.read || (own.read == object.read && !IsInlineGroup());
  const bool mayHaveAttributes = m_mayHaveAttributes || own.writeAttributes != value.writeAttributes;
  const int facts = kKnown | (isSkipper ? kSkipper : 0) | (own.write == value.write ? kPlainValue : 0) |
                    (mayHaveAttributes ? kWithAttributes : 0);
  m_facts.store(static_cast<std::uint8_t>(facts), std::memory_order_relaxed);
  return static_cast<std::uint8_t>(facts);
}

bool CElementInfo::CompareName(const CSerializationContext& context, const CXmlElement& element) const {
  return element.GetNameRef()->Is(m_name) ||
         (context.GetIgnoreNamespaces() && element.GetLocalName() == GetElementName());
}

CSmartPtr<CXmlObjectBase> CElementInfo::CreateGroup() const {
  return IsInlineGroup() && m_factory != nullptr ? m_factory(m_classId, GetElementName().c_str()) : nullptr;
}

void CElementInfo::CheckRestriction(const RkVariant& value) const {
  if (!m_hasFacets) throw CRkException(L"Cannot CheckRestriction for type: " + value.GetType());
  CXmlObjectHelper::CheckRestriction(GetElementName().c_str(), value, m_itemType, m_facets);
}

void GetProperty(CXmlGeneratedClass& object, int index, const CNameToken& name, RkVariant& value) {
  try {
    object.AccessProperty(index, /*get=*/true, value);
  } catch (const CRkException& e) {
    throw CRkValidationException(
        FormatString(L"Failed to get the property value for [%ls].", name.GetLocalName().c_str()), std::wstring(), e);
  }
}

void CElementInfo::InvokePropertyGet(CXmlGeneratedClass* object, RkVariant& value) const {
  GetProperty(*object, m_propertyIndex, m_name, value);
}

void CElementInfo::ReadProperty(const CXmlGeneratedClass* object, RkVariant& value) const {
  InvokePropertyGet(const_cast<CXmlGeneratedClass*>(object), value);  // a getter changes nothing
}

template <class Set>
inline void CElementInfo::InvokeSet(const CXmlElement& element, Set&& set) {
  try {
    set();
  } catch (const CRkException& e) {
    throw CRkValidationException(L"Failed to set the property value.", element.GetXPath(), e);
  }
}

void CElementInfo::InvokePropertySet(CXmlGeneratedClass* object, RkVariant& value, const CXmlElement& element) const {
  InvokeSet(element, [&] { object->AccessProperty(m_propertyIndex, /*get=*/false, value); });
}

namespace {

[[gnu::noinline]] void SetByVariant(const CElementInfo& info, CXmlGeneratedClass* object, CXmlObjectBase* child,
                                    const CXmlElement& element) {
  ReadingValue value(/*charCount=*/0);
  value.Get().SetXmlObject(child);
  info.InvokePropertySet(object, value.Get(), element);
}

}  // namespace

void CElementInfo::InvokeObjectSet(CXmlGeneratedClass* object, CXmlObjectBase* child,
                                   const CXmlElement& element) const {
  bool isSet = false;
  if (m_isOfModel)
    InvokeSet(element, [&] { isSet = static_cast<CModelObject*>(object)->TrySetObject(m_propertyIndex, child); });
  if (!isSet) SetByVariant(*this, object, child, element);
}

bool CElementInfo::ElementToXmlCol(const CSerializationContext& context, const CXmlGeneratedClass* object,
                                   CXmlWriter* writer) const {
  RkVariant& value = writer->BeginValue();
  ReadProperty(object, value);
  const CSmartPtr<CXmlCollectionBase> collection = value.TakeXmlCollection();
  return WriteCollection(context, collection, writer);
}

bool CElementInfo::WriteCollection(const CSerializationContext& context, const CXmlCollectionBase* collection,
                                   CXmlWriter* writer) const {
  if (collection == nullptr || collection->GetCount() < 1) return false;
  writer->SetContextState(ContextState_CollectionStart);
  const ExpectedName expected(*writer, m_name);
  static_cast<const CXmlObjectBase*>(collection)
      ->GetBase()
      ->ToXml_Int(writer, /*registerNamespaces=*/false, GetNamespace().c_str(), context, false);
  writer->SetContextState(ContextState_CollectionEnd);
  return true;
}

inline CSmartPtr<CXmlObjectBase> CElementInfo::GetChild(const CXmlGeneratedClass& object, CXmlWriter& writer) const {
  CXmlObjectBase* const child =
      m_isOfModel ? static_cast<const CModelObject&>(object).PeekObject(m_propertyIndex) : nullptr;
  if (child != nullptr) return child;
  RkVariant& value = writer.BeginValue();
  ReadProperty(&object, value);
  return value.TakeXmlObject();
}

bool CElementInfo::ElementToXmlCls(const CSerializationContext& context, const CXmlGeneratedClass* object,
                                   CXmlWriter* writer, bool isOptionalChoice) const {
  const CSmartPtr<CXmlObjectBase> child = GetChild(*object, *writer);
  if (child == nullptr) return false;
  const ExpectedName expected(*writer, m_name);
  child->ToXml_Int(writer, /*registerNamespaces=*/false, GetNamespace().c_str(), context, isOptionalChoice);
  return true;
}

// Most members of most objects are absent: what is done for the others stands apart.
bool CElementInfo::ElementToXmlPrim(const CSerializationContext& context, const CXmlGeneratedClass* object,
                                    CXmlWriter* writer) const {
  RkVariant& value = writer->BeginValue();
  ReadProperty(object, value);
  return value.IsValid() && WriteValue(context, value, writer);
}

bool CElementInfo::WriteValue(const CSerializationContext& context, const RkVariant& value, CXmlWriter* writer) const {
  if (value.IsNil()) return WriteNil(writer);
  const ItemType type = value.GetItemType();
  TextSpace space(writer->GetValueBuffer());
  const std::wstring_view text = value.GetText(space, m_format.c_str());
  const bool needsNoCheck = m_hasFacets && type == m_itemType && m_facets.IsEmpty();
  if (!needsNoCheck && !IsDefault(text)) CheckRestriction(value);
  WriteText(context, writer, text, type, /*isCanonical=*/m_format.empty());
  return true;
}

bool CElementInfo::ElementToXmlEnum(const CSerializationContext& context, const CXmlGeneratedClass* object,
                                    CXmlWriter* writer, EnumToString toString) const {
  RkVariant& value = writer->BeginValue();
  ReadProperty(object, value);
  if (!value.IsValid()) return false;
  if (value.IsNil()) return WriteNil(writer);
  WriteText(context, writer, TextOrEmpty(toString(static_cast<int>(value.GetI4()))), ItemType_string,
            /*isCanonical=*/false);
  return true;
}

void CElementInfo::WriteEmpty(CXmlWriter* writer) const {
  writer->StartElement(m_name);
  writer->WriteEndElement();
}

bool CElementInfo::WriteNil(CXmlWriter* writer) const {
  writer->StartElement(m_name);
  writer->WriteAttributeNil();
  writer->WriteEndElement();
  return true;
}

bool CElementInfo::ReadNil(const CSerializationContext& context, const CXmlElement& element) const {
  bool nil = false;
  for (const CXmlAttribute* attribute : element.GetAttributes()) {
    if (!attribute->IsNilAttribute()) {
      if (context.GetIgnoreUnknownAttributes())
        TellDropped(context, RkDropped_Attribute, *attribute);
      else
        Refuse(context, CRkValidationException(L"Unexpected Attribute found.", attribute->GetXPath()), *attribute);
      continue;
    }
    const NilValue value = ParseNilValue(attribute->GetValue());
    if (value != NilValue::False && !m_nillable)
      Refuse(context,
             CRkValidationException(L"Invalid use of 'nil' attribute in non-nillable element.", element.GetXPath()),
             *attribute);
    else if (value == NilValue::Invalid)
      Refuse(context,
             CRkValidationException(
                 FormatString(L"Unexpected Value [%ls] for 'nil' Attribute found.", attribute->GetValue().c_str()),
                 attribute->GetXPath()),
             *attribute);
    nil = value != NilValue::False;
  }
  return nil;
}

void CElementInfo::ElementFromXmlPrim(const CSerializationContext& context, CXmlGeneratedClass* object,
                                      CXmlElement** cursor) {
  const CXmlElement& element = **cursor;
  CErrorSession::NoteRead(context, &element);
  if (element.GetAttributes().empty() || !ReadNil(context, element)) {
    const CNodeText held(element);
    const std::wstring_view text = !held.Get().empty() ? held.Get().View() : m_defaultValue;
    bool isValue = false;
    try {
      if (m_isModelValue) {
        static_cast<CModelObject*>(object)->SetFromText(m_propertyIndex, text, element, isValue);
      } else {
        ReadingValue value(text.size());
        value.Get().FromText(text, m_itemType, m_whitespace);
        isValue = true;
        InvokePropertySet(object, value.Get(), element);
      }
    } catch (CRkException& e) {
      if (!isValue) e.SetRefusedValue({GetElementName(), std::wstring(text), NameOfXsdType(m_itemType), {}, {}});
      RefuseCaught(context, e, element);
    }
  }
  *cursor = element.GetNextSiblingElement();
}

void CElementInfo::ElementFromXmlEnum(const CSerializationContext& context, CXmlGeneratedClass* object,
                                      CXmlElement** cursor) {
  const CXmlElement& element = **cursor;
  CErrorSession::NoteRead(context, &element);
  if (element.GetAttributes().empty() || !ReadNil(context, element)) {
    const CNodeText held(element);
    const CXmlText& text = held.Get();
    bool isValue = false;
    try {
      ReadingValue value(/*charCount=*/0);
      value.Get().SetI4(m_enumFromString(text.empty() ? m_defaultValue.c_str() : text.c_str()));
      isValue = true;
      InvokePropertySet(object, value.Get(), element);
    } catch (CRkException& e) {
      if (!isValue) e.SetRefusedValue({GetElementName(), text, L"string", RkFacet_Enumeration, {}});
      RefuseCaught(context, e, element);
    }
  }
  *cursor = element.GetNextSiblingElement();
}

void CElementInfo::AttributesToXml_Int(const CXmlObjectBase* child, CXmlWriter* writer,
                                       const CSerializationContext& context) const {
  child->AttributesToXml_Int(writer, context);
}

CXmlElement* CElementInfo::FromXml_Int(CXmlObjectBase* child, CXmlElement* parent, CXmlElement* current,
                                       const CSerializationContext& context, bool isOptionalChoice) {
  return child->FromXml_Int(parent, current, context, isOptionalChoice);
}

std::wstring CElementInfo::GetAnyDefaultNamespace(const wchar_t* constraint, const wchar_t* defaultNs,
                                                  const wchar_t* targetNs) {
  std::wstring_view word = TextOrEmpty(constraint);
  if (word.size() >= 3 && word.substr(0, 2) == L"##") word = word.substr(0, word.find(L' '));
  const std::wstring_view defaultNamespace = TextOrEmpty(defaultNs);
  if (word == L"##any") return std::wstring(defaultNamespace);
  if (word == L"##other") return defaultNamespace.empty() ? L"DefaultNamespace" : std::wstring();
  if (word == L"##targetNamespace") return TextOrEmpty(targetNs);
  return std::wstring();
}

}  // namespace RkXmlLib16Data
