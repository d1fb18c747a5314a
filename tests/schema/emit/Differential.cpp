#include "Differential.h"

#include <functional>

#include "RkXmlLib16/RkXmlLib16.h"
#include "support/Bytes.h"
#include "support/Tree.h"
#include "support/Variants.h"

namespace RkXmlSchema {

using namespace RkXmlLib16;

namespace {

using Reader = std::function<CSmartPtr<CXmlGeneratedClass>(CXmlDocument&, const CSerializationContext&)>;

std::string Chain(const CRkException& e) {
  std::string text = std::to_string(e.GetCode()) + " " + e.what();
  for (const CRkException* inner = &e; inner != nullptr; inner = inner->GetInnerException())
    text += "\n  " + ToUtf8(inner->GetMessage()) + " at " + ToUtf8(inner->GetPath());
  return text + "\n";
}

void AddPrefixes(const CXmlDocument& document, CSerializationContext& context) {
  for (const auto& [prefix, uri] : document.GetNamespaceAliases())
    if (!prefix.empty() && !context.GetNamespaceAliases().DoesNamespaceExist(uri.c_str()))
      context.GetNamespaceAliases().Add(prefix.c_str(), uri.c_str());
}

template <class Write>
void Attempt(std::string& outcome, Write&& write) {
  try {
    write();
  } catch (const CRkException& e) {
    outcome += Chain(e);
  }
}

// Everything that can be seen of a document: what was read of it in each form, or why it was not.
std::string Outcome(const std::string& bytes, const Reader& read) {
  std::string outcome;
  CSerializationContext context;
  CXmlDocument document(context);
  CErrorCollector collector;
  context.SetErrorHandler(&collector);
  Attempt(outcome, [&] {
    RkXmlTest::Load(document, bytes);
    read(document, context);
  });
  for (const auto& error : collector.GetErrors()) outcome += "collected " + Chain(*error);
  context.SetErrorHandler(nullptr);
  if (document.GetDocumentElement() == nullptr) return outcome;
  CSmartPtr<CXmlGeneratedClass> object;
  Attempt(outcome, [&] { object = read(document, context); });
  if (object == nullptr) return outcome;
  AddPrefixes(document, context);
  context.GetJsonContext()->SetSupportRoundtrip(JsonRoundTrip_Namespaces);
  Attempt(outcome, [&] { outcome += object->ToXmlUtf8(false, true, EOLType_LF, context); });
  Attempt(outcome, [&] {
    const std::wstring json = object->ToJson(true, EOLType_LF, context);
    outcome += ToUtf8(json);
    object->FromJson(json.c_str(), context);
    outcome += object->ToXmlUtf8(false, true, EOLType_LF, context);
  });
  Attempt(outcome, [&] {
    const CBinaryData infoset = object->ToFastInfosetStream(FInfoDecl_None, context);
    outcome += RkXmlTest::BytesOf(infoset);
    object->FromXmlStream(infoset, context);
    outcome += object->ToXmlUtf8(false, true, EOLType_LF, context);
  });
  return outcome;
}

}  // namespace

CDifferential::CDifferential(const std::vector<std::filesystem::path>& schemas, const SchemaModel& classes)
    : m_classes(classes) {
  for (const auto& file : schemas) m_set.AddFile(file.wstring());
  m_set.Resolve();
  m_binding = std::make_unique<CBinding>(m_set);
  m_dynamic = std::make_unique<CDynamicSchema>(*m_binding);
}

std::wstring CDifferential::Compare(const std::string& document) const {
  const std::string without = Outcome(document, [&](CXmlDocument& read, const CSerializationContext& context) {
    return CSmartPtr<CXmlGeneratedClass>(m_dynamic->Read(read, context));
  });
  const std::string with = Outcome(document, [&](CXmlDocument& read, const CSerializationContext& context) {
    return CSmartPtr<CXmlGeneratedClass>(ReadDocument(m_classes, read, context));
  });
  if (without == with) return {};
  std::size_t at = 0;
  while (at < without.size() && at < with.size() && without[at] == with[at]) ++at;
  at = at > 300 ? at - 300 : 0;
  return FromUtf8("without classes: ..." + without.substr(at, 700) + "\nwith classes: ..." + with.substr(at, 700));
}

std::wstring CDifferential::CompareVariants(const std::string& document, int& count, std::size_t most) const {
  std::wstring difference = Compare(document);
  count = 1;
  CSerializationContext context;
  CXmlDocument source(context);
  RkXmlTest::Load(source, document);
  if (source.GetDocumentElement() == nullptr) return difference;
  AddPrefixes(source, context);
  CElement whole;
  whole.FromXmlElement(source.GetDocumentElement(), context);
  std::vector<CElement*> elements;
  RkXmlTest::Flatten(whole, elements);
  const std::size_t step = elements.size() * std::size(RkXmlTest::kRules) / most + 1;
  std::size_t next = 0;
  for (const RkXmlTest::Rule& rule : RkXmlTest::kRules) {
    for (std::size_t place = 0; place < elements.size(); ++place) {
      for (int at = 0; at < elements[place]->GetChildCount() && difference.empty(); ++at) {
        if (next++ % step != 0) continue;
        CElement copy;
        copy.FromXmlElement(source.GetDocumentElement(), context);
        std::vector<CElement*> copies;
        RkXmlTest::Flatten(copy, copies);
        CElement& parent = *copies[place];
        const CSmartPtr<CElement> child(parent.GetChild(at));
        if (!rule.apply(parent, *child, at)) continue;
        const std::string changed = copy.ToXmlUtf8(true, true, EOLType_LF, context);
        ++count;
        difference = Compare(changed);
        if (!difference.empty()) difference += FromUtf8("\nin " + changed.substr(0, 4000));
      }
    }
  }
  return difference;
}

}  // namespace RkXmlSchema
