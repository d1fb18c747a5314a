#include "schema/bind/Binding.h"

#include <algorithm>
#include <array>
#include <climits>
#include <deque>
#include <map>
#include <optional>
#include <unordered_map>
#include <unordered_set>

#include "schema/bind/internal/Values.h"

namespace RkXmlSchema {

using namespace RkXmlLib16;

namespace {

using Cardinality = MemberBinding::Cardinality;
using Kind = MemberBinding::Kind;

// How often a particle occurs, when groups around it that hold nothing else are counted in.
struct Occurs {
  std::uint64_t min = 1;
  std::uint64_t max = 1;

  bool IsOnce() const { return min == 1 && max == 1; }
  bool IsRepeated() const { return max > 1; }
};

int ToCount(std::uint64_t count) { return count > INT_MAX ? INT_MAX : static_cast<int>(count); }
int ToMaximum(std::uint64_t count) { return count > INT_MAX ? -1 : static_cast<int>(count); }

// The particles of a group that may occur at all.
std::vector<const Particle*> PartsOf(const ModelGroup& group) {
  std::vector<const Particle*> parts;
  for (const Particle* part : group.particles)
    if (part->maxOccurs != 0) parts.push_back(part);
  return parts;
}

std::uint64_t Times(std::uint64_t a, std::uint64_t b) {
  if (a == 0 || b == 0) return 0;
  return a > kUnbounded / b ? kUnbounded : a * b;  // nor is anything larger than that
}

// How often a part occurs in a group, if that can be any number from a least to a most one: (a{1,2}){2} is a{2,4}, but
// (a{3}){1,2} is a three or six times.
std::optional<Occurs> Multiply(Occurs part, Occurs group) {
  const std::uint64_t most = Times(group.min, part.max);  // when the group occurs as seldom as it may
  const std::uint64_t next = Times(group.min + 1, part.min);
  if (group.min != group.max && next > most && next - most > 1) return std::nullopt;
  return Occurs{Times(group.min, part.min), Times(group.max, part.max)};
}

// A particle without the groups around it that add nothing: (((a)))* is a*.
struct Term {
  const Particle* particle;
  Occurs occurs;
};

Term Simplify(const Particle& particle) {
  Term term{&particle, {particle.minOccurs, particle.maxOccurs}};
  while (term.particle->group != nullptr) {
    const auto parts = PartsOf(*term.particle->group);
    if (parts.size() != 1) break;
    const auto occurs = Multiply({parts[0]->minOccurs, parts[0]->maxOccurs}, term.occurs);
    if (!occurs) break;
    term.occurs = *occurs;
    term.particle = parts[0];
  }
  return term;
}

XmlElementGroupType GroupTypeOf(Compositor compositor) {
  return compositor == Compositor::Choice ? XmlElementGroupType_Choice
         : compositor == Compositor::All  ? XmlElementGroupType_All
                                          : XmlElementGroupType_Sequence;
}

DefaultBinding BindDefault(const ValueConstraint& constraint) {
  DefaultBinding value;
  if (!constraint) return value;
  value.exists = true;
  value.isFixed = constraint.kind == ValueConstraintKind::Fixed;
  value.text = constraint.normalized;
  value.constraint = &constraint;
  return value;
}

}  // namespace

struct CBinding::State {
  const CSchemaSet* schemas = nullptr;
  std::vector<std::unique_ptr<ClassBinding>> classes;
  std::unordered_map<const TypeDefinition*, ClassBinding*> byType;
  std::unordered_map<const SimpleTypeDefinition*, ValueBinding> values;  // nodes stay where they are
  ValueBinding mixedText;
  std::vector<RootBinding> roots;
  std::unordered_map<QName, std::size_t, QNameHash> rootTable;
  std::vector<Diagnostic> unchecked;
  std::vector<Diagnostic> unkept;
};

class CBinding::Builder {
 public:
  explicit Builder(State& state) : m_state(state) {
    m_state.mixedText.type = m_state.schemas->GetBuiltIn(BuiltInType::String);
  }

