#include "RkXmlLib16/binding/internal/ModelClass.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <memory>
#include <mutex>
#include <numeric>
#include <unordered_map>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/binding/SimpleTypeModel.h"
#include "RkXmlLib16/binding/internal/NilValue.h"
#include "RkXmlLib16/binding/internal/ReadSession.h"
#include "RkXmlLib16/document/internal/Refusal.h"
#include "RkXmlLib16/wildcards/NamespaceRule.h"

namespace RkXmlLib16Data {

using namespace RkXmlLib16;

namespace {

// The members that class records make, in blocks that stay where they are, so that looking one up takes no lock.
struct FactoryTable {
  static constexpr int kBlockSize = 4096;
  static constexpr int kBlocks = 4096;
  struct Entry {
    const MemberModel& member;
    const CSharedName name;
  };
  using Block = std::array<std::atomic<const Entry*>, kBlockSize>;

  std::atomic<const Entry*>& At(int id) {
    return (*blocks[static_cast<std::size_t>(id / kBlockSize)].load())[static_cast<std::size_t>(id % kBlockSize)];
  }

  std::array<std::atomic<Block*>, kBlocks> blocks{};
  std::mutex mutex;
  std::vector<int> free;
  int count = 0;
};

FactoryTable& Table() {
  static auto& table = *new FactoryTable;  // objects may be made until the process ends
  return table;
}

}  // namespace

int ModelFactories::Add(const MemberModel& member) {
  FactoryTable& table = Table();
  auto entry = std::make_unique<const FactoryTable::Entry>(FactoryTable::Entry{member, CSharedName(member.name)});
  const std::lock_guard lock(table.mutex);
  int id = table.count;
  if (!table.free.empty()) {
    id = table.free.back();
    table.free.pop_back();
  } else {
    if (id == FactoryTable::kBlocks * FactoryTable::kBlockSize)
      throw CRkException(L"Limit exceeded: too many classes of schemas.");
    auto& block = table.blocks[static_cast<std::size_t>(id / FactoryTable::kBlockSize)];
    if (block.load() == nullptr) {
      table.free.reserve(static_cast<std::size_t>(id) + FactoryTable::kBlockSize);  // Remove must not allocate
      block = new FactoryTable::Block;
    }
    ++table.count;
  }
  table.At(id) = entry.release();
  return id;
}

void ModelFactories::Remove(int id) noexcept {
  FactoryTable& table = Table();
  const std::lock_guard lock(table.mutex);
  delete table.At(id).exchange(nullptr);
  table.free.push_back(id);
}

// The name of the element is that of the member.
CSmartPtr<CXmlObjectBase> ModelFactories::Create(int id, const wchar_t*) {
  const auto& [member, name] = *Table().At(id).load();
  return RkXmlLib16Data::NewModelObject(*member.object, member.object->IsInline() ? nullptr : &member, &name);
}

CPrimitiveRestrictions FacetsOf(const ValueModel& v) {
  return CPrimitiveRestrictions(v.pattern, v.minLength, v.maxLength, v.minInclusive, v.maxInclusive, v.minExclusive,
                                v.maxExclusive, v.length, v.totalDigits, v.fractionDigits);
}

// ---- Classes

namespace {

// Not what is an error when it is missing, or nil at first.
bool IsWrittenOnlyIfSet(const ClassModel& owner, const MemberModel& member) {
  if (member.IsCollection()) return member.minOccurs == 0;
  const bool mayBeMissing =
      member.cardinality == MemberModel::Cardinality::Optional || owner.group == XmlElementGroupType_Choice;
  return mayBeMissing && !member.isNillable;
}

}  // namespace

ClassModel::~ClassModel() { delete m_made.load(); }

const CModelClass& ClassModel::Make() const {
  auto made = std::make_unique<const CModelClass>(*this);
  const CModelClass* none = nullptr;
  return m_made.compare_exchange_strong(none, made.get()) ? *made.release() : *none;
}

void ModelProperty::SetTexts(Span<const wchar_t*> enumeration) {
  constexpr std::size_t kFew = 8;  // which are as soon found one after the other
  texts.assign(enumeration.begin(), enumeration.end());
  if (texts.size() <= kFew) return;
  order.resize(texts.size());
  std::iota(order.begin(), order.end(), 0);
  std::stable_sort(order.begin(), order.end(), [this](int a, int b) { return TextOf(a) < TextOf(b); });
}

int ModelProperty::FindText(std::wstring_view text) const noexcept {
  if (order.empty()) {
    const auto found = std::find(texts.begin(), texts.end(), text);
    return found != texts.end() ? static_cast<int>(found - texts.begin()) : -1;
  }
  const auto found = std::lower_bound(order.begin(), order.end(), text,
                                      [this](int number, std::wstring_view wanted) { return TextOf(number) < wanted; });
  return found != order.end() && TextOf(*found) == text ? *found : -1;
}

void CModelClass::TakeLeftOut(const CModelClass& base) {
  for (std::size_t i = 0; i < std::min(base.m_properties.size(), m_properties.size()); ++i) {
    ModelProperty& info = m_properties[i];
    if (info.member == nullptr && info.values == nullptr) info = base.m_properties[i];
  }
}

WrittenMembers::Attribute::Attribute(const CAttributeInfo& info, ItemType type)
    : record(info),
      name(info.GetName()),
      property(info.GetPropertyIndex()),
      itemType(type),
      isOptional(info.IsOptional()),
      omitted(isOptional ? std::wstring_view(info.GetDefaultValue()) : std::wstring_view()) {}

void WrittenMembers::Add(const CElementInfo& record, bool isOnlyIfSet) {
  const int property = record.GetPropertyIndex();
  const bool isInOrder = others.empty() && property >= static_cast<int>(first.size());
  if (!isInOrder || property >= CPropertySet::kInPlace) return others.push_back({&record, isOnlyIfSet});
  first.resize(static_cast<std::size_t>(property) + 1);
  first.back() = &record;
  (isOnlyIfSet ? ifSet : always) |= CPropertySet::Bit(property);
}

CModelClass::CModelClass(const ClassModel& model)
    : m_model(model),
      m_elementName(model.element != nullptr ? model.element->name : model.name),
      m_properties(static_cast<std::size_t>(model.propertyCount)) {
  for (const AttributeModel& attribute : model.attributes) NoteAttribute(attribute);
  for (const MemberModel& member : model.members) NoteMember(member);
  if (model.textProperty >= 0) {
    ModelProperty& info = NoteValues(model.textProperty, L"#text", model.text, nullptr);
    info.mustCheck = true;
    info.isPlain = false;
    info.startsEmpty = model.isMixed;
  }
  if (model.base != nullptr) TakeLeftOut(model.base->Require());
  m_records.Make(model);
  CAttributeInfo** attributeRecord = m_records.attributes;
  for (const AttributeModel& attribute : model.attributes)
    m_written.attributes.emplace_back(**attributeRecord++, attribute.values->itemType);
  m_written.attributeWildcard = *attributeRecord;
  CElementInfo** record = m_records.elements;
  for (const MemberModel& member : model.members) {
    m_written.Add(**record, IsWrittenOnlyIfSet(model, member));
    const bool mayHaveAttributes = (*record)->MayHaveAttributes();  // asks for the facts of each
    const bool isGroup = member.kind == MemberModel::Kind::InlineGroup;
    if (mayHaveAttributes && (!isGroup || member.object->Require().MayWriteAttributes())) m_hasInlineAttributes = true;
    ++record;
  }
}

bool CModelClass::MayWriteAttributes() const noexcept {
  const auto declaresPrefixes = [](const ModelProperty& property) {
    return property.values != nullptr && property.values->holdsQNames;
  };
  return m_hasInlineAttributes || *m_records.attributes != nullptr ||
         std::any_of(m_properties.begin(), m_properties.end(), declaresPrefixes);
}

ModelProperty& CModelClass::NoteValues(int property, const wchar_t* name, const ValueModel* values,
                                       const DefaultModel* value) {
  ModelProperty& info = m_properties[static_cast<std::size_t>(property)];
  info.name = name;
  info.values = values;
  if (values == nullptr) return info;
  info.facets = FacetsOf(*values);
  info.fixed = value != nullptr && value->isFixed ? value : nullptr;
  info.SetTexts(values->enumeration);
  info.isPlain = !values->needsCheck && !values->holdsQNames && info.fixed == nullptr;
  info.mayRefuse = !info.facets.IsEmpty() || values->texts != nullptr;
  info.mustCheck = !info.isPlain || !info.texts.empty() || info.mayRefuse;
  return info;
}

void CModelClass::NoteAttribute(const AttributeModel& attribute) {
  ModelProperty& info = NoteValues(attribute.property, attribute.name, attribute.values, &attribute.value);
  if (attribute.value.text == nullptr) return;
  info.initial.FromText(attribute.value.text, attribute.values->itemType, attribute.values->whitespace);
  if (!info.texts.empty()) info.initial.SetI4(info.FindText(info.initial.GetString()));
  m_initial.push_back(attribute.property);
}

void CModelClass::NoteMember(const MemberModel& member) {
  ModelProperty& info = NoteValues(member.property, member.name, member.values, &member.value);
  info.member = &member;
  info.startsNil = member.values != nullptr && member.isNillable && !member.IsCollection();
  const bool isChoice = m_model.group == XmlElementGroupType_Choice;
  info.mustCheck = info.mustCheck || isChoice;
  info.mayRefuse = info.mayRefuse || isChoice;
}

void CModelClass::Records::Make(const ClassModel& model) {
  factoryIds.reserve(model.members.size());
  elements = new CElementInfo* [model.members.size() + 1] {};
  attributes = new CAttributeInfo* [model.attributes.size() + 2] {};
  CElementInfo** element = elements;
  for (const MemberModel& member : model.members) {
    *element = NewModelRecord(model, member, factoryIds);
    (*element++)->SetOfModel();
  }
  CAttributeInfo** attribute = attributes;
  for (const AttributeModel& described : model.attributes) *attribute++ = NewModelRecord(described);
  if (model.attributeWildcard != nullptr) *attribute = NewWildcardRecord(model);
  info = new CParentElementInfo(model.group, model.elementType, model.name, model.namespaceUri, model.strictAttributes,
                                model.contentMayBeEmpty, model.textProperty,
                                model.text != nullptr ? model.text->itemType : ItemType_none, nullptr,
                                /*simpleContentAsText=*/true);
  info->SetOfModel();
}

CModelClass::Records::~Records() {
  CXmlGeneratedClass::CleanMetaData(info, elements, attributes);
  for (const int id : factoryIds) ModelFactories::Remove(id);
}

// ---- Values

const Reading*& Reading::Current() noexcept {
  static thread_local const Reading* current = nullptr;
  return current;
}

bool IsNilTrue(const CXmlElement& element) {
  return ParseNilValue(element.GetAttribute(L"nil", kInstanceNamespace)) == NilValue::True;
}

NamespaceResolver ResolverOf(const CXmlElement& element) {
  return [&element](std::wstring_view prefix) -> std::optional<std::wstring> {
    const CXmlName* const uri = element.LookupNamespaceRef(prefix);
    if (uri != nullptr) return std::wstring(uri->View());
    if (prefix.empty()) return std::wstring();
    if (prefix == L"xml") return std::wstring(kXmlNamespace);
    return std::nullopt;
  };
}

NamespaceResolver ResolverOf(Span<PrefixModel> prefixes) {
  return [prefixes](std::wstring_view prefix) -> std::optional<std::wstring> {
    for (const PrefixModel& known : prefixes)
      if (known.prefix == prefix) return std::wstring(known.namespaceUri);
    if (prefix.empty()) return std::wstring();
    if (prefix == L"xml") return std::wstring(kXmlNamespace);
    return std::nullopt;
  };
}

void ThrowInvalidValue(const wchar_t* name, std::wstring_view text) {
  throw CRkInvalidValueException(FormatString(L"Invalid Value for %ls [%ls].", name, std::wstring(text).c_str()));
}

void CheckModelText(const wchar_t* name, const ValueModel& values, const DefaultModel* fixed, std::wstring_view text,
                    const NamespaceResolver& resolver) {
  if (values.needsCheck && values.type != nullptr)
    if (const auto error = values.type->Check(text, resolver))
      throw CRkInvalidValueException(FormatString(L"Invalid Value for %ls: %ls", name, error->c_str()));
  if (fixed == nullptr || text == fixed->text) return;
  if (values.type == nullptr || !values.type->AreEqual(text, fixed->text, resolver, ResolverOf(fixed->prefixes)))
    throw CRkInvalidValueException(FormatString(L"Invalid Value for %ls [%ls]: the fixed value is [%ls].", name,
                                                std::wstring(text).c_str(), fixed->text));
}

// ---- Schemas

namespace {

struct ModelName {
  std::wstring_view uri;
  std::wstring_view name;

