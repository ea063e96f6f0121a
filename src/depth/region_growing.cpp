// Grows the region in focus from those of its seeds that have a pixel to reach
// next to them; the others cannot change anything.
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

// Costs are likelihoods as natural logarithms in -1/1024. A pixel's likelihood
// times 1.03 times its parent's, at most 1, has to reach 0.75: 1024 ln 0.75 is
// -294.6 and 1024 ln 1.03 is 30.3, truncated together with costs.
constexpr int32_t kLargestCost = 294;
constexpr int32_t kFreeCost = 31;

// What the pixels that are reached from one of this cost may cost.
int32_t BudgetAfter(int32_t cost) {
  return kLargestCost + std::min(kFreeCost - cost, 0);
}

// Truncated toward zero; saturated, and 0 for NaN.
int32_t ToInteger(double value) {
  if (std::isnan(value)) return 0;
  return static_cast<int32_t>(std::clamp<double>(value, INT32_MIN, INT32_MAX));
}

// Gives 128 / tolerance of a square as a product. Exact for squares below 2^21:
// the factor is too large by less than 1 / (tolerance * 2^21) of the square.
struct Divider {
  uint64_t factor = 0;
  int shift = 0;
};

constexpr Divider DividerBy(uint32_t tolerance) {
  const int shift = 22 + static_cast<int>(std::bit_width(tolerance));
  return {(uint64_t{128} << shift) / tolerance + 1, shift};
}

// The cost of a difference: an eighth of its square in 1024 parts of the
// tolerance.
int32_t Cost(uint32_t difference, const Divider& divider) {
  const uint64_t square = uint64_t{difference} * difference;
  return static_cast<int32_t>(square * divider.factor >> divider.shift);
}

constexpr Divider DividerBySquareOf(double tolerance) {
  const double raised = tolerance + 0.5;
  const auto rounded = static_cast<uint32_t>(raised);
  return DividerBy(rounded * rounded);
}

// Squared tolerances of one pixel.
struct Tolerance {
  Divider colour;
  Divider brightness;
};

constexpr Tolerance ToleranceOf(int32_t score) {
  const double position =
      static_cast<double>(score) / kFullGrowLimit * kToleranceSteps;
  const auto below = static_cast<size_t>(position);
  const double share = position - static_cast<double>(below);
  const size_t above = below + (share > 0 ? 1 : 0);
  const double weight =
      kToleranceWeights[below] * (1 - share) + kToleranceWeights[above] * share;
  return {DividerBySquareOf(weight * 510), DividerBySquareOf(weight * 255)};
}

constexpr std::array<Tolerance, kFullGrowLimit + 1> kTolerances = [] {
  std::array<Tolerance, kFullGrowLimit + 1> tolerances;
  for (int32_t score = 0; score <= kFullGrowLimit; ++score) {
    tolerances[static_cast<size_t>(score)] = ToleranceOf(score);
  }
  return tolerances;
}();

