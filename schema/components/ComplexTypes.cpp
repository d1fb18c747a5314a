// Complex types, attribute groups and wildcards: what a derivation makes of its base.
#include <algorithm>
#include <iterator>

#include "schema/components/SimpleValue.h"
#include "schema/components/internal/Builder.h"

namespace RkXmlSchema {

namespace {

using Constraint = Wildcard::Constraint;

bool Contains(const std::vector<std::wstring>& list, const std::wstring& text) {
  return std::find(list.begin(), list.end(), text) != list.end();
}

// A particle that can hold no element.
bool IsEmptyContent(const Particle* particle) {
  if (particle == nullptr) return true;
  if (particle->group == nullptr || !particle->group->particles.empty()) return false;
  return particle->group->compositor != Compositor::Choice || particle->minOccurs == 0;
}

bool IsIdType(const SimpleTypeDefinition* type) { return type != nullptr && type->builtIn == BuiltInType::ID; }

bool SameConstraint(const Wildcard& a, const Wildcard& b) {
  if (a.constraint != b.constraint || a.allowsAbsent != b.allowsAbsent) return false;
  std::vector<std::wstring> x = a.namespaces;
  std::vector<std::wstring> y = b.namespaces;
  std::sort(x.begin(), x.end());
  std::sort(y.begin(), y.end());
  return x == y;
}

}  // namespace

// ---- wildcards (XML Schema: Structures, section 3.10.6)
// ------------------------------------------------------------------------------

bool IsSubset(const Wildcard& sub, const Wildcard& super) {
  if (super.constraint == Constraint::Any) return true;
  if (sub.constraint == Constraint::Any) return false;
  if (sub.constraint == Constraint::Enumeration)
    return std::all_of(sub.namespaces.begin(), sub.namespaces.end(),
                       [&](const std::wstring& uri) { return super.Allows(uri); });
  return super.constraint == Constraint::Not && SameConstraint(sub, super);
}

bool Overlap(const Wildcard& a, const Wildcard& b) {
  if (a.constraint == Constraint::Enumeration)
    return std::any_of(a.namespaces.begin(), a.namespaces.end(),
                       [&](const std::wstring& uri) { return b.Allows(uri); });
  if (b.constraint == Constraint::Enumeration) return Overlap(b, a);
  return true;
}

bool Intersect(Wildcard& a, const Wildcard& b) {
  if (b.constraint == Constraint::Any || SameConstraint(a, b)) return true;
  if (a.constraint == Constraint::Any) {
    a.constraint = b.constraint;
    a.namespaces = b.namespaces;
    a.allowsAbsent = b.allowsAbsent;
    return true;
  }
  if (a.constraint == Constraint::Enumeration || b.constraint == Constraint::Enumeration) {
    const Wildcard& list = a.constraint == Constraint::Enumeration ? a : b;
    const Wildcard& other = &list == &a ? b : a;
    std::vector<std::wstring> both;
    std::copy_if(list.namespaces.begin(), list.namespaces.end(), std::back_inserter(both),
                 [&](const std::wstring& uri) { return other.Allows(uri); });
    a.constraint = Constraint::Enumeration;
    a.allowsAbsent = false;
    a.namespaces = std::move(both);
    return true;
  }
  // Two negations: of no namespace and of one, the latter.
  if (Contains(a.namespaces, L"")) {
    a.namespaces = b.namespaces;
    return true;
  }
  return Contains(b.namespaces, L"");
}

bool Unite(Wildcard& a, const Wildcard& b) {
  if (a.constraint == Constraint::Any || SameConstraint(a, b)) return true;
  if (b.constraint == Constraint::Any) {
    a.constraint = Constraint::Any;
    a.namespaces.clear();
    return true;
  }
  if (a.constraint == Constraint::Enumeration && b.constraint == Constraint::Enumeration) {
    for (const std::wstring& uri : b.namespaces) {
      if (!Contains(a.namespaces, uri)) a.namespaces.push_back(uri);
    }
    return true;
  }
  if (a.constraint == Constraint::Not && b.constraint == Constraint::Not) {
    a.namespaces = {L""};
    a.allowsAbsent = false;
    return true;
  }
  // A negation and a list.
  const Wildcard negation = a.constraint == Constraint::Not ? a : b;
  const Wildcard list = a.constraint == Constraint::Not ? b : a;
  const std::wstring& excluded = negation.namespaces.front();
  const bool hasExcluded = Contains(list.namespaces, excluded);
  const bool hasAbsent = Contains(list.namespaces, L"");
  if (excluded.empty() ? hasAbsent : hasExcluded && hasAbsent) {
    a.constraint = Constraint::Any;
    a.namespaces.clear();
    return true;
  }
  if (!excluded.empty() && hasAbsent) return false;
  a.constraint = Constraint::Not;
  a.namespaces = {excluded.empty() || hasExcluded ? std::wstring() : excluded};
  return true;
}

// ---- order
// -----------------------------------------------------------------------------------------------------------

void CBuilder::CheckGroupCycles() {
  enum class Mark { Open, Done };
  std::unordered_map<const ModelGroup*, Mark> marks;
  std::unordered_map<const ModelGroup*, std::size_t> height;
  struct Frame {
    const ModelGroup* group;
    std::size_t next;
  };
  const std::size_t limit = m_state.options.limits.maxDerivationDepth;
  for (ModelGroupDefinition& definition : m_state.groupPool) {
    if (marks.count(definition.modelGroup) != 0) continue;
    std::vector<Frame> open = {{definition.modelGroup, 0}};
    marks[definition.modelGroup] = Mark::Open;
    while (!open.empty()) {
      Frame& frame = open.back();
      if (frame.next == frame.group->particles.size()) {
        const std::size_t tall = height[frame.group];
        marks[frame.group] = Mark::Done;
        open.pop_back();
        if (!open.empty()) {
          std::size_t& above = height[open.back().group];
          above = std::max(above, tall + 1);
          if (above > limit) m_state.reporter.Exceeded(definition.location, L"groups inside each other", limit);
        }
        continue;
      }
      const Particle* const particle = frame.group->particles[frame.next++];
      const ModelGroup* const inner = particle->group;
      if (inner == nullptr) continue;
      const auto mark = marks.find(inner);
      if (mark == marks.end()) {
        marks[inner] = Mark::Open;
        open.push_back({inner, 0});
      } else if (mark->second == Mark::Open) {
        m_state.reporter.Error(particle->location, L"The model group definition contains itself.");
        const_cast<Particle*>(particle)->group = &m_state.modelGroups.emplace_back();
      } else {
        std::size_t& above = height[frame.group];
        above = std::max(above, height[inner] + 1);
        if (above > limit) m_state.reporter.Exceeded(definition.location, L"groups inside each other", limit);
      }
    }
  }
}

void CBuilder::DeriveAttributeGroups() {
  enum class Mark { Open, Done };
  std::unordered_map<const GroupWork*, Mark> marks;
  struct Frame {
    GroupWork* work;
    std::size_t next;
  };
  for (GroupWork& first : m_groupWorks) {
    if (marks.count(&first) != 0) continue;
    std::vector<Frame> open = {{&first, 0}};
    marks[&first] = Mark::Open;
    while (!open.empty()) {
      Frame& frame = open.back();
      std::vector<AttributeItem>& items = frame.work->attributes.items;
      if (frame.next == items.size()) {
        DeriveAttributeGroup(*frame.work);
        marks[frame.work] = Mark::Done;
        open.pop_back();
        continue;
      }
      AttributeItem& item = items[frame.next++];
      if (item.group == nullptr) continue;
      const auto found = m_groupWorkOf.find(item.group);
      GroupWork* const inner = found != m_groupWorkOf.end() ? found->second : nullptr;
      if (inner == nullptr) continue;
      const auto mark = marks.find(inner);
      if (mark == marks.end()) {
        marks[inner] = Mark::Open;
        open.push_back({inner, 0});
      } else if (mark->second == Mark::Open) {
        m_document = frame.work->document;
        Error(item.node, L"The attribute group definition " + Bracketed(item.group->name) + L" contains itself.");
        item.group = nullptr;
      }
    }
  }
}

void CBuilder::DeriveAttributeGroup(GroupWork& work) {
  m_document = work.document;
  Wildcard* wildcard = work.attributes.wildcard;
  Collect(work.attributes, work.group->attributeUses, wildcard, work.node, nullptr);
  work.group->attributeWildcard = wildcard;
  for (const AttributeItem& item : work.attributes.items) {
    if (item.group != nullptr) work.group->attributeGroups.push_back(item.group);
  }
  CheckUses(work.group->attributeUses, work.node, L"attribute group definition " + Bracketed(work.group->name));
}

// The uses of the items and of the groups among them, and the intersection of their wildcards.
void CBuilder::Collect(const AttributeItems& items, std::vector<const AttributeUse*>& uses, Wildcard*& wildcard,
                       Node node, std::vector<QName>* prohibited) {
  std::set<const AttributeUse*> known;
  bool isCopy = false;
  for (const AttributeItem& item : items.items) {
    if (item.use != nullptr && item.isProhibited) {
      if (prohibited != nullptr) prohibited->push_back(item.name);
      continue;
    }
    if (item.use != nullptr) {
      if (known.insert(item.use).second) uses.push_back(item.use);
      continue;
    }
    if (item.group == nullptr) continue;
    for (const AttributeUse* use : item.group->attributeUses) {
      if (known.insert(use).second) uses.push_back(use);
    }
    const Wildcard* const other = item.group->attributeWildcard;
    if (other == nullptr) continue;
    Wildcard& joined = isCopy ? *wildcard : m_state.wildcards.emplace_back(wildcard != nullptr ? *wildcard : *other);
    if (wildcard != nullptr) {
      joined.written.clear();
      if (!Intersect(joined, *other)) Error(node, L"The intersection of the attribute wildcards cannot be expressed.");
    }
    wildcard = &joined;
    isCopy = true;
  }
  m_attributeUseCount += uses.size();
  const std::size_t limit = m_state.options.limits.maxAttributeUses;
  if (m_attributeUseCount > limit) m_state.reporter.Exceeded(Here(node), L"attribute uses", limit);
}

// Attributes of a type or group have different names, and one of them at most is an ID.
void CBuilder::CheckUses(const std::vector<const AttributeUse*>& uses, Node node, const std::wstring& owner) {
  std::set<QName> names;
  for (const AttributeUse* use : uses) {
    if (!names.insert(use->GetName()).second)
      Error(node, L"The attribute " + Bracketed(use->GetName()) + L" stands twice in the " + owner + L".");
  }
}

void CBuilder::DeriveTypes() {
  enum class Mark { Open, Done };
  struct Frame {
    TypeDefinition* type;
    std::vector<TypeDefinition*> needs;
    std::size_t next;
  };
  std::unordered_map<const TypeDefinition*, Mark> marks;
  std::unordered_map<const TypeDefinition*, std::size_t> height;
  const std::size_t limit = m_state.options.limits.maxDerivationDepth;

  const auto needsOf = [&](TypeDefinition* type) {
    std::vector<TypeDefinition*> needs;
    const auto add = [&](const TypeDefinition* other) {
      if (other != nullptr && !other->IsBuiltIn()) needs.push_back(const_cast<TypeDefinition*>(other));
    };
    add(type->base);
    if (const SimpleTypeDefinition* simple = type->AsSimple()) {
      add(simple->itemType);
      for (const SimpleTypeDefinition* member : simple->memberTypes) add(member);
    } else if (const auto work = m_complexWorkOf.find(type); work != m_complexWorkOf.end()) {
      add(work->second->innerType);
    }
    return needs;
  };

  // The list grows while complex types with simple content are derived; those types come out derived.
  const std::vector<const TypeDefinition*> all = m_state.allTypes;
  for (const TypeDefinition* first : all) {
    if (marks.count(first) != 0) continue;
    std::vector<Frame> open;
    open.push_back({const_cast<TypeDefinition*>(first), needsOf(const_cast<TypeDefinition*>(first)), 0});
    marks[first] = Mark::Open;
    while (!open.empty()) {
      Frame& frame = open.back();
      if (frame.next == frame.needs.size()) {
        Derive(*frame.type);
        marks[frame.type] = Mark::Done;
        const std::size_t tall = height[frame.type] + 1;
        open.pop_back();
        if (!open.empty()) height[open.back().type] = std::max(height[open.back().type], tall);
        if (tall > limit) m_state.reporter.Exceeded(first->location, L"derivation steps", limit);
        continue;
      }
      TypeDefinition* const need = frame.needs[frame.next++];
      const auto mark = marks.find(need);
      if (mark == marks.end()) {
        marks[need] = Mark::Open;
        open.push_back({need, needsOf(need), 0});
      } else if (mark->second == Mark::Done) {
        height[frame.type] = std::max(height[frame.type], height[need] + 1);
      } else {
        BreakCircle(*frame.type, *need);
      }
    }
  }
  for (const TypeDefinition* type : m_state.allTypes)
    const_cast<TypeDefinition*>(type->base)->derivedTypes.push_back(type);
}

// The type, which is made of `need` and `need` of it, is made of something else, so that the others can be derived.
void CBuilder::BreakCircle(TypeDefinition& type, const TypeDefinition& need) {
  m_state.reporter.Error(type.location, L"The type definition " + Bracketed(need.name) + L" is defined by itself.");
  auto* const simple = const_cast<SimpleTypeDefinition*>(type.AsSimple());
  if (simple == nullptr) {
    type.base = m_state.anyType;
    return;
  }
  if (simple->base == &need) simple->base = m_state.builtIns[0];
  if (simple->itemType == &need) simple->itemType = m_state.builtIns[0];
  auto& members = simple->memberTypes;
  members.erase(std::remove(members.begin(), members.end(), &need), members.end());
}

void CBuilder::Derive(TypeDefinition& type) {
  if (type.IsSimple()) {
    const auto work = m_simpleWorkOf.find(&type);
    if (work != m_simpleWorkOf.end()) DeriveSimple(*work->second);
    return;
  }
  const auto work = m_complexWorkOf.find(&type);
  if (work != m_complexWorkOf.end()) DeriveComplex(*work->second);
}

// ---- complex types
// ---------------------------------------------------------------------------------------------------

void CBuilder::DeriveComplex(ComplexWork& work) {
  m_document = work.document;
  ComplexTypeDefinition& type = *work.type;
  if ((type.base->final & type.derivation) != 0 && type.base != m_state.anyType)
    Error(work.derivation, L"The type definition " + Bracketed(type.base->name) + L" is final for " +
                               (type.derivation == kExtension ? L"extensions." : L"restrictions."));
  if (work.isSimpleContent) {
    DeriveSimpleContent(work);
  } else {
    DeriveComplexContent(work);
  }
  DeriveAttributes(work);
}

void CBuilder::DeriveSimpleContent(ComplexWork& work) {
  ComplexTypeDefinition& type = *work.type;
  type.contentType = ContentType::Simple;
  type.simpleContentType = m_state.builtIns[0];
  const ComplexTypeDefinition* const base = type.base->AsComplex();
  if (work.derivation == nullptr) return;
  if (type.derivation == kExtension) {
    if (base == nullptr) {
      type.simpleContentType = type.base->AsSimple();
    } else if (base->contentType == ContentType::Simple) {
      type.simpleContentType = base->simpleContentType;
    } else {
      Error(work.derivation, L"The base type " + Bracketed(base->name) + L" has no simple content.");
    }
    return;
  }
  if (base == nullptr) {
    Error(work.derivation,
          L"Simple content can restrict complex types only, and " + Bracketed(type.base->name) + L" is a simple type.");
    return;
  }
  const bool isEmptiable = base->contentType == ContentType::Mixed && m_models.IsEmptiable(base->particle);
  if (base->contentType != ContentType::Simple && !(isEmptiable && work.innerType != nullptr)) {
    Error(work.derivation, L"The base type " + Bracketed(base->name) + L" has no simple content.");
    return;
  }
  const SimpleTypeDefinition* const baseContent =
      base->contentType == ContentType::Simple ? base->simpleContentType : nullptr;
  const SimpleTypeDefinition* from = work.innerType != nullptr ? work.innerType : baseContent;
  if (work.innerType != nullptr && baseContent != nullptr && !IsDerivationOk(*work.innerType, *baseContent, 0))
    Error(work.derivation, L"The type of the content is not derived from that of the base type.");
  if (!work.facetNodes.empty()) {
    SimpleTypeDefinition& restricted = m_state.simpleTypes.emplace_back();
    m_state.allTypes.push_back(&restricted);
    restricted.name.namespaceUri = type.name.namespaceUri;
    restricted.location = Here(work.derivation);
    restricted.base = from;
    restricted.ownerType = &type;
    SimpleWork& made = m_simpleWorks.emplace_back();
    made.type = &restricted;
    made.node = work.derivation;
    made.document = work.document;
    made.facetNodes = work.facetNodes;
    DeriveRestriction(made);
    from = &restricted;
  }
  type.simpleContentType = from;
}

void CBuilder::DeriveComplexContent(ComplexWork& work) {
  ComplexTypeDefinition& type = *work.type;
  const ComplexTypeDefinition* const base = type.base->AsComplex();
  const bool isEmpty = IsEmptyContent(work.particle);
  type.ownParticle = isEmpty ? nullptr : work.particle;
  type.particle = type.ownParticle;
  type.contentType = work.isMixed ? ContentType::Mixed : isEmpty ? ContentType::Empty : ContentType::ElementOnly;
  if (work.derivation == nullptr) return;
  if (base == nullptr) {
    Error(work.derivation,
          L"Complex content has a complex type as its base, and " + Bracketed(type.base->name) + L" is a simple type.");
    type.base = m_state.anyType;
    return;
  }
  if (type.derivation == kRestriction) {
    if (base->contentType == ContentType::Simple)
      Error(work.derivation, L"The base type " + Bracketed(base->name) + L" has simple content.");
    if (type.contentType == ContentType::Mixed && base->contentType != ContentType::Mixed &&
        base->contentType != ContentType::Simple)
      Error(work.derivation, L"A mixed type cannot restrict one that is not mixed.");
    return;
  }

  if (isEmpty && !(work.isMixed && base->contentType == ContentType::Empty)) {
    type.contentType = base->contentType;
    type.simpleContentType = base->simpleContentType;
    type.particle = base->particle;
    return;
  }
  if (base->contentType == ContentType::Empty) return;
  if (base->contentType == ContentType::Simple) {
    Error(work.derivation, L"The base type " + Bracketed(base->name) + L" has simple content.");
    return;
  }
  if ((base->contentType == ContentType::Mixed) != (type.contentType == ContentType::Mixed))
    Error(work.derivation, L"A type and its extension are both mixed or neither.");
  if (base->particle == nullptr) return;
  const auto isAll = [](const Particle* p) { return p->group != nullptr && p->group->compositor == Compositor::All; };
  if (isAll(base->particle) || isAll(work.particle))
    Error(work.derivation, L"An all group cannot be extended, nor extend other content.");
  ModelGroup& sequence = m_state.modelGroups.emplace_back();
  sequence.location = Here(work.derivation);
  sequence.particles = {base->particle, work.particle};
  Particle& particle = m_state.particles.emplace_back();
  particle.location = sequence.location;
  particle.group = &sequence;
  type.particle = &particle;
}

void CBuilder::DeriveAttributes(ComplexWork& work) {
  ComplexTypeDefinition& type = *work.type;
  Wildcard* wildcard = work.attributes.wildcard;
  Collect(work.attributes, type.ownAttributeUses, wildcard, work.node, &type.prohibitedAttributes);
  for (const AttributeItem& item : work.attributes.items) {
    if (item.group != nullptr) type.attributeGroups.push_back(item.group);
  }
  const std::wstring owner =
      type.IsAnonymous() ? L"anonymous type definition" : L"type definition " + Bracketed(type.name);
  const ComplexTypeDefinition* const base = type.base->AsComplex();
  type.attributeWildcard = wildcard;
  if (base == nullptr || (work.derivation == nullptr && base == m_state.anyType)) {
    type.attributeUses = type.ownAttributeUses;
  } else if (type.derivation == kExtension) {
    type.attributeUses = base->attributeUses;
    type.attributeUses.insert(type.attributeUses.end(), type.ownAttributeUses.begin(), type.ownAttributeUses.end());
    if (base->attributeWildcard != nullptr) {
      if (wildcard == nullptr) {
        type.attributeWildcard = base->attributeWildcard;
      } else {
        Wildcard& joined = m_state.wildcards.emplace_back(*wildcard);
        if (!SameConstraint(joined, *base->attributeWildcard)) joined.written.clear();
        if (!Unite(joined, *base->attributeWildcard))
          Error(work.node, L"The union of the attribute wildcards cannot be expressed.");
        type.attributeWildcard = &joined;
      }
    }
  } else {
    RestrictAttributes(work, *base);
  }
  m_attributeUseCount += type.attributeUses.size();
  const std::size_t limit = m_state.options.limits.maxAttributeUses;
  if (m_attributeUseCount > limit) m_state.reporter.Exceeded(type.location, L"attribute uses", limit);
  CheckUses(type.attributeUses, work.node, owner);
}

void CBuilder::RestrictAttributes(ComplexWork& work, const ComplexTypeDefinition& base) {
  ComplexTypeDefinition& type = *work.type;
  std::unordered_map<QName, const AttributeUse*, QNameHash> own;
  for (const AttributeUse* use : type.ownAttributeUses) own.emplace(use->GetName(), use);
  std::unordered_map<QName, const AttributeUse*, QNameHash> inherited;
  for (const AttributeUse* use : base.attributeUses) {
    inherited.emplace(use->GetName(), use);
    const bool isProhibited = std::find(type.prohibitedAttributes.begin(), type.prohibitedAttributes.end(),
                                        use->GetName()) != type.prohibitedAttributes.end();
    const auto replaced = own.find(use->GetName());
    if (replaced == own.end() && !isProhibited) {
      type.attributeUses.push_back(use);
    } else if (use->required && (isProhibited || !replaced->second->required)) {
      Error(work.derivation, L"The attribute " + Bracketed(use->GetName()) + L" is required by the base type.");
    }
  }
  for (const AttributeUse* use : type.ownAttributeUses) {
    type.attributeUses.push_back(use);
    const auto found = inherited.find(use->GetName());
    if (found == inherited.end()) {
      if (base.attributeWildcard == nullptr || !base.attributeWildcard->Allows(use->GetName().namespaceUri))
        m_state.reporter.Error(use->location,
                               L"The base type has no attribute " + Bracketed(use->GetName()) + L" to restrict.");
    }
  }
  if (type.attributeWildcard == nullptr) return;
  if (base.attributeWildcard == nullptr || !IsSubset(*type.attributeWildcard, *base.attributeWildcard)) {
    Error(work.derivation, L"The attribute wildcard is no subset of that of the base type.");
  } else if (type.attributeWildcard->processContents > base.attributeWildcard->processContents &&
             &base != m_state.anyType) {
    Error(work.derivation, L"The attribute wildcard is processed less strictly than that of the base type.");
  }
}

// ---- derivation and substitution
// -------------------------------------------------------------------------------------

bool IsDerivationOk(const TypeDefinition& derived, const TypeDefinition& base, DerivationSet excluded) {
  // The member types of a union stand for it.
  std::set<const TypeDefinition*> targets = {&base};
  const bool baseIsSimple = base.IsSimple();
  if (baseIsSimple) {
    std::vector<const SimpleTypeDefinition*> open = {base.AsSimple()};
    while (!open.empty()) {
      const SimpleTypeDefinition* const at = open.back();
      open.pop_back();
      if (at->variety != Variety::Union) continue;
      for (const SimpleTypeDefinition* member : at->memberTypes) {
        if (targets.insert(member).second) open.push_back(member);
      }
    }
  }
  for (const TypeDefinition* at = &derived;; at = at->base) {
    if (targets.count(at) != 0) return true;
    if (at->base == at || at->base == nullptr) return false;
    // Lists and unions restrict xs:anySimpleType as far as this rule goes.
    const DerivationSet method = at->derivation == kExtension ? kExtension : kRestriction;
    if ((excluded & method) != 0) return false;
  }
}

bool IsSubstitutable(const ElementDeclaration& element, const ElementDeclaration& head) {
  if ((head.disallowedSubstitutions & kSubstitution) != 0) return false;
  DerivationSet methods = 0;
  DerivationSet blocked = head.disallowedSubstitutions;
  for (const TypeDefinition* at = element.type; at != head.type; at = at->base) {
    if (at == nullptr || at->base == at) return true;  // of a union; its members stand for it
    methods |= at->derivation == kExtension ? kExtension : kRestriction;
    if (at->base->AsComplex() != nullptr && (at->base != at->base->base))
      blocked |= at->base->AsComplex()->prohibitedSubstitutions;
  }
  return (methods & blocked) == 0;
}

void CBuilder::LinkSubstitutionGroups() {
  const std::size_t limit = m_state.options.limits.maxDerivationDepth;
  std::unordered_map<const ElementDeclaration*, std::size_t> distance;  // to the outermost head
  for (ElementDeclaration& first : m_state.elementPool) {
    if (first.substitutionGroupAffiliation == nullptr || distance.count(&first) != 0) continue;
    std::vector<ElementDeclaration*> chain;
    std::set<const ElementDeclaration*> onChain;
    ElementDeclaration* at = &first;
    while (at != nullptr && distance.count(at) == 0) {
      if (!onChain.insert(at).second) {
        m_state.reporter.Error(at->location, L"The element declaration " + Bracketed(at->name) +
                                                 L" is the head of its own substitution group.");
        at->substitutionGroupAffiliation = nullptr;
        break;
      }
      chain.push_back(at);
      at = const_cast<ElementDeclaration*>(at->substitutionGroupAffiliation);
    }
    for (auto element = chain.rbegin(); element != chain.rend(); ++element) {
      ElementDeclaration& member = **element;
      const ElementDeclaration* const head = member.substitutionGroupAffiliation;
      const std::size_t steps = head != nullptr ? distance[head] + 1 : 0;
      distance[&member] = steps;
      if (steps > limit) m_state.reporter.Exceeded(member.location, L"heads of substitution groups", limit);
      if (member.type == nullptr) member.type = head != nullptr && head->type != nullptr ? head->type : m_state.anyType;
    }
  }
}

void CBuilder::FinishSubstitutionGroups() {
  for (const ElementDeclaration* element : m_state.elements) {
    const ElementDeclaration* const head = element->substitutionGroupAffiliation;
    if (head == nullptr) continue;
    if (!IsDerivationOk(*element->type, *head->type, head->substitutionGroupExclusions))
      m_state.reporter.Error(element->location, L"The type of the element declaration " + Bracketed(element->name) +
                                                    L" is not derived, as its substitution group asks, from that of " +
                                                    Bracketed(head->name) + L".");
    if (element->isAbstract) continue;
    for (const ElementDeclaration* at = head; at != nullptr; at = at->substitutionGroupAffiliation) {
      if (IsSubstitutable(*element, *at)) const_cast<ElementDeclaration*>(at)->substitutionGroup.push_back(element);
    }
  }
}

// ---- values
// ----------------------------------------------------------------------------------------------------------

void CBuilder::FinishValue(ValueConstraint& value, const SimpleTypeDefinition& type, Node node) {
  if (!value) return;
  value.normalized = NormalizeWhiteSpace(type, value.text);
  if (const auto error = CheckValue(type, value.text, ResolverOf(value.namespaces)))
    Error(node, L"The default or fixed value is invalid: " + *error);
  if (IsIdType(&type)) Error(node, L"A value of the type [ID] has no default or fixed value.");
  if (!type.holdsQNames) value.namespaces = nullptr;
}

void CBuilder::FinishElement(const PendingElement& pending) {
  ElementDeclaration& element = *pending.element;
  const auto isBareNotation = [&](const TypeDefinition* type) {
    const SimpleTypeDefinition* const simple = type->AsSimple();
    return simple != nullptr && simple->builtIn == BuiltInType::Notation && simple->variety == Variety::Atomic &&
           simple->facets.enumeration.empty();
  };
  if (isBareNotation(element.type)) Error(pending.node, L"The type [NOTATION] can be used with an enumeration only.");
  if (!element.value) return;
  const ComplexTypeDefinition* const complex = element.type->AsComplex();
  if (complex == nullptr) return FinishValue(element.value, *element.type->AsSimple(), pending.node);
  if (complex->contentType == ContentType::Simple)
    return FinishValue(element.value, *complex->simpleContentType, pending.node);
  if (complex->contentType != ContentType::Mixed || !m_models.IsEmptiable(complex->particle))
    Error(pending.node, L"An element with a default or fixed value has simple content or emptiable mixed content.");
  element.value.namespaces = nullptr;
}

void CBuilder::FinishValues() {
  for (const PendingElement& pending : m_elements) {
    m_document = pending.document;
    FinishElement(pending);
  }
  for (const PendingAttribute& pending : m_attributes) {
    m_document = pending.document;
    const SimpleTypeDefinition& type = *pending.attribute->type;
    if (pending.use == nullptr) {
      if (type.builtIn == BuiltInType::Notation && type.facets.enumeration.empty() && type.variety == Variety::Atomic)
        Error(pending.node, L"The type [NOTATION] can be used with an enumeration only.");
      FinishValue(pending.attribute->value, type, pending.node);
      continue;
    }
    AttributeUse& use = *pending.use;
    FinishValue(use.value, type, pending.node);
    const ValueConstraint& declared = use.declaration->value;
    if (declared.kind == ValueConstraintKind::Fixed && use.value &&
        (use.value.kind != ValueConstraintKind::Fixed ||
         !AreEqualValues(type, use.value.text, declared.text, ResolverOf(use.value.namespaces),
                         ResolverOf(declared.namespaces))))
      Error(pending.node, L"The attribute declaration " + Bracketed(use.GetName()) + L" has another fixed value.");
    if (!use.value) use.value = declared;
  }
  // The rules for pairs of attributes wait until all types and values are known.
  for (const ComplexWork& work : m_complexWorks) {
    m_document = work.document;
    const ComplexTypeDefinition& type = *work.type;
    const auto isId = [](const AttributeUse* use) { return IsIdType(use->declaration->type); };
    if (std::count_if(type.attributeUses.begin(), type.attributeUses.end(), isId) > 1)
      Error(work.node, L"A type has at most one attribute of the type [ID].");
    const ComplexTypeDefinition* const base = type.base->AsComplex();
    if (work.derivation == nullptr || type.derivation != kRestriction || base == nullptr) continue;
    std::unordered_map<QName, const AttributeUse*, QNameHash> inherited;
    for (const AttributeUse* use : base->attributeUses) inherited.emplace(use->GetName(), use);
    for (const AttributeUse* use : type.ownAttributeUses) {
      const auto found = inherited.find(use->GetName());
      if (found == inherited.end()) continue;
      const AttributeUse& other = *found->second;
      if (!IsDerivationOk(*use->declaration->type, *other.declaration->type, 0))
        m_state.reporter.Error(use->location, L"The type of the attribute " + Bracketed(use->GetName()) +
                                                  L" is not derived from that in the base type.");
      if (other.value.kind == ValueConstraintKind::Fixed &&
          (use->value.kind != ValueConstraintKind::Fixed ||
           !AreEqualValues(*other.declaration->type, use->value.text, other.value.text,
                           ResolverOf(use->value.namespaces), ResolverOf(other.value.namespaces))))
        m_state.reporter.Error(use->location, L"The attribute " + Bracketed(use->GetName()) +
                                                  L" has another fixed value in the base type.");
    }
  }
  for (GroupWork& work : m_groupWorks) {
    m_document = work.document;
    const auto isId = [](const AttributeUse* use) { return IsIdType(use->declaration->type); };
    if (std::count_if(work.group->attributeUses.begin(), work.group->attributeUses.end(), isId) > 1)
      Error(work.node, L"An attribute group has at most one attribute of the type [ID].");
  }
}

// A redefined group or attribute group that does not contain itself restricts what it redefines.
void CBuilder::CheckRedefinitions() {
  for (const Global& global : m_state.globals) {
    if (global.redefined == nullptr) continue;
    m_document = global.document;
    if (global.space == Space::Group) {
      const auto& group = *static_cast<const ModelGroupDefinition*>(global.component);
      const auto& original = *static_cast<const ModelGroupDefinition*>(global.redefined->component);
      std::size_t references = 0;
      std::vector<const ModelGroup*> open = {group.modelGroup};
      while (!open.empty()) {
        const ModelGroup* const at = open.back();
        open.pop_back();
        for (const Particle* particle : at->particles) {
          if (particle->group == original.modelGroup) {
            ++references;
          } else if (particle->group != nullptr && particle->group->definition == nullptr) {
            open.push_back(particle->group);
          }
        }
      }
      if (references > 1) Error(global.node, L"A redefined group has to contain itself exactly once.");
      Particle own;
      own.group = group.modelGroup;
      Particle old;
      old.group = original.modelGroup;
      if (references == 0 && !m_models.IsRestriction(own, old))
        Error(global.node, L"The group " + Bracketed(global.name) + L" does not restrict the group that it redefines.");
    } else if (global.space == Space::AttributeGroup) {
      const auto& group = *static_cast<const AttributeGroupDefinition*>(global.component);
      const auto& original = *static_cast<const AttributeGroupDefinition*>(global.redefined->component);
      const auto references = std::count(group.attributeGroups.begin(), group.attributeGroups.end(), &original);
      if (references > 1) Error(global.node, L"A redefined attribute group has to contain itself exactly once.");
      if (references != 0) continue;
      for (const AttributeUse* use : group.attributeUses) {
        const auto same = [&](const AttributeUse* other) { return other->GetName() == use->GetName(); };
        const bool isThere = std::any_of(original.attributeUses.begin(), original.attributeUses.end(), same);
        const Wildcard* const wildcard = original.attributeWildcard;
        if (!isThere && (wildcard == nullptr || !wildcard->Allows(use->GetName().namespaceUri)))
          m_state.reporter.Error(use->location, L"The redefined attribute group has no attribute " +
                                                    Bracketed(use->GetName()) + L" to restrict.");
      }
      for (const AttributeUse* use : original.attributeUses) {
        const auto same = [&](const AttributeUse* other) {
          return other->GetName() == use->GetName() && other->required;
        };
        if (use->required && std::none_of(group.attributeUses.begin(), group.attributeUses.end(), same))
          Error(global.node, L"The attribute " + Bracketed(use->GetName()) + L" is required by the redefined group.");
      }
    }
  }
}

}  // namespace RkXmlSchema
