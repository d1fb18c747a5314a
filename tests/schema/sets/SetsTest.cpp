// Generated classes beside objects without classes, for whole schema sets and the documents that come with them.
#include "Sets.h"

#include <gtest/gtest.h>

#include "Differential.h"
#include "RkXmlLib16/RkXmlLib16.h"
#include "support/TempFile.h"

namespace {

using namespace RkXmlLib16;
using RkXmlSchema::CDifferential;

constexpr std::size_t kVariants = 100;  // of each document, which may be large

TEST(Sets, MakeTheSameOfDocumentsAndTheirVariantsAsObjectsWithoutClasses) {
  int total = 0;
  for (const SchemaUnderTest& set : kSets) {
    const CDifferential differential(set.schemas, set.classes);
    for (const auto& file : set.documents) {
      int count = 0;
      const std::wstring difference = differential.CompareVariants(RkXmlTest::ReadFile(file), count, kVariants);
      EXPECT_EQ(difference, L"") << set.name << ' ' << file;
      total += count;
    }
  }
  std::printf("%zu sets, %d documents\n", kSets.size(), total);
}

TEST(Sets, ReadTheirDocuments) {
  int bad = 0;
  for (const SchemaUnderTest& set : kSets) {
    for (const auto& file : set.documents) {
      try {
        ReadFile(set.classes, CFileName(file.string()));
      } catch (const CRkException& e) {
        ++bad;
        std::printf("%s %s: %s\n", set.name, file.c_str(), e.what());
      }
    }
  }
  EXPECT_LE(bad, 1);  // one document of UBL is not valid
}

}  // namespace
