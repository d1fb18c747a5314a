// The built-in types and the facets of XML Schema: Datatypes (second edition).
#ifndef RKXMLLIB16_SCHEMA_COMPONENTS_FACETS_H
#define RKXMLLIB16_SCHEMA_COMPONENTS_FACETS_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "RkXmlLib16/facets/XsdValueCheck.h"
#include "RkXmlLib16/types/XsdLexical.h"
#include "schema/components/Diagnostic.h"

namespace RkXmlSchema {

using RkXmlLib16::Xsd::BuiltInType;
using RkXmlLib16::Xsd::GetBuiltInName;
using RkXmlLib16::Xsd::kBuiltInTypeCount;

// From prefix (empty for the default namespace) to namespace URI.
using NamespaceBindings = std::map<std::wstring, std::wstring, std::less<>>;

using RkXmlLib16::Xsd::WhiteSpace;

// One pattern facet: the text of the schema and a translation of the same meaning, which the facet checks of the
// library take as it is (CPrimitiveRestrictions, CRegEx). The translation needs no further escapes and may be joined
// with others as in "(?:one)|(?:other)".
struct Pattern {
  SourceLocation location;
  std::wstring text;
  std::wstring translated;
  std::shared_ptr<const class CPatternMatcher> matcher;
};

// The patterns of one derivation step: a value has to match one of them.
struct PatternStep {
  std::vector<Pattern> alternatives;
};

// One of minInclusive, maxInclusive, minExclusive, maxExclusive.
struct BoundFacet {
  SourceLocation location;
  std::wstring text;  // lexical form, white space normalized
  bool fixed = false;
};

struct CountFacet {
  SourceLocation location;
  std::uint64_t value = 0;
  bool fixed = false;
};

struct EnumerationValue {
  SourceLocation location;
  std::wstring documentation;
  std::wstring text;                              // white space normalized by the base type
  const NamespaceBindings* namespaces = nullptr;  // for QName and NOTATION; null for other types
};

struct Facets {
  std::optional<CountFacet> length;
  std::optional<CountFacet> minLength;
  std::optional<CountFacet> maxLength;
  std::optional<CountFacet> totalDigits;
  std::optional<CountFacet> fractionDigits;
  std::optional<BoundFacet> minInclusive;
  std::optional<BoundFacet> maxInclusive;
  std::optional<BoundFacet> minExclusive;
  std::optional<BoundFacet> maxExclusive;
  std::vector<PatternStep> patterns;  // all steps have to hold, outermost base first
  // The values of the innermost step that enumerates any; empty when none does.
  std::vector<EnumerationValue> enumeration;
  // The same as keys of values: see GetValueKey.
  std::shared_ptr<const std::unordered_set<std::wstring>> enumerationKeys;
  std::optional<WhiteSpace> whiteSpace;  // always set in the facets of an atomic type or list
  bool whiteSpaceFixed = false;

  WhiteSpace GetWhiteSpace() const noexcept { return whiteSpace.value_or(WhiteSpace::Preserve); }
};

}  // namespace RkXmlSchema

#endif
