#ifndef RKXMLLIB16_DOCUMENT_INTERNAL_TREEBUILDER_H
#define RKXMLLIB16_DOCUMENT_INTERNAL_TREEBUILDER_H

#include <emmintrin.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>

#include "RkXmlLib16/base/internal/Ascii.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/document/ElementTree.h"
#include "RkXmlLib16/document/internal/Storage.h"

namespace RkXmlLib16 {

// The operations by which readers build the tree of a document, inline for the usual case: no filter, not in pieces, no
// limit reached. CXmlDocument does the rest, with the same results. Valid until the document is emptied; its context
// does not change meanwhile.
class CTreeBuilder {
 public:
  explicit CTreeBuilder(CXmlDocument& document)
      : m_document(document),
        m_storage(*document.m_storage),
        m_isPlain(document.m_filter == nullptr && document.m_pieces == nullptr),
        m_input(m_isPlain ? document.m_textInput : nullptr),
        m_holdsGaps(m_input != nullptr && document.m_convertedXml.GetLength() == 0) {
    if (!m_isPlain) return;
    const CReadLimits& limits = document.m_context->GetLimits();
    m_deepest = OrNone(limits.GetMaxElementDepth());
    m_mostNodes = OrNone(limits.GetMaxNodes());
    m_mostCharacters = OrNone(limits.GetMaxCharacters());
  }

  // Whether the usual case is possible: texts can be made beforehand and shared.
  bool IsPlain() const noexcept { return m_isPlain; }

  CXmlElement* AddElement(const CXmlExpandedName* name, std::uint64_t offset) {
    CXmlElement* const parent = m_document.m_currentElement;
    if (parent != nullptr && m_storage.pendingDeclarations == 0)
      if (CXmlElement* const child = TryAddChild(parent, name, offset)) return child;
    CXmlElement* const element = m_document.AddElement(name);
    element->m_offset = offset;
    return element;
  }
  // A child of the current element, without declarations. Null, and nothing added, unless the case is the usual one.
  [[gnu::always_inline]] CXmlElement* TryAddChild(CXmlElement* parent, const CXmlExpandedName* name,
                                                  std::uint64_t offset) {
    if (m_storage.depth >= m_deepest || m_storage.nodeCount >= m_mostNodes) return nullptr;
    ++m_storage.nodeCount;
    ++m_storage.depth;
    auto* const element = ::new (m_storage.nodes.Allocate(sizeof(CXmlElement))) CXmlElement(parent, name);
    element->m_offset = offset;
    parent->AppendChild(element);
    m_document.m_currentElement = element;
    return element;
  }

  void EndElement() {
    CXmlElement* const element = m_document.m_currentElement;
    if (!m_isPlain || element == nullptr) return m_document.EndElement();
    EndPlain(*element);
  }
  // The same for the current element. Only if IsPlain.
  void EndPlain(const CXmlElement& element) noexcept {
    m_document.m_currentElement = element.m_parent;
    --m_storage.depth;
  }

  // Without a value when that is none.
  CXmlAttribute* AddAttribute(CXmlElement* element, const CXmlExpandedName* name, CXmlHeldText value) {
    CXmlAttribute* const attribute = TryAddAttribute(element, name, value);
    if (attribute != nullptr) return attribute;
    CXmlAttribute* const added = m_document.AddAttribute(element, name, static_cast<CXmlTextBlock*>(nullptr));
    added->m_value.store(value, std::memory_order_relaxed);
    return added;
  }
  // The same; null, and nothing added, unless the case is the usual one.
  [[gnu::always_inline]] CXmlAttribute* TryAddAttribute(CXmlElement* element, const CXmlExpandedName* name,
                                                        CXmlHeldText value) {
    if (m_storage.nodeCount >= m_mostNodes) return nullptr;
    CXmlAttributeBlock*& block = element->m_attributes.m_block;
    if (block == nullptr)
      block = new (m_storage.nodes.Allocate(BytesOfAttributes(1))) CXmlAttributeBlock{0, 1};
    else if (m_storage.nodes.Extend(block->Attributes() + block->m_count, sizeof(CXmlAttribute)))
      ++block->m_capacity;
    else
      return nullptr;
    ++m_storage.nodeCount;
    auto* const attribute = new (block->Attributes() + block->m_count) CXmlAttribute(element, name);
    attribute->m_value.store(value, std::memory_order_relaxed);
    ++block->m_count;
    return attribute;
  }

