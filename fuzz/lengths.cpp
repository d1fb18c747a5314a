// Bytes as elements, attributes and values in namespaces and with prefixes of extreme length: reading and writing take
// work in proportion to the bytes that go in and come out.
#include <cstdlib>
#include <cwchar>
#include <new>

#include "Check.h"

using namespace Fuzz;

namespace {

std::size_t g_work = 0;  // characters compared and bytes allocated

}  // namespace

// These stand before those that the library would call.
extern "C" int wmemcmp(const wchar_t* a, const wchar_t* b, std::size_t length) noexcept {
  std::size_t i = 0;
  while (i < length && a[i] == b[i]) ++i;
  g_work += i + 1;
  return i == length ? 0 : a[i] < b[i] ? -1 : 1;
}

void* operator new(std::size_t size) {
  g_work += size;
  if (void* const memory = std::malloc(size == 0 ? 1 : size)) return memory;
  throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return std::malloc(size == 0 ? 1 : size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace {

constexpr std::size_t kWorkPerByte = 400;
constexpr std::size_t kWorkAnyway = 1 << 20;

// The document that the bytes stand for: two namespaces that differ at their ends, declared around all or again below.
std::string Build(const std::uint8_t* data, std::size_t size) {
  const auto take = [&]() -> unsigned { return size == 0 ? 0 : (--size, *data++); };
  const std::string text(take() * 32 + 1, 'u');
  const std::string prefix(take() % 2 == 0 ? 1 : take() * 16 + 1, 'p');
  const std::string uris[] = {text + "1", text + "2"};
  const bool hasDefault = take() % 2 == 0;
  std::string out = "<r xmlns:" + prefix + "='" + uris[0] + "' xmlns:q='" + uris[1] + "'";
  if (hasDefault) out += " xmlns='" + uris[take() % 2] + "'";
  out += take() % 2 == 0 ? ">" : " v='" + prefix + ":x q:y'>";
  int depth = 0;
  while (size > 0 && out.size() < 60000) {
    switch (take() % 8) {
      case 0:
        out += "<a>";
        ++depth;
        break;
      case 1:
        if (depth > 0) out += "</a>";
        depth -= depth > 0;
        break;
      case 2:
        for (unsigned left = take(); left > 0; --left) out += "<b/>";
        break;
      case 3:
        for (unsigned left = take(); left > 0; --left) out += "<q:b/><b/>";
        break;
      case 4:
        for (unsigned left = take(); left > 0; --left) out += "<b q:k='q:v'/>";
        break;
      case 5:
        out += "<" + prefix + ":b/>";
        break;
      case 6:
        for (unsigned left = take() % 16; left > 0; --left)
          out += "<b xmlns='urn:" + std::to_string(left) + "'><q:b/></b>";
        break;
      default:
        out += "<b t='" + prefix + ":v'/>";
    }
  }
  while (depth-- > 0) out += "</a>";
  return out + "</r>";
}

void RequireProportion(const char* what, std::size_t before, std::size_t bytes) {
  const std::size_t work = g_work - before;
  Require(work <= kWorkAnyway + kWorkPerByte * bytes, what,
          std::to_wstring(work) + L" for " + std::to_wstring(bytes) + L" bytes");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string document = Build(data, size);
  CSerializationContext context;
  context.GetJsonContext()->SetStrictOutput(true);
  CElement tree;
  std::size_t before = g_work;
  const auto read = [&](CElement& target, unsigned char* bytes, std::size_t length) {
    return Succeeds([&] { target.FromXmlStream(bytes, length, context); });
  };
  const bool isRead = read(tree, reinterpret_cast<unsigned char*>(document.data()), document.size());
  RequireProportion("reading XML text takes work in proportion", before, document.size());
  if (!isRead) return 0;

  before = g_work;
  const CBinaryData fastInfoset = tree.ToFastInfosetStream(FInfoDecl_None, context);
  RequireProportion("writing Fast Infoset takes work in proportion", before, document.size() + fastInfoset.GetLength());
  before = g_work;
  CElement again;
  Succeeds([&] { again.FromXmlStream(fastInfoset, context); });
  RequireProportion("reading Fast Infoset takes work in proportion", before, document.size());
  before = g_work;
  std::size_t length = 0;
  Succeeds([&] { length = tree.ToJsonStream(false, XmlEncoding_UTF8, EOLType_LF, context).GetLength(); });
  RequireProportion("writing JSON takes work in proportion", before, document.size() + length);
  before = g_work;
  const CBinaryData xml = tree.ToXmlStream(false, false, XmlEncoding_UTF8, EOLType_LF, context);
  RequireProportion("writing XML text takes work in proportion", before, document.size() + xml.GetLength());
  return 0;
}
