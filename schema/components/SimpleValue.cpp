#include "schema/components/SimpleValue.h"

#include <algorithm>
#include <set>
#include <vector>

#include "schema/components/Pattern.h"
#include "schema/components/internal/Primitives.h"
#include "schema/components/internal/XmlNames.h"

namespace RkXmlSchema {

namespace {

std::wstring Quoted(std::wstring_view text) {
  constexpr std::size_t kMost = 100;
  std::wstring quoted = L"[";
  quoted += text.substr(0, kMost);
  if (text.size() > kMost) quoted += L"...";
  return quoted + L"]";
}

std::wstring NameOf(const SimpleTypeDefinition& type) {
  return type.IsAnonymous() ? L"the anonymous type" : L"the type " + Quoted(type.name.localName);
}

std::wstring Apply(WhiteSpace rule, std::wstring_view text) {
  std::wstring result;
  result.reserve(text.size());
  if (rule == WhiteSpace::Preserve) return std::wstring(text);
  if (rule == WhiteSpace::Replace) {
    for (const wchar_t c : text) result += IsBlank(c) ? L' ' : c;
    return result;
  }
  ForEachToken(text, [&](std::wstring_view token) {
    if (!result.empty()) result += L' ';
    result += token;
  });
  return result;
}

// One check of one text: which types refused it already, so that unions of unions stay linear.
class CChecker {
 public:
  explicit CChecker(const NamespaceResolver& resolver) : m_resolver(resolver) {}

  // Null when valid, and then `m_member` is the type that accepted the text and `m_key` is filled.
  bool Check(const SimpleTypeDefinition& type, std::wstring_view text) {
    switch (type.variety) {
      case Variety::Union:
        return CheckUnion(type, text);
      case Variety::List:
        return CheckList(type, text);
      default:
        return CheckAtomic(type, text);
    }
  }

  std::wstring m_error;
  std::wstring m_key;
  const SimpleTypeDefinition* m_member = nullptr;

 private:
  bool Refuse(std::wstring error) {
    m_error = std::move(error);
    return false;
  }

  bool CheckAtomic(const SimpleTypeDefinition& type, std::wstring_view raw) {
    std::wstring normalized;
    std::wstring_view text = raw;
    if (type.facets.GetWhiteSpace() != WhiteSpace::Preserve) {
      normalized = Apply(type.facets.GetWhiteSpace(), raw);
      text = normalized;
    }
    m_member = &type;
    if (type.variety == Variety::Absent || type.primitive == nullptr) {
      m_key = text;
      return true;
    }
    if (!IsLexical(type.builtIn, text))
      return Refuse(Quoted(text) + L" is no value of the type [" + GetBuiltInName(type.builtIn) + L"].");
    const BuiltInType primitive = type.primitive->builtIn;
    m_key = CanonicalKey(primitive, text);
    if (type.holdsQNames && m_resolver != nullptr && !ResolveKey(text)) return false;
    return CheckLength(type, LengthOf(primitive, text), text) && CheckBounds(type, primitive, text) &&
           CheckPatterns(type, text) && CheckEnumeration(type, text);
  }

  bool ResolveKey(std::wstring_view text) {
    const std::size_t colon = text.find(L':');
    const std::wstring_view prefix = colon == std::wstring_view::npos ? std::wstring_view() : text.substr(0, colon);
    const std::optional<std::wstring> uri = m_resolver(prefix);
    if (!uri) return Refuse(L"The prefix of " + Quoted(text) + L" is not declared.");
    m_key = QName{*uri, std::wstring(colon == std::wstring_view::npos ? text : text.substr(colon + 1))}.ToString();
    return true;
  }

  bool CheckList(const SimpleTypeDefinition& type, std::wstring_view raw) {
    const std::wstring text = Apply(WhiteSpace::Collapse, raw);
    std::size_t count = 0;
    std::wstring key;
    bool valid = true;
    ForEachToken(text, [&](std::wstring_view token) {
      if (!valid) return;
      ++count;
      if (type.itemType == nullptr) return;
      CChecker item(m_resolver);
      valid = item.Check(*type.itemType, token);
      if (!valid) m_error = std::move(item.m_error);
      key += item.m_key + L' ';
    });
    if (!valid) return false;
    m_member = &type;
    m_key = std::move(key);
    return CheckLength(type, count, text) && CheckPatterns(type, text) && CheckEnumeration(type, text);
  }

  bool CheckUnion(const SimpleTypeDefinition& type, std::wstring_view text) {
    for (const SimpleTypeDefinition* member : type.memberTypes) {
      if (!m_refused.insert(member).second) continue;
      if (!Check(*member, text)) continue;
      m_refused.erase(member);
      if (member->variety != Variety::Union) {
        const SimpleTypeDefinition* const owner = member->variety == Variety::List ? member : member->primitive;
        m_key = (owner != nullptr && owner->variety != Variety::List ? owner->name.localName : L"") + L'\x1' + m_key;
      }
      const SimpleTypeDefinition* const accepted = m_member;
      const bool valid = CheckPatterns(type, NormalizeWhiteSpace(*accepted, text)) && CheckEnumeration(type, text);
      m_member = accepted;
      return valid;
    }
    return Refuse(Quoted(text) + L" is no value of any member of " + NameOf(type) + L".");
  }