  void Build() {
    const CSchemaSet& schemas = *m_state.schemas;
    for (const TypeDefinition* type : schemas.GetAllTypes())
      if (!type->IsSimple()) ClassOf(*type);
    for (const ElementDeclaration* element : schemas.GetElements()) {
      NoteElement(*element);
      m_state.rootTable[element->name] = m_state.roots.size();
      m_state.roots.push_back({element, ClassOf(*element->type)});
    }
    Fill();
    AddTypesByName();
    SpreadNillable();
    for (const NotationDeclaration* notation : schemas.GetNotations())
      Warn(m_state.unchecked, notation->location, L"The notation [" + notation->name.localName + L"] is not checked.");
    Order();
  }

 private:
  using Counts = std::map<QName, std::size_t>;

  // What is known while the content of one class is bound.
  struct Content {
    ClassBinding& owner;      // of the whole content
    const Counts* counts;     // how often each element stands in it
    bool isExtended = false;  // more elements follow in derived types
  };

  static void Warn(std::vector<Diagnostic>& warnings, const SourceLocation& location, std::wstring message) {
    warnings.push_back({Severity::Warning, location, std::move(message)});
  }

  // ---- Classes

  ClassBinding* Add(ClassBinding::Kind kind) {
    auto owned = std::make_unique<ClassBinding>();
    owned->kind = kind;
    ClassBinding* const added = owned.get();
    m_state.classes.push_back(std::move(owned));
    return added;
  }

  ClassBinding* ClassOf(const TypeDefinition& type) {
    ClassBinding*& known = m_state.byType[&type];
    if (known != nullptr) return known;
    known = Add(type.IsSimple() ? ClassBinding::Kind::SimpleType : ClassBinding::Kind::ComplexType);
    known->type = &type;
    if (!type.IsAnonymous()) known->typeName = type.name;
    m_unfilled.push_back(known);
    return known;
  }

  // xsi:type may name any type, at the root at least.
  void AddTypesByName() {
    std::vector<const TypeDefinition*> types;
    for (std::size_t i = 0; i < kBuiltInTypeCount; ++i)
      types.push_back(m_state.schemas->GetBuiltIn(static_cast<BuiltInType>(i)));
    types.push_back(m_state.schemas->GetAnyType());
    for (const TypeDefinition* type : m_state.schemas->GetTypes()) types.push_back(type);
    for (const TypeDefinition* type : types) {
      if (m_state.byType[type] != nullptr) continue;
      ClassOf(*type)->onlyByTypeName = true;
    }
    Fill();
  }

  ClassBinding* AddGroup(ClassBinding::Kind kind, ClassBinding* owner) {
    ClassBinding* const group = Add(kind);
    group->owner = owner;
    group->elementType = XmlElementType_InlineGroup;
    group->strictAttributes = false;
    return group;
  }

  // The choice of all elements that may stand for the head.
  const ClassBinding* SubstitutionGroupOf(const ElementDeclaration& head) {
    ClassBinding*& known = m_substitutionGroups[&head];
    if (known != nullptr) return known;
    ClassBinding* const group = known = AddGroup(ClassBinding::Kind::SubstitutionGroup, nullptr);
    group->element = &head;
    group->group = XmlElementGroupType_Choice;
    if (!head.isAbstract) AddOwnElement(*group, head, {});
    for (const ElementDeclaration* element : head.substitutionGroup) AddOwnElement(*group, *element, {});
    return group;
  }

  void Fill() {
    while (!m_unfilled.empty()) {
      ClassBinding* const next = m_unfilled.front();
      m_unfilled.pop_front();
      Fill(*next);
    }
  }

  // The base comes first, since its members are the first of those derived from it.
  void Fill(ClassBinding& object) {
    std::vector<ClassBinding*> chain;
    for (ClassBinding* at = &object; at != nullptr && m_filled.insert(at).second;) {
      chain.push_back(at);
      const TypeDefinition* const base = at->type->base;
      const bool isClass = base != nullptr && !base->IsSimple() && !base->IsAnyType() && base != at->type;
      at->base = isClass ? ClassOf(*base) : nullptr;
      at = isClass ? ClassOf(*base) : nullptr;
    }
    for (; !chain.empty(); chain.pop_back()) {
      ClassBinding& at = *chain.back();
      if (at.kind == ClassBinding::Kind::SimpleType) {
        SetText(at, ValueOf(*at.type->AsSimple()));
      } else {
        FillComplex(at, *at.type->AsComplex());
      }
    }
  }

