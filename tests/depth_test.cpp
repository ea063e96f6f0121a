// Range and hole filling of disparity maps, each beside a plain form of itself,
// on maps with no readable byte behind them.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <ostream>
#include <random>
#include <vector>

#include "depth/disparity_holes.h"
#include "depth/disparity_range.h"
#include "guarded_memory.h"

namespace zuqel {
namespace {

constexpr uint16_t kHole = 1023;

struct Size {
  int32_t width = 0;
  int32_t height = 0;
};

struct Map {
  const char* name;
  Size size;
  std::vector<uint16_t> values;
};

std::ostream& operator<<(std::ostream& out, const Map& map) {
  return out << map.name << " " << map.size.width << "x" << map.size.height;
}

template <typename Value>
Map MakeMap(const char* name, Size size, Value value) {
  Map map{name, size, {}};
  for (int32_t y = 0; y < size.height; ++y) {
    for (int32_t x = 0; x < size.width; ++x) {
      map.values.push_back(static_cast<uint16_t>(value(x, y)));
    }
  }
  return map;
}

// Sizes around the lengths of vectors and runs, each with few and many holes,
// and whole maps with slopes, steps and bands of holes.
std::vector<Map> VariedMaps() {
  std::vector<Map> maps;
  std::seed_seq seed = {20};
  std::mt19937 random(seed);
  const std::vector<Size> sizes = {
      {1, 1},  {1, 40},  {40, 1},  {2, 2},  {3, 3},  {7, 5},   {8, 8}, {15, 4},
      {16, 9}, {31, 10}, {32, 64}, {33, 6}, {63, 7}, {64, 32}, {65, 5}};
  for (const Size size : sizes) {
    for (const uint32_t holes : {0U, 5U, 60U, 97U}) {
      for (const uint32_t span : {3U, 1023U}) {
        const auto value = [&](int32_t, int32_t) -> uint64_t {
          if (random() % 100 >= holes) return 1022 - random() % span;
          return random() % 2 == 0 ? kHole : kHole + random() % 64000;
        };
        maps.push_back(MakeMap("random", size, value));
      }
    }
  }
  for (const Size size : {Size{320, 240}, Size{640, 480}, Size{333, 77}}) {
    maps.push_back(MakeMap("scene", size, [&](int32_t x, int32_t y) {
      const int32_t box = x % 64;
      if (y > size.height / 3 && box > 20) return 700 + x / 64;
      if (y > size.height / 3 && box > 12) return int32_t{kHole};
      return random() % 40 == 0 ? int32_t{kHole} : 100 + 300 * y / size.height;
    }));
  }
  return maps;
}

using MinMax = std::array<int, 2>;

MinMax Range(const Map& map, int32_t percent) {
  const GuardedMemory<uint16_t> memory(map.values);
  const DisparityRange range =
      GetDispRange({memory.data(), map.size.width, map.size.height}, percent);
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
  uint16_t min = valid.front();
  uint16_t max = valid.back();
  if (trimmed < valid.size()) {
    max = valid[valid.size() - 1 - trimmed];
    if (valid[trimmed] < max) min = valid[trimmed];
  }
  return {min, max};
}

TEST(DispRange, IsThatOfTheSortedValues) {
  for (const Map& map : VariedMaps()) {
    for (const int32_t percent :
         {0, 1, 5, 49, 50, 51, 99, 100, 101, 20000, 429497, 13981014, -1, -100,
          -13981014, INT32_MAX, INT32_MIN}) {
      ASSERT_EQ(Range(map, percent), RangeReference(map, percent))
          << map << ", percent " << percent;
    }
  }
}

TEST(DispRange, KeepsAnEndThatTrimmingWouldCross) {
  struct Case {
    const char* name;
    std::vector<uint16_t> values;
    int32_t percent;
    int min, max;
  };
  const std::vector<uint16_t> ten = {10, 20, 20, 20, 20, 20, 20, 20, 20, 30};
  const std::vector<Case> cases = {
      {"no pixels", {}, 1, 1023, 0},
      {"all invalid", {1023, 1023, 1023}, 1, 1023, 0},
      {"all above invalid", {1024, 65535}, 0, 1023, 0},
      {"zero is a value", {0, 1023, 1024}, 0, 0, 0},
      {"single value", {77, 77, 77, 77}, 5, 77, 77},
      {"single value, all trimmed", {77, 77, 77, 77}, 100, 77, 77},
      {"nothing to trim", ten, 0, 10, 30},
      {"the threshold is cut to no pixel", ten, 9, 10, 30},
      {"one pixel trimmed at both ends",
       {1, 2, 3, 4, 5, 6, 7, 8, 9, 10},
       10,
       2,
       9},
      {"the lower walk does not count those at max", ten, 10, 10, 20},
      {"the upper walk counts the pixels at min", ten, 90, 10, 10},
      {"both cross", ten, 100, 10, 30},
      {"invalid pixels count for the threshold only",
       {5, 6, 7, 8, 1023, 1023, 1023, 1023, 1023, 1023},
       10,
       6,
       7},
      {"negative trims nothing", ten, -10, 10, 30},
  };
  for (const Case& row : cases) {
    const Size size = {static_cast<int32_t>(row.values.size()), 1};
    EXPECT_EQ(Range({row.name, size, row.values}, row.percent),
              (MinMax{row.min, row.max}))
        << row.name;
  }
}

// Lists the holes first; then walks over the list, and backwards over those
// that are left.
std::vector<uint16_t> FillReference(const Map& map) {
  std::vector<uint16_t> values = map.values;
  const auto at = [&](int32_t i) -> uint16_t& {
    return values.at(static_cast<size_t>(i));
  };
  const auto mean = [&](int32_t x, int32_t y) -> int32_t {
    int32_t sum = 0, count = 0;
    for (int32_t v = y - 1; v <= y + 1; ++v) {
      for (int32_t u = x - 1; u <= x + 1; ++u) {
        if (u < 0 || v < 0 || u >= map.size.width || v >= map.size.height)
          continue;
        const int32_t value = at(v * map.size.width + u);
        if (value >= kHole) continue;
        sum += value;
        ++count;
      }
    }
    return count == 0 ? -1 : sum / count;
  };
  std::vector<int32_t> holes;
  for (int32_t i = 0; i < map.size.width * map.size.height; ++i) {
    if (at(i) >= kHole) holes.push_back(i);
  }
  std::vector<int32_t> leftovers;
  for (const int32_t i : holes) {
    const int32_t value = mean(i % map.size.width, i / map.size.width);
    if (value < 0) leftovers.push_back(i);
    if (value >= 0) at(i) = static_cast<uint16_t>(value);
  }
  std::reverse(leftovers.begin(), leftovers.end());
  for (const int32_t i : leftovers) {
    const int32_t value = mean(i % map.size.width, i / map.size.width);
    if (value >= 0) at(i) = static_cast<uint16_t>(value);
  }
  return values;
}

std::vector<uint16_t> Fill(const Map& map) {
  const GuardedMemory<uint16_t> memory(map.values);
  FillDisparityHoles({memory.data(), map.size.width, map.size.height});
  return {memory.span().begin(), memory.span().end()};
}

TEST(DisparityHoles, AreFilledAsFromAList) {
  std::vector<Map> maps = VariedMaps();
  for (const Size size : {Size{37, 21}, Size{64, 32}}) {
    const auto add = [&](const char* name, auto is_hole) {
      maps.push_back(MakeMap(name, size, [&](int32_t x, int32_t y) {
        return is_hole(x, y) ? kHole : (x * 29 + y * 131) % kHole;
      }));
    };
    add("top left corner", [](int x, int y) { return x < 20 && y < 9; });
    add("bottom right corner", [](int x, int y) { return x > 9 && y > 9; });
    add("all but the first", [](int x, int y) { return x + y > 0; });
    add("all but the last", [&](int x, int y) {
      return x + 1 < size.width || y + 1 < size.height;
    });
    add("checkerboard", [](int x, int y) { return (x + y) % 2 == 0; });
    add("rows", [](int, int y) { return y % 5 != 3; });
    add("columns", [](int x, int) { return x % 7 != 6; });
    add("frame",
        [&](int x, int y) { return x == 0 || x + 1 == size.width || y == 0; });
  }
  for (const Map& map : maps) {
    const std::vector<uint16_t> filled = Fill(map);
    const std::vector<uint16_t> expected = FillReference(map);
    const auto differing =
        std::mismatch(filled.begin(), filled.end(), expected.begin());
    ASSERT_EQ(filled, expected)
        << map << ", first at " << differing.first - filled.begin();
  }
}

TEST(DisparityHoles, KnownResults) {
  const auto expect = [](const Map& map, const std::vector<uint16_t>& filled) {
    EXPECT_EQ(Fill(map), filled) << map;
  };
  const uint16_t n = kHole;
  const uint16_t m = kHole - 1;
  expect({"no pixels", {0, 0}, {}}, {});
  expect({"no columns", {0, 3}, {}}, {});
  expect({"nothing valid", {2, 2}, {n, 1024, n, 65535}}, {n, 1024, n, 65535});
  expect({"truncated mean of eight", {3, 3}, {1, 2, 3, 4, n, 6, 7, 8, 12}},
         {1, 2, 3, 4, 5, 6, 7, 8, 12});
  expect({"largest sum", {3, 3}, {m, m, m, m, 2000, m, m, m, m}},
         std::vector<uint16_t>(9, m));
  expect({"filled values count on the way", {5, 1}, {8, n, n, n, 0}},
         {8, 8, 8, 4, 0});
  expect({"the corner is filled backwards", {4, 1}, {n, n, n, 9}},
         {9, 9, 9, 9});
  expect({"zero is valid", {2, 1}, {0, n}}, {0, 0});
}

}  // namespace
}  // namespace zuqel
