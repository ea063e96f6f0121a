// Debug pictures: loading them, and what lies over a frame.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "compare.h"
#include "log_capture.h"
#include "read_pixels.h"
#include "test_frame.h"
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

GLInitInfo Info(int32_t off_screen = 1) {
  GLInitInfo info = DefaultInfo();
  info.PreviewWidth = kOutput.width;
  info.PreviewHeight = kOutput.height;
  info.OutputWidth = kOutput.width;
  info.OutputHeight = kOutput.height;
  info.offmode = off_screen;
  return info;
}

// Noise in all four channels, alpha included.
Bytes Pixels(Size size, uint32_t seed) {
  return PatternBytes(Pattern::kNoise, 4 * size.width, size.height, seed);
}

Bytes Target() {
  return ReadPixels(
      TheSession().frame.render.targets.framebuffer(kOutputTarget), kOutput);
}

struct Placed {
  size_t entry;
  Size size;  // of the picture
  DrawRegion region;
};

// Pictures of their own pixels, in the table.
struct Pictures {
  explicit Pictures(const std::vector<Placed>& all) : placed(all) {
    for (const Placed& one : placed) {
      pixels.push_back(Pixels(one.size, static_cast<uint32_t>(one.entry) + 3));
      table.at(one.entry) = {pixels.back().data(), one.size.width,
                             one.size.height,      one.region.x,
                             one.region.y,         one.region.width,
                             one.region.height};
    }
  }

  // Draws them into an image whose row 0 is the lowest.
  void DrawOver(Image& image, bool blend) const {
    for (size_t i = 0; i < placed.size(); ++i) {
      DrawRegion region = placed[i].region;
      region.height = std::max(region.height, 1);
      const Image picture = reference::FromBytes(pixels[i], placed[i].size, 4);
      for (int v = 0; v < region.height; ++v) {
        for (int u = 0; u < region.width; ++u) {
          const int x = region.x + u, y = region.y + v;
          if (x < 0 || y < 0 || x >= image.size.width || y >= image.size.height)
            continue;
          const Rgba source = reference::Sample(
              {&picture},
              {(u + 0.5) / region.width, (v + 0.5) / region.height});
          image.at(x, y) = reference::Quantised(
              blend ? Mix(image.at(x, y), source) : source);
        }
      }
    }
  }

  std::vector<Placed> placed;  // by entry
  std::vector<Bytes> pixels;
  Table table = {};

 private:
  // Alpha is weighed like the colours.
  static Rgba Mix(Rgba below, Rgba above) {
    const float a = above.a, b = 1 - above.a;
    return {a * above.r + b * below.r, a * above.g + b * below.g,
            a * above.b + b * below.b, a * above.a + b * below.a};
  }
};

class DebugPictureTest : public testing::Test {
 protected:
  DebugPictureTest() { ResetSession(); }

  // A frame with the pictures shown or not; what the planes received.
  static TestFrame RenderFrame(bool show, bool blend, const GLInitInfo& info) {
    EXPECT_EQ(zuQelRT_GLShowDebugPicture(show ? 1 : 0, blend ? -1 : 0),
              ZUQEL_SUCCESS);
    TestFrame frame(info);
    EXPECT_EQ(frame.Render(), ZUQEL_SUCCESS);
    return frame;
  }

  LogCapture log_;
  DebugPictures& pictures_ = TheSession().frame.debug_pictures;
};

TEST_F(DebugPictureTest, LogsWhatItLoads) {
  const ScopedSession session(Info());
  const Bytes pixels = Pixels({5, 3}, 1);
  const uint8_t* data = pixels.data();
  Table table = {};
  table[0] = {data, 5, 3, 1, 2, 3, 4};
  table[1] = {nullptr, 5, 3, 0, 0, 9, 9};
  table[2] = {data, 0, 3, 0, 0, 9, 9};
  table[3] = {data, 5, 0, 0, 0, 9, 9};
  table[9] = {data + 4, 2, 1, 0, 0, 9, 9};
  const auto line = [](int i, const uint8_t* pointer, int width, int height) {
    std::array<char, 128> text = {};
    static_cast<void>(std::snprintf(
        text.data(), text.size(),
        "i = %d, picture[i].pData = 0x%x , picture[i].pData = %d, "
        "picture[i].iHeight = %d",
        i, static_cast<unsigned>(reinterpret_cast<uintptr_t>(pointer)), width,
        height));
    return std::string(text.data());
  };
  log_.Take();
  EXPECT_EQ(zuQelRT_GLSetDebugPicture(table.data()), ZUQEL_SUCCESS);
  EXPECT_EQ(log_.Take(), (Lines{line(0, data, 5, 3), line(9, data + 4, 2, 1)}));
  EXPECT_EQ(zuQelRT_GLSetDebugPicture(nullptr), ZUQEL_NULL_POINTER);
  EXPECT_EQ(zuQelRT_GLShowDebugPicture(-7, 2), ZUQEL_SUCCESS);
  EXPECT_EQ(log_.Take(), (Lines{"isShow = -7, isBlending = 2"}));
  EXPECT_EQ(pictures_.table[0].pData, data) << "as it was";
}

