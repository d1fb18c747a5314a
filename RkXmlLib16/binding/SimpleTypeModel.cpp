#include "RkXmlLib16/binding/SimpleTypeModel.h"

#include <memory>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/binding/internal/ModelClass.h"
#include "RkXmlLib16/facets/RegEx.h"
#include "RkXmlLib16/io/Encoder.h"

namespace RkXmlLib16Data {

using namespace RkXmlLib16;

// In the form that the check wants.
struct CSimpleTypeModel::Built {
  struct Count {
    std::uint64_t value;
  };
  struct Bound {
    std::wstring text;
  };
  struct Matcher {
    explicit Matcher(const wchar_t* pattern) : expression(ToUtf8(pattern), std::wstring()) {}
    bool Matches(const std::wstring& value) const {
      try {
        return expression.Matches(value);
      } catch (const CRkException&) {
        return false;
      }
    }
    CRegEx expression;
  };
  struct Pattern {
    std::unique_ptr<const Matcher> matcher;
  };
  struct Step {
    std::vector<Pattern> alternatives;
  };
  struct Value {
    std::wstring text;
  };
  struct Facets {
    Xsd::WhiteSpace GetWhiteSpace() const noexcept { return whiteSpace; }

    Xsd::WhiteSpace whiteSpace = Xsd::WhiteSpace::Preserve;
    std::optional<Count> length, minLength, maxLength, totalDigits, fractionDigits;
    std::optional<Bound> minInclusive, maxInclusive, minExclusive, maxExclusive;
    std::vector<Step> patterns;
    std::vector<Value> enumeration;
    std::unique_ptr<const std::unordered_set<std::wstring>> enumerationKeys;
  };
  struct Name {
    std::wstring localName;
  };

  explicit Built(const CSimpleTypeModel& model);
  bool IsAnonymous() const noexcept { return name.localName.empty(); }

