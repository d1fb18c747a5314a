// Does not compile, with a message that names the way out.
#include "RkXmlLib16/RkXmlLib16.h"

void Append(const RkXmlLib16::CXmlElement& element) {
  auto text = element.GetText();
  text += L"more";
}
