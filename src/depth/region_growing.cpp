// Grows the region in focus from its seeds.
#include "depth/region_growing.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "base/kernel_set.h"
#include "depth/map_kernels.h"

namespace zuqel {
namespace {

// Tolerance by the position between the focus and the limit of growing, in 20
// steps.
constexpr std::array<double, 21> kToleranceWeights = {
    1.0,    1.0,    1.125, 1.125, 1.125, 0.75, 0.75, 0.75, 0.75,  0.375, 0.375,
    0.1875, 0.1875, 0.105, 0.105, 0.06,  0.06, 0.03, 0.03, 0.015, 0.015};
constexpr int32_t kToleranceSteps = 20;
constexpr int32_t kFullGrowLimit = 40;

// What a pixel may cost, in 1/1024: its likelihood times 1.03 times its
// parent's, at most 1, has to reach 0.75. 1024 ln 0.75 is -294.6 and 1024 ln
// 1.03 is 30.3, both truncated with the sums they enter.
constexpr int32_t kHighestCost = 294;
constexpr int32_t kCostWithoutPenalty = 31;

// Truncated toward zero; saturated, and 0 for NaN.
int32_t ToInteger(double value) {
  if (std::isnan(value)) return 0;
  return static_cast<int32_t>(std::clamp<double>(value, INT32_MIN, INT32_MAX));
}

// Division by a constant as a product: floor(square * 128 / tolerance).
struct Divider {
  uint64_t factor = 0;
  int shift = 0;
};

Divider DividerBy(uint32_t tolerance) {
  const int shift = 22 + std::bit_width(tolerance);
  return {((uint64_t{128} << shift) / tolerance) + 1, shift};
}

int32_t Quotient(uint32_t square, const Divider& divider) {
  return static_cast<int32_t>(square * divider.factor >> divider.shift);
}

struct Tolerance {
  Divider colour;
  Divider brightness;
};

Tolerance ToleranceOf(int32_t score) {
  const double position =
      static_cast<double>(score) / kFullGrowLimit * kToleranceSteps;
  const double below = std::floor(position);
  const double share = position - below;
  const double weight =
      kToleranceWeights[static_cast<size_t>(below)] * (1 - share) +
      kToleranceWeights[static_cast<size_t>(std::ceil(position))] * share;
  const auto brightness = static_cast<uint32_t>(weight * 255 + 0.5);
  const auto colour = static_cast<uint32_t>(weight * 510 + 0.5);
  return {DividerBy(colour * colour), DividerBy(brightness * brightness)};
}

// Squared tolerance of disparity differences, in 1/65536 of a disparity.
int32_t DepthTolerance(const GrowthLimits& limits, double background) {
  const double reach = 0.01 * (background * limits.grow_limit);
  const double focus = limits.focus;
  const double tolerance =
      (65536 / (focus - reach) - 65536 / (focus + reach)) * 0.7;
  return ToInteger(tolerance * tolerance);
}

uint32_t Distance(int32_t a, int32_t b) {
  return static_cast<uint32_t>(std::abs(a - b));
}

uint64_t LoadEight(const uint8_t* bytes) {
  uint64_t eight = 0;
  std::memcpy(&eight, bytes, sizeof(eight));
  return eight;
}

constexpr uint64_t kEachByte = 0x0101010101010101;

// Sides of the image that a pixel touches, next to what is known of it.
constexpr uint8_t kAtTop = 16;
constexpr uint8_t kAtLeft = 32;
constexpr uint8_t kAtRight = 64;
constexpr uint8_t kAtBottom = 128;

struct Entry {
  uint32_t index;
  int32_t budget;
};

size_t Slack(ImageSize size) {
  return (static_cast<size_t>(size.width) + 8 + 7) / 8 * 8;
}

class Growth {
 public:
  Growth(Plane<const uint16_t> disparity, const ThreePlanes& image,
         const GrowthLimits& limits, Buffer& scratch)
      : disparity_(disparity),
        image_(image),
        limits_(limits),
        background_(limits.focus - limits.min),
        min_(std::max(limits.min, 1)),
        max_(std::max(limits.max, 1)),
        width_(static_cast<uint32_t>(disparity.width)),
        stack_(reinterpret_cast<Entry*>(scratch.bytes())),
        states_(scratch.bytes() + disparity.size() * 8 +
                Slack(disparity.extent())),
        scores_(states_ + disparity.size() + Slack(disparity.extent())) {
    for (int32_t s = 0; s <= kFullGrowLimit; ++s) {
      tolerances_[static_cast<size_t>(s)] = ToleranceOf(s);
    }
    depth_tolerance_ = DepthTolerance(limits, background_);
    if (depth_tolerance_ != 0) {
      depth_divider_ = DividerBy(static_cast<uint32_t>(depth_tolerance_));
    }
  }

