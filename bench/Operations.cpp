#include "Operations.h"

#include <RkXmlLib16/RkXmlLib16.h>

#include <cstdlib>
#include <utility>

#include "Documents.h"
#include "Expat.h"
#include "gpx.h"
#include "order.h"

using namespace RkXmlLib16;

namespace Bench {

namespace {

template <class Root>
struct Held {
  std::string xml;
  CBinaryData xmlBytes, json, finf, finfTyped, gzip;
  CSerializationContext context, typed;
  CSmartPtr<Root> object;  // filled
  CSmartPtr<Root> target;
  CSmartPtr<CElement> element;  // filled, the same document
  CSmartPtr<CElement> targetElement;
  std::unique_ptr<CXmlDocument> document;
  CBinaryData out;
};

unsigned char* Bytes(const std::string& text) {
  return const_cast<unsigned char*>(reinterpret_cast<const unsigned char*>(text.data()));
}

// The C library joins small freed blocks only when a larger one is requested. Called where objects are dropped, so that
// the cost does not fall on the next operation.
void SettleHeap() {
  void* volatile larger = std::malloc(4096);
  std::free(larger);
}

void AddPaths(CObjectStream& stream, const Gpx::CGpxType&) {
  stream.AddPath<Gpx::CWptType>(L"/gpx/trk/trkseg/trkpt");
  stream.AddPath<Gpx::CWptType>(L"/gpx/wpt");
}

void AddPaths(CObjectStream& stream, const Order::COrderType&) {
  stream.AddPath<Order::CGoodsType>(L"/order/lines/goods");
  stream.AddPath<Order::CServiceType>(L"/order/lines/service");
}

// All objects of what makes the document long, one after the other.
template <class Root>
void ReadStream(const CBinaryData& document, const Held<Root>& held) {
  CMemorySource source(document);
  CObjectStream stream(source, held.context);
  AddPaths(stream, *held.object);
  while (stream.Next()) {
  }
}

template <class Root>
Subject MakeSubject(std::string&& name, std::string&& xml) {
  auto held = std::make_shared<Held<Root>>();
  Held<Root>& h = *held;
  h.xml = std::move(xml);
  h.xmlBytes.Append(Bytes(h.xml), h.xml.size());
  h.object = new Root;
  h.context.SetDefaultNamespaceURI(h.object->GetTargetNamespace());
  h.context.GetNamespaceAliases().Add(L"xsi", L"http://www.w3.org/2001/XMLSchema-instance");
  h.context.GetNamespaceAliases().Add(L"tp", L"urn:example:trackpoint");
  h.typed = h.context;
  h.typed.GetFIContext();
  h.object->FromXmlStream(Bytes(h.xml), h.xml.size(), h.context);
  h.element = new CElement;
  h.element->FromXmlStream(Bytes(h.xml), h.xml.size(), h.context);
  h.json = h.object->ToJsonStream(true, XmlEncoding_UTF8, EOLType_LF, h.context, CompressionType_None);
  h.finf = h.object->ToFastInfosetStream(FInfoDecl_None, h.context, CompressionType_None);
  h.typed.GetFIContext()->SetSuggestedValues();
  h.finfTyped = h.object->ToFastInfosetStream(FInfoDecl_None, h.typed, CompressionType_None);
  h.gzip = h.object->ToXmlStream(true, true, XmlEncoding_UTF8, EOLType_LF, h.context, CompressionType_GZip);

  const auto fresh = [&h] { h.target = new Root; };
  const auto drop = [&h] {
    h.target = nullptr;
    SettleHeap();
  };
  const auto clear = [&h] { h.out.Clear(); };
  const auto newDocument = [&h] { h.document = std::make_unique<CXmlDocument>(h.context); };
  const auto dropDocument = [&h] { h.document.reset(); };
  const auto load = [&h] { h.document->LoadXmlStream(Bytes(h.xml), h.xml.size()); };
  const auto read = [&h] { h.target->FromXmlStream(Bytes(h.xml), h.xml.size(), h.context); };

  Subject subject;
  subject.name = std::move(name);
  subject.bytes = h.xml.size();
  subject.elements = ParseWithBareExpat(h.xml);
  subject.jsonBytes = h.json.GetLength();
  subject.finfBytes = h.finf.GetLength();
  subject.finfTypedBytes = h.finfTyped.GetLength();
  subject.gzipBytes = h.gzip.GetLength();
  subject.held = held;
  auto& operations = subject.operations;
  operations.push_back({"bare expat", [] {}, [&h] { ParseWithBareExpat(h.xml); }});
  operations.push_back({"XML bytes to tree", newDocument, load, dropDocument});
  operations.push_back({"XML bytes to objects", fresh, read, drop});
  operations.push_back({"XML bytes to a stream of objects", [] {}, [&h] { ReadStream(h.xmlBytes, h); }});
  operations.push_back({"objects to XML bytes", clear, [&h] {
                          h.out = h.object->ToXmlStream(true, true, XmlEncoding_UTF8, EOLType_LF, h.context,
                                                        CompressionType_None);
                        }});
  operations.push_back(
      {"objects to JSON bytes", clear,
       [&h] { h.out = h.object->ToJsonStream(true, XmlEncoding_UTF8, EOLType_LF, h.context, CompressionType_None); }});
  operations.push_back({"objects to Fast Infoset", clear, [&h] {
                          h.out = h.object->ToFastInfosetStream(FInfoDecl_None, h.context, CompressionType_None);
                        }});
  operations.push_back({"objects to Fast Infoset, typed", clear, [&h] {
                          h.out = h.object->ToFastInfosetStream(FInfoDecl_None, h.typed, CompressionType_None);
                        }});
  operations.push_back({"objects to XML bytes, gzip", clear, [&h] {
                          h.out = h.object->ToXmlStream(true, true, XmlEncoding_UTF8, EOLType_LF, h.context,
                                                        CompressionType_GZip);
                        }});
  operations.push_back({"JSON bytes to objects", fresh, [&h] { h.target->FromJsonStream(h.json, h.context); }, drop});
  operations.push_back({"JSON bytes to a stream of objects", [] {}, [&h] { ReadStream(h.json, h); }});
  operations.push_back({"Fast Infoset to tree", newDocument,
                        [&h] { h.document->LoadXmlStream(h.finf.GetData(), h.finf.GetLength()); }, dropDocument});
  operations.push_back({"Fast Infoset to objects", fresh, [&h] { h.target->FromXmlStream(h.finf, h.context); }, drop});
  operations.push_back({"Fast Infoset to a stream of objects", [] {}, [&h] { ReadStream(h.finf, h); }});
  operations.push_back(
      {"Fast Infoset, typed, to objects", fresh, [&h] { h.target->FromXmlStream(h.finfTyped, h.context); }, drop});
  operations.push_back(
      {"XML bytes, gzip, to objects", fresh, [&h] { h.target->FromXmlStream(h.gzip, h.context); }, drop});
  operations.push_back({"XML bytes, gzip, to a stream of objects", [] {}, [&h] { ReadStream(h.gzip, h); }});
  operations.push_back({"XML bytes to CElement", [&h] { h.targetElement = new CElement; },
                        [&h] { h.targetElement->FromXmlStream(Bytes(h.xml), h.xml.size(), h.context); },
                        [&h] {
                          h.targetElement = nullptr;
                          SettleHeap();
                        }});
  operations.push_back({"CElement to XML bytes", clear, [&h] {
                          h.out = h.element->ToXmlStream(true, true, XmlEncoding_UTF8, EOLType_LF, h.context,
                                                         CompressionType_None);
                        }});
  operations.push_back({"destruction of the tree",
                        [=] {
                          newDocument();
                          load();
                        },
                        dropDocument});
  operations.push_back({"destruction of the objects",
                        [=] {
                          fresh();
                          read();
                        },
                        drop});
  return subject;
}

}  // namespace

std::vector<Subject> MakeSubjects(const std::vector<Size>& sizes) {
  std::vector<Subject> subjects;
  subjects.reserve(3 * sizes.size());
  for (const auto& [name, bytes] : sizes) subjects.push_back(MakeSubject<Gpx::CGpxType>("GPX " + name, MakeGpx(bytes)));
  for (const auto& [name, bytes] : sizes)
    subjects.push_back(MakeSubject<Order::COrderType>("order " + name, MakeOrder(bytes)));
  for (const auto& [name, bytes] : sizes)
    subjects.push_back(MakeSubject<Gpx::CGpxType>("prose " + name, MakeProse(bytes)));
  return subjects;
}

}  // namespace Bench
