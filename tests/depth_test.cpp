// Statistics and hole filling of disparity and distance maps against plain
// forms, on maps that end where a protected page begins.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <map>
#include <vector>

#include "depth/hole_filling.h"
#include "depth/statistics.h"
#include "disparity_scenes.h"
#include "same_image.h"

namespace zuqel {
namespace {

constexpr uint16_t kHole = kInvalidDisparity;

using Map = Image<uint16_t>;

// Which part of a map is all holes, in percent of its sides.
struct Part {
  int32_t left, top, right, bottom;
};
constexpr Part kNone = {0, 0, 0, 0}, kMiddle = {25, 25, 75, 75},
               kLeftHalf = {0, 0, 50, 100}, kAllButBottom = {0, 0, 100, 80},
               kAllButRightEdge = {0, 0, 97, 100};

struct MapRow {
  const char* name;
  uint32_t values;        // how many there are, up to 1022
  uint32_t hole_percent;  // outside that part
  Part hole;
  uint64_t seed;
};
constexpr auto kMapRows = std::to_array<MapRow>({
    {"all values", 1023, 0, kNone, 1},
    {"three values", 3, 0, kNone, 2},
    {"all values, some holes", 1023, 32, kNone, 3},
    {"three values, many holes", 3, 64, kNone, 4},
    {"all values, mostly holes", 1023, 96, kNone, 5},
    {"nothing but holes", 1, 100, kNone, 6},
    {"hole in the middle", 1023, 0, kMiddle, 7},
    {"three values, left half missing", 3, 0, kLeftHalf, 8},
    {"bottom left over, some holes", 1023, 32, kAllButBottom, 9},
    {"right edge left over", 1023, 0, kAllButRightEdge, 10},
});

struct Size {
  int32_t width, height;
};
// Around the lengths of vectors and runs.
constexpr auto kSizes = std::to_array<Size>({
    {1, 1},  {1, 20},  {2, 2},   {3, 9},   {7, 3},  {8, 5},  {9, 4},
    {15, 7}, {16, 6},  {17, 5},  {31, 4},  {32, 9}, {33, 8}, {47, 12},
    {63, 3}, {64, 20}, {65, 11}, {70, 17}, {70, 1},
});

Map DrawMap(const MapRow& row, int32_t width, int32_t height) {
  Random random(row.seed);
  Map map = {width, height};
  map.Visit([&](int32_t x, int32_t y, uint16_t& value) {
    const int32_t across = x * 100 / width, down = y * 100 / height;
    const bool is_in_hole = across >= row.hole.left &&
                            across < row.hole.right && down >= row.hole.top &&
                            down < row.hole.bottom;
    const uint32_t measured = 1022 - random.Below(row.values);
    const uint32_t hole = kHole + (random.Chance(50) ? random.Below(64000) : 0);
    const bool is_hole = random.Chance(row.hole_percent) || is_in_hole;
    value = static_cast<uint16_t>(is_hole ? hole : measured);
  });
  return map;
}

void ForEachMap(auto check) {
  for (const MapRow& row : kMapRows) {
    for (const auto& [width, height] : kSizes) {
      SCOPED_TRACE(testing::Message()
                   << row.name << ", " << width << " x " << height);
      check(DrawMap(row, width, height));
      if (testing::Test::HasFailure()) return;
    }
  }
  SCOPED_TRACE("boxes");
  check(BoxesScene(160, 120));
}

using MinMax = std::array<int, 2>;

struct RangeKernel {
  const char* name;
  ValueRange (*kernel)(Plane<const uint16_t>, int32_t);
  MinMax none;     // of a map without valid values, all below its first
  size_t modulus;  // at which the count of a value wraps
};
constexpr auto kRangeKernels = std::to_array<RangeKernel>({
    {"GetDispRange", GetDispRange, {kHole, 0}, SIZE_MAX},
    {"GetQuanDistRange", GetQuanDistRange, {65535, 0}, 65536},
});

MinMax Range(const RangeKernel& row, const Map& map, int32_t percent) {
  const GuardedImage<uint16_t> memory(map);
  const ValueRange range = row.kernel(memory.View(), percent);
  return {range.min, range.max};
}

// With valid values sorted, the trimmed ends are those after the pixels to
// trim, counted from either side.
MinMax ReferenceRange(const RangeKernel& row, const Map& map, int64_t percent) {
  std::map<uint16_t, size_t> counts;
  for (const uint16_t value : map.values) {
    if (value < row.none[0]) ++counts[std::min(value, kHole)];
  }
  if (counts.empty()) return row.none;
  std::vector<uint16_t> valid;
  for (const auto& [value, count] : counts) {
    valid.insert(valid.end(), count % row.modulus, value);
  }
  const int first = counts.begin()->first, last = counts.rbegin()->first;
  const auto wrapped = static_cast<int32_t>(
      percent * static_cast<int64_t>(map.values.size()) & 0xFFFFFFFF);
  const auto trimmed = static_cast<uint64_t>(int64_t{wrapped / 100});
  if (trimmed >= valid.size()) return {first, last};
  const int max = valid[valid.size() - 1 - trimmed];
  return {valid[trimmed] < max ? valid[trimmed] : first, max};
}

void CheckRanges(const Map& map) {
  for (const RangeKernel& row : kRangeKernels) {
    for (const int32_t percent :
         {0, 1, 5, 10, 15, 49, 50, 51, 99, 100, 101, 20000, 429497, 13981014,
          -1, -100, -13981014, INT32_MAX, INT32_MIN}) {
      ASSERT_EQ(Range(row, map, percent), ReferenceRange(row, map, percent))
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

struct TrimRow {
  const char* name;
  std::vector<uint16_t> values;
  int32_t percent;
  MinMax expected;
};

TEST(DispRange, KeepsAnEndThatTrimmingWouldCross) {
  const std::vector<uint16_t> ten = {10, 20, 20, 20, 20, 20, 20, 20, 20, 30};
  for (const TrimRow& row : std::to_array<TrimRow>({
           {"no pixels", {}, 1, {1023, 0}},
           {"the threshold is cut to no pixel", ten, 9, {10, 30}},
           {"the lower walk does not count those at max", ten, 10, {10, 20}},
           {"the upper walk counts those at min", ten, 90, {10, 10}},
           {"both cross", ten, 100, {10, 30}},
           {"invalid pixels count for the threshold only",
            {5, 6, 7, 8, 1023, 1023, 1023, 1023, 1023, 1023},
            10,
            {6, 7}},
       })) {
    const Map map = {static_cast<int32_t>(row.values.size()), 1, row.values};
    EXPECT_EQ(Range(kRangeKernels[0], map, row.percent), row.expected)
        << row.name;
  }
  EXPECT_EQ(Range(kRangeKernels[1], {0, 5}, 5), (MinMax{65535, 0}));
}

// Lists the holes first; then walks over the list, and backwards over those
// that are left.
Map ReferenceFill(Map map, bool (*is_hole)(uint16_t)) {
  const auto fill = [&map, is_hole](int32_t hole) {
    const int32_t x = hole % map.width, y = hole / map.width;
    int32_t sum = 0, count = 0;
    for (int32_t near_y = y - 1; near_y <= y + 1; ++near_y) {
      for (int32_t near_x = x - 1; near_x <= x + 1; ++near_x) {
        const uint16_t* value = map.At(near_x, near_y);
        if (value == nullptr || is_hole(*value)) continue;
        sum += *value;
        ++count;
      }
    }
    if (count == 0) return false;
    *map.At(x, y) = static_cast<uint16_t>(sum / count);
    return true;
  };
  std::vector<int32_t> holes, left;
  for (size_t i = 0; i < map.values.size(); ++i) {
    if (is_hole(map.values[i])) holes.push_back(static_cast<int32_t>(i));
  }
  std::remove_copy_if(holes.begin(), holes.end(), std::back_inserter(left),
                      fill);
  std::for_each(left.rbegin(), left.rend(), fill);
  return map;
}

Map Filled(void (*kernel)(Plane<uint16_t>), const Map& map) {
  const GuardedImage<uint16_t> memory(map);
  kernel(memory.View());
  return memory.Copy();
}

TEST(HoleFilling, IsThatOfAListOfHoles) {
  ForEachMap([](Map map) {
    EXPECT_TRUE(IsSame(
        Filled(FillDisparityHoles, map),
        ReferenceFill(map, [](uint16_t value) { return value >= kHole; })));
    // Distances, whose sums pass 16 bits.
    for (uint16_t& value : map.values) {
      value = value >= kHole ? 0 : static_cast<uint16_t>(value * 64 + 1);
    }
    EXPECT_TRUE(
        IsSame(Filled(FillDistanceHoles, map),
               ReferenceFill(map, [](uint16_t value) { return value == 0; })))
        << "as distances";
  });
}

struct FillRow {
  const char* name;
  Map map, filled;
};

TEST(HoleFilling, GivesResultsWorkedOutByHand) {
  constexpr uint16_t n = kHole;
  for (const FillRow& row : std::to_array<FillRow>({
           {"no pixels", {0, 3}, {0, 3}},
           {"nothing valid",
            {2, 2, {n, 1024, n, 65535}},
            {2, 2, {n, 1024, n, 65535}}},
           {"the mean is truncated",
            {3, 2, {1, 2, 3, 4, n, 6}},
            {3, 2, {1, 2, 3, 4, 3, 6}}},
           {"0 is a disparity",
            {5, 1, {8, n, n, n, 0}},
            {5, 1, {8, 8, 8, 4, 0}}},
           {"backwards", {4, 1, {n, n, n, 9}}, {4, 1, {9, 9, 9, 9}}},
       })) {
    EXPECT_TRUE(IsSame(Filled(FillDisparityHoles, row.map), row.filled))
        << row.name;
  }
}

TEST(QuantisedDistance, IsAQuarterAboveTheSmallest) {
  EXPECT_EQ(SmallestDistance({}), 65535);
  ForEachMap([](Map map) {
    const GuardedImage<uint16_t> in(map), out(Map{map.width, map.height});
    const uint16_t smallest =
        *std::min_element(map.values.begin(), map.values.end());
    ASSERT_EQ(SmallestDistance(in.View()), smallest);
    QuantiseDistance(in.View(), smallest, out.View());
    for (uint16_t& value : map.values) {
      value = static_cast<uint16_t>(std::min((value - smallest) / 4, 1023));
    }
    EXPECT_TRUE(IsSame(out.Copy(), map));
  });
}

struct FocusRow {
  const char* name;
  uint16_t width, height;
  uint64_t seed;
};
constexpr auto kFocusRows = std::to_array<FocusRow>({
    {"one pixel", 1, 1, 1},
    {"radius 0", 23, 22, 2},
    {"radius 1", 40, 400, 3},
    {"radius 3", 230, 150, 4},
    {"radius 128, counters wrap", 5760, 5761, 5},
    {"radius 256 wraps to 0", 11498, 11498, 6},
});

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
  for (const auto& [name, width, height, seed] : kFocusRows) {
    const GuardedMemory<uint16_t> memory(size_t{width} * height);
    const Plane<uint16_t> map = {memory.data(), width, height};
    Random random(seed);
    for (int point = 0; point < 40; ++point) {
      const auto x = static_cast<uint16_t>(random.Below(width + 4U));
      const auto y = static_cast<uint16_t>(random.Below(height + 4U));
      const int expected = DrawFocus(map, x, y, point % 2 == 1, random);
      ASSERT_EQ(GetFocusDisp(map, x, y), expected)
          << name << ", focus " << x << ", " << y;
    }
  }
}

}  // namespace
}  // namespace zuqel
