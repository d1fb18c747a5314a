#include <array>
#include <atomic>

#include "RkXmlLib16/base/Format.h"
#include "schema/components/SimpleValue.h"
#include "schema/dynamic/internal/Class.h"

namespace RkXmlSchema {

using namespace RkXmlLib16;
using namespace RkXmlLib16Data;

namespace {

class CPlainObject final : public CDynamicObject {
 public:
  CPlainObject(const CDynamicClass& object, const ElementDeclaration* declaration)
      : CDynamicObject(object, declaration) {}
};

class CNillableObject final : public CDynamicObject, public INillable {
 public:
  CNillableObject(const CDynamicClass& object, const ElementDeclaration* declaration)
      : CDynamicObject(object, declaration) {}
  bool IsNil() const override { return m_nil; }
  void SetNil(bool nil) override { m_nil = nil; }

 private:
  bool m_nil = false;
};

template <class Info>
Info** NewArray(const std::vector<Info*>& infos) {
  auto** const array = new Info*[infos.size() + 1];
  *std::copy(infos.begin(), infos.end(), array) = nullptr;
  return array;
}

// The places of class records, in blocks that stay where they are, so that looking one up takes no lock.
struct FactoryTable {
  struct Entry {
    std::atomic<const CDynamicClass*> object{nullptr};
    std::atomic<const ElementDeclaration*> declaration{nullptr};
  };
  static constexpr int kBlockSize = 4096;
  static constexpr int kBlocks = 4096;
  using Block = std::array<Entry, kBlockSize>;

