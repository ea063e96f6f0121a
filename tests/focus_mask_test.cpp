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
struct Scene {
  [[nodiscard]] Plane<const uint16_t> View() const { return map.View(); }
  [[nodiscard]] ThreePlanes Picture() const {
    const size_t size = picture.size() / 3;
    return {picture.data(), picture.data() + size, picture.data() + 2 * size};
  }

  GuardedImage<uint16_t> map;
  GuardedMemory<uint8_t> picture;
};

int Clamp(int value, const FocusRange& range) {
  return std::max<int>(std::min<int>(value, range.max), range.min);
}

// Up, left, right, down.
constexpr std::array<std::array<int, 2>, 4> kNeighbours = {
    {{0, -1}, {-1, 0}, {1, 0}, {0, 1}}};

Mask ReferenceGrow(const Scene& scene, const FocusRange& range) {
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
    const int64_t wide = difference * difference * 1024;
    return (static_cast<int32_t>(wide) / tolerance) >> 3;
  };
  while (!open.empty() && depth != 0) {
    const int p = open.back();
    open.pop_back();
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
    const int ahead = (Clamp(scene.View().data[i], range) - focus) * sign;
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
  mask = ReferenceGrow(scene, range);
  return "|" + ranges;
}

// Makes each mask of a scene and compares it, what is logged and what is
// printed.
class FocusMasks : public testing::Test {
 protected:
  void Check(const Scene& scene, const FocusRange& range) {
    for (const Kind kind : {kDisparity, kDistance, kExpansion}) {
      SCOPED_TRACE(kKindNames.at(kind));
      Mask expected = {scene.View().width, scene.View().height};
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
    }
  }

 private:
  Buffer scratch_;
  LogCapture log_;
};

// On a map of all values.
TEST_F(FocusMasks, AreDecidedByTheRange) {
  Image<uint16_t> map = {40, 30};
  std::iota(map.values.begin(), map.values.end(), uint16_t{0});
  const Scene scene = {
      GuardedImage(map),
      GuardedMemory<uint8_t>(Random(1).Values<uint8_t>(3 * map.values.size()))};
  // From 100 to 121, ranges of every split, of one value and of two; a focus
  // outside; a turned range; a range from 0.
  std::vector<FocusRange> ranges = {
      {140, 90, 0}, {140, 90, 1023}, {0, 1023, 500}, {100, 0, 50}};
  for (uint16_t max = 100; max <= 121; ++max) {
    for (uint16_t focus = 100; focus <= max; ++focus) {
      ranges.push_back({max, 100, focus});
    }
  }
  for (const FocusRange& range : ranges) {
    SCOPED_TRACE(testing::Message() << range.min << " to " << range.max
                                    << ", focus " << range.focus);
    Check(scene, range);
  }
}

constexpr auto kSizes = std::to_array<Size>(
    {{0, 30}, {1, 1}, {1, 30}, {29, 1}, {29, 2}, {5, 30}, {17, 30}, {29, 30}});

// A walk of disparities with a few outliers, and a picture of noise.
Scene DrawScene(int32_t first, int32_t reach, uint32_t picture_levels,
                const Size& size, Random& random) {
  Image<uint16_t> map = {size.width, size.height};
  const int32_t step = 1 + reach / 8;
  int32_t walk = first;
  for (uint16_t& disparity : map.values) {
    walk += random.Between(0, step) - random.Between(0, step);
    walk = std::clamp(walk, std::max(first - reach, 0), first + reach);
    disparity = static_cast<uint16_t>(random.Below(500) == 0 ? 2000 : walk);
  }
  std::vector<uint8_t> picture(3 * map.values.size());
  for (uint8_t& sample : picture) {
    sample = static_cast<uint8_t>(random.Below(picture_levels));
  }
  return {GuardedImage(map), GuardedMemory<uint8_t>(picture)};
}

// From far to near, flat and deep, grey and of more and more contrast.
// Differences between small disparities are large: far scenes meet squares that
// wrap.
TEST_F(FocusMasks, AreDecidedAndGrownInAllScenes) {
  uint64_t seed = 0;
  for (const int32_t first : {12, 150, 400, 900}) {
    for (const int32_t reach : {6, 10, 60, 99}) {
      for (const Size& size : kSizes) {
        for (int i = 0; i < 40 && !HasFailure(); ++i) {
          SCOPED_TRACE(testing::Message() << "seed " << ++seed);
          Random random(seed);
          const uint32_t picture_levels = 1U << random.Below(9);
          const int32_t focus = first + random.Between(0, reach);
          const int32_t min = focus - 2 * random.Between(0, reach);
          const int32_t max = focus + random.Between(0, 49);
          Check(DrawScene(first, reach, picture_levels, size, random),
                {static_cast<uint16_t>(max),
                 static_cast<uint16_t>(std::max(min, 0)),
                 static_cast<uint16_t>(focus)});
        }
      }
    }
  }
}

}  // namespace
}  // namespace zuqel
