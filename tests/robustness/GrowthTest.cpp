#include <cstdlib>
#include <cwchar>
#include <functional>
#include <memory>
#include <new>
#include <string>

#include "Expect.h"
#include "RkXmlLib16/RkXmlLib16.h"
#include "RkXmlLib16/base/internal/KeyedHash.h"
#include "fixtures/Records.h"

using namespace RkXmlTest;

// The work of this test program: what is compared, copied, measured, hashed and allocated, in pieces of 16 bytes. The
// linker puts these functions before those of the C library that the library's objects call.
namespace {

std::size_t g_work = 0;

void Count(std::size_t bytes) { g_work += bytes / 16 + 1; }

}  // namespace

extern "C" {
int __real_memcmp(const void* a, const void* b, std::size_t n);
int __real_wmemcmp(const wchar_t* a, const wchar_t* b, std::size_t n);
int __real_wcscmp(const wchar_t* a, const wchar_t* b);
std::size_t __real_wcslen(const wchar_t* text);
void* __real_memcpy(void* to, const void* from, std::size_t n);
void* __real_memmove(void* to, const void* from, std::size_t n);
wchar_t* __real_wmemcpy(wchar_t* to, const wchar_t* from, std::size_t n);
std::uint64_t __real__ZN10RkXmlLib1610CKeyedHash2OfESt17basic_string_viewIwSt11char_traitsIwEE(std::wstring_view text);

int __wrap_memcmp(const void* a, const void* b, std::size_t n) { return Count(n), __real_memcmp(a, b, n); }
int __wrap_wmemcmp(const wchar_t* a, const wchar_t* b, std::size_t n) { return Count(4 * n), __real_wmemcmp(a, b, n); }
int __wrap_wcscmp(const wchar_t* a, const wchar_t* b) { return Count(4 * __real_wcslen(a)), __real_wcscmp(a, b); }
std::size_t __wrap_wcslen(const wchar_t* text) {
  const std::size_t length = __real_wcslen(text);
  return Count(4 * length), length;
}
void* __wrap_memcpy(void* to, const void* from, std::size_t n) { return Count(n), __real_memcpy(to, from, n); }
void* __wrap_memmove(void* to, const void* from, std::size_t n) { return Count(n), __real_memmove(to, from, n); }
wchar_t* __wrap_wmemcpy(wchar_t* to, const wchar_t* from, std::size_t n) {
  return Count(4 * n), __real_wmemcpy(to, from, n);
}
std::uint64_t __wrap__ZN10RkXmlLib1610CKeyedHash2OfESt17basic_string_viewIwSt11char_traitsIwEE(std::wstring_view text) {
  return Count(4 * text.size()), __real__ZN10RkXmlLib1610CKeyedHash2OfESt17basic_string_viewIwSt11char_traitsIwEE(text);
}
}

