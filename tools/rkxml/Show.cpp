#include <algorithm>
#include <cstdio>
#include <unordered_set>

#include "Encoding.h"
#include "Load.h"
#include "Octets.h"
#include "Progress.h"
#include "Text.h"
#include "Tree.h"

using namespace RkXmlLib16;

namespace {

struct Summary {
  unsigned long long elements = 0;
  unsigned long long attributes = 0;
  unsigned long long depth = 0;
  unsigned long long characters = 0;                      // as the limit counts them: a name once
  std::vector<std::pair<CXmlText, CXmlText>> namespaces;  // prefix and namespace URI
};

Summary Summarise(const CXmlDocument& document) {
  Summary summary;
  summary.namespaces = document.GetNamespaceAliases();
  std::unordered_set<std::wstring_view> known{L"", L"http://www.w3.org/XML/1998/namespace"};
  for (const auto& [prefix, uri] : summary.namespaces) known.insert(uri.View());
  std::unordered_set<std::wstring_view> names;
  const auto count = [&](CXmlText uri, CXmlText localName, CXmlText text) {
    for (const CXmlText& name : {uri, localName})
      summary.characters += names.insert(name.View()).second ? name.size() : 0;
    summary.characters += text.size();
  };
  for (const auto& [prefix, uri] : summary.namespaces) count(uri, prefix, CXmlText());
  // Namespaces whose prefix was bound anew further on come last.
  const auto add = [&](CXmlText uri) {
    if (known.insert(uri.View()).second) summary.namespaces.emplace_back(CXmlText(L"(rebound)", 9), uri);
  };
  for (TreeWalk walk(document); walk; walk.Next()) {
    ++summary.elements;
    summary.depth = std::max(summary.depth, walk.GetDepth());
    add(walk->GetNamespaceURI());
    count(walk->GetNamespaceURI(), walk->GetLocalName(), walk->GetText());
    for (const CXmlAttribute* attribute : walk->GetAttributes()) {
      ++summary.attributes;
      add(attribute->GetNamespaceURI());
      count(attribute->GetNamespaceURI(), attribute->GetLocalName(), attribute->GetValue());
    }
  }
  return summary;
}

std::string_view TextOf(const unsigned char* bytes, std::size_t length) {
  return {reinterpret_cast<const char*>(bytes), length};
}

void Line(const char* name, const std::string& value) { std::printf("%-12s%s\n", name, value.c_str()); }

void ShowNamespaces(const std::vector<std::pair<CXmlText, CXmlText>>& namespaces) {
  if (namespaces.empty()) Line("namespaces", "none");
  const char* title = "namespaces";
  for (const auto& [prefix, uri] : namespaces) {
    std::string shown = prefix.empty() ? "(default)" : ForTerminal(prefix);
    shown.resize(std::max<std::size_t>(shown.size(), 9), ' ');
    Line(title, shown + "  " + ForTerminal(uri));
    title = "";
  }
}

// The document need not be one that can be read.
void ListOctets(const Options& options) {
  const Bytes bytes = ReadFile(options.input);
  CBinaryData content;
  const bool wrapped = WrapperOf(bytes) != Wrapper::None && Unwrap(bytes, options, content) == InflateResult::Inflated;
  const std::string_view text =
      wrapped ? TextOf(content.GetData(), content.GetLength()) : TextOf(bytes.data(), bytes.size());
  if (!IsFastInfoset(text)) throw DocumentError(ForTerminal(options.input) + " is no Fast Infoset");
  ShowOctets(text);
  if (std::fflush(stdout) != 0) throw FileError("cannot write the standard stream");
}

}  // namespace

void Show(const Options& options) {
  if (options.octets) return ListOctets(options);
  CSerializationContext context;
  context.GetLimits() = options.limits;
  options.json.ApplyTo(context);
  CXmlDocument document(context);
  Bytes bytes = ReadFile(options.input);
  {
    Progress progress;
    progress.Read(bytes.size());
    LoadDocument(document, options, bytes);
  }
  CBinaryData content;
  const bool wrapped = WrapperOf(bytes) != Wrapper::None && Unwrap(bytes, options, content) == InflateResult::Inflated;
  const std::string_view text =
      wrapped ? TextOf(content.GetData(), content.GetLength()) : TextOf(bytes.data(), bytes.size());
  const Summary summary = Summarise(document);
  const bool isFastInfoset = IsFastInfoset(text);

  Line("form", isFastInfoset ? "Fast Infoset" : options.from->title);
  if (wrapped) {
    Line("wrapper", WrapperOf(bytes) == Wrapper::Gzip ? "gzip" : "zlib");
    const std::string ratio = std::to_string((text.size() + bytes.size() / 2) / bytes.size());
    Line("bytes", Grouped(bytes.size()) + " (" + Grouped(text.size()) + " unwrapped, " + ratio + " times)");
  } else {
    Line("wrapper", "none");
    Line("bytes", Grouped(bytes.size()));
  }
  Line("encoding", isFastInfoset ? "binary" : EncodingOf(text));
  Line("root", ForTerminal(document.GetDocumentElement()->GetLocalName()));
  ShowNamespaces(summary.namespaces);
  Line("elements", Grouped(summary.elements));
  Line("attributes", Grouped(summary.attributes));
  Line("nodes", Grouped(summary.elements + summary.attributes));
  Line("characters", Grouped(summary.characters));
  Line("depth", Grouped(summary.depth));
  if (std::fflush(stdout) != 0) throw FileError("cannot write the standard stream");
}