  void Run(Plane<uint8_t> mask) {
    Classify();
    if (depth_tolerance_ != 0) Grow();
    kernels_.mask_reached(states_, mask.size(), mask.data);
  }

 private:
  [[nodiscard]] int32_t ScoreOf(int32_t disparity) const {
    const int32_t behind = limits_.focus - disparity;
    if (behind <= 0) return 0;
    const double per_percent = 1.0 / background_;
    return std::clamp(ToInteger(behind * 100 * per_percent + 0.5), 0, 100);
  }

  // Scores fall with the disparity: the first one with at most that score.
  [[nodiscard]] int32_t FirstUpTo(int32_t score) const {
    int32_t low = 0, high = limits_.focus;
    while (low < high) {
      const int32_t middle = (low + high) / 2;
      if (ScoreOf(middle) <= score) {
        high = middle;
      } else {
        low = middle + 1;
      }
    }
    return low;
  }

  void Classify() {
    const int32_t grow_limit = std::min(limits_.grow_limit, kFullGrowLimit);
    const auto seed_from = static_cast<uint16_t>(FirstUpTo(limits_.seed_limit));
    const auto open_from = static_cast<uint16_t>(FirstUpTo(grow_limit));
    for (int32_t d = open_from; d < seed_from; ++d) {
      scores_[d] = static_cast<uint8_t>(ScoreOf(d));
    }
    const size_t size = disparity_.size();
    std::memset(states_ - Slack(disparity_.extent()), 0,
                Slack(disparity_.extent()));
    std::memset(states_ + size, 0, Slack(disparity_.extent()));
    kernels_.classify(disparity_.data, size, open_from, seed_from, states_);
    if (size == 0) return;
    uint8_t* last = states_ + size - width_;
    for (uint32_t x = 0; x < width_; ++x) states_[x] |= kAtTop;
    for (uint32_t x = 0; x < width_; ++x) last[x] |= kAtBottom;
    for (uint8_t* row = states_; row <= last; row += width_) {
      row[0] |= kAtLeft;
      row[width_ - 1] |= kAtRight;
    }
  }

  void Grow() {
    const size_t size = disparity_.size();
    for (size_t end = (size + 7) / 8 * 8; end > 0; end -= 8) {
      const uint8_t* eight = states_ + end - 8;
      uint64_t active = LoadEight(eight - 1) | LoadEight(eight + 1) |
                        LoadEight(eight - width_) | LoadEight(eight + width_);
      active &= LoadEight(eight) / kSeed & kEachByte;
      while (active != 0) {
        const int bit = 63 - std::countl_zero(active);
        active ^= uint64_t{1} << bit;
        GrowFrom(static_cast<uint32_t>(end - 8) +
                 static_cast<uint32_t>(bit / 8));
      }
    }
  }

