// Which property kind and which facets a simple type becomes.
#include <algorithm>
#include <iterator>
#include <limits>
#include <string_view>

#include "RkXmlLib16/base/XsdTypes.h"
#include "RkXmlLib16/types/BigInteger.h"
#include "schema/bind/internal/Values.h"
#include "schema/components/Pattern.h"

namespace RkXmlSchema {

using namespace RkXmlLib16;

namespace {

using B = BuiltInType;

ItemType ItemTypeOf(BuiltInType type) {
  // The names that the library's types have in XSD, by their numbers.
#define RKXML_NAME(Kind, Name, Property, Value) L"" #Kind,
  static constexpr std::wstring_view kNames[] = {L"", RKXML_XSD_TYPES(RKXML_NAME, RKXML_NAME, RKXML_NAME)};
#undef RKXML_NAME
  const auto* const known = std::find(std::begin(kNames), std::end(kNames), GetBuiltInName(type));
  if (known != std::end(kNames)) return static_cast<ItemType>(known - kNames);
  const bool isInteger = type == B::NonPositiveInteger || type == B::NegativeInteger || type == B::NonNegativeInteger ||
                         type == B::PositiveInteger;
  return isInteger ? ItemType_integer : ItemType_string;
}

bool IsInteger(ItemType type) {
  return (type >= ItemType_byte && type <= ItemType_unsignedLong) || type == ItemType_integer;
}
bool IsBinary(ItemType type) { return type == ItemType_hexBinary || type == ItemType_base64Binary; }

CWhitespaceUtils::WhitespaceRule RuleOf(WhiteSpace whiteSpace) {
  return whiteSpace == WhiteSpace::Preserve  ? CWhitespaceUtils::preserve
         : whiteSpace == WhiteSpace::Replace ? CWhitespaceUtils::replace
                                             : CWhitespaceUtils::collapse;
}

// A union has no rule of its own; it is collapsed when that changes no value of any member.
CWhitespaceUtils::WhitespaceRule RuleOf(const SimpleTypeDefinition& type) {
  if (type.variety == Variety::List) return CWhitespaceUtils::collapse;
  if (type.variety != Variety::Union) return RuleOf(type.facets.GetWhiteSpace());
  const auto collapses = [](const SimpleTypeDefinition* member) {
    return member->variety != Variety::Absent && RuleOf(*member) == CWhitespaceUtils::collapse;
  };
  return std::all_of(type.memberTypes.begin(), type.memberTypes.end(), collapses) ? CWhitespaceUtils::collapse
                                                                                  : CWhitespaceUtils::preserve;
}

// What the lexical form of a built-in string type adds.
const wchar_t* LexicalPattern(BuiltInType type) {
  switch (type) {
    case B::Language:
      return L"[a-zA-Z]{1,8}(-[a-zA-Z0-9]{1,8})*";
    case B::NMToken:
      return L"\\c+";
    case B::Name:
      return L"\\i\\c*";
    case B::NCName:
    case B::ID:
    case B::IDRef:
    case B::Entity:
      return L"[\\i-[:]][\\c-[:]]*";
    default:
      return nullptr;
  }
}

// All steps have to hold: each but the last becomes a condition in front of it.
std::wstring JoinPatterns(const SimpleTypeDefinition& type) {
  std::vector<std::wstring> steps;
  if (const wchar_t* lexical = LexicalPattern(type.builtIn)) steps.push_back(TranslatePattern(lexical));
  for (const PatternStep& step : type.facets.patterns) {
    std::wstring joined = JoinAlternatives(step);
    if (!joined.empty() && (steps.empty() || steps.back() != joined)) steps.push_back(std::move(joined));
  }
  if (steps.empty()) return {};
  std::wstring pattern;
  for (std::size_t i = 0; i + 1 < steps.size(); ++i) pattern += L"(?=(?:" + steps[i] + L")\\z)";
  return pattern.empty() ? steps.back() : pattern + L"(?:" + steps.back() + L")";
}

long CountOf(const std::optional<CountFacet>& facet) {
  if (!facet) return -1;
  return static_cast<long>(std::min<std::uint64_t>(facet->value, std::numeric_limits<long>::max()));
}
std::wstring TextOf(const std::optional<BoundFacet>& facet) { return facet ? facet->text : std::wstring(); }

// The run-time counts the sign among the digits of integers, so their number becomes two bounds.
struct IntegerBounds {
  std::wstring least, most;

