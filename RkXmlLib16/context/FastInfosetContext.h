#ifndef RKXMLLIB16_CONTEXT_FASTINFOSETCONTEXT_H
#define RKXMLLIB16_CONTEXT_FASTINFOSETCONTEXT_H

#include <array>
#include <cstdint>
#include <string>

#include "RkXmlLib16/base/Enumerations.h"
#include "RkXmlLib16/base/Export.h"
#include "RkXmlLib16/context/Vocabulary.h"

namespace RkXmlLib16 {

// How a string is encoded (ITU-T X.891 clause 7.17).
enum FIStringEncoding : std::int32_t {
  FIStringEncoding_None = 0,  // no entry: the default string encoding
  FIStringEncoding_UTF8 = 1,
  FIStringEncoding_UTF16BE = 2,             // read, never written
  FIStringEncoding_RestrictedAlphabet = 3,  // packed positions in an alphabet
  FIStringEncoding_EncodingAlgorithm = 4    // octets of a typed value
};

// The restricted alphabets (ITU-T X.891 clause 9) and the built-in encoding algorithms (clause 10) by index.
enum FIRestrictedAlphabet : std::int32_t { FIRestrictedAlphabet_Numeric = 1, FIRestrictedAlphabet_DateAndTime = 2 };
enum FIEncodingAlgorithm : std::int32_t {
  FIEncodingAlgorithm_Hexadecimal = 1,
  FIEncodingAlgorithm_Base64 = 2,
  FIEncodingAlgorithm_Short = 3,
  FIEncodingAlgorithm_Int = 4,
  FIEncodingAlgorithm_Long = 5,
  FIEncodingAlgorithm_Boolean = 6,
  FIEncodingAlgorithm_Float = 7,
  FIEncodingAlgorithm_Double = 8,
  FIEncodingAlgorithm_Uuid = 9,
  FIEncodingAlgorithm_Cdata = 10
};

// One entry of the encoding table: the kind of encoding and, where the kind asks for one, the index of the alphabet or
// algorithm.
struct EncodedCharacterString {
  FIStringEncoding m_encoding = FIStringEncoding_None;
  unsigned long m_index = 0;
};

// The settings of Fast Infoset. Writing takes all of them; reading takes the vocabulary to start from.
//
//   CSerializationContext ctx;
//   ctx.GetFIContext()->SetSuggestedValues();  // numbers as octets
//   CBinaryData bytes = order.ToFastInfosetStream(FInfoDecl_None, ctx, CompressionType_None);
class RKXML_EXPORT CFastInfosetContext {
 public:
  CFastInfosetContext();
  CFastInfosetContext(const CFastInfosetContext& other);
  CFastInfosetContext& operator=(const CFastInfosetContext& other);
  ~CFastInfosetContext();

  // The encoding of the values of an ItemType; "none" for every type at first. A value is written through an alphabet
  // or algorithm only where reading it back gives the same text, else as characters; but an integer or decimal with a
  // character that the numeric alphabet lacks is an error. Both throw CRkInvalidParamException for an index that is no
  // ItemType.
  const EncodedCharacterString& GetEncoding(int index) const {
    if (index < ItemType_none || index > ItemType_integer) ThrowBadIndex(index);
    return m_encodings[static_cast<std::size_t>(index)];
  }
  void SetEncoding(int index, EncodedCharacterString encoding);
  // Fills the table: algorithms for binary, integral, boolean and floating types, the numeric alphabet for the numbers
  // without bounds, the date and time alphabet for dates and times, none for durations, characters and strings.
  void SetSuggestedValues();
  // The encoding of strings without an entry of their own: UTF-8.
  FIStringEncoding GetDefaultStringEncoding() const noexcept { return FIStringEncoding_UTF8; }

  // Attribute values and texts of this many characters or more are never indexed; 6 at first.
  unsigned long GetAttributeMaxAddLength() const noexcept { return m_attributeMaxAddLength; }
  void SetAttributeMaxAddLength(unsigned long length) noexcept { m_attributeMaxAddLength = length; }
  unsigned long GetElementMaxAddLength() const noexcept { return m_elementMaxAddLength; }
  void SetElementMaxAddLength(unsigned long length) noexcept { m_elementMaxAddLength = length; }

  // Whether the document names an external vocabulary. It has the entries of every document's initial vocabulary and
  // no others, so a reader may ignore it.
  bool GetUseGeneratedVocabulary() const noexcept { return m_useGeneratedVocabulary; }
  void SetUseGeneratedVocabulary(bool use) noexcept { m_useGeneratedVocabulary = use; }
  // Its URI; LIBRARY_NAMESPACE stands for an empty one.
  std::wstring GetExternalVocabularyURI() const { return m_externalVocabularyUri; }
  void SetExternalVocabularyURI(const std::wstring& uri) { m_externalVocabularyUri = uri; }

  // The vocabulary that every document starts from.
  const CFIVocabulary& GetVocabulary() const noexcept { return m_vocabulary; }

  // The library's own namespace.
  static const std::wstring& LIBRARY_NAMESPACE;

 private:
  [[noreturn]] static void ThrowBadIndex(int index);

  std::array<EncodedCharacterString, ItemType_integer + 1> m_encodings;
  unsigned long m_attributeMaxAddLength = 6;
  unsigned long m_elementMaxAddLength = 6;
  bool m_useGeneratedVocabulary = false;
  std::wstring m_externalVocabularyUri;
  CFIVocabulary m_vocabulary;
};

}  // namespace RkXmlLib16

#endif
