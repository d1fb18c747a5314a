// What a schema says about a class, as plain data: the tables that the class generator prints, and that objects without
// classes make at run time. The library makes the records of a class from them (docs/generated-code.md).
#ifndef RKXMLLIB16_BINDING_MODEL_H
#define RKXMLLIB16_BINDING_MODEL_H

#include <atomic>
#include <cstddef>
#include <string_view>
#include <unordered_set>

#include "RkXmlLib16/base/Enumerations.h"
#include "RkXmlLib16/base/Export.h"
#include "RkXmlLib16/types/Whitespace.h"

namespace RkXmlLib16 {
class CModelObject;
class CXmlCollectionBase;
}  // namespace RkXmlLib16

namespace RkXmlLib16Data {

using RkXmlLib16::CWhitespaceUtils;
using RkXmlLib16::ItemType;

struct ClassModel;
struct SchemaIndex;
struct SchemaModel;
class CAttributeInfoPrimitive;
class CModelClass;
class CSimpleType;

// A borrowed array.
template <class T>
class Span {
 public:
  constexpr Span() noexcept = default;
  template <std::size_t kCount>
  constexpr Span(const T (&items)[kCount]) noexcept : m_items(items), m_count(kCount) {}
  constexpr Span(const T* items, std::size_t count) noexcept : m_items(items), m_count(count) {}
  constexpr const T* begin() const noexcept { return m_items; }
  constexpr const T* end() const noexcept { return m_items + m_count; }
  constexpr std::size_t size() const noexcept { return m_count; }
  constexpr bool empty() const noexcept { return m_count == 0; }
  constexpr const T& operator[](std::size_t index) const noexcept { return m_items[index]; }

 private:
  const T* m_items = nullptr;
  std::size_t m_count = 0;
};

// How values of a simple type are held and restricted. Texts are null and numbers negative for a facet that is not set.
// The functions named after facets return a copy that has the facet.
struct ValueModel {
 private:
  template <class T>
  constexpr ValueModel With(T ValueModel::*member, T value) const noexcept {
    ValueModel copy = *this;
    copy.*member = value;
    return copy;
  }

 public:
  constexpr ValueModel(ItemType item, CWhitespaceUtils::WhitespaceRule rule) noexcept
      : itemType(item), whitespace(rule) {}

  ItemType itemType;
  CWhitespaceUtils::WhitespaceRule whitespace;
  const wchar_t* pattern = nullptr;  // an XSD regular expression
  long length = -1;
  long minLength = -1;
  long maxLength = -1;
  const wchar_t* minInclusive = nullptr;
  const wchar_t* maxInclusive = nullptr;
  const wchar_t* minExclusive = nullptr;
  const wchar_t* maxExclusive = nullptr;
  long totalDigits = -1;
  long fractionDigits = -1;
  Span<const wchar_t*> enumeration;  // the texts of an enumeration, the first one for the number 0
  // The same where the property holds the text itself; borrowed.
  const std::unordered_set<std::wstring_view>* texts = nullptr;
  const CSimpleType* type = nullptr;  // the whole type, where more is to be checked; borrowed
  bool needsCheck = false;            // what the members above let pass must be checked by the type
  bool holdsQNames = false;           // the prefixes in the text have to stay declared

  constexpr ValueModel Pattern(const wchar_t* value) const noexcept { return With(&ValueModel::pattern, value); }
  constexpr ValueModel Length(long value) const noexcept { return With(&ValueModel::length, value); }
  constexpr ValueModel MinLength(long value) const noexcept { return With(&ValueModel::minLength, value); }
  constexpr ValueModel MaxLength(long value) const noexcept { return With(&ValueModel::maxLength, value); }
  constexpr ValueModel MinInclusive(const wchar_t* value) const noexcept {
    return With(&ValueModel::minInclusive, value);
  }
  constexpr ValueModel MaxInclusive(const wchar_t* value) const noexcept {
    return With(&ValueModel::maxInclusive, value);
  }
  constexpr ValueModel MinExclusive(const wchar_t* value) const noexcept {
    return With(&ValueModel::minExclusive, value);
  }
  constexpr ValueModel MaxExclusive(const wchar_t* value) const noexcept {
    return With(&ValueModel::maxExclusive, value);
  }
  constexpr ValueModel TotalDigits(long value) const noexcept { return With(&ValueModel::totalDigits, value); }
  constexpr ValueModel FractionDigits(long value) const noexcept { return With(&ValueModel::fractionDigits, value); }
  constexpr ValueModel Enumeration(Span<const wchar_t*> value) const noexcept {
    return With(&ValueModel::enumeration, value);
  }
  constexpr ValueModel Type(const CSimpleType* value) const noexcept { return With(&ValueModel::type, value); }
  constexpr ValueModel Checked() const noexcept { return With(&ValueModel::needsCheck, true); }
  constexpr ValueModel QNames() const noexcept { return With(&ValueModel::holdsQNames, true); }
};

// A namespace binding, for values that hold prefixes.
struct PrefixModel {
  const wchar_t* prefix;
  const wchar_t* namespaceUri;
};

// The value that an empty element or a missing attribute stands for.
struct DefaultModel {
  const wchar_t* text = nullptr;  // lexical form, white space normalized; null for none
  bool isFixed = false;
  Span<PrefixModel> prefixes{};  // of QName and NOTATION
};

// xs:any or xs:anyAttribute.
struct WildcardModel {
  enum class Allowed { Any, Not, Listed };
  enum class Process { Strict, Lax, Skip };

