// Whole frames through the C interface against plain arithmetic. Where weights
// come from disparity, each stage is fed with the one that the GPU made before
// it, so that a weight on either side of a threshold is not counted twice.
#include <android/log.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include "compare.h"
#include "driver_turns.h"
#include "scoped_property.h"
#include "test_session.h"

namespace zuqel {
namespace {

using reference::Image;
using reference::Planes;
using reference::Point;
using reference::Size;
using reference::Turn;

constexpr Size kFullHd = {1920, 1080}, kLarge = {1280, 960}, kVga = {640, 480};
constexpr Size kMaps = {320, 240};

struct FrameRow {
  const char* name;
  Size preview = {322, 182};
  int format = 0;
  float f_number = 1;
  int portrait = 0;
  Size depth = {};  // none: with weights
  Size work = kMaps;
  Size output = {};  // none: off screen
  int bypass = 0;

  [[nodiscard]] bool from_depth() const { return depth.width != 0; }
  [[nodiscard]] bool on_screen() const { return output.width != 0; }
};

GLInitInfo InfoOf(const FrameRow& row) {
  const auto [width, height] = row.preview;
  const auto [map_w, map_h] = row.from_depth() ? row.depth : kMaps;
  const auto [work_w, work_h] = row.work;
  const auto [screen_w, screen_h] = row.output;
  const int off_screen = row.on_screen() ? 0 : 1;
  return {width,    height,   map_w,        map_h,      work_w,     work_h,
          screen_w, screen_h, row.portrait, off_screen, row.format, 0};
}

// The arguments of a frame call. An empty map is given as none.
struct Call {
  explicit Call(const FrameRow& frame) : row(frame) {
    const auto& [width, height] = row.preview;
    planes = {row.preview, PatternBytes(Pattern::kScene, width, height, 1),
              PatternBytes(Pattern::kScene, width, height / 2, 1)};
    focus_x = static_cast<uint32_t>(width / 2);
    focus_y = static_cast<uint32_t>(height / 2);
    weights = PatternBytes(Pattern::kRamp, row.work.width, row.work.height, 0);
    disparity = DisparityScene(row.depth.width, row.depth.height, 200, 700);
  }
  void Render() {
    const auto call = [&](auto function, auto& map) {
      return function(planes.luma.data(), planes.chroma.data(),
                      map.empty() ? nullptr : map.data(), focus_x, focus_y,
                      row.bypass, {}, row.f_number);
    };
    EXPECT_EQ(row.from_depth() ? call(zuQelRT_GLStartV1HWDepth, disparity)
                               : call(zuQelRT_GLStartV1, weights),
              ZUQEL_SUCCESS);
  }

  FrameRow row;
  Planes planes;
  std::vector<uint8_t> weights;
  std::vector<uint16_t> disparity;
  uint32_t focus_x, focus_y;
};

Image ReadTarget(size_t index, Size size = kMaps) {
  return ReadPixels(RunningRender().targets.framebuffer(index), size);
}

// Weights to erosion, erosion to dilation, dilation to blur.
void CheckWeightStages(const Call& call) {
  const FrameRow& row = call.row;
  Image depth = reference::FromDisparity(call.disparity, row.depth);
  depth.repeat = true;
  const DepthStatistics& taken = TheSession().frames.depth;
  const Point texel = {1.0 / row.work.width, 1.0 / row.work.height};
  const auto picked = [&](const Image& from, bool largest) {
    return Draw(kMaps, row.work, Turn::kUpright,
                [&](Point at) { return Pick3x3(from, at, texel, largest); });
  };
  const auto weights =
      DrawRange(kMaps, row.work, Turn::kUpright, [&](Point at) {
        return DepthWeight(Sample(depth, at),
                           {taken.focus, taken.min, taken.max});
      });
  const Image eroded = ReadTarget(kErodedWeights);
  const Image lowest = picked(weights.lowest, false);
  const Image highest = picked(weights.highest, false);
  EXPECT_TRUE(
      IsNear(eroded.rgba, Bounds{lowest.rgba, highest.rgba}, kRendered));
  const Image dilated = ReadTarget(kWeights);
  EXPECT_TRUE(IsNear(dilated.rgba, picked(eroded, true).rgba, kRounding));
  const Image blurred = SeparableBlur(
      dilated, row.work, reference::BlurScale(row.f_number), kMaps);
  EXPECT_TRUE(
      IsNear(ReadTarget(kBlurredWeights).rgba, blurred.rgba, kRendered));
}

// The picture of a frame. Compares the blurred image on the way.
Image ExpectedImage(const FrameRow& row, Size size, const Image& image,
                    const Image& weights) {
  const Turn level = row.on_screen() ? Turn::kFlipCrop : Turn::kUpright;
  const Turn turn = row.portrait != 0 ? Turn::kRotateCrop : level;
  const Image blurred =
      SeparableBlur(image, kVga, reference::BlurScale(row.f_number), kVga);
  if (row.bypass == 0) {
    EXPECT_TRUE(
        IsNear(ReadTarget(kBlurredImage, kVga).rgba, blurred.rgba, kRendered));
  }
  return Draw(size, size, turn, [&](Point at) {
    return row.bypass != 0 ? Sample(image, at)
                           : Composite(image, blurred, weights, at);
  });
}

// The 11 x 11 pixels around a point inside the image.
void AddDot(Planes& planes, uint32_t x, uint32_t y) {
  const auto width = static_cast<size_t>(planes.size.width);
  for (size_t i = 0; i < 121; ++i) {
    planes.luma[x + i % 11 - 5 + (y + i / 11 - 5) * width] = 255;
  }
}

class FrameTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    __android_log_set_minimum_priority(ANDROID_LOG_SILENT);
  }
};

