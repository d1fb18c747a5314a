#ifndef RKXMLLIB16_TESTS_SCHEMA_SETS_SETS_H
#define RKXMLLIB16_TESTS_SCHEMA_SETS_SETS_H

#include <filesystem>
#include <vector>

#include "RkXmlLib16/binding/Model.h"

// Schemas, the classes that rkxml made of them, and documents.
struct SchemaUnderTest {
  const char* name;
  const RkXmlLib16Data::SchemaModel& classes;
  std::vector<std::filesystem::path> schemas;
  std::vector<std::filesystem::path> documents;
};

extern const std::vector<SchemaUnderTest> kSets;

#endif