  const ValueBinding* ValueOf(const SimpleTypeDefinition& type) {
    const auto found = m_state.values.find(&type);
    if (found != m_state.values.end()) return &found->second;
    return &m_state.values.emplace(&type, BindValue(type)).first->second;
  }

  static void SetText(ClassBinding& object, const ValueBinding* text) {
    object.text = text;
    const bool inherits = object.base != nullptr && object.base->text == text && object.base->textProperty >= 0;
    object.textProperty = inherits ? object.base->textProperty : object.propertyCount++;
  }

  void FillComplex(ClassBinding& object, const ComplexTypeDefinition& type) {
    object.isAbstract = type.isAbstract;
    object.isMixed = type.IsMixed();
    if (object.base != nullptr) object.propertyCount = object.base->propertyCount;
    AddAttributes(object, type);
    AddContent(object, type);
    if (type.contentType == ContentType::Simple) {
      SetText(object, ValueOf(*type.simpleContentType));
    } else if (object.isMixed) {
      SetText(object, &m_state.mixedText);
      if (type.HasElements() && !type.IsAnyType())
        Warn(m_state.unkept, type.location,
             L"The text of mixed content is kept without its position between the elements.");
    }
  }

  void AddAttributes(ClassBinding& object, const ComplexTypeDefinition& type) {
    const auto& uses = type.attributeUses;
    if (object.base != nullptr) {
      const auto& inherited = object.base->attributes;
      const auto same = [](const AttributeBinding& a, const AttributeUse* use) { return a.use == use; };
      if (inherited.size() <= uses.size() && std::equal(inherited.begin(), inherited.end(), uses.begin(), same)) {
        object.attributes = inherited;
        object.inheritedAttributes = inherited.size();
      }
    }
    for (std::size_t i = object.inheritedAttributes; i < uses.size(); ++i) {
      const AttributeUse& use = *uses[i];
      AttributeBinding& attribute = object.attributes.emplace_back();
      attribute.name = use.GetName().localName;
      attribute.namespaceUri = use.GetName().namespaceUri;
      attribute.property = object.propertyCount++;
      attribute.isOptional = !use.required;
      attribute.use = &use;
      attribute.value = ValueOf(*use.declaration->type);
      attribute.defaultValue = BindDefault(use.value);
    }
    object.attributeWildcard = type.attributeWildcard;
    if (type.attributeWildcard == nullptr) return;
    const bool inherits = object.base != nullptr && object.base->attributeWildcard == type.attributeWildcard;
    object.attributeWildcardProperty = inherits ? object.base->attributeWildcardProperty : object.propertyCount++;
  }

  // ---- Content

  // Whether some type adds elements behind those of this one.
  bool IsExtended(const TypeDefinition& type) {
    const auto found = m_extended.find(&type);
    if (found != m_extended.end()) return found->second;
    bool extended = false;
    for (const TypeDefinition* derived : type.derivedTypes) {
      const ComplexTypeDefinition* const complex = derived->AsComplex();
      if (complex == nullptr || complex == &type || complex->derivation != kExtension) continue;
      extended = extended || complex->ownParticle != nullptr || IsExtended(*complex);
    }
    return m_extended[&type] = extended;
  }

  void AddContent(ClassBinding& object, const ComplexTypeDefinition& type) {
    if (type.particle == nullptr) return;
    const Counts counts = CountElements(std::array{type.particle});
    Content content{object, &counts, !type.IsAnyType() && IsExtended(type)};
    const ComplexTypeDefinition* const base = object.base != nullptr ? object.base->type->AsComplex() : nullptr;
    if (type.derivation == kExtension && base != nullptr && base->HasElements()) {
      object.members = object.base->members;
      object.inheritedMembers = object.members.size();
      object.group = object.base->group;
      object.contentMayBeEmpty = object.base->contentMayBeEmpty;
      if (type.ownParticle != nullptr) AddToSequence(object, *type.ownParticle, content);
      return;
    }
    const Term whole = Simplify(*type.particle);
    const ModelGroup* const group = whole.particle->group;
    if (group == nullptr || !whole.occurs.IsOnce() ||
        (content.isExtended && group->compositor != Compositor::Sequence)) {
      AddTerm(object, whole, content, /*isRepeated=*/false);
    } else {
      AddMembers(object, *group, content, /*isRepeated=*/false);
    }
  }

