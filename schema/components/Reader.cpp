#include <algorithm>
#include <charconv>
#include <filesystem>
#include <fstream>

#include "schema/components/internal/Reader.h"
#include "schema/components/internal/Xsd.h"

namespace RkXmlSchema {

namespace {

namespace fs = std::filesystem;

// The attributes of the xml: namespace (https://www.w3.org/2001/xml.xsd) and of xsi:.
constexpr const char kXmlSchema[] =
    R"(<xs:schema xmlns:xs="http://www.w3.org/2001/XMLSchema" targetNamespace="http://www.w3.org/XML/1998/namespace">
<xs:attribute name="lang"><xs:simpleType><xs:union memberTypes="xs:language"><xs:simpleType>
<xs:restriction base="xs:string"><xs:enumeration value=""/></xs:restriction></xs:simpleType></xs:union></xs:simpleType></xs:attribute>
<xs:attribute name="space"><xs:simpleType><xs:restriction base="xs:NCName"><xs:enumeration value="default"/>
<xs:enumeration value="preserve"/></xs:restriction></xs:simpleType></xs:attribute>
<xs:attribute name="base" type="xs:anyURI"/>
<xs:attribute name="id" type="xs:ID"/>
<xs:attributeGroup name="specialAttrs"><xs:attribute xmlns:xml="http://www.w3.org/XML/1998/namespace" ref="xml:base"/>
<xs:attribute ref="xml:lang"/><xs:attribute ref="xml:space"/><xs:attribute ref="xml:id"/></xs:attributeGroup>
</xs:schema>)";
constexpr const char kInstanceSchema[] =
    R"(<xs:schema xmlns:xs="http://www.w3.org/2001/XMLSchema" targetNamespace="http://www.w3.org/2001/XMLSchema-instance">
<xs:attribute name="nil" type="xs:boolean"/>
<xs:attribute name="type" type="xs:QName"/>
<xs:attribute name="schemaLocation"><xs:simpleType><xs:list itemType="xs:anyURI"/></xs:simpleType></xs:attribute>
<xs:attribute name="noNamespaceSchemaLocation" type="xs:anyURI"/>
</xs:schema>)";

bool IsUrl(std::wstring_view location) {
  const std::size_t colon = location.find(L':');
  return colon != std::wstring_view::npos && location.substr(colon, 3) == L"://";
}

// Names are UTF-8 for the system. The conversions of fs::path itself throw where the locale does not know a character.
fs::path PathOf(std::wstring_view name) { return fs::path(RkXmlLib16::ToUtf8(name)); }
std::wstring NameOf(const fs::path& path) { return RkXmlLib16::FromUtf8(path.native()); }

fs::path Canonical(const fs::path& path) {
  std::error_code error;
  fs::path canonical = fs::weakly_canonical(path, error);
  return error ? path.lexically_normal() : canonical;
}

// Without "file://" and percent escapes, which are bytes of UTF-8.
fs::path FileOfUrl(std::wstring_view location) {
  if (location.substr(0, 7) == L"file://") location.remove_prefix(7);
  const std::string text = RkXmlLib16::ToUtf8(location);
  std::string file;
  for (std::size_t i = 0; i < text.size(); ++i) {
    unsigned char byte = 0;
    if (text[i] == '%' && text.size() - i > 2 &&
        std::from_chars(&text[i + 1], &text[i + 3], byte, 16).ptr == &text[i + 3] && byte != 0) {
      file += static_cast<char>(byte);
      i += 2;
    } else {
      file += text[i];
    }
  }
  return file;
}

std::size_t CountNodes(const CXmlElement* root) {
  std::size_t count = 0;
  for (const CXmlElement* at = root; at != nullptr;) {
    count += 1 + at->GetAttributes().size();
    const CXmlElement* next = at->GetFirstElement();
    while (next == nullptr && at != root && at != nullptr) {
      next = at->GetNextSiblingElement();
      if (next == nullptr) at = at->GetParentElement();
    }
    at = next;
  }
  return count;
}

}  // namespace

void CSchemaReader::ReadCatalog() {
  if (m_state.isCatalogRead) return;
  m_state.isCatalogRead = true;
  const std::wstring& name = m_state.options.catalogFile;
  if (name.empty()) return;
  std::ifstream stream{PathOf(name)};
  if (!stream) {
    m_state.reporter.Error({}, L"The catalog " + Bracketed(name) + L" cannot be opened.");
    return;
  }
  const fs::path folder = PathOf(name).parent_path();
  std::string line;
  while (std::getline(stream, line)) {
    const std::wstring text = Collapsed(RkXmlLib16::CEncoder::Utf8ToUnicode(line));
    const std::size_t equals = text.rfind(L'=');
    if (text.empty() || text[0] == L'#' || equals == std::wstring::npos) continue;
    m_state.catalog[Collapsed(std::wstring_view(text).substr(0, equals))] =
        NameOf(folder / PathOf(Collapsed(std::wstring_view(text).substr(equals + 1))));
  }
  if (stream.bad()) m_state.reporter.Error({}, L"The catalog " + Bracketed(name) + L" cannot be read.");
}