// Squared tolerance of disparity differences, in 1/65536 of a disparity.
int32_t DepthTolerance(const GrowthLimits& limits) {
  const double background = limits.focus - limits.min;
  const double reach = 0.01 * (background * limits.grow_limit);
  const double tolerance =
      (65536 / (limits.focus - reach) - 65536 / (limits.focus + reach)) * 0.7;
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

// Sides of the image that a pixel touches, next to what is known of it.
constexpr uint8_t kAtTop = 16;
constexpr uint8_t kAtLeft = 32;
constexpr uint8_t kAtRight = 64;
constexpr uint8_t kAtBottom = 128;

// Zeros before and after the states of pixels: so many are looked at with the
// first and the last eight.
size_t Margin(ImageSize size) {
  return static_cast<size_t>(size.width) + 8;
}

// A pixel that was reached, and the budget of those next to it.
struct Reached {
  uint32_t index;
  int32_t budget;
};

class Growth {
 public:
  Growth(Plane<const uint16_t> disparity, const ThreePlanes& image,
         const GrowthLimits& limits, Buffer& scratch)
      : disparity_(disparity),
        image_(image),
        limits_(limits),
        min_(std::max(limits.min, 1)),
        max_(std::max(limits.max, 1)),
        width_(static_cast<uint32_t>(disparity.width)),
        depth_tolerance_(DepthTolerance(limits)),
        stack_(reinterpret_cast<Reached*>(scratch.bytes())),
        scores_(scratch.bytes() + disparity.size() * sizeof(Reached)),
        states_(scores_ + UINT16_MAX + 1 + Margin(disparity.extent())) {}

  void Run(Plane<uint8_t> mask) {
    Classify();
    MarkBorder();
    if (depth_tolerance_ != 0) Grow();
    kernels_.mask_reached(states_, mask.size(), mask.data);
  }

 private:
  // Distance behind the focus in percent of the background, from 0.
  [[nodiscard]] int32_t ScoreOf(int32_t disparity) const {
    const int32_t behind = limits_.focus - disparity;
    if (behind <= 0) return 0;
    const double per_percent = 1.0 / (limits_.focus - limits_.min);
    return ToInteger(behind * 100 * per_percent + 0.5);
  }

  // The smallest disparity of at most that score: scores fall with disparity.
  [[nodiscard]] uint16_t FirstUpTo(int32_t score) const {
    int32_t first = 0;
    for (int32_t last = limits_.focus; first < last;) {
      const int32_t middle = (first + last) / 2;
      if (ScoreOf(middle) <= score) {
        last = middle;
      } else {
        first = middle + 1;
      }
    }
    return static_cast<uint16_t>(first);
  }

  void Classify() {
    const uint16_t seed_from = FirstUpTo(limits_.seed_limit);
    // Beyond the full limit there is no tolerance.
    const uint16_t open_from =
        FirstUpTo(std::min(limits_.grow_limit, kFullGrowLimit));
    for (int32_t d = open_from; d < seed_from; ++d) {
      scores_[d] = static_cast<uint8_t>(ScoreOf(d));
    }
    const size_t margin = Margin(disparity_.extent());
    std::memset(states_ - margin, 0, margin);
    kernels_.classify(disparity_.data, disparity_.size(), open_from, seed_from,
                      states_);
    std::memset(states_ + disparity_.size(), 0, margin);
  }

  void MarkBorder() {
    const size_t size = disparity_.size();
    if (size == 0) return;
    uint8_t* bottom = states_ + (size - width_);
    for (uint32_t x = 0; x < width_; ++x) states_[x] |= kAtTop;
    for (uint32_t x = 0; x < width_; ++x) bottom[x] |= kAtBottom;
    for (size_t first = 0; first < size; first += width_) {
      states_[first] |= kAtLeft;
      states_[first + width_ - 1] |= kAtRight;
    }
  }

  // Seeds grow from the last to the first, each with all that it reaches.
  void Grow() {
    constexpr uint64_t kEach = 0x0101010101010101;
    for (size_t end = (disparity_.size() + 7) / 8 * 8; end > 0; end -= 8) {
      const uint8_t* eight = states_ + (end - 8);
      // Neighbours in another row are found not to be any below.
      const uint64_t beside = LoadEight(eight - 1) | LoadEight(eight + 1) |
                              LoadEight(eight - width_) |
                              LoadEight(eight + width_);
      uint64_t seeds = beside / kOpen & LoadEight(eight) / kSeed & kEach;
      while (seeds != 0) {
        const int bit = 63 - std::countl_zero(seeds);
        seeds ^= uint64_t{1} << bit;
        GrowFrom(static_cast<uint32_t>(end - 8) +
                 static_cast<uint32_t>(bit / 8));
      }
    }
  }

  void GrowFrom(uint32_t seed) {
    Reached* top = stack_;
    *top++ = {seed, BudgetAfter(0)};
    while (top != stack_) {
      const Reached from = *--top;
      const uint32_t p = from.index;
      const uint8_t at = states_[p];
      const auto reach = [&](uint32_t q, uint32_t mirror, uint8_t side,
                             uint8_t mirror_side) {
        if ((at & side) != 0 || (states_[q] & kOpen) == 0) return;
        const int32_t cost = CostOf(p, q, (at & mirror_side) != 0 ? p : mirror);
        if (cost > from.budget) return;
        states_[q] ^= kOpen | kReached;
        *top++ = {q, BudgetAfter(cost)};
      };
      reach(p - width_, p + width_, kAtTop, kAtBottom);
      reach(p - 1, p + 1, kAtLeft, kAtRight);
      reach(p + 1, p - 1, kAtRight, kAtLeft);
      reach(p + width_, p - width_, kAtBottom, kAtTop);
    }
  }

  // Cost of going from p, with mirror neighbour r, to q, which is open: behind
  // the focus, and nearer than the background's end.
  [[nodiscard]] int32_t CostOf(uint32_t p, uint32_t q, uint32_t r) const {
    const Tolerance& tolerance = kTolerances[scores_[disparity_.data[q]]];
    return DepthCost(p, q, r) +
           Cost(PlaneDifference(image_.plane1, p, q, r) +
                    PlaneDifference(image_.plane2, p, q, r),
                tolerance.colour) +
           Cost(PlaneDifference(image_.plane0, p, q, r), tolerance.brightness);
  }

  // The product has 32 bits, of which differences up to this need no more.
  [[nodiscard]] int32_t DepthCost(uint32_t p, uint32_t q, uint32_t r) const {
    constexpr uint32_t kWithoutWrap = 1448;
    const uint32_t dp = ClampedDisparity(p);
    const auto step = [dp](uint32_t other) {
      const uint32_t apart = dp > other ? dp - other : other - dp;
      return apart * 65536 / (dp * other);
    };
    const uint32_t difference =
        step(ClampedDisparity(q)) + step(ClampedDisparity(r));
    if (difference <= kWithoutWrap) return Cost(difference, depth_divider_);
    const auto scaled =
        static_cast<int32_t>(difference * difference * uint32_t{1024});
    return (scaled / depth_tolerance_) >> 3;
  }

  // From 1 up to 65535: what is calculated with two of them fits 32 bits.
  [[nodiscard]] uint32_t ClampedDisparity(size_t index) const {
    return static_cast<uint32_t>(
        std::max(std::min<int32_t>(disparity_.data[index], max_), min_));
  }

  static uint32_t PlaneDifference(const uint8_t* plane, uint32_t p, uint32_t q,
                                  uint32_t r) {
    return Distance(plane[q], plane[p]) + Distance(plane[r], plane[p]);
  }

  const MapKernels& kernels_ = Kernels<MapKernels>();
  Plane<const uint16_t> disparity_;
  ThreePlanes image_;
  GrowthLimits limits_;
  int32_t min_;
  int32_t max_;
  uint32_t width_;
  int32_t depth_tolerance_;
  Divider depth_divider_ =
      DividerBy(static_cast<uint32_t>(std::max(depth_tolerance_, 1)));
  Reached* stack_;   // a pixel is pushed once
  uint8_t* scores_;  // by the disparity of open pixels
  uint8_t* states_;
};

}  // namespace

bool ReserveRegionGrowing(ImageSize size, Buffer& scratch) {
  const auto pixels = ByteCount(size, sizeof(Reached) + 1);
  if (!pixels) return false;
  return scratch.Reserve(*pixels + UINT16_MAX + 1 + 2 * Margin(size));
}

bool GrowFocusRegion(Plane<const uint16_t> disparity, const ThreePlanes& image,
                     const GrowthLimits& limits, Buffer& scratch,
                     Plane<uint8_t> mask) {
  // Without a background everything is a seed.
  if (limits.focus == limits.min) {
    std::fill_n(mask.data, mask.size(), uint8_t{255});
    return true;
  }
  if (!ReserveRegionGrowing(disparity.extent(), scratch)) return false;
  Growth(disparity, image, limits, scratch).Run(mask);
  return true;
}

}  // namespace zuqel
