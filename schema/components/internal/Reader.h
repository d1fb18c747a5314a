#ifndef RKXMLLIB16_SCHEMA_COMPONENTS_INTERNAL_READER_H
#define RKXMLLIB16_SCHEMA_COMPONENTS_INTERNAL_READER_H

#include <filesystem>
#include <string>
#include <string_view>

#include "schema/components/internal/State.h"

namespace RkXmlSchema {

// Reads schema documents and what they refer to into `state`, one after the other without recursion.
class CSchemaReader {
 public:
  explicit CSchemaReader(CSchemaSet::State& state) : m_state(state) {}

  void ReadFile(const RkXmlLib16::CFileName& file);
  void ReadText(std::string_view bytes, const std::wstring& file);

 private:
  enum class Reference { Include, Import, Redefine };

  SourceFile* Open(const std::filesystem::path& path, SourceLocation from, const std::wstring& written);
  SourceFile* OpenText(std::string_view bytes, const std::filesystem::path& path, SourceLocation from);
  template <class Load>
  SourceFile* Read(const std::filesystem::path& path, SourceLocation from, Load&& load);
  void Adopt(SourceFile& file, SourceLocation from);
  void Follow();
  void FollowReferences(DocumentInstance& document);
  void FollowReference(DocumentInstance& from, const CXmlElement* node, Reference kind);
  SourceFile* Locate(const DocumentInstance& from, const CXmlElement* node, const std::wstring& namespaceUri);
  DocumentInstance* AddInstance(SourceFile& file, const std::wstring& targetNamespace, SourceLocation from);
  void ReadCatalog();

  CSchemaSet::State& m_state;
  std::vector<DocumentInstance*> m_pending;
};

// Checks a document against what XML Schema says of the shape of schema documents (Structures, appendix A).
void CheckSyntax(const SourceFile& file, CReporter& reporter);

DerivationSet ReadDerivationSet(std::wstring_view text, DerivationSet all);

}  // namespace RkXmlSchema

#endif
