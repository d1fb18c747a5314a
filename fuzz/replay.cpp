// Runs a target once over each file of the folders that the arguments name, and over damaged copies of it, the same
// each time.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using Bytes = std::vector<std::uint8_t>;

// Changes, drops or doubles octets at up to three places.
void Damage(Bytes& bytes, std::minstd_rand& random) {
  for (auto places = random() % 3 + 1; places > 0 && !bytes.empty(); --places) {
    const auto at = bytes.begin() + static_cast<std::ptrdiff_t>(random() % bytes.size());
    const auto end = at + std::min<std::ptrdiff_t>(static_cast<std::ptrdiff_t>(random() % 8), bytes.end() - at);
    switch (random() % 3) {
      case 0:
        *at = static_cast<std::uint8_t>(random() >> 8);
        break;
      case 1:
        bytes.erase(at, end);
        break;
      default: {
        const Bytes again(at, end);
        bytes.insert(at, again.begin(), again.end());
      }
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::filesystem::path> files;
  for (int i = 1; i < argc; ++i) {
    if (!std::filesystem::is_directory(argv[i])) continue;
    for (const auto& entry : std::filesystem::directory_iterator(argv[i])) files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  std::minstd_rand random(1);
  for (const std::filesystem::path& file : files) {
    std::ifstream in(file, std::ios::binary);
    const Bytes whole{std::istreambuf_iterator<char>(in), {}};
    Bytes bytes = whole;
    for (int round = 0; round <= 300; ++round) {
      std::fprintf(stderr, "%s, round %d\n", file.c_str(), round);  // before, so that a crash shows whose it is
      LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
      if (round % 10 == 0) bytes = whole;
      Damage(bytes, random);
    }
  }
  return files.empty() ? 1 : 0;
}
