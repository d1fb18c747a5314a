#include "RkXmlLib16/xml/internal/Markup.h"

#include <expat.h>

#include <climits>
#include <memory>
#include <new>
#include <string>
#include <type_traits>

#include "RkXmlLib16/io/Encoder.h"
#include "RkXmlLib16/types/BinaryData.h"

namespace RkXmlLib16 {

namespace {

bool IsWellFormed(const std::wstring& document) {
  const CBinaryData bytes = CEncoder::UnicodeToUtf8Binary(document);
  if (bytes.GetLength() > INT_MAX) return false;
  const std::unique_ptr<std::remove_pointer_t<XML_Parser>, decltype(&XML_ParserFree)> parser(XML_ParserCreate(nullptr),
                                                                                             &XML_ParserFree);
  if (parser == nullptr) throw std::bad_alloc();
  const auto* const text = reinterpret_cast<const char*>(bytes.GetData());
  if (XML_Parse(parser.get(), text, static_cast<int>(bytes.GetLength()), 1) == XML_STATUS_OK) return true;
  if (XML_GetErrorCode(parser.get()) == XML_ERROR_NO_MEMORY) throw std::bad_alloc();
  return false;
}

}  // namespace

bool IsWellFormedProlog(std::wstring_view text) { return IsWellFormed(std::wstring(text) + L"<a/>"); }

bool IsWellFormedContent(std::wstring_view text) { return IsWellFormed(L"<a>" + std::wstring(text) + L"</a>"); }

}  // namespace RkXmlLib16
