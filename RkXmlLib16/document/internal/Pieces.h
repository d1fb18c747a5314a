#ifndef RKXMLLIB16_DOCUMENT_INTERNAL_PIECES_H
#define RKXMLLIB16_DOCUMENT_INTERNAL_PIECES_H

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "RkXmlLib16/base/Export.h"

namespace RkXmlLib16 {

class CSerializationContext;
class CXmlElement;
class CXmlName;

// The paths that name the elements to hand out.
class RKXML_EXPORT CPiecePaths {
 public:
  // See CDocumentStream::AddPath.
  std::size_t Add(std::wstring_view path, const CSerializationContext& context);
  std::size_t GetCount() const noexcept { return m_paths.size(); }
  // Whether the element bears the name of the step of a path, and whether that step is the last.
  bool Matches(std::size_t path, std::size_t step, const CXmlElement& element);
  bool IsLast(std::size_t path, std::size_t step) const { return step + 1 == m_paths[path].size(); }

 private:
  struct Step {
    std::wstring localName;  // empty for any
    std::wstring namespaceUri;
    bool isOfNamespace = false;
    // The names of the document that were compared last, and what came out.
    const CXmlName* lastLocal = nullptr;
    const CXmlName* lastUri = nullptr;
    bool didMatch = false;
  };

  static Step MakeStep(std::wstring_view text, std::wstring_view path, const CSerializationContext& context);

  std::vector<std::vector<Step>> m_paths;
};

// What a document that is read in pieces knows beyond its tree: which elements are open, which of them is handed out,
// and what the reader of the pieces is to be told. The levels are the open elements outside the subtrees, and the top
// of a subtree; an element stays a level until it is dropped from the tree.
class RKXML_EXPORT CPieces {
 public:
  enum class Kind { Start, Text, Subtree, End };
  struct Event {
    Kind kind;
    CXmlElement* element;  // null for text
    std::wstring text;
    std::size_t path;
  };

  CPiecePaths& GetPaths() noexcept { return m_paths; }
  void SetReportsOpen(bool reports) noexcept { m_reportsOpen = reports; }
  // XML text made of JSON: the places of its elements and attributes come from here, in their order.
  void SetPlaces(std::deque<std::uint64_t>* places) noexcept { m_places = places; }
  std::deque<std::uint64_t>* GetPlaces() const noexcept { return m_places; }

  // An element begins; its attributes are there when the start is complete.
  void Start(CXmlElement* element);
  void CompleteStart(CXmlElement* element, std::uint64_t offset);
  // True when it is to be dropped at once.
  bool End(CXmlElement* element);
  void PopLevel();

  // Whether the current element is inside a subtree: its content is kept.
  bool IsInSubtree() const noexcept { return m_subtreeDepth != 0; }
  std::size_t GetLevelCount() const noexcept { return m_levelCount; }
  // Text of the innermost level, which is not kept in the tree. Say when it has grown.
  std::wstring& GetText() noexcept { return m_text; }
  void TextGrew();

  // Events that wait to be taken. The readers stop where there are some.
  bool HasEvents() const noexcept { return !m_events.empty(); }
  const Event& GetEvent() const noexcept { return m_events.front(); }
  bool IsReported(const Event& event) const noexcept { return m_reportsOpen || event.kind == Kind::Subtree; }
  void PopEvent() { m_events.pop_front(); }

  // The number of the element among those of its name that its parent has had so far; 0 when it is not this level.
  std::uint64_t GetPosition(const CXmlElement* element, std::size_t level) const noexcept;

  // Where the levels begin, without subtrees, and how many of these have been there since the last call.
  const std::vector<std::uint64_t>& GetOffsets() const noexcept { return m_offsets; }
  std::size_t TakeUnchangedOffsets() noexcept;
  // Before this place nothing is needed any more, when the reader has come to `offset`.
  std::uint64_t GetFirstNeeded(std::uint64_t offset) const noexcept;

 private:
  using Name = std::pair<const CXmlName*, const CXmlName*>;
  struct NameHash {
    std::size_t operator()(const Name& name) const noexcept;
  };
  struct Level {
    CXmlElement* element = nullptr;
    std::uint64_t position = 0;
    std::size_t firstActive = 0;                           // of m_active, the paths that go on below the element
    std::vector<std::pair<Name, std::uint64_t>> children;  // how many of a name, for the first few names
    std::unordered_map<Name, std::uint64_t, NameHash> moreChildren;
  };

  static std::uint64_t CountChild(Level& parent, const CXmlElement& child);
  void FindPaths(Level& level, std::size_t step);
  void FlushText();

  CPiecePaths m_paths;
  bool m_reportsOpen = false;
  std::deque<std::uint64_t>* m_places = nullptr;
  std::vector<Level> m_levels;  // those beyond m_levelCount keep their storage
  std::size_t m_levelCount = 0;
  std::vector<std::size_t> m_active;
  std::size_t m_subtreeDepth = 0;  // levels from the top of the subtree to the current element, both counted
  std::size_t m_subtreePath = 0;
  std::uint64_t m_subtreeOffset = 0;
  std::wstring m_text;
  std::deque<Event> m_events;
  std::vector<std::uint64_t> m_offsets;
  std::size_t m_unchangedOffsets = 0;
};

}  // namespace RkXmlLib16

#endif