  void GrowFrom(uint32_t seed) {
    Entry* top = stack_;
    *top++ = {seed, kHighestCost};
    while (top != stack_) {
      const Entry entry = *--top;
      const uint32_t p = entry.index;
      const uint32_t at = states_[p];
      const auto try_to = [&](uint32_t q, uint32_t r, uint8_t border,
                              uint8_t mirror_border) {
        if ((at & border) != 0 || (states_[q] & kOpen) == 0) return;
        const int32_t cost = CostOf(p, q, (at & mirror_border) != 0 ? p : r);
        if (cost > entry.budget) return;
        states_[q] ^= kOpen | kReached;
        *top++ = {q, kHighestCost + std::min(kCostWithoutPenalty - cost, 0)};
      };
      try_to(p - width_, p + width_, kAtTop, kAtBottom);
      try_to(p - 1, p + 1, kAtLeft, kAtRight);
      try_to(p + 1, p - 1, kAtRight, kAtLeft);
      try_to(p + width_, p - width_, kAtBottom, kAtTop);
    }
  }

  // Cost of going from p, with mirror neighbour r, to q.
  [[nodiscard]] int32_t CostOf(uint32_t p, uint32_t q, uint32_t r) const {
    const int32_t dq = disparity_.data[q];
    const Tolerance& tolerance = tolerances_[scores_[dq]];
    const uint32_t colour = PlaneDifference(image_.plane1, p, q, r) +
                            PlaneDifference(image_.plane2, p, q, r);
    const uint32_t brightness = PlaneDifference(image_.plane0, p, q, r);
    return DepthCost(p, q, r) + Quotient(colour * colour, tolerance.colour) +
           Quotient(brightness * brightness, tolerance.brightness);
  }

  [[nodiscard]] int32_t ClampedDisparity(size_t index) const {
    return std::max(std::min<int32_t>(disparity_.data[index], max_), min_);
  }

  // Disparities are 1 or more here, and below 65536.
  [[nodiscard]] int32_t DepthCost(uint32_t p, uint32_t q, uint32_t r) const {
    const int32_t dp = ClampedDisparity(p);
    const auto step = [dp](int32_t other) {
      const uint32_t scaled = Distance(dp, other) * uint32_t{65536};
      return scaled / (static_cast<uint32_t>(dp) * static_cast<uint32_t>(other));
    };
    const uint32_t difference =
        step(ClampedDisparity(q)) + step(ClampedDisparity(r));
    if (difference < 1448) {
      return Quotient(difference * difference, depth_divider_);
    }
    // The product has 32 bits.
    const auto scaled =
        static_cast<int32_t>(difference * difference * uint32_t{1024});
    return (scaled / depth_tolerance_) >> 3;
  }

  static uint32_t PlaneDifference(const uint8_t* plane, uint32_t p, uint32_t q,
                                  uint32_t r) {
    return Distance(plane[q], plane[p]) + Distance(plane[r], plane[p]);
  }

  const MapKernels& kernels_ = Kernels<MapKernels>();
  Plane<const uint16_t> disparity_;
  ThreePlanes image_;
  GrowthLimits limits_;
  int32_t background_;
  int32_t min_;
  int32_t max_;
  uint32_t width_;
  int32_t depth_tolerance_ = 0;
  Divider depth_divider_;
  std::array<Tolerance, kFullGrowLimit + 1> tolerances_ = {};
  Entry* stack_;  // a pixel is pushed once
  uint8_t* states_;
  uint8_t* scores_;  // by disparity
};

}  // namespace

bool ReserveRegionGrowing(ImageSize size, Buffer& scratch) {
  const auto pixels = ByteCount(size, 4 + 4 + 1);
  if (!pixels) return false;
  return scratch.Reserve(*pixels + 2 * Slack(size) + (UINT16_MAX + 1));
}

bool GrowFocusRegion(Plane<const uint16_t> disparity, const ThreePlanes& image,
                     const GrowthLimits& limits, Buffer& scratch,
                     Plane<uint8_t> mask) {
  // Without a background everything is a seed.
  if (limits.background == 0) {
    std::fill_n(mask.data, mask.size(), uint8_t{255});
    return true;
  }
  if (!ReserveRegionGrowing(disparity.extent(), scratch)) return false;
  Growth(disparity, image, limits, scratch).Run(mask);
  return true;
}

}  // namespace zuqel
