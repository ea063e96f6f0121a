// Runs the tests. Where everything has to run (CI is set), a skipped test is a
// failed one.
#include <gtest/gtest.h>

#include <cstdlib>

namespace {

class SkipIsFailure : public testing::EmptyTestEventListener {
 public:
  void OnTestEnd(const testing::TestInfo& info) override {
    if (info.result()->Skipped()) skipped_ = true;
  }
  [[nodiscard]] bool skipped() const { return skipped_; }

 private:
  bool skipped_ = false;
};

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  auto* listener = new SkipIsFailure;  // the list below owns it
  testing::UnitTest::GetInstance()->listeners().Append(listener);
  const int result = RUN_ALL_TESTS();
  const bool must_run = std::getenv("CI") != nullptr;
  return result != 0 || (must_run && listener->skipped()) ? 1 : 0;
}