  bool CheckLength(const SimpleTypeDefinition& type, std::size_t length, std::wstring_view text) {
    const Facets& f = type.facets;
    if (!f.length && !f.minLength && !f.maxLength) return true;
    if (type.holdsQNames && type.variety == Variety::Atomic) return true;  // their length is not defined
    if ((f.length && length != f.length->value) || (f.minLength && length < f.minLength->value) ||
        (f.maxLength && length > f.maxLength->value))
      return Refuse(L"The length of " + Quoted(text) + L" is not what " + NameOf(type) + L" allows.");
    return true;
  }

  bool CheckBounds(const SimpleTypeDefinition& type, BuiltInType primitive, std::wstring_view text) {
    const Facets& f = type.facets;
    const auto holds = [&](const std::optional<BoundFacet>& bound, Order wanted, bool orEqual) {
      if (!bound) return true;
      const Order order = CompareValues(primitive, text, bound->text);
      return order == wanted || (orEqual && order == Order::Equal);
    };
    if (!holds(f.minInclusive, Order::Greater, true) || !holds(f.maxInclusive, Order::Less, true) ||
        !holds(f.minExclusive, Order::Greater, false) || !holds(f.maxExclusive, Order::Less, false))
      return Refuse(Quoted(text) + L" is out of the bounds of " + NameOf(type) + L".");
    if (!f.totalDigits && !f.fractionDigits) return true;
    const DigitCount digits = CountDigits(text);
    if ((f.totalDigits && digits.total > f.totalDigits->value) ||
        (f.fractionDigits && digits.fraction > f.fractionDigits->value))
      return Refuse(Quoted(text) + L" has more digits than " + NameOf(type) + L" allows.");
    return true;
  }

  bool CheckPatterns(const SimpleTypeDefinition& type, std::wstring_view text) {
    if (type.facets.patterns.empty()) return true;
    const std::wstring value(text);
    for (const PatternStep& step : type.facets.patterns) {
      const bool matches = std::any_of(step.alternatives.begin(), step.alternatives.end(), [&](const Pattern& p) {
        return p.matcher == nullptr || p.matcher->Matches(value);
      });
      if (!matches) return Refuse(Quoted(text) + L" does not match the pattern of " + NameOf(type) + L".");
    }
    return true;
  }

  bool CheckEnumeration(const SimpleTypeDefinition& type, std::wstring_view text) {
    if (type.facets.enumerationKeys == nullptr || type.facets.enumerationKeys->count(m_key) != 0) return true;
    // Keys of names need a resolver; without one the texts are compared.
    if (type.holdsQNames && m_resolver == nullptr) {
      const auto& values = type.facets.enumeration;
      const auto same = [&](const EnumerationValue& v) { return v.text == text; };
      if (std::any_of(values.begin(), values.end(), same)) return true;
    }
    return Refuse(Quoted(text) + L" is not one of the values of " + NameOf(type) + L".");
  }

  const NamespaceResolver& m_resolver;
  std::set<const SimpleTypeDefinition*> m_refused;
};

}  // namespace

NamespaceResolver ResolverOf(const NamespaceBindings* bindings) {
  if (bindings == nullptr) return nullptr;
  return [bindings](std::wstring_view prefix) -> std::optional<std::wstring> {
    const auto found = bindings->find(prefix);
    if (found != bindings->end()) return found->second;
    if (prefix.empty()) return std::wstring();
    if (prefix == L"xml") return std::wstring(kXmlNamespace);
    return std::nullopt;
  };
}

std::wstring NormalizeWhiteSpace(const SimpleTypeDefinition& type, std::wstring_view text) {
  if (type.variety == Variety::List) return Apply(WhiteSpace::Collapse, text);
  return Apply(type.variety == Variety::Atomic ? type.facets.GetWhiteSpace() : WhiteSpace::Preserve, text);
}

std::optional<std::wstring> CheckValue(const SimpleTypeDefinition& type, std::wstring_view text,
                                       const NamespaceResolver& resolver) {
  CChecker checker(resolver);
  if (checker.Check(type, text)) return std::nullopt;
  return std::move(checker.m_error);
}

std::optional<std::wstring> GetValueKey(const SimpleTypeDefinition& type, std::wstring_view text,
                                        const NamespaceResolver& resolver) {
  CChecker checker(resolver);
  if (!checker.Check(type, text)) return std::nullopt;
  return std::move(checker.m_key);
}

bool AreEqualValues(const SimpleTypeDefinition& type, std::wstring_view a, std::wstring_view b,
                    const NamespaceResolver& resolverA, const NamespaceResolver& resolverB) {
  const auto keyA = GetValueKey(type, a, resolverA);
  return keyA && keyA == GetValueKey(type, b, resolverB);
}

const SimpleTypeDefinition* FindMemberType(const SimpleTypeDefinition& type, std::wstring_view text,
                                           const NamespaceResolver& resolver) {
  CChecker checker(resolver);
  return checker.Check(type, text) ? checker.m_member : nullptr;
}

}  // namespace RkXmlSchema
