// What the library holds after every exported call has been used and the
// session and the refocus maps have ended, in either order.
#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "fresh_session.h"
#include "library_allocations.h"
#include "scoped_property.h"

namespace zuqel {
namespace {

using library_allocations::BytesHeld;

struct HeldCase {
  const char* name;
  int32_t width, height;
  bool cached, graphic_buffer;
  int32_t format;
};

constexpr auto kCases = std::to_array<HeldCase>({
    {"640x480", 640, 480, false, false, 0},
    {"640x480, packed, cached", 640, 480, true, false, 7},
    {"odd, planar", 641, 483, false, false, 2},
    {"1920x1080, cached, graphic buffer", 1920, 1080, true, true, 0},
});

GLInitInfo InfoOf(const HeldCase& row) {
  GLInitInfo info = DefaultInfo();
  info.PreviewWidth = row.width;
  info.PreviewHeight = row.height;
  info.DepthWidth = 640;
  info.DepthHeight = 480;
  info.srcformat = row.format;
  info.GraphicBufferFlag = row.graphic_buffer ? 1 : 0;
  return info;
}

void GenerateMaps(const CallerFrame& frame) {
  const GuardedMemory<uint8_t> map(size_t{640} * 480);
  uint16_t* depth = frame.depth.data();
  uint32_t out = 0;
  for (const auto generate :
       {zuQelRT_GenRefocusMap, zuQelRT_GenRefocusMap_ZU4410_DispartyBase}) {
    EXPECT_EQ(generate(map.data(), depth, 300, 200, &out, &out, &out), 0U);
  }
  EXPECT_EQ(zuQelRT_GenRefocusMap_ZU4410_DispartyBase_CPU(
                map.data(), depth, 300, 200, &out, &out, &out),
            0U);
  EXPECT_EQ(zuQelRT_GenRefocusMap_Dist(map.data(), depth, 300, 200), 0U);
}

// Everything that a camera service calls between start and end.
void UseEveryCall(const GLInitInfo& info) {
  const ScopedProperty dumps("persist.zu.VLGLbokeh.readfile", "1");
  const ScopedProperty directory("persist.zu.LVGLbokeh.fileDir", "/nowhere/");
  const std::array<uint8_t, 16> picture = {};
  std::array<DebugPicture, 10> pictures = {};
  pictures[3] = {picture.data(), 2, 2, 8, 8, 20, 20};
  EXPECT_EQ(zuQelRT_GLSetDebugPicture(pictures.data()), 0U);
  EXPECT_EQ(zuQelRT_GLShowDebugPicture(1, 0), 0U);
  const CallerFrame frame(info);
  EXPECT_EQ(frame.Render({.from_depth = false}), 0U);
  EXPECT_EQ(frame.Render({.from_depth = true}), 0U);
  EXPECT_EQ(zuQelRT_GenRefocusMap_init(), 0U);
  EXPECT_EQ(zuQelRT_GenRefocusMap_init(), 0U);
  GenerateMaps(frame);
  EXPECT_EQ(
      zuQelRT_Bokeh_ZU4410_DisparityBase_Expansion_CPU(
          frame.luma.data(), frame.chroma.data(), frame.depth.data(), 300, 200),
      0U);
}

TEST(MemoryHeld, NothingIsLeftAfterCloseAndDeinitialisation) {
  std::vector<uint8_t> cache(kProgramCacheBytes);
  for (const HeldCase& row : kCases) {
    const GLInitInfo info = InfoOf(row);
    for (const bool closed_first : {true, false}) {
      SCOPED_TRACE(testing::Message()
                   << row.name << ", closed first " << closed_first);
      EXPECT_EQ(row.cached ? InitCachedSession(info, cache.data())
                           : InitSession(info),
                0U);
      UseEveryCall(info);
      if (closed_first) {
        EXPECT_EQ(zuQelRT_GLClose(), 0U);
        // The maps keep their four buffers; with work and depth of these sizes
        // they have one byte and four for each pixel of both and one more.
        constexpr size_t kWork = size_t{320} * 240, kDepth = size_t{640} * 480;
        EXPECT_LE(BytesHeld(), 5 * kWork + 5 * kDepth + 64);
        GenerateMaps(CallerFrame(info));  // makes what it lacks
        EXPECT_EQ(zuQelRT_GenRefocusMap_Deinit(), 0U);
      } else {
        EXPECT_EQ(zuQelRT_GenRefocusMap_Deinit(), 0U);
        EXPECT_EQ(zuQelRT_GLClose(), 0U);
      }
      EXPECT_EQ(BytesHeld(), 0U);
    }
  }
}

}  // namespace
}  // namespace zuqel
