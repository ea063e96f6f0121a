// The focus decision and the growing of the region in focus against plain
// forms, on memory that ends where a protected page begins.
#include "depth/focus_mask.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

#include "log_capture.h"
#include "same_image.h"

namespace zuqel {
namespace {

using Mask = Image<uint8_t>;

// Shares of the tolerances, by the distance behind the focus.
constexpr std::array kWeights = {
    1.0,    1.0,    1.125, 1.125, 1.125, 0.75, 0.75, 0.75, 0.75,  0.375, 0.375,
    0.1875, 0.1875, 0.105, 0.105, 0.06,  0.06, 0.03, 0.03, 0.015, 0.015};

// A disparity map and a picture of its size.
class Scene {
 public:
  Scene(Image<uint16_t> disparity, const std::vector<uint8_t>& picture)
      : map(std::move(disparity)), guarded_map_(map), picture_(picture) {}

  [[nodiscard]] Plane<const uint16_t> View() const {
    return guarded_map_.View();
  }
  [[nodiscard]] ThreePlanes Picture() const {
    const size_t size = map.values.size();
    return {picture_.data(), picture_.data() + size,
            picture_.data() + 2 * size};
  }

  Image<uint16_t> map;

 private:
  GuardedImage<uint16_t> guarded_map_;
  GuardedMemory<uint8_t> picture_;
};

int Clamp(int value, const FocusRange& range) {
  return std::max<int>(std::min<int>(value, range.max), range.min);
}

// Up, left, right, down.
constexpr std::array<std::array<int, 2>, 4> kNeighbours = {
    {{0, -1}, {-1, 0}, {1, 0}, {0, 1}}};

enum Variant { kStack, kQueue, kWide };

// With a queue for the stack, or 64 bits for 32, another region grows.
Mask ReferenceGrow(const Scene& scene, const FocusRange& range,
                   Variant variant) {
  const Plane<const uint16_t> map = scene.View();
  const ThreePlanes planes = scene.Picture();
  const int width = map.width, height = map.height;
  const int focus = std::max(Clamp(range.focus, range), 1);
  const int background = Clamp(range.focus, range) - range.min;
  std::vector<int64_t> costs(map.size()), disparities(map.size());
  std::vector<double> scores(map.size());
  Mask mask = {width, height};
  std::vector<int> open;
  int64_t *const cost = costs.data(), *const d = disparities.data();
  double* const score = scores.data();
  uint8_t* const reached = mask.values.data();
  for (int i = 0; i < width * height; ++i) {
    const int behind = focus - map.data[i];
    d[i] = std::max(Clamp(map.data[i], range), 1);
    const double part = behind * 100 * (1.0 / background) + 0.5;
    score[i] = behind > 0 ? std::min(std::trunc(part), 100.0) : 0;
    if (score[i] > 15 && background != 0) continue;
    reached[i] = 255;
    open.push_back(i);
  }
  const double k = 0.01 * (background * 40);
  const double t = (65536 / (focus - k) - 65536 / (focus + k)) * 0.7;
  const auto depth = static_cast<int64_t>(std::min(t * t, 2147483647.0));
  const auto price = [&](int64_t difference, int64_t tolerance) {
    const int64_t full = difference * difference * 1024;
    const int64_t used = variant == kWide ? full : static_cast<int32_t>(full);
    return (used / tolerance) >> 3;
  };
  while (!open.empty() && depth != 0) {
    const auto next = variant == kQueue ? open.begin() : open.end() - 1;
    const int p = *next;
    open.erase(next);
    const auto parent = static_cast<double>(cost[p]);
    const double bonus = std::trunc(std::min(parent + 30.268213495341495, 0.0));
    const double least = std::trunc(-294.58644219062364 - bonus);
    for (const auto& [dx, dy] : kNeighbours) {
      const int x = p % width, y = p / width, q = p + dx + dy * width;
      if (x + dx < 0 || x + dx >= width) continue;
      if (y + dy < 0 || y + dy >= height) continue;
      if (reached[q] != 0 || score[q] > 40) continue;
      const int r = std::clamp(x - dx, 0, width - 1) +
                    std::clamp(y - dy, 0, height - 1) * width;
      const double place = score[q] / 40 * 20;
      const double share = place - std::floor(place);
      const double weight = kWeights.at(size_t(place)) * (1 - share) +
                            kWeights.at(size_t(std::ceil(place))) * share;
      const int64_t dp = d[p], dq = d[q], dr = d[r];
      const auto tolerance = [&](int widest) {
        const double wide = dq >= focus ? widest : weight * widest + 0.5;
        return static_cast<int64_t>(wide) * static_cast<int64_t>(wide);
      };
      const auto change = [&](const uint8_t* plane) {
        return std::abs(plane[q] - plane[p]) + std::abs(plane[r] - plane[p]);
      };
      const int64_t apart = std::abs(dq - dp) * 65536 / dp / dq +
                            std::abs(dp - dr) * 65536 / dp / dr;
      const int64_t colour = change(planes.plane1) + change(planes.plane2);
      const int64_t c1 = -price(apart, depth);
      const int64_t c2 = c1 - price(colour, tolerance(510));
      const int64_t c3 = c2 - price(change(planes.plane0), tolerance(255));
      if (static_cast<double>(std::min({c1, c2, c3})) < least) continue;
      cost[q] = c3;
      reached[q] = 255;
      open.push_back(q);
    }
  }
  return mask;
}

enum Kind { kDisparity, kDistance, kExpansion };
constexpr std::array kKindNames = {"disparity", "distance", "expansion"};

// Makes the mask and returns what is logged and, after "|", printed. A distance
// is a disparity read backwards, with other parts and texts.
std::string Decide(Kind kind, const FocusRange& range, const Scene& scene,
                   Mask& mask) {
  const auto line = [](const char* name, int value) {
    return name + (" = " + std::to_string(value)) + "\n";
  };
  const bool is_distance = kind == kDistance;
  const int sign = is_distance ? -1 : 1, focus = Clamp(range.focus, range);
  const int all = range.max - range.min, middle = (range.min + range.max) >> 1;
  const int back = is_distance ? range.max - focus : focus - range.min;
  const int front = all - back, step = (middle - focus) * sign;
  const bool is_back = is_distance ? front >= back : back <= front / 2;
  const int sharp = back * (is_distance ? 20 : 30) / 100;
  for (size_t i = 0; i < mask.values.size(); ++i) {
    const int ahead = (Clamp(scene.map.values[i], range) - focus) * sign;
    int byte = (is_back ? ahead > 0 : -ahead > sharp) ? 255 : 0;
    if (is_back && ahead > 0 && ahead < step) byte -= ahead * 255 / step;
    const bool is_ramp = -ahead > sharp && -ahead <= back * 40 / 100;
    if (!is_back && is_ramp) byte -= -ahead * 255 / back;
    mask.values[i] = static_cast<uint8_t>(all == 0 ? 0 : byte);
  }
  const std::string ranges = line("dRangeBg", back) + line("dRangeFg", front);
  const std::string focused = is_back ? "Focus at BG!\n" : "Focus at FG!\n";
  std::string ends = line("AllinMaxDisp", middle);
  if (is_distance) {
    ends = line("AllinMaxDisp", is_back ? range.max : focus + sharp) +
           line("AllinMinDisp", is_back ? middle : focus - front * 60 / 100);
  } else if (!is_back) {
    ends = line("AllinMaxDisp", focus + front * 40 / 100) +
           line("AllinMinDisp", focus - sharp);
  }
  if (all == 0) return kind == kDisparity ? ranges + "|" : "|";
  if (kind == kDisparity) {
    return ranges + (is_back ? focused + ends + "|" : ends + "|" + focused);
  }
  if (is_distance || is_back) return "|" + ranges + focused + ends;
  mask = ReferenceGrow(scene, range, kStack);
  return "|" + ranges;
}

// Makes each mask of a scene and compares it, what is logged and what is
// printed.
class FocusMasks : public testing::Test {
 protected:
  void Check(const Scene& scene, const FocusRange& range) {
    for (const Kind kind : {kDisparity, kDistance, kExpansion}) {
      SCOPED_TRACE(kKindNames.at(kind));
      Mask expected = {scene.map.width, scene.map.height};
      const std::string text = Decide(kind, range, scene, expected);
      const GuardedImage<uint8_t> made(
          NoiseImage<uint8_t>(expected.width, expected.height, 1));
      testing::internal::CaptureStdout();
      if (kind == kDisparity) {
        FocusMaskDisparity(scene.View(), range, made.View());
      } else if (kind == kDistance) {
        FocusMaskDist(scene.View(), range, made.View());
      } else {
        EXPECT_TRUE(FocusMaskExpansion(scene.View(), scene.Picture(), range,
                                       scratch_, made.View()));
      }
      std::string logged;
      for (const std::string& line : log_.Take()) logged += line;
      EXPECT_EQ(logged + "|" + testing::internal::GetCapturedStdout(), text);
      EXPECT_TRUE(IsSame(made.Copy(), expected));
      if (kind == kExpansion) CountVariants(scene, range, expected);
    }
  }

