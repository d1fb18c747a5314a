#ifndef RKXMLLIB16_FASTINFOSET_READER_H
#define RKXMLLIB16_FASTINFOSET_READER_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "RkXmlLib16/base/Export.h"
#include "RkXmlLib16/context/FastInfosetContext.h"
#include "RkXmlLib16/context/Vocabulary.h"

namespace RkXmlLib16 {

class CTreeBuilder;
class CXmlAttribute;
class CXmlAttributes;
class CXmlDocument;
class CXmlElement;
class CXmlExpandedName;
class CXmlName;
struct CXmlTextBlock;
namespace FastInfoset {
struct IntegerLayout;
}

// Reads one Fast Infoset document (ITU-T X.891) into the tree of a CXmlDocument. It takes what the standard allows to
// any writer, but has no external vocabularies and none of the entries of an initial vocabulary: an index that needs
// one is an error. Comments, processing instructions, document type declarations and entity references are read past.
// Refused is what XML text with namespaces cannot hold: names that are no NCNames (with namespace processing off, no
// Names), an attribute "xmlns", two attributes of one name, xml and xmlns bound to anything but what they stand for,
// namespaces with control characters or '|', and ill-formed UTF-8 in names.
//
//   CFastInfosetReader reader(*ctx.GetFIContext(), document);
//   if (!reader.Parse()) ...  // not Fast Infoset: XML text, perhaps
//
// Every index is compared with its table and every length with the octets that are left before anything is allocated.
// What is wrong with a document throws CRkException "Failed to parse FastInfoset. ..." or, for octets of a typed value,
// the message of CFastInfosetBinaryData; what exceeds the reading limits of the document's context throws CRkException
// "Limit exceeded: ...". The tree built so far stays in the document.
class RKXML_EXPORT CFastInfosetReader {
 public:
  CFastInfosetReader(const CFastInfosetContext& context, CXmlDocument& document);  // both kept
  CFastInfosetReader(const CFastInfosetReader&) = delete;
  CFastInfosetReader& operator=(const CFastInfosetReader&) = delete;
  ~CFastInfosetReader();

  // Reads the document's input, or the octets given. False when they do not begin with one of the nine XML declarations
  // and the header, or with the header; nothing has been read then. Octets after the end of the document are ignored.
  bool Parse();
  bool Parse(const unsigned char* octets, std::size_t length);

  // The same for a document that is read in pieces. `more` is told how many octets of the input it gave last are used
  // up; it gives the input behind them, with further octets unless there are none.
  using More = std::function<std::string_view(std::size_t used)>;
  bool Start(const unsigned char* octets, std::size_t length, More more);
  // Reads on, after Start: to a pause of the document (true) or to the end of the Fast Infoset (false).
  bool ReadOn();
  // Of the octet that is read next.
  std::size_t GetOffset() const noexcept { return OffsetOf(m_at); }
  std::size_t GetRemaining() const noexcept { return static_cast<std::size_t>(m_end - m_at); }

  // Drops the vocabulary and the input, as at the start of every Parse.
  void Cleanup();

 private:
  using Names = std::vector<const CXmlName*>;
  using QNames = std::vector<const CXmlExpandedName*>;
  // A text or attribute value of a table, as the tree holds it; null while empty.
  struct Value {
    CXmlTextBlock* block;
    std::uint32_t length;  // of the text, which often lies far away
    bool mayHaveReturns;   // which texts of elements lose
  };
  using Values = std::vector<Value>;
  // A string that lies in the input still encoded.
  struct EncodedString {
    FIStringEncoding encoding;
    unsigned long index;  // of the alphabet or algorithm
    const unsigned char* octets;
    std::size_t length;
  };
  // A table of which only the size is kept, since nothing in the tree refers to it.
  using Count = unsigned long;

  bool ReadHeader();
  bool CheckHeader();
  bool CheckDeclaration(const wchar_t* declaration);

  void ReadOptionalData();
  void AdditionalData();
  void InitialVocabulary();
  void Notations();
  void UnparsedEntities();
  void CharacterEncodingScheme();
  void Standalone();
  void Version();

  bool ReadChildren();
  void ElementBit2();
  inline bool HasOpenElement() const noexcept;
  void ReadItem(unsigned char octet);
  void ElementStart(unsigned char octet);
  void AtrributeBit2(CXmlElement* element, unsigned char octet);  // sic
  void NamespaceAttributeBit7(unsigned char octet);
  static inline void RequireDifferentNames(const CXmlElement& element);
  static void CompareNames(const CXmlAttributes& attributes);
  void Comment();
  void ProcessingInstruction();
  bool DocumentTypeDeclarationBit7(unsigned char octet);
  void UnexpandedEntityReferenceBit7(unsigned char octet);
  void ExternalIdentifiers(unsigned char octet);

  void ReadUsual();
  inline CXmlElement* TryStart(CTreeBuilder& tree, CXmlElement* parent, const unsigned char*& at);
  inline bool TryAttribute(CTreeBuilder& tree, CXmlElement* element, const unsigned char*& at);
  inline bool TryText(CTreeBuilder& tree, CXmlElement* element, const unsigned char*& at);
  template <unsigned char kLengthBits, unsigned char... Refused>
  inline Value TryLiteral(CTreeBuilder& tree, const unsigned char*& at);
  template <const FastInfoset::IntegerLayout& kLayout>
  inline bool TryIndex(const unsigned char*& at, std::size_t& number);
  template <class Entry>
  static inline Entry FindEntry(const std::vector<Entry>& table, std::size_t number);

