// What classes hold the documents of a schema: for each class its members in the order of the records
// (CElementInfo..., CAttributeInfo...), with kinds, names, facets, defaults and factories. Plain data without C++
// names. Objects without classes run it, a class generator prints it. docs/schema.md tells the rule for each component.
#ifndef RKXMLLIB16_SCHEMA_BIND_BINDING_H
#define RKXMLLIB16_SCHEMA_BIND_BINDING_H

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "RkXmlLib16/base/Enumerations.h"
#include "RkXmlLib16/facets/PrimitiveRestrictions.h"
#include "RkXmlLib16/types/Whitespace.h"
#include "schema/components/Components.h"
#include "schema/components/Diagnostic.h"
#include "schema/components/SchemaSet.h"

namespace RkXmlSchema {

struct ClassBinding;

// How a value of a simple type is held; one for each simple type in use.
struct ValueBinding {
  // Primitive: a value of `itemType`, which `facets` restrict.
  // Enumeration: one of the texts of `type->facets.enumeration`. Only types of the string family; an enumerated number
  // or date stays a Primitive with `needsCheck`.
  // Text: a list, a union, a QName or NOTATION, xs:anySimpleType, or a number, date or boolean with a pattern; held as
  // the text, white space normalized.
  enum class Kind { Primitive, Enumeration, Text };

  const SimpleTypeDefinition* type = nullptr;
  Kind kind = Kind::Primitive;
  RkXmlLib16::ItemType itemType = RkXmlLib16::ItemType_string;  // ItemType_string for Enumeration and Text
  RkXmlLib16::CWhitespaceUtils::WhitespaceRule whitespace = RkXmlLib16::CWhitespaceUtils::preserve;
  RkXmlLib16::CPrimitiveRestrictions facets;
  // Whether `kind`, `itemType` and `facets` let pass what the type forbids, so that the text must be checked when it is
  // read: items of lists, members of unions, enumerated numbers, patterns of numbers and dates. What the value types
  // are laxer in by nature does not count.
  bool needsCheck = false;
  bool holdsQNames = false;  // the prefixes in the text have to stay declared
};

// The value that an empty element or a missing attribute stands for, in lexical form.
struct DefaultBinding {
  bool exists = false;
  bool isFixed = false;  // no other value is valid
  std::wstring text;     // white space normalized
  const ValueConstraint* constraint = nullptr;
};

// One child element, group or wildcard of a class, which one CElementInfo record describes.
struct MemberBinding {
  enum class Kind {
    Value,           // Prim record: a Primitive or Text value
    Enumeration,     // Enum record
    Object,          // Cls record: an element of its own of the class `object`
    AbstractObject,  // AbsCls record: `object` or one of its derived classes, as xsi:type says
    InlineGroup,     // Cls record of XmlElementType_InlineGroup: `object` has no element of its own
    Wildcard         // Untpd record, called "AnyElement"
  };
  enum class Cardinality { Mandatory, Optional, Collection };

  Kind kind = Kind::Value;
  Cardinality cardinality = Cardinality::Mandatory;
  // The name of the record: the element's; of an inline group the name of its first element, for messages;
  // "AnyElement" for a wildcard.
  std::wstring name;
  std::wstring namespaceUri;
  int property = 0;
  // What the member stands for. A group that holds the members of a substitution group has `element`, the head, too.
  const Particle* particle = nullptr;
  const ElementDeclaration* element = nullptr;
  const Wildcard* wildcard = nullptr;

  const ValueBinding* value = nullptr;   // of Value and Enumeration
  DefaultBinding defaultValue;           // of the element declaration, whatever the kind
  bool isNillable = false;               // of the element declaration
  const ClassBinding* object = nullptr;  // of Object, AbstractObject, InlineGroup

  // Of a collection, as the collection is constructed; -1 is unbounded.
  int minOccurs = 1;
  int maxOccurs = 1;
  // The collection must leave elements beyond the maximum to the records that follow it.
  bool stopsAtMaximum = false;
  // Of a mandatory inline group: whether it must consume something, the last argument of ...ClsMnd.
  bool isRequired = true;

  bool IsCollection() const noexcept { return cardinality == Cardinality::Collection; }
};

// One attribute, which one CAttributeInfoPrimitive or CAttributeInfoEnum record describes.
struct AttributeBinding {
  std::wstring name;
  std::wstring namespaceUri;
  int property = 0;
  bool isOptional = true;
  const AttributeUse* use = nullptr;
  const ValueBinding* value = nullptr;
  DefaultBinding defaultValue;  // the property begins with it