void CSchemaReader::ReadFile(const RkXmlLib16::CFileName& file) {
  ReadCatalog();
  SourceFile* const source = Open(fs::path(file.GetBytes()), {}, file.GetText());
  if (source == nullptr) return;
  AddInstance(*source, TokenOf(source->root, L"targetNamespace"), {});
  Follow();
}

void CSchemaReader::ReadText(std::string_view bytes, const std::wstring& file) {
  ReadCatalog();
  SourceFile* const source = OpenText(bytes, Canonical(PathOf(file)), {});
  if (source == nullptr) return;
  AddInstance(*source, TokenOf(source->root, L"targetNamespace"), {});
  Follow();
}

SourceFile* CSchemaReader::Open(const std::filesystem::path& path, SourceLocation from, const std::wstring& written) {
  const fs::path canonical = Canonical(path);
  const auto found = m_state.files.find(canonical);
  if (found != m_state.files.end()) return found->second->root != nullptr ? found->second.get() : nullptr;
  std::error_code error;
  if (!fs::is_regular_file(canonical, error)) {
    // A location is a hint, but what the caller names has to be there.
    const std::wstring message = L"The schema document " + Bracketed(written) + L" cannot be opened.";
    if (from.file == nullptr) {
      m_state.reporter.Error(from, message);
    } else {
      m_state.reporter.Warning(from, message);
    }
    return nullptr;
  }
  return Read(canonical, from, [&](CXmlDocument& document) { document.Load(canonical); });
}

SourceFile* CSchemaReader::OpenText(std::string_view bytes, const fs::path& path, SourceLocation from) {
  const auto found = m_state.files.find(path);
  if (found != m_state.files.end()) return found->second->root != nullptr ? found->second.get() : nullptr;
  return Read(path, from, [&](CXmlDocument& document) {
    std::string copy(bytes);
    document.LoadXmlStream(reinterpret_cast<unsigned char*>(copy.data()), copy.size());
  });
}

template <class Load>
SourceFile* CSchemaReader::Read(const fs::path& path, SourceLocation from, Load&& load) {
  std::unique_ptr<SourceFile>& file = m_state.files[path];
  file = std::make_unique<SourceFile>();
  file->file = path;
  file->path = NameOf(path);
  file->context.GetLimits().SetMaxElementDepth(m_state.options.limits.maxElementDepth);
  file->context.GetLimits().SetMaxNodes(m_state.options.limits.maxNodes);
  try {
    load(file->document);
  } catch (const RkXmlLib16::CRkException& e) {
    const RkXmlLib16::CRkLocation& place = e.GetLocation();
    m_state.reporter.Error({&file->path, place.GetLine(), place.GetColumn()}, e.GetMessage());
    return nullptr;
  }
  Adopt(*file, from);
  return file->root != nullptr ? file.get() : nullptr;
}

// The document element, if it is a schema, and its size. An embedded schema is not looked for.
void CSchemaReader::Adopt(SourceFile& file, SourceLocation from) {
  CXmlElement* const root = file.document.GetDocumentElement();
  if (root == nullptr || !IsSchemaElement(root, L"schema")) {
    m_state.reporter.Error(
        from.file != nullptr ? from : LocationOf(file.path, root),
        L"The document " + Bracketed(file.path) + L" is no schema: its document element is not xs:schema.");
    return;
  }
  file.root = root;
  file.nodeCount = CountNodes(root);
  CheckSyntax(file, m_state.reporter);
}

DocumentInstance* CSchemaReader::AddInstance(SourceFile& file, const std::wstring& targetNamespace,
                                             SourceLocation from) {
  DocumentInstance*& known = m_state.instanceIndex[{file.path, targetNamespace}];
  if (known != nullptr) return known;
  const SchemaLimits& limits = m_state.options.limits;
  if (m_state.instances.size() >= limits.maxDocuments)
    m_state.reporter.Exceeded(from, L"schema documents", limits.maxDocuments);
  m_state.nodeCount += file.nodeCount;
  if (m_state.nodeCount > limits.maxNodes) m_state.reporter.Exceeded(from, L"elements and attributes", limits.maxNodes);
  DocumentInstance& document = m_state.instances.emplace_back();
  known = &document;
  document.source = &file;
  document.targetNamespace = targetNamespace;
  document.isChameleon = !targetNamespace.empty() && !HasAttribute(file.root, L"targetNamespace");
  document.elementQualified = TokenOf(file.root, L"elementFormDefault") == L"qualified";
  document.attributeQualified = TokenOf(file.root, L"attributeFormDefault") == L"qualified";
  document.blockDefault =
      ReadDerivationSet(TokenOf(file.root, L"blockDefault"), kExtension | kRestriction | kSubstitution);
  document.finalDefault =
      ReadDerivationSet(TokenOf(file.root, L"finalDefault"), kExtension | kRestriction | kList | kUnion);
  m_state.documents.push_back({&file.path, targetNamespace});
  m_pending.push_back(&document);
  return known;
}

