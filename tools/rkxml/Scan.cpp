#include "Scan.h"

#include <algorithm>
#include <map>
#include <utility>

#include "Input.h"
#include "Load.h"

using namespace RkXmlLib16;

namespace {

// Marks of names, by their ordinals.
class NameSet {
 public:
  // Whether it was not in it.
  bool Add(const CXmlName* name) {
    if (name->GetOrdinal() >= m_known.size()) m_known.resize(name->GetOrdinal() + std::size_t{64});
    const bool isNew = !m_known[name->GetOrdinal()];
    m_known[name->GetOrdinal()] = true;
    return isNew;
  }

 private:
  std::vector<bool> m_known;
};

class Scanner {
 public:
  Scanner(const Options& options, CSerializationContext& context, Notes& notes)
      : m_options(options), m_context(context), m_notes(notes) {}

  Scan Run(const InputFile& file, Progress& progress) {
    progress.Begin("reading", file.GetLength());
    InputStream stream(file, m_options, m_context, progress);
    try {
      while (stream.Next()) Take(stream);
    } catch (const CRkException& e) {
      ThrowUnreadable(e, m_options, file);
    }
    m_scan.isFastInfoset = stream->IsFastInfoset();
    return std::move(m_scan);
  }

  Scan RunWhole(const InputFile& file) {
    CXmlDocument document(m_context);
    LoadDocument(document, m_options, file);
    const CXmlElement* open = nullptr;
    for (TreeWalk walk(document); walk; walk.Next()) {
      for (; walk->GetParentElement() != open; open = open->GetParentElement()) End(*open);
      open = walk.Get();
      Start(*open);
      if (!open->GetText().empty()) Text(open->GetText());
    }
    for (; open != nullptr; open = open->GetParentElement()) End(*open);
    return std::move(m_scan);
  }

 private:
  struct Level {
    bool hasChild = false;
    bool hasText = false;
    bool hasTextSince = false;  // the last child; blanks are text
    Row row;
    bool wasAsked = false;
    bool isUnanswered = false;
    std::uint64_t question = 0;
  };

  void Take(InputStream& stream) {
    if (stream.GetEvent() == InputStream::Event::Start)
      Start(*stream->GetElement());
    else if (stream.GetEvent() == InputStream::Event::Text)
      Text(stream->GetText());
    else
      End(*stream->GetElement());
  }

  void Start(const CXmlElement& element) {
    const CXmlDocument& document = *element.GetDocument();
    ++m_scan.elements;
    if (!m_levels.empty()) BeginChild(m_levels.back(), element);
    m_levels.emplace_back();
    m_scan.depth = std::max<unsigned long long>(m_scan.depth, m_levels.size());
    for (const auto& declaration : document.GetDeclarations(&element)) Declare(declaration);
    Name(element.GetLocalNameRef(), element.GetNamespaceRef(), /*isOfAttribute=*/false);
    m_hasNoNamespace |= element.GetNamespaceRef()->empty();
    for (const CXmlAttribute* attribute : element.GetAttributes()) {
      ++m_scan.attributes;
      Name(attribute->GetLocalNameRef(), attribute->GetNamespaceRef(), /*isOfAttribute=*/true);
      const CXmlText value = attribute->GetValue();
      m_scan.characters += value.size();
      if (attribute->GetLocalName() == L"type" && attribute->GetNamespaceURI() == CXmlWriter::XSI_NAMESPACE &&
          value.View().find(L':') == std::wstring_view::npos)
        PlainType(element);
    }
    CheckLimits();
  }

  void BeginChild(Level& parent, const CXmlElement& child) {
    parent.hasChild = true;
    if (m_notes.GetKind() == Question::IsRow) {
      if (parent.row.GoesOn(child))
        Answer(parent);
      else
        Ask(parent);
    } else if (m_notes.GetKind() == Question::IsMixed && parent.hasTextSince && !parent.hasText && !parent.wasAsked) {
      Ask(parent);
    }
    parent.hasTextSince = false;
  }

  void Ask(Level& level) {
    level.question = m_notes.Ask();
    level.wasAsked = level.isUnanswered = true;
  }

  void Answer(Level& level) {
    if (std::exchange(level.isUnanswered, false)) m_notes.Answer(level.question);
  }

