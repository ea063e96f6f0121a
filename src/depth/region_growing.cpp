// Grows the region in focus from its seeds.
#include "depth/region_growing.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdlib>

namespace zuqel {
namespace {

constexpr int32_t kNotReached = INT32_MIN;

// 1024 ln 0.75 and 1024 ln 1.03: a pixel's likelihood times 1.03 times its
// parent's, at most 1, has to reach 0.75.
constexpr double kLowestLikelihood = -294.58644219062364;
constexpr double kParentBonus = 30.268213495341495;

// Tolerance by the position between the focus and the limit of growing, in 20
// steps.
constexpr std::array<double, 21> kToleranceWeights = {
    1.0,    1.0,    1.125, 1.125, 1.125, 0.75, 0.75, 0.75, 0.75,  0.375, 0.375,
    0.1875, 0.1875, 0.105, 0.105, 0.06,  0.06, 0.03, 0.03, 0.015, 0.015};
constexpr int32_t kToleranceSteps = 20;
constexpr int32_t kFullGrowLimit = 40;

constexpr int32_t kWidestBrightness = 255 * 255;
constexpr int32_t kWidestColour = 510 * 510;

// Truncated toward zero; saturated, and 0 for NaN.
int32_t ToInteger(double value) {
  if (std::isnan(value)) return 0;
  return static_cast<int32_t>(std::clamp<double>(value, INT32_MIN, INT32_MAX));
}

// Squared tolerances of one pixel.
struct Tolerance {
  int32_t colour;
  int32_t brightness;
};

Tolerance ToleranceOf(int32_t score) {
  const double position =
      static_cast<double>(score) / kFullGrowLimit * kToleranceSteps;
  const double below = std::floor(position);
  const double share = position - below;
  const double weight =
      kToleranceWeights[static_cast<size_t>(below)] * (1 - share) +
      kToleranceWeights[static_cast<size_t>(std::ceil(position))] * share;
  const int32_t brightness = ToInteger(weight * 255 + 0.5);
  const int32_t colour = ToInteger(weight * 510 + 0.5);
  return {colour * colour, brightness * brightness};
}

// Squared tolerance of disparity differences, in 1/65536 of a disparity.
int32_t DepthTolerance(double focus, const GrowthLimits& limits) {
  const double reach = 0.01 * (limits.background * limits.grow_limit);
  const double tolerance =
      (65536 / (focus - reach) - 65536 / (focus + reach)) * 0.7;
  return ToInteger(tolerance * tolerance);
}

// The cost of a difference: its square in units of the tolerance. The product
// has 32 bits.
int32_t Cost(uint32_t difference, int32_t squared_tolerance) {
  const auto scaled =
      static_cast<int32_t>(difference * difference * uint32_t{1024});
  return -((scaled / squared_tolerance) >> 3);
}

uint32_t Distance(int32_t a, int32_t b) {
  return static_cast<uint32_t>(std::abs(a - b));
}

class Growth {
 public:
  Growth(Plane<const uint16_t> disparity, const ThreePlanes& image,
         const GrowthLimits& limits, Buffer& scratch)
      : disparity_(disparity),
        image_(image),
        limits_(limits),
        focus_(std::max(limits.focus, 1)),
        min_(std::max(limits.min, 1)),
        max_(std::max(limits.max, 1)),
        grow_limit_(std::min(limits.grow_limit, kFullGrowLimit)),
        costs_(reinterpret_cast<int32_t*>(scratch.bytes())),
        stack_(reinterpret_cast<uint32_t*>(scratch.bytes()) + disparity.size()),
        scores_(scratch.bytes() + disparity.size() * 8) {
    for (int32_t s = 0; s <= kFullGrowLimit; ++s) {
      tolerances_[static_cast<size_t>(s)] = ToleranceOf(s);
    }
    depth_tolerance_ = DepthTolerance(focus_, limits);
  }

  // Scores every pixel and pushes the seeds in raster order.
  void Seed() {
    const double per_percent = 1.0 / limits_.background;
    for (size_t i = 0; i < disparity_.size(); ++i) {
      const int32_t behind = focus_ - disparity_.data[i];
      const int32_t score =
          behind > 0 ? ToInteger(behind * 100 * per_percent + 0.5) : 0;
      scores_[i] = static_cast<uint8_t>(std::clamp(score, 0, 100));
      const bool is_seed = scores_[i] <= limits_.seed_limit;
      costs_[i] = is_seed ? 0 : kNotReached;
      if (is_seed) stack_[stack_size_++] = static_cast<uint32_t>(i);
    }
  }