  friend bool operator==(const ModelName& a, const ModelName& b) noexcept { return a.name == b.name && a.uri == b.uri; }
};

struct ModelNameHash {
  std::size_t operator()(const ModelName& name) const noexcept {
    const std::hash<std::wstring_view> hash;
    return hash(name.name) * 31 + hash(name.uri);
  }
};

template <class T>
using ModelTable = std::unordered_map<ModelName, T, ModelNameHash>;

// The text of an element that nothing but the simple type in its xsi:type is known of, where no class is of that type.
class CTextObject final : public CModelObject {
 public:
  explicit CTextObject(const ClassModel& model) : CModelObject(model, nullptr) {}

 protected:
  CMember FindMember(int property) override { return property == 0 ? CMember(m_text) : CMember(); }

 private:
  std::wstring m_text;
};

CModelObject* NewTextObject(const ClassModel& model) { return new CTextObject(model); }

CWhitespaceUtils::WhitespaceRule RuleOf(const CSimpleType& type) {
  if (type.IsDerivedFrom(BuiltIn(Xsd::BuiltInType::Token))) return CWhitespaceUtils::collapse;
  if (type.IsDerivedFrom(BuiltIn(Xsd::BuiltInType::NormalizedString))) return CWhitespaceUtils::replace;
  const bool isText = type.IsDerivedFrom(BuiltIn(Xsd::BuiltInType::String)) || type.GetBase() == nullptr;
  return isText ? CWhitespaceUtils::preserve : CWhitespaceUtils::collapse;
}

struct TextClass {
  TextClass(const SchemaModel& schema, const CSimpleType& type)
      : name(type.GetName()),
        uri(type.GetNamespace()),
        values(ValueModel(ItemType_string, RuleOf(type)).Type(&type).Checked().QNames()),
        model(Data(schema)) {}
  TextClass(const TextClass&) = delete;
  TextClass& operator=(const TextClass&) = delete;

