#ifndef RKXMLLIB16_FASTINFOSET_WRITER_H
#define RKXMLLIB16_FASTINFOSET_WRITER_H

#include <array>
#include <cstddef>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "RkXmlLib16/base/Enumerations.h"
#include "RkXmlLib16/base/Export.h"
#include "RkXmlLib16/context/FastInfosetContext.h"
#include "RkXmlLib16/context/Vocabulary.h"
#include "RkXmlLib16/document/XmlWriter.h"

namespace RkXmlLib16 {

class CBinaryStream;
namespace FastInfoset {
struct IntegerLayout;
}

// Writes one Fast Infoset document (ITU-T X.891). Comments, processing instructions and in-line schemas are accepted
// and not written.
//
//   CBinaryStream stream;
//   CFastInfosetWriter writer(*ctx.GetFIContext(), stream);
//   writer.WriteStartDocument(FInfoDecl_None);
//   writer.WriteStartElement(L"a", L"");
//   writer.WriteEndElement();
//   writer.WriteEndDocument();
//   stream.GetBinaryStream();  // E0 00 00 01 00 3C 00 61 FF
//
// Octets reach the stream in larger pieces; all of them have when WriteEndDocument or Close returns.
class RKXML_EXPORT CFastInfosetWriter : public CXmlWriter {
 public:
  CFastInfosetWriter(const CFastInfosetContext& context, CBinaryStream& stream);  // both kept
  ~CFastInfosetWriter() override;

  // Refuse what a reader would not give back as it was, with CRkException "Refused to write ...". Off at first. See
  // CSerializationContext::SetWellFormedOutput.
  void SetWellFormedOutput(bool refuse);

  // The XML declaration, the header and, where the settings say so, the URI of the external vocabulary. Throws
  // CRkInvalidParamException for a number that is no FInfoDecl.
  void WriteStartDocument(FInfoDecl declaration);
  // Ends the elements that are open, then the document.
  void WriteEndDocument();

  void Close() override;
  void SetDefaultNamespace(const std::wstring& namespaceUri) override;
  void AddNamespace(const std::wstring& prefix, const std::wstring& namespaceUri) override;
  void WriteComment(const std::wstring& text) override;
  void WritePI(const std::wstring& text) override;
  void WriteInlineSchema(const std::wstring& schemaText) override;
  void WriteStartElement(const std::wstring& localName, const std::wstring& namespaceUri) override;
  // Throws CRkException "Failed to write FastInfoset. ..." when the settings ask for an encoding that does not exist,
  // or for the numeric alphabet when that lacks a character of an integer or decimal. So does WriteAttributeString.
  // Without an open element a text that is not empty throws CRkException.
  void WriteString(const std::wstring& text, ItemType type) override;
  // Throws CRkException when no element is open.
  void WriteEndElement() override;
  void WriteAttributeString(const std::wstring& localName, const std::wstring& namespaceUri, const std::wstring& value,
                            ItemType type) override;
  void WriteAttributeType(const std::wstring& typeNamespaceUri, const std::wstring& typeName, ItemType type) override;
  void WriteAttributeNil() override;

  // Appends the characters of the text, packed as positions in a restricted alphabet, to `octets`. Throws CRkException
  // "Failed to write FastInfoset. ..." for an index without alphabet, an empty text and a character that the alphabet
  // lacks.
  static void AppendRestrictedAlphabetString(unsigned long alphabetIndex, std::wstring_view text,
                                             std::vector<unsigned char>& octets);

 protected:
  // A namespace as names in the current scope refer to it. An index is 0 for an absent part, and for one that found its
  // table full, which stands as a literal.
  struct ScopedNamespace {
    const CNamespaceName* name = nullptr;
    std::size_t scope = 0;  // for which it holds
    std::wstring prefix;
    unsigned long prefixIndex = 0;
    unsigned long namespaceNameIndex = 0;
  };

  // Ends the start tag that is pending.
  void WriteElement();

  // Each writes one item of X.891 Annex C that begins at the bit of its name; `octet` holds the bits before it.
  void Integer1To2pw20Bit2(unsigned char octet, unsigned long value);                           // C.25
  void Integer1To2pw20Bit3(unsigned char octet, unsigned long value);                           // C.27
  void Integer1To2pw20Bit4(unsigned char octet, unsigned long value);                           // C.28
  void Integer0To2pw20Bit2(unsigned char octet, unsigned long value);                           // C.26
  void NonEmptyOctetUTF8StringBit2(unsigned char octet, std::wstring_view text);                // C.22
  void NonEmptyOctetStringBit5(unsigned char octet, const unsigned char* data, std::size_t n);  // C.23
  void NonEmptyOctetStringBit7(unsigned char octet, const unsigned char* data, std::size_t n);  // C.24
  void IdentifyingStringOrIndexBit1(std::wstring_view text, CFIStringTable& table);             // C.13
  void NonIdentifyingStringOrIndexBit1(std::wstring_view text, ItemType type);                  // C.14
  void NonIdentifyingStringOrIndexBit3(std::wstring_view text, ItemType type);                  // C.15
  void QualifiedNameOrIndexBit2(const ScopedNamespace& scoped, std::wstring_view localName);    // C.17
  void QualifiedNameOrIndexBit3(const ScopedNamespace& scoped, std::wstring_view localName);    // C.18
  void EncodedCharacterStringBit3(unsigned char octet, std::wstring_view text, const EncodedCharacterString& encoding);
  void EncodedCharacterStringBit5(unsigned char octet, std::wstring_view text, const EncodedCharacterString& encoding);
  void AppendRestrictedAlphabetString(unsigned long alphabetIndex, std::wstring_view text);