  bool IsEnumeration() const noexcept { return value->kind == ValueBinding::Kind::Enumeration; }
};

// One class. Properties are numbered from 0 to propertyCount - 1: those of the base class first, where its members are
// inherited, then attributes, attribute wildcard, members and text of its own.
struct ClassBinding {
  enum class Kind {
    ComplexType,       // `type`, or the anonymous type of `type->ownerElement`
    SimpleType,        // an element of a simple type that is an object: the root, nillable, or abstract
    Group,             // an inline group: a nested, repeated or optional model group of `owner`, in `particle`
    SubstitutionGroup  // an inline choice of the elements that may stand for `element`
  };

  Kind kind = Kind::ComplexType;
  std::size_t index = 0;  // in CBinding::GetClasses()
  const TypeDefinition* type = nullptr;
  const ElementDeclaration* element = nullptr;
  const Particle* particle = nullptr;
  const ClassBinding* owner = nullptr;

  // The arguments of CParentElementInfo.
  RkXmlLib16::XmlElementGroupType group = RkXmlLib16::XmlElementGroupType_Sequence;
  RkXmlLib16::XmlElementType elementType = RkXmlLib16::XmlElementType_Element;
  QName typeName;  // as xsi:type names it; the local name is empty for anonymous types and groups
  bool strictAttributes = true;
  bool contentMayBeEmpty = false;
  int textProperty = -1;               // simple content, or the text of mixed content
  const ValueBinding* text = nullptr;  // how that text is held; the plain string for mixed content

  bool isAbstract = false;
  bool isMixed = false;
  bool isNillable = false;  // some element of this class, or of a class that it is derived from, is nillable
  // A simple type that no element has: only xsi:type may name it, on an element of xs:anyType or xs:anySimpleType or
  // the root.
  bool onlyByTypeName = false;
  bool isEmptiable = false;  // a group: whether it may consume nothing

  std::vector<AttributeBinding> attributes;
  int attributeWildcardProperty = -1;
  const Wildcard* attributeWildcard = nullptr;
  std::vector<MemberBinding> members;
  int propertyCount = 0;

  // The class of the base type; null when that is xs:anyType or simple. The first `inheritedMembers` members and
  // `inheritedAttributes` attributes are the base's own, with the same properties; other members were restricted.
  const ClassBinding* base = nullptr;
  std::size_t inheritedMembers = 0;
  std::size_t inheritedAttributes = 0;

  bool IsAnyType() const noexcept { return type != nullptr && type->IsAnyType(); }
  bool IsInline() const noexcept { return elementType == RkXmlLib16::XmlElementType_InlineGroup; }
  // kExtension and kRestriction, as far as they are used on the way from the type of the base class, or from xs:anyType
  // where there is none.
  DerivationSet GetDerivation() const noexcept;
};

// A global element and the class of its document.
struct RootBinding {
  const ElementDeclaration* element = nullptr;
  const ClassBinding* object = nullptr;
};

// The classes of a schema set, which must be resolved without errors and outlive the binding. Made at once, never
// changed: threads share it.
class CBinding {
 public:
  explicit CBinding(const CSchemaSet& schemas);
  CBinding(const CBinding&) = delete;
  CBinding& operator=(const CBinding&) = delete;
  ~CBinding();

  const CSchemaSet& GetSchemas() const noexcept;
  // In the order of the types in the documents; the groups of a class follow it. Classes of types that the schema only
  // imports and built-in classes come where they are first used.
  const std::vector<std::unique_ptr<ClassBinding>>& GetClasses() const noexcept;
  const std::vector<RootBinding>& GetRoots() const noexcept;  // of all global elements, abstract ones too

  // Null when there is none.
  const ClassBinding* FindClass(const TypeDefinition* type) const;
  const RootBinding* FindRoot(const QName& element) const;

  // What the records do not check, each with its place: identity constraints, notations.
  const std::vector<Diagnostic>& GetUnchecked() const noexcept;
  // What they do not keep: positions of mixed text, the order within an all group.
  const std::vector<Diagnostic>& GetUnkept() const noexcept;

 private:
  class Builder;
  struct State;
  std::unique_ptr<State> m_state;
};

}  // namespace RkXmlSchema

#endif
