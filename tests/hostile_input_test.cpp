// Every call with odd sizes and values that nobody should pass: no byte outside
// of the caller's buffers is touched.
#include <sys/system_properties.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <tuple>
#include <vector>

#include "fresh_session.h"

namespace zuqel {
namespace {

constexpr int32_t kMin = INT32_MIN;
constexpr int32_t kMax = INT32_MAX;
constexpr uint32_t kFar = UINT32_MAX;

constexpr auto kArguments = std::to_array<FrameArguments>(
    {{.f_number = NAN, .focus_x = 0, .focus_y = 0},
     {.rect = {kMin, kMin, kMax, kMax}, .focus_x = 127, .focus_y = 63},
     {.rect = {kMax, kMax, kMin, kMin}, .focus_x = 128, .focus_y = 64},
     {.rect = {kMin, kMax, kMax, kMin}, .focus_x = kFar, .focus_y = kFar},
     {.rect = {kMax - 1, 0, kMax, kMax}, .focus_x = 1U << 31},
     {.rect = {0, 0, 32, 32}, .f_number = -1e30F, .focus_y = kFar}});

TEST(HostileInput, FramesStayInsideTheirBuffers) {
  __system_property_set("persist.zu.LVGLbokeh.FocusDot", "1");
  // Width and height of the preview, the weights and the depth. The last fill
  // whole pages: guards on both sides.
  using Sizes =
      std::tuple<int32_t, int32_t, int32_t, int32_t, int32_t, int32_t>;
  const std::vector<Sizes> rows = {
      {0, 5, 0, 4, 4, 0},          {-1, 5, -1, 4, -1, 4},
      {kMin, 5, 3, kMin, 3, kMin}, {1, 1, 1, 1, 1, 1},
      {1, 2, 0, 0, 0, 0},          {2, 1, 0, 5, 5, 0},
      {3, 3, 3, 1, 1, 3},          {4, 3, 7, 3, 17, 1},
      {5, 7, 33, 17, 9, 5},        {33, 17, 5, 0, 0, 9},
      {101, 67, 101, 67, 33, 17},  {1, 1000, 2, 2, 1, 1000},
      {128, 64, 64, 64, 64, 64}};
  int turn = 0;
  for (const Sizes& sizes : rows) {
    // -1: on screen, where the format does not count.
    for (const int32_t format : {0, 2, 7, kMin, -1}) {
      std::optional<CallerContext> caller;
      if (format == -1) caller.emplace(8, 8);
      GLInitInfo info = SmallInfo(format == -1 ? 0 : 1, format);
      std::tie(info.PreviewWidth, info.PreviewHeight, info.WorkWidth,
               info.WorkHeight, info.DepthWidth, info.DepthHeight) = sizes;
      std::tie(info.OutputWidth, info.OutputHeight) = std::pair(kMax, kMin);
      info.PortraitMode = ++turn % 2;
      const ScopedSession session(info);
      ASSERT_EQ(session.status(), 0U);
      const CallerFrame frame(info);
      for (FrameArguments call : kArguments) {
        call.from_depth = ++turn % 2 == 0;
        call.bypass = turn % 5 == 0 ? -1 : 0;
        EXPECT_EQ(frame.Render(call), 0U) << turn;
      }
    }
  }
}

TEST(HostileInput, SmallCallsStayInsideTheirBuffers) {
  const GuardedMemory<char> version(256);
  EXPECT_EQ(zuQel_GLVersionInfo_Get(version.data(), kMax), 0U);
  const GuardedMemory<uint32_t> layout(1);
  EXPECT_EQ(zuQelRT_CameraLayout_Get(layout.data()), 0U);
  const GuardedMemory<GLInitInfo> info(1);
  *info.data() = SmallInfo();
  for (const uint32_t size : {1U, 464U, 512U, 544U, 1403U, 1488U, 1547U, 1643U,
                              2080U, 2801U, 2993U}) {
    const GuardedMemory<uint8_t> block(size);
    std::ranges::fill(block.span(), uint8_t{0xFF});
    zuQelRT_GLInitV1(block.data(), size, nullptr, 0, info.data());
    EXPECT_EQ(zuQelRT_GLClose(), 0U);
    zuQelRT_GLInitV1(nullptr, 0, block.data(), size, info.data());
    EXPECT_EQ(zuQelRT_GLClose(), 0U);
  }
  const ScopedSession session(SmallInfo());
  const GuardedMemory<ParameterInfo> parameter(1);
  for (const int32_t id : {kMin, 0, 1, 2, 3, kMax}) {
    EXPECT_NE(zuQelRT_SetParameter(id, parameter.data()), 0x200DU);
  }
}

}  // namespace
}  // namespace zuqel
