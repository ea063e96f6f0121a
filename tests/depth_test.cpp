// Range and hole filling of disparity maps, each beside a plain form of itself,
// on maps with no readable byte behind them.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <random>
#include <vector>

#include "depth/disparity_range.h"
#include "depth/hole_filling.h"
#include "guarded_memory.h"

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
  std::seed_seq seed = {20};
  std::mt19937 generator(seed);
  const auto random = [&generator](int32_t count) {
    return static_cast<int32_t>(generator() % static_cast<uint32_t>(count));
  };
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

MinMax Range(const Map& map, int32_t percent) {
  const GuardedMemory<uint16_t> memory(map.values);
  const DisparityRange range =
      GetDispRange({memory.data(), map.width, map.height}, percent);
  return {range.min, range.max};
}

// With valid values sorted, the trimmed ends are the ones that stand behind
// the pixels to trim, counted from either side.
MinMax RangeReference(const Map& map, int64_t percent) {
  std::vector<uint16_t> valid;
  std::copy_if(map.values.begin(), map.values.end(), std::back_inserter(valid),
               [](uint16_t value) { return value < kHole; });
  if (valid.empty()) return {kHole, 0};
  std::sort(valid.begin(), valid.end());
  const auto wrapped = static_cast<int32_t>(
      percent * static_cast<int64_t>(map.values.size()) & 0xFFFFFFFF);
  const auto trimmed = static_cast<uint64_t>(int64_t{wrapped / 100});
  if (trimmed >= valid.size()) return {valid.front(), valid.back()};
  const uint16_t max = valid[valid.size() - 1 - trimmed];
  return {valid[trimmed] < max ? valid[trimmed] : valid.front(), max};
}

TEST(DispRange, IsThatOfTheSortedValues) {
  for (const Map& map : VariedMaps()) {
    for (const int32_t percent :
         {0, 1, 5, 49, 50, 51, 99, 100, 101, 20000, 429497, 13981014, -1, -100,
          -13981014, INT32_MAX, INT32_MIN}) {
      ASSERT_EQ(Range(map, percent), RangeReference(map, percent))
          << percent << " % of " << map.width << " x " << map.height;
    }
  }
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
std::vector<uint16_t> FillReference(Map map) {
  const auto fill = [&map](int32_t hole) {
    int32_t sum = 0, count = 0;
    for (int32_t i = 0; i < 9; ++i) {
      const int32_t x = hole % map.width + i % 3 - 1;
      const int32_t y = hole / map.width + i / 3 - 1;
      if (x < 0 || y < 0 || x >= map.width || y >= map.height) continue;
      const int64_t at = int64_t{y} * map.width + x;
      const uint16_t value = map.values[static_cast<size_t>(at)];
      if (value >= kHole) continue;
      sum += value;
      ++count;
    }
    if (count == 0) return false;
    map.values[static_cast<size_t>(hole)] = static_cast<uint16_t>(sum / count);
    return true;
  };
  std::vector<int32_t> holes, left;
  for (size_t i = 0; i < map.values.size(); ++i) {
    if (map.values[i] >= kHole) holes.push_back(static_cast<int32_t>(i));
  }
  std::remove_copy_if(holes.begin(), holes.end(), std::back_inserter(left),
                      fill);
  std::for_each(left.rbegin(), left.rend(), fill);
  return map.values;
}

std::vector<uint16_t> Fill(const Map& map) {
  const GuardedMemory<uint16_t> memory(map.values);
  FillDisparityHoles({memory.data(), map.width, map.height});
  return {memory.span().begin(), memory.span().end()};
}

TEST(DisparityHoles, AreFilledAsFromAList) {
  for (const Map& map : VariedMaps()) {
    ASSERT_EQ(Fill(map), FillReference(map)) << map.width << " wide";
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

}  // namespace
}  // namespace zuqel
