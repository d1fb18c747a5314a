#ifndef RKXMLLIB16_SCHEMA_COMPONENTS_INTERNAL_BUILDER_H
#define RKXMLLIB16_SCHEMA_COMPONENTS_INTERNAL_BUILDER_H

#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "schema/components/internal/ContentModel.h"
#include "schema/components/internal/State.h"

namespace RkXmlSchema {

// The built-in types, into an empty set.
void AddBuiltInTypes(CSchemaSet::State& state);

// Makes the components of all documents that were read. First it makes every component and links it to those that it
// refers to, whatever their state. Then it derives, base types first, what follows from others: facets, content models,
// attribute uses. Walks along references are loops; recursion follows the elements of a document only.
class CBuilder {
 public:
  explicit CBuilder(CSchemaSet::State& state) : m_state(state), m_models(state) {}
  void Build();

 private:
  using Node = const CXmlElement*;

  struct SimpleWork {
    SimpleTypeDefinition* type = nullptr;
    Node node = nullptr;
    DocumentInstance* document = nullptr;
    std::vector<Node> facetNodes;
  };

  struct AttributeItem {
    Node node = nullptr;
    AttributeUse* use = nullptr;
    AttributeGroupDefinition* group = nullptr;
    bool isProhibited = false;
    QName name;  // of a use
  };

  struct AttributeItems {
    std::vector<AttributeItem> items;
    Wildcard* wildcard = nullptr;
  };

  struct ComplexWork {
    ComplexTypeDefinition* type = nullptr;
    Node node = nullptr;
    DocumentInstance* document = nullptr;
    Node derivation = nullptr;  // xs:restriction or xs:extension; null for the short form
    bool isSimpleContent = false;
    bool isMixed = false;
    Particle* particle = nullptr;
    SimpleTypeDefinition* innerType = nullptr;
    std::vector<Node> facetNodes;
    AttributeItems attributes;
  };

  struct GroupWork {
    AttributeGroupDefinition* group = nullptr;
    Node node = nullptr;
    DocumentInstance* document = nullptr;
    Global* global = nullptr;
    AttributeItems attributes;
  };

  struct PendingElement {
    ElementDeclaration* element;
    Node node;
    DocumentInstance* document;
  };

  struct PendingAttribute {
    AttributeDeclaration* attribute;
    AttributeUse* use;
    Node node;
    DocumentInstance* document;
  };

  // Names and references.
  void CollectGlobals();
  void AddGlobal(Node node, DocumentInstance& document);
  void ApplyRedefine(const RedefineStatement& statement);
  void MakeShell(Global& global);
  void List(Global& global);
  std::optional<QName> ReadQName(Node node, std::wstring_view text);
  Component* Find(Space space, Node node, std::wstring_view text);
  TypeDefinition* FindTypeDefinition(Node node, std::wstring_view text);
  SimpleTypeDefinition* FindSimpleType(Node node, std::wstring_view text);
  SourceLocation Here(Node node) const { return LocationOf(*m_document, node); }
  void Error(Node node, std::wstring message) { m_state.reporter.Error(Here(node), std::move(message)); }
  void Describe(Component& component, Node node);
  const NamespaceBindings* Bindings(Node node);

  // From documents.
  void Fill(Global& global);
  void FillElement(ElementDeclaration& element, Node node, bool isGlobal);
  void FillAttribute(AttributeDeclaration& attribute, Node node);
  void ReadValue(ValueConstraint& value, Node node);
  void FillSimpleType(SimpleTypeDefinition& type, Node node);
  void FillRestriction(SimpleWork& work, Node method);
  void FillList(SimpleTypeDefinition& type, Node method);
  void FillUnion(SimpleTypeDefinition& type, Node method);
  void FillComplexType(ComplexTypeDefinition& type, Node node);
  // Whether the type at hand stands in xs:redefine.
  bool IsRedefined(const TypeDefinition& type) const;
  // What it redefines; null, with an error, when `base` is another name.
  Component* FindRedefined(Node node, const std::wstring& base, const wchar_t* refusal);
  void FillNotation(NotationDeclaration& notation, Node node);
  SimpleTypeDefinition* MakeSimpleType(Node node);
  // An anonymous one of another type; null for null.
  SimpleTypeDefinition* MakeInnerType(Node node, TypeDefinition& owner);
  ComplexTypeDefinition* MakeComplexType(Node node);
  void ReadAttributes(AttributeItems& items, Node first);
  AttributeItem ReadAttributeUse(Node node);
  Wildcard* ReadWildcard(Node node);
  Particle* ReadParticle(Node node);
  ModelGroup* ReadModelGroup(Node node);
  Particle* MakeParticle(Node node);
  void ReadIdentityConstraints(ElementDeclaration& element, Node node);

