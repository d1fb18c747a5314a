#ifndef RKXMLLIB16_TYPES_CONVERSIONS_H
#define RKXMLLIB16_TYPES_CONVERSIONS_H

#include <string>
#include <string_view>
#include <type_traits>

#include "RkXmlLib16/base/Enumerations.h"
#include "RkXmlLib16/base/Export.h"
#include "RkXmlLib16/types/Whitespace.h"
#include "RkXmlLib16/types/XsdValue.h"

namespace RkXmlLib16 {

// Space for the lexical form of a value: for one of few characters, and for others.
struct TextSpace {
  static constexpr std::size_t kFewCharacters = 20;

  explicit TextSpace(std::wstring& forLonger) : longer(forLonger) {}

  wchar_t few[kFewCharacters];
  std::wstring& longer;
};

// Every XSD primitive value from its lexical form and back. Reading first applies the whitespace rule; what cannot be
// read throws CRkInvalidValueException, whose message quotes the text after that rule (hexBinary and base64Binary
// throw CRkException). Numbers read and print the same under every locale of the process.
//
//   CConversions::i4FromString(L" 42 ", CWhitespaceUtils::collapse);  // 42
//   CConversions::monthToString(5);                                   // "--05"
//
// i4 and ui4 are long and unsigned long, 64 bits wide.
class RKXML_EXPORT CConversions {
 public:
  using Rule = CWhitespaceUtils::WhitespaceRule;

  // The conversions behind the named ones, chosen by the kind, without a copy of the text:
  //   long n = CConversions::FromText<ItemType_int>(view, CWhitespaceUtils::collapse);
  // AppendTo puts the lexical form behind `out`. `format` (null or "%.3f" and the like) reaches float, double and
  // decimal only.
  template <ItemType kItem>
  static XsdValue<kItem> FromText(std::wstring_view text, Rule rule);
  template <ItemType kItem>
  static void AppendTo(std::wstring& out, const XsdValue<kItem>& value, const wchar_t* format = nullptr);
  // The same in the space, or the value itself where it is a string.
  template <ItemType kItem>
  static std::wstring_view GetText(const XsdValue<kItem>& value, TextSpace& space, const wchar_t* format = nullptr) {
    static_assert(CDecimal::kFewCharacters <= TextSpace::kFewCharacters);
    static_assert(CDateTime::kPlainCharacters <= TextSpace::kFewCharacters);
    const bool isPlain = format == nullptr || *format == L'\0';
    wchar_t* const end = space.few + TextSpace::kFewCharacters;
    if constexpr (kItem == ItemType_string) {
      return value;
    } else if constexpr (kItem == ItemType_dateTime) {
      return value.GetText(end, space.longer);
    } else {
      if constexpr (kItem == ItemType_decimal)
        if (isPlain) return value.GetText(end, space.longer);
      if (const wchar_t* const first = isPlain ? WriteFew<kItem>(value, end) : nullptr)
        return {first, static_cast<std::size_t>(end - first)};
      space.longer.clear();
      AppendTo<kItem>(space.longer, value, format);
      return space.longer;
    }
  }
  // Writes the lexical form of an integer, if it is one of few characters, so that it ends before `end`, and returns
  // its start. Null, and nothing of use written, for others. There must be space for TextSpace::kFewCharacters.
  template <ItemType kItem>
  static const wchar_t* WriteFew(const XsdValue<kItem>& value, wchar_t* end) {
    static_assert(CBigInteger::kFewCharacters <= TextSpace::kFewCharacters);
    if constexpr (kItem == ItemType_integer)
      return value.WriteFew(end);
    else if constexpr ((kItem >= ItemType_byte && kItem <= ItemType_unsignedLong) || kItem == ItemType_gYear)
      return WriteInteger(value, end);
    else
      return nullptr;
  }

