#ifndef RKXMLLIB16_SCHEMA_COMPONENTS_INTERNAL_STATE_H
#define RKXMLLIB16_SCHEMA_COMPONENTS_INTERNAL_STATE_H

#include <array>
#include <deque>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "schema/components/SchemaSet.h"
#include "schema/components/internal/Source.h"

namespace RkXmlSchema {

// Ends the reading: the diagnostic is written already.
struct ReadingEnds {};

// The diagnostics, at most so many.
class CReporter {
 public:
  explicit CReporter(std::size_t most) : m_most(most) {}
  void Error(SourceLocation location, std::wstring message) { Add(Severity::Error, location, std::move(message)); }
  void Warning(SourceLocation location, std::wstring message) { Add(Severity::Warning, location, std::move(message)); }
  // "Limit exceeded: ...", and the end of the reading.
  [[noreturn]] void Exceeded(SourceLocation location, const std::wstring& what, std::size_t limit);
  void Sort();

  std::vector<Diagnostic> m_all;
  std::size_t m_errorCount = 0;

 private:
  void Add(Severity severity, SourceLocation location, std::wstring message);

  std::size_t m_most;
};

// The symbol spaces of XML Schema.
enum class Space { Type, Element, Attribute, Group, AttributeGroup, Notation };
inline constexpr std::size_t kSpaceCount = 6;

// A component at the top of a schema document, or within xs:redefine.
struct Global {
  Space space = Space::Type;
  QName name;
  const CXmlElement* node = nullptr;
  DocumentInstance* document = nullptr;
  Global* redefined = nullptr;  // what it redefines
  Component* component = nullptr;
};

struct RedefineStatement {
  const CXmlElement* node;
  DocumentInstance* document;
};

struct CSchemaSet::State {
  explicit State(SchemaOptions setOptions) : options(std::move(setOptions)), reporter(options.limits.maxDiagnostics) {}

  SchemaOptions options;
  CReporter reporter;
  std::map<std::wstring, std::wstring> catalog;
  bool isCatalogRead = false;
  bool hasEnded = false;

  std::map<std::filesystem::path, std::unique_ptr<SourceFile>> files;
  std::deque<DocumentInstance> instances;
  std::map<std::pair<std::wstring, std::wstring>, DocumentInstance*> instanceIndex;  // by file and target namespace
  std::vector<RedefineStatement> redefines;
  std::size_t nodeCount = 0;

  std::deque<Global> globals;
  std::array<std::unordered_map<QName, Global*, QNameHash>, kSpaceCount> index;

  // The components.
  std::deque<SimpleTypeDefinition> simpleTypes;
  std::deque<ComplexTypeDefinition> complexTypes;
  std::deque<ElementDeclaration> elementPool;
  std::deque<AttributeDeclaration> attributePool;
  std::deque<AttributeUse> attributeUses;
  std::deque<AttributeGroupDefinition> attributeGroupPool;
  std::deque<ModelGroup> modelGroups;
  std::deque<ModelGroupDefinition> groupPool;
  std::deque<Particle> particles;
  std::deque<Wildcard> wildcards;
  std::deque<NotationDeclaration> notationPool;
  std::deque<IdentityConstraintDefinition> constraintPool;
  std::deque<NamespaceBindings> bindings;

  std::array<SimpleTypeDefinition*, kBuiltInTypeCount> builtIns{};
  ComplexTypeDefinition* anyType = nullptr;

  ComponentTable<ElementDeclaration> elementTable;
  ComponentTable<AttributeDeclaration> attributeTable;
  ComponentTable<TypeDefinition> typeTable;
  ComponentTable<ModelGroupDefinition> groupTable;
  ComponentTable<AttributeGroupDefinition> attributeGroupTable;
  ComponentTable<NotationDeclaration> notationTable;
  ComponentTable<IdentityConstraintDefinition> constraintTable;
  std::vector<const ElementDeclaration*> elements;
  std::vector<const AttributeDeclaration*> attributes;
  std::vector<const TypeDefinition*> types;
  std::vector<const TypeDefinition*> allTypes;
  std::vector<const ModelGroupDefinition*> groups;
  std::vector<const AttributeGroupDefinition*> attributeGroups;
  std::vector<const NotationDeclaration*> notations;
  std::vector<SchemaDocument> documents;
};

// [name], for messages.
inline std::wstring Bracketed(std::wstring_view text) { return L"[" + std::wstring(text) + L"]"; }
inline std::wstring Bracketed(const QName& name) { return Bracketed(name.ToString()); }

}  // namespace RkXmlSchema

#endif
