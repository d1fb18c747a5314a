#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <new>

#include "Expect.h"
#include "RkXmlLib16/RkXmlLib16.h"
#include "RkXmlLib16/base/Format.h"
#include "gpx.h"
#include "order.h"

using namespace RkXmlTest;

// The allocation functions of this test program. They count, and fail when they are told to.
namespace {

long g_allocationsLeft = -1;  // that still succeed; negative: all do
long g_blocks = 0;            // in use

bool MayAllocate() { return g_allocationsLeft < 0 || g_allocationsLeft-- != 0; }

}  // namespace

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
// malloc belongs to the sanitizer, and so do leaks.
void* operator new(std::size_t size) {
  void* const memory = MayAllocate() ? std::malloc(size == 0 ? 1 : size) : nullptr;
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
void* operator new[](std::size_t size) { return operator new(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }
#else
// Also for the parser, the compressor and the pattern engine.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void __libc_free(void* memory);

static void* Count(void* memory) {
  if (memory == nullptr) errno = ENOMEM;
  g_blocks += memory != nullptr;
  return memory;
}
void* malloc(std::size_t size) { return Count(MayAllocate() ? __libc_malloc(size) : nullptr); }
void* calloc(std::size_t count, std::size_t size) {
  return Count(MayAllocate() ? __libc_calloc(count, size) : nullptr);
}
void* realloc(void* memory, std::size_t size) {
  if (memory == nullptr) return malloc(size);
  return MayAllocate() ? __libc_realloc(memory, size) : nullptr;
}
void free(void* memory) {
  g_blocks -= memory != nullptr;
  __libc_free(memory);
}
}
#endif

namespace {

using Work = std::function<std::wstring()>;

struct Operation {
  const char* name;
  Work work;  // the result is the same each time
};

// The n-th allocation of `work` fails, n = 1, 2, 3, ..., until it needs no more: it ends as it should or with bad_alloc
// or CRkException, leaves nothing behind, and works as before once there is memory again. What the library keeps for
// later, like names used a short while ago, is the same whenever the work has been done; only what is made once, like
// the memory of the matcher that takes over where patterns cannot be compiled, may come late.
void ExhaustMemory(const Operation& operation) {
  const std::wstring expected = operation.work();
  operation.work();
  bool isDone = false;
  const auto fail = [&](long allowed) {
    g_allocationsLeft = allowed;
    try {
      operation.work();
      isDone = g_allocationsLeft > 0;
    } catch (const std::bad_alloc&) {
    } catch (const CRkException&) {
    }
    g_allocationsLeft = -1;
    EXPECT_TEXT(expected, operation.work()) << operation.name << " after allocation " << allowed << " failed";
    return g_blocks;
  };
  long blocks = g_blocks;
  for (long allowed = 0; !isDone && !testing::Test::HasFailure(); ++allowed) {
    if (fail(allowed) != blocks) {
      blocks = g_blocks;
      EXPECT_EQ(blocks, fail(allowed)) << operation.name << " leaks when allocation " << allowed << " fails";
    }
  }
}

const CSerializationContext& Context() {
  static const CSerializationContext context = [] {
    CSerializationContext c;
    c.GetNamespaceAliases().Add(L"a", L"urn:example:audit");
    c.GetNamespaceAliases().Add(L"o", L"urn:example:order");
    c.GetNamespaceAliases().Add(L"x", L"urn:x");
    c.GetNamespaceAliases().Add(L"gpx", L"http://www.topografix.com/GPX/1/1");
    c.GetNamespaceAliases().Add(L"xsi", CXmlWriter::XSI_NAMESPACE.c_str());
    c.GetJsonContext()->SetStrictOutput(true);
    return c;
  }();
  return context;
}

template <class Object>
std::wstring XmlOf(const Object& object) {
  return object.ToXml(true, true, EOLType_LF, Context());
}

template <class Object>
std::wstring XmlOf(void (CXmlObjectBase::*read)(const CBinaryData&, const CSerializationContext&),
                   const CBinaryData& bytes) {
  Object object;
  (static_cast<CXmlObjectBase&>(object).*read)(bytes, Context());
  return XmlOf(object);
}

constexpr wchar_t kTrack[] =
    L"<gpx xmlns='http://www.topografix.com/GPX/1/1' version='1.1' creator='x'><wpt lat='46.5' lon='7.25'>"
    L"<time>2024-05-01T06:00:00Z</time></wpt><trk><extensions><x xmlns='urn:x'>1</x></extensions>"
    L"<trkseg><trkpt lat='1' lon='2'/><trkpt lat='2' lon='3'/></trkseg></trk></gpx>";

// Of a track, and the start tags around them as they are written again.
std::wstring PointsOf(const CBinaryData& document) {
  std::wstring points;
  CMemorySource source(document);
  CObjectStream objects(source, Context());
  objects.AddPath<Gpx::CWptType>(L"/gpx/trk/trkseg/trkpt");
  while (objects.Next()) points += XmlOf(objects.Get<Gpx::CWptType>());
  CMemorySource again(document);
  CDocumentStream events(again, Context());
  events.AddPath(L"/gpx/*/extensions");
  events.SetReportsOpen(true);
  std::size_t written = 0;
  CXmlDocumentWriter copy([&written](const unsigned char*, std::size_t count) { return (written += count) != 0; });
  for (auto event = events.Next(); event != CDocumentStream::Event::Done; event = events.Next()) {
    if (event == CDocumentStream::Event::Start) copy.WriteStartElement(*events.GetElement());
    if (event == CDocumentStream::Event::End) copy.WriteEndElement();
    if (events.GetElement() != nullptr) points += events.GetElement()->GetXPath();
  }
  copy.End();
  return points + std::to_wstring(written);
}

std::vector<Operation> Operations() {
  static Order::COrderType order;
  order.FromXmlFile(L"" RKXML_EXAMPLE_DATA "/order.xml", Context());
  static const CBinaryData xml =
      order.ToXmlStream(true, true, XmlEncoding_UTF8, EOLType_LF, Context(), CompressionType_GZip);
  static const CBinaryData json = order.ToJsonStream(true, XmlEncoding_UTF8, EOLType_LF, Context());
  static const CBinaryData fastInfoset = order.ToFastInfosetStream(FInfoDecl_None, Context());
  static Gpx::CGpxType gpx;
  gpx.FromXml(kTrack, Context());
  static const CBinaryData trackXml =
      gpx.ToXmlStream(true, true, XmlEncoding_UTF8, EOLType_LF, Context(), CompressionType_GZip);
  static const CBinaryData trackJson = gpx.ToJsonStream(true, XmlEncoding_UTF8, EOLType_LF, Context());
  static const CBinaryData trackFastInfoset = gpx.ToFastInfosetStream(FInfoDecl_None, Context());
  using Read = void (CXmlObjectBase::*)(const CBinaryData&, const CSerializationContext&);
  static const Read fromBytes = &CXmlObjectBase::FromXmlStream;
  static const Read fromJson = &CXmlObjectBase::FromJsonStream;
  return {
      {"XML text into objects", [] { return XmlOf<Order::COrderType>(fromBytes, xml); }},
      {"Fast Infoset into objects", [] { return XmlOf<Order::COrderType>(fromBytes, fastInfoset); }},
      {"JSON into objects", [] { return XmlOf<Order::COrderType>(fromJson, json); }},
      {"XML text into elements", [] { return XmlOf<CElement>(fromBytes, xml); }},
      {"XML text into a stream of objects", [] { return PointsOf(trackXml); }},
      {"Fast Infoset into a stream of objects", [] { return PointsOf(trackFastInfoset); }},
      {"JSON into a stream of objects", [] { return PointsOf(trackJson); }},
      {"wide text into objects",
       [] {
         Gpx::CGpxType track;
         track.FromXml(kTrack, Context());
         return XmlOf(track);
       }},
      {"the records of a class and the names of a schema, made anew",
       [] {
         using namespace RkXmlLib16Data;
         const ClassModel model(static_cast<const ClassData&>(Gpx::CWptType::kModel));
         model.Require();
         const SchemaModel schema = {Gpx::kSchema.classes, Gpx::kSchema.elements, Gpx::kSchema.attributes,
                                     Gpx::kSchema.simpleTypes};
         CXmlDocument document(Context());
         document.LoadXml(kTrack);
         return XmlOf(*ReadDocument(schema, document, Context()));
       }},
      {"a DTD",
       [] {
         CElement element;
         element.FromXml("<!DOCTYPE a [<!ENTITY e 'x'><!ATTLIST a b CDATA 'c'>]><a>&e;&e;</a>", Context());
         return XmlOf(element);
       }},
      {"JSON out", [] { return order.ToJson(true, EOLType_LF, Context()); }},
      {"Fast Infoset out, compressed",
       [] { return order.ToFastInfosetStream(FInfoDecl_None, Context(), CompressionType_ZLib).GetAsHexString(); }},
      {"files",
       [] {
         for (const bool direct : {false, true}) {
           AsyncToXmlFile(direct);
           order.ToXmlFile(L"/dev/null", true, true, XmlEncoding_UTF16, EOLType_CRLF, Context());
           order.ToJsonFile(L"/dev/null", true, XmlEncoding_UTF8, EOLType_LF, Context());
         }
         order.ToFastInfosetFile(L"/dev/null", FInfoDecl_None, Context());
         Order::COrderType again;
         again.FromXmlFile(L"" RKXML_EXAMPLE_DATA "/order.xml", Context());
         return XmlOf(again);
       }},
      {"documents in pieces out",
       [] {
         std::size_t length = 0;
         const auto take = [&length](const unsigned char*, std::size_t count) { return (length += count) != 0; };
         const auto write = [](CDocumentWriter& writer) {
           writer.WriteStartElement(order);
           writer.BeginCollection();
           writer.WriteObject(*order.GetLines());
           writer.WriteTextElement(L"note", order.GetNamespace(), std::wstring(70000, L'x'));
           writer.WriteEndElement();
           writer.End();
         };
         CXmlDocumentWriter xmlWriter(take, CompressionType_GZip, Context());
         CJsonDocumentWriter jsonWriter(take, CompressionType_None, Context());
         CFastInfosetDocumentWriter finfWriter(take, CompressionType_ZLib, Context());
         for (CDocumentWriter* const writer :
              std::initializer_list<CDocumentWriter*>{&xmlWriter, &jsonWriter, &finfWriter})
           write(*writer);
         CXmlDocumentWriter fileWriter("/dev/null", CompressionType_None, Context());
         write(fileWriter);
         return std::to_wstring(length);
       }},
      {"what is wrong with a document",
       [] {
         return Thrown([] {
           Order::COrderType bad;
           bad.FromXml(L"<order xmlns='urn:example:order' id='RK-1600' currency='CHF'><customer/></order>", Context());
         });
       }},
      {"what cannot be written", [] { return Thrown([] { Order::COrderType().ToXml(); }); }},
      {"values",
       [] {
         CDecimal third(L"1e-20");
         third += CDecimal(L"10") / CDecimal(L"3");
         CDateTime date(L"2024-02-29T23:59:59.123456789+14:00");
         date += CDateTimeSpan(1, 2, 3, 4, 5, 6);
         const CBigInteger root = CBigInteger(L"123456789012345678901234567890").SquareRoot();
         CBinaryData bytes;
         bytes.SetAsBase64(L"AAECAwQF");
         return third.ToString() + date.ToString() + root.ToString() + bytes.GetAsHexString() +
                CConversions::r8ToString(CConversions::r8FromString(L"0x1p3", CWhitespaceUtils::none)) +
                FormatString(L"%f %ls", 0.5, L"text");
       }},
      {"patterns",
       [] {
         return Thrown([] { TestRegEx("(", L"x"); }) +
                (TestRegEx("(a|aa)+", std::wstring(40, L'a') + L'b') ? L"1" : L"0");
       }},
      {"text that becomes bytes",
       [] {
         CTextStream stream(XmlEncoding_UTF8);
         for (int i = 0; i < 3000; ++i) stream.Append(L"a\u00E9\u20AC ");
         CBinaryData bytes = stream.GetEncodedStream();
         bytes.Append(bytes);
         return CEncoder::Utf8ToUnicode(bytes.GetData(), static_cast<int>(bytes.GetLength()));
       }},
  };
}

}  // namespace

TEST(Exhaustion, OfMemoryIsSurvivedByEveryOperation) {
  // What is made once, such as the records of the classes, is made before.
  for (const Operation& operation : Operations()) operation.work();
  for (const Operation& operation : Operations()) ExhaustMemory(operation);
  AsyncToXmlFile(false);
}

TEST(Exhaustion, CompressionLeavesItsInputAlone) {
  const CBinaryData original(std::wstring(500, L'x').c_str());
  for (long allowed = 0;; ++allowed) {
    CBinaryData data = original;
    g_allocationsLeft = allowed;
    try {
      CRkZip::CompressData(data, CompressionType_GZip);
      g_allocationsLeft = -1;
      break;
    } catch (const std::bad_alloc&) {
      g_allocationsLeft = -1;
      EXPECT_EQ(original, data);
    }
  }
}

TEST(Exhaustion, OfTheDiskAndBrokenPipesAreTold) {
  Gpx::CGpxType track;
  track.FromXml(kTrack);
  int pipe[2];
  ASSERT_EQ(0, ::pipe(pipe));
  ::close(pipe[0]);
  const auto handler = std::signal(SIGPIPE, SIG_IGN);
  const std::wstring closedPipe = L"/dev/fd/" + std::to_wstring(pipe[1]);
  for (const std::wstring& file : {std::wstring(L"/dev/full"), closedPipe}) {
    if (::access(std::string(file.begin(), file.end()).c_str(), W_OK) != 0) continue;
    const std::wstring message = L"Failed to write data to the file [" + file + L"].";
    for (const bool direct : {false, true}) {
      AsyncToXmlFile(direct);
      EXPECT_THROWS(CRkException, message, track.ToXmlFile(file.c_str()));
      EXPECT_THROWS(CRkException, message,
                    track.ToJsonFile(file.c_str(), true, XmlEncoding_UTF8, EOLType_LF, Context()));
    }
    AsyncToXmlFile(false);
    EXPECT_THROWS(CRkException, message, track.ToFastInfosetFile(file.c_str()));
  }
  std::signal(SIGPIPE, handler);
  ::close(pipe[1]);
}

TEST(Exhaustion, OfAFileThatShrinksIsTold) {
  // The kernel gives its own files a size that they do not have.
  const char* const name = "/sys/kernel/mm/transparent_hugepage/enabled";
  if (::access(name, R_OK) != 0) GTEST_SKIP() << "no such file here";
  CElement element;
  const std::string text = name;
  const std::wstring wide(text.begin(), text.end());
  EXPECT_THROWS(CRkException, L"Failed to read the contents of the file [" + wide + L"] Error [0]",
                element.FromXmlFile(wide.c_str()));
}