  void Text(std::wstring_view text) {
    Level& level = m_levels.back();
    m_scan.characters += text.size();
    const bool isBlank = CWhitespaceUtils::IsBlank(text);
    if (level.hasChild && (level.hasText || !isBlank)) m_scan.isPlain = false;
    level.hasText |= !isBlank;
    level.hasTextSince = true;
    if (!isBlank && m_notes.GetKind() == Question::IsMixed) Answer(level);
    CheckLimits();
  }

  void End(const CXmlElement& element) {
    m_scan.mixed += m_levels.back().hasChild && m_levels.back().hasText ? 1 : 0;
    m_levels.pop_back();
    if (m_levels.empty()) Finish(element);
  }

  // The namespace of a type without prefix is the default one where it stands.
  void PlainType(const CXmlElement& element) {
    const CXmlName* const uri = element.LookupNamespaceRef({});
    m_hasPlainType = true;
    m_hasNoNamespace |= uri == nullptr || uri->empty();
  }

  void Finish(const CXmlElement& root) {
    const CXmlDocument& document = *root.GetDocument();
    m_scan.root = root.GetLocalName();
    for (const auto& [prefix, uri] : document.GetNamespaceAliases())
      m_scan.declared.emplace_back(prefix.ToString(), uri.ToString());
    m_context.TakeNamespaces(document);
    if (m_hasNoNamespace) m_context.SetDefaultNamespaceURI(L"");
    // A type without prefix is in the default namespace where it stands, which the root element may not declare.
    const auto declared = m_uriOf.find(document.GetEmptyName());
    if (m_hasPlainType && declared != m_uriOf.end() && declared->second->View() != m_context.GetDefaultNamespaceURI())
      m_scan.isPlain = false;
  }

  void Declare(const CXmlDocument::Declaration& declaration) {
    const CXmlName* const prefix = declaration.prefix;
    const CXmlName* const uri = declaration.namespaceUri;
    for (const CXmlName* name : {prefix, uri}) Count(name);
    if (m_uriOf.try_emplace(prefix, uri).first->second != uri) m_scan.isPlain = false;
    if (!prefix->empty() && m_prefixOf.try_emplace(uri, prefix).first->second != prefix) m_scan.isPlain = false;
  }

  void Name(const CXmlName* localName, const CXmlName* uri, bool isOfAttribute) {
    Count(uri);
    Count(localName);
    NameSet& used = isOfAttribute ? m_ofAttributes : m_ofElements;
    if (!uri->empty() && used.Add(uri)) m_scan.namespaces.push_back({uri->GetText().ToString(), isOfAttribute});
  }

  void Count(const CXmlName* name) { m_scan.characters += m_names.Add(name) ? name->View().size() : 0; }

  // The library counts what it holds; a limit that the call gives is for the document.
  void CheckLimits() const {
    static const CReadLimits kDefaults;
    const unsigned long nodes = m_options.limits.GetMaxNodes();
    if (nodes != 0 && nodes != kDefaults.GetMaxNodes() && m_scan.elements + m_scan.attributes > nodes)
      CReadLimits::ThrowExceeded(L"elements and attributes", nodes);
    const unsigned long characters = m_options.limits.GetMaxCharacters();
    if (characters != 0 && characters != kDefaults.GetMaxCharacters() && m_scan.characters > characters)
      CReadLimits::ThrowExceeded(L"characters", characters);
  }

  const Options& m_options;
  CSerializationContext& m_context;
  Notes& m_notes;
  Scan m_scan;
  std::vector<Level> m_levels;
  NameSet m_names;
  NameSet m_ofElements;    // namespaces
  NameSet m_ofAttributes;  // likewise
  std::map<const CXmlName*, const CXmlName*> m_uriOf;
  std::map<const CXmlName*, const CXmlName*> m_prefixOf;
  bool m_hasNoNamespace = false;  // some element or type
  bool m_hasPlainType = false;    // some xsi:type without prefix
};

}  // namespace

Scan ScanDocument(const InputFile& file, const Options& options, CSerializationContext& context, Progress& progress,
                  Notes& notes) {
  return Scanner(options, context, notes).Run(file, progress);
}

Scan ScanWhole(const InputFile& file, const Options& options, CSerializationContext& context) {
  Notes notes(Question::None);
  return Scanner(options, context, notes).RunWhole(file);
}
