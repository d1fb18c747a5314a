// Every short text over an alphabet either reads to a value that prints and reads to the same, or throws one of the
// described messages.
#include <cwchar>
#include <string>

#include "Expect.h"
#include "RkXmlLib16/types/Conversions.h"

using namespace RkXmlTest;

namespace {

template <class Visit>
void ForEachText(std::wstring_view alphabet, std::size_t longest, Visit&& visit) {
  std::wstring text;
  std::size_t count = 1;  // of the texts of a length
  for (std::size_t length = 0; length <= longest; ++length, count *= alphabet.size()) {
    for (std::size_t number = 0; number < count; ++number) {
      text.clear();
      for (std::size_t rest = number; text.size() < length; rest /= alphabet.size())
        text += alphabet[rest % alphabet.size()];
      visit(text);
    }
  }
}

// What comes of reading a text: the print of the value or the message.
template <ItemType kItem>
std::wstring Outcome(const std::wstring& text) {
  std::wstring outcome;
  try {
    CConversions::AppendTo<kItem>(outcome, CConversions::FromText<kItem>(text, CWhitespaceUtils::collapse));
  } catch (const CRkInvalidValueException& e) {
    outcome = e.GetMessage();
  }
  return outcome;
}

// Plain texts take a fast path, texts with white space around them the general one. The first text on which the two
// differ.
template <ItemType... kItems>
std::wstring FirstDifference(const std::wstring& text) {
  const std::wstring spaced = L" " + text + L"\n";
  return ((Outcome<kItems>(text) != Outcome<kItems>(spaced)) || ...) ? text : std::wstring();
}

// Each part of a decimal, of which some do not print.
std::wstring Parts(const std::wstring& text) {
  CDecimal value;
  try {
    value.Parse(text);
  } catch (const CRkInvalidValueException&) {
    return L"invalid";
  }
  std::wstring parts;
  for (const CBigInteger* part : {&value.GetIntegerPart(), &value.GetFractionPart()}) {
    parts += part->GetSign() < 0 ? L'-' : L'+';
    for (const unsigned char digit : part->GetDigits()) parts += L'0' + static_cast<wchar_t>(digit);
  }
  return parts + L'/' + std::to_wstring(value.GetFractionalDivider());
}

// Counts instead of asserting, for speed; keeps the first text of each kind.
struct Sweep {
  std::size_t read = 0;
  std::wstring unstable, foreign;

  template <ItemType kItem>
  void Try(const std::wstring& text, std::initializer_list<std::wstring_view> messages) {
    std::wstring printed;
    try {
      CConversions::AppendTo<kItem>(printed, CConversions::FromText<kItem>(text, CWhitespaceUtils::none));
      ++read;
    } catch (const CRkInvalidValueException& e) {
      for (const std::wstring_view message : messages)
        if (e.GetMessage().find(message) == 0) return;
      if (foreign.empty()) foreign = text + L": " + e.GetMessage();
      return;
    }
    std::wstring again;
    try {
      CConversions::AppendTo<kItem>(again, CConversions::FromText<kItem>(printed, CWhitespaceUtils::none));
    } catch (const CRkException&) {
    }
    if (again != printed && unstable.empty()) unstable = text + L" printed " + printed + L" printed " + again;
  }

  void Expect() const {
    EXPECT_TEXT(L"", unstable);
    EXPECT_TEXT(L"", foreign);
    EXPECT_GT(read, 0U);
  }
};

}  // namespace

TEST(LexicalSweep, Numbers) {
  Sweep decimal, integer, i4, r8;
  ForEachText(L"-+0129.e", 5, [&](const std::wstring& text) {
    const std::initializer_list<std::wstring_view> decimals = {
        L"The string representing a Decimal, contained an invalid char at position ", L"The exponent of the Decimal ["};
    decimal.Try<ItemType_decimal>(text, decimals);
    // The print of 9e999 and its like has a thousand digits: long, but not slow.
    integer.Try<ItemType_integer>(text, decimals);
    i4.Try<ItemType_int>(text, {L"The value [" + text + L"] can not be converted to a i4"});
    r8.Try<ItemType_double>(text, {L"The value [" + text + L"] can not be converted to a r8"});
  });
  decimal.Expect();
  integer.Expect();
  i4.Expect();
  r8.Expect();
}

TEST(LexicalSweep, DatesAndDurations) {
  Sweep date, time, duration;
  ForEachText(L"-:TZ019P", 5, [&](const std::wstring& text) {
    for (const wchar_t* prefix : {L"", L"2000-", L"2000-02-", L"2000-02-29"})
      date.Try<ItemType_date>(prefix + text, {L"Invalid ", L"Failed to copy CDateTime. Invalid Date Type: "});
    for (const wchar_t* prefix : {L"", L"10:5", L"10:59:59"}) time.Try<ItemType_time>(prefix + text, {L"Invalid "});
    for (const wchar_t* suffix : {L"", L"M", L"S", L".1S"})
      duration.Try<ItemType_duration>(text + suffix,
                                      {L"Invalid XSD Duration [", L"Invalid XSD Duration (Empty String)"});
  });
  date.Expect();
  time.Expect();
  duration.Expect();
}

