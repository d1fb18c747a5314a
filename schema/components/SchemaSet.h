#ifndef RKXMLLIB16_SCHEMA_COMPONENTS_SCHEMASET_H
#define RKXMLLIB16_SCHEMA_COMPONENTS_SCHEMASET_H

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "RkXmlLib16/io/FileName.h"
#include "schema/components/Components.h"

namespace RkXmlSchema {

// How much a schema may ask for. A schema over a limit gets an error "Limit exceeded: ..." and the set is not usable.
struct SchemaLimits {
  std::size_t maxDocuments = 2000;
  std::size_t maxNodes = 4000000;        // elements and attributes of all schema documents
  std::size_t maxElementDepth = 200;     // levels of elements in a schema document
  std::size_t maxDerivationDepth = 200;  // steps from a type to xs:anyType, heads of substitution groups, nested groups
  std::size_t maxContentParticles = 50000;      // of one content model with all named groups written out
  std::size_t maxTotalParticles = 2000000;      // of all content models so
  std::size_t maxAttributeUses = 2000000;       // of all complex types together, inherited ones counted again
  std::size_t maxPatternCharacters = 16000000;  // of all patterns as translated
  std::size_t maxDiagnostics = 1000;            // after which the reading ends
};

struct SchemaOptions {
  SchemaLimits limits;
  // Lines "URL=FILE": the file is read in place of the location. Relative files are relative to the catalog.
  std::wstring catalogFile;
};

// A schema document that was read. One that is included by schemas of several target namespaces stands here once for
// each.
struct SchemaDocument {
  const std::wstring* file = nullptr;
  std::wstring targetNamespace;
};

template <class T>
using ComponentTable = std::unordered_map<QName, const T*, QNameHash>;

// The schema of one or more schema documents and of all that they include, import and redefine (XML Schema Part 1,
// sections 4.2 and 5). It owns the components; they live as long as the set. Not copied; one thread builds it, then any
// number of threads read it.
//
//   CSchemaSet schemas;
//   schemas.AddFile(L"orders.xsd");
//   if (!schemas.Resolve())
//     for (const Diagnostic& d : schemas.GetDiagnostics()) std::wcerr << d.ToString() << L'\n';
//   const ElementDeclaration* order = schemas.FindElement({L"urn:orders", L"order"});
class CSchemaSet {
 public:
  explicit CSchemaSet(SchemaOptions options = {});
  CSchemaSet(const CSchemaSet&) = delete;
  CSchemaSet& operator=(const CSchemaSet&) = delete;
  ~CSchemaSet();

  // Read a schema document and all that it refers to. What is wrong goes to the diagnostics; only std::bad_alloc is
  // thrown. A file that was read already is not read again. Wide names become UTF-8.
  void AddFile(const std::wstring& file);
  void AddFile(const RkXmlLib16::CFileName& file);
  // The same with the bytes of the document; `file` is the name for messages and for what relative locations start
  // from.
  void AddText(std::string_view bytes, const std::wstring& file);
  // Builds and checks the components of all documents; called once, after the last document. False when there are
  // errors: then the components may be incomplete and only the diagnostics should be looked at.
  bool Resolve();

  // In the order of files and lines, once each.
  const std::vector<Diagnostic>& GetDiagnostics() const noexcept;
  bool HasErrors() const noexcept;

  // Null when there is none. Types include the built-in ones.
  const ElementDeclaration* FindElement(const QName& name) const;
  const AttributeDeclaration* FindAttribute(const QName& name) const;
  const TypeDefinition* FindType(const QName& name) const;
  const ModelGroupDefinition* FindModelGroup(const QName& name) const;
  const AttributeGroupDefinition* FindAttributeGroup(const QName& name) const;
  const NotationDeclaration* FindNotation(const QName& name) const;
  const IdentityConstraintDefinition* FindIdentityConstraint(const QName& name) const;

  // The global components in the order of the documents, built-in ones left out.
  const std::vector<const ElementDeclaration*>& GetElements() const noexcept;
  const std::vector<const AttributeDeclaration*>& GetAttributes() const noexcept;
  const std::vector<const TypeDefinition*>& GetTypes() const noexcept;
  const std::vector<const ModelGroupDefinition*>& GetModelGroups() const noexcept;
  const std::vector<const AttributeGroupDefinition*>& GetAttributeGroups() const noexcept;
  const std::vector<const NotationDeclaration*>& GetNotations() const noexcept;
  // Every type of the documents, anonymous ones too.
  const std::vector<const TypeDefinition*>& GetAllTypes() const noexcept;
  const std::vector<SchemaDocument>& GetDocuments() const noexcept;

  const ComplexTypeDefinition* GetAnyType() const noexcept;
  const SimpleTypeDefinition* GetBuiltIn(BuiltInType type) const noexcept;

  struct State;

 private:
  std::unique_ptr<State> m_state;
};

}  // namespace RkXmlSchema

#endif
