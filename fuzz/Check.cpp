#include "Check.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <vector>

namespace Fuzz {

namespace {

// Calls `visit` with each element of the tree and its depth, in document order.
template <class Visit>
void ForEach(const CElement& tree, Visit&& visit) {
  std::vector<std::pair<const CElement*, int>> open{{&tree, 0}};
  while (!open.empty()) {
    const auto [element, depth] = open.back();
    open.pop_back();
    visit(*element, depth);
    for (int i = element->GetChildCount(); i-- > 0;) open.emplace_back(element->GetChild(i), depth + 1);
  }
}

const CAttribute& AttributeOf(const CElement& element, int index) {
  return *const_cast<CElement&>(element).GetAttributes()->Item(index);
}

bool IsXmlText(const std::wstring& written) {
  const std::wstring text = Joined(written);
  return std::all_of(text.begin(), text.end(), [](wchar_t c) {
    const auto code = static_cast<std::uint32_t>(c);
    return (code >= 0x20 || c == L'\t' || c == L'\n') && code != 0xFFFE && code != 0xFFFF && code < 0x110000;
  });
}

// Generous in letters: documents that were XML text have names anyway.
bool IsName(const std::wstring& name) {
  const auto starts = [](wchar_t c) { return (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z') || c == L'_'; };
  return !name.empty() && starts(name[0]) && std::all_of(name.begin(), name.end(), [&](wchar_t c) {
    return starts(c) || (c >= L'0' && c <= L'9') || c == L'-' || c == L'.';
  });
}

bool IsNamespace(const std::wstring& uri) {
  return IsXmlText(uri) && uri.find_first_of(L"|\t\n ") == std::wstring::npos && uri != CXmlWriter::XMLNS_NAMESPACE;
}

// Not every reader of XML text takes prefixes beyond ASCII, and none a namespace with a bar; both may be there for
// values alone.
bool HasOddDeclarations(const std::wstring& xml) {
  constexpr std::wstring_view kStart = L" xmlns";
  std::size_t at = 0;
  while ((at = xml.find(kStart, at)) != std::wstring::npos) {
    const std::size_t name = at + kStart.size();
    const std::size_t begin = std::min(xml.find(L'"', at), xml.size() - 1);
    if (xml[name] == L':' && !IsName(xml.substr(name + 1, begin - name - 2))) return true;  // up to ="
    at = std::min(xml.find(L'"', begin + 1), xml.size());
    if (std::wstring_view(xml).substr(begin, at - begin).find(L'|') != std::wstring_view::npos) return true;
  }
  return false;
}

template <class Read>
void RequireSame(const char* form, const std::wstring& expected, const CBinaryData& bytes, Read&& read) {
  CElement again;
  const std::string_view text(reinterpret_cast<const char*>(bytes.GetData()), bytes.GetLength());
  try {
    read(again);
  } catch (const CRkException& e) {
    Fail(form, e.GetFullMessage() + L"\n--- tree\n" + expected + L"\n--- written\n" + TextOf(text));
  }
  const std::wstring actual = Describe(again);
  Require(actual == expected, form,
          L"--- tree\n" + expected + L"\n--- written\n" + TextOf(text) + L"\n--- read again\n" + actual);
}

}  // namespace

std::wstring Joined(const std::wstring& text) {
  const auto isHigh = [](wchar_t c) { return c >= 0xD800 && c <= 0xDBFF; };
  const auto isLow = [](wchar_t c) { return c >= 0xDC00 && c <= 0xDFFF; };
  std::wstring out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (isHigh(text[i]) && i + 1 < text.size() && isLow(text[i + 1])) {
      out += static_cast<wchar_t>(0x10000 + ((text[i] - 0xD800) << 10) + (text[i + 1] - 0xDC00));
      ++i;
    } else {
      out += isHigh(text[i]) || isLow(text[i]) ? L'\uFFFD' : text[i];
    }
  }
  return out;
}

std::wstring Split(const std::wstring& text) {
  std::wstring out;
  for (const wchar_t c : Joined(text)) {
    if (c > 0xFFFF) out += static_cast<wchar_t>(0xD800 + ((c - 0x10000) >> 10));
    out += c > 0xFFFF ? static_cast<wchar_t>(0xDC00 + (c & 0x3FF)) : c;
  }
  return out;
}

void Fail(const char* property, const std::wstring& evidence) {
  const CBinaryData bytes = CEncoder::UnicodeToUtf8Binary(evidence.c_str());
  std::fprintf(stderr, "property violated: %s\n%.*s\n", property, static_cast<int>(bytes.GetLength()),
               reinterpret_cast<const char*>(bytes.GetData()));
  std::abort();
}

CSerializationContext MakeContext(const CElement* tree) {
  CSerializationContext context;
  CReadLimits& limits = context.GetLimits();
  limits.SetMaxObjectDepth(100);
  limits.SetMaxNodes(10000);
  limits.SetMaxCharacters(100000);
  limits.SetMaxInflatedBytes(1000000);
  limits.SetMaxExpansionRatio(20);
  limits.SetExpansionRatioFrom(10000);
  context.SetEscapeCDATA(true);
  context.GetJsonContext()->SetStrictOutput(true);
  if (tree == nullptr) return context;
  std::set<std::wstring> namespaces;
  ForEach(*tree, [&](const CElement& element, int) {
    namespaces.insert(element.GetNamespace());
    for (int i = 0; i < element.GetAttributeCount(); ++i) namespaces.insert(AttributeOf(element, i).GetNamespace());
  });
  namespaces.erase(L"");
  namespaces.erase(CXmlWriter::XML_NAMESPACE);
  int number = 0;
  for (const std::wstring& uri : namespaces) {
    context.GetNamespaceAliases().Add((L"fuzz" + std::to_wstring(number++)).c_str(), uri.c_str());
  }
  return context;
}

std::wstring Describe(const CElement& tree) {
  std::wstring out;
  ForEach(tree, [&](const CElement& element, int depth) {
    out += std::to_wstring(depth) + L" {" + element.GetNamespace() + L"}" + element.GetElementNameRef();
    for (int i = 0; i < element.GetAttributeCount(); ++i) {
      const CAttribute& attribute = AttributeOf(element, i);
      std::wstring value = attribute.GetValue();
      if (attribute.GetLocalName() == L"type" && attribute.GetNamespace() == CXmlWriter::XSI_NAMESPACE)
        value.erase(0, value.find(L':') + 1);
      out += std::wstring(L" {") + attribute.GetNamespace() + L"}" + attribute.GetLocalName() + L"=[" + value + L"]";
    }
    out += L" [" + element.GetText() + L"]\n";
  });
  return out;
}

bool IsXml(const CElement& tree) {
  bool holds = true;
  ForEach(tree, [&holds](const CElement& element, int) {
    if (!holds) return;
    holds = IsName(element.GetElementNameRef()) && IsNamespace(element.GetNamespace()) && IsXmlText(element.GetText());
    std::set<std::pair<std::wstring, std::wstring>> names;
    for (int i = 0; i < element.GetAttributeCount() && holds; ++i) {
      const CAttribute& attribute = AttributeOf(element, i);
      holds = IsName(attribute.GetLocalName()) && IsNamespace(attribute.GetNamespace()) &&
              IsXmlText(attribute.GetValue()) && attribute.GetValue().find(L'\t') == std::wstring::npos &&
              attribute.GetLocalName() != L"xmlns" &&
              names.emplace(attribute.GetNamespace(), attribute.GetLocalName()).second;
    }
  });
  return holds && !HasOddDeclarations(tree.ToXml(false, false, EOLType_LF, MakeContext(&tree)));
}

bool FitsJson(const CElement& tree) {
  constexpr int kDeepest = 48;  // an element can take two levels, its object and the array that it is in
  bool fits = true;
  ForEach(tree, [&fits](const CElement&, int depth) { fits = fits && depth <= kDeepest; });
  return fits;
}

void CheckAllForms(const CElement& tree) {
  const CSerializationContext context = MakeContext(&tree);
  const CBinaryData fastInfoset = tree.ToFastInfosetStream(FInfoDecl_None, context);
  RequireSame("the same after Fast Infoset", Joined(Describe(tree)), fastInfoset,
              [&](CElement& again) { again.FromXmlStream(fastInfoset, context); });
  if (!IsXml(tree)) return;
  const CBinaryData xml = tree.ToXmlStream(true, false, XmlEncoding_UTF8, EOLType_LF, context);
  RequireSame("the same after XML text", Split(Describe(tree)), xml,
              [&](CElement& again) { again.FromXmlStream(xml, context); });
  if (!FitsJson(tree)) return;
  const CBinaryData json = tree.ToJsonStream(true, XmlEncoding_UTF8, EOLType_LF, context);
  RequireSame("the same after JSON text", Split(Describe(tree)), json,
              [&](CElement& again) { again.FromJsonStream(json, context); });
}

void CheckCollected(const CErrorCollector& collector, bool isRead, bool isAccepted) {
  Require(isRead || collector.HasErrors(), "what throws is told");
  Require(collector.HasErrors() != isAccepted, "errors are told of what is refused, and of nothing else",
          collector.GetReport());
  for (const auto& error : collector.GetErrors())
    Require(!error->GetReport().empty() && error->what()[0] != '\0', "an error has a report");
  for (const CRkDropped& dropped : collector.GetDropped())
    Require(!dropped.GetReport().empty(), "something dropped has a report");
}

std::wstring TextOf(std::string_view bytes) {
  std::string text(bytes);
  text.erase(std::remove(text.begin(), text.end(), '\0'), text.end());
  return CEncoder::Utf8ToUnicode(text);
}

}  // namespace Fuzz