  Xsd::Variety variety;
  Xsd::BuiltInType builtIn;
  Name name;
  const Built* primitive = nullptr;
  const Built* itemType = nullptr;
  std::vector<const Built*> memberTypes;
  bool holdsQNames;
  Facets facets;
};

CSimpleTypeModel::Built::Built(const CSimpleTypeModel& model)
    : variety(model.m_data.variety),
      builtIn(model.m_data.builtIn),
      name{model.m_data.name},
      holdsQNames(model.m_data.holdsQNames) {
  const SimpleTypeData& data = model.m_data;
  if (variety == Xsd::Variety::Atomic) {
    const CSimpleTypeModel* at = &model;
    while (at->m_data.base != nullptr && at->m_data.base->m_data.variety == Xsd::Variety::Atomic) at = at->m_data.base;
    primitive = at == &model ? this : &at->Require();
  }
  if (data.itemType != nullptr) itemType = &data.itemType->Require();
  for (const CSimpleTypeModel* member : data.memberTypes) memberTypes.push_back(&member->Require());
  const auto count = [](std::optional<Count>& facet, long value) {
    if (value >= 0) facet = Count{static_cast<std::uint64_t>(value)};
  };
  const auto bound = [](std::optional<Bound>& facet, const wchar_t* text) {
    if (text != nullptr) facet = Bound{text};
  };
  facets.whiteSpace = data.whiteSpace;
  count(facets.length, data.length);
  count(facets.minLength, data.minLength);
  count(facets.maxLength, data.maxLength);
  count(facets.totalDigits, data.totalDigits);
  count(facets.fractionDigits, data.fractionDigits);
  bound(facets.minInclusive, data.minInclusive);
  bound(facets.maxInclusive, data.maxInclusive);
  bound(facets.minExclusive, data.minExclusive);
  bound(facets.maxExclusive, data.maxExclusive);
  for (const wchar_t* pattern : data.patterns)
    facets.patterns.emplace_back().alternatives.push_back({std::make_unique<const Matcher>(pattern)});
  if (data.enumeration.empty()) return;
  auto keys = std::make_unique<std::unordered_set<std::wstring>>();
  for (const EnumerationModel& value : data.enumeration) {
    const NamespaceResolver resolver = holdsQNames ? ResolverOf(value.prefixes) : nullptr;
    Xsd::CValueChecker<Built> checker(resolver);
    if (checker.Check(*this, value.text)) keys->insert(std::move(checker.m_key));
    facets.enumeration.push_back({value.text});
  }
  facets.enumerationKeys = std::move(keys);
}

CSimpleTypeModel::~CSimpleTypeModel() { delete m_built.load(); }

std::wstring_view CSimpleTypeModel::GetName() const { return m_data.name; }
std::wstring_view CSimpleTypeModel::GetNamespace() const { return m_data.namespaceUri; }
const CSimpleType* CSimpleTypeModel::GetBase() const { return m_data.base; }

const CSimpleTypeModel::Built& CSimpleTypeModel::Require() const {
  const Built* known = m_built.load(std::memory_order_acquire);
  if (known != nullptr) return *known;
  auto built = std::make_unique<const Built>(*this);
  if (m_built.compare_exchange_strong(known, built.get())) return *built.release();
  return *known;
}

std::optional<std::wstring> CSimpleTypeModel::Check(std::wstring_view text, const NamespaceResolver& resolver) const {
  Xsd::CValueChecker<Built> checker(resolver);
  if (checker.Check(Require(), text)) return std::nullopt;
  return std::move(checker.m_error);
}

bool CSimpleTypeModel::AreEqual(std::wstring_view a, std::wstring_view b, const NamespaceResolver& resolverA,
                                const NamespaceResolver& resolverB) const {
  Xsd::CValueChecker<Built> first(resolverA);
  Xsd::CValueChecker<Built> second(resolverB);
  return first.Check(Require(), a) && second.Check(Require(), b) && first.m_key == second.m_key;
}

// ---- Built-in types

namespace {

constexpr SimpleTypeData DataOf(std::size_t number) {
  const auto type = static_cast<Xsd::BuiltInType>(number);
  SimpleTypeData data(L"", L"http://www.w3.org/2001/XMLSchema", nullptr, Xsd::Variety::Absent, type);
  for (const Xsd::BuiltInRow& row : Xsd::kBuiltInRows) {
    if (row.type != type) continue;
    data.base = BuiltIn(row.base);
    data.variety = Xsd::Variety::Atomic;
    data.whiteSpace = row.whiteSpace;
    data.minInclusive = row.least;
    data.maxInclusive = row.most;
    data.holdsQNames = type == Xsd::BuiltInType::QName || type == Xsd::BuiltInType::Notation;
    // A type derived from integers has their facets too.
    for (auto at = row.base; at != Xsd::BuiltInType::AnySimpleType;) {
      for (const Xsd::BuiltInRow& base : Xsd::kBuiltInRows) {
        if (base.type != at) continue;
        if (data.minInclusive == nullptr) data.minInclusive = base.least;
        if (data.maxInclusive == nullptr) data.maxInclusive = base.most;
        if (at == Xsd::BuiltInType::Integer) data.fractionDigits = 0;
        at = base.base;
        break;
      }
    }
    if (type == Xsd::BuiltInType::Integer) data.fractionDigits = 0;
  }
  for (const auto& [list, item] : Xsd::kBuiltInListRows) {
    if (list != type) continue;
    data.base = BuiltIn(Xsd::BuiltInType::AnySimpleType);
    data.variety = Xsd::Variety::List;
    data.whiteSpace = Xsd::WhiteSpace::Collapse;
    data.itemType = BuiltIn(item);
    data.minLength = 1;
  }
  data.name = Xsd::kBuiltInNames[number];
  return data;
}

}  // namespace

template <std::size_t... kNumbers>
constexpr BuiltInTypes::BuiltInTypes(std::index_sequence<kNumbers...>) noexcept
    : types{CSimpleTypeModel(DataOf(kNumbers))...} {}

const BuiltInTypes kBuiltInTypes{std::make_index_sequence<Xsd::kBuiltInTypeCount>()};

}  // namespace RkXmlLib16Data
