// Uses the installed library as programs do: derives, catches, and calls what lies in each of its folders.
#include <RkXmlLib16/RkXmlLib16.h>

#include <cstdio>
#include <typeinfo>

using namespace RkXmlLib16;

namespace {

struct Counter : IEventSink {
  void OnEvent(CXmlObjectBase*, MsgType, void*) override { ++events; }
  int events = 0;
};

const char* Failure() {
  CElement text;
  text.FromXml(L"<note lang='de'>Gr\u00FC\u00DFe</note>");
  if (text.ToXml(/*includeDocumentHeader=*/false, /*formatted=*/false) != L"<note lang=\"de\">Gr\u00FC\u00DFe</note>")
    return "XML";
  CElement again;
  again.FromXmlStream(text.ToFastInfosetStream());
  if (again.ToJson() != text.ToJson()) return "Fast Infoset and JSON";

  Counter counter;
  CdecimalCol prices(L"price", L"", 0, -1, nullptr, -1, -1, nullptr, nullptr, nullptr, nullptr, -1, -1, -1,
                     CWhitespaceUtils::collapse, nullptr);
  prices.AddEventListener(&counter);
  prices.Add(CDecimal(L"1.10") + CDecimal(L"2.2"));
  if (counter.events == 0 || prices.Item(0).ToString() != L"3.3") return "collections and values";

  // Type information comes from the library.
  if (typeid(RkXmlLib16Data::CElementInfoSeqClsMnd) == typeid(RkXmlLib16Data::CElementInfoAllPrimOpt)) return "typeid";
  try {
    CDateTime(L"2026-02-30");
  } catch (const CRkInvalidValueException&) {
    return nullptr;
  }
  return "exceptions";
}

}  // namespace

int main() {
  try {
    const char* failure = Failure();
    std::puts(failure == nullptr ? "installed and well" : failure);
    return failure == nullptr ? 0 : 1;
  } catch (const CRkException& e) {
    std::printf("%ls\n", e.GetMessage().c_str());
    return 1;
  }
}