  void LimitDigits(std::uint64_t digits) {
    const std::wstring limit(static_cast<std::size_t>(digits), L'9');
    if (least.empty() || CBigInteger(L'-' + limit) > CBigInteger(least)) least = L'-' + limit;
    if (most.empty() || CBigInteger(limit) < CBigInteger(most)) most = limit;
  }
};

// Bounds that the machine type has by itself would only cost time.
void DropNaturalBounds(ItemType type, IntegerBounds& bounds) {
  static constexpr struct {
    ItemType type;
    const wchar_t *least, *most;
  } kNatural[] = {{ItemType_byte, L"-128", L"127"},
                  {ItemType_short, L"-32768", L"32767"},
                  {ItemType_long, L"-9223372036854775808", L"9223372036854775807"},
                  {ItemType_unsignedByte, L"0", L"255"},
                  {ItemType_unsignedShort, L"0", L"65535"},
                  {ItemType_unsignedInt, L"0", nullptr},
                  {ItemType_unsignedLong, L"0", L"18446744073709551615"}};
  for (const auto& natural : kNatural) {
    if (natural.type != type) continue;
    if (bounds.least == natural.least) bounds.least.clear();
    if (natural.most != nullptr && bounds.most == natural.most) bounds.most.clear();
  }
}

void BindAtomic(const SimpleTypeDefinition& type, ValueBinding& value) {
  constexpr std::uint64_t kMostDigits = 100;
  const Facets& f = type.facets;
  value.itemType = ItemTypeOf(type.builtIn);
  const bool isString = value.itemType == ItemType_string;
  IntegerBounds bounds{TextOf(f.minInclusive), TextOf(f.maxInclusive)};
  long totalDigits = CountOf(f.totalDigits);
  if (IsInteger(value.itemType)) {
    if (totalDigits >= 0) {
      if (f.totalDigits->value <= kMostDigits) {
        bounds.LimitDigits(f.totalDigits->value);
      } else {
        value.needsCheck = true;
      }
      totalDigits = -1;
    }
    DropNaturalBounds(value.itemType, bounds);
  }
  // Only the text itself is sure to keep to a pattern; 12.50 would be written as 12.5.
  if (!isString && !f.patterns.empty()) {
    value = ValueBinding();
    value.type = &type;
    value.kind = ValueBinding::Kind::Text;
    value.whitespace = RuleOf(type);
    value.needsCheck = true;
    return;
  }
  const bool hasLength = isString || IsBinary(value.itemType);
  if (isString && !f.enumeration.empty()) {
    value.kind = ValueBinding::Kind::Enumeration;
    value.needsCheck = !f.patterns.empty() || f.length || f.minLength || f.maxLength;  // some may be no values any more
    return;
  }
  const std::wstring pattern = isString ? JoinPatterns(type) : std::wstring();
  value.facets = CPrimitiveRestrictions(pattern.c_str(), hasLength ? CountOf(f.minLength) : -1,
                                        hasLength ? CountOf(f.maxLength) : -1, bounds.least.c_str(),
                                        bounds.most.c_str(), TextOf(f.minExclusive).c_str(),
                                        TextOf(f.maxExclusive).c_str(), hasLength ? CountOf(f.length) : -1, totalDigits,
                                        value.itemType == ItemType_decimal ? CountOf(f.fractionDigits) : -1);
  const bool hasBounds = f.minInclusive || f.maxInclusive || f.minExclusive || f.maxExclusive;
  if (!f.enumeration.empty() || (value.itemType == ItemType_gYearMonth && hasBounds)) value.needsCheck = true;
}

}  // namespace

ValueBinding BindValue(const SimpleTypeDefinition& type) {
  ValueBinding value;
  value.type = &type;
  value.whitespace = RuleOf(type);
  value.holdsQNames = type.holdsQNames;
  if (type.variety == Variety::Atomic && !type.holdsQNames) {
    BindAtomic(type, value);
  } else {
    value.kind = ValueBinding::Kind::Text;
    value.needsCheck = type.variety != Variety::Absent;
  }
  return value;
}

}  // namespace RkXmlSchema
