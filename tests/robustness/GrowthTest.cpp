// How work grows with the size of what is worked on, counted in allocations and in comparisons of texts.
#include <cstdlib>
#include <cwchar>
#include <memory>
#include <new>
#include <string>

#include "Expect.h"
#include "fixtures/Records.h"

using namespace RkXmlTest;

namespace {

unsigned long g_allocations = 0;
unsigned long g_comparisons = 0;

struct Work {
  unsigned long allocations;
  unsigned long comparisons;
};

template <class Call>
Work WorkOf(Call&& call) {
  const Work before{g_allocations, g_comparisons};
  call();
  return {g_allocations - before.allocations, g_comparisons - before.comparisons};
}

// Four times as much must not take much more than four times the work.
template <class Some, class FourTimes>
void ExpectLinear(Some&& some, FourTimes&& fourTimes) {
  constexpr unsigned long kMost = 6, kAnyway = 1000;
  const Work few = WorkOf(some), many = WorkOf(fourTimes);
  EXPECT_LT(many.allocations, kMost * few.allocations + kAnyway) << few.allocations;
  EXPECT_LT(many.comparisons, kMost * few.comparisons + kAnyway) << few.comparisons;
}

using GrowthTest = TableTest;

}  // namespace

[[gnu::noinline]] void* operator new(std::size_t size) {
  ++g_allocations;
  if (void* const memory = std::malloc(size)) return memory;
  throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

extern "C" int wmemcmp(const wchar_t* a, const wchar_t* b, std::size_t length) noexcept {
  ++g_comparisons;
  for (std::size_t i = 0; i < length; ++i)
    if (a[i] != b[i]) return a[i] < b[i] ? -1 : 1;
  return 0;
}

// Elements inside each other, each in a namespace and with a prefix of its own.
TEST_F(GrowthTest, PathsOfErrors) {
  const auto tell = [](int depth) {
    std::wstring xml;
    for (int i = 0; i < depth; ++i) xml += FormatString(L"<p%d:e xmlns:p%d='urn:%d'>", i, i, 1000 + i);
    for (int i = depth; i-- > 0;) xml += FormatString(L"</p%d:e>", i);
    const auto document = std::make_shared<CXmlDocument>();
    document->LoadXml(xml.c_str());
    const CXmlElement* innermost = document->GetDocumentElement();
    while (innermost->GetFirstElement() != nullptr) innermost = innermost->GetFirstElement();
    return [document, innermost] { return innermost->GetXPath(); };
  };
  EXPECT_TEXT(L"/p0:e/p1:e/p2:e", tell(3)());
  ExpectLinear(tell(400), tell(1600));
}

TEST_F(GrowthTest, FailuresInsideEachOther) {
  const Table table(ClassInfo(kSequence, L"e"), {Cls(L"e", 0), Prim(L"v", 1)});
  Classes() = {&table};
  const auto write = [&](int depth) {  // the innermost lacks v
    const auto outermost = CTableClass::Create(table);
    outermost->SetElementName(L"e");
    auto* innermost = outermost.Get();
    for (int i = 1; i < depth; ++i) {
      const auto child = CTableClass::Create(table);
      child->SetElementName(L"e");
      (*innermost)[0].SetXmlObject(child);
      innermost = child;
    }
    return [outermost] { return Thrown([&] { Write(*outermost); }); };
  };
  const std::wstring level = L"Failed to convert the element [e] to XML\n";
  EXPECT_TEXT(
      L"CRkValidationException: " + level + level + level + L"The Property [v] is mandatory, it may not be NULL",
      write(3)());
  ExpectLinear(write(100), write(400));
}
