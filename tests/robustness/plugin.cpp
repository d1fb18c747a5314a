#include <cstdlib>

#include "RkXmlLib16/RkXmlLib16.h"

extern "C" __attribute__((visibility("default"))) void RunPlugin() {
  using namespace RkXmlLib16;
  CElement element;
  element.FromXml("<n:a xmlns:n='urn:n'/>");
  if (element.ToJson().empty() || element.ToFastInfosetStream().GetLength() == 0) std::abort();
}
