// Statistics and hole filling of disparity and distance maps, each beside a
// plain form of itself, on maps with no readable byte behind them.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <map>
#include <vector>

#include "depth/disparity_range.h"
#include "depth/focus_disparity.h"
#include "depth/hole_filling.h"
#include "depth/quantised_distance.h"
#include "guarded_memory.h"
#include "test_scene.h"

namespace zuqel {
namespace {

constexpr uint16_t kHole = 1023;

struct Map {
  int32_t width, height;
  std::vector<uint16_t> values;
};

// Few values or many, with holes by chance and in a rectangle that may cover
// the map; sizes around the lengths of vectors and runs.
std::vector<Map> VariedMaps() {
  TestRandom random;
  std::vector<Map> maps(600);
  for (auto& [width, height, values] : maps) {
    width = 1 + random(70);
    height = 1 + random(20);
    const int32_t across = random(width), x = random(width);
    const int32_t down = random(height + 1) - 1, y = random(height);
    const int32_t holes = random(4) * 32, span = random(2) * 1020 + 3;
    for (int32_t i = 0; i < width * height; ++i) {
      const bool is_inside =
          std::abs(i % width - x) <= across && std::abs(i / width - y) <= down;
      const bool is_hole = is_inside || random(100) < holes;
      values.push_back(static_cast<uint16_t>(
          is_hole ? kHole + random(2) * random(64000) : 1022 - random(span)));
    }
  }
  return maps;
}

using MinMax = std::array<int, 2>;

template <auto kRange = GetDispRange>
MinMax Range(const Map& map, int32_t percent) {
  const GuardedMemory<uint16_t> memory(map.values);
  const ValueRange range =
      kRange({memory.data(), map.width, map.height}, percent);
  return {range.min, range.max};
}

// With valid values sorted, the trimmed ends are the ones that stand behind
// the pixels to trim, counted from either side; so many that `modulus` passes,
// and they are counted as the rest.
MinMax RangeReference(const Map& map, int64_t percent, MinMax none,
                      size_t modulus = SIZE_MAX) {
  std::map<uint16_t, size_t> counts;
  for (const uint16_t value : map.values) {
    if (value < none[0]) ++counts[std::min(value, kHole)];
  }
  if (counts.empty()) return none;
  std::vector<uint16_t> valid;
  for (const auto& [value, count] : counts) {
    valid.insert(valid.end(), count % modulus, value);
  }
  const int first = counts.begin()->first, last = counts.rbegin()->first;
  const auto wrapped = static_cast<int32_t>(
      percent * static_cast<int64_t>(map.values.size()) & 0xFFFFFFFF);
  const auto trimmed = static_cast<uint64_t>(int64_t{wrapped / 100});
  if (trimmed >= valid.size()) return {first, last};
  const int max = valid[valid.size() - 1 - trimmed];
  return {valid[trimmed] < max ? valid[trimmed] : first, max};
}

TEST(DispRange, IsThatOfTheSortedValues) {
  std::vector<Map> maps = VariedMaps();
  for (const int32_t others : {0, 1, 20, 30000}) {
    // Mostly one value, more often than counters of 16 bits can tell.
    maps.push_back({640, 480, std::vector<uint16_t>(307200, 500)});
    std::fill_n(maps.back().values.begin(), others, uint16_t{10});
    std::fill_n(maps.back().values.rbegin(), 3 * others / 2, uint16_t{1000});
    maps.push_back({256, 256, std::vector<uint16_t>(65536, 7)});
  }
  for (const Map& map : maps) {
    for (const int32_t percent :
         {0, 1, 5, 10, 15, 49, 50, 51, 99, 100, 101, 20000, 429497, 13981014,
          -1, -100, -13981014, INT32_MAX, INT32_MIN}) {
      ASSERT_EQ(Range(map, percent), RangeReference(map, percent, {kHole, 0}))
          << percent << " % of " << map.width << " x " << map.height;
      ASSERT_EQ(Range<GetQuanDistRange>(map, percent),
                RangeReference(map, percent, {65535, 0}, 65536))
          << percent << " % of " << map.width << " x " << map.height;
    }
  }
  EXPECT_EQ(Range<GetQuanDistRange>({0, 5, {}}, 5), (MinMax{65535, 0}));
}

TEST(DispRange, KeepsAnEndThatTrimmingWouldCross) {
  const std::vector<uint16_t> ten = {10, 20, 20, 20, 20, 20, 20, 20, 20, 30};
  const auto expect = [](const std::vector<uint16_t>& values, int32_t percent,
                         MinMax expected, const char* why) {
    const Map map = {static_cast<int32_t>(values.size()), 1, values};
    EXPECT_EQ(Range(map, percent), expected) << why;
  };
  expect({}, 1, {1023, 0}, "no pixels");
  expect(ten, 9, {10, 30}, "the threshold is cut to no pixel");
  expect(ten, 10, {10, 20}, "the lower walk does not count those at max");
  expect(ten, 90, {10, 10}, "the upper walk counts those at min");
  expect(ten, 100, {10, 30}, "both cross");
  expect({5, 6, 7, 8, 1023, 1023, 1023, 1023, 1023, 1023}, 10, {6, 7},
         "invalid pixels count for the threshold only");
}

// Lists the holes first; then walks over the list, and backwards over those
// that are left.
std::vector<uint16_t> FillReference(Map map, bool (*is_hole)(uint16_t)) {
  const auto fill = [&map, is_hole](int32_t hole) {
    int32_t sum = 0, count = 0;
    for (int32_t i = 0; i < 9; ++i) {
      const int32_t x = hole % map.width + i % 3 - 1;
      const int32_t y = hole / map.width + i / 3 - 1;
      if (x < 0 || y < 0 || x >= map.width || y >= map.height) continue;
      const int64_t at = int64_t{y} * map.width + x;
      const uint16_t value = map.values[static_cast<size_t>(at)];
      if (is_hole(value)) continue;
      sum += value;
      ++count;
    }
    if (count == 0) return false;
    map.values[static_cast<size_t>(hole)] = static_cast<uint16_t>(sum / count);
    return true;
  };
  std::vector<int32_t> holes, left;
  for (size_t i = 0; i < map.values.size(); ++i) {
    if (is_hole(map.values[i])) holes.push_back(static_cast<int32_t>(i));
  }
  std::remove_copy_if(holes.begin(), holes.end(), std::back_inserter(left),
                      fill);
  std::for_each(left.rbegin(), left.rend(), fill);
  return map.values;
}

template <auto kFill = FillDisparityHoles>
std::vector<uint16_t> Fill(const Map& map) {
  const GuardedMemory<uint16_t> memory(map.values);
  kFill({memory.data(), map.width, map.height});
  return {memory.span().begin(), memory.span().end()};
}

TEST(Holes, AreFilledAsFromAList) {
  for (Map& map : VariedMaps()) {
    const auto expected =
        FillReference(map, [](uint16_t value) { return value >= kHole; });
    ASSERT_EQ(Fill(map), expected) << map.width << " wide";
    // Distances, whose sums pass 16 bits.
    for (uint16_t& value : map.values) {
      value = value >= kHole ? 0 : static_cast<uint16_t>(value * 64 + 1);
    }
    ASSERT_EQ(Fill<FillDistanceHoles>(map),
              FillReference(map, [](uint16_t value) { return value == 0; }))
        << map.width << " wide";
  }
}

TEST(DisparityHoles, KnownResults) {
  constexpr uint16_t n = kHole;
  using Values = std::vector<uint16_t>;
  EXPECT_EQ(Fill({0, 3, {}}), Values());
  EXPECT_EQ(Fill({2, 2, {n, 1024, n, 65535}}), Values({n, 1024, n, 65535}));
  EXPECT_EQ(Fill({3, 2, {1, 2, 3, 4, n, 6}}), Values({1, 2, 3, 4, 3, 6}));
  EXPECT_EQ(Fill({5, 1, {8, n, n, n, 0}}), Values({8, 8, 8, 4, 0}));
  EXPECT_EQ(Fill({4, 1, {n, n, n, 9}}), Values({9, 9, 9, 9})) << "backwards";
}

TEST(QuantisedDistance, IsAQuarterAboveTheSmallest) {
  EXPECT_EQ(SmallestDistance({}), 65535);
  for (const Map& map : VariedMaps()) {
    const GuardedMemory<uint16_t> in(map.values), out(in.size());
    const Plane<uint16_t> plane = {in.data(), map.width, map.height};
    const uint16_t smallest = *std::ranges::min_element(map.values);
    ASSERT_EQ(SmallestDistance(plane), smallest);
    QuantiseDistance(plane, smallest, {out.data(), map.width, map.height});
    for (size_t i = 0; i < in.size(); ++i) {
      ASSERT_EQ(out.data()[i], std::min((map.values[i] - smallest) / 4, 1023));
    }
  }
}

// The large maps make counters of 16 bits and a radius of 8 bits wrap. Only
// what is around the focus is ever touched.
TEST(FocusDisparity, IsTheMostFrequentOne) {
  using Size = std::array<uint16_t, 2>;
  constexpr std::array<uint16_t, 6> kMany = {0, 5, 6, 8, 1023, 2000};
  TestRandom random;
  for (const auto& [width, height] :
       {Size{1, 1}, Size{23, 22}, Size{40, 400}, Size{230, 150},
        Size{5760, 5761}, Size{11498, 11498}}) {
    const GuardedMemory<uint16_t> map(size_t{width} * height);
    const auto radius = std::lround(std::min(width, height) / 45.0) % 256;
    for (int k = 0; k < 40; ++k) {
      const auto x = static_cast<uint16_t>(random(width + 4));
      const auto y = static_cast<uint16_t>(random(height + 4));
      std::array<int, 1024> counts = {};
      for (int i = 0; i < 260 * 260; ++i) {
        const int dx = i % 260 - 130, column = x + dx, dy = i / 260 - 130;
        const int64_t at = int64_t{y + dy} * width + column;
        const uint16_t many = kMany[static_cast<size_t>(random(6))];
        const uint16_t value = k % 2 == 0 ? many : 7;
        if (column < 0 || column >= width) continue;
        if (y + dy < 0 || y + dy >= height) continue;
        map.data()[at] = random(200) == 0 ? 9 : value;
        const bool is_near = std::abs(dx) <= radius && std::abs(dy) <= radius;
        if (is_near) ++counts[std::min(map.data()[at], kHole)];
      }
      counts[0] = 0;
      for (int& count : counts) count %= 65536;
      const auto* most = std::max_element(counts.begin(), counts.end());
      ASSERT_EQ(GetFocusDisp({map.data(), width, height}, x, y),
                most - counts.begin())
          << x << ", " << y << " in " << width << " x " << height;
    }
  }
}

}  // namespace
}  // namespace zuqel