[[gnu::noinline]] void* operator new(std::size_t size) {
  Count(size);
  void* const memory = std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace {

// An operation that takes a size: the work of what `prepare` gives back.
using Prepare = std::function<std::function<void()>(int size)>;

// Four times the size takes about four times the work.
void ExpectLinear(const char* name, const Prepare& prepare, int size = 1000, std::size_t most = 6) {
  const auto workOf = [&](int count) {
    const std::function<void()> operation = prepare(count);
    const std::size_t before = g_work;
    operation();
    return g_work - before;
  };
  const std::size_t some = workOf(size);
  const std::size_t more = workOf(4 * size);
  EXPECT_LT(more, most * some) << name << ": " << some << ", then " << more;
}

std::string Octets(std::initializer_list<int> octets) { return std::string(octets.begin(), octets.end()); }

// A literal of `length` octets, 321 or more, that begins on the second bit.
std::string Literal(std::size_t length) {
  const auto stored = static_cast<std::uint32_t>(length - 321);
  std::string octets(1, '\x60');
  for (int shift = 24; shift >= 0; shift -= 8) octets += static_cast<char>(stored >> shift);
  return octets + std::string(length, 'n');
}

std::string FastInfoset(const std::string& rest) { return Octets({0xE0, 0x00, 0x00, 0x01, 0x00}) + rest; }

std::string Times(int count, const std::string& text) {
  std::string all;
  for (int i = 0; i < count; ++i) all += text;
  return all;
}

const CSerializationContext& Context() {
  static CSerializationContext context;
  context.GetLimits().SetMaxExpansionRatio(0);
  context.GetJsonContext()->SetStrictOutput(true);
  return context;
}

std::shared_ptr<CElement> Read(const std::string& document) {
  auto element = std::make_shared<CElement>();
  std::string bytes = document;
  element->FromXmlStream(reinterpret_cast<unsigned char*>(bytes.data()), bytes.size(), Context());
  return element;
}

std::function<void()> ReadingOf(const std::string& document) {
  return [document] { Read(document); };
}

using WriteForm = void (*)(const CElement&);
const struct {
  const char* name;
  WriteForm write;
} kForms[] = {
    {"XML text", [](const CElement& e) { e.ToXml(false, false, EOLType_LF, Context()); }},
    {"JSON", [](const CElement& e) { e.ToJson(false, EOLType_LF, Context()); }},
    {"Fast Infoset", [](const CElement& e) { e.ToFastInfosetStream(FInfoDecl_None, Context()); }},
};

// JSON needs the prefixes of the settings, and so cannot write every document.
template <class Make>
void ExpectLinearWriting(const char* name, bool isForJson, Make make) {
  for (const auto& form : kForms) {
    SCOPED_TRACE(form.name);
    if (form.write == kForms[1].write && !isForJson) continue;
    ExpectLinear(name, [&](int n) -> std::function<void()> {
      return [element = Read(make(n)), &form] { form.write(*element); };
    });
  }
}

// The length of a namespace or prefix counts once, however many names and declarations are in it.
TEST(Growth, LongNamespacesAndPrefixes) {
  const Rows<const char*, std::string (*)(int)> documents = {
      {"elements of one namespace",
       [](int n) {
         const std::string uri = Times(n, "urn:a:long:name ");
         return "<r xmlns='" + uri + "'>" + Times(n, "<a/>") + "</r>";
       }},
      {"of two that end differently, with values that need their prefixes",
       [](int n) {
         const std::string uri = Times(n, "urn:a:long:name ");
         return "<p:r xmlns:p='" + uri + "1' xmlns:q='" + uri + "2' v='p:x q:x'>" + Times(n, "<p:a/><q:a/>") + "</p:r>";
       }},
      {"among attributes of many names and declarations of other namespaces",
       [](int n) {
         std::string elements;
         for (int i = 0; i < n; ++i)
           elements += "<p:a x" + std::to_string(100000 + i) + "=''/><b xmlns:q='urn:" + std::to_string(i % 7) + "'/>";
         return "<p:r xmlns:p='" + Times(n, "urn:a:long:name ") + "' v='p:x'>" + elements + "</p:r>";
       }},
      {"attributes, by index",
       [](int n) {
         // r with p = ..., children r with an attribute of that namespace
         const std::string first = "\x78\xCF" + Octets({0x00, 'p'}) + Literal(static_cast<std::size_t>(n) * 10) +
                                   Octets({0xF0, 0x3D, 0x81, 0x00, 'r', 0x7B, 0x81, 0x81, 0x00, 'k', 0x40, 'p', 0xF0});
         return FastInfoset(first + Times(n, Octets({0x40, 0x00, 0x80, 0xFF})) + "\xFF");
       }},
  };
  for (const auto& [name, make] : documents) {
    ExpectLinear(name, [make = make](int n) { return ReadingOf(make(n)); });
    ExpectLinearWriting(name, true, make);
  }
  // Without a declaration around them, each element declares the namespace: as an index in a Fast Infoset.
  ExpectLinear("Fast Infoset that declares for each element", [](int n) -> std::function<void()> {
    const std::string uri = Times(n, "urn:a:long:name ");
    return [element = Read("<r xmlns:p='" + uri + "'>" + Times(n, "<p:a><p:b/></p:a>") + "</r>")] {
      kForms[2].write(*element);
    };
  });
  for (const bool isPrefix : {false, true}) {
    ExpectLinear("declared again by index", [isPrefix](int n) {
      const std::string text = Literal(static_cast<std::size_t>(n) * 10);
      const std::string declaration =
          isPrefix ? "\xCF" + text + Octets({0x00, 'u'}) : "\xCF" + Octets({0x00, 'u'}) + text;
      return ReadingOf(FastInfoset("\x38" + declaration + Octets({0xF0, 0x3C, 0x00, 'r'}) +
                                   Times(n, Octets({0x38, 0xCF, 0x81, 0x81, 0xF0, 0x00, 0xF0})) + "\xFF"));
    });
  }
}

TEST(Growth, ManyNamespaces) {
  const auto make = [](int n, bool isNested) {
    std::string declarations;
    std::string children;
    for (int i = 0; i < n; ++i) {
      const std::string number = std::to_string(10000 + i);
      (isNested ? children : declarations) += (isNested ? "<p" : " xmlns:p") + number +
                                              (isNested ? ":c xmlns:p" + number : "") +
                                              "='urn:a:namespace:of:its:own:" + number + "'" + (isNested ? ">" : "");
      if (!isNested) children += "<p" + number + ":c/>";
    }
    if (isNested)
      for (int i = n; i-- > 0;) children += "</p" + std::to_string(10000 + i) + ":c>";
    return "<r" + declarations + ">" + children + "</r>";
  };
  for (const bool isNested : {false, true})
    ExpectLinearWriting("namespaces", false, [&](int n) { return make(n, isNested); });
}

// Values that need another prefix of a namespace, so that names take it too, each inside the others.
TEST(Growth, ReplacedPrefixes) {
  const auto make = [](int n, bool isOnePrefix) {
    std::string root = "<r", elements, values;
    for (int i = 10000; i < 10000 + n; ++i) {
      const std::string number = std::to_string(i);
      const std::string other = isOnePrefix ? "q" : "q" + number;
      root += " xmlns:p" + number + "='urn:" + number + "'";
      values += "p" + number + ":x ";
      elements += "<e xmlns:" + other + "='urn:" + number + "' v='" + other + ":x'>";
    }
    return root + " v='" + values + "'>" + elements + Times(n, "</e>") + "</r>";
  };
  for (const bool isOnePrefix : {false, true})
    ExpectLinearWriting(isOnePrefix ? "one" : "many", false, [&](int n) { return make(n, isOnePrefix); });
}

TEST(Growth, FrontOfCollections) {
  ExpectLinear("values", [](int n) -> std::function<void()> {
    return [n] {
      Ci8Col values(L"v", L"", 0, -1, nullptr, -1, -1, nullptr, nullptr, nullptr, nullptr, -1, -1, -1,
                    CWhitespaceUtils::collapse, nullptr);
      for (int i = 0; i < n; ++i) values.AddAt(0, i);
      for (int i = 0; i < n; ++i) {
        values.Remove(0);
        values.AddAt(0, i);
      }
      EXPECT_EQ(n - 1, values.Item(0));
      EXPECT_EQ(0, values.Item(n - 1));
      for (int left = n; left > 0; --left) {
        values.Remove(0);
        values.AddAt(0, left);
        values.Remove(0);
      }
      EXPECT_EQ(0, values.GetCount());
    };
  });
}

using GrowthTest = TableTest;

// Elements inside each other, each in a namespace and with a prefix of its own.
TEST_F(GrowthTest, PathsOfErrors) {
  std::wstring path;
  const Prepare tell = [&path](int depth) -> std::function<void()> {
    std::wstring xml;
    for (int i = 0; i < depth; ++i) xml += FormatString(L"<p%d:e xmlns:p%d='urn:%d'>", i, i, 1000 + i);
    for (int i = depth; i-- > 0;) xml += FormatString(L"</p%d:e>", i);
    const auto document = std::make_shared<CXmlDocument>();
    document->LoadXml(xml.c_str());
    const CXmlElement* innermost = document->GetDocumentElement();
    while (innermost->GetFirstElement() != nullptr) innermost = innermost->GetFirstElement();
    return [document, innermost, &path] { path = innermost->GetXPath(); };
  };
  tell(3)();
  EXPECT_TEXT(L"/p0:e/p1:e/p2:e", path);
  ExpectLinear("paths", tell, 400);
}

// Each with its path, place and hint.
TEST_F(GrowthTest, ManyErrorsInOneElement) {
  const Table table(ClassInfo(kSequence, L"r"), {Prim(L"v", 0)});
  const Rows<const char*, std::string (*)(int)> documents = {
      {"elements", [](int n) { return "<r><v>1</v>" + Times(n, "<u/>") + "</r>"; }},
      {"elements of many names",
       [](int n) {
         std::string elements;
         for (int i = 0; i < n; ++i) elements += "<u" + std::to_string(10000 + i) + "/>";
         return "<r><v>1</v>" + elements + Times(n, "<v/>") + "</r>";
       }},
      {"attributes",
       [](int n) {
         std::string attributes;
         for (int i = 0; i < n; ++i) attributes += " u" + std::to_string(10000 + i) + "=''";
         return "<r" + attributes + "><v>1</v></r>";
       }},
  };
  for (const auto& [name, make] : documents) {
    ExpectLinear(name, [&, make = make](int n) -> std::function<void()> {
      return [&table, xml = make(n), n] {
        CErrorCollector collector;
        CSerializationContext context;
        context.SetErrorHandler(&collector);
        CTableClass::Create(table)->FromXml(xml.c_str(), context);
        EXPECT_LE(static_cast<std::size_t>(n), collector.GetErrorCount());
      };
    });
  }
}

TEST_F(GrowthTest, FailuresInsideEachOther) {
  const Table table(ClassInfo(kSequence, L"e"), {Cls(L"e", 0), Prim(L"v", 1)});
  Classes() = {&table};
  std::wstring thrown;
  const Prepare write = [&](int depth) -> std::function<void()> {  // the innermost lacks v
    const auto outermost = CTableClass::Create(table);
    outermost->SetElementName(L"e");
    auto* innermost = outermost.Get();
    for (int i = 1; i < depth; ++i) {
      const auto child = CTableClass::Create(table);
      child->SetElementName(L"e");
      (*innermost)[0].SetXmlObject(child);
      innermost = child;
    }
    return [outermost, &thrown] { thrown = Thrown([&] { Write(*outermost); }); };
  };
  const std::wstring level = L"Failed to convert the element [e] to XML\n";
  write(3)();
  EXPECT_TEXT(
      L"CRkValidationException: " + level + level + level + L"The Property [v] is mandatory, it may not be NULL",
      thrown);
  ExpectLinear("failures", write, 100, 10);  // each level holds the path to the innermost
}

}  // namespace
