#include "Documents.h"

#include <algorithm>
#include <set>

#include "support/TempFile.h"
#include "support/Tree.h"

namespace RkXmlSchema {

using namespace RkXmlLib16;

CSchemaUnderTest::CSchemaUnderTest(const std::vector<std::filesystem::path>& files) {
  for (const auto& file : files) m_set.AddFile(file.wstring());
  Bind();
}

CSchemaUnderTest::CSchemaUnderTest(const std::string& text) {
  m_set.AddText(text, L"test.xsd");
  Bind();
}

void CSchemaUnderTest::Bind() {
  if (!m_set.Resolve()) return;
  m_binding = std::make_unique<CBinding>(m_set);
  m_dynamic = std::make_unique<CDynamicSchema>(*m_binding);
}

std::wstring CSchemaUnderTest::GetErrors() const {
  std::wstring lines;
  for (const Diagnostic& d : m_set.GetDiagnostics()) lines += d.ToString() + L'\n';
  return lines;
}

std::wstring Describe(const CRkException& e) {
  std::wstring text = e.GetMessage();
  for (const CRkException* inner = e.GetInnerException(); inner != nullptr; inner = inner->GetInnerException())
    text += L" <- " + inner->GetMessage();
  std::replace(text.begin(), text.end(), L'\n', L' ');
  return text + L" at " + e.GetPath();
}

namespace {

// A collector of errors is told of them where the call without one throws.
std::wstring CheckDocument(const CDynamicSchema& schema, const std::string& bytes) {
  CSerializationContext context;
  CXmlDocument document(context);
  std::wstring failure;
  try {
    RkXmlTest::Load(document, bytes);
    schema.Read(document, context);
  } catch (const CRkException& e) {
    failure = Describe(e);
  }
  CErrorCollector collector;
  context.SetErrorHandler(&collector);
  try {
    if (document.GetDocumentElement() != nullptr) schema.Read(document, context);
  } catch (const CRkException& e) {
    if (failure.empty()) return L"only with a collector: " + Describe(e);
  }
  if (failure.empty() && collector.HasErrors()) return L"only with a collector: " + collector.GetReport();
  return failure;
}

template <class Visit>
void Walk(const CXmlElement* element, Visit&& visit) {
  visit(*element);
  for (const CXmlElement* child = element->GetFirstElement(); child != nullptr; child = child->GetNextSiblingElement())
    Walk(child, visit);
}

// The prefixes of the document, and one for every other namespace, so that JSON can tell them.
void KeepPrefixes(const CXmlDocument& document, CSerializationContext& context) {
  CNamespaceAliasMap& aliases = context.GetNamespaceAliases();
  std::set<std::wstring> taken;
  const auto add = [&](std::wstring prefix, const std::wstring& uri) {
    if (uri.empty() || uri == kXmlNamespace || aliases.DoesNamespaceExist(uri.c_str())) return;
    while (prefix.empty() || !taken.insert(prefix).second) prefix = L"ns" + std::to_wstring(taken.size());
    aliases.Add(prefix.c_str(), uri.c_str());
  };
  for (const auto& [prefix, uri] : document.GetNamespaceAliases())
    if (!prefix.empty()) add(prefix.ToString(), uri.ToString());
  Walk(document.GetDocumentElement(), [&](const CXmlElement& e) {
    add(L"", e.GetNamespaceURI().ToString());
    for (const CXmlAttribute* a : e.GetAttributes()) add(L"", a->GetNamespaceURI().ToString());
  });
}

std::wstring Collapse(const CXmlText& text) { return CWhitespaceUtils::Collapse(text.ToString()); }

// A name by its namespace.
std::wstring Expand(const CXmlElement& element, const std::wstring& text) {
  const std::size_t colon = text.find(L':');
  const std::wstring prefix = colon == std::wstring::npos ? L"" : text.substr(0, colon);
  const CXmlName* const uri = element.LookupNamespaceRef(prefix);
  if (uri == nullptr) return text;
  return L'{' + std::wstring(uri->View()) + L'}' + (colon == std::wstring::npos ? text : text.substr(colon + 1));
}

bool IsSameValue(const CXmlElement& ownerA, const CXmlText& a, const CXmlElement& ownerB, const CXmlText& b) {
  const std::wstring x = Collapse(a);
  const std::wstring y = Collapse(b);
  if (x == y || Expand(ownerA, x) == Expand(ownerB, y)) return true;
  for (const ItemType type : {ItemType_boolean, ItemType_decimal, ItemType_double, ItemType_dateTime, ItemType_date,
                              ItemType_time, ItemType_duration, ItemType_base64Binary, ItemType_hexBinary}) {
    try {
      RkVariant v;
      RkVariant w;
      v.FromString(x, type, CWhitespaceUtils::collapse);
      w.FromString(y, type, CWhitespaceUtils::collapse);
      if (v.ToString() == w.ToString()) return true;
    } catch (const CRkException&) {
    }
  }
  return false;
}

std::wstring Compare(const CXmlElement& a, const CXmlElement& b) {
  if (a.GetLocalName() != b.GetLocalName() || a.GetNamespaceURI() != b.GetNamespaceURI())
    return a.GetXPath() + L" became " + b.GetXPath();
  if (!IsSameValue(a, a.GetText(), b, b.GetText()) && !(a.GetText().empty() || b.GetText().empty()))
    return a.GetXPath() + L": text [" + Collapse(a.GetText()) + L"] became [" + Collapse(b.GetText()) + L"]";
  for (const CXmlAttribute* attribute : a.GetAttributes()) {
    const bool isInstance = attribute->GetNamespaceURI() == kInstanceNamespace;
    if (isInstance && attribute->GetLocalName() != L"nil" && attribute->GetLocalName() != L"type") continue;
    const auto same = [&](const CXmlAttribute* other) {
      return attribute->GetLocalName() == other->GetLocalName() &&
             attribute->GetNamespaceURI() == other->GetNamespaceURI() &&
             IsSameValue(a, attribute->GetValue(), b, other->GetValue());
    };
    const auto others = b.GetAttributes();
    const bool isType =
        isInstance && attribute->GetLocalName() == L"type";  // written where it says more than the schema
    if (isType && b.GetAttribute(L"type", kInstanceNamespace).empty()) continue;
    if (std::none_of(others.begin(), others.end(), same)) return attribute->GetXPath() + L" was lost or changed";
  }
  const CXmlElement* childA = a.GetFirstElement();
  const CXmlElement* childB = b.GetFirstElement();
  for (; childA != nullptr && childB != nullptr;
       childA = childA->GetNextSiblingElement(), childB = childB->GetNextSiblingElement()) {
    const std::wstring difference = Compare(*childA, *childB);
    if (!difference.empty()) return difference;
  }
  if (childA != nullptr) return childA->GetXPath() + L" was lost";
  return childB != nullptr ? childB->GetXPath() + L" was added" : L"";
}

}  // namespace

std::wstring CSchemaUnderTest::Check(const std::filesystem::path& file) const {
  return CheckDocument(*m_dynamic, RkXmlTest::ReadFile(file));
}

std::wstring CSchemaUnderTest::CheckText(const std::string& xml) const { return CheckDocument(*m_dynamic, xml); }

std::wstring RoundTripText(const CSchemaUnderTest& schema, const std::string& bytes) {
  CSerializationContext context;
  const wchar_t* stage = L"reading";
  try {
    CXmlDocument document(context);
    RkXmlTest::Load(document, bytes);
    const CSmartPtr<CDynamicObject> object = schema.Get().Read(document, context);
    KeepPrefixes(document, context);
    context.GetJsonContext()->SetSupportRoundtrip(JsonRoundTrip_Namespaces);
    context.GetJsonContext()->SetStrictOutput(true);

    stage = L"XML";
    const std::wstring written = object->ToXml(false, false, EOLType_LF, context);
    CXmlDocument again(context);
    again.LoadXmlWide(written);
    const std::wstring difference = Compare(*document.GetDocumentElement(), *again.GetDocumentElement());
    if (!difference.empty()) return L"XML: " + difference;
    const CSmartPtr<CDynamicObject> second = schema.Get().Read(again, context);
    if (second->ToXml(false, false, EOLType_LF, context) != written) return L"XML: the second writing differs";

    stage = L"Fast Infoset";
    const CBinaryData infoset = object->ToFastInfosetStream(FInfoDecl_None, context);
    const CSmartPtr<CDynamicObject> third = schema.Get().NewFor(*document.GetDocumentElement(), context);
    third->FromXmlStream(infoset, context);
    if (third->ToXml(false, false, EOLType_LF, context) != written) return L"Fast Infoset: it differs";

    stage = L"JSON";
    const std::wstring json = object->ToJson(false, EOLType_LF, context);
    const CSmartPtr<CDynamicObject> fourth = schema.Get().NewFor(*document.GetDocumentElement(), context);
    fourth->FromJson(json.c_str(), context);
    const std::wstring fromJson = fourth->ToXml(false, false, EOLType_LF, context);
    CXmlDocument last(context);
    last.LoadXmlWide(fromJson);
    const std::wstring jsonDifference = Compare(*again.GetDocumentElement(), *last.GetDocumentElement());
    return jsonDifference.empty() ? L"" : L"JSON: " + jsonDifference;
  } catch (const CRkException& e) {
    return std::wstring(stage) + L": " + Describe(e);
  }
}

std::wstring RoundTrip(const CSchemaUnderTest& schema, const std::filesystem::path& file) {
  return RoundTripText(schema, RkXmlTest::ReadFile(file));
}

}  // namespace RkXmlSchema
