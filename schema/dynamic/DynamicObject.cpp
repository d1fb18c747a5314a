#include "schema/dynamic/DynamicObject.h"

#include <algorithm>
#include <cwchar>

#include "RkXmlLib16/base/Format.h"
#include "schema/components/SimpleValue.h"
#include "schema/dynamic/internal/Class.h"

namespace RkXmlSchema {

using namespace RkXmlLib16;
using namespace RkXmlLib16Data;

namespace {

bool IsBlank(std::wstring_view text) {
  return std::all_of(text.begin(), text.end(), [](wchar_t c) { return CWhitespaceUtils::IsWhiteSpace(c); });
}

bool IsSet(const RkVariant& value) {
  if (value.IsXmlObject()) return value.PeekXmlObject() != nullptr;
  if (value.IsXmlCollection()) return value.PeekXmlCollection()->GetCount() > 0;
  return value.IsValid();
}

bool IsNilTrue(const CXmlElement& element) {
  const CXmlText value = element.GetAttribute(L"nil", kInstanceNamespace);
  return value == L"true" || value == L"1";
}

}  // namespace

CDynamicObject::CDynamicObject(const CDynamicClass& object, const ElementDeclaration* declaration)
    : m_class(object), m_declaration(declaration) {
  const std::wstring& name =
      declaration != nullptr ? declaration->name.localName : object.GetBinding().typeName.localName;
  SetElementName(name.c_str());
  Begin();
}

CDynamicObject::~CDynamicObject() = default;

const ClassBinding& CDynamicObject::GetBinding() const noexcept { return m_class.GetBinding(); }
CParentElementInfo* CDynamicObject::GetClassInfo() const { return m_class.GetInfo(); }
CElementInfo** CDynamicObject::GetClassElementInfo() const { return m_class.GetElements(); }
CAttributeInfo** CDynamicObject::GetClassAttributeInfo() const { return m_class.GetAttributes(); }

const wchar_t* CDynamicObject::GetTargetNamespace() const {
  return m_declaration != nullptr ? m_declaration->name.namespaceUri.c_str() : GetNamespace();
}
const wchar_t* CDynamicObject::GetNamespace() const { return m_class.GetInfo()->GetNamespace().c_str(); }

// ---- Properties

RkVariant* CDynamicObject::Find(int property) noexcept {
  const auto before = [](const Value& value, int wanted) { return value.property < wanted; };
  const auto at = std::lower_bound(m_values.begin(), m_values.end(), property, before);
  return at != m_values.end() && at->property == property ? &at->value : nullptr;
}

RkVariant& CDynamicObject::Store(int property) {
  if (m_values.empty() || m_values.back().property < property) {
    m_values.push_back({property, RkVariant()});
    return m_values.back().value;
  }
  const auto before = [](const Value& value, int wanted) { return value.property < wanted; };
  auto at = std::lower_bound(m_values.begin(), m_values.end(), property, before);
  if (at->property != property) at = m_values.insert(at, {property, RkVariant()});
  return at->value;
}

void CDynamicObject::Unset(int property) {
  const auto same = [&](const Value& value) { return value.property == property; };
  m_values.erase(std::remove_if(m_values.begin(), m_values.end(), same), m_values.end());
}

void CDynamicObject::AccessProperty(int property, bool get, RkVariant& value) {
  if (get) {
    if (const RkVariant* known = Find(property)) {
      value = *known;
    } else {
      value.SetInvalid();
    }
    return;
  }
  m_isFresh = false;
  const Property& info = m_class.GetProperty(property);
  const ClassBinding& binding = m_class.GetBinding();
  if (property == binding.textProperty && value.IsValid() && !value.IsNil()) return SetText(property, value);
  if (info.value != nullptr && value.IsValid() && !value.IsNil()) {
    const Reading* const reading = Reading::Current();
    if (info.value->holdsQNames && reading != nullptr) KeepPrefixes(*reading->element, reading->text);
    const bool hasText = reading != nullptr;
    if (info.value->needsCheck || (info.defaultValue != nullptr && info.defaultValue->isFixed))
      CheckText(info, hasText ? std::wstring(reading->text) : value.ToString(),
                hasText ? ResolverOf(*reading->element) : nullptr);
    if (info.enumeration != nullptr && info.enumeration->count(value.GetString()) == 0)
      throw CRkInvalidValueException(
          FormatString(L"Invalid Value for %ls [%ls].", info.name, value.GetString().c_str()));
    if (!info.value->facets.IsEmpty())
      CXmlObjectHelper::CheckRestriction(info.name, value, info.value->itemType, info.value->facets);
  }
  if (binding.group == XmlElementGroupType_Choice && info.member != nullptr) SelectMember(property, value);
  if (IsSet(value) || value.IsXmlCollection()) {
    Store(property) = value;
  } else {
    Unset(property);
  }
}

// The text of an element comes as it was read, and in its own type from the application.
void CDynamicObject::SetText(int property, const RkVariant& value) {
  const Property& info = m_class.GetProperty(property);
  const ValueBinding& type = *info.value;
  RkVariant converted = value;
  if (m_class.GetBinding().isMixed) {
    if (!m_class.GetBinding().members.empty() && IsBlank(value.GetString())) converted.SetString(L"");
    if (value.GetString().empty() && m_declaration != nullptr && m_declaration->value)
      converted.SetString(m_declaration->value.text);
    Store(property) = converted;
    return;
  }
  std::wstring text = value.ToString();
  const DefaultBinding value0 = m_declaration != nullptr && m_declaration->value
                                    ? DefaultBinding{true, m_declaration->value.kind == ValueConstraintKind::Fixed,
                                                     m_declaration->value.normalized, &m_declaration->value}
                                    : DefaultBinding();
  if (text.empty() && value0.exists) text = value0.text;
  if (value.GetItemType() == ItemType_string) converted.FromText(text, type.itemType, type.whitespace);
  if (type.holdsQNames && m_element != nullptr) KeepPrefixes(*m_element, text);
  if (type.needsCheck || value0.isFixed) {
    Property withDefault = info;
    withDefault.defaultValue = &value0;
    CheckText(withDefault, text, m_element != nullptr ? ResolverOf(*m_element) : nullptr);
  }
  const std::wstring& name = GetElementNameRef();
  if (info.enumeration != nullptr && info.enumeration->count(converted.GetString()) == 0)
    throw CRkInvalidValueException(
        FormatString(L"Invalid Value for %ls [%ls].", name.c_str(), converted.GetString().c_str()));
  if (!type.facets.IsEmpty()) CXmlObjectHelper::CheckRestriction(name.c_str(), converted, type.itemType, type.facets);
  Store(property) = converted;
}

void CDynamicObject::SelectMember(int property, const RkVariant& value) {
  if (!IsSet(value)) return;
  for (const Value& other : m_values) {
    const Property& info = m_class.GetProperty(other.property);
    if (other.property == property || info.member == nullptr || !IsSet(other.value)) continue;
    throw CRkInvalidStateException(FormatString(
        L"The Property [%ls] is already set. Only one element within this class bay be set at a time",  // sic
        info.name));
  }
}

void CDynamicObject::Ensure(int property) {
  if (Find(property) != nullptr) return;
  const Property& info = m_class.GetProperty(property);
  if (property == m_class.GetBinding().attributeWildcardProperty) {
    Store(property).SetXmlCollection(CSmartPtr<CAttributeCol>(new CAttributeCol));
  } else if (info.member->IsCollection()) {
    Store(property).SetXmlCollection(NewCollection(m_class.GetSchema(), info));
  } else if (info.member->kind == MemberBinding::Kind::Wildcard) {
    Store(property).SetXmlObject(CSmartPtr<CElement>(new CElement(L"AnyElement")));
  }
}

void CDynamicObject::KeepPrefixes(const CXmlElement& element, std::wstring_view text) {
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

void CDynamicObject::Begin() {
  m_values.clear();
  m_prefixes.reset();
  for (const int property : m_class.GetInitial()) {
    const Property& info = m_class.GetProperty(property);
    if (info.attribute != nullptr) {
      Store(property).FromText(info.defaultValue->text, info.value->itemType, info.value->whitespace);
    } else if (info.member != nullptr && info.member->IsCollection()) {
      Ensure(property);
    } else if (info.member != nullptr) {
      Store(property).SetNil();
    } else {
      Store(property).SetString(L"");
    }
  }
}

int CDynamicObject::FindProperty(std::wstring_view name) const { return m_class.FindProperty(name); }

namespace {

int Require(int property, std::wstring_view name) {
  if (property < 0)
    throw CRkInvalidParamException(FormatString(L"There is no property [%ls].", std::wstring(name).c_str()));
  return property;
}

}  // namespace

RkVariant CDynamicObject::Get(std::wstring_view name) const {
  RkVariant value;
  ReadProperty(Require(FindProperty(name), name), value);
  return value;
}

void CDynamicObject::Set(std::wstring_view name, const RkVariant& value) {
  RkVariant copy = value;
  AccessProperty(Require(FindProperty(name), name), /*get=*/false, copy);
}

CSmartPtr<CXmlObjectBase> CDynamicObject::GetOrCreateObject(std::wstring_view name) {
  const int property = Require(FindProperty(name), name);
  const Property& info = m_class.GetProperty(property);
  if (info.member == nullptr || info.member->IsCollection()) return nullptr;
  if (Find(property) == nullptr && info.member->object != nullptr) {
    RkVariant value;
    value.SetXmlObject(m_class.GetSchema().New(*info.member->object,
                                               info.member->object->IsInline() ? nullptr : info.member->element));
    AccessProperty(property, /*get=*/false, value);
  } else {
    Ensure(property);
  }
  const RkVariant* const known = Find(property);
  return known != nullptr ? known->GetXmlObject() : nullptr;
}

CSmartPtr<CXmlCollectionBase> CDynamicObject::GetCollection(std::wstring_view name) {
  const int property = Require(FindProperty(name), name);
  Ensure(property);
  const RkVariant* const known = Find(property);
  return known != nullptr ? known->GetXmlCollection() : nullptr;
}

// ---- Reading and writing

CXmlElement* CDynamicObject::FromXml_Int(CXmlElement* element, CXmlElement* firstChild,
                                         const CSerializationContext& context, bool isOptionalChoice) {
  struct Scope {
    ~Scope() { at = nullptr; }
    const CXmlElement*& at;
  } scope{m_element};
  m_element = element;
  return CXmlGeneratedClass::FromXml_Int(element, firstChild, context, isOptionalChoice);
}

void CDynamicObject::BeginFromXml_Int(CXmlElement* element, CXmlElement* firstChild,
                                      const CSerializationContext& context, bool) {
  if (!m_isFresh) Begin();
  m_isFresh = false;
  const ClassBinding& binding = m_class.GetBinding();
  if (binding.IsInline()) return;
  const auto errorOf = [&](const std::wstring& message) {
    return CRkValidationException(message, element->GetXPath());
  };
  const auto refuse = [&](const std::wstring& message) { Refuse(context, errorOf(message), *element); };
  if (binding.isAbstract) refuse(FormatString(L"The type [%ls] is abstract.", binding.typeName.localName.c_str()));
  const CXmlText text = element->GetText();
  if (binding.textProperty < 0 && !text.empty() && !IsBlank(text))
    refuse(FormatString(L"Unexpected text found in the element [%ls].", element->GetLocalName().c_str()));
  if (binding.isMixed && m_declaration != nullptr && m_declaration->value.kind == ValueConstraintKind::Fixed &&
      (firstChild != nullptr || (!text.empty() && text != m_declaration->value.text)))
    refuse(FormatString(L"The fixed value of the element [%ls] is [%ls].", element->GetLocalName().c_str(),
                        m_declaration->value.text.c_str()));
  if (element->GetAttributes().empty()) return;

  bool isNamed = false;
  const TypeDefinition* const type = FindNamedType(m_class.GetSchema().GetBinding().GetSchemas(), *element, isNamed);
  if (isNamed && type != binding.type) {
    const SimpleTypeDefinition* const simple = type != nullptr ? type->AsSimple() : nullptr;
    if (simple == nullptr || !simple->IsDerivedFrom(binding.type))
      refuse(FormatString(L"The type [%ls] does not fit the element [%ls].",
                          element->GetAttribute(L"type", kInstanceNamespace).c_str(), element->GetLocalName().c_str()));
    else if (const auto error = CheckValue(*simple, text, ResolverOf(*element)))
      throw At(errorOf(*error), *element);
  }
  if (!IsNilTrue(*element)) return;
  if (m_declaration == nullptr || !m_declaration->isNillable)
    throw At(errorOf(L"Invalid use of 'nil' attribute in non-nillable element."), *element);
  if (firstChild != nullptr || !text.empty())
    refuse(FormatString(L"The element [%ls] is nil and must be empty.", element->GetLocalName().c_str()));
  if (m_declaration->value.kind == ValueConstraintKind::Fixed)
    refuse(FormatString(L"The element [%ls] has a fixed value and cannot be nil.", element->GetLocalName().c_str()));
}

void CDynamicObject::AttributesToXml_Int(CXmlWriter* writer, const CSerializationContext& context) const {
  try {
    const ClassBinding& binding = m_class.GetBinding();
    if (m_prefixes != nullptr)
      for (const auto& [prefix, uri] : *m_prefixes) writer->DeclareNamespace(prefix, uri);
    const bool isOther = m_declaration == nullptr || m_declaration->type != binding.type;
    if (!binding.IsInline() && isOther && !binding.typeName.empty() && context.GetWriteTypeAttribute())
      writer->WriteAttributeType(binding.typeName.namespaceUri, binding.typeName.localName, ItemType_string);
    for (CAttributeInfo** info = GetClassAttributeInfo(); *info != nullptr; ++info)
      (*info)->AttributeToXml(context, this, writer);
    for (CElementInfo** info = GetClassElementInfo(); *info != nullptr; ++info)
      if ((*info)->MayHaveAttributes()) (*info)->PseudoChildAttributeToXml(context, this, writer);
  } catch (const CRkException& e) {
    throw CRkException(L"Failed to convert attributes to XML", e);
  }
}

// ---- Collections

CDynamicCollection::CDynamicCollection(const CDynamicSchema& schema, const MemberBinding& member)
    : CXmlObjectCollection(member.name.c_str(), member.namespaceUri.c_str(), member.minOccurs, member.maxOccurs,
                           static_cast<Factory>(nullptr), /*classId=*/0, member.object->elementType),
      m_schema(schema),
      m_member(member) {}

CDynamicCollection::~CDynamicCollection() = default;

CDynamicObject* CDynamicCollection::AddNew() {
  const CSmartPtr<CDynamicObject> item =
      m_schema.New(*m_member.object, m_member.object->IsInline() ? nullptr : m_member.element);
  AppendItem(item);
  return item;
}

CXmlElement* CDynamicCollection::FromXml_Int(CXmlElement* parent, CXmlElement* current,
                                             const CSerializationContext& context, bool isOptionalChoice) {
  const bool isInline = m_member.object->IsInline();
  const auto isFull = [&] { return m_member.stopsAtMaximum && GetCount() >= m_member.maxOccurs; };
  while (current != nullptr && !isFull()) {
    if (isInline) {
      const CSmartPtr<CDynamicObject> item = m_schema.New(*m_member.object);
      CXmlElement* const next = ReadGroup(item, parent, current, context, isOptionalChoice);
      if (next == current) break;
      AppendItem(item);
      current = next;
      continue;
    }
    if (!DoesElementNameMatch(context, current, GetElementNameRef().c_str(), GetNamespace())) break;
    const CSmartPtr<CDynamicObject> item = m_member.kind == MemberBinding::Kind::AbstractObject
                                               ? NewElement(m_schema, *m_member.element, *current)
                                               : m_schema.New(*m_member.object, m_member.element);
    if (item == nullptr) break;
    item->FromXml_Int(current, current->GetFirstElement(), context, /*isOptionalChoice=*/false);
    AppendItem(item);
    current = current->GetNextSiblingElement();
  }
  return current;
}

}  // namespace RkXmlSchema
