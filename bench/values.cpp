// Measures the conversions of values, in nanoseconds for each value, beside what the C++ and C libraries need for the
// same texts. scripts/bench.sh builds and runs it.

#include <RkXmlLib16/RkXmlLib16.h>
#include <RkXmlLib16/types/Conversions.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <functional>
#include <random>
#include <string>
#include <vector>

using namespace RkXmlLib16;

namespace {

constexpr std::size_t kValues = 20000;
constexpr int kRounds = 9;

// Keeps the compiler from dropping what was computed.
template <class Value>
void Use(const Value& value) {
  asm volatile("" : : "r"(&value) : "memory");
}

// The median of some rounds over all texts.
double NanosecondsEach(const std::function<void(std::size_t)>& one) {
  std::vector<double> rounds;
  for (int round = 0; round < kRounds; ++round) {
    const auto start = std::chrono::steady_clock::now();
    for (std::size_t i = 0; i < kValues; ++i) one(i);
    const std::chrono::duration<double, std::nano> time = std::chrono::steady_clock::now() - start;
    rounds.push_back(time.count() / static_cast<double>(kValues));
  }
  std::nth_element(rounds.begin(), rounds.begin() + kRounds / 2, rounds.end());
  return rounds[kRounds / 2];
}

struct Texts {
  std::vector<std::wstring> wide;
  std::vector<std::string> narrow;
};

template <class Make>
Texts MakeTexts(Make&& make) {
  std::mt19937_64 random(16);
  Texts texts;
  for (std::size_t i = 0; i < kValues; ++i) {
    char buffer[64];
    texts.narrow.emplace_back(buffer, static_cast<std::size_t>(make(random, buffer)));
    texts.wide.emplace_back(texts.narrow.back().begin(), texts.narrow.back().end());
  }
  return texts;
}

void PrintRow(const char* name, double parse, double print, const char* beside) {
  std::printf("%-10s %8.1f %8.1f   %s\n", name, parse, print, beside);
}

// Both directions of the library, and the row with what `beside` tells of others.
template <ItemType kItem>
void Row(const char* name, const Texts& texts, const std::string& beside) {
  std::vector<XsdValue<kItem>> values;
  for (const std::wstring& text : texts.wide)
    values.push_back(CConversions::FromText<kItem>(text, CWhitespaceUtils::collapse));
  const double parse = NanosecondsEach(
      [&](std::size_t i) { Use(CConversions::FromText<kItem>(texts.wide[i], CWhitespaceUtils::collapse)); });
  std::wstring out;
  const double print = NanosecondsEach([&](std::size_t i) {
    out.clear();
    CConversions::AppendTo<kItem>(out, values[i]);
    Use(out);
  });
  PrintRow(name, parse, print, beside.c_str());
}

template <class Value>
std::string CharsRow(const Texts& texts) {
  std::vector<Value> values(kValues);
  const double parse = NanosecondsEach([&](std::size_t i) {
    const std::string& text = texts.narrow[i];
    std::from_chars(text.data(), text.data() + text.size(), values[i]);
    Use(values[i]);
  });
  const double print = NanosecondsEach([&](std::size_t i) {
    char buffer[64];
    std::to_chars(buffer, buffer + sizeof buffer, values[i]);
    Use(buffer);
  });
  char row[96];
  std::snprintf(row, sizeof row, "from_chars %.1f, to_chars %.1f", parse, print);
  return row;
}

std::string ScanRow(const Texts& texts, const wchar_t* format, int fields) {
  const double parse = NanosecondsEach([&](std::size_t i) {
    long field[6] = {};
    std::swscanf(texts.wide[i].c_str(), format, field, field + 1, field + 2, field + 3, field + 4, field + 5);
    Use(field);
  });
  char row[64];
  std::snprintf(row, sizeof row, "swscanf of %d numbers %.1f", fields, parse);
  return row;
}

}  // namespace

int main() {
  try {
    std::printf("%-10s %8s %8s   beside\n", "ns", "parse", "print");
    const auto print = [](char* buffer, const char* format, auto... values) {
      return std::snprintf(buffer, 64, format, values...);
    };
    const Texts ints = MakeTexts([&](auto& random, char* buffer) {
      return print(buffer, "%d", static_cast<int>(random() % 2000000) - 1000000);
    });
    Row<ItemType_int>("i4", ints, CharsRow<long>(ints) + ", " + ScanRow(ints, L"%ld", 1));
    const Texts longs =
        MakeTexts([&](auto& random, char* buffer) { return print(buffer, "%lld", static_cast<long long>(random())); });
    Row<ItemType_long>("i8", longs, CharsRow<long long>(longs));
    Row<ItemType_boolean>(
        "boolean", MakeTexts([&](auto& random, char* b) { return print(b, "%s", random() % 2 ? "true" : "false"); }),
        "");
    const Texts reals = MakeTexts([&](auto& random, char* buffer) {
      return print(buffer, "%.12g", static_cast<double>(random() % 1000000000000) / 1e6);
    });
    const double strtodTime =
        NanosecondsEach([&](std::size_t i) { Use(std::strtod(reals.narrow[i].c_str(), nullptr)); });
    Row<ItemType_double>("r8", reals, CharsRow<double>(reals) + ", strtod " + std::to_string(strtodTime).substr(0, 4));
    const Texts degrees = MakeTexts([&](auto& random, char* buffer) {
      return print(buffer, "%d.%06d", static_cast<int>(random() % 180), static_cast<int>(random() % 1000000));
    });
    Row<ItemType_decimal>("decimal", degrees, CharsRow<double>(degrees));
    const Texts times = MakeTexts([&](auto& random, char* buffer) {
      const auto pick = [&random](int most) { return static_cast<int>(random() % static_cast<unsigned>(most)); };
      return print(buffer, "2024-%02d-%02dT%02d:%02d:%02dZ", 1 + pick(12), 1 + pick(28), pick(24), pick(60), pick(60));
    });
    Row<ItemType_dateTime>("dateTime", times, ScanRow(times, L"%ld-%ld-%ldT%ld:%ld:%ldZ", 6));
    return 0;
  } catch (const CRkException& e) {
    std::fprintf(stderr, "bench: %s\n", ToUtf8(e.GetFullMessage()).c_str());
    return 1;
  }
}
