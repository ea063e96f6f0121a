// Whole frames through the C interface against plain arithmetic. Where weights
// come from disparity, each stage is fed with the one that the GPU made before
// it, so that a weight on either side of a threshold is not counted twice.
#include <android/log.h>
#include <gtest/gtest.h>
#include <sys/system_properties.h>

#include <array>
#include <limits>
#include <optional>

#include "compare.h"
#include "read_pixels.h"
#include "reference_render.h"
#include "test_scene.h"
#include "test_session.h"

namespace zuqel {
namespace {

using reference::Image;
using reference::Planes;
using reference::Point;
using reference::Size;
using reference::Turn;

constexpr FocusRect kNoRect = {};
constexpr Size kSmall = {322, 182};
constexpr Size kMaps = {320, 240};
constexpr Size kLarge = {1280, 960};

struct FrameRow {
  const char* name;
  Size preview = kSmall;
  int format = 0;
  float f_number = 1;
  bool from_depth = false;
  bool portrait = false;
  Size depth = kMaps;
  Size work = kMaps;
  // On screen only.
  Size output = {};
  bool bypass = false;
};

GLInitInfo InfoOf(const FrameRow& row) {
  return {.PreviewWidth = row.preview.width,
          .PreviewHeight = row.preview.height,
          .DepthWidth = row.depth.width,
          .DepthHeight = row.depth.height,
          .WorkWidth = row.work.width,
          .WorkHeight = row.work.height,
          .OutputWidth = row.output.width,
          .OutputHeight = row.output.height,
          .PortraitMode = row.portrait ? 1 : 0,
          .offmode = row.output.width == 0 ? 1 : 0,
          .srcformat = row.format,
          .GraphicBufferFlag = 0};
}

// Hard edges and, in the lower half, noise.
Planes Scene(Size size, uint32_t seed = 1) {
  const auto half = [&](int rows) {
    auto bytes = PatternBytes(Pattern::kBlocks, size.width, rows / 2, seed);
    const auto noise =
        PatternBytes(Pattern::kNoise, size.width, rows - rows / 2, seed);
    bytes.insert(bytes.end(), noise.begin(), noise.end());
    return bytes;
  };
  return {size, half(size.height), half(size.height / 2)};
}

// A row's maps and where it is in focus.
struct Maps {
  explicit Maps(const FrameRow& row)
      : weights(
            PatternBytes(Pattern::kRamp, row.work.width, row.work.height, 0)),
        disparity(DisparityScene(row.depth.width, row.depth.height, 200, 700)),
        focus_x(static_cast<uint32_t>(row.preview.width / 2)),
        focus_y(static_cast<uint32_t>(row.preview.height / 2)) {}

