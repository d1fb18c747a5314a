#ifndef RKXMLLIB16_FACETS_XSDVALUECHECK_H
#define RKXMLLIB16_FACETS_XSDVALUECHECK_H

#include <algorithm>
#include <cstddef>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "RkXmlLib16/types/XsdLexical.h"

// Values of simple types exactly as XML Schema: Datatypes defines them: lexical space, value space, facets. The type is
// any class with the members variety, builtIn, primitive, itemType, memberTypes, facets, holdsQNames and name.
namespace RkXmlLib16::Xsd {

enum class Variety { Absent, Atomic, List, Union };  // Absent: xs:anySimpleType
enum class WhiteSpace { Preserve, Replace, Collapse };

// How the built-in atomic types are derived, bases first, and the lists with their items.
struct BuiltInRow {
  BuiltInType type;
  BuiltInType base;
  WhiteSpace whiteSpace;
  const wchar_t* least;  // minInclusive and maxInclusive; null for none
  const wchar_t* most;
};

inline constexpr BuiltInRow kBuiltInRows[] = {
    {BuiltInType::String, BuiltInType::AnySimpleType, WhiteSpace::Preserve, nullptr, nullptr},
    {BuiltInType::Boolean, BuiltInType::AnySimpleType, WhiteSpace::Collapse, nullptr, nullptr},
    {BuiltInType::Decimal, BuiltInType::AnySimpleType, WhiteSpace::Collapse, nullptr, nullptr},
    {BuiltInType::Float, BuiltInType::AnySimpleType, WhiteSpace::Collapse, nullptr, nullptr},
    {BuiltInType::Double, BuiltInType::AnySimpleType, WhiteSpace::Collapse, nullptr, nullptr},
    {BuiltInType::Duration, BuiltInType::AnySimpleType, WhiteSpace::Collapse, nullptr, nullptr},
    {BuiltInType::DateTime, BuiltInType::AnySimpleType, WhiteSpace::Collapse, nullptr, nullptr},
    {BuiltInType::Time, BuiltInType::AnySimpleType, WhiteSpace::Collapse, nullptr, nullptr},
    {BuiltInType::Date, BuiltInType::AnySimpleType, WhiteSpace::Collapse, nullptr, nullptr},
    {BuiltInType::GYearMonth, BuiltInType::AnySimpleType, WhiteSpace::Collapse, nullptr, nullptr},
    {BuiltInType::GYear, BuiltInType::AnySimpleType, WhiteSpace::Collapse, nullptr, nullptr},
    {BuiltInType::GMonthDay, BuiltInType::AnySimpleType, WhiteSpace::Collapse, nullptr, nullptr},
    {BuiltInType::GDay, BuiltInType::AnySimpleType, WhiteSpace::Collapse, nullptr, nullptr},
    {BuiltInType::GMonth, BuiltInType::AnySimpleType, WhiteSpace::Collapse, nullptr, nullptr},
    {BuiltInType::HexBinary, BuiltInType::AnySimpleType, WhiteSpace::Collapse, nullptr, nullptr},
    {BuiltInType::Base64Binary, BuiltInType::AnySimpleType, WhiteSpace::Collapse, nullptr, nullptr},
    {BuiltInType::AnyURI, BuiltInType::AnySimpleType, WhiteSpace::Collapse, nullptr, nullptr},
    {BuiltInType::QName, BuiltInType::AnySimpleType, WhiteSpace::Collapse, nullptr, nullptr},
    {BuiltInType::Notation, BuiltInType::AnySimpleType, WhiteSpace::Collapse, nullptr, nullptr},
    {BuiltInType::NormalizedString, BuiltInType::String, WhiteSpace::Replace, nullptr, nullptr},
    {BuiltInType::Token, BuiltInType::NormalizedString, WhiteSpace::Collapse, nullptr, nullptr},
    {BuiltInType::Language, BuiltInType::Token, WhiteSpace::Collapse, nullptr, nullptr},
    {BuiltInType::NMToken, BuiltInType::Token, WhiteSpace::Collapse, nullptr, nullptr},
    {BuiltInType::Name, BuiltInType::Token, WhiteSpace::Collapse, nullptr, nullptr},
    {BuiltInType::NCName, BuiltInType::Name, WhiteSpace::Collapse, nullptr, nullptr},
    {BuiltInType::ID, BuiltInType::NCName, WhiteSpace::Collapse, nullptr, nullptr},
    {BuiltInType::IDRef, BuiltInType::NCName, WhiteSpace::Collapse, nullptr, nullptr},
    {BuiltInType::Entity, BuiltInType::NCName, WhiteSpace::Collapse, nullptr, nullptr},
    {BuiltInType::Integer, BuiltInType::Decimal, WhiteSpace::Collapse, nullptr, nullptr},
    {BuiltInType::NonPositiveInteger, BuiltInType::Integer, WhiteSpace::Collapse, nullptr, L"0"},
    {BuiltInType::NegativeInteger, BuiltInType::NonPositiveInteger, WhiteSpace::Collapse, nullptr, L"-1"},
    {BuiltInType::Long, BuiltInType::Integer, WhiteSpace::Collapse, L"-9223372036854775808", L"9223372036854775807"},
    {BuiltInType::Int, BuiltInType::Long, WhiteSpace::Collapse, L"-2147483648", L"2147483647"},
    {BuiltInType::Short, BuiltInType::Int, WhiteSpace::Collapse, L"-32768", L"32767"},
    {BuiltInType::Byte, BuiltInType::Short, WhiteSpace::Collapse, L"-128", L"127"},
    {BuiltInType::NonNegativeInteger, BuiltInType::Integer, WhiteSpace::Collapse, L"0", nullptr},
    {BuiltInType::UnsignedLong, BuiltInType::NonNegativeInteger, WhiteSpace::Collapse, L"0", L"18446744073709551615"},
    {BuiltInType::UnsignedInt, BuiltInType::UnsignedLong, WhiteSpace::Collapse, L"0", L"4294967295"},
    {BuiltInType::UnsignedShort, BuiltInType::UnsignedInt, WhiteSpace::Collapse, L"0", L"65535"},
    {BuiltInType::UnsignedByte, BuiltInType::UnsignedShort, WhiteSpace::Collapse, L"0", L"255"},
    {BuiltInType::PositiveInteger, BuiltInType::NonNegativeInteger, WhiteSpace::Collapse, L"1", nullptr},
};
inline constexpr std::pair<BuiltInType, BuiltInType> kBuiltInListRows[] = {
    {BuiltInType::NMTokens, BuiltInType::NMToken},
    {BuiltInType::IDRefs, BuiltInType::IDRef},
    {BuiltInType::Entities, BuiltInType::Entity}};

// The namespace URI of a prefix (empty for the default namespace, which may be absent and then gives ""); nullopt for a
// prefix that is not declared.
using NamespaceResolver = std::function<std::optional<std::wstring>(std::wstring_view prefix)>;

inline std::wstring Quoted(std::wstring_view text) {
  constexpr std::size_t kMost = 100;
  std::wstring quoted = L"[";
  quoted += text.substr(0, kMost);
  if (text.size() > kMost) quoted += L"...";
  return quoted + L"]";
}

template <class Type>
std::wstring NameOf(const Type& type) {
  return type.IsAnonymous() ? L"the anonymous type" : L"the type " + Quoted(type.name.localName);
}

inline std::wstring Apply(WhiteSpace rule, std::wstring_view text) {
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

// The text as the white space facet of the type leaves it; of a union it is left as it is.
template <class Type>
std::wstring Normalize(const Type& type, std::wstring_view text) {
  if (type.variety == Variety::List) return Apply(WhiteSpace::Collapse, text);
  return Apply(type.variety == Variety::Atomic ? type.facets.GetWhiteSpace() : WhiteSpace::Preserve, text);
}

// One check of one text: which types refused it already, so that unions of unions stay linear.
template <class Type>
class CValueChecker {
 public:
  explicit CValueChecker(const NamespaceResolver& resolver) : m_resolver(resolver) {}

  // Null when valid, and then `m_member` is the type that accepted the text and `m_key` is filled.
  bool Check(const Type& type, std::wstring_view text) {
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
  const Type* m_member = nullptr;

 private:
  bool Refuse(std::wstring error) {
    m_error = std::move(error);
    return false;
  }

  bool CheckAtomic(const Type& type, std::wstring_view raw) {
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
    m_key = uri->empty() ? std::wstring() : L'{' + *uri + L'}';
    m_key += colon == std::wstring_view::npos ? text : text.substr(colon + 1);
    return true;
  }

  bool CheckList(const Type& type, std::wstring_view raw) {
    const std::wstring text = Apply(WhiteSpace::Collapse, raw);
    std::size_t count = 0;
    std::wstring key;
    bool valid = true;
    ForEachToken(text, [&](std::wstring_view token) {
      if (!valid) return;
      ++count;
      if (type.itemType == nullptr) return;
      CValueChecker item(m_resolver);
      valid = item.Check(*type.itemType, token);
      if (!valid) m_error = std::move(item.m_error);
      key += item.m_key + L' ';
    });
    if (!valid) return false;
    m_member = &type;
    m_key = std::move(key);
    return CheckLength(type, count, text) && CheckPatterns(type, text) && CheckEnumeration(type, text);
  }

  bool CheckUnion(const Type& type, std::wstring_view text) {
    for (const Type* member : type.memberTypes) {
      if (!m_refused.insert(member).second) continue;
      if (!Check(*member, text)) continue;
      m_refused.erase(member);
      if (member->variety != Variety::Union) {
        const Type* const owner = member->variety == Variety::List ? member : member->primitive;
        m_key = (owner != nullptr && owner->variety != Variety::List ? owner->name.localName : L"") + L'\x1' + m_key;
      }
      const Type* const accepted = m_member;
      const bool valid = CheckPatterns(type, Normalize(*accepted, text)) && CheckEnumeration(type, text);
      m_member = accepted;
      return valid;
    }
    return Refuse(Quoted(text) + L" is no value of any member of " + NameOf(type) + L".");
  }

  bool CheckLength(const Type& type, std::size_t length, std::wstring_view text) {
    const auto& f = type.facets;
    if (!f.length && !f.minLength && !f.maxLength) return true;
    if (type.holdsQNames && type.variety == Variety::Atomic) return true;  // their length is not defined
    if ((f.length && length != f.length->value) || (f.minLength && length < f.minLength->value) ||
        (f.maxLength && length > f.maxLength->value))
      return Refuse(L"The length of " + Quoted(text) + L" is not what " + NameOf(type) + L" allows.");
    return true;
  }

  bool CheckBounds(const Type& type, BuiltInType primitive, std::wstring_view text) {
    const auto& f = type.facets;
    const auto holds = [&](const auto& bound, Order wanted, bool orEqual) {
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

  bool CheckPatterns(const Type& type, std::wstring_view text) {
    if (type.facets.patterns.empty()) return true;
    const std::wstring value(text);
    for (const auto& step : type.facets.patterns) {
      const bool matches = std::any_of(step.alternatives.begin(), step.alternatives.end(), [&](const auto& p) {
        return p.matcher == nullptr || p.matcher->Matches(value);
      });
      if (!matches) return Refuse(Quoted(text) + L" does not match the pattern of " + NameOf(type) + L".");
    }
    return true;
  }

  bool CheckEnumeration(const Type& type, std::wstring_view text) {
    if (type.facets.enumerationKeys == nullptr || type.facets.enumerationKeys->count(m_key) != 0) return true;
    // Keys of names need a resolver; without one the texts are compared.
    if (type.holdsQNames && m_resolver == nullptr) {
      const auto& values = type.facets.enumeration;
      const auto same = [&](const auto& v) { return v.text == text; };
      if (std::any_of(values.begin(), values.end(), same)) return true;
    }
    return Refuse(Quoted(text) + L" is not one of the values of " + NameOf(type) + L".");
  }

  const NamespaceResolver& m_resolver;
  std::set<const Type*> m_refused;
};

}  // namespace RkXmlLib16::Xsd

#endif