  const std::wstring name;
  const std::wstring uri;
  const ValueModel values;
  const ClassModel model;

 private:
  ClassData Data(const SchemaModel& schema) const {
    ClassData data(name.c_str(), uri.c_str(), XmlElementGroupType_Sequence, NewTextObject);
    data.schema = &schema;
    data.simple = values.type;
    data.text = &values;
    data.textProperty = 0;
    data.propertyCount = 1;
    return data;
  }
};

}  // namespace

struct SchemaIndex {
  explicit SchemaIndex(const SchemaModel& schema);

  ModelTable<NamedType> types;
  ModelTable<const ElementModel*> elements;
  ModelTable<const AttributeModel*> attributes;
  std::unordered_map<const CSimpleType*, TextClass> textClasses;  // of the simple types without a class
};

SchemaIndex::SchemaIndex(const SchemaModel& schema) {
  const auto type = [this](std::wstring_view uri, std::wstring_view name) -> NamedType& { return types[{uri, name}]; };
  for (const CSimpleTypeModel& simple : kBuiltInTypes.types)
    type(simple.GetNamespace(), simple.GetName()).simple = &simple;
  for (const CSimpleType* simple : schema.simpleTypes) type(simple->GetNamespace(), simple->GetName()).simple = simple;
  for (const ClassModel* object : schema.classes) {
    NamedType& named = type(object->namespaceUri, object->name);
    named.object = object;
    if (object->simple != nullptr) named.simple = object->simple;
  }
  for (auto& [name, found] : types) {
    found.isNamed = true;
    if (found.object == nullptr) textClasses.try_emplace(found.simple, schema, *found.simple);
  }
  for (const ElementModel* element : schema.elements)
    elements.try_emplace({element->namespaceUri, element->name}, element);
  for (const AttributeModel& attribute : schema.attributes)
    attributes[{attribute.namespaceUri, attribute.name}] = &attribute;
}

SchemaModel::~SchemaModel() { delete index.load(); }

namespace {

const SchemaIndex& IndexOf(const SchemaModel& schema) {
  const SchemaIndex* known = schema.index.load(std::memory_order_acquire);
  if (known != nullptr) return *known;
  auto made = std::make_unique<const SchemaIndex>(schema);
  return schema.index.compare_exchange_strong(known, made.get()) ? *made.release() : *known;
}

NamedType FindType(const SchemaModel& schema, std::wstring_view uri, std::wstring_view name) {
  const auto& types = IndexOf(schema).types;
  const auto found = types.find({uri, name});
  return found != types.end() ? found->second : NamedType{/*isNamed=*/true, nullptr, nullptr};
}

const ElementModel* FindElement(const SchemaModel& schema, std::wstring_view uri, std::wstring_view name) {
  const auto& elements = IndexOf(schema).elements;
  const auto found = elements.find({uri, name});
  return found != elements.end() ? found->second : nullptr;
}

bool IsAnyType(const ClassModel* object) { return object != nullptr && object->isAnyType; }

// The class for xsi:type on an element of the declaration; null when it does not fit.
const ClassModel* FindSubstitute(const ElementModel& declaration, const NamedType& type) {
  const ClassModel* const object = type.object;
  if (declaration.simple != nullptr) {
    const bool isBlocked = (declaration.block & Derivation_Restriction) != 0;
    if (type.simple == nullptr || isBlocked || !type.simple->IsDerivedFrom(declaration.simple)) return nullptr;
    return object != nullptr ? object : declaration.object;  // which checks the text by the other type too
  }
  unsigned methods = 0;
  for (const ClassModel* at = object; at != declaration.object; at = at->base) {
    if (at == nullptr) return nullptr;
    methods |= at->derivation;
    if (at->base == nullptr && IsAnyType(declaration.object)) break;
  }
  if (object == nullptr || object->isAbstract) return nullptr;
  const unsigned blocked = declaration.block | (declaration.object != nullptr ? declaration.object->block : 0);
  return (methods & blocked) == 0 ? object : nullptr;
}

}  // namespace

bool WildcardModel::Allows(std::wstring_view namespaceUri) const noexcept {
  if (allowed == Allowed::Any) return true;
  const bool isListed =
      std::any_of(namespaces.begin(), namespaces.end(), [&](const wchar_t* listed) { return listed == namespaceUri; });
  if (allowed == Allowed::Listed) return isListed;
  return !isListed && (allowsAbsent || !namespaceUri.empty());
}

NamedType FindNamedType(const SchemaModel* schema, const CXmlElement& element) {
  const CXmlText written = element.GetAttribute(L"type", kInstanceNamespace);
  if (written.empty()) return {};
  const std::wstring name = CWhitespaceUtils::Collapse(written.ToString());
  NamedType unknown;
  unknown.isNamed = !name.empty();
  if (!unknown.isNamed || schema == nullptr) return unknown;
  const std::size_t colon = name.find(L':');
  const CXmlName* const uri =
      element.LookupNamespaceRef(colon == std::wstring::npos ? std::wstring() : name.substr(0, colon));
  if (colon != std::wstring::npos)
    return uri == nullptr ? unknown : FindType(*schema, uri->View(), std::wstring_view(name).substr(colon + 1));
  // Without a prefix it is the default namespace; a document may have several, so the element's own is tried too.
  for (const std::wstring& ns : {uri != nullptr ? std::wstring(uri->View()) : std::wstring(),
                                 element.GetNamespaceURI().ToString(), std::wstring()}) {
    const NamedType found = FindType(*schema, ns, name);
    if (found.object != nullptr || found.simple != nullptr) return found;
  }
  return unknown;
}

CSmartPtr<CModelObject> NewElement(const SchemaModel* schema, const ElementModel& declaration,
                                   const CXmlElement& element) {
  const NamedType type = FindNamedType(schema, element);
  const bool isDeclared = !type.isNamed || (declaration.simple != nullptr ? type.simple == declaration.simple
                                                                          : type.object == declaration.object);
  const ClassModel* const object = isDeclared ? declaration.object : FindSubstitute(declaration, type);
  if (object == nullptr || object->isAbstract) return nullptr;
  return NewModelObject(*object, &declaration);
}

namespace {

// Marks what the read does meanwhile as a check.
class CheckScope {
 public:
  CheckScope() : m_session(ReadSession::Current()), m_wasCheck(m_session != nullptr && m_session->isCheck) {
    if (m_session != nullptr) m_session->isCheck = true;
  }
  CheckScope(const CheckScope&) = delete;
  CheckScope& operator=(const CheckScope&) = delete;
  ~CheckScope() {
    if (m_session != nullptr) m_session->isCheck = m_wasCheck;
  }

