// The four refocus maps against plain arithmetic: what the GPU draws is fed
// with what it drew before, what the CPU makes is the same bit for bit.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "compare.h"
#include "depth/focus_mask.h"
#include "depth/hole_filling.h"
#include "depth/statistics.h"
#include "fresh_session.h"
#include "reference_masks.h"
#include "test_scene.h"

namespace zuqel {
namespace {

using reference::Point;
using reference::Size;
using Bytes = std::vector<uint8_t>;
using Values = std::vector<uint16_t>;
using Statistics = std::array<uint32_t, 3>;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

constexpr Size kDepth = {96, 61}, kMap = {128, 75};

GLInitInfo Info() {
  GLInitInfo info = SmallInfo();
  info.DepthWidth = kDepth.width;
  info.DepthHeight = kDepth.height;
  info.WorkWidth = kMap.width;
  info.WorkHeight = kMap.height;
  return info;
}

// Eroded and then dilated by 4.
Bytes Opened(const Bytes& mask, Size size) {
  const auto smaller = [](uint8_t a, uint8_t b) { return std::min(a, b); };
  const auto larger = [](uint8_t a, uint8_t b) { return std::max(a, b); };
  return reference::FilterSquare(
             reference::FilterSquare({size.width, size.height, mask}, 4,
                                     smaller),
             4, larger)
      .values;
}

Bytes Reds(const reference::Image& image) {
  Bytes reds;
  for (size_t i = 0; i < image.rgba.size(); i += 4) {
    reds.push_back(image.rgba[i]);
  }
  return reds;
}

// A session with the refocus maps initialised.
class RefocusMap : public FreshSessionTest {
 protected:
  RefocusMap() {
    EXPECT_EQ(InitSession(Info()), 0U);
    EXPECT_EQ(zuQelRT_GenRefocusMap_init(), 0U);
    TakeLog();
  }
  ~RefocusMap() override { zuQelRT_GenRefocusMap_Deinit(); }

  // Calls a generator on a fresh disparity map, and looks at what it reports:
  // holes filled, the range without `percent` at either end.
  void Generate(auto generator, int32_t percent, Point focus, Bytes& map) {
    const auto x = static_cast<uint16_t>(focus.s);
    const auto y = static_cast<uint16_t>(focus.t);
    Values filled = DisparityScene(kDepth.width, kDepth.height, 70, 900);
    const GuardedMemory<uint16_t> disparity{filled};
    const GuardedMemory<uint8_t> result(map.size());
    EXPECT_EQ(generator(result.data(), disparity.data(), x, y, out_.data(),
                        &out_[1], &out_[2]),
              0U);
    std::copy(result.span().begin(), result.span().end(), map.begin());

    const Plane<uint16_t> plane = {filled.data(), kDepth.width, kDepth.height};
    FillDisparityHoles(plane);
    EXPECT_TRUE(std::equal(filled.begin(), filled.end(),
                           disparity.span().begin(), disparity.span().end()));
    const auto [min, max] = GetDispRange(plane, percent);
    EXPECT_EQ(out_, (Statistics{min, max, GetFocusDisp(plane, x, y)}));
    disparity_ = filled;
    pixel_ = ValueAt(plane, x, y);
  }

  // The weights as they were read back from the GPU.
  Bytes Weights() {
    const uint8_t* bytes =
        session_.refocus_maps.buffers.WeightMap_buffer_char_RM.bytes();
    return {bytes, bytes + kMap.area()};
  }
  // True if the weights are those of plain arithmetic.
  [[nodiscard]] testing::AssertionResult HasWeights(const Bytes& weights,
                                                    auto shader, uint32_t focus,
                                                    Tolerance tolerance) const {
    reference::Image depth = reference::FromDisparity(disparity_, kDepth);
    depth.repeat = true;
    const reference::DepthRange range = {static_cast<int>(focus),
                                         static_cast<int>(out_[0]),
                                         static_cast<int>(out_[1])};
    const DrawnRange plain =
        DrawRange(kMap, kMap, reference::Turn::kUpright,
                  [&](Point at) { return shader(Sample(depth, at), range); });
    const Bytes lowest = Reds(plain.lowest), highest = Reds(plain.highest);
    return IsNear(weights, Bounds{lowest, highest}, tolerance, 1);
  }

