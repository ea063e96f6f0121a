// Debug pictures: loading them, and what lies over a frame.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "caller_frame.h"
#include "compare.h"
#include "driver_turns.h"
#include "test_session.h"

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
  return ReadPixels(RunningRender().targets.framebuffer(kOutputTarget), kOutput)
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

// A frame with the pictures shown or not; the luma that it gives.
Bytes RenderFrame(bool show, bool blend) {
  EXPECT_EQ(zuQelRT_GLShowDebugPicture(show ? 1 : 0, blend ? -1 : 0), 0U);
  TestFrame frame;
  EXPECT_EQ(frame.Render(), ZUQEL_SUCCESS);
  return frame.luma;
}

class DebugPictureTest : public testing::Test {
 protected:
  DebugPictureTest() { ResetSession(); }
  const CallerContext caller_{64, 48};
};

TEST_F(DebugPictureTest, OnlyEntriesInUseAreDrawn) {
  const ScopedSession session(SmallPreviewInfo());
  const DrawRegion all = {0, 0, 64, 48};
  const Bytes plain = RenderFrame(false, false);
  const Table used = {Picture({6, 5}, all)};
  EXPECT_EQ(zuQelRT_GLSetDebugPicture(used.data()), ZUQEL_SUCCESS);
  EXPECT_EQ(zuQelRT_GLSetDebugPicture(nullptr), ZUQEL_NULL_POINTER);
  EXPECT_NE(RenderFrame(true, false), plain) << "as it was";
  const Table unused = {Picture({0, 5}, all), Picture({6, 0}, all)};
  EXPECT_EQ(zuQelRT_GLSetDebugPicture(unused.data()), ZUQEL_SUCCESS);
  EXPECT_EQ(RenderFrame(true, false), plain);
}

TEST_F(DebugPictureTest, LieOverTheFrame) {
  const std::vector<Table> tables = {
      {Picture({8, 8}, {0, 0, 30, 30}), Picture({8, 8}, {9, 10, 30, 30}, 99),
       Picture({8, 8}, {20, 5, 10, 40}, 200)},
      {{{}, Picture({7, 4}, {5, 6, 20, 0})}},  // one pixel high
      {Picture({9, 9}, {-5, -6, 20, 20}), Picture({40, 30}, {50, 40, 30, 30})},
      {}};
  for (size_t i = 0; i < tables.size(); ++i) {
    glDisable(GL_BLEND);
    const ScopedSession session(SmallPreviewInfo());
    Table table = tables[i];
    ASSERT_EQ(zuQelRT_GLSetDebugPicture(table.data()), 0U);
    table = {};           // has been copied
    bool blends = false;  // once on, it stays on
    auto turn = static_cast<int>(i);
    for (const bool blend : {false, true, false}) {
      if (!TakesTurn(turn++, 2)) continue;
      SCOPED_TRACE(testing::Message() << "table " << i << ", blend " << blend);
      RenderFrame(false, blend);
      EXPECT_EQ(glIsEnabled(GL_BLEND) == GL_TRUE, blends);
      blends = blends || (blend && i + 1 < tables.size());
      const Bytes expected = DrawnOverTarget(tables[i], blends);
      RenderFrame(true, blend);
      EXPECT_EQ(glIsEnabled(GL_BLEND) == GL_TRUE, blends);
      EXPECT_TRUE(IsNear(Target(), expected, blends ? kBlended : kRounding));
    }
  }
}

TEST_F(DebugPictureTest, OnScreenTheyAreReadFromTheOutputTarget) {
  const ScopedSession session(SmallPreviewInfo(0));
  const Table table = {Picture({6, 5}, {4, 3, 30, 40})};
  ASSERT_EQ(zuQelRT_GLSetDebugPicture(table.data()), 0U);
  const Bytes expected = DrawnOverTarget(table, false);
  RenderFrame(true, false);
  const Buffer& buffer = RunningFrame().memory.read_back;
  const Bytes read(buffer.bytes(), buffer.bytes() + buffer.size());
  EXPECT_TRUE(IsNear(read, expected, kRounding));
}

}  // namespace
}  // namespace zuqel