  Entry& At(int id) {
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

int Factories::Add(const CDynamicClass* object, const ElementDeclaration* declaration) {
  FactoryTable& table = Table();
  const std::lock_guard lock(table.mutex);
  int id = table.count;
  if (!table.free.empty()) {
    id = table.free.back();
    table.free.pop_back();
  } else {
    if (id == FactoryTable::kBlocks * FactoryTable::kBlockSize)
      throw CRkException(L"Limit exceeded: too many classes of schemas.");
    auto& block = table.blocks[static_cast<std::size_t>(id / FactoryTable::kBlockSize)];
    if (block.load() == nullptr) block = new FactoryTable::Block;
    ++table.count;
  }
  table.At(id).object = object;
  table.At(id).declaration = declaration;
  return id;
}

void Factories::Remove(int id) noexcept {
  FactoryTable& table = Table();
  const std::lock_guard lock(table.mutex);
  table.At(id).object = nullptr;
  table.free.push_back(id);
}

CSmartPtr<CXmlObjectBase> Factories::Create(int id, const wchar_t*) {
  const FactoryTable::Entry& entry = Table().At(id);
  return entry.object.load()->New(entry.declaration.load());
}

// ---- Classes

CDynamicClass::~CDynamicClass() {
  CXmlGeneratedClass::CleanMetaData(m_info, m_elements, m_attributes);
  for (const int id : m_factoryIds) Factories::Remove(id);
}

const CDynamicClass& CDynamicClass::Require() const {
  std::call_once(m_made, [this] { const_cast<CDynamicClass*>(this)->Make(); });
  return *this;
}

CSmartPtr<CDynamicObject> CDynamicClass::New(const ElementDeclaration* declaration) const {
  Require();
  if (m_binding.isNillable) return CSmartPtr<CDynamicObject>(new CNillableObject(*this, declaration));
  return CSmartPtr<CDynamicObject>(new CPlainObject(*this, declaration));
}

void CDynamicClass::Make() {
  MakeProperties();
  std::vector<CElementInfo*> elements;
  for (const MemberBinding& member : m_binding.members)
    elements.push_back(NewRecord(m_schema, m_binding, member, m_factoryIds));
  std::vector<CAttributeInfo*> attributes;
  for (const AttributeBinding& attribute : m_binding.attributes) attributes.push_back(NewRecord(attribute));
  if (m_binding.attributeWildcard != nullptr) attributes.push_back(NewWildcardRecord(m_schema, m_binding));
  m_elements = NewArray(elements);
  m_attributes = NewArray(attributes);
  const QName& name = m_binding.typeName;
  m_info =
      new CParentElementInfo(m_binding.group, m_binding.elementType, name.localName.c_str(), name.namespaceUri.c_str(),
                             m_binding.strictAttributes, m_binding.contentMayBeEmpty, m_binding.textProperty,
                             m_binding.text != nullptr ? m_binding.text->itemType : ItemType_none, nullptr,
                             /*simpleContentAsText=*/true);
}

void CDynamicClass::MakeProperties() {
  const auto texts = [&](const ValueBinding* value) -> const Texts* {
    if (value == nullptr || value->kind != ValueBinding::Kind::Enumeration) return nullptr;
    const std::lock_guard lock(m_schema.m_state->mutex);
    const auto [at, isNew] = m_schema.m_state->enumerations.try_emplace(value);
    if (isNew)
      for (const EnumerationValue& allowed : value->type->facets.enumeration) at->second.insert(allowed.text);
    return &at->second;
  };
  m_properties.resize(static_cast<std::size_t>(m_binding.propertyCount));
  for (const AttributeBinding& attribute : m_binding.attributes) {
    m_properties[static_cast<std::size_t>(attribute.property)] = {
        attribute.name.c_str(), attribute.value, nullptr, &attribute, texts(attribute.value), &attribute.defaultValue};
    m_names.emplace(L'@' + attribute.name, attribute.property);
    if (attribute.defaultValue.exists) m_initial.push_back(attribute.property);
  }
  for (const MemberBinding& member : m_binding.members) {
    m_properties[static_cast<std::size_t>(member.property)] = {
        member.name.c_str(), member.value, &member, nullptr, texts(member.value), &member.defaultValue};
    m_names.emplace(member.name, member.property);
    const bool beginsNil = member.value != nullptr && member.isNillable && !member.IsCollection();
    if (beginsNil || (member.IsCollection() && member.minOccurs > 0)) m_initial.push_back(member.property);
  }
  if (m_binding.textProperty >= 0) {
    m_properties[static_cast<std::size_t>(m_binding.textProperty)] = {L"#text", m_binding.text,        nullptr,
                                                                      nullptr,  texts(m_binding.text), nullptr};
    m_names.emplace(L"#text", m_binding.textProperty);
    if (m_binding.isMixed) m_initial.push_back(m_binding.textProperty);
  }
  if (m_binding.attributeWildcardProperty >= 0) m_names.emplace(L"@*", m_binding.attributeWildcardProperty);
}

int CDynamicClass::FindProperty(std::wstring_view name) const {
  const auto found = m_names.find(std::wstring(name));
  return found == m_names.end() ? -1 : found->second;
}

// ---- Values

const Reading*& Reading::Current() noexcept {
  static thread_local const Reading* current = nullptr;
  return current;
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

void CheckText(const Property& property, std::wstring_view text, const NamespaceResolver& resolver) {
  const SimpleTypeDefinition& type = *property.value->type;
  if (property.value->needsCheck)
    if (const auto error = CheckValue(type, text, resolver))
      throw CRkInvalidValueException(FormatString(L"Invalid Value for %ls: %ls", property.name, error->c_str()));
  const DefaultBinding* const fixed = property.defaultValue;
  if (fixed == nullptr || !fixed->isFixed || text == fixed->text) return;
  if (!AreEqualValues(type, text, fixed->text, resolver, ResolverOf(fixed->constraint->namespaces)))
    throw CRkInvalidValueException(FormatString(L"Invalid Value for %ls [%ls]: the fixed value is [%ls].",
                                                property.name, std::wstring(text).c_str(), fixed->text.c_str()));
}

// ---- Schemas

CDynamicSchema::CDynamicSchema(const CBinding& binding) : m_state(std::make_unique<State>()) {
  m_state->binding = &binding;
  m_state->classes.reserve(binding.GetClasses().size());
  for (const auto& object : binding.GetClasses())
    m_state->classes.push_back(std::make_unique<CDynamicClass>(*this, *object));
}

CDynamicSchema::~CDynamicSchema() = default;

const CDynamicClass& ClassOf(const CDynamicSchema& schema, const ClassBinding& binding) {
  return *schema.m_state->classes[binding.index];
}

const CBinding& CDynamicSchema::GetBinding() const noexcept { return *m_state->binding; }

CSmartPtr<CDynamicObject> CDynamicSchema::New(const ClassBinding& object, const ElementDeclaration* element) const {
  return m_state->classes[object.index]->New(element);
}

CSmartPtr<CDynamicObject> CDynamicSchema::NewDocument(const QName& element) const {
  const RootBinding* const root = m_state->binding->FindRoot(element);
  if (root == nullptr || root->element->isAbstract || root->object->isAbstract) return nullptr;
  return New(*root->object, root->element);
}

const TypeDefinition* FindNamedType(const CSchemaSet& schemas, const CXmlElement& element, bool& isNamed) {
  const std::wstring name = CWhitespaceUtils::Collapse(element.GetAttribute(L"type", kInstanceNamespace).ToString());
  isNamed = !name.empty();
  if (!isNamed) return nullptr;
  const std::size_t colon = name.find(L':');
  const CXmlName* const uri =
      element.LookupNamespaceRef(colon == std::wstring::npos ? std::wstring() : name.substr(0, colon));
  if (colon != std::wstring::npos)
    return uri == nullptr ? nullptr : schemas.FindType({std::wstring(uri->View()), name.substr(colon + 1)});
  // Without a prefix it is the default namespace; a document may have several, so the element's own is tried too.
  for (const std::wstring& ns : {uri != nullptr ? std::wstring(uri->View()) : std::wstring(),
                                 element.GetNamespaceURI().ToString(), std::wstring()})
    if (const TypeDefinition* const type = schemas.FindType({ns, name})) return type;
  return nullptr;
}

CSmartPtr<CDynamicObject> NewElement(const CDynamicSchema& schema, const ElementDeclaration& declaration,
                                     CXmlElement& element) {
  const CBinding& binding = schema.GetBinding();
  bool isNamed = false;
  const TypeDefinition* const type = FindNamedType(binding.GetSchemas(), element, isNamed);
  const ClassBinding* object = nullptr;
  if (!isNamed || type == declaration.type) {
    object = binding.FindClass(declaration.type);
    if (object != nullptr && object->isAbstract) object = nullptr;
  } else if (type != nullptr) {
    object = binding.FindSubstitute(declaration.type, &declaration, type->name);
  }
  return object != nullptr ? schema.New(*object, &declaration) : nullptr;
}

CSmartPtr<CDynamicObject> CDynamicSchema::NewFor(CXmlElement& root, const CSerializationContext& context) const {
  const QName name{root.GetNamespaceURI().ToString(), root.GetLocalName().ToString()};
  const auto refuse = [&](const wchar_t* format) {
    throw At(CRkValidationException(FormatString(format, name.ToString().c_str()), root.GetXPath()), root);
  };
  const RootBinding* declared = m_state->binding->FindRoot(name);
  if (declared == nullptr && context.GetIgnoreNamespaces())
    for (const RootBinding& other : m_state->binding->GetRoots())
      if (declared == nullptr && other.element->name.localName == name.localName) declared = &other;
  if (declared != nullptr) {
    if (declared->element->isAbstract) refuse(L"The element [%ls] is abstract.");
    CSmartPtr<CDynamicObject> object = NewElement(*this, *declared->element, root);
    if (object == nullptr) refuse(L"The type of the element [%ls] does not fit, or is abstract.");
    return object;
  }
  bool isNamed = false;
  const TypeDefinition* const type = FindNamedType(m_state->binding->GetSchemas(), root, isNamed);
  const ClassBinding* const object = type != nullptr ? m_state->binding->FindClass(type) : nullptr;
  if (object == nullptr || object->isAbstract) refuse(L"The element [%ls] is not declared.");
  return New(*object);
}

CSmartPtr<CDynamicObject> CDynamicSchema::Read(const CXmlDocument& document,
                                               const CSerializationContext& context) const {
  CXmlElement* const root = document.GetDocumentElement();
  if (root == nullptr) throw CRkException(L"The document has no root element.");
  CSmartPtr<CDynamicObject> object = NewFor(*root, context);
  object->FromXmlElement(root, context);
  return object;
}

// ---- Wildcards

namespace {

// Reads the element for the sake of its errors; false when the schema does not know it.
bool CheckKnownElement(const CDynamicSchema& schema, CXmlElement& element, const CSerializationContext& context) {
  const QName name{element.GetNamespaceURI().ToString(), element.GetLocalName().ToString()};
  bool isNamed = false;
  if (schema.GetBinding().FindRoot(name) == nullptr &&
      FindNamedType(schema.GetBinding().GetSchemas(), element, isNamed) == nullptr)
    return false;
  const CSmartPtr<CDynamicObject> object = schema.NewFor(element, context);
  object->FromXml_Int(&element, element.GetFirstElement(), context, /*isOptionalChoice=*/false);
  return true;
}

}  // namespace

void CheckWildcardElement(const CDynamicSchema& schema, ProcessContents process, CXmlElement& element,
                          const CSerializationContext& context) {
  if (process == ProcessContents::Skip || CheckKnownElement(schema, element, context)) return;
  if (process == ProcessContents::Strict)
    throw At(CRkValidationException(FormatString(L"The element [%ls] is not declared.", element.GetLocalName().c_str()),
                                    element.GetXPath()),
             element);
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

void CheckWildcardAttribute(const CDynamicSchema& schema, ProcessContents process, const CXmlAttribute& attribute) {
  if (process == ProcessContents::Skip) return;
  const AttributeDeclaration* const declaration = schema.GetBinding().GetSchemas().FindAttribute(
      {attribute.GetNamespaceURI().ToString(), attribute.GetLocalName().ToString()});
  const auto refuse = [&](const std::wstring& message) {
    throw At(CRkValidationException(message, attribute.GetXPath()), attribute);
  };
  if (declaration == nullptr) {
    if (process == ProcessContents::Strict)
      refuse(FormatString(L"The attribute [%ls] is not declared.", attribute.GetLocalName().c_str()));
    return;
  }
  const NamespaceResolver resolver = ResolverOf(*attribute.GetElement());
  if (const auto error = CheckValue(*declaration->type, attribute.GetValue(), resolver)) refuse(*error);
  if (declaration->value.kind == ValueConstraintKind::Fixed &&
      !AreEqualValues(*declaration->type, attribute.GetValue(), declaration->value.normalized, resolver,
                      ResolverOf(declaration->value.namespaces)))
    refuse(FormatString(L"The fixed value is [%ls].", declaration->value.normalized.c_str()));
}

}  // namespace RkXmlSchema
