#include "RkXmlLib16/context/FastInfosetContext.h"

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/base/internal/NeverDestroyed.h"

namespace RkXmlLib16 {

namespace {

const CNeverDestroyed<std::wstring> kLibraryNamespace(L"urn:rkxmllib16:fast-infoset");

constexpr EncodedCharacterString Alphabet(FIRestrictedAlphabet index) {
  return {FIStringEncoding_RestrictedAlphabet, static_cast<unsigned long>(index)};
}

constexpr EncodedCharacterString Algorithm(FIEncodingAlgorithm index) {
  return {FIStringEncoding_EncodingAlgorithm, static_cast<unsigned long>(index)};
}

constexpr struct {
  ItemType type;
  EncodedCharacterString encoding;
} kSuggested[] = {
    {ItemType_hexBinary, Algorithm(FIEncodingAlgorithm_Hexadecimal)},
    {ItemType_base64Binary, Algorithm(FIEncodingAlgorithm_Base64)},
    {ItemType_byte, Algorithm(FIEncodingAlgorithm_Short)},
    {ItemType_short, Algorithm(FIEncodingAlgorithm_Short)},
    {ItemType_int, Algorithm(FIEncodingAlgorithm_Int)},
    {ItemType_long, Algorithm(FIEncodingAlgorithm_Long)},
    {ItemType_unsignedByte, Algorithm(FIEncodingAlgorithm_Short)},
    {ItemType_unsignedShort, Algorithm(FIEncodingAlgorithm_Int)},
    {ItemType_unsignedInt, Algorithm(FIEncodingAlgorithm_Long)},
    {ItemType_unsignedLong, Alphabet(FIRestrictedAlphabet_Numeric)},
    {ItemType_float, Algorithm(FIEncodingAlgorithm_Float)},
    {ItemType_double, Algorithm(FIEncodingAlgorithm_Double)},
    {ItemType_duration, {}},
    {ItemType_gYearMonth, Alphabet(FIRestrictedAlphabet_DateAndTime)},
    {ItemType_gMonthDay, Alphabet(FIRestrictedAlphabet_DateAndTime)},
    {ItemType_gYear, Alphabet(FIRestrictedAlphabet_DateAndTime)},
    {ItemType_gMonth, Alphabet(FIRestrictedAlphabet_DateAndTime)},
    {ItemType_gDay, Alphabet(FIRestrictedAlphabet_DateAndTime)},
    {ItemType_date, Alphabet(FIRestrictedAlphabet_DateAndTime)},
    {ItemType_dateTime, Alphabet(FIRestrictedAlphabet_DateAndTime)},
    {ItemType_time, Alphabet(FIRestrictedAlphabet_DateAndTime)},
    {ItemType_char, {}},
    {ItemType_string, {}},
    {ItemType_boolean, Algorithm(FIEncodingAlgorithm_Boolean)},
    {ItemType_decimal, Alphabet(FIRestrictedAlphabet_Numeric)},
    {ItemType_integer, Alphabet(FIRestrictedAlphabet_Numeric)},
};

}  // namespace

const std::wstring& CFastInfosetContext::LIBRARY_NAMESPACE = kLibraryNamespace.Get();

CFastInfosetContext::CFastInfosetContext() = default;

CFastInfosetContext::CFastInfosetContext(const CFastInfosetContext& other) = default;

CFastInfosetContext& CFastInfosetContext::operator=(const CFastInfosetContext& other) = default;

CFastInfosetContext::~CFastInfosetContext() = default;

void CFastInfosetContext::ThrowBadIndex(int index) {
  throw CRkInvalidParamException(FormatString(L"Invalid encoding index [%d]", index));
}

void CFastInfosetContext::SetEncoding(int index, EncodedCharacterString encoding) {
  GetEncoding(index);
  m_encodings[static_cast<std::size_t>(index)] = encoding;
}

void CFastInfosetContext::SetSuggestedValues() {
  for (const auto& suggested : kSuggested) SetEncoding(suggested.type, suggested.encoding);
}

}  // namespace RkXmlLib16