  std::vector<uint8_t> weights;
  std::vector<uint16_t> disparity;
  uint32_t focus_x, focus_y;
};

uint32_t Render(const FrameRow& row, Planes& planes, Maps& maps) {
  const auto call = [&](auto function, auto* map) {
    return function(planes.luma.data(), planes.chroma.data(), map, maps.focus_x,
                    maps.focus_y, row.bypass ? 1 : 0, kNoRect, row.f_number);
  };
  return row.from_depth
             ? call(zuQelRT_GLStartV1HWDepth,
                    maps.disparity.empty() ? nullptr : maps.disparity.data())
             : call(zuQelRT_GLStartV1,
                    maps.weights.empty() ? nullptr : maps.weights.data());
}

std::vector<uint8_t> ReadTarget(size_t index, Size size) {
  return ReadPixels(TheSession().frame.render.targets.framebuffer(index), size);
}

// Weights to erosion, erosion to dilation, dilation to blur.
void CheckWeightStages(const FrameRow& row, const Maps& maps) {
  std::vector<uint8_t> packed;
  for (const uint16_t d : maps.disparity) {
    packed.insert(packed.end(), {static_cast<uint8_t>(d & 255),
                                 static_cast<uint8_t>(d >> 8), 0, 0});
  }
  const Image depth = reference::FromBytes(packed, row.depth, 4);
  const DepthStatistics& taken = TheSession().frame.depth_statistics;
  const reference::DepthRange range = {static_cast<float>(taken.focus),
                                       static_cast<float>(taken.min),
                                       static_cast<float>(taken.max)};
  const Point texel = {1.0 / row.work.width, 1.0 / row.work.height};
  Image weights(kMaps), eroded(kMaps), dilated(kMaps);
  Draw(weights, row.work, Turn::kUpright, [&](Point at) {
    const auto sample = Sample(
        {&depth, reference::Filter::kLinear, reference::Wrap::kRepeat}, at);
    return reference::Rgba{DepthWeight(sample, range) / 255, 0, 0, 1};
  });
  Draw(eroded, row.work, Turn::kUpright,
       [&](Point at) { return Pick3x3({&weights}, at, texel, false); });
  const auto gpu_eroded = ReadTarget(kErodedWeights, kMaps);
  EXPECT_TRUE(
      IsNear("eroded", gpu_eroded, ToBytes(eroded), kMaps.width, 4, kRendered));

  const Image dilated_from = reference::FromBytes(gpu_eroded, kMaps, 4);
  Draw(dilated, row.work, Turn::kUpright,
       [&](Point at) { return Pick3x3({&dilated_from}, at, texel, true); });
  const auto gpu_dilated = ReadTarget(kWeights, kMaps);
  EXPECT_TRUE(IsNear("dilated", gpu_dilated, ToBytes(dilated), kMaps.width, 4,
                     kRounding));

  const Image blurred_from = reference::FromBytes(gpu_dilated, kMaps, 4);
  EXPECT_TRUE(IsNear("blurred", ReadTarget(kBlurredWeights, kMaps),
                     ToBytes(reference::SeparableBlur(
                         {&blurred_from}, row.work,
                         reference::BlurScale(row.f_number), kMaps)),
                     kMaps.width, 4, kRendered));
}

Image WeightImage(const FrameRow& row, const Maps& maps) {
  if (!row.from_depth) return reference::FromBytes(maps.weights, row.work, 1);
  return reference::FromBytes(ReadTarget(kBlurredWeights, kMaps), kMaps, 4);
}

Image ExpectedImage(const FrameRow& row, const Image& image,
                    const Image& weights) {
  const bool on_screen = row.output.width != 0;
  const Size size = on_screen ? row.output : row.preview;
  const Turn unturned = on_screen ? Turn::kFlipCrop : Turn::kUpright;
  const Turn turn = row.portrait ? Turn::kRotateCrop : unturned;
  Image expected(size);
  if (row.bypass) {
    Draw(expected, size, turn, [&](Point at) { return Sample({&image}, at); });
    return expected;
  }
  const Image blurred = reference::SeparableBlur(
      {&image}, {640, 480}, reference::BlurScale(row.f_number), {640, 480});
  Draw(expected, size, turn, [&](Point at) {
    return Composite({&image}, {&blurred}, {&weights}, at);
  });
  return expected;
}

class FrameTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    __android_log_set_minimum_priority(ANDROID_LOG_SILENT);
  }
  void TearDown() override {
    __system_property_set("persist.zu.LVGLbokeh.FocusDot", "0");
  }
};

constexpr float kNoNumber = std::numeric_limits<float>::quiet_NaN();

