// The focus decision and the growing of the region in focus beside plain forms,
// on memory with no readable byte behind it.
#include "depth/focus_mask.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <string>
#include <vector>

#include "guarded_memory.h"
#include "log_capture.h"
#include "test_scene.h"

namespace zuqel {
namespace {

constexpr std::array kWeights = {
    1.0,    1.0,    1.125, 1.125, 1.125, 0.75, 0.75, 0.75, 0.75,  0.375, 0.375,
    0.1875, 0.1875, 0.105, 0.105, 0.06,  0.06, 0.03, 0.03, 0.015, 0.015};

// A map beside a picture of noise.
struct Scene {
  int32_t width, height;
  GuardedMemory<uint16_t> values{Plane<int>{nullptr, width, height}.size()};
  GuardedMemory<uint8_t> image{3 * values.size()}, mask{values.size()};
  Plane<const uint16_t> map = {values.data(), width, height};
  Plane<uint8_t> made = {mask.data(), width, height};
  ThreePlanes planes = {image.data(), image.data() + map.size(),
                        image.data() + 2 * map.size()};
};

int Clamp(int value, const FocusRange& range) {
  return std::max<int>(std::min<int>(value, range.max), range.min);
}

enum Variant { kStack, kQueue, kWide };

// With a queue for the stack, or 64 bits for 32, another region grows.
std::vector<uint8_t> PlainGrow(const Scene& scene, const FocusRange& range,
                               Variant variant) {
  const auto& [width, height, values, image, unused, map, made, planes] = scene;
  const int focus = std::max(Clamp(range.focus, range), 1);
  const int background = Clamp(range.focus, range) - range.min;
  std::vector<int64_t> costs(map.size()), disparities(map.size());
  std::vector<double> scores(map.size());
  std::vector<uint8_t> mask(map.size());
  std::vector<int> open;
  int64_t *const cost = costs.data(), *const d = disparities.data();
  double* const score = scores.data();
  uint8_t* const reached = mask.data();
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
    for (const int side : {1, 3, 5, 7}) {
      const int x = p % width, dx = side % 3 - 1;
      const int y = p / width, dy = side / 3 - 1, q = p + dx + dy * width;
      if (x + dx < 0 || x + dx >= width || q < 0 || y + dy >= height) continue;
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

// Makes the mask and returns what is logged and, behind "|", printed. A
// distance is a disparity read backwards, with other parts and texts.
std::string Decide(Kind kind, const FocusRange& range, const Scene& scene,
                   std::vector<uint8_t>& mask) {
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
  for (size_t i = 0; i < mask.size(); ++i) {
    const int ahead = (Clamp(scene.map.data[i], range) - focus) * sign;
    int byte = (is_back ? ahead > 0 : -ahead > sharp) ? 255 : 0;
    if (is_back && ahead > 0 && ahead < step) byte -= ahead * 255 / step;
    const bool is_ramp = -ahead > sharp && -ahead <= back * 40 / 100;
    if (!is_back && is_ramp) byte -= -ahead * 255 / back;
    mask[i] = static_cast<uint8_t>(all == 0 ? 0 : byte);
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
  mask = PlainGrow(scene, range, kStack);
  return "|" + ranges;
}

// First maps of each value with ranges at the edges of a decision. The others
// meet wrapping squares: differences of small disparities are large.
TEST(FocusMasks, AreDecidedGrownAndAnnounced) {
  constexpr std::array<uint16_t, 36> kRanges = {
      115, 100,  105, 116, 100, 105, 117, 100, 106, 120, 100, 110,
      121, 100,  110, 107, 107, 107, 140, 90,  0,   140, 90,  1023,
      0,   1023, 500, 101, 100, 100, 101, 100, 101, 100, 0,   50};
  TestRandom random;
  Buffer scratch;
  LogCapture log;
  int by_queue = 0, by_wide = 0;
  for (size_t k = 0; k < 9000; k += 3) {
    const int middle = random(2) == 0 ? 12 : random(1000);
    const int span = random(100), focus = middle + random(1 + span);
    const int least = focus - 2 * random(span + 1), most = focus + random(50);
    FocusRange range = {uint16_t(most), uint16_t(std::max(least, 0)),
                        uint16_t(focus)};
    const bool is_edge = k < kRanges.size();
    if (is_edge) range = {kRanges[k], kRanges[k + 1], kRanges[k + 2]};
    const Scene scene = {is_edge ? 40 : random(30),
                         is_edge || k % 2 == 0 ? 30 : random(3)};
    const int noise = 1 << (random(5) + random(5));
    for (uint8_t& byte : scene.image.span()) byte = uint8_t(random(noise));
    int value = middle, next = 0;
    for (uint16_t& disparity : scene.values.span()) {
      const int step = random(2 + span / 8);
      value += step - random(2 + span / 8);
      value = std::clamp(value, std::max(middle - span, 0), middle + span);
      disparity = uint16_t(is_edge ? next++ : random(500) == 0 ? 2000 : value);
    }
    for (const Kind kind : {kDisparity, kDistance, kExpansion}) {
      std::vector<uint8_t> mask(scene.map.size());
      const std::string text = Decide(kind, range, scene, mask);
      testing::internal::CaptureStdout();
      if (kind == kDisparity) FocusMaskDisparity(scene.map, range, scene.made);
      if (kind == kDistance) FocusMaskDist(scene.map, range, scene.made);
      if (kind == kExpansion) {
        EXPECT_TRUE(FocusMaskExpansion(scene.map, scene.planes, range, scratch,
                                       scene.made));
      }
      std::string logged;
      for (const std::string& line : log.Take()) logged += line;
      EXPECT_EQ(logged + "|" + testing::internal::GetCapturedStdout(), text);
      ASSERT_TRUE(std::ranges::equal(scene.mask.span(), mask)) << text;
      const bool is_grown = mask == PlainGrow(scene, range, kStack);
      if (kind != kExpansion || !is_grown) continue;
      by_queue += mask != PlainGrow(scene, range, kQueue) ? 1 : 0;
      by_wide += mask != PlainGrow(scene, range, kWide) ? 1 : 0;
    }
  }
  EXPECT_GT(std::min(by_queue, by_wide), 20);
}

}  // namespace
}  // namespace zuqel