  Allowed allowed = Allowed::Any;
  Process process = Process::Strict;
  Span<const wchar_t*> namespaces{};  // of Listed those that are allowed, of Not the one that is not
  bool allowsAbsent = false;          // of Not: elements without a namespace too
  const wchar_t* written = L"";       // the constraint in the schema, for messages
  const wchar_t* targetNamespace = L"";

  RKXML_EXPORT bool Allows(std::wstring_view namespaceUri) const noexcept;
};

enum DerivationMethod : unsigned { Derivation_Extension = 1, Derivation_Restriction = 2 };

// An element declaration. Its type is `object` for a class, `simple` for a simple type.
struct ElementModel {
  const wchar_t* name = L"";
  const wchar_t* namespaceUri = L"";
  const ClassModel* object = nullptr;
  const CSimpleType* simple = nullptr;
  DefaultModel value{};
  unsigned block = 0;  // DerivationMethod
  bool isNillable = false;
  bool isAbstract = false;

  bool HasDefault() const noexcept { return value.text != nullptr; }
};

// One child element, group or wildcard of a class.
struct MemberModel : ElementModel {
  enum class Kind {
    Value,
    Object,
    AbstractObject,  // `object` or one derived from it, as xsi:type says
    InlineGroup,     // `object` has no element of its own
    Wildcard
  };
  enum class Cardinality { Mandatory, Optional, Collection };
  using NewCollection = RkXmlLib16::CXmlCollectionBase* (*)(const MemberModel&);

  Kind kind = Kind::Value;
  Cardinality cardinality = Cardinality::Mandatory;
  int property = 0;
  const ValueModel* values = nullptr;       // of a Value
  const WildcardModel* wildcard = nullptr;  // of a Wildcard
  int minOccurs = 1;
  int maxOccurs = 1;                      // -1: unbounded
  bool stopsAtMaximum = false;            // a collection that leaves further elements to the records behind it
  bool isRequired = true;                 // a mandatory group that must consume something
  NewCollection newCollection = nullptr;  // of repeated objects

  constexpr MemberModel() noexcept = default;
  constexpr MemberModel(Kind memberKind, int number, const wchar_t* elementName, const wchar_t* uri) noexcept
      : kind(memberKind), property(number) {
    name = elementName;
    namespaceUri = uri;
  }
  constexpr bool IsCollection() const noexcept { return cardinality == Cardinality::Collection; }

  // Return a copy with the property named.
  constexpr MemberModel Optional() const noexcept {
    MemberModel copy = *this;
    copy.cardinality = Cardinality::Optional;
    copy.minOccurs = 0;
    return copy;
  }
  constexpr MemberModel Repeated(int minimum, int maximum, bool stops = false) const noexcept {
    MemberModel copy = *this;
    copy.cardinality = Cardinality::Collection;
    copy.minOccurs = minimum;
    copy.maxOccurs = maximum;
    copy.stopsAtMaximum = stops;
    return copy;
  }
  constexpr MemberModel Nillable() const noexcept {
    MemberModel copy = *this;
    copy.isNillable = true;
    return copy;
  }
  constexpr MemberModel NotRequired() const noexcept {
    MemberModel copy = *this;
    copy.isRequired = false;
    return copy;
  }
  constexpr MemberModel Block(unsigned methods) const noexcept {
    MemberModel copy = *this;
    copy.block = methods;
    return copy;
  }
  constexpr MemberModel Simple(const CSimpleType* type) const noexcept {
    MemberModel copy = *this;
    copy.simple = type;
    return copy;
  }
  constexpr MemberModel Make(NewCollection function) const noexcept {
    MemberModel copy = *this;
    copy.newCollection = function;
    return copy;
  }
  constexpr MemberModel Default(const wchar_t* text) const noexcept { return WithDefault({text, false, {}}); }
  constexpr MemberModel Fixed(const wchar_t* text, Span<PrefixModel> prefixes = {}) const noexcept {
    return WithDefault({text, true, prefixes});
  }

