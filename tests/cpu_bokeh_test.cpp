// The CPU render path against plain forms, on planes that end where a protected
// page begins. The kernels and the depth steps, tested on their own, are used.
#include <gtest/gtest.h>
#include <zuQelRT_GL.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <set>
#include <vector>

#include "api/session.h"
#include "cpu_bokeh/blur_and_blend.h"
#include "depth/component_cleanup.h"
#include "depth/focus_mask.h"
#include "depth/hole_filling.h"
#include "depth/statistics.h"
#include "log_capture.h"
#include "reference_planes.h"
#include "same_image.h"

namespace zuqel {
namespace {

using Bytes = std::vector<uint8_t>;
using Plane8 = Image<uint8_t>;

// Masks of 0, 255 and anything between, in rows that all have one of them and
// in rows that change.
TEST(BlurAndBlend, EqualsBothBlursMadeWhole) {
  Random random(9);
  BlendScratch scratch;
  for (int32_t trial = 0; trial < 600; ++trial) {
    const auto below = [&](uint32_t end) {
      return static_cast<int32_t>(1 + random.Below(end));
    };
    const bool is_wide = trial % 4 == 0;
    const ImageSize size = {below(is_wide ? 500 : 9), below(is_wide ? 20 : 9)};
    Plane8 mask = {below(is_wide ? 40 : 4), below(9)};
    mask.Visit([&](int32_t x, int32_t, uint8_t& weight) {
      static constexpr std::array<uint8_t, 2> kUniform = {0, 255};
      static uint8_t current = 0;
      if (x == 0 || random.Below(9) == 0) {
        current = kUniform.at(random.Below(2));
        if (random.Below(3) == 0) current = static_cast<uint8_t>(random.Bits());
      }
      weight = current;
    });
    const Plane8 sharp =
        NoiseImage<uint8_t>(size.width, size.height, random.Bits());
    const GuardedImage<uint8_t> guarded_mask(mask), out(sharp);
    ASSERT_TRUE(scratch.Reserve(size, {mask.width, mask.height}));
    scratch.Begin(guarded_mask.View(), size);
    BlurAndBlend(size.height, scratch, out.View());
    const Plane8 weights =
        reference::ResizePlane(mask, size.width, size.height);
    ASSERT_TRUE(IsSame(out.Copy(), reference::BlurAndBlend(sharp, weights)))
        << "mask " << mask.width << " x " << mask.height;
  }
}

// Of a frame and of a map. Each is the seed of what it draws.
struct ExpansionRow {
  int32_t width, height, map_width, map_height;
};

// Odd ones, maps smaller and larger than the frame, of one row, column or pixel
// and of none; likewise frames. The widest have several segments of a row, and
// more than 64 of the shortest.
constexpr auto kExpansionRows = std::to_array<ExpansionRow>({
    {64, 48, 16, 12}, {48, 16, 12, 65},  {16, 12, 65, 47}, {12, 65, 47, 33},
    {65, 47, 33, 21}, {33, 20, 16, 10},  {20, 33, 10, 16}, {21, 20, 30, 40},
    {30, 40, 30, 40}, {30, 40, 40, 14},  {40, 14, 40, 28}, {14, 40, 28, 1},
    {40, 28, 1, 9},   {28, 1, 9, 4},     {1, 9, 4, 3},     {3, 2, 200, 24},
    {200, 24, 9, 4},  {200, 24, 10, 0},  {24, 10, 0, 7},   {10, 0, 7, 6},
    {0, 7, 6, 1},     {7, 6, 1, 1},      {1, 1, 1, 1},     {400, 44, 100, 11},
    {390, 34, 65, 8}, {6290, 6, 130, 4},
});

// A caller's planes, and what is to become of them.
struct ReferenceExpansion {
  ReferenceExpansion(const ExpansionRow& row, int32_t first_count)
      : width(row.width),
        height(row.height),
        map{row.map_width, row.map_height},
        counter(first_count) {
    history.fill(Bytes(map.values.size()));
  }

  // Noise before a slope with a step that lies one pixel further every second
  // time. Every 31st disparity is a hole; bits above the lowest ten are noise.
  void Shoot(int32_t turn, Random& random) {
    luma = NoiseImage<uint8_t>(width, height, random.Bits());
    chroma = NoiseImage<uint8_t>(width, height / 2, random.Bits());
    map.Visit([&](int32_t x, int32_t, uint16_t& disparity) {
      const int32_t column = (turn / 2 + x) % map.width;
      const auto slope = static_cast<uint32_t>(100 + column * 500 / map.width);
      const uint32_t measured =
          random.Below(31) == 0 ? 1023 : slope + random.Below(8);
      disparity = static_cast<uint16_t>(random.Below(64) * 1024 + measured);
    });
  }

