// Decides on a focus, draws its mask and grows its region.
#include "reference_focus_mask.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <vector>

namespace zuqel::reference {
namespace {

using Mask = zuqel::Image<uint8_t>;

// Shares of the tolerances, by the distance behind the focus.
constexpr std::array kWeights = {
    1.0,    1.0,    1.125, 1.125, 1.125, 0.75, 0.75, 0.75, 0.75,  0.375, 0.375,
    0.1875, 0.1875, 0.105, 0.105, 0.06,  0.06, 0.03, 0.03, 0.015, 0.015};

int Clamp(int value, const FocusRange& range) {
  return std::max<int>(std::min<int>(value, range.max), range.min);
}

// Up, left, right, down.
constexpr std::array<std::array<int, 2>, 4> kNeighbours = {
    {{0, -1}, {-1, 0}, {1, 0}, {0, 1}}};

Mask GrowFocusRegion(Plane<const uint16_t> map, const ThreePlanes& planes,
                     const FocusRange& range) {
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

}  // namespace

std::string DecideFocus(Kind kind, const FocusRange& range,
                        Plane<const uint16_t> map, const ThreePlanes& picture,
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
    const int ahead = (Clamp(map.data[i], range) - focus) * sign;
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
  mask = GrowFocusRegion(map, picture, range);
  return "|" + ranges;
}

}  // namespace zuqel::reference