// A slow driver takes every second one: the kinds alternate.
constexpr auto kRows = std::to_array<FrameRow>({
    {.name = "large", .preview = kFullHd, .depth = kVga},
    {.name = "large planes", .preview = kFullHd, .format = 2},
    {.name = "planes", .format = 2, .f_number = 2.8F, .portrait = 1},
    {.name = "NV21"},
    {.name = "by the caller", .format = 5},
    {.name = "packed", .format = 7, .portrait = 1},
    {.name = "depth", .f_number = 2.8F, .portrait = 1, .depth = kMaps},
    {.name = "planes, depth", .format = 2, .depth = kMaps},
    {.name = "packed, depth", .format = 7, .depth = kMaps},
    {.name = "by the caller, depth", .format = 5, .depth = kMaps},
    {.name = "no f-number", .f_number = NAN},
    // Smaller than the weights: what lies past an edge comes from the other.
    {.name = "coarse depth", .depth = {80, 61}},
    {.name = "small weights, depth", .depth = kMaps, .work = {160, 121}},
    {.name = "on screen", .preview = kLarge, .format = 2, .output = kLarge},
    {.name = "screen, turned", .format = 7, .portrait = 1, .output = kVga},
    {.name = "screen, depth", .format = 5, .depth = kMaps, .output = kVga},
    {.name = "bypass, turned", .portrait = 1, .output = kVga, .bypass = 1},
});

TEST_F(FrameTest, FramesAreThePlainResult) {
  const ScopedProperty dot("persist.zu.LVGLbokeh.FocusDot", "1");
  int turn = 0;
  for (const FrameRow& row : kRows) {
    if (!TakesTurn(turn++, 2)) continue;
    SCOPED_TRACE(row.name);
    const Size size = row.on_screen() ? row.output : row.preview;
    std::optional<CallerContext> caller;
    if (row.on_screen()) caller.emplace(size.width, size.height);
    const ScopedSession session(InfoOf(row));
    ASSERT_EQ(session.status(), ZUQEL_SUCCESS);
    Call call(row);
    Planes expected = call.planes;
    AddDot(expected, call.focus_x, call.focus_y);
    const auto packed = PatternBytes(Pattern::kNoise, row.preview.width * 4,
                                     row.preview.height, 5);
    const Buffer& given = RunningFrame().memory.packed_frame;
    if (given.exists()) std::copy(packed.begin(), packed.end(), given.bytes());
    call.Render();

    const Image image =
        row.on_screen() ? RgbImage(expected)
                        : PackedImage(expected, row.format, row.from_depth(),
                                      FromBytes(packed, row.preview, 4));
    const Image result = ExpectedImage(
        row, size, image,
        row.from_depth() ? ReadTarget(kBlurredWeights)
                         : reference::FromBytes(call.weights, row.work, 1));
    if (row.on_screen()) {
      EXPECT_TRUE(IsNear(ReadPixels(0, size).rgba, result.rgba, kRendered));
    } else {
      WriteBack(result, row.format, expected);
    }
    const Tolerance tolerance = row.on_screen() ? kExact : kRendered;
    EXPECT_TRUE(IsNear(call.planes.luma, expected.luma, tolerance, 1));
    EXPECT_TRUE(IsNear(call.planes.chroma, expected.chroma, tolerance, 1));
    if (row.from_depth()) CheckWeightStages(call);
    EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
  }
}

// Sharp everywhere, or bypassed: the planes come back as they were. In format 7
// only the first two of four chroma bytes are written.
constexpr auto kSharpRows = std::to_array<FrameRow>({
    {.name = "NV21"},
    {.name = "planes", .format = 2},
    {.name = "packed", .format = 7},
    {.name = "constant disparity", .depth = kMaps},
    {.name = "bypass", .bypass = 1},
    {.name = "bypass, depth", .depth = kMaps, .bypass = 1},
});

TEST_F(FrameTest, SharpAndBypassedFramesAreTheInput) {
  for (const FrameRow& row : kSharpRows) {
    SCOPED_TRACE(row.name);
    const ScopedSession session(InfoOf(row));
    Call call(row);
    const Planes before = call.planes;
    if (row.bypass == 0) {
      std::fill(call.weights.begin(), call.weights.end(), uint8_t{0});
      std::fill(call.disparity.begin(), call.disparity.end(), uint16_t{300});
    }
    call.Render();
    EXPECT_EQ(call.planes.luma, before.luma);
    EXPECT_EQ(call.planes.chroma, before.chroma);
  }
}

TEST_F(FrameTest, WithoutAMapTheOneBeforeStays) {
  for (const bool from_depth : {false, true}) {
    const FrameRow row = {.name = "", .depth = from_depth ? kMaps : Size{}};
    const ScopedSession session(InfoOf(row));
    Call first(row), second(row);
    const auto input = first.planes.luma;
    second.weights.clear();
    second.disparity.clear();
    second.focus_x = 0;
    first.Render();
    second.Render();
    EXPECT_NE(first.planes.luma, input) << from_depth;
    EXPECT_EQ(second.planes.luma, first.planes.luma) << from_depth;
    EXPECT_EQ(second.planes.chroma, first.planes.chroma) << from_depth;
  }
}

}  // namespace
}  // namespace zuqel