constexpr auto kOffScreenRows = std::to_array<FrameRow>({
    {.name = "NV21", .preview = kLarge},
    {.name = "NV21, small"},
    {.name = "three planes", .format = 2},
    {.name = "packed", .format = 7},
    {.name = "packed, whole blocks", .preview = {320, 184}, .format = 7},
    {.name = "packed by the caller", .format = 5},
    {.name = "small weights", .f_number = 2.8F, .work = {160, 121}},
    {.name = "portrait", .format = 2, .f_number = 2.8F, .portrait = true},
    {.name = "packed, portrait", .format = 7, .portrait = true},
    {.name = "f/10", .f_number = 10},
    {.name = "f/12 is f/10", .f_number = 12},
    {.name = "f/0.5 is f/1", .f_number = 0.5F},
    {.name = "no f-number", .f_number = kNoNumber},
    {.name = "large, from depth",
     .preview = {1920, 1080},
     .from_depth = true,
     .depth = {640, 480}},
    {.name = "from depth", .f_number = 2.8F, .from_depth = true},
    {.name = "planes from depth", .format = 2, .from_depth = true},
    {.name = "packed from depth", .format = 7, .from_depth = true},
    {.name = "packed by the caller, from depth",
     .format = 5,
     .from_depth = true,
     .depth = {640, 480}},
    // Smaller than the weights: what lies past an edge comes from the other.
    {.name = "coarse depth", .from_depth = true, .depth = {80, 61}},
    {.name = "portrait from depth", .from_depth = true, .portrait = true},
    {.name = "small weights from depth",
     .from_depth = true,
     .work = {160, 121}},
});

TEST_F(FrameTest, OffScreenFramesGoBackIntoThePlanes) {
  for (const FrameRow& row : kOffScreenRows) {
    SCOPED_TRACE(row.name);
    std::printf("-- %s\n", row.name);
    const ScopedSession session(InfoOf(row));
    ASSERT_EQ(session.status(), ZUQEL_SUCCESS);
    Planes planes = Scene(row.preview);
    Maps maps(row);
    const auto packed = PatternBytes(Pattern::kNoise, row.preview.width * 4,
                                     row.preview.height, 5);
    const Buffer& session_packed =
        TheSession().buffers[BufferRole::kPackedFrame];
    std::copy(packed.begin(), packed.end(), session_packed.bytes());

    const Image image =
        PackedImage(planes, row.format, row.from_depth,
                    reference::FromBytes(packed, row.preview, 4));
    Planes expected = planes;
    ASSERT_EQ(Render(row, planes, maps), ZUQEL_SUCCESS);
    WriteBack(ExpectedImage(row, image, WeightImage(row, maps)), row.format,
              expected);
    EXPECT_TRUE(IsNear("luma", planes.luma, expected.luma, row.preview.width, 1,
                       kRendered));
    EXPECT_TRUE(IsNear("chroma", planes.chroma, expected.chroma,
                       row.preview.width, 1, kRendered));
    if (row.from_depth) CheckWeightStages(row, maps);
    EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
  }
}

constexpr auto kOnScreenRows = std::to_array<FrameRow>({
    {.name = "preview", .preview = kLarge, .output = kLarge},
    {.name = "portrait",
     .preview = kLarge,
     .portrait = true,
     .output = {640, 480}},
    {.name = "reduced, from depth",
     .preview = kLarge,
     .f_number = 2.8F,
     .from_depth = true,
     .output = {640, 480}},
    {.name = "bypass", .preview = kLarge, .output = {640, 480}, .bypass = true},
    {.name = "bypass, portrait",
     .preview = kLarge,
     .portrait = true,
     .output = {640, 480},
     .bypass = true},
    {.name = "a corner of the conversion", .output = kSmall},
});

// The 11 x 11 pixels around a point; outside the buffer nothing.
void AddDot(Planes& planes, int64_t x, int64_t y) {
  for (int64_t i = 0; i < 121; ++i) {
    const int64_t index = x + i % 11 - 5 + (y + i / 11 - 5) * planes.size.width;
    if (index >= 0 && index < static_cast<int64_t>(planes.luma.size())) {
      planes.luma[static_cast<size_t>(index)] = 255;
    }
  }
}