struct OverlayRow {
  const char* name;
  std::vector<Placed> pictures;
};

std::vector<OverlayRow> OverlayRows() {
  return {
      {"one to one", {{0, {6, 5}, {10, 20, 6, 5}}}},
      {"stretched", {{4, {3, 2}, {1, 2, 50, 41}}}},
      {"shrunk", {{9, {40, 30}, {7, 9, 13, 11}}}},
      {"later over earlier",
       {{0, {8, 8}, {0, 0, 30, 30}},
        {3, {8, 8}, {10, 10, 30, 30}},
        {9, {8, 8}, {20, 5, 10, 40}}}},
      {"height 0 is one pixel", {{2, {7, 4}, {5, 6, 20, 0}}}},
      {"width 0 is nothing", {{2, {7, 4}, {5, 6, 0, 20}}}},
      {"negative is 0",
       {{2, {7, 4}, {5, 6, -1, 20}}, {3, {7, 4}, {5, 6, 9, -9}}}},
      {"across the edges",
       {{1, {9, 9}, {-5, -6, 20, 20}}, {2, {9, 9}, {50, 40, 30, 30}}}},
      {"everywhere", {{7, {2, 2}, {0, 0, 64, 48}}}},
      {"none", {}},
  };
}

TEST_F(DebugPictureTest, LieOverTheFrame) {
  for (const OverlayRow& row : OverlayRows()) {
    for (const bool blend : {false, true}) {
      SCOPED_TRACE(testing::Message() << row.name << ", blend " << blend);
      const ScopedSession session(Info());
      Pictures pictures(row.pictures);
      ASSERT_EQ(zuQelRT_GLSetDebugPicture(pictures.table.data()), 0U);
      for (DebugPicture& entry : pictures.table) entry = {};  // has been copied

      const TestFrame plain = RenderFrame(false, blend, Info());
      EXPECT_EQ(glIsEnabled(GL_BLEND), GL_FALSE) << "nothing was drawn";
      Image expected = reference::FromBytes(Target(), kOutput, 4);
      pictures.DrawOver(expected, blend);
      const TestFrame frame = RenderFrame(true, blend, Info());
      const Bytes target = Target();
      EXPECT_TRUE(IsNear("target", target, ToBytes(expected), 64, 4,
                         blend ? kBlended : kRounding));
      EXPECT_EQ(glIsEnabled(GL_BLEND) == GL_TRUE,
                blend && !row.pictures.empty());
      EXPECT_EQ(frame.luma == plain.luma && frame.chroma == plain.chroma,
                row.pictures.empty() || row.pictures.back().region.width == 0);
      for (size_t i = 0; i < frame.luma.size(); ++i) {
        ASSERT_EQ(frame.luma[i], target[4 * i]) << i;
      }
      EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
    }
  }
}

TEST_F(DebugPictureTest, BlendingStaysOn) {
  const ScopedSession session(Info());
  const Pictures pictures({{0, {6, 5}, {0, 0, 64, 48}}});
  ASSERT_EQ(zuQelRT_GLSetDebugPicture(pictures.table.data()), 0U);
  const TestFrame opaque = RenderFrame(true, false, Info());
  const TestFrame blended = RenderFrame(true, true, Info());
  const TestFrame turned_off = RenderFrame(true, false, Info());
  EXPECT_NE(opaque.luma, blended.luma);
  EXPECT_EQ(turned_off.luma, blended.luma);
  EXPECT_EQ(glIsEnabled(GL_BLEND), GL_TRUE);
}

