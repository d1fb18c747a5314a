#ifndef RKXMLLIB16_BINDING_SIMPLETYPEMODEL_H
#define RKXMLLIB16_BINDING_SIMPLETYPEMODEL_H

#include <atomic>
#include <cstddef>
#include <utility>

#include "RkXmlLib16/binding/Model.h"
#include "RkXmlLib16/binding/SimpleType.h"

namespace RkXmlLib16Data {

namespace Xsd = RkXmlLib16::Xsd;

class CSimpleTypeModel;

// One value of an enumeration.
struct EnumerationModel {
  const wchar_t* text;
  Span<PrefixModel> prefixes{};  // of QName and NOTATION
};

// A simple type as plain data. The facets are all that hold for a value, those of the base types included.
struct SimpleTypeData {
  constexpr SimpleTypeData(const wchar_t* typeName, const wchar_t* uri, const CSimpleTypeModel* baseType,
                           Xsd::Variety typeVariety, Xsd::BuiltInType nearest) noexcept
      : name(typeName), namespaceUri(uri), base(baseType), variety(typeVariety), builtIn(nearest) {}

  const wchar_t* name;  // empty for an anonymous type
  const wchar_t* namespaceUri;
  const CSimpleTypeModel* base;  // null for xs:anySimpleType
  Xsd::Variety variety;
  Xsd::BuiltInType builtIn;  // the nearest built-in type
  Xsd::WhiteSpace whiteSpace = Xsd::WhiteSpace::Preserve;
  const CSimpleTypeModel* itemType = nullptr;   // of a list
  Span<const CSimpleTypeModel*> memberTypes{};  // of a union
  long length = -1;
  long minLength = -1;
  long maxLength = -1;
  long totalDigits = -1;
  long fractionDigits = -1;
  const wchar_t* minInclusive = nullptr;
  const wchar_t* maxInclusive = nullptr;
  const wchar_t* minExclusive = nullptr;
  const wchar_t* maxExclusive = nullptr;
  Span<const wchar_t*> patterns{};  // one for each derivation step, all of which have to match
  Span<EnumerationModel> enumeration{};
  bool holdsQNames = false;
};

// A simple type with the checks of XML Schema: Datatypes, ready to be printed by the class generator.
class RKXML_EXPORT CSimpleTypeModel final : public CSimpleType {
 public:
  constexpr CSimpleTypeModel(const SimpleTypeData& data) noexcept : m_data(data) {}
  ~CSimpleTypeModel();

  const SimpleTypeData& GetData() const noexcept { return m_data; }
  std::wstring_view GetName() const override;
  std::wstring_view GetNamespace() const override;
  const CSimpleType* GetBase() const override;
  std::optional<std::wstring> Check(std::wstring_view text, const NamespaceResolver& resolver) const override;
  bool AreEqual(std::wstring_view a, std::wstring_view b, const NamespaceResolver& resolverA,
                const NamespaceResolver& resolverB) const override;

  // What the checks work with: made at first use. Threads may ask together.
  struct Built;
  const Built& Require() const;

 private:
  SimpleTypeData m_data;
  mutable std::atomic<const Built*> m_built{nullptr};
};

// The built-in types of XML Schema, by the numbers of Xsd::BuiltInType.
struct BuiltInTypes {
  template <std::size_t... kNumbers>
  constexpr explicit BuiltInTypes(std::index_sequence<kNumbers...>) noexcept;

  CSimpleTypeModel types[Xsd::kBuiltInTypeCount];
};
RKXML_EXPORT extern const BuiltInTypes kBuiltInTypes;
constexpr const CSimpleTypeModel* BuiltIn(Xsd::BuiltInType type) noexcept {
  return &kBuiltInTypes.types[static_cast<std::size_t>(type)];
}

}  // namespace RkXmlLib16Data

#endif
