// Schemas and documents of others, where they are at hand: RKXML_SHARED/schemas.
#include "Documents.h"
#include "Expect.h"
#include "support/Cases.h"

namespace RkXmlSchema {
namespace {

namespace fs = std::filesystem;
using RkXmlTest::Narrow;

const fs::path kSchemas = fs::path(RKXML_SHARED) / "schemas";

std::vector<fs::path> FilesIn(const fs::path& folder, const std::string& ending) {
  std::vector<fs::path> files;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder))
    if (entry.path().extension() == ending) files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  return files;
}

TEST(DynamicConformance, SuiteOfSmallDocuments) {
  const auto rows = RkXmlTest::ReadLines(kSchemas / "w3c-sun" / "rows.tsv");
  if (rows.empty()) GTEST_SKIP() << "no schemas at hand";
  std::size_t total[2] = {0, 0};
  std::size_t right[2] = {0, 0};
  std::size_t same = 0;
  for (const std::string& row : rows) {
    auto field = RkXmlTest::Parts(row, '\t');
    field.resize(6);
    if (field[2] != "valid" || field[4] == "-") continue;
    std::vector<fs::path> files;
    for (const std::string& name : RkXmlTest::Parts(field[3], ';')) files.push_back(kSchemas / "w3c-sun" / name);
    const CSchemaUnderTest schema(files);
    const bool isValid = field[5] == "valid";
    const fs::path file = kSchemas / "w3c-sun" / field[4];
    const std::wstring error = schema.IsUsable() ? schema.Check(file) : L"no schema " + schema.GetErrors();
    if (isValid && error.empty()) same += RoundTrip(schema, file).empty();
    const bool isRight = error.empty() == isValid;
    ++total[isValid];
    right[isValid] += isRight;
  }
  std::printf("valid %zu of %zu, of which %zu come back; invalid %zu of %zu\n", right[1], total[1], same, right[0],
              total[0]);
  EXPECT_GE(right[1] * 100, total[1] * 97);
  EXPECT_GE(right[0] * 100, total[0] * 85);  // all but those that depend on identity constraints
  EXPECT_GE(same * 100, right[1] * 98);      // all but those with another order in an all group
}

void CheckFolder(const std::string& folder, const std::vector<fs::path>& schemas) {
  if (!fs::exists(kSchemas / folder)) GTEST_SKIP() << "no schemas at hand";
  std::vector<fs::path> files;
  for (const fs::path& file : schemas) files.push_back(kSchemas / folder / "schemas" / file);
  const CSchemaUnderTest schema(files);
  ASSERT_TRUE(schema.IsUsable()) << Narrow(schema.GetErrors());
  std::size_t bad = 0;
  const auto documents = FilesIn(kSchemas / folder / "documents", ".xml");
  for (const fs::path& file : documents) {
    std::wstring error = schema.Check(file);
    if (error.empty()) error = RoundTrip(schema, file);
    if (error.empty()) continue;
    ++bad;
    std::printf("%s: %s\n", file.filename().c_str(), Narrow(error.substr(0, 400)).c_str());
  }
  std::printf("%s: %zu of %zu\n", folder.c_str(), documents.size() - bad, documents.size());
  // One document of UBL is not valid.
  EXPECT_LE(bad, folder == "ubl" ? 1u : 0u);
}

TEST(DynamicConformance, IpXact) { CheckFolder("ipxact", {"index.xsd"}); }
TEST(DynamicConformance, Bpmn) { CheckFolder("bpmn", {"BPMN20.xsd"}); }
TEST(DynamicConformance, Npo) {
  if (!fs::exists(kSchemas / "npo")) GTEST_SKIP() << "no schemas at hand";
  CheckFolder("npo", FilesIn(kSchemas / "npo" / "schemas", ".xsd"));
}
TEST(DynamicConformance, Ubl) {
  if (!fs::exists(kSchemas / "ubl")) GTEST_SKIP() << "no schemas at hand";
  CheckFolder("ubl", FilesIn(kSchemas / "ubl" / "schemas" / "maindoc", ".xsd"));
}

}  // namespace
}  // namespace RkXmlSchema
