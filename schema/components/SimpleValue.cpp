#include "schema/components/SimpleValue.h"

#include <algorithm>
#include <set>
#include <vector>

#include "RkXmlLib16/facets/XsdValueCheck.h"
#include "schema/components/Pattern.h"
#include "schema/components/internal/Xsd.h"

namespace RkXmlSchema {

namespace Xsd = RkXmlLib16::Xsd;
using CChecker = Xsd::CValueChecker<SimpleTypeDefinition>;

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
  return Xsd::Normalize(type, text);
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