  // The members of a class from a group that occurs once.
  void AddMembers(ClassBinding& object, const ModelGroup& group, const Content& content, bool isRepeated) {
    object.group = GroupTypeOf(group.compositor);
    if (group.compositor == Compositor::All && PartsOf(group).size() > 1)
      Warn(m_state.unkept, group.location, L"The elements of an all group are written in the order of the schema.");
    for (const Particle* part : PartsOf(group)) AddPart(object, *part, content, isRepeated);
    if (group.compositor == Compositor::Choice) object.contentMayBeEmpty = IsEmptiable(group);
  }

  void AddToSequence(ClassBinding& object, const Particle& particle, const Content& content) {
    if (particle.maxOccurs != 0) AddPart(object, particle, content, /*isRepeated=*/false);
  }

  // A part of a sequence, choice or all group. Groups that occur once in one of their own kind are written out.
  void AddPart(ClassBinding& object, const Particle& particle, const Content& content, bool isRepeated) {
    const Term term = Simplify(particle);
    const ModelGroup* const group = term.particle->group;
    if (group != nullptr && term.occurs.max == 0) return;
    if (group != nullptr && PartsOf(*group).empty() &&
        (group->compositor != Compositor::Choice || term.occurs.min == 0))
      return;
    if (group != nullptr && term.occurs.IsOnce() && GroupTypeOf(group->compositor) == object.group &&
        group->compositor != Compositor::All) {
      for (const Particle* part : PartsOf(*group)) AddPart(object, *part, content, isRepeated);
      return;
    }
    AddTerm(object, term, content, isRepeated);
  }

  void AddTerm(ClassBinding& object, const Term& term, const Content& content, bool isRepeated) {
    if (term.occurs.max == 0) return;
    if (term.particle->element != nullptr) {
      AddElement(object, term, content, isRepeated);
    } else if (term.particle->wildcard != nullptr) {
      MemberBinding& member = AddMember(object, Kind::Wildcard, term);
      member.name = L"AnyElement";
      member.namespaceUri = term.particle->wildcard->targetNamespace;
      member.wildcard = term.particle->wildcard;
      member.stopsAtMaximum = member.IsCollection() && member.maxOccurs != -1;
    } else {
      AddInlineGroup(object, term, content, isRepeated);
    }
  }

  MemberBinding& AddMember(ClassBinding& object, Kind kind, const Term& term) {
    MemberBinding& member = object.members.emplace_back();
    member.kind = kind;
    member.particle = term.particle;
    member.property = object.propertyCount++;
    member.cardinality = term.occurs.IsRepeated()                                             ? Cardinality::Collection
                         : term.occurs.min == 0 || object.group == XmlElementGroupType_Choice ? Cardinality::Optional
                                                                                              : Cardinality::Mandatory;
    member.minOccurs = ToCount(term.occurs.min);
    member.maxOccurs = ToMaximum(term.occurs.max);
    return member;
  }

  void AddInlineGroup(ClassBinding& object, const Term& term, const Content& content, bool isRepeated) {
    const ModelGroup& group = *term.particle->group;
    ClassBinding* const inner = AddGroup(ClassBinding::Kind::Group, &content.owner);
    inner->particle = term.particle;
    inner->isEmptiable = IsEmptiable(group);
    AddMembers(*inner, group, content, isRepeated || term.occurs.IsRepeated());
    MemberBinding& member = AddMember(object, Kind::InlineGroup, term);
    member.object = inner;
    member.isRequired = !inner->isEmptiable;
    if (inner->isEmptiable) member.minOccurs = 0;
    const MemberBinding* first = inner->members.empty() ? nullptr : &inner->members.front();
    if (first != nullptr) {
      member.name = first->name;
      member.namespaceUri = first->namespaceUri;
    }
    if (member.IsCollection() && member.maxOccurs != -1)
      member.stopsAtMaximum = isRepeated || content.isExtended || StandElsewhere(group, content);
  }

