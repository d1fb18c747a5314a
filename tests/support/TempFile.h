#ifndef RKXMLLIB16_TESTS_SUPPORT_TEMPFILE_H
#define RKXMLLIB16_TESTS_SUPPORT_TEMPFILE_H

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace RkXmlTest {

inline std::string ReadFile(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

// The name of a file, with a character outside ASCII, that is removed in the end.
class CTempFile {
 public:
  CTempFile() : m_stem(testing::TempDir() + "rkxml_" + std::to_string(getpid()) + "_") {}
  CTempFile(const CTempFile&) = delete;
  CTempFile& operator=(const CTempFile&) = delete;
  ~CTempFile() { std::remove(Path().c_str()); }
  std::string Path() const { return m_stem + "\xC3\xA9.tmp"; }
  std::wstring Name() const { return std::wstring(m_stem.begin(), m_stem.end()) + L"\u00E9.tmp"; }
  bool Exists() const { return std::ifstream(Path()).good(); }
  std::string Bytes() const { return ReadFile(Path()); }

 private:
  std::string m_stem;
};

}  // namespace RkXmlTest

#endif