  void Grow() {
    if (depth_tolerance_ == 0) return;
    while (stack_size_ > 0) {
      const uint32_t index = stack_[--stack_size_];
      const auto width = static_cast<uint32_t>(disparity_.width);
      const auto x = static_cast<int32_t>(index % width);
      const auto y = static_cast<int32_t>(index / width);
      const int32_t threshold = Threshold(costs_[index]);
      TryNeighbour(x, y, 0, -1, threshold);
      TryNeighbour(x, y, -1, 0, threshold);
      TryNeighbour(x, y, 1, 0, threshold);
      TryNeighbour(x, y, 0, 1, threshold);
    }
  }

  void WriteMask(Plane<uint8_t> mask) const {
    for (size_t i = 0; i < mask.size(); ++i) {
      mask.data[i] = costs_[i] != kNotReached ? 255 : 0;
    }
  }

 private:
  static int32_t Threshold(int32_t parent_cost) {
    const double bonus = std::trunc(std::min(parent_cost + kParentBonus, 0.0));
    return ToInteger(kLowestLikelihood - bonus);
  }

  [[nodiscard]] size_t IndexOf(int32_t x, int32_t y) const {
    return static_cast<size_t>(x) +
           static_cast<size_t>(y) * static_cast<size_t>(disparity_.width);
  }

  [[nodiscard]] int32_t ClampedDisparity(size_t index) const {
    return std::max(std::min<int32_t>(disparity_.data[index], max_), min_);
  }

  void TryNeighbour(int32_t x, int32_t y, int32_t dx, int32_t dy,
                    int32_t threshold) {
    const int32_t qx = x + dx;
    const int32_t qy = y + dy;
    if (qx < 0 || qy < 0 || qx >= disparity_.width || qy >= disparity_.height) {
      return;
    }
    const size_t q = IndexOf(qx, qy);
    if (costs_[q] != kNotReached || scores_[q] > grow_limit_) return;
    const size_t p = IndexOf(x, y);
    const size_t r = IndexOf(std::clamp(x - dx, 0, disparity_.width - 1),
                             std::clamp(y - dy, 0, disparity_.height - 1));
    const int32_t cost = CostOf(p, q, r, threshold);
    if (cost == kNotReached) return;
    costs_[q] = cost;
    stack_[stack_size_++] = static_cast<uint32_t>(q);
  }

  // Cost of going from p, with mirror neighbour r, to q; kNotReached when it is
  // below the threshold.
  [[nodiscard]] int32_t CostOf(size_t p, size_t q, size_t r,
                               int32_t threshold) const {
    const int32_t dq = ClampedDisparity(q);
    const Tolerance tolerance =
        dq >= focus_ ? Tolerance{kWidestColour, kWidestBrightness}
                     : tolerances_[scores_[q]];
    if (tolerance.colour == 0 || tolerance.brightness == 0) return kNotReached;

    int32_t cost = Cost(DepthDifference(p, q, r), depth_tolerance_);
    if (cost < threshold) return kNotReached;
    cost += Cost(PlaneDifference(image_.plane1, p, q, r) +
                     PlaneDifference(image_.plane2, p, q, r),
                 tolerance.colour);
    if (cost < threshold) return kNotReached;
    cost += Cost(PlaneDifference(image_.plane0, p, q, r), tolerance.brightness);
    return cost < threshold ? kNotReached : cost;
  }

  // Disparities are 1 or more here, and below 65536.
  [[nodiscard]] uint32_t DepthDifference(size_t p, size_t q, size_t r) const {
    const int32_t dp = ClampedDisparity(p);
    const int32_t dq = ClampedDisparity(q);
    const int32_t dr = ClampedDisparity(r);
    const auto step = [dp](int32_t other) {
      const auto scaled =
          static_cast<int32_t>(Distance(dp, other) * uint32_t{65536});
      return static_cast<uint32_t>(scaled / dp / other);
    };
    return step(dq) + step(dr);
  }

  static uint32_t PlaneDifference(const uint8_t* plane, size_t p, size_t q,
                                  size_t r) {
    return Distance(plane[q], plane[p]) + Distance(plane[r], plane[p]);
  }

  Plane<const uint16_t> disparity_;
  ThreePlanes image_;
  GrowthLimits limits_;
  int32_t focus_;
  int32_t min_;
  int32_t max_;
  int32_t grow_limit_;  // beyond the full limit there is no tolerance
  int32_t depth_tolerance_ = 0;
  std::array<Tolerance, kFullGrowLimit + 1> tolerances_ = {};
  int32_t* costs_;
  uint32_t* stack_;  // a pixel is pushed once
  size_t stack_size_ = 0;
  uint8_t* scores_;
};

}  // namespace

bool ReserveRegionGrowing(ImageSize size, Buffer& scratch) {
  // A cost, an entry of the stack and a score for each pixel.
  return scratch.Reserve(ByteCount(size, 4 + 4 + 1));
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
  Growth growth(disparity, image, limits, scratch);
  growth.Seed();
  growth.Grow();
  growth.WriteMask(mask);
  return true;
}

}  // namespace zuqel
