#include <algorithm>
#include <functional>

#include "RkXmlLib16/Generated.h"
#include "schema/dynamic/internal/Class.h"

namespace RkXmlSchema {

using namespace RkXmlLib16;
using namespace RkXmlLib16Data;

namespace {

class CPlainObject final : public CDynamicObject {
 public:
  explicit CPlainObject(const CDynamicClass& object) : CDynamicObject(object) {}
};

class CNillableObject final : public CDynamicObject, public INillable {
 public:
  explicit CNillableObject(const CDynamicClass& object) : CDynamicObject(object) {}
  bool IsNil() const override { return GetNilFlag(); }
  void SetNil(bool nil) override { SetNilFlag(nil); }
};

CModelObject* NewObject(const ClassModel& model) {
  const auto& object = static_cast<const CDynamicClass&>(model);
  if (object.GetBinding().isNillable) return new CNillableObject(object);
  return new CPlainObject(object);
}

CSmartPtr<CDynamicObject> ToDynamic(const CSmartPtr<CModelObject>& object) {
  return CSmartPtr<CDynamicObject>(static_cast<CDynamicObject*>(object.Get()));
}

constexpr unsigned kMethods = kExtension | kRestriction;
static_assert(kExtension == static_cast<unsigned>(Derivation_Extension) &&
              kRestriction == static_cast<unsigned>(Derivation_Restriction));

const wchar_t* TextOrNull(const std::wstring& text) { return text.empty() ? nullptr : text.c_str(); }

}  // namespace

// ---- Classes

CDynamicClass::CDynamicClass(const CDynamicSchema& owner, const ClassBinding& binding)
    : ClassModel(ClassData(binding.typeName.localName.c_str(), binding.typeName.namespaceUri.c_str(), binding.group,
                           NewObject)),
      m_schema(owner),
      m_binding(binding) {}

int CDynamicClass::FindProperty(std::wstring_view wanted) const {
  std::call_once(m_named, [this] {
    for (const AttributeBinding& attribute : m_binding.attributes)
      m_names.emplace(L'@' + attribute.name, attribute.property);
    for (const MemberBinding& member : m_binding.members) m_names.emplace(member.name, member.property);
    if (textProperty >= 0) m_names.emplace(L"#text", textProperty);
    if (attributeWildcardProperty >= 0) m_names.emplace(L"@*", attributeWildcardProperty);
  });
  const auto found = m_names.find(std::wstring(wanted));
  return found == m_names.end() ? -1 : found->second;
}

const MemberModel* CDynamicClass::FindMember(int property) const noexcept {
  const auto* const found =
      std::find_if(members.begin(), members.end(), [&](const MemberModel& m) { return m.property == property; });
  return found != members.end() ? found : nullptr;
}

bool CDynamicClass::HasDefaults() const noexcept {
  return std::any_of(attributes.begin(), attributes.end(),
                     [](const AttributeModel& attribute) { return attribute.value.text != nullptr; });
}

void CDynamicClass::Arrange() {
  constexpr std::size_t kChunkSize = 256;
  m_places.resize(static_cast<std::size_t>(propertyCount));
  const auto set = [this](int property, const MemberType& type, const ValueModel* values) {
    Place& place = m_places[static_cast<std::size_t>(property)];
    place.type = &type;
    place.values = values;
  };
  for (const AttributeModel& attribute : attributes)
    set(attribute.property, GetMemberType(attribute.values->itemType), attribute.values);
  for (const MemberModel& member : members) {
    if (member.IsCollection())
      set(member.property, ObjectMemberType<CXmlCollectionBase>::kType, nullptr);
    else if (member.values == nullptr)
      set(member.property, ObjectMemberType<CXmlObjectBase>::kType, nullptr);
    else
      set(member.property, GetMemberType(member.values->itemType), member.values);
  }
  if (attributeWildcardProperty >= 0)
    set(attributeWildcardProperty, ObjectMemberType<CXmlCollectionBase>::kType, nullptr);
  if (textProperty >= 0) set(textProperty, GetMemberType(text->itemType), text);
  for (std::size_t i = 0; i < m_places.size(); ++i) {
    Place& place = m_places[i];
    if (place.type == nullptr) place.type = &ObjectMemberType<CXmlObjectBase>::kType;  // restricted away
    if (m_chunks.empty() || m_chunks.back().size >= kChunkSize) m_chunks.push_back({i, i, 0});
    ChunkOfPlaces& chunk = m_chunks.back();
    place.chunk = static_cast<std::uint32_t>(m_chunks.size() - 1);
    place.offset = static_cast<std::uint32_t>(chunk.size);
    chunk.size += (place.type->size + MemberType::kAlignment - 1) / MemberType::kAlignment * MemberType::kAlignment;
    chunk.end = i + 1;
  }
}

// No member allocates when it is made.
CDynamicObject::Chunk CDynamicClass::NewChunk(std::uint32_t number) const {
  const ChunkOfPlaces& chunk = m_chunks[number];
  auto* const made = new std::byte[chunk.size];
  for (std::size_t i = chunk.begin; i < chunk.end; ++i) m_places[i].type->construct(made + m_places[i].offset);
  return CDynamicObject::Chunk(made, {this, number});
}

void CDynamicClass::Destroy(std::uint32_t number, std::byte* made) const noexcept {
  const ChunkOfPlaces& chunk = m_chunks[number];
  for (std::size_t i = chunk.begin; i < chunk.end; ++i) m_places[i].type->destroy(made + m_places[i].offset);
  delete[] made;
}

// ---- Models

CDynamicSchema::State::State(const CDynamicSchema& schema, const CBinding& classBinding) : binding(classBinding) {
  std::size_t memberCount = 0;
  std::size_t attributeCount = 0;
  for (const auto& object : binding.GetClasses()) {
    classes.emplace_back(schema, *object);
    memberCount += object->members.size();
    attributeCount += object->attributes.size();
    if (!object->typeName.empty()) namedClasses.push_back(&classes.back());
  }
  members.reserve(memberCount);  // the classes point to them
  declarations.reserve(memberCount);
  attributes.reserve(attributeCount);
  roots.reserve(binding.GetRoots().size());
  for (const RootBinding& root : binding.GetRoots()) {
    const ElementDeclaration& element = *root.element;
    roots.push_back({element.name.localName.c_str(), element.name.namespaceUri.c_str(), &classes[root.object->index],
                     TypeOf(element.type), DefaultOf(&element.value), element.disallowedSubstitutions & kMethods,
                     element.isNillable, element.isAbstract});
    elements.push_back(&roots.back());
  }
  for (CDynamicClass& object : classes) Fill(object);
  const auto& globals = binding.GetSchemas().GetAttributes();
  globalAttributes.reserve(globals.size());
  for (const AttributeDeclaration* attribute : globals) {
    attributeValues.push_back(ValueModel(ItemType_string, CWhitespaceUtils::preserve).Type(TypeOf(attribute->type)));
    globalAttributes.emplace_back(0, attribute->name.localName.c_str(), attribute->name.namespaceUri.c_str(),
                                  attributeValues.back());
    globalAttributes.back().value = DefaultOf(&attribute->value);
  }
  model.classes = {namedClasses.data(), namedClasses.size()};
  model.elements = {elements.data(), elements.size()};
  model.attributes = {globalAttributes.data(), globalAttributes.size()};
}

void CDynamicSchema::State::Fill(CDynamicClass& object) {
  const ClassBinding& from = object.GetBinding();
  const std::size_t firstMember = members.size();
  for (const MemberBinding& member : from.members) {
    members.push_back(MemberOf(member));
    declarations.push_back(member.kind != MemberBinding::Kind::InlineGroup ? member.element : nullptr);
  }
  const std::size_t firstAttribute = attributes.size();
  for (const AttributeBinding& attribute : from.attributes) {
    attributes.emplace_back(attribute.property, attribute.name.c_str(), attribute.namespaceUri.c_str(),
                            *ValueOf(attribute.value));
    attributes.back().isOptional = attribute.isOptional;
    attributes.back().value = DefaultOf(attribute.defaultValue.constraint);
  }
  object.members = {members.data() + firstMember, from.members.size()};
  object.attributes = {attributes.data() + firstAttribute, from.attributes.size()};
  object.elementType = from.elementType;
  object.schema = &model;
  object.base = from.base != nullptr ? &classes[from.base->index] : nullptr;
  object.derivation = from.GetDerivation();
  const ComplexTypeDefinition* const complex = from.type != nullptr ? from.type->AsComplex() : nullptr;
  object.block = complex != nullptr ? complex->prohibitedSubstitutions & kMethods : 0;
  object.simple = from.kind == ClassBinding::Kind::SimpleType ? TypeOf(from.type) : nullptr;
  object.attributeWildcard = WildcardOf(from.attributeWildcard);
  object.attributeWildcardProperty = from.attributeWildcardProperty;
  object.text = ValueOf(from.text);
  object.textProperty = from.textProperty;
  object.propertyCount = from.propertyCount;
  object.strictAttributes = from.strictAttributes;
  object.contentMayBeEmpty = from.contentMayBeEmpty;
  object.isAbstract = from.isAbstract;
  object.isMixed = from.isMixed;
  object.isAnyType = from.IsAnyType();
  object.Arrange();
}

MemberModel CDynamicSchema::State::MemberOf(const MemberBinding& from) {
  static constexpr MemberModel::Kind kKinds[] = {MemberModel::Kind::Value,       MemberModel::Kind::Value,
                                                 MemberModel::Kind::Object,      MemberModel::Kind::AbstractObject,
                                                 MemberModel::Kind::InlineGroup, MemberModel::Kind::Wildcard};
  MemberModel member(kKinds[static_cast<int>(from.kind)], from.property, from.name.c_str(), from.namespaceUri.c_str());
  member.cardinality = static_cast<MemberModel::Cardinality>(from.cardinality);
  member.minOccurs = from.minOccurs;
  member.maxOccurs = from.maxOccurs;
  member.stopsAtMaximum = from.stopsAtMaximum;
  member.isRequired = from.isRequired;
  member.isNillable = from.isNillable;
  member.values = ValueOf(from.value);
  member.wildcard = WildcardOf(from.wildcard);
  member.value = DefaultOf(from.defaultValue.constraint);
  if (from.object != nullptr) {
    member.object = &classes[from.object->index];
    member.newCollection = NewModelCollection<CDynamicObject>;
  }
  if (from.element != nullptr && from.kind != MemberBinding::Kind::InlineGroup) {
    member.simple = TypeOf(from.element->type);
    member.block = from.element->disallowedSubstitutions & kMethods;
  }
  return member;
}

const ElementModel* CDynamicSchema::State::Find(const ElementDeclaration* element) const {
  if (element == nullptr) return nullptr;
  if (element->isGlobal) {
    const RootBinding* const root = binding.FindRoot(element->name);
    return root != nullptr ? &roots[static_cast<std::size_t>(root - binding.GetRoots().data())] : nullptr;
  }
  const auto found = std::find(declarations.begin(), declarations.end(), element);
  return found != declarations.end() ? &members[static_cast<std::size_t>(found - declarations.begin())] : nullptr;
}

const ElementDeclaration* CDynamicSchema::State::FindDeclaration(const ElementModel* made) const {
  const std::less<const void*> less;
  const bool isMember = !less(made, members.data()) && less(made, members.data() + members.size());
  if (isMember) return declarations[static_cast<std::size_t>(static_cast<const MemberModel*>(made) - members.data())];
  const bool isRoot = !less(made, roots.data()) && less(made, roots.data() + roots.size());
  return isRoot ? binding.GetRoots()[static_cast<std::size_t>(made - roots.data())].element : nullptr;
}

const CSimpleType* CDynamicSchema::State::TypeOf(const TypeDefinition* definition) {
  const SimpleTypeDefinition* const type = definition != nullptr ? definition->AsSimple() : nullptr;
  if (type == nullptr) return nullptr;
  if (type->IsBuiltIn()) return BuiltIn(type->builtIn);
  const auto found = types.find(type);
  if (found != types.end()) return &found->second;
  return &types.try_emplace(type, *type, TypeOf(type->base)).first->second;
}

const ValueModel* CDynamicSchema::State::ValueOf(const ValueBinding* value) {
  if (value == nullptr) return nullptr;
  const auto found = values.find(value);
  if (found != values.end()) return &found->second;
  ValueModel made(value->itemType, value->whitespace);
  const CPrimitiveRestrictions& facets = value->facets;
  made.pattern = TextOrNull(facets.GetPattern());
  made.length = facets.GetLength();
  made.minLength = facets.GetMinLength();
  made.maxLength = facets.GetMaxLength();
  made.minInclusive = TextOrNull(facets.GetMinInclusive());
  made.maxInclusive = TextOrNull(facets.GetMaxInclusive());
  made.minExclusive = TextOrNull(facets.GetMinExclusive());
  made.maxExclusive = TextOrNull(facets.GetMaxExclusive());
  made.totalDigits = facets.GetTotalDigits();
  made.fractionDigits = facets.GetFractionDigits();
  made.type = TypeOf(value->type);
  made.needsCheck = value->needsCheck;
  made.holdsQNames = value->holdsQNames;
  if (value->kind == ValueBinding::Kind::Enumeration) {
    auto& texts = enumerations[value];
    for (const EnumerationValue& allowed : value->type->facets.enumeration) texts.insert(allowed.text);
    made.texts = &texts;
  }
  return &values.emplace(value, made).first->second;
}

const WildcardModel* CDynamicSchema::State::WildcardOf(const Wildcard* wildcard) {
  if (wildcard == nullptr) return nullptr;
  const auto found = wildcards.find(wildcard);
  if (found != wildcards.end()) return &found->second;
  std::vector<const wchar_t*>& listed = namespaces.emplace_back();
  for (const std::wstring& uri : wildcard->namespaces) listed.push_back(uri.c_str());
  const WildcardModel made{static_cast<WildcardModel::Allowed>(wildcard->constraint),
                           static_cast<WildcardModel::Process>(wildcard->processContents),
                           {listed.data(), listed.size()},
                           wildcard->allowsAbsent,
                           wildcard->written.c_str(),
                           wildcard->targetNamespace.c_str()};
  return &wildcards.emplace(wildcard, made).first->second;
}

DefaultModel CDynamicSchema::State::DefaultOf(const ValueConstraint* constraint) {
  if (constraint == nullptr || !*constraint) return {};
  DefaultModel made{constraint->normalized.c_str(), constraint->kind == ValueConstraintKind::Fixed, {}};
  if (constraint->namespaces == nullptr) return made;
  auto& known = prefixes[constraint->namespaces];
  if (known.empty())
    for (const auto& [prefix, uri] : *constraint->namespaces) known.push_back({prefix.c_str(), uri.c_str()});
  made.prefixes = {known.data(), known.size()};
  return made;
}

// ---- Schemas

CDynamicSchema::CDynamicSchema(const CBinding& binding) : m_state(std::make_unique<State>(*this, binding)) {}

CDynamicSchema::~CDynamicSchema() = default;

const CBinding& CDynamicSchema::GetBinding() const noexcept { return m_state->binding; }

CSmartPtr<CDynamicObject> CDynamicSchema::New(const ClassBinding& object, const ElementDeclaration* element) const {
  const CSmartPtr<CModelObject> made(NewObject(m_state->classes[object.index]));
  if (const ElementModel* const declaration = m_state->Find(element)) made->SetDeclaration(*declaration);
  return ToDynamic(made);
}

CSmartPtr<CDynamicObject> CDynamicSchema::NewDocument(const QName& element) const {
  const RootBinding* const root = m_state->binding.FindRoot(element);
  if (root == nullptr || root->element->isAbstract || root->object->isAbstract) return nullptr;
  return New(*root->object, root->element);
}

CSmartPtr<CDynamicObject> CDynamicSchema::NewFor(CXmlElement& root, const CSerializationContext& context) const {
  return ToDynamic(NewObjectFor(m_state->model, root, context));
}

CSmartPtr<CDynamicObject> CDynamicSchema::Read(const CXmlDocument& document,
                                               const CSerializationContext& context) const {
  return ToDynamic(ReadDocument(m_state->model, document, context));
}

const ElementDeclaration* CDynamicSchema::FindDeclaration(const ElementModel* element) const {
  return m_state->FindDeclaration(element);
}

}  // namespace RkXmlSchema