 private:
  class RecordOutput;
  // A declaration in force: written on the open element with this number, counted from the root.
  struct Binding {
    std::wstring prefix;
    const CNamespaceName* name;
    std::size_t element;
    Binding* hidden = nullptr;  // another one of the prefix, when there is an index
  };
  struct PrefixHash {
    std::size_t operator()(std::wstring_view prefix) const noexcept;
  };
  using ScopeCache = std::deque<ScopedNamespace>;  // by the number of the namespace
  // A name that was written as an index, to be found again without the tables.
  struct RecentName {
    std::wstring_view localName;  // in its table
    unsigned long prefixIndex = 0;
    unsigned long namespaceNameIndex = 0;
    unsigned long index = 0;  // 0 marks a free slot
  };
  using RecentNames = std::array<RecentName, 64>;

  void InsertDeclarations(unsigned char attributes);
  void BeginChild();
  void BeginStartTag();
  void CloseElement();
  bool IsStartTagOpen() const;
  void RequireStartTag() const;
  const ScopedNamespace* FindKnown(const ScopeCache& cache, const CNamespaceName& name) const;
  const ScopedNamespace& ResolveElement(const CNamespaceName& name);
  const ScopedNamespace& ResolveAttribute(const CNamespaceName& name);
  std::wstring FindPrefix(const CNamespaceName& name);
  const ScopedNamespace& Remember(ScopeCache& cache, const CNamespaceName& name, const std::wstring& prefix);
  unsigned long& NamespaceNameIndex(const CNamespaceName& name);
  const Binding* FindBinding(std::wstring_view prefix) const;
  void AddToIndex(Binding& binding);
  [[gnu::cold]] void RemoveLastBinding();
  void Declare(const std::wstring& prefix, const CNamespaceName& name);
  void ChangeScope();
  void LeaveScope();

  struct AttributeValue;
  struct Chunk;
  template <class Value>
  [[gnu::always_inline]] inline void NonIdentifyingStringOrIndex(std::wstring_view text, ItemType type);
  template <class Value>
  [[gnu::noinline]] void Literal(std::wstring_view text, ItemType type, const CFIKey* key);
  const EncodedCharacterString& EncodingOf(ItemType type) const;
  bool IsUtf8(const EncodedCharacterString& wanted) const;
  bool EncodeTyped(const EncodedCharacterString& wanted, std::wstring_view text, ItemType type, bool isContent);
  template <const FastInfoset::IntegerLayout& kIndex>
  unsigned long QualifiedName(unsigned char literal, CFIQNameTable& names, RecentNames& recent,
                              const ScopedNamespace& scoped, std::wstring_view localName);
  unsigned long ElementName(const ScopedNamespace& scoped, std::wstring_view localName);
  unsigned long AttributeName(const ScopedNamespace& scoped, std::wstring_view localName);
  CQNameParts PartsOf(const ScopedNamespace& scoped, std::wstring_view localName) const;
  // The index of a name, or 0.
  static unsigned long FindIndex(const CFIQNameTable& names, const CQNameParts& parts, const ScopedNamespace& scoped);
  // The index of a name that has one, or 0 after it was written in full.
  unsigned long NewQualifiedName(unsigned char literal, CFIQNameTable& names, RecentName& slot,
                                 const ScopedNamespace& scoped, std::wstring_view localName);
  void ElementIndex(unsigned long index);
  void NamePart(std::wstring_view text, unsigned long index, CFIStringTable& table);
  template <const FastInfoset::IntegerLayout& kLayout>
  void Integer(unsigned char octet, unsigned long value);
  template <const FastInfoset::IntegerLayout& kLayout>
  void Utf8(unsigned char octet, std::wstring_view text);
  template <const FastInfoset::IntegerLayout& kLayout>
  [[gnu::noinline]] void AnyUtf8(unsigned char octet, std::wstring_view text);
  void WriteTerminator();
  void FlushTerminator();

  // Space for `count` octets behind those that are written; the caller moves m_end over what it fills.
  unsigned char* Reserve(std::size_t count);
  [[gnu::cold]] void Grow(std::size_t count);
  void Put(unsigned char octet);
  void Put(const unsigned char* octets, std::size_t count);
  std::size_t GetLength() const;
  void FlushOctets();

  const CFastInfosetContext& m_fiContext;
  CBinaryStream& m_stream;
  CFIVocabulary m_vocabulary;
  std::unique_ptr<unsigned char[]> m_room;    // of octets not yet in the stream; holds all of a pending start tag
  unsigned char* m_end = nullptr;             // of the octets in it
  unsigned char* m_limit = nullptr;           // of the space
  std::vector<unsigned char> m_declarations;  // namespace attributes of the pending start tag
  std::vector<unsigned char> m_typedOctets;   // of the value being written, where it is not written as characters
  std::size_t m_startTag = 0;                 // where the pending start tag begins in m_room
  bool m_hasAttributes = false;               // of the pending start tag
  bool m_terminatorOwed = false;
  std::size_t m_openElements = 0;
  std::deque<Binding> m_bindings;  // innermost last
  std::unordered_map<std::wstring_view, Binding*, PrefixHash>
      m_innermost;                       // index of the bindings; empty while they are few
  std::vector<std::size_t> m_ownScopes;  // the open elements whose scope is not their parent's, by number
  ScopeCache m_elementScope;             // what was resolved, and in which scope
  ScopeCache m_attributeScope;
  std::deque<unsigned long> m_namespaceNameIndices;  // by the number of the namespace; 0 is not known
  RecentNames m_recentElements;
  RecentNames m_recentAttributes;
  std::size_t m_scope = 1;  // a number that no other scope has had
};

}  // namespace RkXmlLib16

#endif