  // An element, or the group of those that may stand for it.
  void AddElement(ClassBinding& object, const Term& term, const Content& content, bool isRepeated) {
    const ElementDeclaration& element = *term.particle->element;
    NoteElement(element);
    MemberBinding* member = nullptr;
    if (!element.substitutionGroup.empty() || element.isAbstract) {
      const ClassBinding* const group = SubstitutionGroupOf(element);
      member = &AddMember(object, Kind::InlineGroup, term);
      member->object = group;
      member->element = &element;
      member->name = element.name.localName;
      member->namespaceUri = element.name.namespaceUri;
    } else {
      member = &AddOwnElement(object, element, term);
    }
    if (member->IsCollection() && member->maxOccurs != -1) {
      const auto count = content.counts->find(element.name);
      member->stopsAtMaximum =
          isRepeated || content.isExtended || (count != content.counts->end() && count->second > 1);
    }
  }

  MemberBinding& AddOwnElement(ClassBinding& object, const ElementDeclaration& element, const Term& term) {
    MemberBinding& member = AddMember(object, Kind::Value, term);
    member.name = element.name.localName;
    member.namespaceUri = element.name.namespaceUri;
    member.element = &element;
    member.defaultValue = BindDefault(element.value);
    member.isNillable = element.isNillable;
    const SimpleTypeDefinition* const simple = element.type->AsSimple();
    // A record leaves a nil value as it was: only one that begins as nil, since it must be there, is right then.
    const bool nilIsLost = element.isNillable && member.cardinality != Cardinality::Mandatory;
    const bool defaultIsLost = member.defaultValue.exists && member.IsCollection();
    const bool isAnySimple = simple != nullptr && simple->variety == Variety::Absent;
    if (simple != nullptr && !nilIsLost && !defaultIsLost && !isAnySimple) {
      member.value = ValueOf(*simple);
      if (member.value->kind == ValueBinding::Kind::Enumeration) member.kind = Kind::Enumeration;
      return member;
    }
    ClassBinding* const child = ClassOf(*element.type);
    child->isNillable |= element.isNillable;
    member.object = child;
    const bool hasDerived = simple == nullptr && (element.type->IsAnyType() || element.type->AsComplex()->isAbstract ||
                                                  !element.type->derivedTypes.empty());
    member.kind = hasDerived ? Kind::AbstractObject : Kind::Object;
    return member;
  }

  // ---- Questions about content

  bool IsEmptiable(const Particle& particle) {
    return particle.minOccurs == 0 || (particle.group != nullptr && IsEmptiable(*particle.group));
  }

  bool IsEmptiable(const ModelGroup& group) {
    const auto found = m_emptiable.find(&group);
    if (found != m_emptiable.end()) return found->second;
    const auto parts = PartsOf(group);
    const auto emptiable = [&](const Particle* part) { return IsEmptiable(*part); };
    const bool result = group.compositor == Compositor::Choice ? std::any_of(parts.begin(), parts.end(), emptiable)
                                                               : std::all_of(parts.begin(), parts.end(), emptiable);
    return m_emptiable[&group] = result;
  }

  // How often each element may stand in the particles, those that stand for others included.
  template <class Particles>
  static Counts CountElements(const Particles& particles) {
    std::unordered_map<const ElementDeclaration*, std::size_t> named;
    for (const Particle* particle : particles) CountNamed(*particle, named);
    Counts counts;
    for (const auto& [declared, count] : named) {
      counts[declared->name] += count;
      for (const ElementDeclaration* element : declared->substitutionGroup) counts[element->name] += count;
    }
    return counts;
  }

  static void CountNamed(const Particle& particle, std::unordered_map<const ElementDeclaration*, std::size_t>& named) {
    if (particle.maxOccurs == 0) return;
    if (particle.element != nullptr) {
      ++named[particle.element];
    } else if (particle.group != nullptr) {
      for (const Particle* part : particle.group->particles) CountNamed(*part, named);
    }
  }

  // Whether an element of the group stands in the content outside of it too.
  static bool StandElsewhere(const ModelGroup& group, const Content& content) {
    const Counts own = CountElements(group.particles);
    return std::any_of(own.begin(), own.end(), [&](const auto& entry) {
      const auto whole = content.counts->find(entry.first);
      return whole != content.counts->end() && whole->second > entry.second;
    });
  }