  // Scenes in which a queue for the stack or wide squares change the region.
  int by_queue_ = 0, by_wide_ = 0;

 private:
  void CountVariants(const Scene& scene, const FocusRange& range,
                     const Mask& mask) {
    if (mask != ReferenceGrow(scene, range, kStack)) return;  // not grown
    by_queue_ += mask != ReferenceGrow(scene, range, kQueue) ? 1 : 0;
    by_wide_ += mask != ReferenceGrow(scene, range, kWide) ? 1 : 0;
  }

  Buffer scratch_;
  LogCapture log_;
};

struct RangeRow {
  const char* name;
  FocusRange range;  // max, min, focus
};
constexpr auto kRangeRows = std::to_array<RangeRow>({
    {"background exactly half of the foreground", {115, 100, 105}},
    {"a little less than half", {116, 100, 105}},
    {"a little less than half, odd", {117, 100, 106}},
    {"background exactly the foreground", {120, 100, 110}},
    {"a little less than the foreground", {121, 100, 110}},
    {"one value", {107, 107, 107}},
    {"focus below the range", {140, 90, 0}},
    {"focus above the range", {140, 90, 1023}},
    {"turned range", {0, 1023, 500}},
    {"two values, focus on the smaller", {101, 100, 100}},
    {"two values, focus on the larger", {101, 100, 101}},
    {"range from 0", {100, 0, 50}},
});

// On a map of all values.
TEST_F(FocusMasks, AreDecidedByTheRange) {
  Image<uint16_t> map = {40, 30};
  std::iota(map.values.begin(), map.values.end(), uint16_t{0});
  const Scene scene(map, Random(1).Values<uint8_t>(3 * map.values.size()));
  for (const auto& [name, range] : kRangeRows) {
    SCOPED_TRACE(name);
    Check(scene, range);
  }
}

struct SceneRow {
  const char* name;
  int32_t first;  // disparity of the first pixel
  int32_t reach;  // of the others to either side
  uint32_t picture_levels;
};
constexpr auto kSceneRows = std::to_array<SceneRow>({
    {"far and flat, grey", 12, 6, 1},
    {"far and flat, some contrast", 12, 10, 16},
    {"far and deep, grey", 12, 60, 1},
    {"far and deep, little contrast", 12, 90, 4},
    {"far and deep, much contrast", 12, 99, 256},
    {"flat, some contrast", 150, 8, 16},
    {"deep, little contrast", 150, 80, 4},
    {"deep, some contrast", 400, 99, 32},
    {"near and flat, little contrast", 900, 10, 4},
    {"near and deep, much contrast", 900, 99, 128},
});

struct Size {
  int32_t width, height;
};
constexpr auto kSizes = std::to_array<Size>(
    {{0, 30}, {1, 1}, {1, 30}, {29, 1}, {29, 2}, {5, 30}, {17, 30}, {29, 30}});

// A walk of disparities with a few outliers, and a picture of noise.
Scene DrawScene(const SceneRow& row, const Size& size, Random& random) {
  Image<uint16_t> map = {size.width, size.height};
  const int32_t step = 1 + row.reach / 8;
  int32_t walk = row.first;
  for (uint16_t& disparity : map.values) {
    walk += random.Between(0, step) - random.Between(0, step);
    walk = std::clamp(walk, std::max(row.first - row.reach, 0),
                      row.first + row.reach);
    disparity = static_cast<uint16_t>(random.Below(500) == 0 ? 2000 : walk);
  }
  std::vector<uint8_t> picture(3 * map.values.size());
  for (uint8_t& sample : picture) {
    sample = static_cast<uint8_t>(random.Below(row.picture_levels));
  }
  return {std::move(map), picture};
}

// Differences between small disparities are large: far scenes meet squares that
// wrap.
TEST_F(FocusMasks, AreDecidedAndGrownInAllScenes) {
  for (const SceneRow& row : kSceneRows) {
    for (const Size& size : kSizes) {
      for (uint64_t seed = 1; seed <= 40 && !HasFailure(); ++seed) {
        SCOPED_TRACE(testing::Message()
                     << row.name << ", " << size.width << " x " << size.height
                     << ", seed " << seed);
        Random random(seed);
        const int32_t focus = row.first + random.Between(0, row.reach);
        const int32_t min = focus - 2 * random.Between(0, row.reach);
        const int32_t max = focus + random.Between(0, 49);
        Check(DrawScene(row, size, random),
              {static_cast<uint16_t>(max),
               static_cast<uint16_t>(std::max(min, 0)),
               static_cast<uint16_t>(focus)});
      }
    }
  }
  EXPECT_GT(by_queue_, 20) << "the order of growing hardly matters";
  EXPECT_GT(by_wide_, 20) << "hardly a square wraps";
}

}  // namespace
}  // namespace zuqel
