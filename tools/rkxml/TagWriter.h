#ifndef RKXML_TOOL_TAGWRITER_H
#define RKXML_TOOL_TAGWRITER_H

#include <RkXmlLib16/RkXmlLib16.h>

#include <deque>
#include <string>
#include <string_view>
#include <vector>

// Writes a document tag by tag, as it was read. Blank text beside child elements, which is indentation, is left out.
class TagWriter {
 public:
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
    bool isInCollection = false;
  };

  void BeginChild(RkXmlLib16::CDocumentWriter& writer);
  void EndCollection(RkXmlLib16::CDocumentWriter& writer);
  const std::wstring& NameOf(const RkXmlLib16::CXmlName* name);

  std::vector<Level> m_levels;
  std::wstring m_text;
  std::wstring m_value;
  std::deque<std::wstring> m_names;  // by their ordinals
};

#endif
