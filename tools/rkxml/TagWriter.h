#ifndef RKXML_TOOL_TAGWRITER_H
#define RKXML_TOOL_TAGWRITER_H

#include <RkXmlLib16/RkXmlLib16.h>

#include <string>
#include <string_view>
#include <vector>

#include "Notes.h"
#include "Tree.h"

// Writes a document tag by tag, as it was read. Blank text beside child elements is indentation and left out, unless
// the notes tell of other text beside them.
class TagWriter {
 public:
  explicit TagWriter(Notes& notes) : m_notes(notes) {}  // kept; with answers to the questions of the reading before

  void Start(RkXmlLib16::CDocumentWriter& writer, const RkXmlLib16::CXmlElement& element);
  void Text(std::wstring_view text) { m_text += text; }
  // A whole element; those that follow each other as such are a collection.
  void Object(RkXmlLib16::CDocumentWriter& writer, const RkXmlLib16::CXmlObjectBase& object);
  void End(RkXmlLib16::CDocumentWriter& writer);

  std::size_t GetDepth() const { return m_levels.size(); }
  // Ends the elements that are open, or opens `element` and those around it, so that the rest goes to another document.
  void Leave(RkXmlLib16::CDocumentWriter& writer);
  void Enter(RkXmlLib16::CDocumentWriter& writer, const RkXmlLib16::CXmlElement* element);

 private:
  struct Level {
    bool hasChild = false;
    bool hasAttributes = false;
    bool isInCollection = false;
    bool isMixed = false;  // as far as is known
    bool wasAsked = false;
    Row row;
  };

  void BeginChild(RkXmlLib16::CDocumentWriter& writer);
  void TellRow(RkXmlLib16::CDocumentWriter& writer, const RkXmlLib16::CXmlElement& child);
  void WriteText(RkXmlLib16::CDocumentWriter& writer);
  void EndCollection(RkXmlLib16::CDocumentWriter& writer);

  Notes& m_notes;
  std::vector<Level> m_levels;
  std::wstring m_text;
};

#endif