void CSchemaReader::Follow() {
  // In the order in which a depth-first reader would meet them, near enough: what comes first is followed first.
  for (std::size_t i = 0; i < m_pending.size(); ++i) FollowReferences(*m_pending[i]);
  m_pending.clear();
}

void CSchemaReader::FollowReferences(DocumentInstance& document) {
  for (const CXmlElement* node = document.source->root->GetFirstElement(); node != nullptr;
       node = node->GetNextSiblingElement()) {
    if (!IsSchemaElement(node)) continue;
    if (node->GetLocalName() == L"include") FollowReference(document, node, Reference::Include);
    if (node->GetLocalName() == L"import") FollowReference(document, node, Reference::Import);
    if (node->GetLocalName() == L"redefine") FollowReference(document, node, Reference::Redefine);
  }
}

// The document that the node refers to; null, with a line about it, when there is none.
SourceFile* CSchemaReader::Locate(const DocumentInstance& from, const CXmlElement* node,
                                  const std::wstring& namespaceUri) {
  const std::wstring location = TokenOf(node, L"schemaLocation");
  const SourceLocation here = LocationOf(from, node);
  const auto mapped = m_state.catalog.find(location.empty() ? namespaceUri : location);
  if (mapped != m_state.catalog.end()) return Open(PathOf(mapped->second), here, mapped->second);
  if (!location.empty()) {
    if (!IsUrl(location) || location.compare(0, 7, L"file://") == 0) {
      const fs::path path = from.source->file.parent_path() / FileOfUrl(location);
      std::error_code error;
      const bool isThere = fs::is_regular_file(path, error);
      if (isThere || (namespaceUri != kXmlNamespace && namespaceUri != kInstanceNamespace))
        return Open(path, here, location);
    }
  }
  if (namespaceUri == kXmlNamespace) return OpenText(kXmlSchema, L"xml.xsd", {});
  if (namespaceUri == kInstanceNamespace) return OpenText(kInstanceSchema, L"xsi.xsd", {});
  if (!location.empty()) {
    m_state.reporter.Warning(here, L"The schema document " + Bracketed(location) +
                                       L" is not read: it is no local file, and no catalog names one for it.");
  }
  return nullptr;
}

void CSchemaReader::FollowReference(DocumentInstance& from, const CXmlElement* node, Reference kind) {
  const SourceLocation here = LocationOf(from, node);
  CReporter& reporter = m_state.reporter;
  if (kind == Reference::Import) {
    const bool named = HasAttribute(node, L"namespace");
    const std::wstring namespaceUri = TokenOf(node, L"namespace");
    if (named && namespaceUri.empty()) reporter.Error(here, L"An import cannot name an empty namespace.");
    if (namespaceUri == from.targetNamespace) {
      reporter.Error(here, namespaceUri.empty()
                               ? L"A schema without a target namespace cannot import no namespace."
                               : L"A schema cannot import its own target namespace " + Bracketed(namespaceUri) + L".");
      return;
    }
    from.imported.insert(namespaceUri);
    SourceFile* const source = Locate(from, node, namespaceUri);
    if (source == nullptr) return;
    const std::wstring target = TokenOf(source->root, L"targetNamespace");
    if (target != namespaceUri) {
      reporter.Error(here, L"The imported schema " + Bracketed(source->path) + L" has the target namespace " +
                               Bracketed(target) + L" instead of " + Bracketed(namespaceUri) + L".");
      return;
    }
    AddInstance(*source, target, here);
    return;
  }

  if (kind == Reference::Redefine) m_state.redefines.push_back({node, &from});
  if (TokenOf(node, L"schemaLocation").empty()) return;
  SourceFile* const source = Locate(from, node, {});
  if (source == nullptr) {
    if (kind == Reference::Redefine && FirstPart(node) != nullptr)
      reporter.Error(here, L"There is no schema document to redefine.");
    return;
  }
  const std::wstring target = TokenOf(source->root, L"targetNamespace");
  if (HasAttribute(source->root, L"targetNamespace") && target != from.targetNamespace) {
    reporter.Error(here, L"The included schema " + Bracketed(source->path) + L" has the target namespace " +
                             Bracketed(target) + L" instead of " + Bracketed(from.targetNamespace) + L".");
    return;
  }
  AddInstance(*source, from.targetNamespace, here);
}

DerivationSet ReadDerivationSet(std::wstring_view text, DerivationSet all) {
  if (text == L"#all") return all;
  DerivationSet set = 0;
  ForEachToken(text, [&](std::wstring_view token) {
    if (token == L"extension") set |= kExtension;
    if (token == L"restriction") set |= kRestriction;
    if (token == L"substitution") set |= kSubstitution;
    if (token == L"list") set |= kList;
    if (token == L"union") set |= kUnion;
  });
  return set & all;
}

}  // namespace RkXmlSchema