  // Integers read as wcstol and its siblings do in base 10: leading white space and a sign are accepted, and the
  // unsigned ui4 and ui8 negate after a minus sign.
  static char i1FromString(const std::wstring& text, Rule rule);
  static short i2FromString(const std::wstring& text, Rule rule);
  static long i4FromString(const std::wstring& text, Rule rule);
  static long long i8FromString(const std::wstring& text, Rule rule);
  static unsigned char ui1FromString(const std::wstring& text, Rule rule);
  static unsigned short ui2FromString(const std::wstring& text, Rule rule);
  static unsigned long ui4FromString(const std::wstring& text, Rule rule);
  static unsigned long long ui8FromString(const std::wstring& text, Rule rule);
  static std::wstring i1ToString(char value);
  static std::wstring i2ToString(short value);
  static std::wstring i4ToString(long value);
  static std::wstring i8ToString(long long value);
  static std::wstring ui1ToString(unsigned char value);
  static std::wstring ui2ToString(unsigned short value);
  static std::wstring ui4ToString(unsigned long value);
  static std::wstring ui8ToString(unsigned long long value);

  // "NaN", "INF" and "-INF", else what wcstod reads in the C locale. An empty format prints as "%.7g" and "%.16g", and
  // so does one that printf could not print a single double with.
  static float r4FromString(const std::wstring& text, Rule rule);
  static double r8FromString(const std::wstring& text, Rule rule);
  static std::wstring r4ToString(float value);
  static std::wstring r4ToString(float value, const std::wstring& format);
  static std::wstring r8ToString(double value);
  static std::wstring r8ToString(double value, const std::wstring& format);

  // "true", "1", "false", "0", in any case.
  static bool booleanFromString(const std::wstring& text, Rule rule);
  static std::wstring booleanToString(bool value);
  // Exactly one character, which may be a surrogate pair.
  static wchar_t charFromString(const std::wstring& text, Rule rule);
  static std::wstring charToString(wchar_t value);
  static std::wstring stringFromString(const std::wstring& text, Rule rule);
  static std::wstring stringToString(const std::wstring& value);

  // gYear, gMonth and gDay as plain numbers; a zone in the text is dropped. A negative year does not fit and throws;
  // the year prints without padding.
  static unsigned short yearFromString(const std::wstring& text, Rule rule);
  static unsigned char monthFromString(const std::wstring& text, Rule rule);
  static unsigned char dayFromString(const std::wstring& text, Rule rule);
  static std::wstring yearToString(unsigned short value);
  static std::wstring monthToString(unsigned char value);
  static std::wstring dayToString(unsigned char value);

  static CDateTime dateFromString(const std::wstring& text, Rule rule);
  static CDateTime timeFromString(const std::wstring& text, Rule rule);
  static CDateTime datetimeFromString(const std::wstring& text, Rule rule);
  static CDateTime yearMonthFromString(const std::wstring& text, Rule rule);
  static CDateTime monthDayFromString(const std::wstring& text, Rule rule);
  static std::wstring dateToString(const CDateTime& value);
  static std::wstring timeToString(const CDateTime& value);
  static std::wstring datetimeToString(const CDateTime& value);
  static std::wstring yearMonthToString(const CDateTime& value);
  static std::wstring monthDayToString(const CDateTime& value);

  static CDateTimeSpan durationFromString(const std::wstring& text, Rule rule);
  static std::wstring durationToString(const CDateTimeSpan& value);
  static CBigInteger integerFromString(const std::wstring& text, Rule rule);
  static std::wstring integerToString(const CBigInteger& value);
  // The format, when not empty, is a printf format for a double with a precision ("%.2f"): a decimal prints with that
  // many fraction digits, exactly.
  static CDecimal decimalFromString(const std::wstring& text, Rule rule);
  static std::wstring decimalToString(const CDecimal& value);
  static std::wstring decimalToString(const CDecimal& value, const std::wstring& format);

  static CBinaryData hexBinaryFromString(const std::wstring& text, Rule rule);
  static std::wstring hexBinaryToString(const CBinaryData& value);
  static CBinaryData base64BinaryFromString(const std::wstring& text, Rule rule);
  static std::wstring base64BinaryToString(const CBinaryData& value);

 private:
  template <class Value>
  static wchar_t* WriteInteger(Value value, wchar_t* end) {
    using Unsigned = std::conditional_t<sizeof(Value) < sizeof(int), unsigned, std::make_unsigned_t<Value>>;
    auto magnitude = static_cast<Unsigned>(value);
    if (value < 0) magnitude = 0 - magnitude;
    do *--end = static_cast<wchar_t>(L'0' + magnitude % 10);
    while ((magnitude /= 10) != 0);
    if (value < 0) *--end = L'-';
    return end;
  }
};

}  // namespace RkXmlLib16

#endif
