#include "RkXmlLib16/object/internal/ObjectMemory.h"

#include <malloc.h>

#include <cstdint>
#include <memory>
#include <new>
#include <set>
#include <thread>
#include <vector>

#include "Expect.h"
#include "RkXmlLib16/base/HugePages.h"
#include "RkXmlLib16/base/KeptMemory.h"
#include "RkXmlLib16/base/SmartPtr.h"
#include "RkXmlLib16/base/internal/Sanitizer.h"
#include "RkXmlLib16/wildcards/Element.h"

using namespace RkXmlTest;

namespace {

template <std::size_t kMore>
struct CSized final : CElement {
  CSized() { ++live; }
  ~CSized() override { --live; }
  unsigned char more[kMore];
  static inline int live = 0;
};

constexpr int kMany = 1000;  // of each size: some lie in blocks of a huge page

bool IsAligned(const void* object, std::size_t alignment) {
  return reinterpret_cast<std::uintptr_t>(object) % alignment == 0;
}

// Objects of several sizes, the last one larger than a block takes; all outlive the memory that they were taken from.
std::vector<CSmartPtr<CElement>> MakeObjects(int count) {
  const CObjectMemory memory;
  std::vector<CSmartPtr<CElement>> objects;
  for (int i = 0; i < count; ++i) {
    objects.emplace_back(new CSized<1>);
    objects.emplace_back(new CSized<200>);
    objects.emplace_back(i % 10 == 0 ? static_cast<CElement*>(new CSized<20000>) : new CSized<24>);
  }
  return objects;
}

void Drop(std::vector<CSmartPtr<CElement>>& objects, std::size_t step) {
  for (std::size_t i = 0; i < objects.size(); i += step) objects[i] = nullptr;
}

TEST(ObjectMemory, ObjectsDoNotMeetAndGoInAnyOrderAndThread) {
  std::vector<CSmartPtr<CElement>> objects = MakeObjects(kMany);
  for (std::size_t i = 0; i < objects.size(); ++i) {
    EXPECT_TRUE(IsAligned(objects[i].Get(), alignof(std::max_align_t)));
    objects[i]->SetText(std::to_wstring(i).c_str());
  }
  for (std::size_t i = 0; i < objects.size(); ++i) EXPECT_TEXT(std::to_wstring(i), objects[i]->GetText());
  Drop(objects, 3);
  std::thread other([&] { Drop(objects, 2); });
  other.join();
  Drop(objects, 1);
  EXPECT_EQ(0, CSized<1>::live + CSized<200>::live + CSized<24>::live + CSized<20000>::live);
}

TEST(ObjectMemory, BlocksGoWithTheirLastObject) {
  const auto round = [] {
    std::vector<CSmartPtr<CElement>> objects = MakeObjects(kMany);
    Drop(objects, 7);
    Drop(objects, 1);
    FreeKeptMemory();
    const struct mallinfo2 heap = mallinfo2();
    return heap.uordblks + heap.hblkhd;
  };
  const std::size_t before = round();
  for (int i = 0; i < 20; ++i) EXPECT_LT(round(), before + 100000);
}

// Else one object of each document would keep a huge page.
TEST(ObjectMemory, BlocksAreTakenWhereOthersAreInUse) {
  std::vector<CSmartPtr<CElement>> last;
  std::set<std::uintptr_t> pages;
  for (int i = 0; i < 20; ++i) {
    last.push_back(MakeObjects(kMany).back());
    pages.insert(reinterpret_cast<std::uintptr_t>(last.back().Get()) / kHugePage);
  }
  if (kIsSanitized) GTEST_SKIP() << "objects lie alone";
  EXPECT_GT(5u, pages.size());
}

TEST(ObjectMemory, EveryFormOfNewIsThere) {
  struct alignas(64) Aligned final : CElement {};
  const CObjectMemory memory;
  for (int i = 0; i < 20; ++i) {
    const CSmartPtr<CElement> aligned(new Aligned);
    EXPECT_TRUE(IsAligned(aligned.Get(), 64));
    const CSmartPtr<CElement> unthrowing(new (std::nothrow) CElement);
    EXPECT_NE(nullptr, unthrowing.Get());
    const std::unique_ptr<CElement[]> several(new CElement[3]);
    alignas(CElement) unsigned char place[sizeof(CElement)];
    (new (place) CElement)->~CElement();
  }
}

}  // namespace
