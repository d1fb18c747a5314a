#include "TagWriter.h"

#include <algorithm>

using namespace RkXmlLib16;

namespace {

bool IsBlank(const std::wstring& text) { return text.find_first_not_of(L" \t\r\n") == std::wstring::npos; }

}  // namespace

void TagWriter::Start(CDocumentWriter& writer, const CXmlElement& element) {
  BeginChild(writer);
  EndCollection(writer);
  writer.WriteStartElement(NameOf(element.GetLocalNameRef()), NameOf(element.GetNamespaceRef()));
  const CXmlDocument& document = *element.GetDocument();
  if (document.HasInnerDeclarations())  // those of the root element are declared there
    for (const auto& [owner, prefix, uri] : document.GetDeclarations(&element))
      if (!prefix->empty()) writer.DeclareNamespace(NameOf(prefix), NameOf(uri));
  for (const CXmlAttribute* attribute : element.GetAttributes()) {
    m_value = attribute->GetValue().View();
    writer.WriteAttribute(NameOf(attribute->GetLocalNameRef()), m_value, NameOf(attribute->GetNamespaceRef()));
  }
  m_levels.emplace_back();
}

void TagWriter::Object(CDocumentWriter& writer, const CXmlObjectBase& object) {
  BeginChild(writer);
  if (!m_levels.empty() && !m_levels.back().isInCollection) {
    writer.BeginCollection();
    m_levels.back().isInCollection = true;
  }
  writer.WriteObject(object);
}

void TagWriter::End(CDocumentWriter& writer) {
  EndCollection(writer);
  if (m_levels.back().hasChild ? !IsBlank(m_text) : !m_text.empty()) writer.WriteText(m_text);
  m_text.clear();
  writer.WriteEndElement();
  m_levels.pop_back();
}

void TagWriter::Leave(CDocumentWriter& writer) {
  while (!m_levels.empty()) End(writer);
}

void TagWriter::Enter(CDocumentWriter& writer, const CXmlElement* element) {
  std::vector<const CXmlElement*> chain;
  for (; element != nullptr; element = element->GetParentElement()) chain.push_back(element);
  std::for_each(chain.rbegin(), chain.rend(), [&](const CXmlElement* each) { Start(writer, *each); });
}

void TagWriter::BeginChild(CDocumentWriter& writer) {
  if (m_levels.empty()) return;
  m_levels.back().hasChild = true;
  if (!IsBlank(m_text)) {
    EndCollection(writer);
    writer.WriteText(m_text);
  }
  m_text.clear();
}

void TagWriter::EndCollection(CDocumentWriter& writer) {
  if (m_levels.empty() || !m_levels.back().isInCollection) return;
  writer.EndCollection();
  m_levels.back().isInCollection = false;
}

const std::wstring& TagWriter::NameOf(const CXmlName* name) {
  if (name->GetOrdinal() >= m_names.size()) m_names.resize(name->GetOrdinal() + std::size_t{1});
  std::wstring& text = m_names[name->GetOrdinal()];
  if (text.empty()) text = name->View();
  return text;
}
