#include "TagWriter.h"

#include <algorithm>
#include <utility>

using namespace RkXmlLib16;

namespace {

bool Declares(const CXmlElement& element) {
  const auto declarations = element.GetDocument()->GetDeclarations(&element);
  return declarations.begin() != declarations.end();
}

}  // namespace

void TagWriter::Start(CDocumentWriter& writer, const CXmlElement& element) {
  BeginChild(writer);
  EndCollection(writer);
  if (!m_levels.empty() && m_notes.GetKind() == Question::IsRow) TellRow(writer, element);
  writer.WriteStartElement(element);
  const bool declares = m_levels.empty() && Declares(element);
  m_levels.emplace_back();
  m_levels.back().hasAttributes = declares || !element.GetAttributes().empty();
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
  const Level& level = m_levels.back();
  // As CElement does: an element with nothing in it, not even declarations, shows its empty text, which JSON has a word
  // for.
  if (!level.hasChild && (!m_text.empty() || !level.hasAttributes))
    writer.WriteText(m_text);
  else if (level.hasChild)
    WriteText(writer);
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
  Level& level = m_levels.back();
  level.hasChild = true;
  const bool isDoubtful = !m_text.empty() && !level.isMixed && CWhitespaceUtils::IsBlank(m_text);
  if (m_notes.GetKind() == Question::IsMixed && isDoubtful && !std::exchange(level.wasAsked, true))
    level.isMixed = m_notes.Next();
  WriteText(writer);
}

// Text beside child elements.
void TagWriter::WriteText(CDocumentWriter& writer) {
  Level& level = m_levels.back();
  const bool isBlank = CWhitespaceUtils::IsBlank(m_text);
  if (!isBlank || (level.isMixed && !m_text.empty())) {
    EndCollection(writer);
    writer.WriteText(m_text);
  }
  level.isMixed |= !isBlank && m_notes.GetKind() == Question::IsMixed;
  m_text.clear();
}

// As an object tells its collections.
void TagWriter::TellRow(CDocumentWriter& writer, const CXmlElement& child) {
  if (m_levels.back().row.GoesOn(child)) return;
  if (m_notes.Next())
    writer.BeginCollection();
  else
    writer.EndCollection();
}

void TagWriter::EndCollection(CDocumentWriter& writer) {
  if (m_levels.empty() || !m_levels.back().isInCollection) return;
  writer.EndCollection();
  m_levels.back().isInCollection = false;
}
