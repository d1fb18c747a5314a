// Every short text over an alphabet either reads to a value that prints and reads to the same, or throws one of the
// described messages.
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
