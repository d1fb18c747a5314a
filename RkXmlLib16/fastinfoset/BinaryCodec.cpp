#include "RkXmlLib16/fastinfoset/BinaryCodec.h"

#include <charconv>
#include <cstdint>
#include <cstring>
#include <limits>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/base/Format.h"
#include "RkXmlLib16/context/FastInfosetContext.h"
#include "RkXmlLib16/io/Encoder.h"
#include "RkXmlLib16/types/Base64.h"
#include "RkXmlLib16/types/Conversions.h"

namespace RkXmlLib16 {

namespace {

using Octets = std::vector<unsigned char>;

constexpr CWhitespaceUtils::WhitespaceRule kNoRule = CWhitespaceUtils::none;
constexpr unsigned char kBooleanUnusedBits = 0x30;  // one value leaves three bits of its octet
constexpr unsigned char kBooleanTrueBit = 0x08;
constexpr unsigned long kUuidLength = 16;

// The bits of a value of any arithmetic type, in an unsigned integer of its size, and back.
template <std::size_t Size>
struct Bits;
template <>
struct Bits<2> {
  using Type = std::uint16_t;
};
template <>
struct Bits<4> {
  using Type = std::uint32_t;
};
template <>
struct Bits<8> {
  using Type = std::uint64_t;
};

template <class T>
void AppendBigEndian(T value, Octets& octets) {
  typename Bits<sizeof(T)>::Type bits;
  std::memcpy(&bits, &value, sizeof bits);
  for (int shift = static_cast<int>(sizeof bits) * 8 - 8; shift >= 0; shift -= 8) {
    octets.push_back(static_cast<unsigned char>(bits >> shift));
  }
}

template <class T>
T ReadBigEndian(const unsigned char* octets) {
  using Unsigned = typename Bits<sizeof(T)>::Type;
  Unsigned bits = 0;
  for (std::size_t i = 0; i < sizeof bits; ++i) bits = static_cast<Unsigned>(bits << 8 | octets[i]);
  T value;
  std::memcpy(&value, &bits, sizeof value);
  return value;
}

template <class Integer>
void AppendItem(Integer value, std::wstring& text) {
  char digits[24];
  const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
  text.append(digits, end);
}

void AppendItem(float value, std::wstring& text) { CConversions::AppendTo<ItemType_float>(text, value); }

void AppendItem(double value, std::wstring& text) { CConversions::AppendTo<ItemType_double>(text, value); }

void AppendSeparator(unsigned long position, std::wstring& text) {
  if (position > 0) text += L' ';
}

template <class T>
void AppendNumbers(const unsigned char* octets, unsigned long length, const wchar_t* error, std::wstring& text) {
  if (length % sizeof(T) != 0) throw CRkException(error);
  for (unsigned long at = 0; at < length; at += sizeof(T)) {
    AppendSeparator(at, text);
    AppendItem(ReadBigEndian<T>(octets + at), text);
  }
}

void AppendBooleans(const unsigned char* octets, unsigned long length, std::wstring& text) {
  if (length == 0) return;
  const unsigned long unused = octets[0] >> 4;
  for (unsigned long bit = 4; bit + unused < length * 8; ++bit) {
    AppendSeparator(bit - 4, text);
    const bool value = (octets[bit / 8] >> (7 - bit % 8) & 1) != 0;
    text += value ? L"true" : L"false";
  }
}

void AppendUuids(const unsigned char* octets, unsigned long length, std::wstring& text) {
  if (length % kUuidLength != 0) throw CRkException(L"Invalid value for UUID byte encoding.");
  for (unsigned long at = 0; at < length; at += kUuidLength) {
    AppendSeparator(at, text);
    text += CBinaryData::GetAsHexString(octets + at, kUuidLength);
  }
}

int HexDigit(wchar_t c) {
  if (c >= L'0' && c <= L'9') return c - L'0';
  if (c >= L'A' && c <= L'F') return c - L'A' + 10;
  return -1;
}

// The functions below append only when the text is the one that decoding gives.

bool AppendExactHex(std::wstring_view text, Octets& octets) {
  if (text.length() % 2 != 0) return false;
  const std::size_t start = octets.size();
  for (std::size_t i = 0; i < text.length(); i += 2) {
    const int high = HexDigit(text[i]);
    const int low = HexDigit(text[i + 1]);
    if (high < 0 || low < 0) {
      octets.resize(start);
      return false;
    }
    octets.push_back(static_cast<unsigned char>(high << 4 | low));
  }
  return true;
}

template <class T>
bool AppendExactInteger(std::wstring_view text, Octets& octets) {
  char digits[20];  // the longest is that of the lowest long
  if (text.empty() || text.length() > sizeof digits) return false;
  std::size_t length = 0;
  for (const wchar_t c : text) {
    if ((c < L'0' || c > L'9') && c != L'-') return false;
    digits[length++] = static_cast<char>(c);
  }
  T value = 0;
  const auto result = std::from_chars(digits, digits + length, value);
  if (result.ec != std::errc() || result.ptr != digits + length) return false;
  char printed[24];
  const auto end = std::to_chars(printed, printed + sizeof printed, value).ptr;
  if (std::string_view(printed, static_cast<std::size_t>(end - printed)) != std::string_view(digits, length)) {
    return false;  // leading zeros, -0
  }
  AppendBigEndian(value, octets);
  return true;
}

bool AppendExactBoolean(std::wstring_view text, Octets& octets) {
  if (text != L"true" && text != L"false") return false;
  octets.push_back(text == L"true" ? kBooleanUnusedBits | kBooleanTrueBit : kBooleanUnusedBits);
  return true;
}

bool LooksLikeNumber(std::wstring_view text) {
  return !text.empty() && text.find_first_not_of(L"0123456789+-.eE") == std::wstring_view::npos;
}

template <ItemType kItem>
bool AppendExactFloat(std::wstring_view text, Octets& octets) {
  if (!LooksLikeNumber(text)) return false;
  const auto value = CConversions::FromText<kItem>(text, kNoRule);
  std::wstring printed;
  AppendItem(value, printed);
  if (printed != text) return false;
  AppendBigEndian(value, octets);
  return true;
}

// By way of the codec itself, for what is rare.
bool AppendExactAny(unsigned long algorithm, std::wstring_view text, Octets& octets) {
  CFastInfosetBinaryData data;
  data.SetAsEncodedString(algorithm, std::wstring(text).c_str());
  if (data.GetLength() == 0 || data.GetAsString(algorithm) != text) return false;
  octets.insert(octets.end(), data.GetData(), data.GetData() + data.GetLength());
  return true;
}

bool AppendExactCdata(std::wstring_view text, Octets& octets) {
  const CBinaryData utf8 = CEncoder::UnicodeToUtf8Binary(text);
  octets.insert(octets.end(), utf8.GetData(), utf8.GetData() + utf8.GetLength());
  return true;
}

}  // namespace

CFastInfosetBinaryData::CFastInfosetBinaryData() = default;

CFastInfosetBinaryData::CFastInfosetBinaryData(const CFastInfosetBinaryData& other) = default;

CFastInfosetBinaryData::CFastInfosetBinaryData(const CBinaryData& data) : CBinaryData(data) {}

CFastInfosetBinaryData::CFastInfosetBinaryData(unsigned char* data, unsigned long length, bool copy)
    : CBinaryData(data, length, copy) {}

CFastInfosetBinaryData::CFastInfosetBinaryData(const wchar_t* text) : CBinaryData(text) {}

CFastInfosetBinaryData& CFastInfosetBinaryData::operator=(const CFastInfosetBinaryData& other) = default;

CFastInfosetBinaryData::~CFastInfosetBinaryData() = default;

void CFastInfosetBinaryData::SetAsEncodedString(unsigned long algorithm, const wchar_t* text) {
  if (text == nullptr) text = L"";
  Octets octets;
  switch (algorithm) {
    case FIEncodingAlgorithm_Hexadecimal:
      SetAsHexString(text);
      return;
    case FIEncodingAlgorithm_Base64:
      SetAsBase64(text);
      return;
    case FIEncodingAlgorithm_Short:
      AppendBigEndian(CConversions::i2FromString(text, kNoRule), octets);
      break;
    case FIEncodingAlgorithm_Int: {
      const long value = CConversions::i4FromString(text, kNoRule);
      if (value < std::numeric_limits<std::int32_t>::min() || value > std::numeric_limits<std::int32_t>::max()) {
        throw CRkInvalidValueException(FormatString(L"The value [%ls] is to large to fit in a i4", text));  // sic
      }
      AppendBigEndian(static_cast<std::int32_t>(value), octets);
      break;
    }
    case FIEncodingAlgorithm_Long:
      AppendBigEndian(CConversions::i8FromString(text, kNoRule), octets);
      break;
    case FIEncodingAlgorithm_Boolean:
      octets.push_back(CConversions::booleanFromString(text, kNoRule) ? kBooleanUnusedBits | kBooleanTrueBit
                                                                      : kBooleanUnusedBits);
      break;
    case FIEncodingAlgorithm_Float:
      AppendBigEndian(CConversions::r4FromString(text, kNoRule), octets);
      break;
    case FIEncodingAlgorithm_Double:
      AppendBigEndian(CConversions::r8FromString(text, kNoRule), octets);
      break;
    case FIEncodingAlgorithm_Uuid: {
      std::wstring digits(text);
      FindReplace(digits, L"-", L"");
      SetAsHexString(digits.c_str());
      return;
    }
    case FIEncodingAlgorithm_Cdata:
      CBinaryData::operator=(CEncoder::UnicodeToUtf8Binary(text));
      return;
    default:
      throw CRkException(L"Unknown byte encoding.");
  }
  SetBuffer(octets.data(), octets.size());
}

std::wstring CFastInfosetBinaryData::GetAsString(unsigned long algorithm) const {
  std::wstring text;
  AppendAsString(algorithm, GetData(), GetLength(), text);
  return text;
}

void CFastInfosetBinaryData::AppendAsString(unsigned long algorithm, const unsigned char* octets, unsigned long length,
                                            std::wstring& text) {
  switch (algorithm) {
    case FIEncodingAlgorithm_Hexadecimal:
      text += CBinaryData::GetAsHexString(octets, length);
      return;
    case FIEncodingAlgorithm_Base64:
      text += CBase64::Encode(octets, length);
      return;
    case FIEncodingAlgorithm_Short:
      return AppendNumbers<std::int16_t>(octets, length, L"Invalid value for SHORT byte encoding.", text);
    case FIEncodingAlgorithm_Int:
      return AppendNumbers<std::int32_t>(octets, length, L"Invalid value for INT byte encoding.", text);
    case FIEncodingAlgorithm_Long:
      return AppendNumbers<std::int64_t>(octets, length, L"Invalid value for LONG byte encoding.", text);
    case FIEncodingAlgorithm_Boolean:
      return AppendBooleans(octets, length, text);
    case FIEncodingAlgorithm_Float:
      return AppendNumbers<float>(octets, length, L"Invalid value for FLOAT byte encoding.", text);
    case FIEncodingAlgorithm_Double:
      return AppendNumbers<double>(octets, length, L"Invalid value for DOUBLE byte encoding.", text);
    case FIEncodingAlgorithm_Uuid:
      return AppendUuids(octets, length, text);
    default:
      throw CRkException(L"Unknown byte encoding.");
  }
}

bool CFastInfosetBinaryData::AppendExactly(unsigned long algorithm, std::wstring_view text, Octets& octets) {
  try {
    switch (algorithm) {
      case FIEncodingAlgorithm_Hexadecimal:
        return AppendExactHex(text, octets);
      case FIEncodingAlgorithm_Short:
        return AppendExactInteger<std::int16_t>(text, octets);
      case FIEncodingAlgorithm_Int:
        return AppendExactInteger<std::int32_t>(text, octets);
      case FIEncodingAlgorithm_Long:
        return AppendExactInteger<std::int64_t>(text, octets);
      case FIEncodingAlgorithm_Boolean:
        return AppendExactBoolean(text, octets);
      case FIEncodingAlgorithm_Float:
        return AppendExactFloat<ItemType_float>(text, octets);
      case FIEncodingAlgorithm_Double:
        return AppendExactFloat<ItemType_double>(text, octets);
      case FIEncodingAlgorithm_Cdata:
        return AppendExactCdata(text, octets);
      default:
        return AppendExactAny(algorithm, text, octets);
    }
  } catch (const CRkException&) {
    return false;
  }
}

}  // namespace RkXmlLib16
