#ifndef RKXMLLIB16_BINDING_SIMPLETYPE_H
#define RKXMLLIB16_BINDING_SIMPLETYPE_H

#include <optional>
#include <string>
#include <string_view>

#include "RkXmlLib16/base/Export.h"
#include "RkXmlLib16/facets/XsdValueCheck.h"

namespace RkXmlLib16Data {

using RkXmlLib16::Xsd::NamespaceResolver;

// A simple type of a schema, as far as values must be checked that their C++ types and facets let pass: items of lists,
// members of unions, enumerated numbers, patterns of numbers.
class RKXML_EXPORT CSimpleType {
 public:
  CSimpleType() = default;
  CSimpleType(const CSimpleType&) = delete;
  CSimpleType& operator=(const CSimpleType&) = delete;

  // As xsi:type names it; an empty name for an anonymous type.
  virtual std::wstring_view GetName() const = 0;
  virtual std::wstring_view GetNamespace() const = 0;
  // Null for xs:anySimpleType.
  virtual const CSimpleType* GetBase() const = 0;
  // What is wrong with the text as a value of the type, in one sentence; nullopt when it is valid. Without a resolver
  // prefixes are not looked up.
  virtual std::optional<std::wstring> Check(std::wstring_view text, const NamespaceResolver& resolver) const = 0;
  // Whether both texts are valid and denote the same value. The resolvers serve the one and the other text.
  virtual bool AreEqual(std::wstring_view a, std::wstring_view b, const NamespaceResolver& resolverA,
                        const NamespaceResolver& resolverB) const = 0;

  // Whether this is `other` or derived from it.
  bool IsDerivedFrom(const CSimpleType* other) const {
    const CSimpleType* type = this;
    while (type != nullptr && type != other) type = type->GetBase();
    return type != nullptr;
  }

 protected:
  ~CSimpleType() = default;
};

}  // namespace RkXmlLib16Data

#endif
