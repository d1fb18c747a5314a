#include "RkXmlLib16/binding/ModelObject.h"

#include <algorithm>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/binding/internal/ModelClass.h"
#include "RkXmlLib16/document/ElementTree.h"
#include "RkXmlLib16/document/XmlWriter.h"
#include "RkXmlLib16/facets/FacetChecks.h"

namespace RkXmlLib16 {

using namespace RkXmlLib16Data;

namespace {

bool IsValue(const RkVariant& value) { return value.IsValid() && !value.IsNil(); }

// The value of a property between a variant and the C++ type of its member.
template <class T>
struct Transfer;

#define RKXML_TRANSFER(type, name)                                                           \
  template <>                                                                                \
  struct Transfer<type> {                                                                    \
    static void Give(RkVariant& to, const type& value, ItemType) { to.Set##name(value); }    \
    static void Take(type& to, const RkVariant& value, ItemType) { to = value.Get##name(); } \
  };
RKXML_TRANSFER(std::wstring, String)
RKXML_TRANSFER(char, I1)
RKXML_TRANSFER(short, I2)
RKXML_TRANSFER(long, I4)
RKXML_TRANSFER(long long, I8)
RKXML_TRANSFER(unsigned long, UI4)
RKXML_TRANSFER(unsigned long long, UI8)
RKXML_TRANSFER(float, R4)
RKXML_TRANSFER(double, R8)
RKXML_TRANSFER(bool, Boolean)
RKXML_TRANSFER(CDecimal, Decimal)
RKXML_TRANSFER(CBigInteger, Integer)
RKXML_TRANSFER(CDateTimeSpan, Duration)
#undef RKXML_TRANSFER

// Others serve several XSD types.

template <>
struct Transfer<unsigned char> {
  static void Give(RkVariant& to, unsigned char value, ItemType type) {
    if (type == ItemType_gMonth)
      to.SetMonth(value);
    else if (type == ItemType_gDay)
      to.SetDay(value);
    else
      to.SetUI1(value);
  }
  static void Take(unsigned char& to, const RkVariant& value, ItemType type) {
    to = type == ItemType_gMonth ? value.GetMonth() : type == ItemType_gDay ? value.GetDay() : value.GetUI1();
  }
};

template <>
struct Transfer<unsigned short> {
  static void Give(RkVariant& to, unsigned short value, ItemType type) {
    if (type == ItemType_gYear)
      to.SetYear(value);
    else
      to.SetUI2(value);
  }
  static void Take(unsigned short& to, const RkVariant& value, ItemType type) {
    to = type == ItemType_gYear ? value.GetYear() : value.GetUI2();
  }
};

template <>
struct Transfer<CBinaryData> {
  static void Give(RkVariant& to, const CBinaryData& value, ItemType type) {
    if (type == ItemType_hexBinary)
      to.SetHexBinary(value);
    else
      to.SetBase64Binary(value);
  }
  static void Take(CBinaryData& to, const RkVariant& value, ItemType type) {
    to = type == ItemType_hexBinary ? value.GetHexBinary() : value.GetBase64Binary();
  }
};

template <>
struct Transfer<CDateTime> {
  static void Give(RkVariant& to, const CDateTime& value, ItemType type) {
    switch (type) {
      case ItemType_date:
        return to.SetDate(value);
      case ItemType_time:
        return to.SetTime(value);
      case ItemType_gYearMonth:
        return to.SetYearMonth(value);
      case ItemType_gMonthDay:
        return to.SetMonthDay(value);
      default:
        return to.SetDateTime(value);
    }
  }
  static void Take(CDateTime& to, const RkVariant& value, ItemType type) {
    switch (type) {
      case ItemType_date:
        to = value.GetDate();
        break;
      case ItemType_time:
        to = value.GetTime();
        break;
      case ItemType_gYearMonth:
        to = value.GetYearMonth();
        break;
      case ItemType_gMonthDay:
        to = value.GetMonthDay();
        break;
      default:
        to = value.GetDateTime();
        break;
    }
  }
};

[[noreturn]] void ThrowInvalid(const wchar_t* name, std::wstring_view text) {
  throw CRkInvalidValueException(FormatString(L"Invalid Value for %ls [%ls].", name, std::wstring(text).c_str()));
}

// An enumeration is an int in the object and a text for the records.
template <class T>
void Give(RkVariant& to, const T& value, const ModelProperty& property) {
  if constexpr (std::is_same_v<T, int>) {
    const auto& texts = property.values->enumeration;
    const bool isKnown = value >= 0 && static_cast<std::size_t>(value) < texts.size();
    to.SetString(isKnown ? texts[static_cast<std::size_t>(value)] : L"");
  } else {
    Transfer<T>::Give(to, value, property.values->itemType);
  }
}

template <class T>
void Take(T& to, const RkVariant& value, const ModelProperty& property) {
  if constexpr (std::is_same_v<T, int>) {
    to = CModelClass::FindText(*property.values, value.GetString());
  } else {
    Transfer<T>::Take(to, value, property.values->itemType);
  }
}

}  // namespace

int FindEnumeration(Span<const wchar_t*> texts, std::wstring_view text) {
  for (std::size_t i = 0; i < texts.size(); ++i)
    if (texts[i] == text) return static_cast<int>(i);
  throw CRkInvalidValueException(FormatString(L"Unknown enumeration value [%ls].", std::wstring(text).c_str()));
}

CModelObject::CModelObject(const ClassModel& model, const wchar_t* elementName)
    : m_class(model.Require()), m_declaration(model.element), m_set(model.propertyCount) {
  if (elementName != nullptr && m_declaration != nullptr && m_declaration->name != std::wstring_view(elementName))
    m_declaration = nullptr;
  if (elementName != nullptr)
    SetElementName(elementName);
  else
    m_elementName = m_class.GetElementName();
}

CModelObject::~CModelObject() = default;

const ClassModel& CModelObject::GetModel() const noexcept { return m_class.GetModel(); }
CParentElementInfo* CModelObject::GetClassInfo() const { return m_class.GetInfo(); }
CElementInfo** CModelObject::GetClassElementInfo() const { return m_class.GetElements(); }
CAttributeInfo** CModelObject::GetClassAttributeInfo() const { return m_class.GetAttributes(); }
const wchar_t* CModelObject::GetNamespace() const { return m_class.GetModel().namespaceUri; }
const wchar_t* CModelObject::GetTargetNamespace() const {
  return m_declaration != nullptr ? m_declaration->namespaceUri : GetNamespace();
}

void CModelObject::SetDeclaration(const ElementModel& declaration, const wchar_t* heldName) {
  if (m_declaration == &declaration) return;
  m_declaration = &declaration;
  SetElementName(heldName);
}

const wchar_t* CModelObject::GetSelected() const {
  for (const MemberModel& member : GetModel().members)
    if (IsFilled(member.property)) return member.name;
  return nullptr;
}

// ---- Properties

void CModelObject::AccessProperty(int, bool get, RkVariant& value) {
  if (get) value.SetInvalid();
}

template <class T>
void CModelObject::AccessValue(bool get, RkVariant& value, int property, T& member) {
  const ModelProperty& info = m_class.GetProperty(property);
  if (get) {
    if (IsSet(property)) return Give(value, member, info);
    if (info.startsNil) return value.SetNil();
    return value.SetInvalid();
  }
  if (!IsValue(value)) {
    if (info.member != nullptr && value.IsNil() && GetModel().group == XmlElementGroupType_Choice) Select(property);
    m_isFresh = false;
    member = T();
    return Unmark(property);
  }
  if (info.mustCheck) CheckSet(property, value);
  Take(member, value, info);
  Mark(property);
}

bool CModelObject::MustCheck(int property) const noexcept { return m_class.GetProperty(property).mustCheck; }

template <class T>
void CModelObject::Check(int property, const T& value) {
  RkVariant variant;
  Give(variant, value, m_class.GetProperty(property));
  CheckSet(property, variant);
}

void CModelObject::CheckSet(int property, RkVariant& value) {
  m_isFresh = false;
  const ModelProperty& info = m_class.GetProperty(property);
  if (property == GetModel().textProperty) return CheckText(property, value);
  const ValueModel& values = *info.values;
  if (values.holdsQNames || values.needsCheck || info.fixed != nullptr) {
    const Reading* const reading = Reading::Current();
    if (values.holdsQNames && reading != nullptr) KeepPrefixes(*reading->element, reading->text);
    if (values.needsCheck || info.fixed != nullptr)
      CheckModelText(info.name, values, info.fixed, reading != nullptr ? std::wstring(reading->text) : value.ToString(),
                     reading != nullptr ? ResolverOf(*reading->element) : nullptr);
  }
  if (!values.enumeration.empty() && CModelClass::FindText(values, value.GetString()) < 0)
    ThrowInvalid(info.name, value.GetString());
  if (!info.facets.IsEmpty()) CXmlObjectHelper::CheckRestriction(info.name, value, values.itemType, info.facets);
  if (info.member != nullptr && GetModel().group == XmlElementGroupType_Choice) Select(property);
}

// The text of an element comes as it was read, and in its own type from the application.
void CModelObject::CheckText(int property, RkVariant& value) {
  const ModelProperty& info = m_class.GetProperty(property);
  const ValueModel& values = *info.values;
  const DefaultModel none;
  const DefaultModel& given = m_declaration != nullptr ? m_declaration->value : none;
  if (GetModel().isMixed) {
    if (!GetModel().members.empty() && IsBlank(value.GetString())) value.SetString(L"");
    if (value.GetString().empty() && given.text != nullptr) value.SetString(given.text);
    return;
  }
  std::wstring text = value.ToString();
  if (text.empty() && given.text != nullptr) text = given.text;
  if (value.GetItemType() == ItemType_string) value.FromText(text, values.itemType, values.whitespace);
  if (values.holdsQNames && m_element != nullptr) KeepPrefixes(*m_element, text);
  const std::wstring& name = GetElementNameRef();
  if (values.needsCheck || given.isFixed)
    CheckModelText(info.name, values, given.isFixed ? &given : nullptr, text,
                   m_element != nullptr ? ResolverOf(*m_element) : nullptr);
  if (!values.enumeration.empty() && CModelClass::FindText(values, value.GetString()) < 0)
    ThrowInvalid(name.c_str(), value.GetString());
  if (!info.facets.IsEmpty()) CXmlObjectHelper::CheckRestriction(name.c_str(), value, values.itemType, info.facets);
}

bool CModelObject::IsFilled(int property) const {
  if (!IsSet(property)) return false;
  const MemberModel* const member = m_class.GetProperty(property).member;
  if (member == nullptr || !member->IsCollection()) return true;
  RkVariant value;
  ReadProperty(property, value);
  return value.PeekXmlCollection() != nullptr && value.PeekXmlCollection()->GetCount() > 0;
}

void CModelObject::Select(int property) {
  for (const MemberModel& other : GetModel().members) {
    if (other.property == property || !IsFilled(other.property)) continue;
    throw CRkInvalidStateException(FormatString(
        L"The Property [%ls] is already set. Only one element within this class bay be set at a time",  // sic
        other.name));
  }
}

void CModelObject::Adopt(int property, CXmlObjectBase* object) {
  m_isFresh = false;
  if (object == nullptr) return Unmark(property);
  const MemberModel* const member = m_class.GetProperty(property).member;
  if (member != nullptr) {
    if (GetModel().group == XmlElementGroupType_Choice) Select(property);
    if (member->object != nullptr && member->kind != MemberModel::Kind::InlineGroup)
      static_cast<CModelObject*>(object)->SetDeclaration(*member);
  }
  Mark(property);
}

bool CModelObject::NeedsCollection(int property) const noexcept {
  const MemberModel* const member = m_class.GetProperty(property).member;
  return member != nullptr && member->IsCollection() && member->minOccurs > 0;
}

CXmlCollectionBase* CModelObject::MakeCollection(int property) {
  CXmlCollectionBase* const collection = NewCollection(GetModel(), m_class.GetProperty(property));
  if (GetModel().group == XmlElementGroupType_Choice) collection->AddEventListener(this);
  Mark(property);
  return collection;
}

void CModelObject::Ensure(int property) {
  RkVariant value;
  if (IsSet(property)) ReadProperty(property, value);
  if (value.PeekXmlCollection() != nullptr || value.PeekXmlObject() != nullptr) return;
  const bool wasFresh = m_isFresh;
  const ModelProperty& info = m_class.GetProperty(property);
  if (property == GetModel().attributeWildcardProperty) {
    value.SetXmlCollection(new CAttributeCol);
  } else if (info.member->IsCollection()) {
    value.SetXmlCollection(MakeCollection(property));
  } else {
    value.SetXmlObject(new CElement(L"AnyElement"));
  }
  AccessProperty(property, /*get=*/false, value);
  m_isFresh = wasFresh;
}

void CModelObject::OnEvent(CXmlObjectBase* source, MsgType type, void*) {
  if (type != MsgType_ItemAdding) return;
  for (const MemberModel& member : GetModel().members) {
    if (!member.IsCollection() || !IsSet(member.property)) continue;
    RkVariant value;
    ReadProperty(member.property, value);
    if (value.PeekXmlCollection() == source) Select(member.property);
  }
}

void CModelObject::KeepPrefixes(const CXmlElement& element, std::wstring_view text) {
  std::size_t at = 0;
  while (at < text.size()) {
    std::size_t end = at;
    while (end < text.size() && !CWhitespaceUtils::IsWhiteSpace(text[end])) ++end;
    const std::wstring_view token = text.substr(at, end - at);
    const std::size_t colon = token.find(L':');
    const CXmlName* const uri =
        colon != std::wstring_view::npos && colon > 0 ? element.LookupNamespaceRef(token.substr(0, colon)) : nullptr;
    if (uri != nullptr) {
      if (m_prefixes == nullptr) m_prefixes = std::make_unique<Prefixes>();
      (*m_prefixes)[std::wstring(token.substr(0, colon))] = std::wstring(uri->View());
    }
    at = end + 1;
  }
}

void CModelObject::Begin() {
  for (const AttributeModel& attribute : GetModel().attributes) {
    if (attribute.value.text == nullptr || IsSet(attribute.property)) continue;
    RkVariant value;
    value.FromText(attribute.value.text, attribute.values->itemType, attribute.values->whitespace);
    AccessProperty(attribute.property, /*get=*/false, value);
  }
  m_isFresh = true;
}

void CModelObject::Reset() {
  for (int property = 0; property < GetModel().propertyCount; ++property) {
    if (!IsSet(property)) continue;
    RkVariant value;
    ReadProperty(property, value);
    if (value.IsXmlCollection()) {
      value.SetXmlCollection(nullptr);
    } else {
      value.SetInvalid();
    }
    AccessProperty(property, /*get=*/false, value);
    Unmark(property);
  }
  m_prefixes.reset();
  Begin();
}

// ---- Reading and writing

CXmlElement* CModelObject::FromXml_Int(CXmlElement* element, CXmlElement* firstChild,
                                       const CSerializationContext& context, bool isOptionalChoice) {
  struct Scope {
    ~Scope() { at = nullptr; }
    const CXmlElement*& at;
  } scope{m_element};
  m_element = element;
  return CXmlGeneratedClass::FromXml_Int(element, firstChild, context, isOptionalChoice);
}

void CModelObject::BeginFromXml_Int(CXmlElement* element, CXmlElement* firstChild, const CSerializationContext&, bool) {
  if (!m_isFresh) Reset();
  m_isFresh = false;
  const ClassModel& model = GetModel();
  if (model.IsInline()) return;
  const auto refuse = [&](const std::wstring& message) {
    throw At(CRkValidationException(message, element->GetXPath()), *element);
  };
  if (model.isAbstract) refuse(FormatString(L"The type [%ls] is abstract.", model.name));
  const CXmlText text = element->GetText();
  const bool hasFixed = m_declaration != nullptr && m_declaration->value.isFixed;
  if (model.textProperty < 0 && !text.empty() && !IsBlank(text))
    refuse(FormatString(L"Unexpected text found in the element [%ls].", element->GetLocalName().c_str()));
  if (model.isMixed && hasFixed && (firstChild != nullptr || (!text.empty() && text != m_declaration->value.text)))
    refuse(FormatString(L"The fixed value of the element [%ls] is [%ls].", element->GetLocalName().c_str(),
                        m_declaration->value.text));
  const CXmlAttributes attributes = element->GetAttributes();
  if (std::all_of(attributes.begin(), attributes.end(),
                  [](const CXmlAttribute* attribute) { return attribute->GetNamespaceURI().empty(); }))
    return;

  const NamedType named = FindNamedType(model.schema, *element);
  const bool isOwn = model.simple != nullptr ? named.simple == model.simple : named.object == &model;
  if (named.isNamed && !isOwn) {
    if (named.simple == nullptr || !named.simple->IsDerivedFrom(model.simple) || model.simple == nullptr)
      refuse(FormatString(L"The type [%ls] does not fit the element [%ls].",
                          element->GetAttribute(L"type", kInstanceNamespace).c_str(), element->GetLocalName().c_str()));
    if (const auto error = named.simple->Check(text, ResolverOf(*element))) refuse(*error);
  }
  if (!IsNilTrue(*element)) return;
  if (m_declaration == nullptr || !m_declaration->isNillable)
    refuse(L"Invalid use of 'nil' attribute in non-nillable element.");
  if (firstChild != nullptr || !text.empty())
    refuse(FormatString(L"The element [%ls] is nil and must be empty.", element->GetLocalName().c_str()));
  if (hasFixed)
    refuse(FormatString(L"The element [%ls] has a fixed value and cannot be nil.", element->GetLocalName().c_str()));
}

void CModelObject::AttributesToXml_Int(CXmlWriter* writer, const CSerializationContext& context) const {
  try {
    const ClassModel& model = GetModel();
    if (m_prefixes != nullptr)
      for (const auto& [prefix, uri] : *m_prefixes) writer->DeclareNamespace(prefix, uri);
    const bool isOther = m_declaration == nullptr || (model.simple != nullptr ? m_declaration->simple != model.simple
                                                                              : m_declaration->object != &model);
    if (!model.IsInline() && isOther && model.name[0] != L'\0' && context.GetWriteTypeAttribute())
      writer->WriteAttributeType(model.namespaceUri, model.name, ItemType_string);
    CAttributeInfo** info = m_class.GetAttributes();
    for (const AttributeModel& attribute : model.attributes) {
      if (!attribute.isOptional || IsSet(attribute.property)) (*info)->AttributeToXml(context, this, writer);
      ++info;
    }
    if (*info != nullptr) (*info)->AttributeToXml(context, this, writer);  // those of the wildcard
    if (!m_class.HasInlineAttributes()) return;
    for (CElementInfo** record = m_class.GetElements(); *record != nullptr; ++record)
      if ((*record)->MayHaveAttributes()) (*record)->PseudoChildAttributeToXml(context, this, writer);
  } catch (const CRkException& e) {
    throw CRkException(L"Failed to convert attributes to XML", e);
  }
}

#define RKXML_ACCESS(type)                                                            \
  template RKXML_EXPORT void CModelObject::AccessValue(bool, RkVariant&, int, type&); \
  template RKXML_EXPORT void CModelObject::Check(int, const type&);
RKXML_ACCESS(std::wstring)
RKXML_ACCESS(char)
RKXML_ACCESS(short)
RKXML_ACCESS(int)
RKXML_ACCESS(long)
RKXML_ACCESS(long long)
RKXML_ACCESS(unsigned char)
RKXML_ACCESS(unsigned short)
RKXML_ACCESS(unsigned long)
RKXML_ACCESS(unsigned long long)
RKXML_ACCESS(float)
RKXML_ACCESS(double)
RKXML_ACCESS(bool)
RKXML_ACCESS(CDecimal)
RKXML_ACCESS(CBigInteger)
RKXML_ACCESS(CBinaryData)
RKXML_ACCESS(CDateTime)
RKXML_ACCESS(CDateTimeSpan)
#undef RKXML_ACCESS

// ---- Collections

CModelCollectionBase::CModelCollectionBase(const MemberModel& member)
    : CXmlObjectCollection(member.name, member.namespaceUri, member.minOccurs, member.maxOccurs,
                           static_cast<Factory>(nullptr), /*classId=*/0, member.object->elementType),
      m_member(member) {}

CModelCollectionBase::~CModelCollectionBase() = default;

void CModelCollectionBase::Add(CModelObject* item) {
  const CSmartPtr<CModelObject> held(item);
  if (item != nullptr && !m_member.object->IsInline()) item->SetDeclaration(m_member);
  AppendItem(item);
}

CModelObject* CModelCollectionBase::AddNewItem() {
  const CSmartPtr<CModelObject> item =
      NewModelObject(*m_member.object, m_member.object->IsInline() ? nullptr : &m_member, GetElementNameRef().c_str());
  if (item != nullptr) AppendItem(item);
  return item;
}

CXmlElement* CModelCollectionBase::FromXml_Int(CXmlElement* parent, CXmlElement* current,
                                               const CSerializationContext& context, bool isOptionalChoice) {
  const bool isInline = m_member.object->IsInline();
  const auto isFull = [&] { return m_member.stopsAtMaximum && GetCount() >= m_member.maxOccurs; };
  const CXmlElement* last = nullptr;
  while (current != nullptr && !isFull()) {
    if (isInline) {
      const CSmartPtr<CModelObject> item = NewModelObject(*m_member.object, nullptr);
      CXmlElement* const next = item->FromXml_Int(parent, current, context, isOptionalChoice);
      if (next == current) break;
      AppendItem(item);
      current = next;
      continue;
    }
    if (!(last != nullptr && last->HasNameOf(current)) &&
        !DoesElementNameMatch(context, current, GetElementNameRef().c_str(), CXmlCollectionBase::GetNamespace()))
      break;
    last = current;
    const CSmartPtr<CModelObject> item = m_member.kind == MemberModel::Kind::AbstractObject
                                             ? NewElement(m_member.object->schema, m_member, *current)
                                             : NewModelObject(*m_member.object, &m_member, GetElementNameRef().c_str());
    if (item == nullptr) break;
    item->FromXml_Int(current, current->GetFirstElement(), context, /*isOptionalChoice=*/false);
    AppendItem(item);
    current = current->GetNextSiblingElement();
  }
  return current;
}

}  // namespace RkXmlLib16
