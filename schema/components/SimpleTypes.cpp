// Simple types: the built-in ones, and what a derivation makes of its base.
#include <algorithm>
#include <cstring>

#include "schema/components/Pattern.h"
#include "schema/components/SimpleValue.h"
#include "schema/components/internal/Builder.h"
#include "schema/components/internal/Xsd.h"

namespace RkXmlSchema {

namespace {

constexpr auto kCollapse = WhiteSpace::Collapse;
using B = BuiltInType;

enum FacetKind : unsigned {
  kLengths = 1,
  kDigits = 2,
  kBounds = 4,
  kPattern = 8,
  kEnumeration = 16,
  kWhiteSpace = 32,
};

unsigned ApplicableFacets(const SimpleTypeDefinition& type) {
  if (type.variety == Variety::Union) return kPattern | kEnumeration;
  constexpr unsigned kAll = kPattern | kEnumeration | kWhiteSpace;
  if (type.variety == Variety::List) return kAll | kLengths;
  if (type.primitive == nullptr) return 0;
  switch (type.primitive->builtIn) {
    case B::Boolean:
      return kPattern | kWhiteSpace;
    case B::Decimal:
      return kAll | kBounds | kDigits;
    case B::String:
    case B::HexBinary:
    case B::Base64Binary:
    case B::AnyURI:
    case B::QName:
    case B::Notation:
      return kAll | kLengths;
    default:
      return kAll | kBounds;
  }
}

FacetKind KindOf(std::wstring_view facet) {
  if (facet == L"pattern") return kPattern;
  if (facet == L"enumeration") return kEnumeration;
  if (facet == L"whiteSpace") return kWhiteSpace;
  if (facet == L"totalDigits" || facet == L"fractionDigits") return kDigits;
  if (facet == L"length" || facet == L"minLength" || facet == L"maxLength") return kLengths;
  return kBounds;
}

std::uint64_t ParseCount(std::wstring_view text) {
  std::uint64_t count = 0;
  for (const wchar_t c : text) {
    if (c < L'0' || c > L'9') continue;
    const auto digit = static_cast<std::uint64_t>(c - L'0');
    if (count > (kUnbounded - digit) / 10) return kUnbounded;
    count = count * 10 + digit;
  }
  return count;
}

}  // namespace

void AddBuiltInTypes(CSchemaSet::State& state) {
  const auto add = [&](BuiltInType builtIn) -> SimpleTypeDefinition& {
    SimpleTypeDefinition& type = state.simpleTypes.emplace_back();
    type.name = {kSchemaNamespace, GetBuiltInName(builtIn)};
    type.builtIn = builtIn;
    state.builtIns[static_cast<std::size_t>(builtIn)] = &type;
    state.typeTable[type.name] = &type;
    return type;
  };
  const auto at = [&](BuiltInType builtIn) { return state.builtIns[static_cast<std::size_t>(builtIn)]; };

  ComplexTypeDefinition& any = state.complexTypes.emplace_back();
  state.anyType = &any;
  any.name = {kSchemaNamespace, L"anyType"};
  any.base = &any;
  any.contentType = ContentType::Mixed;
  Wildcard& wildcard = state.wildcards.emplace_back();
  wildcard.processContents = ProcessContents::Lax;
  wildcard.written = L"##any";
  Particle& anything = state.particles.emplace_back();
  anything.minOccurs = 0;
  anything.maxOccurs = kUnbounded;
  anything.wildcard = &wildcard;
  ModelGroup& sequence = state.modelGroups.emplace_back();
  sequence.particles.push_back(&anything);
  Particle& content = state.particles.emplace_back();
  content.group = &sequence;
  any.particle = &content;
  any.ownParticle = &content;
  any.attributeWildcard = &wildcard;
  state.typeTable[any.name] = &any;

  add(B::AnySimpleType).base = &any;
  for (const BuiltInRow& row : kBuiltInRows) {
    SimpleTypeDefinition& type = add(row.type);
    const SimpleTypeDefinition* const base = at(row.base);
    type.base = base;
    type.variety = Variety::Atomic;
    type.primitive = row.base == B::AnySimpleType ? &type : base->primitive;
    type.facets = base->facets;
    type.facets.whiteSpace = row.whiteSpace;
    type.facets.whiteSpaceFixed = row.whiteSpace == kCollapse && type.primitive->builtIn != B::String;
    type.ownFacets.whiteSpace = row.whiteSpace;
    if (row.least != nullptr) type.facets.minInclusive = type.ownFacets.minInclusive = BoundFacet{{}, row.least, false};
    if (row.most != nullptr) type.facets.maxInclusive = type.ownFacets.maxInclusive = BoundFacet{{}, row.most, false};
    if (row.type == B::Integer) type.facets.fractionDigits = type.ownFacets.fractionDigits = CountFacet{{}, 0, true};
    type.holdsQNames = row.type == B::QName || row.type == B::Notation;
  }
  for (const auto& [list, item] : kBuiltInListRows) {
    SimpleTypeDefinition& type = add(list);
    type.base = at(B::AnySimpleType);
    type.derivation = kList;
    type.variety = Variety::List;
    type.itemType = at(item);
    type.facets.whiteSpace = kCollapse;
    type.facets.whiteSpaceFixed = true;
    type.facets.minLength = type.ownFacets.minLength = CountFacet{{}, 1, false};
  }
  for (SimpleTypeDefinition* type : state.builtIns)
    const_cast<TypeDefinition*>(type->base)->derivedTypes.push_back(type);
}

void CBuilder::DeriveSimple(SimpleWork& work) {
  SimpleTypeDefinition& type = *work.type;
  m_document = work.document;
  switch (type.derivation) {
    case kList: {
      type.facets.whiteSpace = WhiteSpace::Collapse;
      type.facets.whiteSpaceFixed = true;
      if (type.itemType == nullptr) {
        type.itemType = m_state.builtIns[0];
        return;
      }
      type.holdsQNames = type.itemType->holdsQNames;
      if ((type.itemType->final & kList) != 0)
        Error(work.node, L"The type definition " + Bracketed(type.itemType->name) + L" is final for lists.");
      // A union as item has no list within.
      std::vector<const SimpleTypeDefinition*> open = {type.itemType};
      std::set<const SimpleTypeDefinition*> seen;
      bool hasList = false;
      while (!open.empty()) {
        const SimpleTypeDefinition* const item = open.back();
        open.pop_back();
        if (!seen.insert(item).second) continue;
        hasList = hasList || item->variety == Variety::List;
        if (item->variety == Variety::Union)
          open.insert(open.end(), item->memberTypes.begin(), item->memberTypes.end());
      }
      if (hasList) {
        Error(work.node, L"The items of a list cannot be lists.");
        type.itemType = m_state.builtIns[0];
      }
      return;
    }
    case kUnion:
      for (const SimpleTypeDefinition* member : type.memberTypes) {
        type.holdsQNames = type.holdsQNames || member->holdsQNames;
        if ((member->final & kUnion) != 0)
          Error(work.node, L"The type definition " + Bracketed(member->name) + L" is final for unions.");
      }
      return;
    default:
      DeriveRestriction(work);
  }
}

void CBuilder::DeriveRestriction(SimpleWork& work) {
  SimpleTypeDefinition& type = *work.type;
  const SimpleTypeDefinition* const base = type.base->AsSimple();
  if (base == nullptr) return;
  type.variety = base->variety;
  type.primitive = base->primitive;
  type.builtIn = base->builtIn;
  type.itemType = base->itemType;
  type.memberTypes = base->memberTypes;
  type.holdsQNames = base->holdsQNames;
  type.facets = base->facets;
  if ((base->final & kRestriction) != 0)
    Error(work.node, L"The type definition " + Bracketed(base->name) + L" is final for restrictions.");
  ApplyFacets(type, work.facetNodes);
}

void CBuilder::ApplyFacets(SimpleTypeDefinition& type, const std::vector<Node>& nodes) {
  const SimpleTypeDefinition& base = *type.base->AsSimple();
  const unsigned applicable = ApplicableFacets(type);
  std::set<std::wstring_view> seen;
  PatternStep patterns;
  for (const Node node : nodes) {
    const std::wstring_view name = node->GetLocalName();
    if (!HasAttribute(node, L"value")) continue;  // reported before
    const FacetKind kind = KindOf(name);
    if ((applicable & kind) == 0) {
      Error(node, L"The facet " + Bracketed(name) + L" does not apply to the type " +
                      Bracketed(type.variety == Variety::Atomic  ? GetBuiltInName(type.builtIn)
                                : type.variety == Variety::List  ? L"list"
                                : type.variety == Variety::Union ? L"union"
                                                                 : L"anySimpleType") +
                      L".");
      continue;
    }
    if (kind != kPattern && kind != kEnumeration && !seen.insert(name).second) {
      Error(node, L"The facet " + Bracketed(name) + L" stands twice.");
      continue;
    }
    if (name == L"pattern") ApplyPattern(type, patterns, node);
    if (name == L"enumeration") ApplyEnumeration(type, base, node);
    if (name == L"length") ApplyCount(type, &Facets::length, 0, node);
    if (name == L"minLength") ApplyCount(type, &Facets::minLength, 1, node);
    if (name == L"maxLength") ApplyCount(type, &Facets::maxLength, -1, node);
    if (name == L"totalDigits") ApplyCount(type, &Facets::totalDigits, -1, node);
    if (name == L"fractionDigits") ApplyCount(type, &Facets::fractionDigits, -1, node);
    if (name == L"minInclusive") ApplyBound(type, &Facets::minInclusive, node);
    if (name == L"maxInclusive") ApplyBound(type, &Facets::maxInclusive, node);
    if (name == L"minExclusive") ApplyBound(type, &Facets::minExclusive, node);
    if (name == L"maxExclusive") ApplyBound(type, &Facets::maxExclusive, node);
    if (name == L"whiteSpace") {
      const std::wstring text = TokenOf(node, L"value");
      const WhiteSpace rule = text == L"collapse"  ? WhiteSpace::Collapse
                              : text == L"replace" ? WhiteSpace::Replace
                                                   : WhiteSpace::Preserve;
      if (rule < base.facets.GetWhiteSpace() || (base.facets.whiteSpaceFixed && rule != base.facets.GetWhiteSpace()))
        Error(node, L"The facet [whiteSpace] cannot be weaker than that of the base type.");
      type.ownFacets.whiteSpace = type.facets.whiteSpace = rule;
      type.ownFacets.whiteSpaceFixed = BooleanOf(node, L"fixed", false);
      type.facets.whiteSpaceFixed = type.facets.whiteSpaceFixed || type.ownFacets.whiteSpaceFixed;
    }
  }
  if (!patterns.alternatives.empty()) {
    type.facets.patterns.push_back(patterns);
    type.ownFacets.patterns.push_back(std::move(patterns));
  }
  if (!type.ownFacets.enumeration.empty()) {
    type.facets.enumeration = type.ownFacets.enumeration;
    FinishEnumeration(type);
  }
  CheckFacets(type, nodes.empty() ? nullptr : nodes.front());
}

void CBuilder::ApplyPattern(SimpleTypeDefinition& type, PatternStep& step, Node node) {
  Pattern pattern;
  pattern.location = Here(node);
  pattern.text = FindAttributeOf(node, L"value")->GetValue();
  try {
    pattern.translated = TranslatePattern(pattern.text);
    m_patternCharacters += pattern.translated.size();
    const std::size_t limit = m_state.options.limits.maxPatternCharacters;
    if (m_patternCharacters > limit) m_state.reporter.Exceeded(pattern.location, L"characters of patterns", limit);
    pattern.matcher = std::make_shared<CPatternMatcher>(pattern.translated);
  } catch (const CPatternError& e) {
    Error(node, L"The pattern " + Bracketed(pattern.text) + L" is no regular expression: " + e.GetText() +
                    L" (at character " + std::to_wstring(e.GetOffset() + 1) + L").");
    return;
  }
  step.alternatives.push_back(std::move(pattern));
  static_cast<void>(type);
}

void CBuilder::ApplyEnumeration(SimpleTypeDefinition& type, const SimpleTypeDefinition& base, Node node) {
  EnumerationValue value;
  value.location = Here(node);
  value.documentation = DocumentationOf(node);
  value.text = NormalizeWhiteSpace(base, FindAttributeOf(node, L"value")->GetValue());
  if (base.holdsQNames) value.namespaces = Bindings(node);
  const NamespaceResolver resolver = ResolverOf(value.namespaces);
  if (const auto error = CheckValue(base, value.text, resolver)) Error(node, *error);
  if (base.primitive != nullptr && base.primitive->builtIn == B::Notation) {
    const std::optional<QName> name = ReadQName(node, value.text);
    if (name && m_state.index[static_cast<std::size_t>(Space::Notation)].count(*name) == 0)
      Error(node, L"The notation declaration " + Bracketed(*name) + L" is not declared.");
  }
  type.ownFacets.enumeration.push_back(std::move(value));
}

void CBuilder::FinishEnumeration(SimpleTypeDefinition& type) {
  auto keys = std::make_shared<std::unordered_set<std::wstring>>();
  const SimpleTypeDefinition& base = *type.base->AsSimple();
  for (const EnumerationValue& value : type.facets.enumeration) {
    std::optional<std::wstring> key = GetValueKey(base, value.text, ResolverOf(value.namespaces));
    if (key) keys->insert(std::move(*key));
  }
  type.facets.enumerationKeys = keys;
  type.ownFacets.enumerationKeys = std::move(keys);
}

// `direction`: 0 when the value has to be that of the base, 1 when it cannot be smaller, -1 when it cannot be larger.
void CBuilder::ApplyCount(SimpleTypeDefinition& type, std::optional<CountFacet> Facets::*facet, int direction,
                          Node node) {
  CountFacet value;
  value.location = Here(node);
  value.value = ParseCount(TokenOf(node, L"value"));
  value.fixed = BooleanOf(node, L"fixed", false);
  const std::optional<CountFacet>& inherited = type.facets.*facet;
  if (inherited) {
    const bool wrong = (direction == 0 && value.value != inherited->value) ||
                       (direction > 0 && value.value < inherited->value) ||
                       (direction < 0 && value.value > inherited->value);
    if (wrong || (inherited->fixed && value.value != inherited->value))
      Error(node, L"The facet " + Bracketed(node->GetLocalName()) + L" does not restrict that of the base type, " +
                      std::to_wstring(inherited->value) + L".");
    value.fixed = value.fixed || inherited->fixed;
  }
  type.ownFacets.*facet = value;
  type.facets.*facet = value;
}

void CBuilder::ApplyBound(SimpleTypeDefinition& type, std::optional<BoundFacet> Facets::*facet, Node node) {
  const SimpleTypeDefinition& base = *type.base->AsSimple();
  const BuiltInType primitive = type.primitive->builtIn;
  BoundFacet value;
  value.location = Here(node);
  value.text = NormalizeWhiteSpace(base, FindAttributeOf(node, L"value")->GetValue());
  value.fixed = BooleanOf(node, L"fixed", false);
  if (!IsLexical(type.builtIn, value.text)) {
    Error(node, Bracketed(value.text) + L" is no value of the type " + Bracketed(GetBuiltInName(type.builtIn)) + L".");
    return;
  }
  const std::optional<BoundFacet>& inherited = type.facets.*facet;
  const bool isSame = inherited && CompareValues(primitive, value.text, inherited->text) == Order::Equal;
  if (inherited && inherited->fixed && !isSame)
    Error(node, L"The facet " + Bracketed(node->GetLocalName()) + L" is fixed in the base type.");
  // An exclusive bound may repeat that of the base, though it is no value of it.
  if (!isSame) {
    const auto violates = [&](const std::optional<BoundFacet>& bound, Order wanted, bool orEqual) {
      if (!bound) return false;
      const Order order = CompareValues(primitive, value.text, bound->text);
      return order != wanted && !(orEqual && order == Order::Equal);
    };
    const bool isExclusive = facet == &Facets::minExclusive || facet == &Facets::maxExclusive;
    const Facets& f = base.facets;
    if (violates(f.minInclusive, Order::Greater, true) || violates(f.maxInclusive, Order::Less, true) ||
        violates(f.minExclusive, Order::Greater, isExclusive && facet == &Facets::minExclusive) ||
        violates(f.maxExclusive, Order::Less, isExclusive && facet == &Facets::maxExclusive))
      Error(node, L"The facet " + Bracketed(node->GetLocalName()) + L" is out of the bounds of the base type.");
  }
  value.fixed = value.fixed || (inherited && inherited->fixed);
  type.ownFacets.*facet = value;
  type.facets.*facet = value;
  // An own bound takes the place of one of the other kind on its side.
  if (facet == &Facets::minInclusive && !type.ownFacets.minExclusive) type.facets.minExclusive.reset();
  if (facet == &Facets::minExclusive && !type.ownFacets.minInclusive) type.facets.minInclusive.reset();
  if (facet == &Facets::maxInclusive && !type.ownFacets.maxExclusive) type.facets.maxExclusive.reset();
  if (facet == &Facets::maxExclusive && !type.ownFacets.maxInclusive) type.facets.maxInclusive.reset();
}

// What the facets of a type ask of each other.
void CBuilder::CheckFacets(const SimpleTypeDefinition& type, Node node) {
  if (node == nullptr) return;
  const Facets& f = type.facets;
  const Facets& own = type.ownFacets;
  const auto complain = [&](const wchar_t* text) { Error(node, text); };
  if (own.length && (own.minLength || own.maxLength))
    complain(L"The facet [length] excludes [minLength] and [maxLength].");
  if (f.length &&
      ((f.minLength && f.length->value < f.minLength->value) || (f.maxLength && f.length->value > f.maxLength->value)))
    complain(L"The facet [length] contradicts [minLength] or [maxLength].");
  if (f.minLength && f.maxLength && f.minLength->value > f.maxLength->value)
    complain(L"The facet [minLength] is larger than [maxLength].");
  if (f.totalDigits && f.fractionDigits && f.fractionDigits->value > f.totalDigits->value)
    complain(L"The facet [fractionDigits] is larger than [totalDigits].");
  if (own.minInclusive && own.minExclusive)
    complain(L"The facets [minInclusive] and [minExclusive] exclude each other.");
  if (own.maxInclusive && own.maxExclusive)
    complain(L"The facets [maxInclusive] and [maxExclusive] exclude each other.");
  if (type.primitive == nullptr) return;
  const auto isAbove = [&](const std::optional<BoundFacet>& least, const std::optional<BoundFacet>& most,
                           bool orEqual) {
    if (!least || !most) return false;
    const Order order = CompareValues(type.primitive->builtIn, least->text, most->text);
    return order == Order::Greater || (orEqual && order == Order::Equal);
  };
  if (isAbove(f.minInclusive, f.maxInclusive, false) || isAbove(f.minExclusive, f.maxExclusive, false) ||
      isAbove(f.minInclusive, f.maxExclusive, true) || isAbove(f.minExclusive, f.maxInclusive, true))
    complain(L"The lower bound is above the upper bound.");
}

}  // namespace RkXmlSchema
