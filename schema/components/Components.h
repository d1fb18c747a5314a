// The components of XML Schema Part 1: Structures (second edition), section 3, under their names there. They are plain
// data: a schema set builds, owns and links them, and they are not changed afterwards. All pointers between components
// are borrowed from the set.
#ifndef RKXMLLIB16_SCHEMA_COMPONENTS_COMPONENTS_H
#define RKXMLLIB16_SCHEMA_COMPONENTS_COMPONENTS_H

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "schema/components/Diagnostic.h"
#include "schema/components/Facets.h"
#include "schema/components/QName.h"

namespace RkXmlSchema {

struct AttributeGroupDefinition;
struct ComplexTypeDefinition;
struct ElementDeclaration;
struct ModelGroup;
struct ModelGroupDefinition;
struct SimpleTypeDefinition;
struct Wildcard;

// What every component has. The documentation is the text of all xs:documentation elements of its annotation.
struct Component {
  SourceLocation location;
  std::wstring documentation;
};

// Bits of a set of derivation methods, as {final}, {prohibited substitutions} and {disallowed substitutions} hold it.
using DerivationSet = unsigned;
enum Derivation : DerivationSet {
  kExtension = 1,
  kRestriction = 2,
  kSubstitution = 4,
  kList = 8,
  kUnion = 16,
};

enum class ValueConstraintKind { None, Default, Fixed };

// A default or fixed value: the text as written in the schema and as the white space facet of the type leaves it.
struct ValueConstraint {
  ValueConstraintKind kind = ValueConstraintKind::None;
  std::wstring text;
  std::wstring normalized;
  // The namespace bindings at the constraint, for types of QName and NOTATION; null for other types.
  const NamespaceBindings* namespaces = nullptr;

  explicit operator bool() const noexcept { return kind != ValueConstraintKind::None; }
};

// ---- Type definitions
// ------------------------------------------------------------------------------------------------

struct TypeDefinition : Component {
  enum class Kind { Simple, Complex };

  Kind kind;
  QName name;  // the local name is empty for an anonymous type, the namespace is the target namespace all the same
  const TypeDefinition* base = nullptr;  // xs:anyType is its own base
  // The method by which it was derived from its base; of a list or union kList or kUnion.
  Derivation derivation = kRestriction;
  DerivationSet final = 0;
  // The types that name this one as their base, in the order of the documents.
  std::vector<const TypeDefinition*> derivedTypes;
  // What an anonymous type stands in: the element or attribute declaration or the type; null for a named type.
  const ElementDeclaration* ownerElement = nullptr;
  const struct AttributeDeclaration* ownerAttribute = nullptr;
  const TypeDefinition* ownerType = nullptr;

  TypeDefinition(const TypeDefinition&) = delete;
  TypeDefinition& operator=(const TypeDefinition&) = delete;

  bool IsAnonymous() const noexcept { return name.localName.empty(); }
  bool IsBuiltIn() const noexcept { return location.file == nullptr; }
  bool IsSimple() const noexcept { return kind == Kind::Simple; }
  bool IsAnyType() const noexcept { return !IsSimple() && base == this; }
  const SimpleTypeDefinition* AsSimple() const noexcept;    // null for a complex type
  const ComplexTypeDefinition* AsComplex() const noexcept;  // null for a simple type
  // Whether this is `other` or derived from it, in any number of steps.
  bool IsDerivedFrom(const TypeDefinition* other) const noexcept;

 protected:
  explicit TypeDefinition(Kind typeKind) : kind(typeKind) {}
  ~TypeDefinition() = default;
};

using RkXmlLib16::Xsd::Variety;

struct SimpleTypeDefinition : TypeDefinition {
  SimpleTypeDefinition() : TypeDefinition(Kind::Simple) {}

  Variety variety = Variety::Absent;
  // The nearest built-in type that this type is or is derived from; of a list or union that a schema defines,
  // AnySimpleType.
  BuiltInType builtIn = BuiltInType::AnySimpleType;
  const SimpleTypeDefinition* primitive = nullptr;       // of an atomic type
  const SimpleTypeDefinition* itemType = nullptr;        // of a list
  std::vector<const SimpleTypeDefinition*> memberTypes;  // of a union, as written: a member may be a union again
  Facets facets;                                         // all that hold for a value, those of the base types included
  Facets ownFacets;                                      // those that the definition itself states

  // Whether values have to be read with namespace bindings: QName, NOTATION, or a list or union with such a part.
  bool holdsQNames = false;
};

struct Particle;
struct AttributeUse;

enum class ContentType { Empty, Simple, ElementOnly, Mixed };

struct ComplexTypeDefinition : TypeDefinition {
  ComplexTypeDefinition() : TypeDefinition(Kind::Complex) {}