TEST_F(FrameTest, OnScreenFramesGoToTheCallersFramebuffer) {
  __system_property_set("persist.zu.LVGLbokeh.FocusDot", "1");
  for (const FrameRow& row : kOnScreenRows) {
    SCOPED_TRACE(row.name);
    std::printf("-- %s\n", row.name);
    const CallerContext context(row.output.width, row.output.height);
    ASSERT_TRUE(context.is_current());
    const ScopedSession session(InfoOf(row));
    ASSERT_EQ(session.status(), ZUQEL_SUCCESS);
    Planes planes = Scene(row.preview);
    Maps maps(row);
    Planes with_dot = planes;
    AddDot(with_dot, maps.focus_x, maps.focus_y);
    ASSERT_EQ(Render(row, planes, maps), ZUQEL_SUCCESS);

    EXPECT_EQ(planes.luma, with_dot.luma);
    EXPECT_EQ(planes.chroma, with_dot.chroma);
    GLint bound = -1;
    glGetIntegerv(GL_FRAMEBUFFER_BINDING, &bound);
    EXPECT_EQ(bound, 0);
    const auto pixels = ReadPixels(0, row.output);
    EXPECT_TRUE(IsNear(
        "pixels", pixels,
        ToBytes(ExpectedImage(row, RgbImage(with_dot), WeightImage(row, maps))),
        row.output.width, 4, kRendered));
    EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
  }
}

// Sharp everywhere: the planes come back as they were. In format 7 only the
// first two of four chroma bytes are written. Where a width is odd, chroma
// positions of neighbouring rows overlap, so only the luma is looked at.
constexpr auto kSharpRows = std::to_array<FrameRow>({
    {.name = "NV21", .preview = kLarge},
    {.name = "NV21, small"},
    {.name = "three planes", .format = 2},
    {.name = "packed", .format = 7},
    {.name = "constant disparity", .from_depth = true},
    {.name = "odd NV21", .preview = {33, 35}},
    {.name = "odd planes", .preview = {33, 35}, .format = 2},
    {.name = "odd packed", .preview = {33, 35}, .format = 7},
    {.name = "odd, constant disparity",
     .preview = {33, 35},
     .from_depth = true},
});

TEST_F(FrameTest, SharpFramesAreTheInput) {
  for (const FrameRow& row : kSharpRows) {
    SCOPED_TRACE(row.name);
    const ScopedSession session(InfoOf(row));
    Planes planes = Scene(row.preview);
    const Planes before = planes;
    Maps maps(row);
    maps.weights.assign(maps.weights.size(), 0);
    maps.disparity.assign(maps.disparity.size(), 300);
    ASSERT_EQ(Render(row, planes, maps), ZUQEL_SUCCESS);
    EXPECT_EQ(planes.luma, before.luma);
    if (row.preview.width % 2 != 0) continue;
    EXPECT_EQ(planes.chroma, before.chroma);
  }
}

TEST_F(FrameTest, AnUnfilledPackedFrameIsBlack) {
  const FrameRow row = {.name = "", .format = 5};
  const ScopedSession session(InfoOf(row));
  Planes planes = Scene(row.preview);
  Maps maps(row);
  ASSERT_EQ(Render(row, planes, maps), ZUQEL_SUCCESS);
  EXPECT_EQ(planes.luma, std::vector<uint8_t>(planes.luma.size()));
  EXPECT_EQ(planes.chroma, std::vector<uint8_t>(planes.chroma.size()));
}

TEST_F(FrameTest, WithoutAMapTheOneBeforeStays) {
  for (const bool from_depth : {false, true}) {
    const FrameRow row = {.name = "", .from_depth = from_depth};
    const ScopedSession session(InfoOf(row));
    const Planes input = Scene(row.preview, 2);
    Planes with_map = input;
    Planes without = input;
    Maps maps(row);
    Maps none = maps;
    none.weights.clear();
    none.disparity.clear();
    none.focus_x = 0;
    ASSERT_EQ(Render(row, with_map, maps), ZUQEL_SUCCESS);
    ASSERT_EQ(Render(row, without, none), ZUQEL_SUCCESS);
    EXPECT_NE(with_map.luma, input.luma) << from_depth;
    EXPECT_EQ(without.luma, with_map.luma) << from_depth;
    EXPECT_EQ(without.chroma, with_map.chroma) << from_depth;
  }
}

TEST_F(FrameTest, OffScreenBypassLeavesThePlanes) {
  for (const bool from_depth : {false, true}) {
    const FrameRow row = {.name = "", .from_depth = from_depth, .bypass = true};
    const ScopedSession session(InfoOf(row));
    Planes planes = Scene(row.preview);
    Maps maps(row);
    EXPECT_EQ(Render(row, planes, maps), ZUQEL_SUCCESS);
    EXPECT_EQ(planes.luma, Scene(row.preview).luma);
    EXPECT_EQ(planes.chroma, Scene(row.preview).chroma);
  }
}