 private:
  ReadSession* m_session;
  bool m_wasCheck;
};

// Reads the element for the sake of its errors; false when the schema does not know it.
bool CheckKnownElement(const SchemaModel& schema, CXmlElement& element, const CSerializationContext& context) {
  const NamedType type = FindNamedType(&schema, element);
  if (FindElement(schema, element.GetNamespaceURI(), element.GetLocalName()) == nullptr && type.object == nullptr &&
      type.simple == nullptr)
    return false;
  const CSmartPtr<CModelObject> object = NewObjectFor(schema, element, context);
  const CheckScope scope;
  object->FromXml_Int(&element, element.GetFirstElement(), context, /*isOptionalChoice=*/false);
  return true;
}

void CheckElement(const SchemaModel& schema, WildcardModel::Process process, CXmlElement& element,
                  const CSerializationContext& context) {
  if (CheckKnownElement(schema, element, context)) return;
  if (process == WildcardModel::Process::Strict)
    throw CRkValidationException(FormatString(L"The element [%ls] is not declared.", element.GetLocalName().c_str()),
                                 element.GetXPath());
  // Elements that the schema knows are checked at any depth below those that it does not.
  CXmlElement* at = element.GetFirstElement();
  while (at != nullptr) {
    if (!CheckKnownElement(schema, *at, context) && at->GetFirstElement() != nullptr) {
      at = at->GetFirstElement();
      continue;
    }
    while (at != &element && at->GetNextSiblingElement() == nullptr) at = at->GetParentElement();
    at = at == &element ? nullptr : at->GetNextSiblingElement();
  }
}

}  // namespace

void CheckWildcardElement(const SchemaModel* schema, WildcardModel::Process process, CXmlElement& element,
                          const CSerializationContext& context) {
  if (process == WildcardModel::Process::Skip || schema == nullptr) return;
  try {
    CheckElement(*schema, process, element, context);
  } catch (CRkException& e) {
    RefuseCaught(context, e, element);
  }
}

void CheckWildcardAttribute(const SchemaModel* schema, WildcardModel::Process process, const CXmlAttribute& attribute) {
  if (process == WildcardModel::Process::Skip || schema == nullptr) return;
  const auto refuse = [&](const std::wstring& message) {
    throw At(CRkValidationException(message, attribute.GetXPath()), attribute);
  };
  const auto& attributes = IndexOf(*schema).attributes;
  const auto found = attributes.find({attribute.GetNamespaceURI(), attribute.GetLocalName()});
  if (found == attributes.end()) {
    if (process == WildcardModel::Process::Strict)
      refuse(FormatString(L"The attribute [%ls] is not declared.", attribute.GetLocalName().c_str()));
    return;
  }
  const AttributeModel* const declaration = found->second;
  const CSimpleType* const type = declaration->values->type;
  if (type == nullptr) return;
  const NamespaceResolver resolver = ResolverOf(*attribute.GetElement());
  if (const auto error = type->Check(attribute.GetValue(), resolver)) refuse(*error);
  if (declaration->value.isFixed &&
      !type->AreEqual(attribute.GetValue(), declaration->value.text, resolver, ResolverOf(declaration->value.prefixes)))
    refuse(FormatString(L"The fixed value is [%ls].", declaration->value.text));
}

}  // namespace RkXmlLib16Data

