#include "schema/components/internal/ContentModel.h"

#include <algorithm>

#include "schema/components/SimpleValue.h"
#include "schema/components/internal/Builder.h"

namespace RkXmlSchema {

namespace {

std::uint64_t Plus(std::uint64_t a, std::uint64_t b) { return a > kUnbounded - b ? kUnbounded : a + b; }
std::uint64_t Times(std::uint64_t a, std::uint64_t b) { return a != 0 && b > kUnbounded / a ? kUnbounded : a * b; }

bool IsWithin(std::uint64_t least, std::uint64_t most, std::uint64_t baseLeast, std::uint64_t baseMost) {
  return least >= baseLeast && most <= baseMost;
}

std::wstring NameOf(const ComplexTypeDefinition& type) {
  return type.IsAnonymous() ? L"the anonymous type definition" : L"the type definition " + Bracketed(type.name);
}

std::wstring Describe(const Particle& particle) {
  if (particle.element != nullptr) return L"the element " + Bracketed(particle.element->name);
  return L"the wildcard " + Bracketed(particle.wildcard->written);
}

}  // namespace

bool CContentModels::Pay(std::size_t steps) {
  if (m_budget < steps) {
    m_budget = 0;
    return false;
  }
  m_budget -= steps;
  return true;
}

// ---- sizes
// -----------------------------------------------------------------------------------------------------------

CContentModels::Range CContentModels::RangeOf(const Particle& particle) {
  const Range one = particle.group != nullptr ? RangeOf(*particle.group) : Range{1, 1};
  return {Times(particle.minOccurs, one.least), Times(particle.maxOccurs, one.most)};
}

CContentModels::Range CContentModels::RangeOf(const ModelGroup& group) {
  const auto known = m_ranges.find(&group);
  if (known != m_ranges.end()) return known->second;
  Range range{0, 0};
  if (group.compositor == Compositor::Choice) {
    if (!group.particles.empty()) range.least = kUnbounded;
    for (const Particle* particle : group.particles) {
      const Range one = RangeOf(*particle);
      range.least = std::min(range.least, one.least);
      range.most = std::max(range.most, one.most);
    }
    // An empty choice accepts nothing at all.
    if (group.particles.empty()) range.least = 1;
  } else {
    for (const Particle* particle : group.particles) {
      const Range one = RangeOf(*particle);
      range.least = Plus(range.least, one.least);
      range.most = Plus(range.most, one.most);
    }
  }
  return m_ranges[&group] = range;
}

std::uint64_t CContentModels::SizeOf(const Particle& particle) {
  if (particle.group == nullptr) return 1;
  const auto known = m_sizes.find(particle.group);
  if (known != m_sizes.end()) return known->second;
  std::uint64_t size = 1;
  for (const Particle* part : particle.group->particles) size = Plus(size, SizeOf(*part));
  return m_sizes[particle.group] = size;
}

// ---- all types
// -------------------------------------------------------------------------------------------------------

void CContentModels::CheckAll() {
  for (const TypeDefinition* type : m_state.allTypes) {
    if (const ComplexTypeDefinition* complex = type->AsComplex()) CheckType(*complex);
  }
}

void CContentModels::CheckType(const ComplexTypeDefinition& type) {
  m_type = &type;
  if (type.particle != nullptr) {
    const SchemaLimits& limits = m_state.options.limits;
    const std::uint64_t size = SizeOf(*type.particle);
    if (size > limits.maxContentParticles)
      m_state.reporter.Exceeded(type.location, L"particles of a content model", limits.maxContentParticles);
    m_totalSize += size;
    if (m_totalSize > limits.maxTotalParticles)
      m_state.reporter.Exceeded(type.location, L"particles of all content models", limits.maxTotalParticles);
    m_leaves.clear();
    m_leafNames.clear();
    m_nameIndex.clear();
    m_names.clear();
    m_leafSet.clear();
    m_set = 0;
    m_hasConflict = false;
    Tree tree;
    Expand(tree, *type.particle);
    m_leafSet.resize(m_leaves.size());
    FindFirst(tree);
    CheckConsistency();
    Checked(tree.first, {});
    CheckFollow(tree, {});
    CheckAllGroups(*type.particle);
    if (m_budget == 0)
      m_state.reporter.Warning(type.location,
                               L"The content model of " + NameOf(type) + L" is too large to be checked for ambiguity.");
  }
  CheckRestriction(type);
}

// An all group is the whole content.
void CContentModels::CheckAllGroups(const Particle& root) {
  if (root.group->compositor == Compositor::All) {
    if (root.maxOccurs > 1) m_state.reporter.Error(root.location, L"An all group occurs at most once.");
    return;
  }
  std::set<const ModelGroup*> seen;
  std::vector<const ModelGroup*> open = {root.group};
  while (!open.empty()) {
    const ModelGroup* const group = open.back();
    open.pop_back();
    if (!seen.insert(group).second) continue;
    for (const Particle* particle : group->particles) {
      if (particle->group == nullptr) continue;
      if (particle->group->compositor == Compositor::All) {
        // The sequence of an extension is reported where it is made.
        if (group->location.file != nullptr && m_reported.insert({particle, particle}).second &&
            !(m_type->particle->group == group && m_type->derivation == kExtension &&
              m_type->ownParticle != m_type->particle))
          m_state.reporter.Error(particle->location, L"An all group cannot stand within another group.");
      } else {
        open.push_back(particle->group);
      }
    }
  }
}

// ---- ambiguity
// -------------------------------------------------------------------------------------------------------

void CContentModels::Expand(Tree& tree, const Particle& particle) {
  tree.particle = &particle;
  if (particle.group != nullptr) {
    tree.children.resize(particle.group->particles.size());
    for (std::size_t i = 0; i < tree.children.size(); ++i) Expand(tree.children[i], *particle.group->particles[i]);
    return;
  }
  tree.leaf = static_cast<std::uint32_t>(m_leaves.size());
  m_leaves.push_back(&particle);
  std::vector<std::uint32_t>& names = m_leafNames.emplace_back();
  const auto add = [&](const ElementDeclaration* element) {
    const auto [entry, isNew] = m_nameIndex.emplace(element->name, static_cast<std::uint32_t>(m_names.size()));
    if (isNew) m_names.push_back({element, 0, 0});
    names.push_back(entry->second);
  };
  if (particle.element == nullptr) return;
  add(particle.element);
  if (!Pay(particle.element->substitutionGroup.size())) return;
  for (const ElementDeclaration* member : particle.element->substitutionGroup) add(member);
}

void CContentModels::FindFirst(Tree& tree) {
  const Particle& particle = *tree.particle;
  if (tree.IsLeaf()) {
    tree.first = {tree.leaf};
    tree.isNullable = particle.minOccurs == 0;
    return;
  }
  const Compositor compositor = particle.group->compositor;
  bool isNullable = compositor != Compositor::Choice;
  for (Tree& child : tree.children) {
    FindFirst(child);
    const bool reached = compositor != Compositor::Sequence || isNullable;
    if (reached && Pay(child.first.size())) tree.first.insert(tree.first.end(), child.first.begin(), child.first.end());
    isNullable = compositor == Compositor::Choice ? isNullable || child.isNullable : isNullable && child.isNullable;
  }
  tree.isNullable = isNullable || particle.minOccurs == 0;
}

// The union of both, without doubles. Two leaves of it that accept the same element make the content ambiguous.
CContentModels::Leaves CContentModels::Checked(const Leaves& a, const Leaves& b) {
  Leaves all;
  if (!Pay(a.size() + b.size())) return all;
  ++m_set;
  Leaves wildcards;
  const auto add = [&](std::uint32_t leaf) {
    if (m_leafSet[leaf] == m_set) return;
    m_leafSet[leaf] = m_set;
    all.push_back(leaf);
    if (m_leaves[leaf]->wildcard != nullptr) wildcards.push_back(leaf);
    if (!Pay(m_leafNames[leaf].size())) return;
    for (const std::uint32_t name : m_leafNames[leaf]) {
      Name& entry = m_names[name];
      if (entry.set == m_set && entry.leaf != leaf) Complain(entry.leaf, leaf);
      entry.set = m_set;
      entry.leaf = leaf;
    }
  };
  for (const std::uint32_t leaf : a) add(leaf);
  for (const std::uint32_t leaf : b) add(leaf);
  for (const std::uint32_t wildcard : wildcards) {
    if (!Pay(all.size())) return all;
    for (const std::uint32_t leaf : all) {
      if (leaf == wildcard || m_hasConflict) continue;
      const Wildcard& one = *m_leaves[wildcard]->wildcard;
      if (m_leaves[leaf]->wildcard != nullptr) {
        if (Overlap(one, *m_leaves[leaf]->wildcard)) Complain(wildcard, leaf);
        continue;
      }
      if (!Pay(m_leafNames[leaf].size())) return all;
      for (const std::uint32_t name : m_leafNames[leaf]) {
        if (one.Allows(m_names[name].declaration->name.namespaceUri)) {
          Complain(wildcard, leaf);
          break;
        }
      }
    }
  }
  return all;
}

void CContentModels::Complain(std::uint32_t one, std::uint32_t other) {
  if (m_hasConflict) return;
  m_hasConflict = true;
  const Particle& a = *m_leaves[std::min(one, other)];
  const Particle& b = *m_leaves[std::max(one, other)];
  if (!m_reported.insert({&a, &b}).second) return;
  m_state.reporter.Error(b.location, L"The content of " + NameOf(*m_type) +
                                         L" is ambiguous: an element can belong to " + RkXmlSchema::Describe(b) +
                                         L" and to " + RkXmlSchema::Describe(a) + L" at " + a.location.ToString() +
                                         L".");
}

// `next`: what can follow the particle.
void CContentModels::CheckFollow(const Tree& tree, const Leaves& next) {
  if (m_hasConflict || m_budget == 0) return;
  const Particle& particle = *tree.particle;
  if (tree.IsLeaf()) {
    if (particle.maxOccurs > 1 && particle.minOccurs != particle.maxOccurs) Checked(tree.first, next);
    return;
  }
  if (particle.maxOccurs <= 1) return CheckBody(tree, next);
  const bool isBodyNullable = tree.isNullable && particle.minOccurs != 0;
  if (particle.minOccurs == particle.maxOccurs && !isBodyNullable) {
    // After each repetition but the last comes the group again, after the last what follows it: never both.
    CheckBody(tree, Checked(tree.first, {}));
    if (!Pay(tree.children.size())) return;
    return CheckBody(tree, next);
  }
  CheckBody(tree, Checked(tree.first, next));
}

void CContentModels::CheckBody(const Tree& tree, const Leaves& next) {
  if (!Pay(1)) return;
  if (tree.particle->group->compositor != Compositor::Sequence) {
    for (const Tree& child : tree.children) CheckFollow(child, next);
    return;
  }
  Leaves after = next;
  for (auto child = tree.children.rbegin(); child != tree.children.rend(); ++child) {
    CheckFollow(*child, after);
    if (m_hasConflict || m_budget == 0) return;
    after = Checked(child->first, child->isNullable ? after : Leaves());
  }
}

void CContentModels::CheckConsistency() {
  for (std::size_t leaf = 0; leaf < m_leaves.size(); ++leaf) {
    const ElementDeclaration* const element = m_leaves[leaf]->element;
    if (element == nullptr) continue;
    const ElementDeclaration* const other = m_names[m_leafNames[leaf].front()].declaration;
    if (other == element || other->type == element->type) continue;
    if (!m_reported.insert({m_leaves[leaf], nullptr}).second) continue;
    m_state.reporter.Error(m_leaves[leaf]->location, L"The element " + Bracketed(element->name) +
                                                         L" has another type at " + other->location.ToString() +
                                                         L" in the same content.");
  }
}

// ---- restriction
// -----------------------------------------------------------------------------------------------------

void CContentModels::Normalize(Normal& normal, const Particle& particle, const Particle* parent) {
  normal.particle = &particle;
  normal.least = particle.minOccurs;
  normal.most = particle.maxOccurs;
  if (particle.group == nullptr) return;
  for (const Particle* part : particle.group->particles) {
    Normal child;
    Normalize(child, *part, &particle);
    const ModelGroup* const group = child.particle->group;
    if (group != nullptr && child.children.empty() && (group->compositor != Compositor::Choice || child.least == 0))
      continue;
    const bool isOnce = child.least == 1 && child.most == 1;
    if (group != nullptr && isOnce && group->compositor == particle.group->compositor &&
        group->compositor != Compositor::All) {
      for (Normal& inner : child.children) normal.children.push_back(std::move(inner));
    } else {
      normal.children.push_back(std::move(child));
    }
  }
  static_cast<void>(parent);
  if (normal.least == 1 && normal.most == 1 && normal.children.size() == 1) {
    Normal only = std::move(normal.children.front());
    normal = std::move(only);
  }
}

CContentModels::Range CContentModels::RangeOf(const Normal& normal) {
  if (normal.particle->group == nullptr) return {normal.least, normal.most};
  Range range{0, 0};
  const bool isChoice = normal.particle->group->compositor == Compositor::Choice;
  if (isChoice) range.least = normal.children.empty() ? 1 : kUnbounded;
  for (const Normal& child : normal.children) {
    const Range one = RangeOf(child);
    range.least = isChoice ? std::min(range.least, one.least) : Plus(range.least, one.least);
    range.most = isChoice ? std::max(range.most, one.most) : Plus(range.most, one.most);
  }
  return {Times(normal.least, range.least), Times(normal.most, range.most)};
}

bool CContentModels::IsRestriction(const Particle& restricted, const Particle& base) {
  if (!Pay(SizeOf(restricted) + SizeOf(base))) return true;
  Normal r;
  Normal b;
  Normalize(r, restricted, nullptr);
  Normalize(b, base, nullptr);
  return Restricts(r, b);
}

bool CContentModels::Restricts(const Normal& r, const Normal& b) {
  if (!Pay(1)) return true;
  if (r.particle == b.particle && r.least == b.least && r.most == b.most) return true;
  if (b.particle->wildcard != nullptr) return RestrictsWildcard(r, b);
  if (r.particle->wildcard != nullptr) return false;
  if (b.particle->element != nullptr) return r.particle->element != nullptr && RestrictsElement(r, b);
  if (r.particle->element != nullptr) {
    // As if it stood in a group of the base's kind.
    if (!IsWithin(1, 1, b.least, b.most) && !IsWithin(r.least, r.most, b.least, b.most)) return false;
    if (b.particle->group->compositor == Compositor::Choice) {
      return std::any_of(b.children.begin(), b.children.end(),
                         [&](const Normal& child) { return Restricts(r, child); });
    }
    bool isFound = false;
    for (const Normal& child : b.children) {
      if (!isFound && Restricts(r, child)) {
        isFound = true;
      } else if (RangeOf(child).least != 0) {
        return false;
      }
    }
    return isFound;
  }
  return RestrictsGroup(r, b);
}

bool CContentModels::RestrictsGroup(const Normal& r, const Normal& b) {
  const Compositor kind = r.particle->group->compositor;
  const Compositor baseKind = b.particle->group->compositor;
  if (kind == Compositor::Sequence && baseKind == Compositor::Choice) {
    const std::uint64_t count = r.children.size();
    if (!IsWithin(Times(r.least, count), Times(r.most, count), b.least, b.most)) return false;
    return std::all_of(r.children.begin(), r.children.end(), [&](const Normal& child) {
      return std::any_of(b.children.begin(), b.children.end(),
                         [&](const Normal& other) { return Restricts(child, other); });
    });
  }
  if (!IsWithin(r.least, r.most, b.least, b.most)) return false;
  if (kind == Compositor::Sequence && baseKind == Compositor::All) return MapsInAnyOrder(r, b);
  if (kind != baseKind) return false;
  return MapsInOrder(r, b, kind == Compositor::Choice);
}

bool CContentModels::MapsInOrder(const Normal& r, const Normal& b, bool skipsAny) {
  auto at = b.children.begin();
  for (const Normal& child : r.children) {
    while (at != b.children.end() && !Restricts(child, *at)) {
      if (!skipsAny && RangeOf(*at).least != 0) return false;
      ++at;
    }
    if (at == b.children.end()) return false;
    ++at;
  }
  return skipsAny || std::all_of(at, b.children.end(), [&](const Normal& rest) { return RangeOf(rest).least == 0; });
}

bool CContentModels::MapsInAnyOrder(const Normal& r, const Normal& b) {
  std::vector<bool> taken(b.children.size());
  for (const Normal& child : r.children) {
    std::size_t i = 0;
    while (i < taken.size() && (taken[i] || !Restricts(child, b.children[i]))) ++i;
    if (i == taken.size()) return false;
    taken[i] = true;
  }
  for (std::size_t i = 0; i < taken.size(); ++i) {
    if (!taken[i] && RangeOf(b.children[i]).least != 0) return false;
  }
  return true;
}

bool CContentModels::RestrictsElement(const Normal& r, const Normal& b) {
  const ElementDeclaration& own = *r.particle->element;
  const ElementDeclaration& base = *b.particle->element;
  if (!IsWithin(r.least, r.most, b.least, b.most)) return false;
  if (own.name != base.name) {
    const auto& members = base.substitutionGroup;
    return own.isGlobal && std::find(members.begin(), members.end(), &own) != members.end();
  }
  if (own.isNillable && !base.isNillable) return false;
  if ((base.disallowedSubstitutions & ~own.disallowedSubstitutions) != 0) return false;
  if (base.value.kind == ValueConstraintKind::Fixed) {
    const SimpleTypeDefinition* type = base.type->AsSimple();
    if (type == nullptr) type = base.type->AsComplex()->simpleContentType;
    const bool same = type != nullptr
                          ? AreEqualValues(*type, own.value.text, base.value.text, ResolverOf(own.value.namespaces),
                                           ResolverOf(base.value.namespaces))
                          : own.value.text == base.value.text;
    if (own.value.kind != ValueConstraintKind::Fixed || !same) return false;
  }
  for (const IdentityConstraintDefinition* constraint : own.identityConstraints) {
    const auto& list = base.identityConstraints;
    if (std::find(list.begin(), list.end(), constraint) == list.end()) return false;
  }
  return IsDerivationOk(*own.type, *base.type, kExtension);
}

bool CContentModels::RestrictsWildcard(const Normal& r, const Normal& b) {
  const Wildcard& wildcard = *b.particle->wildcard;
  if (r.particle->element != nullptr)
    return IsWithin(r.least, r.most, b.least, b.most) && wildcard.Allows(r.particle->element->name.namespaceUri);
  if (r.particle->wildcard != nullptr) {
    const bool isWeaker =
        r.particle->wildcard->processContents > wildcard.processContents && wildcard.location.file != nullptr;
    return IsWithin(r.least, r.most, b.least, b.most) && IsSubset(*r.particle->wildcard, wildcard) && !isWeaker;
  }
  const Range range = RangeOf(r);
  if (!IsWithin(range.least, range.most, b.least, b.most)) return false;
  // The members as such; how often they occur together was looked at.
  Normal any = b;
  any.least = 0;
  any.most = kUnbounded;
  return std::all_of(r.children.begin(), r.children.end(), [&](const Normal& child) { return Restricts(child, any); });
}

void CContentModels::CheckRestriction(const ComplexTypeDefinition& type) {
  const ComplexTypeDefinition* const base = type.base->AsComplex();
  if (type.derivation != kRestriction || base == nullptr || base == m_state.anyType || base == &type) return;
  if (type.contentType == ContentType::Simple || base->contentType == ContentType::Simple) return;
  const auto complain = [&](const std::wstring& text) { m_state.reporter.Error(type.location, text); };
  if (type.particle == nullptr) {
    if (!IsEmptiable(base->particle))
      complain(L"The content of " + NameOf(type) + L" is empty, but that of its base type cannot be.");
    return;
  }
  if (base->particle == nullptr) {
    complain(L"The content of " + NameOf(type) + L" is not empty, but that of its base type is.");
    return;
  }
  if (!IsRestriction(*type.particle, *base->particle))
    complain(L"The content of " + NameOf(type) + L" is no restriction of that of its base type " +
             Bracketed(base->name) + L".");
}

}  // namespace RkXmlSchema
