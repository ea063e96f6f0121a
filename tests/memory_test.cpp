// Long runs: after a warm-up, frames and sessions leave memory as it was.
#include <gtest/gtest.h>
#include <malloc.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "fresh_session.h"
#include "resident_bytes.h"

namespace zuqel {
namespace {

// Renders frames of each call in turn, after a warm-up.
TEST(Memory, IsFlatOverFramesAndSessions) {
  GLInitInfo info = SmallInfo();
  info.PreviewWidth = 320;
  info.PreviewHeight = 240;
  const CallerFrame frame(info);
  const auto render = [&](int turn) {
    frame.depth.data()[0] = 1023;
    EXPECT_EQ(frame.Render({.from_depth = turn % 2 == 0}), 0U);
  };
  const auto expect_flat = [&](int warm_up, int rounds, int64_t kib,
                               auto round) {
    const auto run = [&](int turns) {
      for (int i = 0; i < turns; ++i) round(i);
    };
    run(warm_up);
    // A driver takes and gives back blocks when it suits it, and compiles code
    // at addresses of its own choice; a leak takes some every time.
    constexpr int kBatches = 6;
    for (int batch = 1; batch <= kBatches; ++batch) {
      const auto heap = static_cast<int64_t>(mallinfo2().uordblks);
      const int64_t resident = ResidentBytes();
      run(rounds);
      const int64_t heap_growth =
          static_cast<int64_t>(mallinfo2().uordblks) - heap;
      const int64_t resident_growth = ResidentBytes() - resident;
      if (heap_growth < kib << 10 && resident_growth < 2 << 20) break;
      EXPECT_LT(batch, kBatches)
          << rounds << " rounds: " << heap_growth << " bytes of heap, "
          << resident_growth << " resident";
    }
  };
  constexpr int kSessions = 50;
  expect_flat(10, kSessions, 64, [&](int turn) {
    const ScopedSession session(info);
    render(turn);
  });
  // A cache that is taken every time, and one that is built anew every time.
  GLInitInfo with_buffer = info;
  with_buffer.GraphicBufferFlag = 1;
  for (const bool is_kept : {true, false}) {
    std::vector<uint8_t> cache(kProgramCacheBytes);
    expect_flat(10, kSessions, 64, [&](int turn) {
      const ScopedSession session(with_buffer, cache.data());
      render(turn);
      if (!is_kept) std::fill(cache.begin(), cache.end(), uint8_t{0});
    });
  }
  // Refocus maps whose start is repeated, and which outlive the session.
  const GuardedMemory<uint8_t> map(frame.weights.size());
  const auto generate = [&] {
    zuQelRT_GenRefocusMap(map.data(), frame.depth.data(), 3, 3, nullptr,
                          nullptr, nullptr);
    zuQelRT_GenRefocusMap_Dist(map.data(), frame.depth.data(), 3, 3);
  };
  expect_flat(10, kSessions, 64, [&](int) {
    const ScopedSession refocus_session(info);
    zuQelRT_GenRefocusMap_init();
    zuQelRT_GenRefocusMap_init();
    generate();
    zuQelRT_GLClose();
    generate();
    zuQelRT_GenRefocusMap_Deinit();
  });
  const ScopedSession session(info);
  expect_flat(10, 500, 1, [&](int turn) {
    zuQelRT_Bokeh_ZU4410_DisparityBase_Expansion_CPU(
        frame.luma.data(), frame.chroma.data(), frame.depth.data(), turn, 3);
  });
  // The driver's threads take one block of 64 KiB when it suits them.
  expect_flat(50, 200, 128, render);
}

}  // namespace
}  // namespace zuqel