TEST(LexicalSweep, PlainNumbersReadLikeThoseAmongWhiteSpace) {
  std::wstring different;
  const auto compare = [&different](const std::wstring& text) {
    if (different.empty())
      different =
          FirstDifference<ItemType_byte, ItemType_unsignedByte, ItemType_unsignedShort, ItemType_int, ItemType_long,
                          ItemType_unsignedInt, ItemType_unsignedLong, ItemType_float, ItemType_double>(text);
  };
  ForEachText(L"-+012589.", 4, compare);
  const std::wstring digits = L"92233720368547758079";
  for (const wchar_t* sign : {L"", L"-", L"+"}) {
    for (std::size_t length = 1; length <= digits.size(); ++length) {
      const std::wstring number = sign + digits.substr(0, length);
      compare(number);
      for (std::size_t point = 0; point <= length; ++point)
        compare(std::wstring(number).insert(number.size() - point, L"."));
      compare(sign + (L"0." + std::wstring(length, L'0')) + L"7");
    }
  }
  EXPECT_TEXT(L"", different);
  std::wstring otherBoolean;
  ForEachText(L"trueTfalsF01", 4, [&](const std::wstring& text) {
    for (const wchar_t* suffix : {L"", L"e"})
      if (otherBoolean.empty()) otherBoolean = FirstDifference<ItemType_boolean>(text + suffix);
  });
  EXPECT_TEXT(L"", otherBoolean);
}

TEST(LexicalSweep, PlainDecimalsReadLikeThoseWithAnExponent) {
  std::wstring different;
  const auto compare = [&different](const std::wstring& text) {
    if (different.empty() && Parts(text) != Parts(text + L"e0")) different = text;
  };
  ForEachText(L"-+019.", 5, compare);
  const std::wstring zeros(20, L'0'), digits = L"12345678901234567890";
  for (const wchar_t* sign : {L"", L"-", L"+"}) {
    for (std::size_t before = 0; before <= 10; ++before) {
      for (std::size_t behind = 0; behind <= 20; ++behind) {
        const std::wstring integer = sign + digits.substr(0, before), fraction = digits.substr(0, behind);
        compare(integer + L"." + fraction);
        compare(integer + L"." + zeros.substr(0, behind) + L"5");
        compare(integer + L"." + fraction + L"000");
        compare(sign + zeros.substr(0, before) + integer.substr(std::wstring_view(sign).size()) + L".1");
        compare(sign + zeros.substr(0, before) + L"." + zeros.substr(0, behind));
      }
    }
  }
  EXPECT_TEXT(L"", different);
}

TEST(LexicalSweep, PlainDatesReadLikeThoseWithAFraction) {
  const auto outcome = [](const std::wstring& text) {
    CDateTime value;
    try {
      value.ParseXSDDateTime(text);
    } catch (const CRkException&) {
      return std::wstring(L"invalid");
    }
    return value.ToString() + (value.HasTimeZone() ? L" with" : L" without") + (value.IsUTC() ? L" zone" : L"");
  };
  std::wstring different;
  const auto compare = [&](const std::wstring& text) {
    constexpr std::size_t kSeconds = 19;
    for (const wchar_t* zone : {L"", L"Z", L"+01:00", L"ZZ", L"z"}) {
      const std::wstring plain = text + zone;
      // A point without digits behind it changes nothing.
      if (different.empty() && outcome(plain) != outcome(std::wstring(plain).insert(kSeconds, L"."))) different = plain;
    }
  };
  for (const std::wstring base :
       {L"2024-02-29T23:59:59", L"2023-02-28T00:00:00", L"0001-12-31T19:10:08", L"1900-11-30T05:50:40"}) {
    for (std::size_t at = 0; at < base.size(); ++at) {
      std::wstring text = base;
      // Among them what has the low byte of a digit.
      for (const wchar_t c : std::wstring(L"/01234569:-TZ \x7F\xB0\x130\x10030\0", 19) + wchar_t(0x80000030)) {
        text[at] = c;
        compare(text);
      }
    }
  }
  for (int month = 0; month <= 13; ++month) {
    for (int day = 0; day <= 32; ++day) {
      for (const wchar_t* year : {L"2024", L"2100", L"0000"}) {
        wchar_t text[32];
        std::swprintf(text, std::size(text), L"%ls-%02d-%02dT10:00:00", year, month, day);
        compare(text);
      }
    }
  }
  EXPECT_TEXT(L"", different);
}