TEST_F(DebugPictureTest, EntriesNotInUseKeepTheirTexture) {
  const ScopedSession session(Info());
  const Pictures pictures({{0, {6, 5}, {0, 0, 64, 48}}});
  ASSERT_EQ(zuQelRT_GLSetDebugPicture(pictures.table.data()), 0U);
  const TestFrame shown = RenderFrame(true, false, Info());
  const TestFrame plain = RenderFrame(false, false, Info());
  const DebugPicture& in_use = pictures.table[0];
  for (const DebugPicture& unused :
       {DebugPicture{nullptr, 6, 5, 0, 0, 64, 48},
        DebugPicture{in_use.pData, 0, 5, 0, 0, 64, 48},
        DebugPicture{in_use.pData, 6, 0, 0, 0, 64, 48}}) {
    Table table = {unused};
    ASSERT_EQ(zuQelRT_GLSetDebugPicture(table.data()), 0U);
    EXPECT_EQ(RenderFrame(true, false, Info()).luma, plain.luma);
    pictures_.table[0] = in_use;
    EXPECT_EQ(RenderFrame(true, false, Info()).luma, shown.luma);
  }
}

TEST_F(DebugPictureTest, OnScreenTheyAreReadFromTheOutputTarget) {
  const CallerContext caller(kOutput.width, kOutput.height);
  const ScopedSession session(Info(0));
  const Pictures pictures({{5, {6, 5}, {4, 3, 30, 40}}});
  ASSERT_EQ(zuQelRT_GLSetDebugPicture(pictures.table.data()), 0U);
  const Buffer& read_back = TheSession().buffers[BufferRole::kReadBack];
  const auto read = [&] {
    return Bytes(read_back.bytes(), read_back.bytes() + read_back.size());
  };
  Image expected = reference::FromBytes(Target(), kOutput, 4);
  RenderFrame(false, false, Info(0));
  const Bytes screen = read();
  EXPECT_EQ(ReadPixels(0, kOutput), screen);

  const TestFrame frame = RenderFrame(true, false, Info(0));
  GLint bound = 0;
  glGetIntegerv(GL_FRAMEBUFFER_BINDING, &bound);
  EXPECT_EQ(static_cast<GLuint>(bound),
            TheSession().frame.render.targets.framebuffer(kOutputTarget));
  pictures.DrawOver(expected, false);
  EXPECT_TRUE(IsNear("read back", read(), ToBytes(expected), 64, 4, kRounding));
  EXPECT_EQ(ReadPixels(0, kOutput), screen);
  EXPECT_EQ(frame.luma, TestFrame(Info(0)).luma);
}

TEST_F(DebugPictureTest, AreHarmlessWhateverTheCall) {
  const Pictures pictures({{0, {6, 5}, {0, 0, 30, 40}}});
  const auto call = [&](const Table& table) {
    EXPECT_EQ(zuQelRT_GLSetDebugPicture(table.data()), ZUQEL_SUCCESS);
    EXPECT_EQ(zuQelRT_GLShowDebugPicture(1, 1), ZUQEL_SUCCESS);
  };
  for (int i = 0; i < 2; ++i) {
    call(pictures.table);  // before initialisation, then after close
    const ScopedSession session(Info());
    RenderFrame(true, true, Info());  // nothing loaded in this session
    // Sizes that GL refuses before it reads a pixel, and regions anywhere.
    constexpr int32_t kMax = INT32_MAX, kMin = INT32_MIN;
    const uint8_t* data = pictures.pixels[0].data();
    call({{{data, -6, 5, 0, 0, 9, 9},
           {data, 6, kMin, 0, 0, 9, 9},
           {data, kMax, 1, 0, 0, 9, 9},
           {data, 1, 100000000, 0, 0, 9, 9},
           {data, 6, 5, kMin, kMax, 9, 9},
           {data, 6, 5, 0, 0, kMin, 9},
           {data, 6, 5, 0, 0, 9, -1},
           {data, 6, 5, kMax, kMax, kMax, kMax}}});
    RenderFrame(true, true, Info());
    while (glGetError() != GL_NO_ERROR) {
    }
    // The overlay is whole again.
    call(pictures.table);
    RenderFrame(false, false, Info());
    Image expected = reference::FromBytes(Target(), kOutput, 4);
    pictures.DrawOver(expected, true);
    RenderFrame(true, true, Info());
    EXPECT_TRUE(IsNear("target", Target(), ToBytes(expected), 64, 4, kBlended));
  }
}

}  // namespace
}  // namespace zuqel
