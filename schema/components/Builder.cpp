#include <algorithm>

#include "schema/components/internal/Builder.h"
#include "schema/components/internal/Reader.h"
#include "schema/components/internal/XPathSubset.h"
#include "schema/components/internal/Xsd.h"

namespace RkXmlSchema {

namespace {

const wchar_t* NameOf(Space space) {
  switch (space) {
    case Space::Type:
      return L"type definition";
    case Space::Element:
      return L"element declaration";
    case Space::Attribute:
      return L"attribute declaration";
    case Space::Group:
      return L"model group definition";
    case Space::AttributeGroup:
      return L"attribute group definition";
    default:
      return L"notation declaration";
  }
}

std::optional<Space> SpaceOf(const CXmlElement* node) {
  const std::wstring_view name = node->GetLocalName();
  if (name == L"simpleType" || name == L"complexType") return Space::Type;
  if (name == L"element") return Space::Element;
  if (name == L"attribute") return Space::Attribute;
  if (name == L"group") return Space::Group;
  if (name == L"attributeGroup") return Space::AttributeGroup;
  if (name == L"notation") return Space::Notation;
  return std::nullopt;
}

std::uint64_t ReadCount(const CXmlElement* node, std::wstring_view attribute) {
  const std::wstring text = TokenOf(node, attribute);
  if (text.empty()) return 1;
  if (text == L"unbounded") return kUnbounded;
  std::uint64_t count = 0;
  for (const wchar_t c : text) {
    if (c < L'0' || c > L'9') continue;
    const auto digit = static_cast<std::uint64_t>(c - L'0');
    if (count > (kUnbounded - 1 - digit) / 10) return kUnbounded - 1;
    count = count * 10 + digit;
  }
  return count;
}

template <class T>
void Put(ComponentTable<T>& table, std::vector<const T*>& list, const QName& name, const T* component) {
  table[name] = component;
  list.push_back(component);
}

}  // namespace

void CBuilder::Build() {
  CollectGlobals();
  for (Global& global : m_state.globals) MakeShell(global);
  for (Global& global : m_state.globals) List(global);
  for (Global& global : m_state.globals) Fill(global);
  LinkKeyReferences();
  LinkSubstitutionGroups();
  CheckGroupCycles();
  DeriveAttributeGroups();
  DeriveTypes();
  FinishSubstitutionGroups();
  FinishValues();
  m_models.CheckAll();
  CheckRedefinitions();
}

// ---- names
// -----------------------------------------------------------------------------------------------------------

void CBuilder::CollectGlobals() {
  for (DocumentInstance& document : m_state.instances) {
    for (Node node = document.source->root->GetFirstElement(); node != nullptr; node = node->GetNextSiblingElement()) {
      if (IsSchemaElement(node) && SpaceOf(node)) AddGlobal(node, document);
    }
  }
  // What was found last is redefined by what was found before it.
  for (auto statement = m_state.redefines.rbegin(); statement != m_state.redefines.rend(); ++statement)
    ApplyRedefine(*statement);
}

void CBuilder::AddGlobal(Node node, DocumentInstance& document) {
  const Space space = *SpaceOf(node);
  const QName name{document.targetNamespace, TokenOf(node, L"name")};
  if (!IsNCName(name.localName)) return;  // reported before
  Global& global = m_state.globals.emplace_back(Global{space, name, node, &document, nullptr, nullptr});
  Global*& known = m_state.index[static_cast<std::size_t>(space)][name];
  if (known == nullptr) {
    known = &global;
    return;
  }
  m_state.reporter.Error(LocationOf(document, node), std::wstring(L"The ") + NameOf(space) + L" " + Bracketed(name) +
                                                         L" is declared twice; the other one is at " +
                                                         LocationOf(*known->document, known->node).ToString() + L".");
}

void CBuilder::ApplyRedefine(const RedefineStatement& statement) {
  for (Node node = FirstPart(statement.node); node != nullptr; node = NextPart(node)) {
    const std::optional<Space> space = SpaceOf(node);
    if (!space) continue;
    const QName name{statement.document->targetNamespace, TokenOf(node, L"name")};
    const auto found = m_state.index[static_cast<std::size_t>(*space)].find(name);
    if (found == m_state.index[static_cast<std::size_t>(*space)].end() ||
        found->second->node->GetLocalName() != node->GetLocalName()) {
      m_state.reporter.Error(LocationOf(*statement.document, node), std::wstring(L"There is no ") + NameOf(*space) +
                                                                        L" " + Bracketed(name) + L" to redefine.");
      continue;
    }
    Global& global =
        m_state.globals.emplace_back(Global{*space, name, node, statement.document, found->second, nullptr});
    found->second = &global;
  }
}

void CBuilder::MakeShell(Global& global) {
  switch (global.space) {
    case Space::Type: {
      TypeDefinition* type = nullptr;
      if (global.node->GetLocalName() == L"simpleType") {
        global.component = &m_state.simpleTypes.emplace_back();
        type = static_cast<SimpleTypeDefinition*>(global.component);
      } else {
        global.component = &m_state.complexTypes.emplace_back();
        type = static_cast<ComplexTypeDefinition*>(global.component);
      }
      type->name = global.name;
      m_state.allTypes.push_back(type);
      break;
    }
    case Space::Element: {
      ElementDeclaration& element = m_state.elementPool.emplace_back();
      element.name = global.name;
      element.isGlobal = true;
      global.component = &element;
      break;
    }
    case Space::Attribute: {
      AttributeDeclaration& attribute = m_state.attributePool.emplace_back();
      attribute.name = global.name;
      attribute.isGlobal = true;
      global.component = &attribute;
      break;
    }
    case Space::Group: {
      ModelGroupDefinition& group = m_state.groupPool.emplace_back();
      group.name = global.name;
      group.modelGroup = &m_state.modelGroups.emplace_back();
      const_cast<ModelGroup*>(group.modelGroup)->definition = &group;
      global.component = &group;
      break;
    }
    case Space::AttributeGroup: {
      AttributeGroupDefinition& group = m_state.attributeGroupPool.emplace_back();
      group.name = global.name;
      global.component = &group;
      break;
    }
    case Space::Notation: {
      NotationDeclaration& notation = m_state.notationPool.emplace_back();
      notation.name = global.name;
      global.component = &notation;
      break;
    }
  }
}

// Into the tables, unless another one of its name is there or redefines it.
void CBuilder::List(Global& global) {
  if (m_state.index[static_cast<std::size_t>(global.space)][global.name] != &global) return;
  switch (global.space) {
    case Space::Type:
      Put<TypeDefinition>(m_state.typeTable, m_state.types, global.name,
                          static_cast<TypeDefinition*>(global.component));
      break;
    case Space::Element:
      Put(m_state.elementTable, m_state.elements, global.name,
          static_cast<const ElementDeclaration*>(global.component));
      break;
    case Space::Attribute:
      Put(m_state.attributeTable, m_state.attributes, global.name,
          static_cast<const AttributeDeclaration*>(global.component));
      break;
    case Space::Group:
      Put(m_state.groupTable, m_state.groups, global.name, static_cast<const ModelGroupDefinition*>(global.component));
      break;
    case Space::AttributeGroup:
      Put(m_state.attributeGroupTable, m_state.attributeGroups, global.name,
          static_cast<const AttributeGroupDefinition*>(global.component));
      break;
    case Space::Notation:
      Put(m_state.notationTable, m_state.notations, global.name,
          static_cast<const NotationDeclaration*>(global.component));
      break;
  }
}

std::optional<QName> CBuilder::ReadQName(Node node, std::wstring_view text) {
  if (!IsQName(text)) return std::nullopt;  // reported before
  const std::size_t colon = text.find(L':');
  const std::wstring_view prefix = colon == std::wstring_view::npos ? std::wstring_view() : text.substr(0, colon);
  std::optional<std::wstring> uri = LookupNamespace(node, prefix);
  if (!uri) {
    Error(node, L"The prefix of " + Bracketed(text) + L" is not declared.");
    return std::nullopt;
  }
  if (uri->empty() && m_document->isChameleon) uri = m_document->targetNamespace;
  return QName{std::move(*uri), std::wstring(colon == std::wstring_view::npos ? text : text.substr(colon + 1))};
}

// What the QName in an attribute of the node refers to; null, with a line about it, when there is none.
Component* CBuilder::Find(Space space, Node node, std::wstring_view text) {
  const std::optional<QName> name = ReadQName(node, text);
  if (!name) return nullptr;
  const std::wstring& uri = name->namespaceUri;
  const auto& table = m_state.index[static_cast<std::size_t>(space)];
  const auto found = table.find(*name);
  if (uri != m_document->targetNamespace && m_document->imported.count(uri) == 0 && uri != kSchemaNamespace &&
      uri != kInstanceNamespace) {
    Error(node, std::wstring(L"The ") + NameOf(space) + L" " + Bracketed(*name) +
                    L" is not declared here: its namespace is not imported by this document.");
    return nullptr;
  }
  if (found == table.end()) {
    Error(node, std::wstring(L"The ") + NameOf(space) + L" " + Bracketed(*name) + L" is not declared.");
    return nullptr;
  }
  return found->second->component;
}

TypeDefinition* CBuilder::FindTypeDefinition(Node node, std::wstring_view text) {
  const std::optional<QName> name = ReadQName(node, text);
  if (!name) return nullptr;
  if (name->namespaceUri == kSchemaNamespace) {
    const auto builtIn = m_state.typeTable.find(*name);
    if (builtIn != m_state.typeTable.end()) return const_cast<TypeDefinition*>(builtIn->second);
  }
  Component* const component = Find(Space::Type, node, text);
  return static_cast<TypeDefinition*>(component);
}

SimpleTypeDefinition* CBuilder::FindSimpleType(Node node, std::wstring_view text) {
  TypeDefinition* const type = FindTypeDefinition(node, text);
  if (type == nullptr) return nullptr;
  if (!type->IsSimple()) {
    Error(node, L"The type definition " + Bracketed(type->name) + L" is not simple.");
    return nullptr;
  }
  return static_cast<SimpleTypeDefinition*>(type);
}

void CBuilder::Describe(Component& component, Node node) {
  component.location = Here(node);
  component.documentation = DocumentationOf(node);
}

const NamespaceBindings* CBuilder::Bindings(Node node) {
  NamespaceBindings bindings = BindingsAt(node);
  if (m_document->isChameleon && bindings.find(L"") == bindings.end()) bindings[L""] = m_document->targetNamespace;
  const NamespaceBindings*& shared = m_bindings[node->GetDocument()];
  if (shared == nullptr || *shared != bindings) shared = &m_state.bindings.emplace_back(std::move(bindings));
  return shared;
}

// ---- from documents
// --------------------------------------------------------------------------------------------------

void CBuilder::Fill(Global& global) {
  m_document = global.document;
  m_global = &global;
  switch (global.space) {
    case Space::Type:
      if (global.node->GetLocalName() == L"simpleType") {
        FillSimpleType(*static_cast<SimpleTypeDefinition*>(global.component), global.node);
      } else {
        FillComplexType(*static_cast<ComplexTypeDefinition*>(global.component), global.node);
      }
      break;
    case Space::Element:
      FillElement(*static_cast<ElementDeclaration*>(global.component), global.node, true);
      break;
    case Space::Attribute:
      FillAttribute(*static_cast<AttributeDeclaration*>(global.component), global.node);
      break;
    case Space::Group: {
      auto& group = *static_cast<ModelGroupDefinition*>(global.component);
      Describe(group, global.node);
      const Node content = FirstPart(global.node);
      ModelGroup* const made = content != nullptr ? ReadModelGroup(content) : nullptr;
      if (made == nullptr) break;
      auto& kept = *const_cast<ModelGroup*>(group.modelGroup);
      kept.location = made->location;
      kept.documentation = made->documentation;
      kept.compositor = made->compositor;
      kept.particles = made->particles;
      break;
    }
    case Space::AttributeGroup: {
      auto& group = *static_cast<AttributeGroupDefinition*>(global.component);
      Describe(group, global.node);
      GroupWork& work = m_groupWorks.emplace_back();
      work.group = &group;
      work.node = global.node;
      work.document = m_document;
      work.global = &global;
      ReadAttributes(work.attributes, FirstPart(global.node));
      m_groupWorkOf[&group] = &work;
      break;
    }
    case Space::Notation:
      FillNotation(*static_cast<NotationDeclaration*>(global.component), global.node);
      break;
  }
  m_global = nullptr;
}

void CBuilder::FillNotation(NotationDeclaration& notation, Node node) {
  Describe(notation, node);
  notation.publicIdentifier = TokenOf(node, L"public");
  notation.systemIdentifier = TokenOf(node, L"system");
  if (!HasAttribute(node, L"public") && !HasAttribute(node, L"system"))
    Error(node, L"A notation needs the attribute [public] or [system].");
}

void CBuilder::ReadValue(ValueConstraint& value, Node node) {
  for (const wchar_t* name : {L"default", L"fixed"}) {
    const CXmlAttribute* const attribute = FindAttributeOf(node, name);
    if (attribute == nullptr) continue;
    value.kind = *name == L'd' ? ValueConstraintKind::Default : ValueConstraintKind::Fixed;
    value.text = attribute->GetValue();
    value.normalized = value.text;
    value.namespaces = Bindings(node);
  }
}

void CBuilder::FillElement(ElementDeclaration& element, Node node, bool isGlobal) {
  Describe(element, node);
  element.isNillable = BooleanOf(node, L"nillable", false);
  element.isAbstract = isGlobal && BooleanOf(node, L"abstract", false);
  constexpr DerivationSet kBlocks = kExtension | kRestriction | kSubstitution;
  element.disallowedSubstitutions =
      HasAttribute(node, L"block") ? ReadDerivationSet(TokenOf(node, L"block"), kBlocks) : m_document->blockDefault;
  if (isGlobal) {
    constexpr DerivationSet kFinals = kExtension | kRestriction;
    element.substitutionGroupExclusions = HasAttribute(node, L"final")
                                              ? ReadDerivationSet(TokenOf(node, L"final"), kFinals)
                                              : m_document->finalDefault & kFinals;
    const std::wstring head = TokenOf(node, L"substitutionGroup");
    if (!head.empty())
      element.substitutionGroupAffiliation = static_cast<ElementDeclaration*>(Find(Space::Element, node, head));
  }
  ReadValue(element.value, node);
  const std::wstring typeName = TokenOf(node, L"type");
  TypeDefinition* type = nullptr;
  if (!typeName.empty()) {
    type = FindTypeDefinition(node, typeName);
    if (type == nullptr) type = m_state.anyType;
  } else if (const Node simple = FindPart(node, L"simpleType"); simple != nullptr) {
    type = MakeSimpleType(simple);
  } else if (const Node complex = FindPart(node, L"complexType"); complex != nullptr) {
    type = MakeComplexType(complex);
  }
  if (type != nullptr && typeName.empty()) type->ownerElement = &element;
  if (type == nullptr && element.substitutionGroupAffiliation == nullptr) type = m_state.anyType;
  element.type = type;  // of a member of a substitution group without a type, later that of the head
  ReadIdentityConstraints(element, node);
  m_elements.push_back({&element, node, m_document});
}

void CBuilder::FillAttribute(AttributeDeclaration& attribute, Node node) {
  Describe(attribute, node);
  ReadValue(attribute.value, node);
  const std::wstring typeName = TokenOf(node, L"type");
  SimpleTypeDefinition* type = nullptr;
  if (!typeName.empty()) {
    type = FindSimpleType(node, typeName);
  } else if (const Node simple = FindPart(node, L"simpleType"); simple != nullptr) {
    type = MakeSimpleType(simple);
    type->ownerAttribute = &attribute;
  }
  attribute.type = type != nullptr ? type : m_state.builtIns[0];
  if (attribute.name.namespaceUri == kInstanceNamespace && m_document->source->path != L"xsi.xsd")
    Error(node, L"No attribute can be declared in the namespace " + Bracketed(kInstanceNamespace) + L".");
  m_attributes.push_back({&attribute, nullptr, node, m_document});
}

SimpleTypeDefinition* CBuilder::MakeSimpleType(Node node) {
  SimpleTypeDefinition& type = m_state.simpleTypes.emplace_back();
  type.name.namespaceUri = m_document->targetNamespace;
  m_state.allTypes.push_back(&type);
  FillSimpleType(type, node);
  return &type;
}

SimpleTypeDefinition* CBuilder::MakeInnerType(Node node, TypeDefinition& owner) {
  if (node == nullptr) return nullptr;
  SimpleTypeDefinition* const type = MakeSimpleType(node);
  type->ownerType = &owner;
  return type;
}

bool CBuilder::IsRedefined(const TypeDefinition& type) const {
  return m_global != nullptr && m_global->redefined != nullptr && m_global->component == &type;
}

Component* CBuilder::FindRedefined(Node node, const std::wstring& base, const wchar_t* refusal) {
  const std::optional<QName> name = ReadQName(node, base);
  if (name && *name == m_global->name) return m_global->redefined->component;
  Error(node, refusal);
  return nullptr;
}

ComplexTypeDefinition* CBuilder::MakeComplexType(Node node) {
  ComplexTypeDefinition& type = m_state.complexTypes.emplace_back();
  type.name.namespaceUri = m_document->targetNamespace;
  m_state.allTypes.push_back(&type);
  FillComplexType(type, node);
  return &type;
}

void CBuilder::FillSimpleType(SimpleTypeDefinition& type, Node node) {
  Describe(type, node);
  SimpleWork& work = m_simpleWorks.emplace_back();
  work.type = &type;
  work.node = node;
  work.document = m_document;
  m_simpleWorkOf[&type] = &work;
  constexpr DerivationSet kFinals = kRestriction | kList | kUnion;
  type.final = HasAttribute(node, L"final") ? ReadDerivationSet(TokenOf(node, L"final"), kFinals)
                                            : m_document->finalDefault & kFinals;
  type.base = m_state.builtIns[0];
  type.variety = Variety::Atomic;
  const Node method = FirstPart(node);
  if (method == nullptr) return;
  if (method->GetLocalName() == L"restriction") FillRestriction(work, method);
  if (method->GetLocalName() == L"list") FillList(type, method);
  if (method->GetLocalName() == L"union") FillUnion(type, method);
}

void CBuilder::FillRestriction(SimpleWork& work, Node method) {
  SimpleTypeDefinition& type = *work.type;
  type.derivation = kRestriction;
  const std::wstring base = TokenOf(method, L"base");
  SimpleTypeDefinition* found = nullptr;
  if (base.empty())
    found = MakeInnerType(FindPart(method, L"simpleType"), type);
  else if (IsRedefined(type))
    found =
        static_cast<SimpleTypeDefinition*>(FindRedefined(method, base, L"A redefined type has to restrict itself."));
  else
    found = FindSimpleType(method, base);
  if (found != nullptr) type.base = found;
  for (Node part = FirstPart(method); part != nullptr; part = NextPart(part)) {
    if (part->GetLocalName() != L"simpleType") work.facetNodes.push_back(part);
  }
  if (found == m_state.builtIns[0]) Error(method, L"The type definition [anySimpleType] cannot be restricted.");
}

void CBuilder::FillList(SimpleTypeDefinition& type, Node method) {
  type.derivation = kList;
  type.variety = Variety::List;
  const std::wstring item = TokenOf(method, L"itemType");
  type.itemType = item.empty() ? MakeInnerType(FindPart(method, L"simpleType"), type) : FindSimpleType(method, item);
}

void CBuilder::FillUnion(SimpleTypeDefinition& type, Node method) {
  type.derivation = kUnion;
  type.variety = Variety::Union;
  ForEachToken(TokenOf(method, L"memberTypes"), [&](std::wstring_view member) {
    SimpleTypeDefinition* const found = FindSimpleType(method, member);
    if (found != nullptr) type.memberTypes.push_back(found);
  });
  for (Node part = FirstPart(method); part != nullptr; part = NextPart(part))
    if (part->GetLocalName() == L"simpleType") type.memberTypes.push_back(MakeInnerType(part, type));
}

void CBuilder::FillComplexType(ComplexTypeDefinition& type, Node node) {
  Describe(type, node);
  ComplexWork& work = m_complexWorks.emplace_back();
  work.type = &type;
  work.node = node;
  work.document = m_document;
  m_complexWorkOf[&type] = &work;
  constexpr DerivationSet kMethods = kExtension | kRestriction;
  constexpr const wchar_t* kNotItself = L"A redefined type has to extend or restrict itself.";
  type.isAbstract = BooleanOf(node, L"abstract", false);
  type.final = HasAttribute(node, L"final") ? ReadDerivationSet(TokenOf(node, L"final"), kMethods)
                                            : m_document->finalDefault & kMethods;
  type.prohibitedSubstitutions = HasAttribute(node, L"block") ? ReadDerivationSet(TokenOf(node, L"block"), kMethods)
                                                              : m_document->blockDefault & kMethods;
  work.isMixed = BooleanOf(node, L"mixed", false);
  type.base = m_state.anyType;
  type.derivation = kRestriction;
  const Node content = FirstPart(node);
  Node parts = content;
  if (content != nullptr &&
      (content->GetLocalName() == L"simpleContent" || content->GetLocalName() == L"complexContent")) {
    work.isSimpleContent = content->GetLocalName() == L"simpleContent";
    if (!work.isSimpleContent) work.isMixed = BooleanOf(content, L"mixed", work.isMixed);
    work.derivation = FirstPart(content);
    if (work.derivation == nullptr) return;
    type.derivation = work.derivation->GetLocalName() == L"extension" ? kExtension : kRestriction;
    parts = FirstPart(work.derivation);
    const std::wstring base = TokenOf(work.derivation, L"base");
    TypeDefinition* found = nullptr;
    if (IsRedefined(type))
      found = static_cast<ComplexTypeDefinition*>(FindRedefined(work.derivation, base, kNotItself));
    else if (!base.empty())
      found = FindTypeDefinition(work.derivation, base);
    if (found != nullptr) type.base = found;
  } else if (IsRedefined(type)) {
    Error(node, kNotItself);
  }
  Node attributes = parts;
  if (work.isSimpleContent) {
    for (; attributes != nullptr; attributes = NextPart(attributes)) {
      const std::wstring_view name = attributes->GetLocalName();
      if (name == L"attribute" || name == L"attributeGroup" || name == L"anyAttribute") break;
      if (name == L"simpleType") {
        work.innerType = MakeInnerType(attributes, type);
      } else {
        work.facetNodes.push_back(attributes);
      }
    }
  } else if (parts != nullptr) {
    const std::wstring_view name = parts->GetLocalName();
    if (name == L"group" || name == L"all" || name == L"choice" || name == L"sequence") {
      work.particle = ReadParticle(parts);
      attributes = NextPart(parts);
    }
  }
  ReadAttributes(work.attributes, attributes);
}

// ---- attributes
// ------------------------------------------------------------------------------------------------------

void CBuilder::ReadAttributes(AttributeItems& items, Node first) {
  for (Node node = first; node != nullptr; node = NextPart(node)) {
    const std::wstring_view name = node->GetLocalName();
    if (name == L"attribute") {
      AttributeItem item = ReadAttributeUse(node);
      if (item.use != nullptr) items.items.push_back(std::move(item));
    } else if (name == L"attributeGroup") {
      AttributeItem item;
      item.node = node;
      const std::wstring reference = TokenOf(node, L"ref");
      const std::optional<QName> target = ReadQName(node, reference);
      const bool isItself = m_global != nullptr && m_global->redefined != nullptr &&
                            m_global->space == Space::AttributeGroup && target && *target == m_global->name;
      Component* const found = isItself ? m_global->redefined->component : Find(Space::AttributeGroup, node, reference);
      item.group = static_cast<AttributeGroupDefinition*>(found);
      if (item.group != nullptr) items.items.push_back(std::move(item));
    } else if (name == L"anyAttribute") {
      items.wildcard = ReadWildcard(node);
    }
  }
}

CBuilder::AttributeItem CBuilder::ReadAttributeUse(Node node) {
  AttributeItem item;
  item.node = node;
  const std::wstring use = TokenOf(node, L"use");
  const std::wstring reference = TokenOf(node, L"ref");
  AttributeDeclaration* declaration = nullptr;
  if (!reference.empty()) {
    declaration = static_cast<AttributeDeclaration*>(Find(Space::Attribute, node, reference));
    if (declaration == nullptr) return item;
  } else {
    const std::wstring name = TokenOf(node, L"name");
    if (!IsNCName(name)) return item;
    declaration = &m_state.attributePool.emplace_back();
    const std::wstring form = TokenOf(node, L"form");
    const bool qualified = form.empty() ? m_document->attributeQualified : form == L"qualified";
    declaration->name = {qualified ? m_document->targetNamespace : std::wstring(), name};
    FillAttribute(*declaration, node);
  }
  AttributeUse& made = m_state.attributeUses.emplace_back();
  Describe(made, node);
  made.declaration = declaration;
  made.required = use == L"required";
  item.isProhibited = use == L"prohibited";
  item.name = declaration->name;
  item.use = &made;
  if (!reference.empty()) ReadValue(made.value, node);
  m_attributes.push_back({declaration, &made, node, m_document});
  return item;
}

Wildcard* CBuilder::ReadWildcard(Node node) {
  Wildcard& wildcard = m_state.wildcards.emplace_back();
  Describe(wildcard, node);
  const std::wstring process = TokenOf(node, L"processContents");
  wildcard.processContents = process == L"skip"  ? ProcessContents::Skip
                             : process == L"lax" ? ProcessContents::Lax
                                                 : ProcessContents::Strict;
  wildcard.targetNamespace = m_document->targetNamespace;
  wildcard.written = HasAttribute(node, L"namespace") ? TokenOf(node, L"namespace") : L"##any";
  if (wildcard.written == L"##any") return &wildcard;
  if (wildcard.written == L"##other") {
    wildcard.constraint = Wildcard::Constraint::Not;
    wildcard.namespaces.push_back(m_document->targetNamespace);
    return &wildcard;
  }
  wildcard.constraint = Wildcard::Constraint::Enumeration;
  ForEachToken(wildcard.written, [&](std::wstring_view token) {
    std::wstring uri = token == L"##targetNamespace" ? m_document->targetNamespace
                       : token == L"##local"         ? std::wstring()
                                                     : std::wstring(token);
    auto& list = wildcard.namespaces;
    if (std::find(list.begin(), list.end(), uri) == list.end()) list.push_back(std::move(uri));
  });
  return &wildcard;
}

// ---- content models
// --------------------------------------------------------------------------------------------------

Particle* CBuilder::MakeParticle(Node node) {
  Particle& particle = m_state.particles.emplace_back();
  Describe(particle, node);
  particle.minOccurs = ReadCount(node, L"minOccurs");
  particle.maxOccurs = ReadCount(node, L"maxOccurs");
  return &particle;
}

// Null when the particle is absent (its maximum is 0) or refers to nothing.
Particle* CBuilder::ReadParticle(Node node) {
  const std::wstring_view name = node->GetLocalName();
  Particle* const particle = MakeParticle(node);
  if (name == L"element") {
    const std::wstring reference = TokenOf(node, L"ref");
    if (!reference.empty()) {
      particle->element = static_cast<ElementDeclaration*>(Find(Space::Element, node, reference));
    } else {
      const std::wstring local = TokenOf(node, L"name");
      if (!IsNCName(local)) return nullptr;
      ElementDeclaration& element = m_state.elementPool.emplace_back();
      const std::wstring form = TokenOf(node, L"form");
      const bool qualified = form.empty() ? m_document->elementQualified : form == L"qualified";
      element.name = {qualified ? m_document->targetNamespace : std::wstring(), local};
      FillElement(element, node, false);
      particle->element = &element;
    }
    if (particle->element == nullptr) return nullptr;
  } else if (name == L"any") {
    particle->wildcard = ReadWildcard(node);
  } else if (name == L"group") {
    const std::wstring reference = TokenOf(node, L"ref");
    const std::optional<QName> target = ReadQName(node, reference);
    const bool isItself = m_global != nullptr && m_global->redefined != nullptr && m_global->space == Space::Group &&
                          target && *target == m_global->name;
    auto* const definition = static_cast<ModelGroupDefinition*>(isItself ? m_global->redefined->component
                                                                         : Find(Space::Group, node, reference));
    if (definition == nullptr) return nullptr;
    if (isItself && (particle->minOccurs != 1 || particle->maxOccurs != 1))
      Error(node, L"A redefined group has to contain itself exactly once.");
    particle->group = definition->modelGroup;
  } else {
    particle->group = ReadModelGroup(node);
  }
  return particle->maxOccurs == 0 ? nullptr : particle;
}

ModelGroup* CBuilder::ReadModelGroup(Node node) {
  ModelGroup& group = m_state.modelGroups.emplace_back();
  Describe(group, node);
  const std::wstring_view name = node->GetLocalName();
  group.compositor = name == L"all" ? Compositor::All : name == L"choice" ? Compositor::Choice : Compositor::Sequence;
  for (Node part = FirstPart(node); part != nullptr; part = NextPart(part)) {
    const Particle* const particle = ReadParticle(part);
    if (particle != nullptr) group.particles.push_back(particle);
  }
  return &group;
}

void CBuilder::ReadIdentityConstraints(ElementDeclaration& element, Node node) {
  for (Node part = FirstPart(node); part != nullptr; part = NextPart(part)) {
    const std::wstring_view kind = part->GetLocalName();
    if (kind != L"key" && kind != L"keyref" && kind != L"unique") continue;
    IdentityConstraintDefinition& constraint = m_state.constraintPool.emplace_back();
    Describe(constraint, part);
    constraint.name = {m_document->targetNamespace, TokenOf(part, L"name")};
    constraint.category = kind == L"key"      ? IdentityConstraintCategory::Key
                          : kind == L"keyref" ? IdentityConstraintCategory::KeyRef
                                              : IdentityConstraintCategory::Unique;
    constraint.namespaces = Bindings(part);
    for (Node xpath = FirstPart(part); xpath != nullptr; xpath = NextPart(xpath)) {
      const std::wstring text = TokenOf(xpath, L"xpath");
      const bool isField = xpath->GetLocalName() == L"field";
      const auto isDeclared = [&](std::wstring_view prefix) { return LookupNamespace(xpath, prefix).has_value(); };
      if (!IsXPathSubset(text, isField, isDeclared))
        Error(xpath, L"The path " + Bracketed(text) + L" is not allowed for a " + (isField ? L"field." : L"selector."));
      if (isField) {
        constraint.fields.push_back(text);
      } else {
        constraint.selector = text;
      }
    }
    element.identityConstraints.push_back(&constraint);
    if (!m_state.constraintTable.emplace(constraint.name, &constraint).second)
      Error(part, L"The identity constraint " + Bracketed(constraint.name) + L" is declared twice.");
    if (constraint.category == IdentityConstraintCategory::KeyRef)
      m_keyReferences.push_back({&constraint, part, m_document});
  }
}

void CBuilder::LinkKeyReferences() {
  for (const KeyReference& reference : m_keyReferences) {
    m_document = reference.document;
    const std::optional<QName> name = ReadQName(reference.node, TokenOf(reference.node, L"refer"));
    if (!name) continue;
    const auto found = m_state.constraintTable.find(*name);
    if (found == m_state.constraintTable.end() || found->second->category == IdentityConstraintCategory::KeyRef) {
      Error(reference.node, L"The key " + Bracketed(*name) + L" is not declared.");
      continue;
    }
    reference.constraint->referencedKey = found->second;
    if (found->second->fields.size() != reference.constraint->fields.size())
      Error(reference.node, L"The key reference has another number of fields than the key " + Bracketed(*name) + L".");
  }
}

}  // namespace RkXmlSchema