  // V, of byte 0 of each pair, or U: packed, and the last row again and again.
  [[nodiscard]] Plane8 Region(size_t byte) const {
    const auto wide = static_cast<size_t>(width), half = wide / 2;
    const auto rows = static_cast<size_t>(height / 2);
    Plane8 region = {width, height};
    if (rows == 0 || wide == 0) return region;
    for (size_t i = 0; half > 0 && i < region.values.size(); ++i) {
      const size_t row = std::min(i / half, rows - 1);
      region.values[i] = chroma.values[row * wide + i % half * 2 + byte];
    }
    // An odd width leaves a byte after the last pair.
    if (wide % 2 == 1) {
      region.values[half * rows] =
          byte == 0 ? chroma.values.back() : uint8_t{0};
    }
    return region;
  }

  // The focus component's inverse without specks, feathered.
  Plane8 FocusMask(int64_t x, int64_t y, const Plane8& u, const Plane8& v) {
    const auto reduced = [this](const Plane8& plane) {
      return reference::ResizePlane(plane, map.width, map.height).values;
    };
    const auto on_map = [](int64_t product, int32_t size) {
      return size == 0 ? 0 : static_cast<int32_t>(product) / size;  // wraps
    };
    for (uint16_t& value : map.values) value %= 1024;
    FillDisparityHoles(map.View());
    const auto [min, max] = GetDispRange(map.View(), 1);
    const MaskPoint focus = {on_map(x * map.width, width),
                             on_map(y * map.height, height)};
    const uint16_t in_focus = ValueAt(map.View(), focus.x, focus.y);
    Plane8 grown = {map.width, map.height}, work = grown;
    CleanupScratch cleanup;
    Buffer growth;
    uint32_t area = 0;
    EXPECT_TRUE(FocusMaskExpansion(
        map.View(),
        {reduced(luma).data(), reduced(u).data(), reduced(v).data()},
        {max, min, in_focus}, growth, grown.View()));
    EXPECT_TRUE(PruneComponents(grown.View(), focus, true, cleanup, work.View(),
                                &area));
    for (uint8_t& value : work.values) value ^= 255;
    EXPECT_TRUE(RemoveSpecks(work.View(), area, cleanup, grown.View()));
    return reference::BoxBlur(grown, 1);
  }

  void SmoothOverCalls(Bytes& mask) {
    const auto slot = static_cast<size_t>((counter % 3 + 3) % 3);
    const Bytes& previous = history[(slot + 2) % 3];
    const Bytes& before = history[(slot + 1) % 3];
    for (size_t i = 0; counter > 2 && i < mask.size(); ++i) {
      mask[i] =
          static_cast<uint8_t>((mask[i] + 2 * previous[i] + before[i]) / 4);
    }
    history[slot] = mask;
    counter = static_cast<int32_t>(int64_t{counter} + 1);  // wraps
  }

  void Render(int64_t x, int64_t y) {
    const Plane8 u = Region(1), v = Region(0);
    Plane8 mask = FocusMask(x, y, u, v);
    SmoothOverCalls(mask.values);
    weights = reference::ResizePlane(mask, width, height);
    luma = reference::BlurAndBlend(luma, weights);
    const Plane8 new_u = reference::BlurAndBlend(u, weights);
    const Plane8 new_v = reference::BlurAndBlend(v, weights);
    const size_t wide = static_cast<size_t>(width), end = chroma.values.size();
    for (size_t i = 0; i < luma.values.size(); ++i) {
      const size_t column = i % wide / 2, row = i / wide / 2 * wide;
      const size_t from = column + row / 2, to = row + 2 * column;
      if (to < end) chroma.values[to] = new_v.values[from];
      if (to + 1 < end) chroma.values[to + 1] = new_u.values[from];
    }
  }

