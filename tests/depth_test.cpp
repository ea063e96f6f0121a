// Statistics and hole filling of disparity and distance maps against plain
// forms, on maps that end where a protected page begins.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "depth/hole_filling.h"
#include "depth/statistics.h"
#include "reference_depth.h"
#include "same_image.h"

namespace zuqel {
namespace {

constexpr uint16_t kHole = kInvalidDisparity;

using Map = Image<uint16_t>;

// A part of a map that is all holes, in percent of its sides.
struct Part {
  int32_t left, top, right, bottom;
};

// Around the lengths of vectors and runs.
constexpr auto kSizes = std::to_array<Size>({
    {1, 1},  {1, 20},  {2, 2},   {3, 9},   {7, 3},  {8, 5},  {9, 4},
    {15, 7}, {16, 6},  {17, 5},  {31, 4},  {32, 9}, {33, 8}, {47, 12},
    {63, 3}, {64, 20}, {65, 11}, {70, 17}, {70, 1}, {0, 5},
});

Map DrawMap(uint32_t values, uint32_t hole_percent, const Part& part,
            const Size& size) {
  // Names of their own: Clang 14 captures no structured bindings.
  const int32_t width = size.width, height = size.height;
  Random random(values + hole_percent);
  Map map = {width, height};
  map.Visit([&](int32_t x, int32_t y, uint16_t& value) {
    const int32_t across = x * 100 / width, down = y * 100 / height;
    const bool is_in_hole = across >= part.left && across < part.right &&
                            down >= part.top && down < part.bottom;
    const uint32_t measured = 1022 - random.Below(values);
    const uint32_t hole = kHole + (random.Chance(50) ? random.Below(64000) : 0);
    const bool is_hole = random.Chance(hole_percent) || is_in_hole;
    value = static_cast<uint16_t>(is_hole ? hole : measured);
  });
  return map;
}

// Of all values or few, from no holes to nothing but holes; those left over
// around the middle, at the bottom and at the right edge.
void ForEachMap(auto check) {
  for (const uint32_t values : {3U, 1023U}) {
    for (const uint32_t hole_percent : {0U, 32U, 64U, 96U, 100U}) {
      for (const Part& part : {Part{0, 0, 0, 0}, Part{25, 25, 75, 75},
                               Part{0, 0, 100, 80}, Part{0, 0, 97, 100}}) {
        for (const Size& size : kSizes) {
          SCOPED_TRACE(testing::Message()
                       << values << " values, " << hole_percent << " % holes, "
                       << size.width << " x " << size.height);
          check(DrawMap(values, hole_percent, part, size));
          if (testing::Test::HasFailure()) return;
        }
      }
    }
  }
}

using reference::MinMax;

struct RangeKernel {
  const char* name;
  ValueRange (*kernel)(Plane<const uint16_t>, int32_t);
  reference::RangeRule rule;
};
constexpr auto kRangeKernels = std::to_array<RangeKernel>({
    {"GetDispRange", GetDispRange, reference::kDisparityRange},
    {"GetQuanDistRange", GetQuanDistRange, reference::kDistanceRange},
});

MinMax Range(const RangeKernel& row, const Map& map, int32_t percent) {
  const GuardedImage<uint16_t> memory(map);
  const ValueRange range = row.kernel(memory.View(), percent);
  return {range.min, range.max};
}

void CheckRanges(const Map& map) {
  for (const RangeKernel& row : kRangeKernels) {
    for (const int32_t percent :
         {0, 1, 5, 10, 15, 49, 50, 51, 99, 100, 101, 20000, 429497, 13981014,
          -1, -100, -13981014, INT32_MAX, INT32_MIN}) {
      ASSERT_EQ(Range(row, map, percent),
                reference::TrimmedRange(map, percent, row.rule))
          << row.name << ", " << percent << " %";
    }
  }
}

TEST(DispRange, IsThatOfTheSortedValues) {
  ForEachMap(CheckRanges);
}

// One value fills the map but for others at either end: more pixels of it than
// counters of 16 bits can hold.
TEST(DispRange, CountsAnyNumberOfPixels) {
  for (const int32_t others : {0, 1, 20, 30000}) {
    SCOPED_TRACE(testing::Message() << others << " others");
    Map map = {640, 480};
    std::fill(map.values.begin(), map.values.end(), uint16_t{500});
    std::fill_n(map.values.begin(), others, uint16_t{10});
    std::fill_n(map.values.rbegin(), 3 * others / 2, uint16_t{1000});
    CheckRanges(map);
  }
  Map all_wrap = {256, 256};
  std::fill(all_wrap.values.begin(), all_wrap.values.end(), uint16_t{7});
  CheckRanges(all_wrap);
}

Map Filled(void (*kernel)(Plane<uint16_t>), const Map& map) {
  const GuardedImage<uint16_t> memory(map);
  kernel(memory.View());
  return memory.Copy();
}

TEST(HoleFilling, IsThatOfAListOfHoles) {
  ForEachMap([](Map map) {
    EXPECT_TRUE(IsSame(Filled(FillDisparityHoles, map),
                       reference::FillHoles(map, reference::IsDisparityHole)));
    // Distances, whose sums pass 16 bits.
    for (uint16_t& value : map.values) {
      value = value >= kHole ? 0 : static_cast<uint16_t>(value * 64 + 1);
    }
    EXPECT_TRUE(IsSame(Filled(FillDistanceHoles, map),
                       reference::FillHoles(map, reference::IsDistanceHole)))
        << "as distances";
  });
}

TEST(QuantisedDistance, IsAQuarterAboveTheSmallest) {
  ForEachMap([](Map map) {
    const GuardedImage<uint16_t> in(map), out(Map{map.width, map.height});
    uint16_t smallest = 65535;
    for (const uint16_t value : map.values)
      smallest = std::min(smallest, value);
    ASSERT_EQ(SmallestDistance(in.View()), smallest);
    QuantiseDistance(in.View(), smallest, out.View());
    for (uint16_t& value : map.values) {
      value = static_cast<uint16_t>(std::min((value - smallest) / 4, 1023));
    }
    EXPECT_TRUE(IsSame(out.Copy(), map));
  });
}

// Radii of 0, 0, 1, 3, of 128, whose counters wrap, and of 256, which wraps to
// 0.
constexpr auto kFocusSizes = std::to_array<Size>(
    {{1, 1}, {23, 22}, {40, 400}, {230, 150}, {5760, 5761}, {11498, 11498}});

// Draws what lies around the focus, and nothing else of the map: as many of
// some values, or nearly always 7. Returns the most frequent value.
int DrawFocus(Plane<uint16_t> map, int32_t x, int32_t y, bool is_one_value,
              Random& random) {
  constexpr std::array<uint16_t, 6> kValues = {0, 5, 6, 8, 1023, 2000};
  const auto radius = std::lround(std::min(map.width, map.height) / 45.0) % 256;
  std::array<int, 1024> counts = {};
  for (int32_t row = std::max(y - 130, 0); row < std::min(y + 130, map.height);
       ++row) {
    for (int32_t column = std::max(x - 130, 0);
         column < std::min(x + 130, map.width); ++column) {
      uint16_t& value = map.row(row)[column];
      value = is_one_value ? 7 : kValues.at(random.Below(6));
      if (random.Below(200) == 0) value = 9;
      const int32_t steps = std::max(std::abs(column - x), std::abs(row - y));
      if (steps <= radius) ++counts.at(std::min(value, kHole));
    }
  }
  counts[0] = 0;
  for (int& count : counts) count %= 65536;
  return static_cast<int>(std::max_element(counts.begin(), counts.end()) -
                          counts.begin());
}

TEST(FocusDisparity, IsTheMostFrequentOne) {
  for (const auto& [width, height] : kFocusSizes) {
    const GuardedMemory<uint16_t> memory(static_cast<size_t>(width) *
                                         static_cast<size_t>(height));
    const Plane<uint16_t> map = {memory.data(), width, height};
    Random random(1);
    for (int point = 0; point < 40; ++point) {
      const auto x = static_cast<uint16_t>(random.Between(0, width + 3));
      const auto y = static_cast<uint16_t>(random.Between(0, height + 3));
      const int expected = DrawFocus(map, x, y, point % 2 == 1, random);
      ASSERT_EQ(GetFocusDisp(map, x, y), expected)
          << width << " x " << height << ", focus " << x << ", " << y;
    }
  }
}

}  // namespace
}  // namespace zuqel
