#include <gtest/gtest.h>

#include <cstdio>
#include <exception>

#include "Expect.h"

namespace {

// GoogleTest calls an exception that is no std::exception unknown. It reports the failure while it still handles the
// exception, so its message can be told here.
class ExceptionMessages : public testing::EmptyTestEventListener {
  void OnTestPartResult(const testing::TestPartResult& result) override {
    const std::exception_ptr current = std::current_exception();
    if (!result.failed() || current == nullptr) return;
    try {
      std::rethrow_exception(current);
    } catch (const RkXmlLib16::CRkException& e) {
      std::printf("%s: %s\n", typeid(e).name(), RkXmlTest::Narrow(e.GetFullMessage()).c_str());
    } catch (...) {
    }
  }
};

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  testing::UnitTest::GetInstance()->listeners().Append(new ExceptionMessages);
  return RUN_ALL_TESTS();
}