  int32_t width, height;
  Image<uint16_t> map;
  int32_t counter;
  Plane8 luma, chroma, weights;  // chroma: rows of V and U pairs
  std::array<Bytes, 3> history;
};

// Gives the library's session the sizes of a row.
void BeginSession(const ExpansionRow& row, int32_t counter) {
  Session& session = TheSession();
  // Smoothing at once reads the masks that earlier rows have left.
  if (counter > 2) session.until_close.emplace();
  session.expansionFrameCounter = counter;
  session.TakeInfo({row.width, row.height, row.map_width, row.map_height, 0, 0,
                    0, 0, 0, 0, 0, 0});
}

TEST(RenderExpansion, EqualsItsStepsInPlainForm) {
  LogCapture log;
  std::set<int> weights;
  uint64_t seed = 0;
  for (const ExpansionRow& row : kExpansionRows) {
    Random random(++seed);
    // Of 25 calls: from 0, about to wrap, and below 0.
    const int32_t counter = std::array{0, INT32_MAX - 20, -20}.at(seed % 3);
    ReferenceExpansion expected(row, counter);
    BeginSession(row, counter);
    int32_t turn = 0;
    for (const int32_t y :
         {row.height / 2, 0, row.height - 1, row.height, INT32_MAX}) {
      for (const int32_t x : {row.width / 2, 0, row.width - 1, -1, INT32_MIN}) {
        expected.Shoot(turn, random);
        const GuardedImage luma(expected.luma), chroma(expected.chroma);
        const GuardedImage map(expected.map);
        const uint32_t status =
            zuQelRT_Bokeh_ZU4410_DisparityBase_Expansion_CPU(
                luma.View().data, chroma.View().data, map.View().data, x,
                static_cast<uint32_t>(y));
        expected.Render(x, y);
        weights.insert(expected.weights.values.begin(),
                       expected.weights.values.end());
        SCOPED_TRACE(testing::Message()
                     << seed << ", focus " << x << ", " << y);
        ASSERT_EQ(status, uint32_t{ZUQEL_SUCCESS});
        ASSERT_TRUE(IsSame(map.Copy(), expected.map)) << "the map";
        ASSERT_TRUE(IsSame(luma.Copy(), expected.luma));
        ASSERT_TRUE(IsSame(chroma.Copy(), expected.chroma)) << "chroma";
        ++turn;
      }
    }
  }
  EXPECT_EQ(weights.size(), 256U) << "not every weight was there";
}

// More than 2^31 - 1 bytes of a plane, or of rows that are in use at a time.
TEST(RenderExpansion, IsWithoutMemoryForHugeFrames) {
  LogCapture log;
  for (const ExpansionRow& row :
       {ExpansionRow{65536, 65536, 2, 2}, ExpansionRow{INT32_MAX, 1, 2, 2},
        ExpansionRow{INT32_MAX - 1, 1, 2, 2}, ExpansionRow{1 << 27, 8, 2, 2}}) {
    BeginSession(row, 0);
    const Plane8 pixel = {1, 1, {7}};
    const Image<uint16_t> disparity = {2, 2, {1024, 1023, 0, 5}};
    const GuardedImage luma(pixel), chroma(pixel);
    const GuardedImage map(disparity);
    EXPECT_EQ(zuQelRT_Bokeh_ZU4410_DisparityBase_Expansion_CPU(
                  luma.View().data, chroma.View().data, map.View().data, 0, 0),
              uint32_t{ZUQEL_SUCCESS});
    EXPECT_TRUE(IsSame(luma.Copy(), pixel) && IsSame(chroma.Copy(), pixel) &&
                IsSame(map.Copy(), disparity))
        << row.width << " x " << row.height;
  }
}

TEST(RenderExpansion, LogsItsSteps) {
  LogCapture log;
  const ExpansionRow& row = kExpansionRows[0];
  ReferenceExpansion frame(row, 0);
  Random random(1);
  frame.Shoot(0, random);
  frame.map.Visit([](int32_t x, int32_t, uint16_t& disparity) {
    disparity = static_cast<uint16_t>(100 + 30 * x);
  });
  BeginSession(row, 0);
  EXPECT_EQ(zuQelRT_Bokeh_ZU4410_DisparityBase_Expansion_CPU(
                frame.luma.values.data(), frame.chroma.values.data(),
                frame.map.values.data(), 32, 24),
            uint32_t{ZUQEL_SUCCESS});
  EXPECT_EQ(log.Take(),
            (Lines{"pindle PreviewWidth w = 64, h = 48",
                   "pindle Depth w = 16, h = 12", "uwMaxDisp = 550\n",
                   "uwMinDisp = 100\n",
                   "(a_dFocusX,a_dFocusY)=(8,6), a_dReX = 32, a_dReY = 24 \n",
                   "FocusDisp = 340\n", "pindle uwScaleW = 32, uwScaleH = 24 ",
                   "pindle uwScaleW = 64, uwScaleH = 48 ",
                   "Bokeh_ZU4410_DisparityBase_Expansion take # ms"}));
}

}  // namespace
}  // namespace zuqel
