#include "Text.h"

using namespace RkXmlLib16;

std::string ForTerminal(std::string_view text) {
  std::string out(text);
  for (std::size_t i = 0; i < out.size(); ++i) {
    const auto byte = static_cast<unsigned char>(out[i]);
    if (byte < 0x20 || byte == 0x7F) out[i] = '?';
    // U+0080 to U+009F are controls as well.
    if (byte == 0xC2 && i + 1 < out.size() && static_cast<unsigned char>(out[i + 1]) < 0xA0) {
      out.replace(i, 2, "?");
    }
  }
  return out;
}

std::string ForTerminal(const std::wstring& text) { return ForTerminal(ToUtf8(text)); }

std::string Reason(const CRkException& e) { return ForTerminal(e.GetReport()); }

std::string Grouped(unsigned long long number) {
  std::string out = std::to_string(number);
  for (std::size_t at = out.size(); at > 3;) out.insert(at -= 3, ",");
  return out;
}
