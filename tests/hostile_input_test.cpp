// Every call with odd sizes and values that nobody should pass: no byte outside
// of the caller's buffers is touched.
#include <sys/system_properties.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <ctime>
#include <optional>
#include <vector>

#include "fresh_session.h"
#include "random.h"

namespace zuqel {
namespace {

constexpr int32_t kMin = INT32_MIN;
constexpr int32_t kMax = INT32_MAX;
constexpr uint32_t kFar = UINT32_MAX;
constexpr auto* kCpuBokeh = zuQelRT_Bokeh_ZU4410_DisparityBase_Expansion_CPU;

constexpr auto kArguments = std::to_array<FrameArguments>(
    {{.f_number = NAN, .focus_x = 0, .focus_y = 0},
     {.rect = {kMin, kMin, kMax, kMax}, .focus_x = 127, .focus_y = 63},
     {.rect = {kMax, kMax, kMin, kMin}, .focus_x = 128, .focus_y = 64},
     {.rect = {kMin, kMax, kMax, kMin}, .focus_x = kFar, .focus_y = kFar},
     {.rect = {kMax - 1, 0, kMax, kMax}, .focus_x = 1U << 31},
     {.rect = {0, 0, 32, 32}, .f_number = -1e30F, .focus_y = kFar}});

// Width and height of the preview, the weights and the depth. The last fill
// whole pages: guards on both sides.
using Sizes = std::array<int32_t, 6>;
constexpr auto kSizes = std::to_array<Sizes>({{0, 5, 0, 4, 4, 0},
                                              {-1, 5, -1, 4, -1, 4},
                                              {kMin, 5, 3, kMin, 3, kMin},
                                              {1, 1, 1, 1, 1, 1},
                                              {1, 2, 0, 0, 0, 0},
                                              {2, 1, 0, 5, 5, 0},
                                              {3, 3, 3, 1, 1, 3},
                                              {4, 3, 7, 3, 17, 1},
                                              {5, 7, 33, 17, 9, 5},
                                              {33, 17, 5, 0, 0, 9},
                                              {101, 67, 101, 67, 33, 17},
                                              {1, 1000, 2, 2, 1, 1000},
                                              {128, 64, 64, 64, 64, 64}});

GLInitInfo InfoOf(const Sizes& sizes, int32_t off_screen, int32_t format) {
  GLInitInfo info = SmallInfo(off_screen, format);
  info.PreviewWidth = sizes[0];
  info.PreviewHeight = sizes[1];
  info.WorkWidth = sizes[2];
  info.WorkHeight = sizes[3];
  info.DepthWidth = sizes[4];
  info.DepthHeight = sizes[5];
  return info;
}

TEST(HostileInput, FramesStayInsideTheirBuffers) {
  __system_property_set("persist.zu.LVGLbokeh.FocusDot", "1");
  int turn = 0;
  for (const Sizes& sizes : kSizes) {
    // -1: on screen, where the format does not count.
    for (const int32_t format : {0, 2, 7, kMin, -1}) {
      std::optional<CallerContext> caller;
      if (format == -1) caller.emplace(8, 8);
      GLInitInfo info = InfoOf(sizes, format == -1 ? 0 : 1, format);
      info.OutputWidth = kMax;
      info.OutputHeight = kMin;
      info.PortraitMode = ++turn % 2;
      const ScopedSession session(info);
      ASSERT_EQ(session.status(), 0U);
      const CallerFrame frame(info);
      for (FrameArguments call : kArguments) {
        call.from_depth = ++turn % 2 == 0;
        call.bypass = turn % 5 == 0 ? -1 : 0;
        EXPECT_EQ(frame.Render(call), 0U) << turn;
        kCpuBokeh(frame.luma.data(), frame.chroma.data(), frame.depth.data(),
                  static_cast<int32_t>(call.focus_x), call.focus_y);
      }
    }
  }
}

// Values above 1023, all invalid, and noise; before, between and after the
// calls that make the GL objects. The last sizes are out of memory: nothing may
// be touched.
TEST(HostileInput, RefocusMapsStayInsideTheirBuffers) {
  using Focus = std::array<uint32_t, 2>;
  std::vector<Sizes> rows(kSizes.begin(), kSizes.end());
  rows.push_back({1, 1, 50000, 50000, 50000, 50000});
  for (const Sizes& sizes : rows) {
    const GLInitInfo info = InfoOf(sizes, 1, 0);
    const ScopedSession session(info);
    const CallerFrame frame(info);
    const auto fill = [&](uint32_t step) {
      Random random(1);
      for (uint16_t& value : frame.depth.span()) {
        value = static_cast<uint16_t>(random.Bits() | step);
      }
    };
    const GuardedMemory<uint8_t> map(frame.weights.size());
    const GuardedMemory<uint8_t> small_map(frame.depth.size());
    const GuardedMemory<uint32_t> out(3);
    const auto generate = [&](Focus focus, uint32_t step) {
      const auto [x, y] = focus;
      const auto signed_y = static_cast<int32_t>(y);
      uint16_t* depth = frame.depth.data();
      fill(step);
      zuQelRT_GenRefocusMap(map.data(), depth, x, signed_y, &out.data()[0],
                            &out.data()[1], &out.data()[2]);
      fill(step);
      zuQelRT_GenRefocusMap_ZU4410_DispartyBase(map.data(), depth, x, signed_y,
                                                nullptr, nullptr, nullptr);
      fill(step);
      zuQelRT_GenRefocusMap_ZU4410_DispartyBase_CPU(
          small_map.data(), depth, x, y, &out.data()[2], nullptr, nullptr);
      fill(step);
      zuQelRT_GenRefocusMap_Dist(small_map.data(), depth, x, signed_y);
    };
    const auto generate_all = [&] {
      for (const Focus focus : {Focus{0, 0}, Focus{2, 1}, Focus{63, 63},
                                Focus{kFar, kFar}, Focus{kFar, 1U << 31}}) {
        for (const uint32_t step : {0U, 1023U}) generate(focus, step);
      }
    };
    generate_all();
    zuQelRT_GenRefocusMap_init();
    generate_all();
    zuQelRT_GenRefocusMap_Deinit();
    generate({1, 1}, 0);
    EXPECT_EQ(zuQelRT_GenRefocusMap_Deinit(), 0U);
  }
}

// Two thousand million rows without a pixel in them are no work.
TEST(HostileInput, EmptyRowsAreNotWalked) {
  std::optional<std::clock_t> usual;  // of the first, where there is work
  for (const Sizes& sizes :
       {Sizes{64, 64, 64, 64, 64, 64}, Sizes{0, kMax, 64, 64, 64, 64},
        Sizes{64, 64, 0, kMax, 64, 64}, Sizes{64, 64, kMax, 0, 0, kMax},
        Sizes{kMax, 0, 64, 64, kMax, 0}}) {
    const std::clock_t start = std::clock();
    const GLInitInfo info = InfoOf(sizes, 1, 2);
    const ScopedSession session(info);
    ASSERT_EQ(session.status(), 0U);
    const CallerFrame frame(info);
    const GuardedMemory<uint8_t> map(4096);
    zuQelRT_GenRefocusMap_init();
    for (const bool from_depth : {false, true}) {
      EXPECT_EQ(frame.Render({.from_depth = from_depth}), 0U);
    }
    kCpuBokeh(frame.luma.data(), frame.chroma.data(), frame.depth.data(), 1, 1);
    zuQelRT_GenRefocusMap(map.data(), frame.depth.data(), 1, 1, nullptr,
                          nullptr, nullptr);
    zuQelRT_GenRefocusMap_Dist(map.data(), frame.depth.data(), 1, 1);
    zuQelRT_GenRefocusMap_Deinit();
    const std::clock_t took = std::clock() - start;
    usual = usual.value_or(took);
    EXPECT_LT(took, *usual + 2 * CLOCKS_PER_SEC)
        << testing::PrintToString(sizes);
  }
}

TEST(HostileInput, CpuBokehNeedsASessionAndPlanes) {
  ResetSession();
  const CallerFrame frame(SmallInfo());
  const std::vector<uint16_t> before = frame.Contents();
  uint8_t *luma = frame.luma.data(), *chroma = frame.chroma.data();
  uint16_t* depth = frame.depth.data();
  EXPECT_EQ(kCpuBokeh(luma, chroma, depth, 3, 4), 0U);
  const ScopedSession session(SmallInfo());
  EXPECT_EQ(kCpuBokeh(nullptr, chroma, depth, 3, 4), 0U);
  EXPECT_EQ(kCpuBokeh(luma, nullptr, depth, 3, 4), 0U);
  EXPECT_EQ(kCpuBokeh(luma, chroma, nullptr, 3, 4), 0U);
  EXPECT_EQ(frame.Contents(), before);
  EXPECT_EQ(TheSession().expansionFrameCounter, 0);
  zuQelRT_GLClose();
  EXPECT_EQ(kCpuBokeh(luma, chroma, depth, 3, 4), 0U);
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
    std::fill(block.span().begin(), block.span().end(), uint8_t{0xFF});
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
