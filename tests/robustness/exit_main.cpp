// What must hold while a process ends. Each mode is a run of its own, whose exit code is the result.
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <string>
#include <thread>

#include "RkXmlLib16/RkXmlLib16.h"

using namespace RkXmlLib16;

namespace {

// Uses everything that the library keeps for a thread or for the process.
void UseCaches() {
  static constexpr wchar_t kXml[] =
      L"<n:root xmlns:n='urn:n' a='1'><n:long-name-of-a-child>text</n:long-name-of-a-child></n:root>";
  if (!TestRegEx("(a|b)+c", L"abc")) std::abort();
  CElement element;
  element.FromXml(kXml);
  if (element.ToXml(false, false).empty() || element.ToJson().empty()) std::abort();
  CSerializationContext typed;
  typed.GetFIContext()->SetSuggestedValues();
  element.FromXmlStream(element.ToFastInfosetStream(FInfoDecl_None, typed));
  element.FromJson(element.ToJson().c_str());
  RkVariant nil;
  nil.SetInteger(CBigInteger(1));
  nil.SetNil();
  if (!nil.GetInteger().IsZero()) std::abort();
  if (FormatString(L"%f", 1.5) != L"1.500000") std::abort();
}

struct UsesAtTheEnd {
  ~UsesAtTheEnd() { UseCaches(); }
};

// Made before the caches, and so destroyed after them.
UsesAtTheEnd global;
thread_local UsesAtTheEnd ofThread;

void Touch(const UsesAtTheEnd& object) { asm volatile("" : : "r"(&object)); }

int UseInDestructors() {
  Touch(ofThread);
  UseCaches();
  std::thread([] {
    Touch(ofThread);
    UseCaches();
  }).join();
  return 0;
}

[[noreturn]] void ExitWhileThreadsRun() {
  for (int i = 0; i < 4; ++i) {
    std::thread([] {
      for (;;) UseCaches();
    }).detach();
  }
  usleep(5000);
  std::exit(0);
}

// Whether each of the children ends by itself.
template <class Child>
int InChildren(int count, Child child) {
  for (int i = 0; i < count; ++i) {
    const pid_t pid = fork();
    if (pid == 0) {
      alarm(60);
      child();
      _exit(0);
    }
    int status = 0;
    if (waitpid(pid, &status, 0) != pid || status != 0) {
      std::fprintf(stderr, "child %d ended with status %d\n", i, status);
      return 1;
    }
  }
  return 0;
}

// Forks in the middle of making the lazy parts, where a lock would be held.
int g_forksLeft = 0;
int g_failed = 0;

void ForkWhileAllocating() {
  if (g_forksLeft == 0) return;
  --g_forksLeft;
  g_failed += InChildren(1, [] {
    const CSerializationContext& context = CSerializationContext::m_defaultContext;
    if (context.GetJsonContext() == nullptr || context.GetFIContext() == nullptr) std::abort();
    if (context.GetAdditionalRootAttributes() == nullptr) std::abort();
  });
}

int ForkWhileMakingLazyParts() {
  const CSerializationContext& context = CSerializationContext::m_defaultContext;
  g_forksLeft = 3;
  context.GetJsonContext();
  g_forksLeft = 3;
  context.GetFIContext();
  g_forksLeft = 3;
  context.GetAdditionalRootAttributes();
  g_forksLeft = 0;
  return g_failed;
}

// Enough of each kind of memory that is kept for later.
void UseKeptMemory() {
  std::string document = "<r>";
  for (int i = 0; i < 3000; ++i) document += "<e/>";
  document += "</r>";
  const CSmartPtr<CElement> element(new CElement);
  element->FromXmlStream(reinterpret_cast<unsigned char*>(document.data()), document.size());
  for (int i = 0; i < 20; ++i) {
    CBinaryData data;
    data.Reserve(3 << 20);
    data.Reserve(40 << 20);
  }
}

int ForkWhileMemoryIsKept() {
  std::atomic<bool> ends{false};
  std::thread other([&ends] {
    while (!ends) UseKeptMemory();
  });
  const int failed = InChildren(50, UseKeptMemory);
  ends = true;
  other.join();
  return failed;
}

}  // namespace

[[gnu::noinline]] void* operator new(std::size_t size) {
  ForkWhileAllocating();
  if (void* const memory = std::malloc(size)) return memory;
  throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

int main(int argc, char** argv) {
  const std::string mode = argc > 1 ? argv[1] : "";
  if (mode == "destructors") return UseInDestructors();
  if (mode == "threads") return InChildren(30, ExitWhileThreadsRun);
  if (mode == "fork") return ForkWhileMakingLazyParts() + ForkWhileMemoryIsKept();
  return 2;
}
