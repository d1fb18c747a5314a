#include "schema/components/Components.h"

#include <algorithm>

namespace RkXmlSchema {

std::wstring SourceLocation::ToString() const {
  if (file == nullptr) return {};
  std::wstring text = *file;
  if (line != 0) text += L':' + std::to_wstring(line);
  if (line != 0 && column != 0) text += L':' + std::to_wstring(column);
  return text;
}

std::wstring Diagnostic::ToString() const {
  const std::wstring place = location.ToString();
  return (place.empty() ? place : place + L": ") + (severity == Severity::Error ? L"error: " : L"warning: ") + message;
}

const SimpleTypeDefinition* TypeDefinition::AsSimple() const noexcept {
  return IsSimple() ? static_cast<const SimpleTypeDefinition*>(this) : nullptr;
}

const ComplexTypeDefinition* TypeDefinition::AsComplex() const noexcept {
  return IsSimple() ? nullptr : static_cast<const ComplexTypeDefinition*>(this);
}

bool TypeDefinition::IsDerivedFrom(const TypeDefinition* other) const noexcept {
  for (const TypeDefinition* type = this;; type = type->base) {
    if (type == other) return true;
    if (type->base == nullptr || type->base == type) return false;
  }
}

bool Wildcard::Allows(std::wstring_view namespaceUri) const noexcept {
  if (constraint == Constraint::Any) return true;
  const bool listed = std::find(namespaces.begin(), namespaces.end(), namespaceUri) != namespaces.end();
  if (constraint == Constraint::Enumeration) return listed;
  return !listed && (allowsAbsent || !namespaceUri.empty());
}

}  // namespace RkXmlSchema