  inline const CXmlExpandedName& KnownName(const QNames& names, unsigned long index, const wchar_t* refusal);
  inline const CXmlExpandedName& QualifiedNameOrIndexBit2(unsigned char octet);
  inline const CXmlExpandedName& QualifiedNameOrIndexBit3(unsigned char octet);
  const CXmlExpandedName& ReadQName(unsigned char octet, QNames& names);
  const CXmlName* IdentifyingStringOrIndex(Names& names, bool& hasIndex);
  bool HasNamespaces() const;
  bool IsLegal(const Names& names) const;
  void RequireReservedPair(const CXmlName* prefix, const CXmlName* namespaceUri) const;
  void SkipIdentifyingStringOrIndex(Count& count);
  inline CXmlAttribute* NonIdentifyingStringOrIndexBit1(CXmlElement* element, const CXmlExpandedName& name);
  inline void NonIdentifyingStringOrIndexBit3(CXmlElement* element, unsigned char octet);
  CXmlAttribute* DecodeAttribute(CXmlElement* element, const CXmlExpandedName& name, unsigned char octet);
  void DecodeText(CXmlElement* element, unsigned char octet);
  inline void AppendIndexed(CXmlElement* element, const Value& text);
  void AddValue(std::wstring_view value, Values& table);
  static inline void AddShared(const Value& value, Values& table);
  // Adds the entry of a list that was read past; its index.
  static unsigned long AddSkipped(Values& table);
  void SkipNonIdentifyingStringOrIndexBit1();
  EncodedString EncodedCharacterStringBit3(unsigned char octet);
  EncodedString EncodedCharacterStringBit5(unsigned char octet);

  // These put the text into m_text.
  void Decode(const EncodedString& string);
  static bool Contains(const EncodedString& string, char octet);
  void NonEmptyOctetUTF8String(const unsigned char* octets, std::size_t length);
  void NonEmptyOctetUTF16BEString(const unsigned char* octets, std::size_t length);
  void NonEmptyOctetRestrictedAlphabetString(unsigned long alphabet, const unsigned char* octets, std::size_t length);
  void NonEmptyOctetEncryptedString(unsigned long algorithm, const unsigned char* octets, std::size_t length);

  void InitBits(const unsigned char* octets, std::size_t length);
  unsigned GetBits(int count);

  inline unsigned long Integer(const FastInfoset::IntegerLayout& layout, unsigned char octet, const wchar_t* error);
  unsigned long LongInteger(const FastInfoset::IntegerLayout& layout, unsigned char octet, const wchar_t* error);
  inline unsigned long Integer1To2pw20Bit2(unsigned char octet);
  inline unsigned long Integer1To2pw20Bit3(unsigned char octet);
  inline unsigned long Integer1To2pw20Bit4(unsigned char octet);
  inline unsigned long Integer0To2pw20Bit2(unsigned char octet);
  std::size_t NonEmptyOctetStringBit2Length(unsigned char octet);
  std::size_t NonEmptyOctetStringBit5Length(unsigned char octet);
  std::size_t NonEmptyOctetStringBit7Length(unsigned char octet);
  unsigned long LengthOfSequence();
  std::size_t OffsetOf(const unsigned char* at) const noexcept {
    return reinterpret_cast<std::uintptr_t>(at) - m_origin;
  }
  // Of the octet read last.
  std::size_t GetLastOffset() const noexcept { return GetOffset() - 1; }
  // So that n octets are left.
  [[gnu::cold]] void GetMore(std::size_t n);
  inline unsigned char Next();
  inline const unsigned char* Move(std::size_t n);

  template <class SkipItem>
  bool SkipList(bool isPresent, SkipItem&& skipItem);
  bool IsKnown(unsigned long index, std::size_t size) const noexcept { return index <= size && !m_isVocabularyLost; }
  void CountExpansion(std::size_t charCount) {
    m_expanded += charCount;
    if (m_expanded > m_expansionLimit) RequireExpansion();
  }
  // Throws over the limit, which grows with what was read of a document in pieces.
  void RequireExpansion();

  const CFastInfosetContext& m_fiContext;
  CXmlDocument& m_document;
  const unsigned char* m_begin = nullptr;
  const unsigned char* m_at = nullptr;
  const unsigned char* m_end = nullptr;
  std::uintptr_t m_origin = 0;  // where the input would begin if it were there as a whole
  More m_more;                  // null when that is all
  enum class State { Start, Children, End };
  State m_state = State::Start;
  bool m_isParentEnding = false;  // behind a pause, by the same octet
  std::wstring m_text;
  const unsigned char* m_bits = nullptr;  // the octets that GetBits has not begun
  const unsigned char* m_bitsEnd = nullptr;
  unsigned m_bitBuffer = 0;
  int m_bitCount = 0;  // bits of the buffer that are left

  std::unique_ptr<CTreeBuilder> m_tree;
  Values m_attributeValues;
  Values m_chunks;
  const CXmlName* m_xmlPrefix = nullptr;
  const CXmlName* m_xmlNamespace = nullptr;
  Names m_prefixes;  // a null entry, here and below, is one of a list that was read past
  Names m_namespaceNames;
  Names m_localNames;
  QNames m_elementNames;
  QNames m_attributeNames;
  Count m_otherNCNames = 0;
  Count m_otherUris = 0;
  Count m_otherStrings = 0;
  unsigned long m_skippedValue = 0;  // the entry that was read past, if any
  unsigned long m_skippedChunk = 0;
  bool m_isVocabularyLost = false;  // a list was not read past correctly: no index can be trusted
  unsigned long m_expanded = 0;     // characters that indexes stood for
  unsigned long m_expansionLimit = 0;
};

}  // namespace RkXmlLib16

#endif