  Values disparity_;    // of the last call, filled
  uint16_t pixel_ = 0;  // its value at the focus point
  Statistics out_ = {};
};

// Points on a near plane, a far one, the slope, at a corner and outside.
constexpr std::array<Point, 5> kFocusPoints = {
    {{90, 5}, {10, 50}, {40, 30}, {0, 0}, {96, 61}}};

TEST_F(RefocusMap, OnTheGpuIsRefinedAndSoftened) {
  for (const Point focus : kFocusPoints) {
    Bytes map(kMap.area());
    Generate(zuQelRT_GenRefocusMap, 1, focus, map);
    EXPECT_EQ(TakeLog(),
              "zuQelRT_GenRefocusMap +\nglReadPixel takes # ms\n"
              "CCL takes # ms\nzuQelRT_GenRefocusMap -\n");
    const Bytes weights = Weights();
    EXPECT_TRUE(
        HasWeights(weights, reference::DepthWeight, out_[2], kRendered));

    RefinementScratch scratch;
    Bytes refined(kMap.area());
    const MaskPoint point = {
        static_cast<int>(focus.s) * kMap.width / kDepth.width,
        static_cast<int>(focus.t) * kMap.height / kDepth.height};
    ASSERT_TRUE(RefineRefocusMap({weights.data(), kMap.width, kMap.height},
                                 point, scratch,
                                 {refined.data(), kMap.width, kMap.height}));
    const auto blur = [](reference::Image image, Point step) {
      image.repeat = true;
      return Draw(kMap, kMap, reference::Turn::kUpright,
                  [&](Point at) { return Gaussian5(image, at, step); });
    };
    const auto down =
        blur(reference::FromBytes(refined, kMap, 1), {0, 1.0 / kMap.height});
    EXPECT_TRUE(
        IsNear(map, Reds(blur(down, {1.0 / kMap.width, 0})), kRendered, 1))
        << focus.s << ", " << focus.t;
  }
}

TEST_F(RefocusMap, FromDisparityOnTheGpuIsOpened) {
  for (const Point focus : kFocusPoints) {
    Bytes map(kMap.area());
    Generate(zuQelRT_GenRefocusMap_ZU4410_DispartyBase, 5, focus, map);
    EXPECT_EQ(TakeLog(), "GenRefocusMap_ZU4410_DispartyBase take test # ms\n");
    EXPECT_TRUE(
        HasWeights(Weights(), reference::AllInFocusWeight, pixel_, {2, 0.99}));
    EXPECT_EQ(map, Opened(Weights(), kMap)) << focus.s << ", " << focus.t;
  }
}

TEST_F(RefocusMap, FromDisparityOnTheCpuIsOpened) {
  for (const Point focus : kFocusPoints) {
    Bytes map(kDepth.area()), mask(kDepth.area());
    CaptureStdout();
    Generate(zuQelRT_GenRefocusMap_ZU4410_DispartyBase_CPU, 5, focus, map);
    const std::string printed = GetCapturedStdout();
    const std::string log = TakeLog();

    CaptureStdout();
    FocusMaskDisparity({disparity_.data(), kDepth.width, kDepth.height},
                       {static_cast<uint16_t>(out_[1]),
                        static_cast<uint16_t>(out_[0]), pixel_},
                       {mask.data(), kDepth.width, kDepth.height});
    EXPECT_EQ(printed, GetCapturedStdout());
    EXPECT_EQ(map, Opened(mask, kDepth)) << focus.s << ", " << focus.t;
    EXPECT_EQ(log, "FocusDisp = " + std::to_string(pixel_) +
                       ", focusDisparity = " + std::to_string(out_[2]) +
                       ", minDepth = " + std::to_string(out_[0]) +
                       ", maxDepth = " + std::to_string(out_[1]) + "\n\n" +
                       TakeLog() +
                       "GenRefocusMap_ZU4410_DispartyBase take # ms\n");
  }
}

TEST_F(RefocusMap, FromDistance) {
  for (const Point focus : kFocusPoints) {
    Values distances = DisparityScene(kDepth.width, kDepth.height, 70, 900);
    for (uint16_t& d : distances) {
      d = static_cast<uint16_t>(d == 1023 ? 0 : 4 * d + 300);
    }
    const GuardedMemory<uint16_t> memory{distances};
    const GuardedMemory<uint8_t> map(kDepth.area());
    CaptureStdout();
    EXPECT_EQ(zuQelRT_GenRefocusMap_Dist(map.data(), memory.data(),
                                         static_cast<uint32_t>(focus.s),
                                         static_cast<int32_t>(focus.t)),
              0U);
    const std::string printed = GetCapturedStdout();

    const Plane<uint16_t> plane = {distances.data(), kDepth.width,
                                   kDepth.height};
    FillDistanceHoles(plane);
    EXPECT_TRUE(std::equal(distances.begin(), distances.end(),
                           memory.span().begin(), memory.span().end()));
    const uint16_t nearest =
        *std::min_element(distances.begin(), distances.end());
    for (uint16_t& d : distances) {
      d = static_cast<uint16_t>(std::min((d - nearest) / 4, 1023));
    }
    // Fewer than 65536 pixels and all valid: a disparity map like any other.
    const auto [min, max] = GetDispRange(plane, 5);
    const uint16_t pixel =
        ValueAt(plane, static_cast<int>(focus.s), static_cast<int>(focus.t));
    Bytes mask(kDepth.area());
    CaptureStdout();
    FocusMaskDist(plane, {max, min, pixel},
                  {mask.data(), kDepth.width, kDepth.height});
    EXPECT_EQ(printed, "ExtremeMinDist=" + std::to_string(nearest) + "\n" +
                           GetCapturedStdout());
    const auto opened = Opened(mask, kDepth);
    EXPECT_TRUE(std::equal(map.span().begin(), map.span().end(), opened.begin(),
                           opened.end()));
    EXPECT_EQ(TakeLog(), "uwMaxQuanDist = " + std::to_string(max) +
                             "\n\nuwMinQuanDist = " + std::to_string(min) +
                             "\n\nFocusQuanDist = " + std::to_string(pixel) +
                             "\n\nGen refocus by distance done, take # ms\n");
  }
}

}  // namespace
}  // namespace zuqel
