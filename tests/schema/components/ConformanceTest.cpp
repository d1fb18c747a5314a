// Schemas of others, where they are at hand: RKXML_SHARED/schemas.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>

#include "support/Cases.h"
#include "support/Schemas.h"

namespace RkXmlSchema {
namespace {

namespace fs = std::filesystem;

const fs::path kSchemas = fs::path(RKXML_SHARED) / "schemas";

TEST(Conformance, SuiteOfSmallSchemas) {
  const auto rows = RkXmlTest::ReadLines(kSchemas / "w3c-sun" / "rows.tsv");
  if (rows.empty()) GTEST_SKIP() << "no schemas at hand";
  std::set<std::string> seen;
  std::size_t total[2] = {0, 0};
  std::size_t right[2] = {0, 0};
  for (const std::string& row : rows) {
    const auto fields = RkXmlTest::Parts(row, '\t');
    const std::string &validity = fields.at(2), &files = fields.at(3);
    if (validity == "-" || !seen.insert(files).second) continue;
    CSchemaSet set;
    for (const std::string& file : RkXmlTest::Parts(files, ';')) set.AddFile((kSchemas / "w3c-sun" / file).wstring());
    const bool isValid = validity == "valid";
    const bool isRight = set.Resolve() == isValid;
    ++total[isValid];
    right[isValid] += isRight;
    for (const Diagnostic& d : set.GetDiagnostics())
      EXPECT_TRUE(d.severity == Severity::Warning || d.location.line != 0 || d.location.file == nullptr);
    if (!isRight) std::printf("%s: %s\n", files.c_str(), isValid ? "refused" : "accepted");
  }
  // One valid schema redefines a document that the suite lacks here.
  EXPECT_GE(right[1] + 1, total[1]);
  EXPECT_EQ(right[0], total[0]);
}

TEST(Conformance, ACatalogNamesFilesForLocations) {
  const fs::path schema = kSchemas / "musicxml/schemas/musicxml.xsd";
  if (!fs::exists(schema)) GTEST_SKIP() << "no schemas at hand";
  const fs::path catalog = fs::temp_directory_path() / "rkxml_schema_catalog.txt";
  std::ofstream(catalog) << "http://www.musicxml.org/xsd/xml.xsd=" << (schema.parent_path() / "xml.xsd").string()
                         << "\nhttp://www.musicxml.org/xsd/xlink.xsd=" << (schema.parent_path() / "xlink.xsd").string()
                         << "\n";
  SchemaOptions options;
  options.catalogFile = catalog.wstring();
  CSchemaSet set(options);
  set.AddFile(schema.wstring());
  EXPECT_TRUE(set.Resolve()) << ::testing::PrintToString(Lines(set));
  EXPECT_NE(set.FindElement({L"", L"score-partwise"}), nullptr);
  fs::remove(catalog);
}

}  // namespace
}  // namespace RkXmlSchema
