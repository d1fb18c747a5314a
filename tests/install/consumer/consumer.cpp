#include <RkXmlLib16/RkXmlLib16.h>

#include <cstdio>

int main() {
  try {
    RkXmlLib16::CElement note;
    note.FromXml(L"<note lang='de'>Gr\u00FC\u00DFe</note>");
    const std::wstring text = note.ToXml(/*includeDocumentHeader=*/false, /*formatted=*/false);
    if (text != L"<note lang=\"de\">Gr\u00FC\u00DFe</note>") return 1;
    note.FromXml("<note>");
  } catch (const RkXmlLib16::CRkException&) {
    std::puts("installed and well");
    return 0;
  }
  return 2;
}
