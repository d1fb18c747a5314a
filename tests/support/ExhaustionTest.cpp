#include <cstdio>
#include <cstdlib>
#include <memory>
#include <new>

#include "Expect.h"
#include "RkXmlLib16/support/BinaryStream.h"
#include "RkXmlLib16/support/Encoder.h"
#include "RkXmlLib16/support/Format.h"
#include "RkXmlLib16/support/TextStream.h"
#include "RkXmlLib16/support/Zip.h"

using namespace RkXmlLib16;

namespace {

// Allocations that still succeed; negative: all do.
long g_allocationsLeft = -1;

}  // namespace

// The allocation functions of this test program. What leaks is the leak sanitizer's to find.
void* operator new(std::size_t size) {
  if (g_allocationsLeft >= 0 && g_allocationsLeft-- == 0) throw std::bad_alloc();
  if (void* const memory = std::malloc(size == 0 ? 1 : size)) return memory;
  throw std::bad_alloc();
}
void* operator new[](std::size_t size) { return operator new(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }

namespace {

// Calls `work` with its n-th allocation failing, n = 1, 2, 3, ..., until it gets all it asks for.
template <class Work>
void ExhaustMemory(Work&& work) {
  for (long allowed = 0;; ++allowed) {
    bool done = false;
    g_allocationsLeft = allowed;
    try {
      work();
      done = true;
    } catch (const std::bad_alloc&) {
    }
    g_allocationsLeft = -1;
    if (done) {
      EXPECT_GT(allowed, 0);
      return;
    }
  }
}

}  // namespace

TEST(Exhaustion, TextBecomesBytesOrNothing) {
  ExhaustMemory([] {
    CTextStream stream(XmlEncoding_UTF8);
    for (int i = 0; i < 3000; ++i) stream.Append(L"a\u00E9\u20AC ");
    stream.GetText();
    stream.Append(L"x");
    const CBinaryData bytes = stream.GetEncodedStream();
    CBinaryData copy = bytes;
    copy.Append(bytes);
    copy.SetAsBase64(copy.GetAsBase64().c_str());
    copy.SetAsHexString(L"00ab");
    CBinaryData wide(L"raw");
    CEncoder::Utf8ToUnicode("a\xC3\xA9");
    FormatString(L"%ls %d %c", L"text", 3, L'\u00E9');
  });
}

TEST(Exhaustion, CompressionLeavesItsInputAlone) {
  ExhaustMemory([] {
    const CBinaryData original(std::wstring(500, L'x').c_str());
    CBinaryData data = original;
    try {
      CRkZip::CompressData(data, CompressionType_GZip);
    } catch (const std::bad_alloc&) {
      EXPECT_EQ(original, data);
      throw;
    }
    unsigned long length = 0;
    std::unique_ptr<unsigned char[]> bytes(data.ReleaseData(&length));
    unsigned char* raw = bytes.release();
    try {
      CRkZip::Decompress(&raw, &length);
    } catch (const std::bad_alloc&) {
      bytes.reset(raw);
      throw;
    }
    bytes.reset(raw);
    EXPECT_EQ(original.GetLength(), length);
  });
}

TEST(Exhaustion, FilesAreClosed) {
  const std::string path = testing::TempDir() + "rkxml_exhaustion.tmp";
  const std::wstring name(path.begin(), path.end());
  ExhaustMemory([&name] {
    CFileTextStream file(name.c_str(), XmlEncoding_UTF8);
    file.Open();
    file.Append(L"text");
    file.Flush();
    file.Append(L"more");
    file.Close();
    CBinaryData data(L"raw");
    CFileBinaryStream(name.c_str(), XmlEncoding_Wide, data).ToFile();
  });
  std::remove(path.c_str());
}
