#ifndef RKXMLLIB16_TESTS_SUPPORT_CASES_H
#define RKXMLLIB16_TESTS_SUPPORT_CASES_H

#include <filesystem>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "support/TempFile.h"

// Cases that stand in files below tests/data.
namespace RkXmlTest {

inline std::vector<std::string> Parts(const std::string& text, char separator) {
  std::istringstream stream(text);
  std::vector<std::string> parts;
  for (std::string part; std::getline(stream, part, separator);) parts.push_back(part);
  return parts;
}

inline std::vector<std::string> ReadLines(const std::filesystem::path& file) { return Parts(ReadFile(file), '\n'); }

// What is given and, after "=>", what comes of it; a blank line ends a case, and lines after "# " are remarks.
inline std::vector<std::pair<std::string, std::string>> ReadCases(const std::filesystem::path& file) {
  std::vector<std::pair<std::string, std::string>> cases(1);
  for (const std::string& line : ReadLines(file)) {
    auto& [given, result] = cases.back();
    if (line.compare(0, 2, "# ") == 0) continue;
    if (line.empty())
      cases.emplace_back();
    else if (line.compare(0, 2, "=>") == 0)
      result = line.substr(line.size() == 2 ? 2 : 3);
    else
      given += given.empty() ? line : '\n' + line;
  }
  return cases;
}

}  // namespace RkXmlTest

#endif