namespace RkXmlLib16 {

using namespace RkXmlLib16Data;

CSmartPtr<CModelObject> NewObjectFor(const SchemaModel& schema, CXmlElement& root,
                                     const CSerializationContext& context) {
  const auto refuse = [&](const wchar_t* format) {
    const std::wstring uri = root.GetNamespaceURI().ToString();
    const std::wstring name = (uri.empty() ? L"" : L'{' + uri + L'}') + root.GetLocalName().ToString();
    throw At(CRkValidationException(FormatString(format, name.c_str()), root.GetXPath()), root);
  };
  const ElementModel* declared = FindElement(schema, root.GetNamespaceURI(), root.GetLocalName());
  if (declared == nullptr && context.GetIgnoreNamespaces())
    for (const ElementModel* element : schema.elements)
      if (declared == nullptr && root.GetLocalName() == element->name) declared = element;
  if (declared != nullptr) {
    if (declared->isAbstract) refuse(L"The element [%ls] is abstract.");
    CSmartPtr<CModelObject> object = NewElement(&schema, *declared, root);
    if (object == nullptr) refuse(L"The type of the element [%ls] does not fit, or is abstract.");
    return object;
  }
  const NamedType named = FindNamedType(&schema, root);
  const ClassModel* object = named.object;
  if (object == nullptr && named.simple != nullptr) object = &IndexOf(schema).textClasses.at(named.simple).model;
  if (object == nullptr || object->isAbstract) refuse(L"The element [%ls] is not declared.");
  CSmartPtr<CModelObject> made = RkXmlLib16Data::NewModelObject(*object, nullptr);
  return made;
}

CSmartPtr<CModelObject> ReadDocument(const SchemaModel& schema, const CXmlDocument& document,
                                     const CSerializationContext& context) {
  CXmlElement* const root = document.GetDocumentElement();
  if (root == nullptr) throw CRkException(L"The document has no root element.");
  CSmartPtr<CModelObject> object = NewObjectFor(schema, *root, context);
  object->FromXmlElement(root, context);
  return object;
}

CSmartPtr<CModelObject> ReadFile(const SchemaModel& schema, const CFileName& fileName,
                                 const CSerializationContext& context) {
  CXmlDocument document(context);
  document.Load(fileName);
  return ReadDocument(schema, document, context);
}

}  // namespace RkXmlLib16
