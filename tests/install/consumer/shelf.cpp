// Tells what the classes of shelf.xsd say about a price of 250.
#include "shelf.h"

#include <cstdio>

int main() {
  const auto shelf = my::shelf::NewShelf();
  try {
    shelf->FromXml(L"<shelf xmlns='urn:example:shelf'><price>250</price></shelf>");
    std::puts(shelf->ToJsonUtf8(/*formatted=*/false).c_str());
  } catch (const RkXmlLib16::CRkException& e) {
    std::puts(e.what());
  }
}