  // From each other.
  void LinkSubstitutionGroups();
  void CheckGroupCycles();
  void DeriveAttributeGroups();
  void DeriveAttributeGroup(GroupWork& work);
  void DeriveTypes();
  void BreakCircle(TypeDefinition& type, const TypeDefinition& need);
  void Derive(TypeDefinition& type);
  void DeriveSimple(SimpleWork& work);
  void DeriveRestriction(SimpleWork& work);
  void ApplyFacets(SimpleTypeDefinition& type, const std::vector<Node>& nodes);
  void ApplyPattern(SimpleTypeDefinition& type, PatternStep& step, Node node);
  void ApplyEnumeration(SimpleTypeDefinition& type, const SimpleTypeDefinition& base, Node node);
  void ApplyCount(SimpleTypeDefinition& type, std::optional<CountFacet> Facets::*facet, int direction, Node node);
  void ApplyBound(SimpleTypeDefinition& type, std::optional<BoundFacet> Facets::*facet, Node node);
  void CheckFacets(const SimpleTypeDefinition& type, Node node);
  void FinishEnumeration(SimpleTypeDefinition& type);
  void DeriveComplex(ComplexWork& work);
  void DeriveSimpleContent(ComplexWork& work);
  void DeriveComplexContent(ComplexWork& work);
  void DeriveAttributes(ComplexWork& work);
  void RestrictAttributes(ComplexWork& work, const ComplexTypeDefinition& base);
  void Collect(const AttributeItems& items, std::vector<const AttributeUse*>& uses, Wildcard*& wildcard, Node node,
               std::vector<QName>* prohibited);
  void CheckUses(const std::vector<const AttributeUse*>& uses, Node node, const std::wstring& owner);
  void FinishValues();
  void FinishValue(ValueConstraint& value, const SimpleTypeDefinition& type, Node node);
  void FinishElement(const PendingElement& pending);
  void FinishSubstitutionGroups();
  void CheckRedefinitions();
  void LinkKeyReferences();

  CSchemaSet::State& m_state;
  CContentModels m_models;
  DocumentInstance* m_document = nullptr;  // whose elements are being read
  Global* m_global = nullptr;              // which of its components
  std::deque<SimpleWork> m_simpleWorks;
  std::deque<ComplexWork> m_complexWorks;
  std::deque<GroupWork> m_groupWorks;
  std::unordered_map<const TypeDefinition*, SimpleWork*> m_simpleWorkOf;
  std::unordered_map<const TypeDefinition*, ComplexWork*> m_complexWorkOf;
  std::unordered_map<const AttributeGroupDefinition*, GroupWork*> m_groupWorkOf;
  std::vector<PendingElement> m_elements;
  std::vector<PendingAttribute> m_attributes;
  struct KeyReference {
    IdentityConstraintDefinition* constraint;
    Node node;
    DocumentInstance* document;
  };
  std::vector<KeyReference> m_keyReferences;
  std::unordered_map<const CXmlDocument*, const NamespaceBindings*> m_bindings;
  std::size_t m_patternCharacters = 0;
  std::size_t m_attributeUseCount = 0;
};

// Whether `derived` is validly derived from `base` by other methods than `excluded` (XML Schema: Type Derivation OK).
bool IsDerivationOk(const TypeDefinition& derived, const TypeDefinition& base, DerivationSet excluded);
// Whether an element of the one declaration may stand for the head (Substitution Group OK), types and blocks
// considered.
bool IsSubstitutable(const ElementDeclaration& element, const ElementDeclaration& head);
// Wildcard Subset.
bool IsSubset(const Wildcard& sub, const Wildcard& super);
// Whether some namespace is allowed by both.
bool Overlap(const Wildcard& a, const Wildcard& b);
// False when the result cannot be expressed.
bool Intersect(Wildcard& a, const Wildcard& b);
bool Unite(Wildcard& a, const Wildcard& b);

}  // namespace RkXmlSchema

#endif
