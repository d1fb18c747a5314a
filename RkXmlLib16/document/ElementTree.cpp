// The tree of a document and its storage.
//
// The plain algorithm: a reader adds elements, attributes and texts to the current element and ends it. Elements are
// linked by parent, last child and next sibling; behind the last child comes the first one. The document owns all of it
// until it is emptied.
//
// What is added to that:
//   Storage       Nodes, texts and names lie in three arenas (CArena), which are freed as wholes; nothing in them has a
//                 destructor. An attribute block or text that must grow is extended if it lies last in its arena, else
//                 it moves to one of twice the size.
//   Builder       The usual case of adding nodes stands inline in CTreeBuilder, for the readers; the operations here do
//                 the same for every case.
//   Names         InternName holds each text once, in a table with open addressing. Invariant: within a document equal
//                 names have equal addresses, and names are never dropped. The hash is keyed, so that no input can
//                 choose names that collide. So are local names in a namespace, which nodes have.
//   Tokens        Such a name remembers the token of records that it was found to be (CXmlExpandedName::Is): its
//                 number, which no other name ever has. Tokens that it is not are not remembered, as there may be more
//                 of them later.
//   Held texts    While objects are read the input stays, and most texts are but parts of it (CXmlHeldText). One that
//                 somebody asks for is widened into a block then, behind a mutex; the library itself reads short ones
//                 by CNodeText, which leaves them as they are. White space between child elements is not kept at all:
//                 it is found again in front of them (JoinGaps).
//   Blanks        Short white space is held once for all elements that have it (ShareBlanks). A block of capacity 0 is
//                 shared and never written to.
//   Filters       An element that the filter drops gives its storage back: the arenas return to where they were when it
//                 began (Storage::OpenElement). Invariant: that is done only if nothing that stays was allocated since;
//                 `pinned` counts the open elements for which something was.
//   Declarations  `aliases` has the latest meaning of each prefix, which is right for the whole document as long as
//                 only the document element declares. innerPrefixes tells for which prefixes that is not so; for those
//                 the declarations are searched from the element outwards.
//   Limits        Nodes, characters and depth are counted as they are added.
//   Deletion      Elements are deleted by some callers. Those in the arena are left alone; a table, behind a mutex,
//                 knows those that `new` made.
#include "RkXmlLib16/document/ElementTree.h"

#include <algorithm>
#include <cstring>
#include <cwchar>
#include <memory>
#include <mutex>
#include <new>
#include <unordered_set>
#include <utility>
#include <vector>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/base/internal/Ascii.h"
#include "RkXmlLib16/base/internal/KeyedHash.h"
#include "RkXmlLib16/base/internal/WideText.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/context/internal/ErrorSession.h"
#include "RkXmlLib16/document/internal/Pieces.h"
#include "RkXmlLib16/document/internal/SiblingIndex.h"
#include "RkXmlLib16/document/internal/Source.h"
#include "RkXmlLib16/document/internal/Storage.h"