  void NoteElement(const ElementDeclaration& element) {
    if (!m_noted.insert(&element).second) return;
    if (element.isNillable) ClassOfNillable(element);
    for (const IdentityConstraintDefinition* constraint : element.identityConstraints)
      Warn(m_state.unchecked, constraint->location,
           L"The identity constraint [" + constraint->name.localName + L"] is not checked.");
  }

  void ClassOfNillable(const ElementDeclaration& element) {
    if (!element.type->IsSimple() || element.isGlobal) ClassOf(*element.type)->isNillable = true;
  }

  // A nillable element may have a derived type.
  void SpreadNillable() {
    std::vector<const TypeDefinition*> open;
    bool all = false;
    for (const auto& object : m_state.classes) {
      if (!object->isNillable) continue;
      open.push_back(object->type);
      all = all || object->IsAnyType();
    }
    while (!open.empty() && !all) {
      const TypeDefinition* const type = open.back();
      open.pop_back();
      for (const TypeDefinition* derived : type->derivedTypes) {
        ClassBinding* const object = m_state.byType[derived];
        if (object == nullptr || object->isNillable) continue;
        object->isNillable = true;
        open.push_back(derived);
      }
    }
    if (!all) return;
    for (const auto& object : m_state.classes) object->isNillable = object->isNillable || object->type != nullptr;
  }

  // Classes in the order in which they were met, each with its groups behind it.
  void Order() {
    std::vector<std::unique_ptr<ClassBinding>> ordered;
    std::unordered_map<const ClassBinding*, std::vector<std::unique_ptr<ClassBinding>>> groups;
    std::vector<std::unique_ptr<ClassBinding>> owners;
    for (auto& object : m_state.classes)
      (object->owner != nullptr ? groups[object->owner] : owners).push_back(std::move(object));
    for (auto& object : owners) {
      const ClassBinding* const owner = object.get();
      ordered.push_back(std::move(object));
      for (auto& group : groups[owner]) ordered.push_back(std::move(group));
    }
    for (std::size_t i = 0; i < ordered.size(); ++i) ordered[i]->index = i;
    m_state.classes = std::move(ordered);
  }

  State& m_state;
  std::deque<ClassBinding*> m_unfilled;
  std::unordered_set<const ClassBinding*> m_filled;
  std::unordered_map<const ElementDeclaration*, ClassBinding*> m_substitutionGroups;
  std::unordered_map<const ModelGroup*, bool> m_emptiable;
  std::unordered_map<const TypeDefinition*, bool> m_extended;
  std::unordered_set<const ElementDeclaration*> m_noted;
};

CBinding::CBinding(const CSchemaSet& schemas) : m_state(std::make_unique<State>()) {
  m_state->schemas = &schemas;
  Builder(*m_state).Build();
}

CBinding::~CBinding() = default;

const CSchemaSet& CBinding::GetSchemas() const noexcept { return *m_state->schemas; }
const std::vector<std::unique_ptr<ClassBinding>>& CBinding::GetClasses() const noexcept { return m_state->classes; }
const std::vector<RootBinding>& CBinding::GetRoots() const noexcept { return m_state->roots; }
const std::vector<Diagnostic>& CBinding::GetUnchecked() const noexcept { return m_state->unchecked; }
const std::vector<Diagnostic>& CBinding::GetUnkept() const noexcept { return m_state->unkept; }

const ClassBinding* CBinding::FindClass(const TypeDefinition* type) const {
  const auto found = m_state->byType.find(type);
  return found == m_state->byType.end() ? nullptr : found->second;
}

const RootBinding* CBinding::FindRoot(const QName& element) const {
  const auto found = m_state->rootTable.find(element);
  return found == m_state->rootTable.end() ? nullptr : &m_state->roots[found->second];
}

DerivationSet ClassBinding::GetDerivation() const noexcept {
  DerivationSet methods = 0;
  const TypeDefinition* const end = base != nullptr ? base->type : nullptr;
  for (const TypeDefinition* at = type; at != nullptr && at != end && at != at->base; at = at->base)
    methods |= at->derivation;
  return methods & (kExtension | kRestriction);
}

}  // namespace RkXmlSchema
