// What each call makes of the driver, once its session has rendered before: as
// many calls as the table says, none by name, and no memory.
#include <android/log.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <optional>

#include "caller_state.h"
#include "fake_driver/fake_driver.h"
#include "library_allocations.h"
#include "test_session.h"

namespace zuqel {
namespace {

using enum fake_driver::Call;

// A frame with weights, one from depth, the map of blur weights, that of
// everything sharp or blurred; and the first in a caller's ES 3 context whose
// state has to be put back.
constexpr size_t kKinds = 5, kInCallersContext = 4;

struct CountRow {
  fake_driver::Call call;
  std::array<int, kKinds> counts;
};
// Every call that is not here is not made.
constexpr auto kCounts = std::to_array<CountRow>({
    {eglGetCurrentContext, {1, 1, 1, 1, 1}},
    {glActiveTexture, {5, 7, 2, 1, 5}},
    {glBindBuffer, {2, 2, 2, 2, 9}},
    {glBindFramebuffer, {4, 9, 3, 1, 4}},
    {glBindTexture, {10, 15, 5, 2, 10}},
    {glBindVertexArray, {0, 0, 0, 0, 2}},
    {glClear, {4, 9, 3, 1, 4}},
    {glColorMask, {0, 0, 0, 0, 2}},
    {glDisable, {0, 0, 0, 0, 2}},
    {glDisableVertexAttribArray, {2, 2, 2, 2, 1}},
    {glDrawElements, {4, 9, 3, 1, 4}},
    {glEnable, {0, 0, 0, 0, 2}},
    {glEnableVertexAttribArray, {2, 2, 2, 2, 3}},
    {glGetBooleanv, {1, 1, 1, 1, 1}},
    {glGetIntegerv, {5, 5, 4, 4, 14}},
    {glGetVertexAttribPointerv, {2, 2, 2, 2, 2}},
    {glGetVertexAttribiv, {12, 12, 12, 12, 16}},
    {glIsEnabled, {3, 3, 3, 3, 3}},
    {glPixelStorei, {4, 4, 4, 4, 12}},
    {glReadPixels, {1, 1, 2, 1, 1}},
    {glTexParameteri, {4, 8, 0, 0, 4}},
    {glTexSubImage2D, {3, 3, 2, 1, 3}},
    {glUseProgram, {4, 9, 3, 1, 4}},
    {glVertexAttribDivisor, {0, 0, 0, 0, 2}},
    {glVertexAttribIPointer, {0, 0, 0, 0, 1}},
    {glVertexAttribPointer, {4, 4, 4, 4, 3}},
    {glViewport, {3, 6, 1, 1, 3}},
});

TEST(GlCalls, AreAsManyAsAFrameNeeds) {
  __android_log_set_minimum_priority(ANDROID_LOG_SILENT);
  for (size_t kind = 0; kind < kKinds; ++kind) {
    std::optional<CallerContext> caller;
    if (kind == kInCallersContext) {
      caller.emplace(64, 48, 3);
      SetState();
    }
    const ScopedSession session(SmallPreviewInfo());
    zuQelRT_GenRefocusMap_init();
    TestFrame frame;
    const auto render = [&] {
      uint8_t* map = frame.weights.data();
      uint16_t* depth = frame.depth.data();
      if (kind == 2) {
        zuQelRT_GenRefocusMap(map, depth, 3, 4, nullptr, nullptr, nullptr);
      } else if (kind == 3) {
        zuQelRT_GenRefocusMap_ZU4410_DispartyBase(map, depth, 3, 4, nullptr,
                                                  nullptr, nullptr);
      } else {
        frame.Render(/*from_depth=*/kind == 1);
      }
    };
    render();
    render();  // from now on depth has no holes to fill
    std::array<int, fake_driver::kCalls.size()> counts = {};
    const auto add = [&](int sign) {
      for (size_t i = 0; i < counts.size(); ++i) {
        counts[i] += sign * fake_driver::Count(fake_driver::Call(i));
      }
    };
    const int blocks = library_allocations::Count();
    add(-1);
    render();
    add(1);
    EXPECT_EQ(library_allocations::Count(), blocks) << "of kind " << kind;
    for (size_t i = 0; i < counts.size(); ++i) {
      const auto* row =
          std::find_if(kCounts.begin(), kCounts.end(), [&](const auto& known) {
            return known.call == fake_driver::Call(i);
          });
      EXPECT_EQ(counts[i], row == kCounts.end() ? 0 : row->counts.at(kind))
          << fake_driver::kCalls[i].name << " of kind " << kind;
    }
    zuQelRT_GenRefocusMap_Deinit();
  }
}

}  // namespace
}  // namespace zuqel
