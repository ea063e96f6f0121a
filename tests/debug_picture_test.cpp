// Debug pictures: loading them, and what lies over a frame.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <sstream>
#include <string>
#include <vector>

#include "compare.h"
#include "log_capture.h"
#include "test_frame.h"

namespace zuqel {
namespace {

using reference::Image;
using reference::Rgba;
using reference::Size;
using Bytes = std::vector<uint8_t>;
using Table = std::array<DebugPicture, kDebugPictureCount>;

constexpr Size kOutput = {64, 48};
// Sampled, rounded, and blended in eight bits.
constexpr Tolerance kBlended = {2, 1.0};
// All pictures' pixels: noise in all four channels.
const Bytes& AllNoise() {
  static const Bytes noise = PatternBytes(Pattern::kNoise, 4 * 64, 48, 3);
  return noise;
}

DebugPicture Picture(Size size, DrawRegion region, size_t first_pixel = 0) {
  return {&AllNoise()[4 * first_pixel],
          size.width,
          size.height,
          region.x,
          region.y,
          region.width,
          region.height};
}

// The frame in the output target.
Bytes Target() {
  return ReadPixels(
             TheSession().frame.render.targets.framebuffer(kOutputTarget),
             kOutput)
      .rgba;
}

// The target with the pictures drawn over it; row 0 is the lowest. Alpha is
// weighed like the colours.
Bytes DrawnOverTarget(const Table& table, bool blend) {
  Image image = reference::FromBytes(Target(), kOutput, 4);
  for (const DebugPicture& entry : table) {
    if (entry.pData == nullptr) continue;
    const Size size = {entry.iWidth, entry.iHeight};
    const Image picture =
        reference::FromBytes({entry.pData, 4 * size.area()}, size, 4);
    const int width = entry.iDrawWidth, height = std::max(entry.iDrawHeight, 1);
    for (int y = std::max(entry.iY, 0); y < std::min(entry.iY + height, 48);
         ++y) {
      for (int x = std::max(entry.iX, 0); x < std::min(entry.iX + width, 64);
           ++x) {
        const Rgba above = reference::Sample(
            picture,
            {(x - entry.iX + 0.5) / width, (y - entry.iY + 0.5) / height});
        const double share = blend ? above.a : 1;
        uint8_t* at = &image.rgba[4 * static_cast<size_t>(x + 64 * y)];
        for (const double value : {above.r, above.g, above.b, above.a}) {
          const double mixed = 255 * share * value + (1 - share) * *at;
          *at++ = static_cast<uint8_t>(std::lround(mixed));
        }
      }
    }
  }
  return image.rgba;
}

// A frame with the pictures shown or not; what the planes received.
TestFrame RenderFrame(bool show, bool blend) {
  EXPECT_EQ(zuQelRT_GLShowDebugPicture(show ? 1 : 0, blend ? -1 : 0), 0U);
  TestFrame frame;
  EXPECT_EQ(frame.Render(), ZUQEL_SUCCESS);
  return frame;
}

class DebugPictureTest : public testing::Test {
 protected:
  DebugPictureTest() { ResetSession(); }
  LogCapture log_;
  const CallerContext caller_{64, 48};
};

TEST_F(DebugPictureTest, EntriesInUseAreLoggedAndLoaded) {
  const ScopedSession session(SmallInfo());
  const DrawRegion all = {0, 0, 64, 48};
  Table table = {Picture({6, 5}, all)};
  ASSERT_EQ(zuQelRT_GLSetDebugPicture(table.data()), ZUQEL_SUCCESS);
  const Bytes shown = RenderFrame(true, false).luma;
  const Bytes plain = RenderFrame(false, false).luma;
  table[9] = Picture({2, 1}, {}, 1);
  std::ostringstream line;
  line << "i = 9, picture[i].pData = 0x" << std::hex
       << static_cast<uint32_t>(reinterpret_cast<uintptr_t>(table[9].pData))
       << " , picture[i].pData = 2, picture[i].iHeight = 1";
  Table& loaded = TheSession().frame.debug_pictures.table;
  for (const DebugPicture& unused :
       {Picture({0, 5}, all, 7), Picture({6, 0}, all, 7),
        DebugPicture{nullptr, 6, 5, 0, 0, 64, 48}}) {
    table[0] = unused;
    log_.Take();
    EXPECT_EQ(zuQelRT_GLSetDebugPicture(table.data()), ZUQEL_SUCCESS);
    EXPECT_EQ(log_.Take(), Lines{line.str()});
    EXPECT_EQ(RenderFrame(true, false).luma, plain);
    loaded = {Picture({6, 5}, all)};
    EXPECT_EQ(RenderFrame(true, false).luma, shown) << "keeps its texture";
  }
  EXPECT_EQ(zuQelRT_GLSetDebugPicture(nullptr), ZUQEL_NULL_POINTER);
  EXPECT_EQ(loaded[0].pData, AllNoise().data()) << "as it was";
  log_.Take();
  EXPECT_EQ(zuQelRT_GLShowDebugPicture(-7, 2), ZUQEL_SUCCESS);
  EXPECT_EQ(log_.Take(), (Lines{"isShow = -7, isBlending = 2"}));
}

TEST_F(DebugPictureTest, LieOverTheFrame) {
  const std::vector<Table> tables = {
      {Picture({8, 8}, {0, 0, 30, 30}), Picture({8, 8}, {9, 10, 30, 30}, 99),
       Picture({8, 8}, {20, 5, 10, 40}, 200)},
      {{{}, Picture({7, 4}, {5, 6, 20, 0})}},  // one pixel high
      {Picture({9, 9}, {5, 6, -1, 20}), Picture({9, 9}, {5, 6, 9, -9})},
      {Picture({9, 9}, {-5, -6, 20, 20}), Picture({40, 30}, {50, 40, 30, 30})},
      {}};
  for (size_t i = 0; i < tables.size(); ++i) {
    glDisable(GL_BLEND);
    const ScopedSession session(SmallInfo());
    Table table = tables[i];
    ASSERT_EQ(zuQelRT_GLSetDebugPicture(table.data()), 0U);
    table = {};           // has been copied
    bool blends = false;  // once on, it stays on
    for (const bool blend : {false, true, false}) {
      SCOPED_TRACE(testing::Message() << "table " << i << ", blend " << blend);
      RenderFrame(false, blend);
      EXPECT_EQ(glIsEnabled(GL_BLEND) == GL_TRUE, blends);
      blends = blends || (blend && i + 1 < tables.size());
      const Bytes expected = DrawnOverTarget(tables[i], blends);
      const TestFrame frame = RenderFrame(true, blend);
      EXPECT_EQ(glIsEnabled(GL_BLEND) == GL_TRUE, blends);
      const Bytes target = Target();
      EXPECT_TRUE(IsNear(target, expected, blends ? kBlended : kRounding));
      for (size_t pixel = 0; pixel < frame.luma.size(); ++pixel) {
        ASSERT_EQ(frame.luma[pixel], target[4 * pixel]) << pixel;
      }
    }
  }
}

TEST_F(DebugPictureTest, OnScreenTheyAreReadFromTheOutputTarget) {
  const ScopedSession session(SmallInfo(0));
  const Table table = {Picture({6, 5}, {4, 3, 30, 40})};
  ASSERT_EQ(zuQelRT_GLSetDebugPicture(table.data()), 0U);
  const Buffer& buffer = TheSession().buffers[BufferRole::kReadBack];
  const auto read = [&] {
    return Bytes(buffer.bytes(), buffer.bytes() + buffer.size());
  };
  const Bytes expected = DrawnOverTarget(table, false);
  RenderFrame(false, false);
  const Bytes screen = read();
  EXPECT_EQ(ReadPixels(0, kOutput).rgba, screen);
  RenderFrame(true, false);
  GLint bound = 0;
  glGetIntegerv(GL_FRAMEBUFFER_BINDING, &bound);
  EXPECT_EQ(static_cast<GLuint>(bound),
            TheSession().frame.render.targets.framebuffer(kOutputTarget));
  EXPECT_TRUE(IsNear(read(), expected, kRounding));
  EXPECT_EQ(ReadPixels(0, kOutput).rgba, screen);
}

TEST_F(DebugPictureTest, AreHarmlessWhateverTheCall) {
  constexpr int32_t kMax = INT32_MAX, kMin = INT32_MIN;
  const DrawRegion region = {0, 0, 9, 9};
  // Sizes that GL refuses before it reads a pixel, and regions anywhere.
  const Table hostile = {Picture({-6, 5}, region),
                         Picture({6, kMin}, region),
                         Picture({kMax, 1}, region),
                         Picture({1, 100000000}, region),
                         Picture({6, 5}, {kMin, kMax, 9, 9}),
                         Picture({6, 5}, {0, 0, kMin, 9}),
                         Picture({6, 5}, {kMax, kMax, kMax, kMax})};
  const Table usual = {Picture({6, 5}, {0, 0, 30, 40})};
  for (int i = 0; i < 2; ++i) {
    // Before initialisation, then after close.
    EXPECT_EQ(zuQelRT_GLSetDebugPicture(usual.data()), ZUQEL_SUCCESS);
    const ScopedSession session(SmallInfo());
    RenderFrame(true, true);  // nothing loaded in this session
    EXPECT_EQ(zuQelRT_GLSetDebugPicture(hostile.data()), ZUQEL_SUCCESS);
    RenderFrame(true, true);
    while (glGetError() != GL_NO_ERROR) {
    }
    // The overlay is whole again.
    EXPECT_EQ(zuQelRT_GLSetDebugPicture(usual.data()), ZUQEL_SUCCESS);
    RenderFrame(false, true);
    const Bytes expected = DrawnOverTarget(usual, true);
    RenderFrame(true, true);
    EXPECT_TRUE(IsNear(Target(), expected, kBlended));
  }
}

}  // namespace
}  // namespace zuqel
