#include "Encoding.h"

#include "Text.h"

namespace {

bool StartsWith(std::string_view text, std::string_view start) { return text.substr(0, start.size()) == start; }

// The XML declaration, or nothing.
std::string_view DeclarationOf(std::string_view text) {
  if (StartsWith(text, "\xEF\xBB\xBF")) text.remove_prefix(3);
  const std::size_t end = StartsWith(text, "<?xml") ? text.find("?>") : std::string_view::npos;
  return end == std::string_view::npos ? std::string_view() : text.substr(0, end + 2);
}

}  // namespace

std::string_view DeclaredEncoding(std::string_view text) {
  const std::string_view declaration = DeclarationOf(text);
  const std::size_t name = declaration.find("encoding");
  const std::size_t start = declaration.find_first_of("'\"", name);
  if (name == std::string_view::npos || start == std::string_view::npos) return {};
  return declaration.substr(start + 1, declaration.find(declaration[start], start + 1) - start - 1);
}

bool IsFastInfoset(std::string_view bytes) {
  using namespace std::string_view_literals;
  if (DeclaredEncoding(bytes) == "finf") return true;
  return StartsWith(bytes, "\xE0\x00\x00\x01"sv);
}

std::string EncodingOf(std::string_view bytes) {
  using namespace std::string_view_literals;
  if (StartsWith(bytes, "\xFF\xFE") || StartsWith(bytes, "<\0?"sv)) return "UTF-16, little-endian";
  if (StartsWith(bytes, "\xFE\xFF") || StartsWith(bytes, "\0<\0?"sv)) return "UTF-16, big-endian";
  const std::string_view declared = DeclaredEncoding(bytes);
  return declared.empty() ? "UTF-8" : ForTerminal(declared);
}