struct DotRow {
  const char* name;
  FocusRect rect;
  uint32_t focus_x, focus_y;
  int64_t dot_x, dot_y;
};

constexpr auto kDotRows = std::to_array<DotRow>({
    {"31 wide", {100, 50, 131, 100}, 200, 90, 200, 90},
    {"31 high", {100, 50, 150, 81}, 200, 90, 200, 90},
    {"32 x 32", {100, 50, 132, 82}, 200, 90, 116, 66},
    {"odd sides", {100, 50, 133, 85}, 200, 90, 116, 67},
    {"touches the right", {280, 50, 322, 100}, 200, 90, 200, 90},
    {"touches the bottom", {100, 140, 150, 182}, 200, 90, 200, 90},
    {"touches left and top", {0, 0, 40, 40}, 200, 90, 20, 20},
    {"one inside right and bottom", {281, 141, 321, 181}, 200, 90, 301, 161},
    {"left of the image", {-1, 50, 60, 100}, 200, 90, 200, 90},
    {"above the image", {100, -1, 150, 60}, 200, 90, 200, 90},
    {"turned round", {150, 100, 100, 50}, 200, 90, 200, 90},
    {"top left corner", {}, 0, 0, 0, 0},
    {"top right corner", {}, 321, 0, 321, 0},
    {"bottom left corner", {}, 0, 181, 0, 181},
    {"bottom right corner", {}, 321, 181, 321, 181},
    {"far away", {}, 100000, 2000000000, 100000, 2000000000},
});

TEST_F(FrameTest, TheDotStandsAtTheCentreOfFocus) {
  __system_property_set("persist.zu.LVGLbokeh.FocusDot", "1");
  const FrameRow row = {.name = ""};
  const ScopedSession session(InfoOf(row));
  const std::vector<uint8_t> sharp(row.work.area());
  for (const DotRow& dot : kDotRows) {
    Planes planes = {row.preview, std::vector<uint8_t>(row.preview.area(), 90),
                     std::vector<uint8_t>(row.preview.area() / 2, 128)};
    Planes expected = planes;
    AddDot(expected, dot.dot_x, dot.dot_y);
    zuQelRT_GLStartV1(planes.luma.data(), planes.chroma.data(), sharp.data(),
                      dot.focus_x, dot.focus_y, 0, dot.rect, 1);
    EXPECT_EQ(planes.luma, expected.luma) << dot.name;
  }
}

struct FocusRow {
  uint32_t x, y;
  size_t index;  // into the map of 320 x 240
};

// Past the last column lies the next row; past the map the disparity is 0.
constexpr auto kFocusRows = std::to_array<FocusRow>({
    {0, 0, 0},
    {161, 91, 160 + 120 * 320},
    {321, 181, 319 + 238 * 320},
    {322, 0, 320},
    {322, 182, SIZE_MAX},
    {0xFFFFFFFF, 0xFFFFFFFF, SIZE_MAX},
});

TEST_F(FrameTest, FocusDisparityIsTheRawOneUnderThePoint) {
  const FrameRow row = {.name = "", .from_depth = true};
  const ScopedSession session(InfoOf(row));
  for (const FocusRow& focus : kFocusRows) {
    Planes planes = Scene(row.preview);
    Maps maps(row);
    maps.focus_x = focus.x;
    maps.focus_y = focus.y;
    if (focus.index < maps.disparity.size()) {
      maps.disparity[focus.index] = 1023;  // not the value it is filled with
    }
    ASSERT_EQ(Render(row, planes, maps), ZUQEL_SUCCESS);
    EXPECT_EQ(TheSession().frame.depth_statistics.focus,
              focus.index < maps.disparity.size() ? 1023 : 0)
        << focus.x << ", " << focus.y;
  }
}

}  // namespace
}  // namespace zuqel
