// Loads and unloads a plugin that uses the library, which this program does not link: nothing must pile up.
#include <dlfcn.h>
#include <malloc.h>

#include <cstddef>
#include <cstdio>
#include <thread>

int main(int argc, char** argv) {
  constexpr std::size_t kTolerance = 4096;
  if (argc != 2) return 2;
  std::size_t before = 0;
  for (int i = 0; i < 50; ++i) {
    void* const handle = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
    void* const symbol = handle != nullptr ? dlsym(handle, "RunPlugin") : nullptr;
    if (symbol == nullptr) {
      std::fprintf(stderr, "%s\n", dlerror());
      return 1;
    }
    const auto run = reinterpret_cast<void (*)()>(symbol);
    run();
    std::thread(run).join();
    dlclose(handle);
    if (i == 10) before = mallinfo2().uordblks;
  }
  const std::size_t after = mallinfo2().uordblks;
  if (after <= before + kTolerance) return 0;
  std::fprintf(stderr, "%zu bytes more\n", after - before);
  return 1;
}
