// An untrusted schema: read, checked and left again without a crash, in time and memory that its size allows.
#include "schema/components/SchemaSet.h"
#include "schema/components/SimpleValue.h"

#include "Check.h"

using namespace RkXmlSchema;

namespace {

SchemaOptions Limited() {
  SchemaOptions options;
  options.limits.maxNodes = 20000;
  options.limits.maxContentParticles = 5000;
  options.limits.maxTotalParticles = 20000;
  options.limits.maxAttributeUses = 20000;
  options.limits.maxPatternCharacters = 200000;
  options.limits.maxDiagnostics = 200;
  return options;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  CSchemaSet set(Limited());
  set.AddText(std::string_view(reinterpret_cast<const char*>(data), size), L"/nowhere/fuzz.xsd");
  const bool isUsable = set.Resolve();
  Fuzz::Require(isUsable == !set.HasErrors(), "errors and the answer agree");
  for (const Diagnostic& d : set.GetDiagnostics()) Fuzz::Require(!d.ToString().empty(), "a diagnostic has a text");
  if (!isUsable) return 0;

  for (const TypeDefinition* type : set.GetAllTypes()) {
    Fuzz::Require(type->IsDerivedFrom(set.GetAnyType()), "every type is derived from anyType", type->name.ToString());
    const SimpleTypeDefinition* const simple = type->AsSimple();
    if (simple == nullptr) continue;
    for (const EnumerationValue& value : simple->facets.enumeration) {
      const NamespaceResolver resolver = ResolverOf(value.namespaces);
      const bool isValid = !CheckValue(*simple->base->AsSimple(), value.text, resolver);
      Fuzz::Require(isValid || simple->ownFacets.enumeration.empty(), "the base type has an enumerated value",
                    value.text);
    }
    for (const wchar_t* text : {L"", L"1", L"a b", L"2024-01-01", L"P1M", L"a:b", L"--1"}) {
      const bool isValid = !CheckValue(*simple, text);
      Fuzz::Require(isValid == GetValueKey(*simple, text).has_value(), "a valid value has a key", text);
      Fuzz::Require(isValid == AreEqualValues(*simple, text, text), "a valid value equals itself", text);
    }
  }
  for (const ElementDeclaration* element : set.GetElements()) {
    Fuzz::Require(element->type != nullptr, "an element has a type", element->name.ToString());
    for (const ElementDeclaration* member : element->substitutionGroup)
      Fuzz::Require(member->type->IsDerivedFrom(element->type) || element->type->IsSimple(),
                    "a member's type is derived from the head's", member->name.ToString());
  }
  return 0;
}
