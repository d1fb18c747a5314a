#include "RkXmlLib16/binding/ModelObject.h"

#include <algorithm>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/base/Likely.h"
#include "RkXmlLib16/binding/internal/MemberText.h"
#include "RkXmlLib16/binding/internal/ModelClass.h"
#include "RkXmlLib16/binding/internal/ReadingValue.h"
#include "RkXmlLib16/binding/internal/RecordText.h"
#include "RkXmlLib16/document/XmlWriter.h"
#include "RkXmlLib16/document/internal/NodeText.h"
#include "RkXmlLib16/document/internal/Refusal.h"
#include "RkXmlLib16/facets/FacetChecks.h"
#include "RkXmlLib16/types/XsdLexical.h"

namespace RkXmlLib16 {

using namespace RkXmlLib16Data;

namespace {

[[noreturn, gnu::cold, gnu::noinline]] void ThrowMandatory(const CNameToken& name) {
  throw CRkInvalidParamException(
      FormatString(L"The Property [%ls] is mandatory, it may not be NULL", name.GetLocalName().c_str()));
}

bool IsValue(const RkVariant& value) { return value.IsValid() && !value.IsNil(); }

void CheckFacets(const wchar_t* name, const ModelProperty& property, const RkVariant& value) {
  if (property.IsEnumeration() && !property.IsAllowed(value.GetString())) ThrowInvalidValue(name, value.GetString());
  if (!property.facets.IsEmpty())
    CXmlObjectHelper::CheckRestriction(name, value, property.values->itemType, property.facets);
}

}  // namespace

int FindEnumeration(Span<const wchar_t*> texts, std::wstring_view text) {
  for (std::size_t i = 0; i < texts.size(); ++i)
    if (texts[i] == text) return static_cast<int>(i);
  throw CRkInvalidValueException(FormatString(L"Unknown enumeration value [%ls].", std::wstring(text).c_str()));
}

// ---- Which properties are set

bool CPropertySet::HasMore(int property) const noexcept {
  const auto before = [](const Word& word, int number) { return word.number < number; };
  const auto at = std::lower_bound(m_more->begin(), m_more->end(), property / kWord, before);
  return at != m_more->end() && at->number == property / kWord && (at->bits & Bit(property)) != 0;
}

void CPropertySet::AddMore(int property) {
  SetChanged();
  if (m_more == nullptr) m_more = std::make_unique<std::vector<Word>>();
  const auto before = [](const Word& word, int number) { return word.number < number; };
  auto at = std::lower_bound(m_more->begin(), m_more->end(), property / kWord, before);
  if (at == m_more->end() || at->number != property / kWord) at = m_more->insert(at, {property / kWord, 0});
  at->bits |= Bit(property);
}

void CPropertySet::RemoveMore(int property) noexcept {
  for (Word& word : *m_more)
    if (word.number == property / kWord) word.bits &= ~Bit(property);
}

// ---- Objects

CModelObject::CModelObject(const ClassModel& model, const wchar_t* elementName)
    : m_class(model.Require()), m_declaration(model.element) {
  if (elementName == nullptr) {
    m_elementName = m_class.GetElementName();
    return;
  }
  if (m_declaration != nullptr && m_declaration->name != std::wstring_view(elementName)) m_declaration = nullptr;
  SetElementName(elementName);
}

CModelObject::~CModelObject() { Unwatch(); }

const ClassModel& CModelObject::GetModel() const noexcept { return m_class.GetModel(); }
CParentElementInfo* CModelObject::GetClassInfo() const { return m_class.GetInfo(); }
CElementInfo** CModelObject::GetClassElementInfo() const { return m_class.GetElements(); }
CAttributeInfo** CModelObject::GetClassAttributeInfo() const { return m_class.GetAttributes(); }
const wchar_t* CModelObject::GetNamespace() const { return m_class.GetModel().namespaceUri; }
const wchar_t* CModelObject::GetTargetNamespace() const {
  return m_declaration != nullptr ? m_declaration->namespaceUri : GetNamespace();
}

void CModelObject::SetDeclaration(const ElementModel& declaration) {
  if (m_declaration == &declaration) return;
  m_declaration = &declaration;
  SetElementName(declaration.name);
}

const wchar_t* CModelObject::GetSelected() const {
  for (const MemberModel& member : GetModel().members)
    if (IsFilled(member.property)) return member.name;
  return nullptr;
}

// ---- Properties

CMember CModelObject::FindMember(int) { return {}; }

void CModelObject::AccessProperty(int property, bool get, RkVariant& value) {
  const CMember member = FindMember(property);
  if (member.IsNone()) {
    if (get) value.SetInvalid();
  } else if (get) {
    GetProperty(property, member, value);
  } else {
    SetProperty(property, member, value);
  }
}

void CModelObject::GetProperty(int property, CMember member, RkVariant& value) {
  const MemberType& type = member.Type();
  if (type.kind == MemberType::Kind::Value) {
    const ModelProperty& info = m_class.GetProperty(property);
    if (IsSet(property)) return type.give(member.At(), info, value);
    if (info.startsNil) return value.SetNil();
    return info.startsEmpty ? value.SetString(std::wstring_view()) : value.SetInvalid();
  }
  CXmlObjectBase* const object = type.getObject(member.At());
  if (type.kind == MemberType::Kind::Object) return object != nullptr ? value.SetXmlObject(object) : value.SetInvalid();
  if (object == nullptr && NeedsCollection(property)) {
    type.setObject(member.At(), MakeCollection(property));
    Mark(property);
  }
  value.SetXmlCollection(static_cast<CXmlCollectionBase*>(type.getObject(member.At())));
}

void CModelObject::SetProperty(int property, CMember member, RkVariant& value) {
  const MemberType& type = member.Type();
  if (type.kind == MemberType::Kind::Collection) {
    CXmlCollectionBase* const collection = value.PeekXmlCollection();
    const bool isChoice =
        m_class.GetProperty(property).member != nullptr && GetModel().group == XmlElementGroupType_Choice;
    if (isChoice && collection != nullptr && collection->GetCount() > 0) Select(property);
    m_set.SetChanged();
    type.setObject(member.At(), collection);
    return collection != nullptr ? Mark(property) : Unmark(property);
  }
  if (type.kind == MemberType::Kind::Object) {
    const CSmartPtr<CXmlObjectBase> object(value.PeekXmlObject());
    Adopt(property, object);
    return type.setObject(member.At(), object);
  }
  const ModelProperty& info = m_class.GetProperty(property);
  if (!IsValue(value)) {
    if (info.member != nullptr && value.IsNil() && GetModel().group == XmlElementGroupType_Choice) Select(property);
    m_set.SetChanged();
    type.reset(member.At());
    return Unmark(property);
  }
  if (info.mustCheck) CheckSet(property, value);
  type.take(member.At(), info, value);
  Mark(property);
}

// Apart, so that the other way does not have the space for the variant on the stack.
void CModelObject::SetFromTextSlowly(int property, std::wstring_view text, bool& isValue) {
  const ValueModel& values = *m_class.GetProperty(property).values;
  ReadingValue value(text.size());
  value.Get().FromText(text, values.itemType, values.whitespace);
  isValue = true;
  AccessProperty(property, /*get=*/false, value.Get());
}

namespace {

struct GivenText {
  explicit GivenText(std::wstring_view given) : text(given) {}
  std::wstring_view Get() const { return text; }
  std::wstring_view text;
};

}  // namespace

bool CModelObject::TrySetFromText(int property, std::wstring_view text) {
  return TrySetText<GivenText, /*mayBeEmpty=*/true>(property, text);
}

bool CModelObject::TrySetFrom(int property, const CXmlElement& element) {
  return TrySetText<CNodeText, /*mayBeEmpty=*/false>(property, element);
}

bool CModelObject::TrySetObject(int property, CXmlObjectBase* object) {
  const CMember member = FindMember(property);
  if (!member.Is(MemberType::Kind::Object)) return false;
  Adopt(property, object);
  member.Type().setObject(member.At(), object);
  return true;
}

bool CModelObject::MustCheck(int property) const noexcept { return m_class.GetProperty(property).mustCheck; }

void CModelObject::CheckValue(int property, CMember value) {
  const ModelProperty& info = m_class.GetProperty(property);
  if (!info.isPlain) {
    if (!info.texts.empty()) value.Type().check(value.At(), info, info.name);
    RkVariant variant;
    value.Type().give(value.At(), info, variant);
    return CheckSet(property, variant);
  }
  m_set.SetChanged();
  value.Type().check(value.At(), info, info.name);
  if (info.member != nullptr && GetModel().group == XmlElementGroupType_Choice) Select(property);
}

void CModelObject::CheckSet(int property, RkVariant& value) {
  m_set.SetChanged();
  const ModelProperty& info = m_class.GetProperty(property);
  if (property == GetModel().textProperty) return CheckText(property, value);
  const ValueModel& values = *info.values;
  if (!info.isPlain) {
    const Reading* const reading = Reading::Current();
    if (values.holdsQNames && reading != nullptr) KeepPrefixes(*reading->element, reading->text);
    if (values.needsCheck || info.fixed != nullptr)
      CheckModelText(info.name, values, info.fixed, reading != nullptr ? std::wstring(reading->text) : value.ToString(),
                     reading != nullptr ? ResolverOf(*reading->element) : nullptr);
  }
  CheckFacets(info.name, info, value);
  if (info.member != nullptr && GetModel().group == XmlElementGroupType_Choice) Select(property);
}

// The text of an element comes as it was read, and in its own type from the application.
void CModelObject::CheckText(int property, RkVariant& value) {
  const ModelProperty& info = m_class.GetProperty(property);
  const ValueModel& values = *info.values;
  const DefaultModel none;
  const DefaultModel& given = m_declaration != nullptr ? m_declaration->value : none;
  if (GetModel().isMixed) {
    if (!GetModel().members.empty() && CWhitespaceUtils::IsBlank(value.GetString())) value.SetString(L"");
    if (value.GetString().empty() && given.text != nullptr) value.SetString(given.text);
    return;
  }
  const bool isText = value.GetItemType() == ItemType_string;
  const bool needsCopy =
      values.needsCheck || values.holdsQNames || given.isFixed || (isText && value.GetString().empty());
  const Reading* const reading = Reading::Current();
  std::wstring text;
  if (needsCopy) text = value.ToString();
  if (needsCopy && text.empty() && given.text != nullptr) text = given.text;
  if (isText) value.FromText(needsCopy ? text : value.GetString(), values.itemType, values.whitespace);
  if (values.holdsQNames && reading != nullptr) KeepPrefixes(*reading->element, text);
  if (values.needsCheck || given.isFixed)
    CheckModelText(info.name, values, given.isFixed ? &given : nullptr, text,
                   reading != nullptr ? ResolverOf(*reading->element) : nullptr);
  CheckFacets(GetElementNameRef().c_str(), info, value);
}

bool CModelObject::IsFilled(int property) const {
  if (!IsSet(property)) return false;
  const MemberModel* const member = m_class.GetProperty(property).member;
  if (member == nullptr || !member->IsCollection()) return true;
  RkVariant value;
  ReadProperty(property, value);
  return value.PeekXmlCollection() != nullptr && value.PeekXmlCollection()->GetCount() > 0;
}

void CModelObject::SelectAmong(int property) {
  for (const MemberModel& other : GetModel().members) {
    if (other.property == property || !IsFilled(other.property)) continue;
    throw CRkInvalidStateException(FormatString(
        L"The Property [%ls] is already set. Only one element within this class bay be set at a time",  // sic
        other.name));
  }
}

void CModelObject::Adopt(int property, CXmlObjectBase* object) {
  m_set.SetChanged();
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
  if (GetModel().group == XmlElementGroupType_Choice) {
    MakeRare().watched.emplace_front(collection);
    collection->AddEventListener(this);
  }
  return collection;
}

void CModelObject::Unwatch() {
  if (m_rare == nullptr) return;
  for (CXmlCollectionBase* collection : m_rare->watched) collection->RemoveEventListener(this);
  m_rare->watched.clear();
}

void CModelObject::Ensure(int property) {
  const CMember member = FindMember(property);
  if (!member.Is(MemberType::Kind::Collection) || m_class.GetProperty(property).member == nullptr)
    return EnsureByAccess(property);
  if (IsSet(property) && member.Type().getObject(member.At()) != nullptr) return;
  const bool wasChanged = m_set.IsChanged();
  member.Type().setObject(member.At(), MakeCollection(property));
  Mark(property);
  m_set.SetChanged(wasChanged);
}

void CModelObject::EnsureByAccess(int property) {
  RkVariant value;
  if (IsSet(property)) ReadProperty(property, value);
  if (value.PeekXmlCollection() != nullptr || value.PeekXmlObject() != nullptr) return;
  const bool wasChanged = m_set.IsChanged();
  const ModelProperty& info = m_class.GetProperty(property);
  if (property == GetModel().attributeWildcardProperty || info.member == nullptr) {
    value.SetXmlCollection(new CAttributeCol);
  } else if (info.member->IsCollection()) {
    value.SetXmlCollection(MakeCollection(property));
  } else {
    value.SetXmlObject(new CElement(L"AnyElement"));
  }
  AccessProperty(property, /*get=*/false, value);
  m_set.SetChanged(wasChanged);
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
  Xsd::ForEachToken(text, [&](std::wstring_view token) {
    const std::size_t colon = token.find(L':');
    const CXmlName* const uri =
        colon != std::wstring_view::npos && colon > 0 ? element.LookupNamespaceRef(token.substr(0, colon)) : nullptr;
    if (uri == nullptr) return;
    auto& prefixes = MakeRare().prefixes;
    if (prefixes == nullptr) prefixes = std::make_unique<std::map<std::wstring, std::wstring>>();
    (*prefixes)[std::wstring(token.substr(0, colon))] = std::wstring(uri->View());
  });
}

CModelObject::Rare& CModelObject::MakeRare() {
  if (m_rare == nullptr) m_rare = std::make_unique<Rare>();
  return *m_rare;
}

void CModelObject::Begin() {
  for (const int property : m_class.GetInitial()) {
    const CMember member = FindMember(property);
    if (IsSet(property) || member.IsNone()) continue;
    const ModelProperty& info = m_class.GetProperty(property);
    member.Type().take(member.At(), info, info.initial);
    Mark(property);
  }
  m_set.SetChanged(false);
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
  if (m_rare != nullptr) m_rare->prefixes.reset();
  Unwatch();
  Begin();
}

// ---- Reading and writing

void CModelObject::BeginFromXml_Int(CXmlElement* element, CXmlElement* firstChild, const CSerializationContext& context,
                                    bool) {
  if (m_set.IsChanged()) Reset();
  m_set.SetChanged();
  const ClassModel& model = GetModel();
  if (model.IsInline()) return;
  const CXmlAttributes& attributes = element->GetAttributes();
  bool mayBeUnusual = model.isAbstract || model.isMixed || (model.textProperty < 0 && !CNodeText::IsBlank(*element));
  for (const CXmlAttribute* attribute : attributes) mayBeUnusual |= !attribute->GetNamespaceURI().empty();
  if (RKXML_UNLIKELY(mayBeUnusual)) CheckStart(element, firstChild, context);
}

// What is asked for of a class that is abstract or mixed, an element with xsi:type or xsi:nil, or misplaced text.
void CModelObject::CheckStart(const CXmlElement* element, const CXmlElement* firstChild,
                              const CSerializationContext& context) const {
  const ClassModel& model = GetModel();
  const auto errorOf = [&](const std::wstring& message) {
    return CRkValidationException(message, element->GetXPath());
  };
  const auto refuse = [&](const std::wstring& message) { Refuse(context, errorOf(message), *element); };
  if (model.isAbstract) refuse(FormatString(L"The type [%ls] is abstract.", model.name));
  const bool hasFixed = m_declaration != nullptr && m_declaration->value.isFixed;
  if (model.textProperty < 0 && !CNodeText::IsBlank(*element))
    refuse(FormatString(L"Unexpected text found in the element [%ls].", element->GetLocalName().c_str()));
  const auto isOther = [&](std::wstring_view text) { return !text.empty() && text != m_declaration->value.text; };
  if (model.isMixed && hasFixed && (firstChild != nullptr || isOther(element->GetText())))
    refuse(FormatString(L"The fixed value of the element [%ls] is [%ls].", element->GetLocalName().c_str(),
                        m_declaration->value.text));
  const CXmlAttributes attributes = element->GetAttributes();
  if (std::all_of(attributes.begin(), attributes.end(),
                  [](const CXmlAttribute* attribute) { return attribute->GetNamespaceURI().empty(); }))
    return;

  const NamedType named = FindNamedType(model.schema, *element);
  const bool isOwn = model.simple != nullptr ? named.simple == model.simple : named.object == &model;
  if (named.isNamed && !isOwn) {
    const bool isSimple = named.simple != nullptr && (model.isAnyType || model.simple != nullptr);
    if (!isSimple || (!model.isAnyType && !named.simple->IsDerivedFrom(model.simple)))
      refuse(FormatString(L"The type [%ls] does not fit the element [%ls].",
                          element->GetAttribute(L"type", kInstanceNamespace).c_str(), element->GetLocalName().c_str()));
    else if (const auto error = named.simple->Check(element->GetText(), ResolverOf(*element)))
      throw At(errorOf(*error), *element);
  }
  if (!IsNilTrue(*element)) return;
  if (m_declaration == nullptr || !m_declaration->isNillable)
    throw At(errorOf(L"Invalid use of 'nil' attribute in non-nillable element."), *element);
  if (firstChild != nullptr || !element->GetText().empty())
    refuse(FormatString(L"The element [%ls] is nil and must be empty.", element->GetLocalName().c_str()));
  if (hasFixed)
    refuse(FormatString(L"The element [%ls] has a fixed value and cannot be nil.", element->GetLocalName().c_str()));
}

CXmlObjectBase* CModelObject::PeekObject(int property) const {
  const CMember member = const_cast<CModelObject*>(this)->FindMember(property);  // which changes nothing
  return member.Is(MemberType::Kind::Object) ? member.Type().getObject(member.At()) : nullptr;
}

inline std::wstring_view CModelObject::PeekText(int property, TextSpace& space) const {
  const CMember member = const_cast<CModelObject*>(this)->FindMember(property);  // which changes nothing
  if (!member.Is(MemberType::Kind::Value)) return {};
  return member.Type().print(member.At(), m_class.GetProperty(property), space);
}

// Apart, so that the objects inside each other do not all have the space on the stack.
bool CModelObject::WriteValue(const CElementInfo& record, const CSerializationContext& context,
                              CXmlWriter* writer) const {
  TextSpace space(writer->GetValueBuffer());
  const std::wstring_view text = PeekText(record.GetPropertyIndex(), space);
  if (text.data() == nullptr) return false;
  record.WriteText(context, text, writer);
  return true;
}

inline bool CModelObject::WriteMember(const CElementInfo& record, bool isSet, const CSerializationContext& context,
                                      CXmlWriter* writer) const {
  return (isSet && record.IsModelValue() && WriteValue(record, context, writer)) ||
         record.ElementToXml(context, this, writer);
}

bool CModelObject::WriteMembers(const CSerializationContext& context, CXmlWriter* writer, bool isChoice) const {
  const WrittenMembers& members = m_class.GetWritten();
  const std::uint64_t set = m_set.GetFirst();
  std::uint64_t left = (set & members.ifSet) | members.always;
  for (; left != 0; left &= left - 1) {
    const auto property = static_cast<std::size_t>(__builtin_ctzll(left));
    const bool isSet = (set >> property & 1) != 0;
    if (WriteMember(*members.first[property], isSet, context, writer) && isChoice) return true;
  }
  for (const WrittenMembers::Other& other : members.others) {
    const bool isSet = IsSet(other.record->GetPropertyIndex());
    if (!isSet && other.isOnlyIfSet) continue;
    if (WriteMember(*other.record, isSet, context, writer) && isChoice) return true;
  }
  return false;
}

inline void CModelObject::WriteAttributes(const CSerializationContext& context, CXmlWriter* writer) const {
  const WrittenMembers& members = m_class.GetWritten();
  TextSpace space(writer->GetValueBuffer());
  for (const WrittenMembers::Attribute& attribute : members.attributes) {
    if (!IsSet(attribute.property)) {
      if (attribute.isOptional) continue;
      ThrowMandatory(attribute.name);
    }
    const std::wstring_view text = PeekText(attribute.property, space);
    if (text.data() == nullptr)
      attribute.record.AttributeToXml(context, this, writer);
    else if (text.empty() || text != attribute.omitted || !context.GetNoOptionalAttributeDefaultOutput())
      CRecordOutput::WriteAttribute(*writer, attribute.name, text, attribute.itemType, /*isCanonical=*/true);
  }
  if (members.attributeWildcard != nullptr) members.attributeWildcard->AttributeToXml(context, this, writer);
}

void CModelObject::DeclarePrefixes(CXmlWriter& writer) const {
  for (const auto& [prefix, uri] : *m_rare->prefixes) writer.DeclareNamespace(prefix, uri);
}

void CModelObject::AttributesToXml_Int(CXmlWriter* writer, const CSerializationContext& context) const {
  try {
    const ClassModel& model = GetModel();
    if (m_rare != nullptr && m_rare->prefixes != nullptr) DeclarePrefixes(*writer);
    const bool isOther = m_declaration == nullptr || (model.simple != nullptr ? m_declaration->simple != model.simple
                                                                              : m_declaration->object != &model);
    if (!model.IsInline() && isOther && model.name[0] != L'\0' && context.GetWriteTypeAttribute())
      writer->WriteAttributeType(model.namespaceUri, model.name, ItemType_string);
    WriteAttributes(context, writer);
    if (!m_class.HasInlineAttributes()) return;
    for (CElementInfo** record = m_class.GetElements(); *record != nullptr; ++record)
      if ((*record)->MayHaveAttributes()) (*record)->PseudoChildAttributeToXml(context, this, writer);
  } catch (const CRkException& e) {
    throw CRkException(L"Failed to convert attributes to XML", e);
  }
}

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
      NewModelObject(*m_member.object, m_member.object->IsInline() ? nullptr : &m_member, &m_elementName);
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
      CXmlElement* const next = ReadGroup(item, parent, current, context, isOptionalChoice);
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
                                             : NewModelObject(*m_member.object, &m_member, &m_elementName);
    if (item == nullptr) break;
    item->FromXml_Int(current, current->GetFirstElement(), context, /*isOptionalChoice=*/false);
    AppendItem(item);
    current = current->GetNextSiblingElement();
  }
  return current;
}

}  // namespace RkXmlLib16