 private:
  constexpr MemberModel WithDefault(DefaultModel text) const noexcept {
    MemberModel copy = *this;
    copy.value = text;
    return copy;
  }
};

constexpr MemberModel ValueMember(int property, const wchar_t* name, const wchar_t* uri,
                                  const ValueModel& values) noexcept {
  MemberModel member(MemberModel::Kind::Value, property, name, uri);
  member.values = &values;
  member.simple = values.type;
  return member;
}
constexpr MemberModel ObjectMember(int property, const wchar_t* name, const wchar_t* uri,
                                   const ClassModel& object) noexcept {
  MemberModel member(MemberModel::Kind::Object, property, name, uri);
  member.object = &object;
  return member;
}
constexpr MemberModel AbstractMember(int property, const wchar_t* name, const wchar_t* uri,
                                     const ClassModel& object) noexcept {
  MemberModel member(MemberModel::Kind::AbstractObject, property, name, uri);
  member.object = &object;
  return member;
}
constexpr MemberModel GroupMember(int property, const wchar_t* name, const wchar_t* uri,
                                  const ClassModel& object) noexcept {
  MemberModel member(MemberModel::Kind::InlineGroup, property, name, uri);
  member.object = &object;
  return member;
}
constexpr MemberModel WildcardMember(int property, const WildcardModel& wildcard) noexcept {
  MemberModel member(MemberModel::Kind::Wildcard, property, L"AnyElement", wildcard.targetNamespace);
  member.wildcard = &wildcard;
  return member;
}

struct AttributeModel {
  constexpr AttributeModel(int number, const wchar_t* attributeName, const wchar_t* uri,
                           const ValueModel& model) noexcept
      : name(attributeName), namespaceUri(uri), property(number), values(&model) {}

  const wchar_t* name;
  const wchar_t* namespaceUri;
  int property;
  const ValueModel* values;
  bool isOptional = true;
  DefaultModel value{};  // the property begins with it

  constexpr AttributeModel Required() const noexcept {
    AttributeModel copy = *this;
    copy.isOptional = false;
    return copy;
  }
  constexpr AttributeModel Default(const wchar_t* text) const noexcept {
    AttributeModel copy = *this;
    copy.value = {text, false, {}};
    return copy;
  }
  constexpr AttributeModel Fixed(const wchar_t* text, Span<PrefixModel> prefixes = {}) const noexcept {
    AttributeModel copy = *this;
    copy.value = {text, true, prefixes};
    return copy;
  }
};

// The content of ClassModel that is known when it is made.
struct ClassData {
  using New = RkXmlLib16::CModelObject* (*)(const ClassModel&);

  constexpr ClassData(const wchar_t* typeName, const wchar_t* uri, RkXmlLib16::XmlElementGroupType groupType,
                      New newObject) noexcept
      : name(typeName), namespaceUri(uri), group(groupType), create(newObject) {}

  const wchar_t* name;  // of the type, as xsi:type names it; empty for anonymous types and groups
  const wchar_t* namespaceUri;
  RkXmlLib16::XmlElementGroupType group;
  New create;  // null for a type that is abstract
  RkXmlLib16::XmlElementType elementType = RkXmlLib16::XmlElementType_Element;
  const SchemaModel* schema = nullptr;
  const ClassModel* base = nullptr;
  unsigned derivation = Derivation_Extension;  // from the base
  unsigned block = 0;                          // methods by which derived types must not stand for this one
  const CSimpleType* simple = nullptr;         // of a class that stands for a simple type
  const ElementModel* element = nullptr;       // that an object made by the application stands for
  Span<MemberModel> members{};
  Span<AttributeModel> attributes{};
  const WildcardModel* attributeWildcard = nullptr;
  int attributeWildcardProperty = -1;
  const ValueModel* text = nullptr;
  int textProperty = -1;
  int propertyCount = 0;
  bool strictAttributes = true;
  bool contentMayBeEmpty = false;
  bool isAbstract = false;
  bool isMixed = false;
  bool isAnyType = false;

  constexpr bool IsInline() const noexcept { return elementType == RkXmlLib16::XmlElementType_InlineGroup; }
};

// One class: its data, and what the library makes of them when the first object needs it.
struct ClassModel : ClassData {
  constexpr ClassModel(const ClassData& data) noexcept : ClassData(data) {}
  ClassModel(const ClassModel&) = delete;
  ClassModel& operator=(const ClassModel&) = delete;
  RKXML_EXPORT ~ClassModel();

  // Makes the records, unless they are there. Threads may call it together.
  const CModelClass& Require() const {
    const CModelClass* const known = m_made.load(std::memory_order_acquire);
    return known != nullptr ? *known : Make();
  }

 private:
  RKXML_EXPORT const CModelClass& Make() const;

  mutable std::atomic<const CModelClass*> m_made{nullptr};
};

// The classes, types and elements that documents may name.
struct SchemaModel {
  Span<const ClassModel*> classes{};     // the named ones
  Span<const ElementModel*> elements{};  // the global ones
  Span<AttributeModel> attributes{};     // the global ones
  Span<const CSimpleType*> simpleTypes{};

  mutable std::atomic<const SchemaIndex*> index{nullptr};  // of their names; the library makes it at first use

  RKXML_EXPORT ~SchemaModel();
};

}  // namespace RkXmlLib16Data

#endif
