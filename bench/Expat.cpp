#include "Expat.h"

#include <expat.h>

#include <cstdlib>

namespace Bench {

namespace {

struct Counts {
  std::size_t elements = 0;
  std::size_t characters = 0;
};

void XMLCALL OnStart(void* user, const XML_Char*, const XML_Char**) { ++static_cast<Counts*>(user)->elements; }
void XMLCALL OnEnd(void*, const XML_Char*) {}
void XMLCALL OnText(void* user, const XML_Char*, int length) {
  static_cast<Counts*>(user)->characters += static_cast<std::size_t>(length);
}

}  // namespace

std::size_t ParseWithBareExpat(const std::string& xml) {
  const XML_Parser parser = XML_ParserCreateNS(nullptr, '|');
  Counts counts;
  XML_SetUserData(parser, &counts);
  XML_SetElementHandler(parser, OnStart, OnEnd);
  XML_SetCharacterDataHandler(parser, OnText);
  if (XML_Parse(parser, xml.data(), static_cast<int>(xml.size()), 1) != XML_STATUS_OK) std::abort();
  XML_ParserFree(parser);
  return counts.elements;
}

}  // namespace Bench