  // A block of characters that stand for themselves, each a byte of ASCII: no NUL, and none of `Refused`. Null, and
  // nothing made, where the bytes hold others, or where that cannot be told by reading whole steps of sixteen before
  // `end`. The block is to be handed to AddAttribute or SetText, and then counted. Only if IsPlain.
  template <unsigned char... Refused>
  [[gnu::always_inline]] CXmlTextBlock* MakeText(const unsigned char* bytes, std::size_t length,
                                                 const unsigned char* end) {
    const std::size_t steps = (length + kStep - 1) / kStep * kStep;
    if (steps > static_cast<std::size_t>(end - bytes) || length > kLongest) return nullptr;
    unsigned char* const memory = m_storage.texts.Prepare(BytesOfText(steps));
    auto* const chars = reinterpret_cast<wchar_t*>(memory + sizeof(CXmlTextBlock));
    std::size_t i = 0;
    for (; i + kStep < length; i += kStep)
      if (WidenStep<Refused...>(bytes + i, chars + i) != 0) return nullptr;
    if ((WidenStep<Refused...>(bytes + i, chars + i) & (0xFFFFu >> (i + kStep - length))) != 0) return nullptr;
    chars[length] = L'\0';
    m_storage.texts.Take(BytesOfText(length));
    return new (memory) CXmlTextBlock{static_cast<std::uint32_t>(length), static_cast<std::uint32_t>(length)};
  }

  // Such characters as a part of the input if that stays, else, or if it will be asked for often, in a block; none
  // where that cannot be read in whole steps.
  CXmlHeldText HoldText(const unsigned char* bytes, std::size_t length, const unsigned char* end, bool isAskedOften) {
    if (m_input == nullptr || isAskedOften) return MakeText<>(bytes, length, end);
    const std::size_t steps = (length + kStep - 1) / kStep * kStep;
    if (steps > static_cast<std::size_t>(end - bytes)) return nullptr;
    return CXmlHeldText::OfInput(static_cast<std::size_t>(bytes - m_input), length);
  }

  // Holds white space in the current element, which ends at the next tag; false, and nothing done, unless there is
  // nothing but such space in the element so far, and no other markup than elements.
  bool HoldGap(std::size_t length, const unsigned char* end) {
    if (!m_holdsGaps) return false;
    std::atomic<CXmlHeldText>& held = m_document.m_currentElement->m_text;
    const CXmlHeldText before = held.load(std::memory_order_relaxed);
    if (!before.IsNone() && !before.IsOfGaps()) return false;
    const std::size_t all = before.IsNone() ? length : before.GetLength() + length;
    held.store(CXmlHeldText::OfGaps(static_cast<std::size_t>(end - m_input), all), std::memory_order_relaxed);
    Count(length);
    return true;
  }
  // Before other markup in the current element, if there is one.
  void EndGaps() {
    if (m_holdsGaps && m_document.m_currentElement != nullptr) m_document.SettleGaps(*m_document.m_currentElement);
  }

  // The element's whole text, which it has none of yet.
  static bool HasText(const CXmlElement& element) noexcept {
    return !element.m_text.load(std::memory_order_relaxed).IsNone();
  }
  // Its text if that is one that several elements share; else null.
  static CXmlTextBlock* FindShared(const CXmlElement& element) noexcept {
    const CXmlHeldText text = element.m_text.load(std::memory_order_relaxed);
    return !text.IsNone() && !text.IsOfInput() && text.GetBlock()->m_capacity == 0 ? text.GetBlock() : nullptr;
  }
  static void SetText(CXmlElement& element, CXmlHeldText text) noexcept {
    element.m_text.store(text, std::memory_order_relaxed);
  }
  // For others to have too: nobody writes to the block again.
  static void Share(CXmlTextBlock& block) noexcept { block.m_capacity = 0; }
  // Whether Count will not find the limit exceeded.
  bool CanCount(std::size_t charCount) const noexcept { return m_storage.charCount + charCount <= m_mostCharacters; }
  // Of a text or value that the tree has now.
  void Count(const CXmlTextBlock& block) { Count(block.m_length); }
  void Count(std::size_t charCount) {
    m_storage.charCount += charCount;
    if (m_storage.charCount > m_mostCharacters) m_storage.CountCharacters(0);
  }

  // A block of its own, which many may have, and which stays until the document is emptied. It is not counted.
  CXmlTextBlock* Keep(std::wstring_view text) { return m_storage.Keep(text); }

 private:
  static constexpr std::size_t kStep = sizeof(__m128i);
  static constexpr std::size_t kLongest = std::size_t{1} << 30;

  static std::size_t OrNone(unsigned long limit) noexcept {
    return limit != 0 ? limit : std::numeric_limits<std::size_t>::max();
  }

  // Widens sixteen bytes into their places; which of them do not stand for themselves.
  template <unsigned char... Refused>
  static unsigned WidenStep(const unsigned char* bytes, wchar_t* out) {
    const __m128i step = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
    __m128i odd = _mm_cmplt_epi8(step, _mm_set1_epi8(1));
    ((odd = _mm_or_si128(odd, _mm_cmpeq_epi8(step, _mm_set1_epi8(static_cast<char>(Refused))))), ...);
    Ascii::PutSixteen(step, out);
    return static_cast<unsigned>(_mm_movemask_epi8(odd));
  }

  CXmlDocument& m_document;
  CXmlDocument::Storage& m_storage;
  const bool m_isPlain;
  const unsigned char* const m_input;  // if texts may be parts of it
  const bool m_holdsGaps;              // if nodes also keep their places in it
  // 0 where the usual case is not possible.
  std::size_t m_deepest = 0;
  std::size_t m_mostNodes = 0;
  std::size_t m_mostCharacters = 0;
};

}  // namespace RkXmlLib16

#endif