namespace RkXmlLib16 {

namespace {

constexpr std::wstring_view kXsiNamespace = L"http://www.w3.org/2001/XMLSchema-instance";
constexpr std::wstring_view kXmlnsNamespace = L"http://www.w3.org/2000/xmlns/";

std::wstring_view ViewOf(const wchar_t* text) {
  return text != nullptr ? std::wstring_view(text) : std::wstring_view();
}

// Characters of one shared text of white space, and of all of them together.
constexpr std::size_t kLongestSharedBlanks = 128;
constexpr std::size_t kMostSharedBlanks = std::size_t{1} << 16;

}  // namespace

void CXmlDocument::Storage::GrowNameTable() {
  std::vector<const CXmlName*> grown(std::max<std::size_t>(64, nameTable.size() * 2));
  for (const CXmlName* name : nameTable) {
    if (name == nullptr) continue;
    std::size_t slot = name->m_hash & (grown.size() - 1);
    while (grown[slot] != nullptr) slot = (slot + 1) & (grown.size() - 1);
    grown[slot] = name;
  }
  nameTable.swap(grown);
}

[[gnu::noinline]] void CXmlDocument::Storage::Open(CXmlElement* previousSibling) {
  open.push_back({previousSibling, nodes.GetMark(), texts.GetMark(), nodeCount - 1, charCount, lastingCharCount,
                  declarations.size() - pendingDeclarations});
}

void CXmlDocument::Storage::ThrowExceeded(const wchar_t* name, unsigned long value) const {
  const CXmlElement* const current = document.m_currentElement;
  CReadLimits::ThrowExceeded(name, value, current != nullptr ? current->GetXPath() : std::wstring());
}

void CXmlDocument::Storage::CountNode() {
  const unsigned long limit = document.m_context->GetLimits().GetMaxNodes();
  if (++nodeCount > limit && limit != 0) ThrowExceeded(L"elements and attributes", limit);
}

void CXmlDocument::Storage::CountCharacters(std::size_t more) {
  const unsigned long limit = document.m_context->GetLimits().GetMaxCharacters();
  charCount += more;
  if (charCount > limit && limit != 0) ThrowExceeded(L"characters", limit);
}

void CXmlDocument::Storage::CountLasting(std::size_t more) {
  lastingCharCount += more;
  CountCharacters(more);
}

void CXmlDocument::Storage::DropCounts(const OpenElement& start) {
  nodeCount = start.nodeCount;
  charCount = start.charCount + (lastingCharCount - start.lastingCharCount);
}

void CXmlDocument::Storage::DropDeclarations(std::size_t count) {
  for (std::size_t i = count; i < indexedDeclarations; ++i) firstDeclarations.erase(declarations[i].element);
  indexedDeclarations = std::min(indexedDeclarations, count);
  declarations.resize(count);
}

CXmlTextBlock* CXmlDocument::Storage::Reserve(CXmlTextBlock* block, std::size_t more) {
  if (block != nullptr && block->m_length + more <= block->m_capacity) return block;
  const std::size_t length = block != nullptr ? block->m_length : 0;
  if (more > UINT32_MAX / 2 - length) throw CRkException(L"The text of an element is too long.");
  const std::size_t needed = length + more;
  if (block != nullptr && block->m_capacity != 0) {
    if (texts.Extend(block, BytesOfText(block->m_capacity), BytesOfText(needed))) {
      block->m_capacity = static_cast<std::uint32_t>(needed);
      return block;
    }
  }
  const std::size_t capacity = block != nullptr ? std::max(needed, 2 * std::size_t{block->m_capacity}) : needed;
  auto* const moved = new (texts.Allocate(BytesOfText(capacity)))
      CXmlTextBlock{static_cast<std::uint32_t>(length), static_cast<std::uint32_t>(capacity)};
  if (block != nullptr) std::wmemcpy(moved->Chars(), block->Chars(), length);
  moved->Chars()[length] = L'\0';
  return moved;
}

CXmlTextBlock* CXmlDocument::Storage::MakeBlock(const CXmlElement& element, CXmlHeldText text) {
  if (!text.IsOfInput()) return text.GetBlock();
  if (text.IsOfGaps()) return JoinGaps(element, text);
  const auto length = static_cast<std::uint32_t>(text.GetLength());
  const std::size_t steps = (length + std::size_t{15}) / 16 * 16;
  unsigned char* const memory = texts.Prepare(BytesOfText(steps));
  auto* const block = new (memory) CXmlTextBlock{length, length};
  Ascii::WidenSteps(document.m_textInput + text.GetOffset(), length, block->Chars());
  block->Chars()[length] = L'\0';
  texts.Take(BytesOfText(length));
  return block;
}

// Each gap begins behind markup and ends at a child element or, behind the last one, at the place.
CXmlTextBlock* CXmlDocument::Storage::JoinGaps(const CXmlElement& element, CXmlHeldText text) {
  const auto length = static_cast<std::uint32_t>(text.GetLength());
  auto* const block = new (texts.Allocate(BytesOfText(length))) CXmlTextBlock{length, length};
  wchar_t* out = block->Chars();
  const auto append = [&](std::uint64_t end) {
    const unsigned char* const gapEnd = document.m_textInput + end;
    const unsigned char* at = gapEnd;
    while (at[-1] == ' ' || at[-1] == '\n' || at[-1] == '\t') --at;
    out = std::copy(at, gapEnd, out);
  };
  std::uint64_t last = 0;
  for (const CXmlElement* child = element.GetFirstElement(); child != nullptr; child = child->GetNextSiblingElement())
    append(last = child->m_offset);
  if (text.GetOffset() > last) append(text.GetOffset());
  *out = L'\0';
  return block;
}

CXmlTextBlock* CXmlDocument::Storage::Keep(std::wstring_view text) {
  if (text.empty()) return nullptr;
  if (text.size() > UINT32_MAX / 2) throw CRkException(L"A value is too long.");
  auto* const block =
      new (names.Allocate(BytesOfText(text.size()))) CXmlTextBlock{static_cast<std::uint32_t>(text.size()), 0};
  std::wmemcpy(block->Chars(), text.data(), text.size());
  block->Chars()[text.size()] = L'\0';
  return block;
}

CXmlTextBlock* CXmlDocument::Storage::ShareBlanks(const CXmlTextBlock* block, std::wstring_view blanks) {
  const std::size_t length = block != nullptr ? block->m_length : 0;
  if (length + blanks.size() > kLongestSharedBlanks) return nullptr;
  const std::size_t place =
      reinterpret_cast<std::uintptr_t>(block) / 8 + blanks.size() * 5 + static_cast<std::size_t>(blanks.back());
  BlanksStep& step = blanksSteps[place % blanksSteps.size()];
  if (step.after != nullptr && step.before == block && step.after->m_length == length + blanks.size() &&
      WideText::IsEqual({step.after->Chars() + length, blanks.size()}, blanks))
    return step.after;
  if (sharedBlankCount > kMostSharedBlanks) return nullptr;
  sharedBlankCount += length + blanks.size();
  auto* const joined = new (names.Allocate(BytesOfText(length + blanks.size())))
      CXmlTextBlock{static_cast<std::uint32_t>(length + blanks.size()), 0};
  if (block != nullptr) std::wmemcpy(joined->Chars(), block->Chars(), length);
  std::wmemcpy(joined->Chars() + length, blanks.data(), blanks.size());
  joined->Chars()[joined->m_length] = L'\0';
  step = {block, joined};
  return joined;
}

// ---- document ----

CXmlDocument::CXmlDocument() : CXmlDocument(nullptr, CSerializationContext::m_defaultContext) {}

CXmlDocument::CXmlDocument(const CSerializationContext& context) : CXmlDocument(nullptr, context) {}

CXmlDocument::CXmlDocument(ElementFilter filter) : CXmlDocument(filter, CSerializationContext::m_defaultContext) {}

CXmlDocument::CXmlDocument(ElementFilter filter, const CSerializationContext& context)
    : m_context(&context), m_filter(filter), m_schemaType(context.GetSchemaType()) {
  Init();
}

CXmlDocument::~CXmlDocument() = default;

void CXmlDocument::Init() {
  if (m_storage != nullptr) m_storage->noted.clear();
  DropTree();
  m_input = nullptr;
  m_inputLength = 0;
  m_textInput = nullptr;
  m_convertedXml.Clear();
  m_source = nullptr;
  m_pieces = nullptr;
  m_isPaused = false;
  m_places.clear();
  m_wasScanned = false;
  m_schemaType = m_context->GetSchemaType();
}

void CXmlDocument::Cleanup() { Init(); }

void CXmlDocument::DropTree() {
  const bool isUntouched = m_storage != nullptr && m_storage->IsUntouched();
  auto fresh = isUntouched ? std::move(m_storage) : std::make_unique<Storage>(*this);
  m_documentElement = nullptr;
  m_currentElement = nullptr;
  // What was noted of a wrapper around the document stays.
  if (m_storage != nullptr)
    for (CRkDropped& noted : m_storage->noted)
      if (noted.kind == RkDropped_TrailingBytes) fresh->noted.push_back(std::move(noted));
  m_storage = std::move(fresh);
}

void CXmlDocument::NoteDropped(RkDropped kind, std::uint64_t offset, std::uint64_t count) {
  if (m_context->GetErrorHandler() == nullptr) return;
  for (CRkDropped& noted : m_storage->noted)
    if (noted.kind == kind) return void(noted.count += count);
  m_storage->noted.push_back({kind, {}, count, Locate(offset)});
}

void CXmlDocument::TellNoted() {
  if (m_context->GetErrorHandler() == nullptr) return;
  for (const CRkDropped& noted : std::exchange(m_storage->noted, {})) CErrorSession::TellDropped(*m_context, noted);
}

CPieces& CXmlDocument::StartPieces(std::unique_ptr<CSource> source) {
  Cleanup();
  m_source = std::move(source);
  m_pieces = std::make_unique<CPieces>();
  return *m_pieces;
}

void CXmlDocument::SetPieceInput(const unsigned char* bytes, std::size_t length, std::size_t lengthSoFar) {
  m_input = length != 0 ? bytes : nullptr;
  m_inputLength = lengthSoFar;
}

void CXmlDocument::CompleteStart(CXmlElement* element) {
  if (m_pieces == nullptr) return;
  if (std::deque<std::uint64_t>* const places = m_pieces->GetPlaces()) {
    const auto take = [places](std::uint64_t& offset) {
      offset = places->empty() ? CRkLocation::kNoOffset : places->front();
      if (!places->empty()) places->pop_front();
    };
    take(element->m_offset);
    for (CXmlAttribute* attribute : element->GetAttributes()) take(attribute->m_offset);
  }
  m_pieces->CompleteStart(element, element->m_offset);
  m_isPaused = m_pieces->HasEvents();
}

void CXmlDocument::ReleaseEvent() {
  const CPieces::Event& event = m_pieces->GetEvent();
  const bool isEnd = event.kind == CPieces::Kind::Subtree || event.kind == CPieces::Kind::End;
  CXmlElement* const element = event.element;
  m_pieces->PopEvent();
  m_isPaused = m_pieces->HasEvents();
  if (isEnd) DropPiece(element);
}

// The element is the innermost level, and what was allocated last.
void CXmlDocument::DropPiece(CXmlElement* element) {
  Storage& storage = *m_storage;
  const Storage::OpenElement start = storage.open.back();
  storage.open.pop_back();
  m_pieces->PopLevel();
  CXmlElement* const parent = element->m_parent;
  if (parent == nullptr) return;  // the document element stays
  parent->m_lastChild = nullptr;
  storage.sections.clear();
  storage.DropDeclarations(start.declarationCount);
  storage.nodes.RewindTo(start.nodes);
  storage.texts.RewindTo(start.texts);
  storage.DropCounts(start);
}

void CXmlDocument::CountTable(std::size_t charCount) {
  if (m_pieces != nullptr) m_storage->CountLasting(charCount);
}

// Whether text of the current element goes to the tree.
bool CXmlDocument::KeepsText() const noexcept { return m_pieces == nullptr || m_pieces->IsInSubtree(); }

// The nodes in the order of the document: an element, its attributes, its children.
void CXmlDocument::SetPlaces(const CLargeVector<std::uint64_t>& places) {
  std::size_t next = 0;
  for (CXmlElement* element = m_documentElement; element != nullptr && next < places.size();) {
    element->m_offset = places[next++];
    for (CXmlAttribute* attribute : element->GetAttributes())
      if (next < places.size()) attribute->m_offset = places[next++];
    CXmlElement* following = element->GetFirstElement();
    for (; following == nullptr && element != nullptr; element = element->m_parent)
      following = element->GetNextSiblingElement();
    element = following;
  }
}

CRkLocation CXmlDocument::Locate(std::uint64_t offset) const {
  std::wstring path = m_currentElement != nullptr ? m_currentElement->GetXPath() : std::wstring();
  if (m_pieces != nullptr && m_pieces->GetPlaces() != nullptr) return CRkLocation(std::move(path));
  return m_source != nullptr ? m_source->Locate(offset, std::move(path)) : CRkLocation(std::move(path));
}

CXmlText CXmlDocument::Widen(const CXmlElement& element, std::atomic<CXmlHeldText>& text) const {
  const std::lock_guard<std::mutex> lock(m_storage->widening);
  const CXmlHeldText block = m_storage->MakeBlock(element, text);
  text.store(block, std::memory_order_release);
  return block.View();
}

void CXmlDocument::SettleGaps(const CXmlElement& element) const {
  if (element.m_text.load().IsOfGaps()) Widen(element, element.m_text);
}

const CXmlName* CXmlDocument::GetEmptyName() const noexcept { return &m_storage->emptyName; }

const CXmlName* CXmlDocument::InternName(std::wstring_view text) {
  if (text.empty()) return GetEmptyName();
  if (text.size() > UINT32_MAX / 2) throw CRkException(L"A name is too long.");
  Storage& storage = *m_storage;
  if (storage.nameCount * 2 >= storage.nameTable.size()) storage.GrowNameTable();
  const auto hash = static_cast<std::uint32_t>(CKeyedHash::Of(text));
  std::size_t slot = hash & (storage.nameTable.size() - 1);
  for (; storage.nameTable[slot] != nullptr; slot = (slot + 1) & (storage.nameTable.size() - 1)) {
    const CXmlName* const name = storage.nameTable[slot];
    if (name->m_hash == hash && name->View() == text) return name;
  }
  if (storage.nameCount >= UINT32_MAX - 1) throw CRkException(L"The document has too many names.");
  storage.CountLasting(text.size());
  auto* const memory =
      static_cast<unsigned char*>(storage.names.Allocate(sizeof(CXmlName) + (text.size() + 1) * sizeof(wchar_t)));
  auto* const chars = reinterpret_cast<wchar_t*>(memory + sizeof(CXmlName));
  std::wmemcpy(chars, text.data(), text.size());
  chars[text.size()] = L'\0';
  ++storage.nameCount;
  const auto* const name = new (memory)
      CXmlName(chars, static_cast<std::uint32_t>(text.size()), hash, static_cast<std::uint32_t>(storage.nameCount));
  storage.nameTable[slot] = name;
  return name;
}

std::size_t CXmlDocument::Storage::ExpandedHash::operator()(
    const std::pair<const CXmlName*, const CXmlName*>& name) const noexcept {
  return std::size_t{name.first->m_hash} << 32 | name.second->m_hash;
}

const CXmlExpandedName* CXmlDocument::InternName(const CXmlName* namespaceUri, const CXmlName* localName) {
  Storage& storage = *m_storage;
  const CXmlExpandedName* const first = localName->m_first;
  if (first != nullptr && first->m_namespaceUri == namespaceUri) return first;
  const CXmlExpandedName*& name =
      first == nullptr ? localName->m_first : storage.expandedNames[{localName, namespaceUri}];
  if (name == nullptr)
    name = new (storage.names.Allocate(sizeof(CXmlExpandedName))) CXmlExpandedName(this, localName, namespaceUri);
  return name;
}

std::shared_ptr<const std::wstring> CXmlDocument::ShareName(const CXmlName* name) const {
  if (name->empty()) return nullptr;
  std::shared_ptr<const std::wstring>& shared = m_storage->sharedNames[name];
  if (shared == nullptr) shared = std::make_shared<const std::wstring>(name->View());
  return shared;
}

CXmlElement* CXmlDocument::AddElement(const CXmlExpandedName* name) {
  Storage& storage = *m_storage;
  CXmlElement* const parent = m_currentElement;
  if (parent == nullptr && m_documentElement != nullptr)
    throw CRkException(L"A document has one document element only.");
  const unsigned long deepest = m_context->GetLimits().GetMaxElementDepth();
  if (storage.depth >= deepest && deepest != 0) storage.ThrowExceeded(L"element depth", deepest);
  storage.CountNode();
  if (m_filter != nullptr || !KeepsText()) storage.Open(parent != nullptr ? parent->m_lastChild : nullptr);
  auto* const element = new (storage.nodes.Allocate(sizeof(CXmlElement))) CXmlElement(parent, name);
  if (m_filter != nullptr) storage.sections.erase(element);  // of one that was dropped
  for (; storage.pendingDeclarations != 0; --storage.pendingDeclarations)
    storage.declarations.end()[-static_cast<std::ptrdiff_t>(storage.pendingDeclarations)].element = element;
  if (parent == nullptr)
    m_documentElement = element;
  else
    parent->AppendChild(element);
  m_currentElement = element;
  ++storage.depth;
  if (m_pieces != nullptr) m_pieces->Start(element);
  return element;
}

CXmlElement* CXmlDocument::AddDocElement(const wchar_t* namespaceUri, const wchar_t* localName) {
  if (m_documentElement != nullptr) throw CRkException(L"A document has one document element only.");
  return AddElement(InternName(ViewOf(namespaceUri), ViewOf(localName)));
}

CXmlElement* CXmlDocument::AddChildElement(const wchar_t* namespaceUri, const wchar_t* localName) {
  if (m_currentElement == nullptr) throw CRkException(L"A child element needs an open element.");
  return AddElement(InternName(ViewOf(namespaceUri), ViewOf(localName)));
}

void CXmlDocument::EndElement() {
  if (m_currentElement == nullptr) throw CRkException(L"There is no open element to end.");
  CXmlElement* const element = m_currentElement;
  CXmlElement* const parent = element->m_parent;
  Storage& storage = *m_storage;
  m_currentElement = parent;
  --storage.depth;
  if (m_pieces != nullptr) {
    if (m_pieces->End(element)) DropPiece(element);
    m_isPaused = m_pieces->HasEvents();
    return;
  }
  if (m_filter == nullptr) return;

  const Storage::OpenElement start = storage.open.back();
  storage.open.pop_back();
  const bool reclaimable = storage.pinned <= storage.open.size();
  storage.pinned = std::min(storage.pinned, storage.open.size());
  if (parent == nullptr) {
    m_filter(element);  // the document element stays, whatever the answer
    return;
  }
  const CArena::Mark nodes = storage.nodes.GetMark();
  const CArena::Mark texts = storage.texts.GetMark();
  if (!m_filter(element)) return;
  storage.siblings.reset();
  if (parent->m_lastChild == element) parent->DropLastChild(start.previousSibling);
  storage.DropDeclarations(start.declarationCount);
  // What the filter itself added to the tree has to stay.
  if (reclaimable && nodes == storage.nodes.GetMark() && texts == storage.texts.GetMark()) {
    storage.nodes.RewindTo(start.nodes);
    storage.texts.RewindTo(start.texts);
    storage.DropCounts(start);
  } else {
    storage.pinned = storage.open.size();
  }
}

CXmlAttribute* CXmlDocument::AddAttribute(CXmlElement* element, const CXmlExpandedName* name,
                                          CXmlTextBlock* storedValue) {
  Storage& storage = *m_storage;
  if (element != m_currentElement) storage.pinned = storage.open.size();
  storage.CountNode();
  CXmlAttributeBlock* block = element->m_attributes.m_block;
  if (block == nullptr) {
    block = new (storage.nodes.Allocate(BytesOfAttributes(1))) CXmlAttributeBlock{0, 1};
    element->m_attributes.m_block = block;
  } else if (block->m_count == block->m_capacity) {
    if (storage.nodes.Extend(block, BytesOfAttributes(block->m_capacity),
                             BytesOfAttributes(block->m_capacity + std::size_t{1}))) {
      ++block->m_capacity;
    } else {
      const std::uint32_t capacity = std::max(4u, 2 * block->m_capacity);
      auto* const moved =
          new (storage.nodes.Allocate(BytesOfAttributes(capacity))) CXmlAttributeBlock{block->m_count, capacity};
      std::memcpy(static_cast<void*>(moved->Attributes()), block->Attributes(), block->m_count * sizeof(CXmlAttribute));
      element->m_attributes.m_block = block = moved;
    }
  }
  auto* const attribute = new (block->Attributes() + block->m_count) CXmlAttribute(element, name);
  attribute->m_value.store(storedValue, std::memory_order_relaxed);
  ++block->m_count;
  return attribute;
}

CXmlAttribute* CXmlDocument::AddAttribute(CXmlElement* element, const CXmlExpandedName* name, std::wstring_view value) {
  CXmlAttribute* const attribute = AddAttribute(element, name, static_cast<CXmlTextBlock*>(nullptr));
  if (!value.empty()) {
    std::wmemcpy(ReserveValue(attribute, value.size()), value.data(), value.size());
    CommitValue(attribute, value.size());
  }
  return attribute;
}

CXmlTextBlock* CXmlDocument::StoreValue(std::wstring_view value) {
  m_storage->CountLasting(value.size());
  return m_storage->Keep(value);
}

void CXmlDocument::AddElementAttribute(CXmlElement* element, const std::wstring& localName, const std::wstring& value,
                                       const std::wstring& namespaceUri) {
  AddAttribute(element, InternName(namespaceUri, localName), value);
}

wchar_t* CXmlDocument::ReserveValue(CXmlAttribute* attribute, std::size_t charCount) {
  CXmlTextBlock* const block =
      m_storage->Reserve(m_storage->MakeBlock(*attribute->m_element, attribute->m_value), charCount);
  attribute->m_value.store(block, std::memory_order_relaxed);
  return block->Chars() + block->m_length;
}

void CXmlDocument::CommitValue(CXmlAttribute* attribute, std::size_t charCount) {
  CXmlTextBlock& block = *attribute->m_value.load().GetBlock();
  block.m_length += static_cast<std::uint32_t>(charCount);
  block.Chars()[block.m_length] = L'\0';
  m_storage->CountCharacters(charCount);
}

wchar_t* CXmlDocument::ReserveText(CXmlElement* element, std::size_t charCount) {
  if (!KeepsText()) return ReserveOpenText(charCount);
  if (element != m_currentElement) m_storage->pinned = m_storage->open.size();
  CXmlTextBlock* const block = m_storage->Reserve(m_storage->MakeBlock(*element, element->m_text), charCount);
  element->m_text.store(block, std::memory_order_relaxed);
  return block->Chars() + block->m_length;
}

void CXmlDocument::CommitText(CXmlElement* element, std::size_t charCount) {
  if (!KeepsText()) return CommitOpenText(charCount);
  CXmlTextBlock& block = *element->m_text.load().GetBlock();
  block.m_length += static_cast<std::uint32_t>(charCount);
  block.Chars()[block.m_length] = L'\0';
  m_storage->CountCharacters(charCount);
}

wchar_t* CXmlDocument::ReserveOpenText(std::size_t charCount) {
  std::wstring& text = m_pieces->GetText();
  m_openTextLength = text.size();
  text.resize(m_openTextLength + charCount);
  return text.data() + m_openTextLength;
}

void CXmlDocument::CommitOpenText(std::size_t charCount) {
  m_pieces->GetText().resize(m_openTextLength + charCount);
  m_pieces->TextGrew();
  m_isPaused = m_pieces->HasEvents();
}

void CXmlDocument::AppendBlanks(std::wstring_view blanks) {
  CXmlElement* const element = m_currentElement;
  if (element == nullptr || blanks.empty()) return;
  if (!KeepsText()) return AppendText(element, blanks);
  const CXmlHeldText held = element->m_text;
  if (held.IsOfInput()) return AppendText(element, blanks);
  CXmlTextBlock* const text = held.GetBlock();
  CXmlTextBlock* const shared =
      text == nullptr || text->m_capacity == 0 ? m_storage->ShareBlanks(text, blanks) : nullptr;
  if (shared == nullptr) return AppendText(element, blanks);
  m_storage->CountCharacters(blanks.size());
  element->m_text.store(shared, std::memory_order_relaxed);
}

void CXmlDocument::AppendText(CXmlElement* element, std::wstring_view text) {
  if (text.empty()) return;
  wchar_t* const out = ReserveText(element, text.size());
  wchar_t* end = out;
  while (!text.empty()) {
    const std::size_t run = std::min(text.find(L'\r'), text.size());
    std::wmemcpy(end, text.data(), run);
    end += run;
    text.remove_prefix(std::min(run + 1, text.size()));
  }
  CommitText(element, static_cast<std::size_t>(end - out));
}

void CXmlDocument::MarkSection() {
  const CXmlElement* const element = m_currentElement;
  if (element != nullptr && KeepsText()) m_storage->sections[element].push_back(element->GetText().size());
}

void CXmlDocument::AppendTextExcludingCR(CXmlElement* element, const wchar_t* text, unsigned long length) {
  if (text != nullptr) AppendText(element, {text, ::wcsnlen(text, length)});
}

void CXmlDocument::AppendTextExcludingCR(CXmlElement* element, const wchar_t* text) {
  AppendText(element, ViewOf(text));
}

void CXmlDocument::AddNamespaceAlias(const wchar_t* prefix, const wchar_t* namespaceUri) {
  AddNamespaceAlias(InternName(ViewOf(prefix)), InternName(ViewOf(namespaceUri)));
}

void CXmlDocument::AddNamespaceAlias(const CXmlName* prefix, const CXmlName* namespaceUri) {
  Storage& storage = *m_storage;
  Storage::Alias& alias = storage.aliasesByAddress[prefix];
  const bool isNew = alias.entry == nullptr;
  if (isNew) alias.entry = &storage.aliases[prefix->View()];
  if (m_documentElement != nullptr && !alias.isInner && (isNew || *alias.entry != namespaceUri)) {
    storage.innerPrefixes.insert(prefix->View());
    alias.isInner = true;
  }
  *alias.entry = namespaceUri;
  storage.declarations.push_back({nullptr, prefix, namespaceUri});
  ++storage.pendingDeclarations;
}

CXmlText CXmlDocument::LookupAliasFromNamespace(const wchar_t* namespaceUri) const {
  const std::wstring_view wanted = ViewOf(namespaceUri);
  for (const auto& [prefix, uri] : m_storage->aliases)
    if (uri->View() == wanted) return {prefix.data(), prefix.size()};
  return {};
}

CXmlText CXmlDocument::LookupNamespaceFromAlias(const wchar_t* prefix) const {
  const CXmlName* const found = LookupNamespaceRef(ViewOf(prefix));
  return found != nullptr ? found->GetText() : CXmlText();
}

const CXmlName* CXmlDocument::LookupNamespaceRef(std::wstring_view prefix) const noexcept {
  const auto found = m_storage->aliases.find(prefix);
  return found != m_storage->aliases.end() ? found->second : nullptr;
}

bool CXmlDocument::HasInnerDeclarations() const noexcept { return !m_storage->innerPrefixes.empty(); }

CXmlDocument::Declarations CXmlDocument::GetDeclarations(const CXmlElement* element) const {
  Storage& storage = *m_storage;
  const std::size_t complete = storage.declarations.size() - storage.pendingDeclarations;
  for (; storage.indexedDeclarations < complete; ++storage.indexedDeclarations)
    storage.firstDeclarations.try_emplace(storage.declarations[storage.indexedDeclarations].element,
                                          storage.indexedDeclarations);
  const Declaration* const end = storage.declarations.data() + complete;
  const auto found = storage.firstDeclarations.find(element);
  if (found == storage.firstDeclarations.end()) return {end, end};
  const Declaration* const first = storage.declarations.data() + found->second;
  return {first, std::find_if(first, end, [element](const Declaration& d) { return d.element != element; })};
}

std::vector<std::pair<CXmlText, CXmlText>> CXmlDocument::GetNamespaceAliases() const {
  std::vector<std::pair<CXmlText, CXmlText>> aliases;
  aliases.reserve(m_storage->aliases.size());
  for (const auto& [prefix, uri] : m_storage->aliases) {
    aliases.emplace_back(CXmlText(prefix.data(), prefix.size()), uri->GetText());
  }
  return aliases;
}

// ---- name ----

bool CXmlExpandedName::Compare(const CNameToken& token) const noexcept {
  const bool isEqual = WideText::IsEqual(m_localName->View(), token.GetLocalName()) &&
                       WideText::IsEqual(m_namespaceUri->View(), token.GetNamespace());
  if (isEqual && token.GetNumber() != CNameToken::kNoNumber)
    m_token.store(token.GetNumber(), std::memory_order_relaxed);
  return isEqual;
}

// ---- element ----

namespace {

std::size_t LevelOf(const CXmlElement& element) {
  std::size_t level = 0;
  for (const CXmlElement* parent = element.GetParentElement(); parent != nullptr; parent = parent->GetParentElement())
    ++level;
  return level;
}

// The name with its position among the siblings that have the same qualified name; in pieces, where those that came
// before are gone, and those to come not known, among those of its name so far. The element is that many levels below
// the document element.
std::wstring WithPredicate(const CXmlElement& element, const CPrefixIndex& prefixes, const CPieces* pieces,
                           std::size_t level) {
  const CXmlName* const uri = element.GetNamespaceRef();
  std::wstring name = prefixes.GetQName(uri, element.GetLocalName());
  if (element.GetParentElement() == nullptr) return name;
  if (const std::uint64_t known = pieces != nullptr ? pieces->GetPosition(&element, level) : 0)
    return name + L'[' + std::to_wstring(known) + L']';
  std::size_t position = 0;
  std::size_t count = 0;
  for (const CXmlElement* sibling = element.GetParentElement()->GetFirstElement(); sibling != nullptr;
       sibling = sibling->GetNextSiblingElement()) {
    if (sibling->GetLocalNameRef() != element.GetLocalNameRef()) continue;
    if (prefixes.Distinguish(sibling->GetNamespaceRef()) != prefixes.Distinguish(uri)) continue;
    ++count;
    if (sibling == &element) position = count;
  }
  if (count > 1) name += L'[' + std::to_wstring(position) + L']';
  return name;
}

std::wstring WithPredicate(const CXmlElement& element, CSiblingIndex& index) {
  std::wstring name = index.GetPrefixes().GetQName(element.GetNamespaceRef(), element.GetLocalName());
  const CSiblingIndex::Place place = index.Find(element);
  if (place.all > 1) name += L'[' + std::to_wstring(place.before + 1) + L']';
  return name;
}

template <class Name>
std::wstring PathOf(const CXmlElement* element, Name&& nameOf) {
  std::wstring path;  // made backwards, as a document may be nothing but depth
  for (; element != nullptr; element = element->GetParentElement()) {
    const std::wstring name = nameOf(*element);
    path.append(name.rbegin(), name.rend()) += L'/';
  }
  std::reverse(path.begin(), path.end());
  return path;
}

}  // namespace

CXmlAttribute* CXmlAttributes::at(std::size_t index) const {
  if (index >= size()) {
    throw CRkInvalidParamException(
        FormatString(L"Index %d is out of range, use 0 - %d", static_cast<int>(index), static_cast<int>(size())));
  }
  return First() + index;
}

CXmlElement::CXmlElement(const CXmlDocument* document, const CXmlElement* parent)
    : m_name(document != nullptr
                 ? const_cast<CXmlDocument*>(document)->InternName(document->GetEmptyName(), document->GetEmptyName())
                 : throw CRkInvalidParamException(L"An element needs a document.")),
      m_parent(const_cast<CXmlElement*>(parent)) {}

CXmlDocument& CXmlElement::Owner() const { return *m_name->GetDocument(); }

const std::vector<std::size_t>* CXmlElement::GetSections() const noexcept {
  const auto& sections = Owner().m_storage->sections;
  if (sections.empty()) return nullptr;
  const auto found = sections.find(this);
  return found != sections.end() ? &found->second : nullptr;
}

CXmlText CXmlElement::GetAttribute(const wchar_t* localName, const wchar_t* namespaceUri) const {
  const std::wstring_view name = ViewOf(localName);
  const std::wstring_view uri = ViewOf(namespaceUri);
  for (const CXmlAttribute* attribute : GetAttributes())
    if (attribute->GetLocalName() == name && attribute->GetNamespaceURI() == uri) return attribute->GetValue();
  return {};
}

std::wstring CXmlElement::GetQName() const {
  return CPrefixIndex(Owner().m_storage->aliases).GetQName(GetNamespaceRef(), GetLocalName());
}

std::wstring CXmlElement::GetNameWithPredicate() const {
  const CXmlDocument& document = Owner();
  return WithPredicate(*this, CPrefixIndex(document.m_storage->aliases), document.m_pieces.get(), LevelOf(*this));
}

std::wstring CXmlElement::GetXPath() const {
  if (CSiblingIndex* const index = CSiblingIndex::Of(*this))
    return PathOf(this, [index](const CXmlElement& element) { return WithPredicate(element, *index); });
  const CXmlDocument& document = Owner();
  const CPrefixIndex prefixes(document.m_storage->aliases);
  std::size_t level = LevelOf(*this);
  return PathOf(this, [&](const CXmlElement& element) {
    return WithPredicate(element, prefixes, document.m_pieces.get(), level--);
  });
}

// Of a document in pieces little is held at a time.
CSiblingIndex* CSiblingIndex::Of(const CXmlElement& element) {
  const CXmlDocument& document = *element.GetDocument();
  if (!CErrorSession::IsActive() || document.m_pieces != nullptr) return nullptr;
  CXmlDocument::Storage& storage = *document.m_storage;
  if (storage.siblings == nullptr || storage.indexedAliases != storage.declarations.size()) {
    storage.siblings = std::make_unique<CSiblingIndex>(storage.aliases);
    storage.indexedAliases = storage.declarations.size();
  }
  return storage.siblings.get();
}

const CXmlName* CXmlElement::LookupNamespaceRef(std::wstring_view prefix) const {
  const CXmlDocument& document = *GetDocument();
  if (document.m_storage->innerPrefixes.count(prefix) == 0) return document.LookupNamespaceRef(prefix);
  for (const CXmlElement* element = this; element != nullptr; element = element->m_parent)
    for (const CXmlDocument::Declaration& declaration : document.GetDeclarations(element))
      if (declaration.prefix->View() == prefix) return declaration.namespaceUri;
  return nullptr;
}

CRkLocation CXmlElement::GetLocation() const {
  CSource* const source = GetDocument()->m_source.get();
  return source != nullptr ? source->Locate(m_offset, GetXPath()) : CRkLocation(GetXPath());
}

CRkLocation CXmlElement::GetLocationWithoutPath() const {
  CSource* const source = GetDocument()->m_source.get();
  return source != nullptr ? source->Locate(m_offset, {}) : CRkLocation();
}

CXmlElement* CXmlElement::CreateNewChildElement() {
  CXmlDocument& document = Owner();
  document.SettleGaps(*this);
  document.m_storage->pinned = document.m_storage->open.size();
  auto* const child = new (document.m_storage->nodes.Allocate(sizeof(CXmlElement))) CXmlElement(&document, this);
  AppendChild(child);
  return child;
}

void CXmlElement::SetElementName(const wchar_t* localName) {
  m_name = Owner().InternName(GetNamespaceRef(), Owner().InternName(ViewOf(localName)));
}

void CXmlElement::SetNamespace(const wchar_t* namespaceUri) {
  m_name = Owner().InternName(Owner().InternName(ViewOf(namespaceUri)), GetLocalNameRef());
}

void CXmlElement::AppendText(const wchar_t* text, int length) {
  if (text == nullptr || length <= 0) return;
  const std::size_t charCount = ::wcsnlen(text, static_cast<std::size_t>(length));
  if (charCount == 0) return;
  std::wmemcpy(Owner().ReserveText(this, charCount), text, charCount);
  Owner().CommitText(this, charCount);
}

void CXmlElement::AppendText(const wchar_t* text) {
  const std::size_t charCount = ViewOf(text).size();
  if (charCount == 0) return;
  std::wmemcpy(Owner().ReserveText(this, charCount), text, charCount);
  Owner().CommitText(this, charCount);
}

void CXmlElement::AddAttribute(const wchar_t* localName, const wchar_t* value, const wchar_t* namespaceUri) {
  CXmlDocument& document = Owner();
  document.AddAttribute(this, document.InternName(ViewOf(namespaceUri), ViewOf(localName)), ViewOf(value));
}

namespace {

// The elements that `new` made, and nobody deleted yet.
struct OwnElements {
  std::mutex mutex;
  std::unordered_set<void*> elements;
};

OwnElements& GetOwnElements() {
  static auto& own = *new OwnElements;  // also for those that are deleted while the program ends
  return own;
}

}  // namespace

void* CXmlElement::operator new(std::size_t size) {
  std::unique_ptr<void, void (*)(void*)> element(::operator new(size), [](void* p) { ::operator delete(p); });
  OwnElements& own = GetOwnElements();
  const std::lock_guard<std::mutex> lock(own.mutex);
  own.elements.insert(element.get());
  return element.release();
}

void CXmlElement::operator delete(void* element) noexcept {
  OwnElements& own = GetOwnElements();
  const std::lock_guard<std::mutex> lock(own.mutex);
  if (own.elements.erase(element) != 0) ::operator delete(element);
}

CXmlElement* CXmlElement::RemoveLastChildElement() {
  CXmlElement* const last = m_lastChild;
  if (last == nullptr) return nullptr;
  Owner().SettleGaps(*this);
  Owner().m_storage->siblings.reset();
  CXmlElement* previous = nullptr;
  for (CXmlElement* child = GetFirstElement(); child != last; child = child->GetNextSiblingElement()) previous = child;
  DropLastChild(previous);
  return last;
}

// ---- attribute ----

std::wstring CXmlAttribute::GetXPath() const {
  CSiblingIndex* const index = CSiblingIndex::Of(*m_element);
  return m_element->GetXPath() + L"/@" +
         (index != nullptr
              ? index->GetPrefixes().GetQName(GetNamespaceRef(), GetLocalName())
              : CPrefixIndex(m_element->Owner().m_storage->aliases).GetQName(GetNamespaceRef(), GetLocalName()));
}

CRkLocation CXmlAttribute::GetLocation() const {
  const CXmlDocument& document = *m_element->GetDocument();
  CSource* const source = document.m_source.get();
  if (source == nullptr) return CRkLocation(GetXPath());
  std::uint64_t offset = m_offset;
  if (offset == CRkLocation::kNoOffset) {
    offset =
        source->FindAttribute(m_element->m_offset, static_cast<std::size_t>(this - m_element->GetAttributes().front()),
                              GetLocalNameRef()->View(), document.GetSchemaType() != SchemaType_NoNamespaces);
  }
  return source->Locate(offset, GetXPath());
}

bool CXmlAttribute::HasNamespaceName() const noexcept {
  const CXmlText uri = GetNamespaceURI();
  if (uri != kXsiNamespace && uri != kXmlnsNamespace) return false;
  const CXmlText name = GetLocalName();
  return name == L"xmlns" || name == L"type" || name == L"schemaLocation" || name == L"noNamespaceSchemaLocation";
}

bool CXmlAttribute::HasNilName() const noexcept {
  const CXmlText uri = GetNamespaceURI();
  return (uri == kXsiNamespace || uri == kXmlnsNamespace) && GetLocalName() == L"nil";
}

}  // namespace RkXmlLib16
