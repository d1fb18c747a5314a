#include "RkXmlLib16/fastinfoset/Reader.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <string_view>
#include <utility>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Likely.h"
#include "RkXmlLib16/base/internal/Ascii.h"
#include "RkXmlLib16/base/internal/CodePoints.h"
#include "RkXmlLib16/context/ReadLimits.h"
#include "RkXmlLib16/context/SerializationContext.h"
#include "RkXmlLib16/document/ElementTree.h"
#include "RkXmlLib16/document/XmlWriter.h"
#include "RkXmlLib16/document/internal/Names.h"
#include "RkXmlLib16/document/internal/TreeBuilder.h"
#include "RkXmlLib16/fastinfoset/BinaryCodec.h"
#include "RkXmlLib16/fastinfoset/Octets.h"
#include "RkXmlLib16/io/Encoder.h"

namespace RkXmlLib16 {

using FastInfoset::IntegerForm;
using FastInfoset::IntegerLayout;

namespace {

// Two blanks before "on" in the messages of encodings: sic.
constexpr const wchar_t* kInvalidIndexBit2 =
    L"Failed to parse FastInfoset. Invalid Encoding of integers 1 To 2^20 type  on the second bit of an octet.";
constexpr const wchar_t* kInvalidIndexBit3 =
    L"Failed to parse FastInfoset. Invalid Encoding of integers 1 To 2^20 type  on the third bit of an octet.";
constexpr const wchar_t* kInvalidIndexBit4 =
    L"Failed to parse FastInfoset. Invalid Encoding of integers 1 To 2^20 type  on the fourth bit of an octet.";
constexpr const wchar_t* kInvalidValueIndex =
    L"Failed to parse FastInfoset. Invalid Encoding of integers 0 To 2^20 type  on the second bit of an octet.";
constexpr const wchar_t* kInvalidLengthBit2 =
    L"Failed to parse FastInfoset. Invalid NonEmptyOctetString type  on the second bit of an octet.";
constexpr const wchar_t* kInvalidLengthBit5 =
    L"Failed to parse FastInfoset. Invalid NonEmptyOctetString type  on the fifth bit of an octet.";

// By the two bits that select one.
constexpr FIStringEncoding kStringEncodings[4] = {FIStringEncoding_UTF8, FIStringEncoding_UTF16BE,
                                                  FIStringEncoding_RestrictedAlphabet,
                                                  FIStringEncoding_EncodingAlgorithm};

// Up to this many octets of UTF-8, space for as many characters is cheaper than counting them.
constexpr std::size_t kUncountedLength = 64;
// Up to so many attributes of an element are compared with each other.
constexpr std::size_t kFewAttributes = 8;
constexpr std::wstring_view kXmlns = L"xmlns";

[[noreturn]] void ThrowInvalidItem() {
  throw CRkException(L"Failed to parse FastInfoset. Invalid Encoding of Element type.");
}

std::string_view BytesOf(const unsigned char* octets, std::size_t length) {
  return {reinterpret_cast<const char*>(octets), length};
}

bool IsWellFormed(const unsigned char* octets, std::size_t length) {
  const unsigned char* at = octets;
  const unsigned char* const end = octets + length;
  char32_t c = 0;
  while (at != end)
    if (Utf8Form::Next(at, end, c) != Decoded::Good) return false;
  return true;
}

bool HasSameName(const CXmlAttribute& a, const CXmlAttribute& b) { return a.GetNameRef() == b.GetNameRef(); }

// Whether the octet behind the attributes ends their element too.
bool EndsElement(unsigned char octet) {
  if (octet != FastInfoset::kTerminator && octet != FastInfoset::kDoubleTerminator) ThrowInvalidItem();
  return octet == FastInfoset::kDoubleTerminator;
}

template <class Table, class Entry>
void AppendEntry(Table& table, Entry entry) {
  if (table.size() < FI_MAX_TABLE_ENTRIES) table.push_back(entry);
}

}  // namespace

// What nearly every octet goes through, inline.

inline const unsigned char* CFastInfosetReader::Move(std::size_t n) {
  if (RKXML_UNLIKELY(n > GetRemaining())) GetMore(n);
  const unsigned char* const at = m_at;
  m_at += n;
  return at;
}

inline unsigned char CFastInfosetReader::Next() { return *Move(1); }

inline bool CFastInfosetReader::HasOpenElement() const noexcept { return m_document.GetCurrentElement() != nullptr; }

inline unsigned long CFastInfosetReader::Integer(const IntegerLayout& layout, unsigned char octet,
                                                 const wchar_t* error) {
  const unsigned char bits = octet & layout.field;
  return bits + 1ul < layout.forms[1].lowest ? bits + 1ul  // the first form has no pattern
                                             : LongInteger(layout, octet, error);
}

inline unsigned long CFastInfosetReader::Integer1To2pw20Bit2(unsigned char octet) {
  return Integer(FastInfoset::kIndexBit2, octet, kInvalidIndexBit2);
}

inline unsigned long CFastInfosetReader::Integer1To2pw20Bit3(unsigned char octet) {
  return Integer(FastInfoset::kIndexBit3, octet, kInvalidIndexBit3);
}

inline unsigned long CFastInfosetReader::Integer1To2pw20Bit4(unsigned char octet) {
  return Integer(FastInfoset::kIndexBit4, octet, kInvalidIndexBit4);
}

inline unsigned long CFastInfosetReader::Integer0To2pw20Bit2(unsigned char octet) {
  if ((octet & FastInfoset::kIndexBit2.field) == FastInfoset::kIndexBit2.field) return 0;
  return Integer(FastInfoset::kIndexBit2, octet, kInvalidValueIndex);
}

inline const CXmlExpandedName& CFastInfosetReader::KnownName(const QNames& names, unsigned long index,
                                                             const wchar_t* refusal) {
  if (!IsKnown(index, names.size()) || names[index - 1] == nullptr) throw CRkException(refusal);
  return *names[index - 1];
}

inline const CXmlExpandedName& CFastInfosetReader::QualifiedNameOrIndexBit2(unsigned char octet) {
  if ((octet & 0x7C) == FastInfoset::kAttributeLiteralName) return ReadQName(octet, m_attributeNames);
  return KnownName(m_attributeNames, Integer1To2pw20Bit2(octet), kInvalidIndexBit2);
}

inline const CXmlExpandedName& CFastInfosetReader::QualifiedNameOrIndexBit3(unsigned char octet) {
  if ((octet & 0x3C) == FastInfoset::kElementLiteralName) return ReadQName(octet, m_elementNames);
  return KnownName(m_elementNames, Integer1To2pw20Bit3(octet), kInvalidIndexBit3);
}

inline void CFastInfosetReader::AddShared(const Value& value, Values& table) {
  if (RKXML_UNLIKELY(table.size() >= FI_MAX_TABLE_ENTRIES)) return;
  CTreeBuilder::Share(*value.block);
  table.push_back(value);
}

inline CXmlAttribute* CFastInfosetReader::NonIdentifyingStringOrIndexBit1(CXmlElement* element,
                                                                          const CXmlExpandedName& name) {
  const unsigned char octet = Next();
  if ((octet & FastInfoset::kValueIndexBit) == 0) return DecodeAttribute(element, name, octet);
  const unsigned long index = Integer0To2pw20Bit2(octet);
  CXmlTextBlock* value = nullptr;
  if (index != 0) {
    if (!IsKnown(index, m_attributeValues.size()) || index == m_skippedValue) throw CRkException(kInvalidValueIndex);
    value = m_attributeValues[index - 1].block;
  }
  if (value != nullptr) CountExpansion(value->m_length);
  CXmlAttribute* const attribute = m_tree->AddAttribute(element, &name, value);
  if (value != nullptr) m_tree->Count(*value);
  return attribute;
}

inline void CFastInfosetReader::AppendIndexed(CXmlElement* element, const Value& text) {
  if (text.block == nullptr) return;
  CountExpansion(text.block->m_length);
  if (text.mayHaveReturns || !m_tree->IsPlain() || CTreeBuilder::HasText(*element))
    return m_document.AppendText(element, {text.block->Chars(), text.block->m_length});
  CTreeBuilder::SetText(*element, text.block);
  m_tree->Count(*text.block);
}

inline void CFastInfosetReader::NonIdentifyingStringOrIndexBit3(CXmlElement* element, unsigned char octet) {
  if ((octet & FastInfoset::kChunkIndexBit) != 0) {
    const unsigned long index = Integer1To2pw20Bit4(octet);
    if (!IsKnown(index, m_chunks.size()) || index == m_skippedChunk) throw CRkException(kInvalidIndexBit4);
    return AppendIndexed(element, m_chunks[index - 1]);
  }
  DecodeText(element, octet);
}

void CFastInfosetReader::AtrributeBit2(CXmlElement* element, unsigned char octet) {
  const std::size_t offset = GetLastOffset();
  const CXmlExpandedName& name = QualifiedNameOrIndexBit2(octet);
  CountExpansion(name.GetLocalName()->View().size());
  CXmlDocument::SetOffset(NonIdentifyingStringOrIndexBit1(element, name), offset);
}

inline void CFastInfosetReader::RequireDifferentNames(const CXmlElement& element) {
  const CXmlAttributes& attributes = element.GetAttributes();
  if (RKXML_UNLIKELY(attributes.size() > 2) || (attributes.size() == 2 && HasSameName(*attributes[0], *attributes[1])))
    CompareNames(attributes);
}

// Up to the end of the attributes, and of the element if it ends with them.
void CFastInfosetReader::ElementStart(unsigned char octet) {
  const std::size_t offset = GetLastOffset();
  const bool hasAttributes = (octet & FastInfoset::kAttributesBit) != 0;
  if ((octet & 0x3C) == FastInfoset::kElementNamespaces) {
    for (octet = Next(); octet != FastInfoset::kTerminator; octet = Next()) NamespaceAttributeBit7(octet);
    octet = Next();
    if (octet >= 0x40) ThrowInvalidItem();
  }
  const CXmlExpandedName& name = QualifiedNameOrIndexBit3(octet);
  CountExpansion(name.GetLocalName()->View().size());
  CXmlElement* const element = m_tree->AddElement(&name, offset);
  if (!hasAttributes) return m_document.CompleteStart(element);
  for (octet = Next(); octet < 0x80; octet = Next()) AtrributeBit2(element, octet);
  RequireDifferentNames(*element);
  m_document.CompleteStart(element);
  if (EndsElement(octet)) m_document.EndElement();
}

CFastInfosetReader::CFastInfosetReader(const CFastInfosetContext& context, CXmlDocument& document)
    : m_fiContext(context), m_document(document) {}

CFastInfosetReader::~CFastInfosetReader() = default;

bool CFastInfosetReader::Parse() { return Parse(m_document.GetInput(), m_document.GetInputLength()); }

bool CFastInfosetReader::Parse(const unsigned char* octets, std::size_t length) {
  if (!Start(octets, length, nullptr)) return false;
  ReadOn();
  if (m_at != m_end) m_document.NoteDropped(RkDropped_TrailingBytes, GetLastOffset() + 1, GetRemaining());
  return true;
}

bool CFastInfosetReader::Start(const unsigned char* octets, std::size_t length, More more) {
  Cleanup();
  m_at = m_begin = octets;
  m_end = octets + length;
  m_origin = reinterpret_cast<std::uintptr_t>(octets);
  if (!ReadHeader()) return false;

  m_more = std::move(more);
  m_expansionLimit = m_document.GetContext().GetLimits().GetExpansionLimit(length);
  m_tree = std::make_unique<CTreeBuilder>(m_document);
  const CFIVocabulary& vocabulary = m_fiContext.GetVocabulary();
  for (const auto& [text, index] : vocabulary.GetPrefixNamesTable()) m_prefixes.push_back(m_document.InternName(text));
  for (const auto& [text, index] : vocabulary.GetNamespaceNamesTable())
    m_namespaceNames.push_back(m_document.InternName(text));
  for (const auto& [text, index] : vocabulary.GetAttributeValuesTable()) AddValue(text, m_attributeValues);
  for (const auto& [text, index] : vocabulary.GetCharacterChunksTable()) AddValue(text, m_chunks);
  m_xmlPrefix = m_document.InternName(L"xml");
  m_xmlNamespace = m_document.InternName(CXmlWriter::XML_NAMESPACE);
  return true;
}

bool CFastInfosetReader::ReadOn() {
  try {
    if (m_state == State::Start) {
      ReadOptionalData();
      m_state = State::Children;
    }
    return ReadChildren();
  } catch (CRkException& e) {
    if (!e.HasLocation()) e.SetLocation(m_document.Locate(GetOffset()));
    e.SetEndsReading();
    throw;
  }
}

void CFastInfosetReader::Cleanup() {
  m_begin = m_at = m_end = nullptr;
  m_origin = 0;
  m_more = nullptr;
  m_state = State::Start;
  m_isParentEnding = false;
  m_tree = nullptr;
  for (Values* values : {&m_attributeValues, &m_chunks}) values->clear();
  for (Names* names : {&m_prefixes, &m_namespaceNames, &m_localNames}) names->clear();
  for (QNames* names : {&m_elementNames, &m_attributeNames}) names->clear();
  m_otherNCNames = m_otherUris = m_otherStrings = 0;
  m_skippedValue = m_skippedChunk = 0;
  m_isVocabularyLost = false;
  m_expanded = 0;
}

// Header

bool CFastInfosetReader::ReadHeader() {
  if (CheckHeader()) return true;
  for (const std::string_view declaration : FastInfoset::kDeclarations) {
    const bool isThere =
        GetRemaining() >= declaration.size() && std::memcmp(m_at, declaration.data(), declaration.size()) == 0;
    if (isThere && CheckDeclaration(std::wstring(declaration.begin(), declaration.end()).c_str())) return CheckHeader();
  }
  return false;
}

bool CFastInfosetReader::CheckHeader() {
  constexpr std::size_t length = sizeof FastInfoset::kHeader;
  if (GetRemaining() < length || std::memcmp(m_at, FastInfoset::kHeader, length) != 0) return false;
  m_at += length;
  return true;
}

bool CFastInfosetReader::CheckDeclaration(const wchar_t* declaration) {
  const CBinaryData utf8 = CEncoder::UnicodeToUtf8Binary(declaration);
  const std::size_t length = utf8.GetLength();
  if (GetRemaining() < length || std::memcmp(m_at, utf8.GetData(), length) != 0) return false;
  m_at += length;
  return true;
}

// Optional components, all of them read past.

void CFastInfosetReader::ReadOptionalData() {
  const unsigned char present = Next();
  if ((present & 0x40) != 0) AdditionalData();
  if ((present & 0x20) != 0) InitialVocabulary();
  if ((present & 0x10) != 0) Notations();
  if ((present & 0x08) != 0) UnparsedEntities();
  if ((present & 0x04) != 0) CharacterEncodingScheme();
  if ((present & 0x02) != 0) Standalone();
  if ((present & 0x01) != 0) Version();
}

void CFastInfosetReader::AdditionalData() {
  for (unsigned long left = LengthOfSequence(); left > 0; --left) {
    Move(NonEmptyOctetStringBit2Length(Next()));
    Move(NonEmptyOctetStringBit2Length(Next()));
  }
}

// The length is read before every item, so that only a list of one item is read past correctly; after any other one the
// numbers of the entries are not known. Returns whether the part is present, and so has an entry in its table.
template <class SkipItem>
bool CFastInfosetReader::SkipList(bool isPresent, SkipItem&& skipItem) {
  if (!isPresent) return false;
  unsigned long done = 0;
  unsigned long length = 0;
  do {
    length = LengthOfSequence();
    skipItem();
    ++done;
    if (length != 1) m_isVocabularyLost = true;
  } while (done < length);
  return true;
}

void CFastInfosetReader::InitialVocabulary() {
  const auto skipString = [this] { Move(NonEmptyOctetStringBit2Length(Next())); };
  const auto skipValue = [this] { EncodedCharacterStringBit3(Next()); };
  const auto skipName = [this] {
    const unsigned char octet = Next();
    if ((octet & FastInfoset::kNamePrefixBit) != 0) Integer1To2pw20Bit2(Next());
    if ((octet & FastInfoset::kNameNamespaceBit) != 0) Integer1To2pw20Bit2(Next());
    Integer1To2pw20Bit2(Next());
  };
  const unsigned char first = Next();
  const unsigned char second = Next();
  if ((first & 0x10) != 0) skipString();  // the URI of the external vocabulary
  SkipList((first & 0x08) != 0, skipString);
  SkipList((first & 0x04) != 0, skipString);
  if (SkipList((first & 0x02) != 0, skipString)) m_prefixes.push_back(nullptr);
  if (SkipList((first & 0x01) != 0, skipString)) m_namespaceNames.push_back(nullptr);
  if (SkipList((second & 0x80) != 0, skipString)) m_localNames.push_back(nullptr);
  if (SkipList((second & 0x40) != 0, skipString)) ++m_otherNCNames;
  if (SkipList((second & 0x20) != 0, skipString)) ++m_otherUris;
  if (SkipList((second & 0x10) != 0, skipValue)) m_skippedValue = AddSkipped(m_attributeValues);
  if (SkipList((second & 0x08) != 0, skipValue)) m_skippedChunk = AddSkipped(m_chunks);
  if (SkipList((second & 0x04) != 0, skipValue)) ++m_otherStrings;
  if (SkipList((second & 0x02) != 0, skipName)) m_elementNames.push_back(nullptr);
  if (SkipList((second & 0x01) != 0, skipName)) m_attributeNames.push_back(nullptr);
}

void CFastInfosetReader::Notations() {
  for (unsigned char octet = Next(); octet != FastInfoset::kTerminator; octet = Next()) {
    if ((octet & 0xFC) != 0xC0) ThrowInvalidItem();
    SkipIdentifyingStringOrIndex(m_otherNCNames);
    ExternalIdentifiers(octet);
  }
}

void CFastInfosetReader::UnparsedEntities() {
  for (unsigned char octet = Next(); octet != FastInfoset::kTerminator; octet = Next()) {
    if ((octet & 0xFE) != 0xD0) ThrowInvalidItem();
    SkipIdentifyingStringOrIndex(m_otherNCNames);
    SkipIdentifyingStringOrIndex(m_otherUris);
    if ((octet & 0x01) != 0) SkipIdentifyingStringOrIndex(m_otherUris);
    SkipIdentifyingStringOrIndex(m_otherNCNames);
  }
}

void CFastInfosetReader::CharacterEncodingScheme() { Move(NonEmptyOctetStringBit2Length(Next())); }

void CFastInfosetReader::Standalone() { Next(); }

void CFastInfosetReader::Version() { SkipNonIdentifyingStringOrIndexBit1(); }

// Structure

bool CFastInfosetReader::ReadChildren() {
  for (;;) {
    if (HasOpenElement()) ElementBit2();
    if (m_document.IsPaused()) return true;
    if (m_state == State::End) break;
    const unsigned char octet = Next();
    if (octet < 0x80) {
      if (m_document.GetDocumentElement() != nullptr) ThrowInvalidItem();
      ElementStart(octet);
    } else if (octet == FastInfoset::kProcessingInstruction) {
      ProcessingInstruction();
    } else if (octet == FastInfoset::kComment) {
      Comment();
    } else if ((octet & 0xFC) == FastInfoset::kDocumentType) {
      if (DocumentTypeDeclarationBit7(octet)) m_state = State::End;
    } else if (octet == FastInfoset::kTerminator || octet == FastInfoset::kDoubleTerminator) {
      m_state = State::End;
    } else {
      ThrowInvalidItem();
    }
  }
  if (m_document.GetDocumentElement() == nullptr) ThrowInvalidItem();
  return false;
}

// What the open elements hold, up to the end of the document element or to a pause.
void CFastInfosetReader::ElementBit2() {
  if (m_isParentEnding) {
    m_isParentEnding = false;
    m_document.EndElement();
  }
  if (m_tree->IsPlain() && !m_isVocabularyLost) return ReadUsual();
  while (HasOpenElement() && !m_document.IsPaused()) ReadItem(Next());
}

void CFastInfosetReader::ReadItem(unsigned char octet) {
  if (octet < 0x80) {
    ElementStart(octet);
  } else if (octet < 0xC0) {
    NonIdentifyingStringOrIndexBit3(m_document.GetCurrentElement(), octet);
  } else if (octet == FastInfoset::kTerminator) {
    m_document.EndElement();
  } else if (octet == FastInfoset::kDoubleTerminator) {
    m_document.EndElement();
    if (!HasOpenElement())
      m_state = State::End;
    else if (m_document.IsPaused())
      m_isParentEnding = true;
    else
      m_document.EndElement();
  } else if (octet == FastInfoset::kProcessingInstruction) {
    ProcessingInstruction();
  } else if (octet == FastInfoset::kComment) {
    Comment();
  } else if ((octet & 0xFC) == FastInfoset::kEntityReference) {
    UnexpandedEntityReferenceBit7(octet);
  } else {
    ThrowInvalidItem();
  }
}

// The usual case: names of the tables, by an octet each; texts and values that are in the tables, or short literals of
// plain characters; one text in an element; no limit reached; no filter, not in pieces. Nothing that fails is usual.
// Each of these reads all that it is for at `at`, or nothing.

// Nothing for a number that is not in the table.
template <class Entry>
[[gnu::always_inline]] inline Entry CFastInfosetReader::FindEntry(const std::vector<Entry>& table, std::size_t number) {
  return RKXML_LIKELY(number < table.size()) ? table[number] : Entry{};
}

// The number of an entry, in up to three octets.
template <const IntegerLayout& kLayout>
[[gnu::always_inline]] inline bool CFastInfosetReader::TryIndex(const unsigned char*& at, std::size_t& number) {
  constexpr const IntegerForm& second = kLayout.forms[1];
  constexpr const IntegerForm& third = kLayout.forms[2];
  const std::size_t bits = *at & kLayout.field;
  if (bits < second.pattern) {
    number = bits;
    ++at;
  } else if (bits < third.pattern) {
    if (m_end - at < 2) return false;
    number = ((bits - second.pattern) << 8 | at[1]) + second.lowest - 1;
    at += 2;
  } else {
    const std::size_t high = bits - third.pattern;
    if (high >> third.valueBits != 0 || m_end - at < 3) return false;
    number = (high << 16 | std::size_t{at[1]} << 8 | at[2]) + third.lowest - 1;
    at += 3;
  }
  return true;
}

// A literal in UTF-8 with a length of up to two octets, which begins in the bits of the first.
template <unsigned char kLengthBits, unsigned char... Refused>
[[gnu::always_inline]] inline CFastInfosetReader::Value CFastInfosetReader::TryLiteral(CTreeBuilder& tree,
                                                                                       const unsigned char*& at) {
  constexpr unsigned char kLong = (kLengthBits + 1) / 2;
  constexpr std::size_t kFirstLong = kLong + 1;
  const unsigned char bits = *at & kLengthBits;
  if (RKXML_UNLIKELY(bits > kLong || m_end - at < 2)) return {};
  const bool isLong = bits == kLong;
  const unsigned char* const octets = at + (isLong ? 2 : 1);
  const std::size_t length = isLong ? at[1] + kFirstLong : bits + std::size_t{1};
  CXmlTextBlock* const text = tree.MakeText<Refused...>(octets, length, m_end);
  if (RKXML_UNLIKELY(text == nullptr || !tree.CanCount(length))) return {};
  at = octets + length;
  return {text, static_cast<std::uint32_t>(length), /*mayHaveReturns=*/false};
}

// The name.
[[gnu::always_inline]] inline CXmlElement* CFastInfosetReader::TryStart(CTreeBuilder& tree, CXmlElement* parent,
                                                                        const unsigned char*& at) {
  const unsigned char index = *at & FastInfoset::kIndexBit3.field;
  if (RKXML_UNLIKELY(index >= FastInfoset::kIndexBit3.forms[1].pattern)) return nullptr;
  const CXmlExpandedName* const name = FindEntry(m_elementNames, index);
  if (RKXML_UNLIKELY(name == nullptr)) return nullptr;
  const unsigned long expanded = m_expanded + name->GetLocalName()->View().size();
  if (RKXML_UNLIKELY(expanded > m_expansionLimit)) return nullptr;
  CXmlElement* const element = tree.TryAddChild(parent, name, OffsetOf(at));
  if (RKXML_UNLIKELY(element == nullptr)) return nullptr;
  m_expanded = expanded;
  ++at;
  return element;
}

[[gnu::always_inline]] inline bool CFastInfosetReader::TryAttribute(CTreeBuilder& tree, CXmlElement* element,
                                                                    const unsigned char*& at) {
  const unsigned char* next = at + 1;
  if (RKXML_UNLIKELY(*at >= FastInfoset::kIndexBit2.forms[1].pattern || next == m_end)) return false;
  const CXmlExpandedName* const name = FindEntry(m_attributeNames, *at);
  if (RKXML_UNLIKELY(name == nullptr)) return false;
  unsigned long expanded = m_expanded + name->GetLocalName()->View().size();
  const unsigned char octet = *next;
  Value value{};
  if ((octet & FastInfoset::kValueIndexBit) == 0) {
    value = (octet & 0x30) == 0 ? TryLiteral<0x0F>(tree, next) : Value{};
    if (RKXML_UNLIKELY(value.block == nullptr)) return false;
  } else {
    std::size_t number = 0;
    value = TryIndex<FastInfoset::kIndexBit2>(next, number) ? FindEntry(m_attributeValues, number) : Value{};
    if (RKXML_UNLIKELY(value.block == nullptr || !tree.CanCount(value.length))) return false;
    expanded += value.length;
  }
  if (RKXML_UNLIKELY(expanded > m_expansionLimit)) return false;
  CXmlAttribute* const attribute = tree.TryAddAttribute(element, name, value.block);
  if (RKXML_UNLIKELY(attribute == nullptr)) return false;
  CXmlDocument::SetOffset(attribute, OffsetOf(at));
  if ((octet & (FastInfoset::kValueIndexBit | FastInfoset::kValueAddBit)) == FastInfoset::kValueAddBit)
    AddShared(value, m_attributeValues);
  tree.Count(value.length);
  m_expanded = expanded;
  at = next;
  return true;
}

[[gnu::always_inline]] inline bool CFastInfosetReader::TryText(CTreeBuilder& tree, CXmlElement* element,
                                                               const unsigned char*& at) {
  const unsigned char octet = *at;
  if (RKXML_UNLIKELY(CTreeBuilder::HasText(*element))) return false;
  Value text{};
  if ((octet & FastInfoset::kChunkIndexBit) == 0) {
    text = (octet & 0x0C) == 0 ? TryLiteral<0x03, '\r'>(tree, at) : Value{};
    if (RKXML_UNLIKELY(text.block == nullptr)) return false;
    if ((octet & FastInfoset::kChunkAddBit) != 0) AddShared(text, m_chunks);
  } else {
    const unsigned char* next = at;
    std::size_t number = 0;
    if (RKXML_UNLIKELY(!TryIndex<FastInfoset::kIndexBit4>(next, number))) return false;
    text = FindEntry(m_chunks, number);
    if (RKXML_UNLIKELY(text.block == nullptr || text.mayHaveReturns)) return false;
    const unsigned long expanded = m_expanded + text.length;
    if (RKXML_UNLIKELY(expanded > m_expansionLimit || !tree.CanCount(text.length))) return false;
    m_expanded = expanded;
    at = next;
  }
  CTreeBuilder::SetText(*element, text.block);
  tree.Count(text.length);
  return true;
}

// Reads to the end of the document element. What is not usual is left to the functions for every case.
void CFastInfosetReader::ReadUsual() {
  CTreeBuilder tree(*m_tree);  // of its own, which nothing that is stored can change
  const unsigned char* at = m_at;
  CXmlElement* element = m_document.GetCurrentElement();
  const auto leave = [&](auto&& read) {
    m_at = at;
    read();
    at = m_at;
  };
  while (element != nullptr) {
    const unsigned char octet = RKXML_LIKELY(at != m_end) ? *at : FastInfoset::kComment;
    CXmlElement* const parent = element->GetParentElement();
    if (octet < 0x80) {
      CXmlElement* const child = TryStart(tree, element, at);
      if (RKXML_LIKELY(child != nullptr)) {
        element = child;
        if ((octet & FastInfoset::kAttributesBit) == 0) continue;
        while (at != m_end && *at < 0x80)
          if (RKXML_UNLIKELY(!TryAttribute(tree, element, at))) leave([&] { AtrributeBit2(element, Next()); });
        leave([&] {
          const unsigned char end = Next();
          RequireDifferentNames(*element);
          if (!EndsElement(end)) return;
          tree.EndPlain(*element);
          element = element->GetParentElement();
        });
        continue;
      }
    } else if (octet < 0xC0) {
      if (RKXML_LIKELY(TryText(tree, element, at))) continue;
    } else if (octet == FastInfoset::kTerminator && parent != nullptr) {
      tree.EndPlain(*element);
      element = parent;
      ++at;
      continue;
    } else if (octet == FastInfoset::kDoubleTerminator && parent != nullptr && parent->GetParentElement() != nullptr) {
      tree.EndPlain(*element);
      tree.EndPlain(*parent);
      element = parent->GetParentElement();
      ++at;
      continue;
    }
    leave([&] { ReadItem(Next()); });
    element = m_document.GetCurrentElement();
  }
  m_at = at;
}

void CFastInfosetReader::CompareNames(const CXmlAttributes& attributes) {
  if (attributes.size() <= kFewAttributes) {
    const CXmlAttribute* const end = attributes.front() + attributes.size();
    for (const CXmlAttribute* one = attributes.front(); one != end; ++one)
      for (const CXmlAttribute* other = one + 1; other != end; ++other)
        if (HasSameName(*one, *other)) ThrowInvalidItem();
    return;
  }
  std::vector<const CXmlExpandedName*> names;
  names.reserve(attributes.size());
  for (const CXmlAttribute* attribute : attributes) names.push_back(attribute->GetNameRef());
  std::sort(names.begin(), names.end());
  if (std::adjacent_find(names.begin(), names.end()) != names.end()) ThrowInvalidItem();
}

void CFastInfosetReader::NamespaceAttributeBit7(unsigned char octet) {
  if ((octet & 0xFC) != FastInfoset::kNamespaceAttribute) ThrowInvalidItem();
  bool hasIndex = true;
  const CXmlName* prefix = m_document.GetEmptyName();
  const CXmlName* namespaceUri = prefix;
  if ((octet & FastInfoset::kNamePrefixBit) != 0) prefix = IdentifyingStringOrIndex(m_prefixes, hasIndex);
  if ((octet & FastInfoset::kNameNamespaceBit) != 0)
    namespaceUri = IdentifyingStringOrIndex(m_namespaceNames, hasIndex);
  RequireReservedPair(prefix, namespaceUri);
  CountExpansion(prefix->View().size() + namespaceUri->View().size());
  m_document.AddNamespaceAlias(prefix, namespaceUri);
}

void CFastInfosetReader::Comment() {
  m_document.NoteDropped(RkDropped_Comment, GetLastOffset());
  SkipNonIdentifyingStringOrIndexBit1();
}

void CFastInfosetReader::ProcessingInstruction() {
  m_document.NoteDropped(RkDropped_ProcessingInstruction, GetLastOffset());
  SkipIdentifyingStringOrIndex(m_otherNCNames);
  SkipNonIdentifyingStringOrIndexBit1();
}

// True when its last octet ends the document too.
bool CFastInfosetReader::DocumentTypeDeclarationBit7(unsigned char octet) {
  if (m_document.GetContext().GetRefuseDocumentType())
    throw CRkException(L"A document type declaration is not allowed in Fast Infoset");
  ExternalIdentifiers(octet);
  for (octet = Next(); octet == FastInfoset::kProcessingInstruction; octet = Next()) ProcessingInstruction();
  if (octet != FastInfoset::kTerminator && octet != FastInfoset::kDoubleTerminator) ThrowInvalidItem();
  return octet == FastInfoset::kDoubleTerminator;
}

void CFastInfosetReader::UnexpandedEntityReferenceBit7(unsigned char octet) {
  m_document.NoteDropped(RkDropped_Entity, GetLastOffset());
  SkipIdentifyingStringOrIndex(m_otherNCNames);
  ExternalIdentifiers(octet);
}

// A system and a public identifier, as the last two bits of the octet say.
void CFastInfosetReader::ExternalIdentifiers(unsigned char octet) {
  if ((octet & 0x02) != 0) SkipIdentifyingStringOrIndex(m_otherUris);
  if ((octet & 0x01) != 0) SkipIdentifyingStringOrIndex(m_otherUris);
}

// Names

const CXmlExpandedName& CFastInfosetReader::ReadQName(unsigned char octet, QNames& names) {
  const bool hasPrefix = (octet & FastInfoset::kNamePrefixBit) != 0;
  const bool hasNamespace = (octet & FastInfoset::kNameNamespaceBit) != 0;
  if (hasPrefix && !hasNamespace) {
    throw CRkException(L"Failed to parse FastInfoset. Invalid QName type Prefix without Namespace.");
  }
  bool hasIndex = true;
  const CXmlName* prefix = m_document.GetEmptyName();
  const CXmlName* namespaceUri = prefix;
  if (hasPrefix) prefix = IdentifyingStringOrIndex(m_prefixes, hasIndex);
  if (hasNamespace) namespaceUri = IdentifyingStringOrIndex(m_namespaceNames, hasIndex);
  const CXmlName* const localName = IdentifyingStringOrIndex(m_localNames, hasIndex);
  RequireReservedPair(prefix, namespaceUri);
  const bool isDeclaration = &names == &m_attributeNames && !hasNamespace && localName->View() == kXmlns;
  if (isDeclaration && HasNamespaces()) ThrowInvalidItem();
  const CXmlExpandedName* const name = m_document.InternName(namespaceUri, localName);
  if (hasIndex) AppendEntry(names, name);
  return *name;
}

// `hasIndex` becomes false when the string found its table full.
const CXmlName* CFastInfosetReader::IdentifyingStringOrIndex(Names& names, bool& hasIndex) {
  const unsigned char octet = Next();
  if ((octet & FastInfoset::kIdentifyingIndexBit) != 0) {
    const unsigned long index = Integer1To2pw20Bit2(octet);
    if (!IsKnown(index, names.size()) || names[index - 1] == nullptr) throw CRkException(kInvalidIndexBit2);
    return names[index - 1];
  }
  const std::size_t length = NonEmptyOctetStringBit2Length(octet);
  const unsigned char* const octets = Move(length);
  NonEmptyOctetUTF8String(octets, length);
  if (!IsWellFormed(octets, length) || !IsLegal(names)) ThrowInvalidItem();
  const CXmlName* const name = m_document.InternName(m_text);
  if (names.size() >= FI_MAX_TABLE_ENTRIES) hasIndex = false;
  AppendEntry(names, name);
  return name;
}

bool CFastInfosetReader::HasNamespaces() const { return m_document.GetSchemaType() != SchemaType_NoNamespaces; }

// Names are written as they are, so what is none could put markup into a document or mean something else there.
bool CFastInfosetReader::IsLegal(const Names& names) const {
  if (&names == &m_namespaceNames) return IsNamespaceName(m_text) && m_text != CXmlWriter::XMLNS_NAMESPACE;
  if (&names == &m_prefixes) return IsNCName(m_text) && m_text != kXmlns;
  return HasNamespaces() ? IsNCName(m_text) : IsName(m_text);
}

// The prefix xml belongs to its namespace, and to no other.
void CFastInfosetReader::RequireReservedPair(const CXmlName* prefix, const CXmlName* namespaceUri) const {
  if ((prefix == m_xmlPrefix) != (namespaceUri == m_xmlNamespace)) ThrowInvalidItem();
}

void CFastInfosetReader::SkipIdentifyingStringOrIndex(Count& count) {
  const unsigned char octet = Next();
  if ((octet & FastInfoset::kIdentifyingIndexBit) != 0) {
    if (!IsKnown(Integer1To2pw20Bit2(octet), count)) throw CRkException(kInvalidIndexBit2);
  } else {
    Move(NonEmptyOctetStringBit2Length(octet));
    if (count < FI_MAX_TABLE_ENTRIES) ++count;
  }
}

// Values

// Any literal.
CXmlAttribute* CFastInfosetReader::DecodeAttribute(CXmlElement* element, const CXmlExpandedName& name,
                                                   unsigned char octet) {
  const EncodedString string = EncodedCharacterStringBit3(octet);
  const bool add = (octet & FastInfoset::kValueAddBit) != 0;
  if (string.encoding == FIStringEncoding_UTF8 && !Contains(string, '\0')) {
    const std::string_view utf8 = BytesOf(string.octets, string.length);
    const std::size_t most = string.length <= kUncountedLength ? string.length : CEncoder::UnicodeLength(utf8);
    CXmlAttribute* const attribute = m_document.AddAttribute(element, &name, std::wstring_view());
    wchar_t* const out = m_document.ReserveValue(attribute, most);
    const auto charCount = static_cast<std::size_t>(CEncoder::WriteUnicode(utf8, out) - out);
    m_document.CommitValue(attribute, charCount);
    if (add) AddValue({out, charCount}, m_attributeValues);
    return attribute;
  }
  Decode(string);
  CXmlAttribute* const attribute = m_document.AddAttribute(element, &name, m_text);
  if (add) AddValue(m_text, m_attributeValues);
  return attribute;
}

// Any literal.
void CFastInfosetReader::DecodeText(CXmlElement* element, unsigned char octet) {
  const EncodedString string = EncodedCharacterStringBit5(octet);
  const bool add = (octet & FastInfoset::kChunkAddBit) != 0;
  if (string.encoding == FIStringEncoding_UTF8 && !Ascii::HasEither(string.octets, string.length, '\r', '\0')) {
    const std::string_view utf8 = BytesOf(string.octets, string.length);
    const std::size_t most = string.length <= kUncountedLength ? string.length : CEncoder::UnicodeLength(utf8);
    wchar_t* const out = m_document.ReserveText(element, most);
    const auto charCount = static_cast<std::size_t>(CEncoder::WriteUnicode(utf8, out) - out);
    if (add) AddValue({out, charCount}, m_chunks);
    m_document.CommitText(element, charCount);
  } else {
    Decode(string);
    m_document.AppendText(element, m_text);
    if (add) AddValue(m_text, m_chunks);
  }
}

void CFastInfosetReader::AddValue(std::wstring_view value, Values& table) {
  m_document.CountTable(value.size());
  if (table.size() < FI_MAX_TABLE_ENTRIES) {
    CXmlTextBlock* const block = m_tree->Keep(value);
    table.push_back({block, block != nullptr ? block->m_length : 0, /*mayHaveReturns=*/true});
  }
}

unsigned long CFastInfosetReader::AddSkipped(Values& table) {
  AppendEntry(table, Value{});
  return table.size();
}

void CFastInfosetReader::SkipNonIdentifyingStringOrIndexBit1() {
  const unsigned char octet = Next();
  if ((octet & FastInfoset::kValueIndexBit) != 0) {
    if (!IsKnown(Integer0To2pw20Bit2(octet), m_otherStrings)) throw CRkException(kInvalidValueIndex);
  } else {
    EncodedCharacterStringBit3(octet);
    if ((octet & FastInfoset::kValueAddBit) != 0 && m_otherStrings < FI_MAX_TABLE_ENTRIES) ++m_otherStrings;
  }
}

CFastInfosetReader::EncodedString CFastInfosetReader::EncodedCharacterStringBit3(unsigned char octet) {
  EncodedString string{kStringEncodings[octet >> 4 & 3], 0, nullptr, 0};
  if ((octet & 0x20) != 0) {
    const unsigned char second = Next();
    string.index = ((octet & 0x0Fu) << 4 | second >> 4) + 1;
    octet = second;
  }
  string.length = NonEmptyOctetStringBit5Length(octet);
  string.octets = Move(string.length);
  return string;
}

CFastInfosetReader::EncodedString CFastInfosetReader::EncodedCharacterStringBit5(unsigned char octet) {
  EncodedString string{kStringEncodings[octet >> 2 & 3], 0, nullptr, 0};
  if ((octet & 0x08) != 0) {
    const unsigned char second = Next();
    string.index = ((octet & 0x03u) << 6 | second >> 2) + 1;
    octet = second;
  }
  string.length = NonEmptyOctetStringBit7Length(octet);
  string.octets = Move(string.length);
  return string;
}

// Texts and values end at their first NUL, as whoever takes them from the tree sees them end there.
void CFastInfosetReader::Decode(const EncodedString& string) {
  switch (string.encoding) {
    case FIStringEncoding_UTF16BE:
      NonEmptyOctetUTF16BEString(string.octets, string.length);
      break;
    case FIStringEncoding_RestrictedAlphabet:
      NonEmptyOctetRestrictedAlphabetString(string.index, string.octets, string.length);
      break;
    case FIStringEncoding_EncodingAlgorithm:
      NonEmptyOctetEncryptedString(string.index, string.octets, string.length);
      break;
    default:
      NonEmptyOctetUTF8String(string.octets, string.length);
      break;
  }
  m_text.resize(std::min(m_text.find(L'\0'), m_text.length()));
}

bool CFastInfosetReader::Contains(const EncodedString& string, char octet) {
  const auto value = static_cast<unsigned char>(octet);
  return Ascii::HasEither(string.octets, string.length, value, value);
}

void CFastInfosetReader::NonEmptyOctetUTF8String(const unsigned char* octets, std::size_t length) {
  const std::string_view utf8 = BytesOf(octets, length);
  m_text.resize(CEncoder::UnicodeLength(utf8));
  CEncoder::WriteUnicode(utf8, m_text.data());
}

void CFastInfosetReader::NonEmptyOctetUTF16BEString(const unsigned char* octets, std::size_t length) {
  m_text = CEncoder::Utf16ToUnicode(BytesOf(octets, length), /*bigEndian=*/true);
}

void CFastInfosetReader::NonEmptyOctetRestrictedAlphabetString(unsigned long alphabet, const unsigned char* octets,
                                                               std::size_t length) {
  const auto& alphabets = CFIVocabulary::GetRestrictedAlphabets();
  if (alphabet > alphabets.size()) {
    throw CRkException(
        L"Failed to parse FastInfoset. Invalid Encoding of Restricted Alphabet. Alphabet must contain between 2 and "
        L"2^20 characters.");
  }
  InitBits(octets, length);
  const std::wstring_view characters = alphabets[alphabet - 1];
  const int width = FastInfoset::BitsPerCharacter(characters.length());
  m_text.resize(length * 8 / static_cast<std::size_t>(width));
  std::size_t charCount = 0;
  // Ends at a code of all ones, which fills up the last octet, or where no whole code is left.
  for (; charCount < m_text.length(); ++charCount) {
    const unsigned code = GetBits(width);
    if (code >= characters.length()) break;
    m_text[charCount] = characters[code];
  }
  m_text.resize(charCount);
}

void CFastInfosetReader::InitBits(const unsigned char* octets, std::size_t length) {
  m_bits = octets;
  m_bitsEnd = octets + length;
  m_bitBuffer = 0;
  m_bitCount = 0;
}

// At most as many as are left, and 20 at a time.
unsigned CFastInfosetReader::GetBits(int count) {
  for (; m_bitCount < count && m_bits != m_bitsEnd; m_bitCount += 8) m_bitBuffer = m_bitBuffer << 8 | *m_bits++;
  m_bitCount -= count;
  return m_bitBuffer >> m_bitCount & ((1u << count) - 1);
}

void CFastInfosetReader::NonEmptyOctetEncryptedString(unsigned long algorithm, const unsigned char* octets,
                                                      std::size_t length) {
  if (algorithm == FIEncodingAlgorithm_Cdata) return NonEmptyOctetUTF8String(octets, length);
  m_text.clear();
  CFastInfosetBinaryData::AppendAsString(algorithm, octets, length, m_text);
}

void CFastInfosetReader::RequireExpansion() {
  if (m_more != nullptr) m_expansionLimit = m_document.GetContext().GetLimits().GetExpansionLimit(GetOffset());
  if (m_expanded > m_expansionLimit) {
    CReadLimits::ThrowExceeded(L"characters of indexed strings", m_expansionLimit);
  }
}

// Octets

unsigned long CFastInfosetReader::LongInteger(const IntegerLayout& layout, unsigned char octet, const wchar_t* error) {
  const unsigned char bits = octet & layout.field;
  for (int i = 1; i < layout.formCount; ++i) {
    const IntegerForm& form = layout.forms[i];
    const unsigned mask = (1u << form.valueBits) - 1;
    if ((bits & ~mask) != form.pattern) continue;
    unsigned long value = bits & mask;
    for (int more = 0; more < form.moreOctets; ++more) value = value << 8 | Next();
    return value + form.lowest;
  }
  throw CRkException(error);
}

// A literal has bit 1 clear; where no index is allowed a set one is an error.
std::size_t CFastInfosetReader::NonEmptyOctetStringBit2Length(unsigned char octet) {
  if ((octet & FastInfoset::kIdentifyingIndexBit) != 0) throw CRkException(kInvalidLengthBit2);
  return Integer(FastInfoset::kLengthBit2, octet, kInvalidLengthBit2);
}

std::size_t CFastInfosetReader::NonEmptyOctetStringBit5Length(unsigned char octet) {
  return Integer(FastInfoset::kLengthBit5, octet, kInvalidLengthBit5);
}

std::size_t CFastInfosetReader::NonEmptyOctetStringBit7Length(unsigned char octet) {
  return Integer(FastInfoset::kLengthBit7, octet, kInvalidLengthBit5);  // every pattern of two bits is a length
}

unsigned long CFastInfosetReader::LengthOfSequence() {
  const unsigned char first = Next();
  if (first < 0x80) return first + 1ul;
  const unsigned char* const rest = Move(2);
  return ((first & 0x0Ful) << 16 | static_cast<unsigned long>(rest[0]) << 8 | rest[1]) + 129;
}

void CFastInfosetReader::GetMore(std::size_t n) {
  while (n > GetRemaining()) {
    const std::size_t had = GetRemaining();
    const auto used = static_cast<std::size_t>(m_at - m_begin);
    const std::string_view input = m_more != nullptr ? m_more(used) : std::string_view();
    if (input.size() <= had) throw CRkException(L"Failed to parse FastInfoset. Unexpected End of File.");
    const std::size_t offset = GetOffset();
    m_at = m_begin = reinterpret_cast<const unsigned char*>(input.data());
    m_origin = reinterpret_cast<std::uintptr_t>(m_begin) - offset;
    m_end = m_at + input.size();
  }
}

}  // namespace RkXmlLib16
