#include <gtest/gtest.h>

#include <cstdlib>

#include "support/HostLocale.h"

// The whole program runs under the locale that RKXML_TEST_LOCALE names, if any.
namespace {

class LocaleOfTheEnvironment : public testing::Environment {
 public:
  void SetUp() override {
    const char* const name = std::getenv("RKXML_TEST_LOCALE");
    if (name != nullptr && std::setlocale(LC_ALL, name) == nullptr) GTEST_SKIP() << "no locale " << name;
  }
};

const auto* const g_environment = testing::AddGlobalTestEnvironment(new LocaleOfTheEnvironment);

}  // namespace

TEST(HostLocale, IsThatOfTheEnvironment) {
  const char* const name = std::getenv("RKXML_TEST_LOCALE");
  EXPECT_STREQ(name != nullptr ? name : "C", std::setlocale(LC_ALL, nullptr));
  static_cast<void>(g_environment);
}
