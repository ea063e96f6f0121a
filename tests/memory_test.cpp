// Long runs: after a warm-up, frames and sessions leave memory as it was.
#include <gtest/gtest.h>
#include <malloc.h>
#include <unistd.h>

#include <cstdint>
#include <fstream>
#include <vector>

#include "test_session.h"

namespace zuqel {
namespace {

constexpr int kWarmUp = 10;
constexpr int64_t kHeapSlack = 64 << 10;
constexpr int64_t kResidentSlack = 2 << 20;

// The sanitizers keep freed blocks and count in their own way.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool kCanMeasure = false;
#elif defined(__has_feature)
constexpr bool kCanMeasure = !__has_feature(address_sanitizer);
#else
constexpr bool kCanMeasure = true;
#endif

struct Memory {
  int64_t heap;
  int64_t resident;
};

Memory MemoryInUse() {
  int64_t total_pages = 0, resident_pages = 0;
  std::ifstream("/proc/self/statm") >> total_pages >> resident_pages;
  return {static_cast<int64_t>(mallinfo2().uordblks),
          resident_pages * sysconf(_SC_PAGESIZE)};
}

// Repeats `round` and compares memory after the last time with that after the
// warm-up.
template <typename Round>
void ExpectFlat(int rounds, Round round) {
  for (int i = 0; i < kWarmUp; ++i) round();
  const Memory before = MemoryInUse();
  for (int i = kWarmUp; i < rounds; ++i) round();
  const Memory after = MemoryInUse();
  if (!kCanMeasure) return;
  EXPECT_LT(after.heap - before.heap, kHeapSlack);
  EXPECT_LT(after.resident - before.resident, kResidentSlack);
}

class MemoryTest : public testing::Test {
 protected:
  // One frame, of each call in turn.
  void RenderNext() {
    from_depth_ = !from_depth_;
    depth_[0] = 1023;
    uint8_t* const luma = luma_.data();
    uint8_t* const chroma = chroma_.data();
    EXPECT_EQ(from_depth_
                  ? zuQelRT_GLStartV1HWDepth(luma, chroma, depth_.data(), 320,
                                             240, 0, {0, 0, 0, 0}, 1)
                  : zuQelRT_GLStartV1(luma, chroma, weights_.data(), 320, 240,
                                      0, {0, 0, 0, 0}, 1),
              0U);
  }

 private:
  bool from_depth_ = false;
  std::vector<uint8_t> luma_ = std::vector<uint8_t>(size_t{640} * 480, 90);
  std::vector<uint8_t> chroma_ = std::vector<uint8_t>(size_t{640} * 240, 128);
  std::vector<uint8_t> weights_ = std::vector<uint8_t>(size_t{320} * 240, 99);
  std::vector<uint16_t> depth_ = std::vector<uint16_t>(size_t{320} * 240, 99);
};

TEST_F(MemoryTest, IsFlatOverFrames) {
  const ScopedSession session;
  ExpectFlat(200 + kWarmUp, [this] { RenderNext(); });
}

TEST_F(MemoryTest, IsFlatOverSessions) {
  ExpectFlat(50 + kWarmUp, [this] {
    const ScopedSession session;
    EXPECT_EQ(session.status(), 0U);
    RenderNext();
  });
}

}  // namespace
}  // namespace zuqel