  bool isAbstract = false;
  DerivationSet prohibitedSubstitutions = 0;  // kExtension, kRestriction
  ContentType contentType = ContentType::Empty;
  const SimpleTypeDefinition* simpleContentType = nullptr;  // for ContentType::Simple
  // The whole content model of element-only or mixed content; null when it allows no element. An extension of a type
  // with elements has a sequence of the base's particle and `ownParticle`.
  const Particle* particle = nullptr;
  const Particle* ownParticle = nullptr;  // what the definition itself writes down; null for none
  // All attribute uses: those of the base first, then those of attribute groups and attributes as written.
  std::vector<const AttributeUse*> attributeUses;
  std::vector<const AttributeUse*> ownAttributeUses;             // those that the definition itself adds or replaces
  std::vector<QName> prohibitedAttributes;                       // use="prohibited" of the definition itself
  std::vector<const AttributeGroupDefinition*> attributeGroups;  // that the definition itself refers to
  const Wildcard* attributeWildcard = nullptr;

  bool HasElements() const noexcept { return particle != nullptr; }
  bool IsMixed() const noexcept { return contentType == ContentType::Mixed; }
};

// ---- Declarations
// ----------------------------------------------------------------------------------------------------

struct AttributeDeclaration : Component {
  QName name;
  bool isGlobal = false;
  const SimpleTypeDefinition* type = nullptr;
  ValueConstraint value;
};

struct AttributeUse : Component {
  const AttributeDeclaration* declaration = nullptr;
  bool required = false;
  ValueConstraint value;  // of the use, else of the declaration

  const QName& GetName() const noexcept { return declaration->name; }
};

struct AttributeGroupDefinition : Component {
  QName name;
  std::vector<const AttributeUse*> attributeUses;                // those of groups that it refers to included
  std::vector<const AttributeGroupDefinition*> attributeGroups;  // that it refers to itself
  const Wildcard* attributeWildcard = nullptr;
};

enum class IdentityConstraintCategory { Key, KeyRef, Unique };

struct IdentityConstraintDefinition : Component {
  QName name;
  IdentityConstraintCategory category = IdentityConstraintCategory::Unique;
  std::wstring selector;                                        // the XPath as written
  std::vector<std::wstring> fields;                             // the XPaths as written
  const IdentityConstraintDefinition* referencedKey = nullptr;  // of a key reference
  const NamespaceBindings* namespaces = nullptr;                // for the prefixes in the XPaths
};

struct NotationDeclaration : Component {
  QName name;
  std::wstring systemIdentifier;
  std::wstring publicIdentifier;
};

struct ElementDeclaration : Component {
  QName name;
  bool isGlobal = false;
  const TypeDefinition* type = nullptr;
  bool isNillable = false;
  bool isAbstract = false;
  ValueConstraint value;
  DerivationSet disallowedSubstitutions = 0;                         // block: kExtension, kRestriction, kSubstitution
  DerivationSet substitutionGroupExclusions = 0;                     // final: kExtension, kRestriction
  const ElementDeclaration* substitutionGroupAffiliation = nullptr;  // the head
  // Of a head: every other element that may stand for it in a document, in any number of steps and allowed by `block`,
  // in the order of the documents. Abstract elements are left out; whether the head itself is abstract it says itself.
  std::vector<const ElementDeclaration*> substitutionGroup;
  std::vector<const IdentityConstraintDefinition*> identityConstraints;
};

// ---- Content models
// --------------------------------------------------------------------------------------------------

enum class ProcessContents { Strict, Lax, Skip };

// xs:any or xs:anyAttribute.
struct Wildcard : Component {
  enum class Constraint { Any, Not, Enumeration };

  Constraint constraint = Constraint::Any;
  // Of Not, the one namespace that is not allowed (no namespace is neither, unless `allowsAbsent`); of Enumeration
  // those that are, "" for no namespace.
  std::vector<std::wstring> namespaces;
  bool allowsAbsent = false;  // of Not, only after an intersection or union
  ProcessContents processContents = ProcessContents::Strict;
  // The namespace attribute as written ("##any" if absent) and the target namespace that it is read against. Empty for
  // a wildcard that is the intersection or union of others.
  std::wstring written;
  std::wstring targetNamespace;

  bool Allows(std::wstring_view namespaceUri) const noexcept;
};

enum class Compositor { All, Choice, Sequence };

struct ModelGroup : Component {
  Compositor compositor = Compositor::Sequence;
  std::vector<const Particle*> particles;
  const ModelGroupDefinition* definition = nullptr;  // whose model group this is; null for one within a type
};

struct ModelGroupDefinition : Component {
  QName name;
  const ModelGroup* modelGroup = nullptr;  // never null in a usable set
};

inline constexpr std::uint64_t kUnbounded = std::numeric_limits<std::uint64_t>::max();

// An element, group or wildcard in a content model and how often it occurs. Exactly one of the three terms is set. A
// reference to a named group has that group's model group as its term.
struct Particle : Component {
  std::uint64_t minOccurs = 1;
  std::uint64_t maxOccurs = 1;  // kUnbounded for "unbounded"; a larger number than kUnbounded - 1 counts as that
  const ElementDeclaration* element = nullptr;
  const ModelGroup* group = nullptr;
  const Wildcard* wildcard = nullptr;

  bool IsRepeated() const noexcept { return maxOccurs > 1; }
  bool IsOptional() const noexcept { return minOccurs == 0; }
  bool IsGroupReference() const noexcept { return group != nullptr && group->definition != nullptr; }
};

}  // namespace RkXmlSchema

#endif
