// Histogram of a disparity map and the two walks that trim its ends.
#include "depth/disparity_range.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <numeric>

namespace zuqel {
namespace {

// Neighbours mostly have equal disparities, so with one counter per value each
// increment would wait for the store of the one before. Eight pixels in a row
// use eight counters instead. A value's counters lie side by side: tables of
// 4096 bytes each would alias in the low address bits that processors compare
// first when they match loads with earlier stores.
constexpr size_t kLanes = 8;
constexpr size_t kBins = size_t{kInvalidDisparity} + 1;

// A map has fewer than 2^31 bytes: its pixels cannot overflow a counter.
using Bin = std::array<uint32_t, kLanes>;
using Histogram = std::array<Bin, kBins>;

Histogram CountValues(Plane<const uint16_t> disparity) {
  Histogram histogram = {};
  const auto count = [&histogram](uint16_t value, size_t lane) {
    ++histogram[std::min(value, kInvalidDisparity)][lane];
  };
  const uint16_t* values = disparity.data;
  const size_t whole = disparity.size() / kLanes * kLanes;
  for (size_t i = 0; i < whole; i += kLanes) {
    for (size_t lane = 0; lane < kLanes; ++lane) count(values[i + lane], lane);
  }
  for (size_t i = whole; i < disparity.size(); ++i) count(values[i], 0);
  return histogram;
}

uint64_t Total(const Bin& bin) {
  return std::accumulate(bin.begin(), bin.end(), uint64_t{0});
}

// The product wraps at 32 bits and the quotient keeps its sign: a negative one
// is a huge number of pixels, so that nothing is trimmed.
uint64_t PixelsToTrim(size_t pixels, int32_t percent) {
  const uint32_t product =
      static_cast<uint32_t>(percent) * static_cast<uint32_t>(pixels);
  return static_cast<uint64_t>(int64_t{static_cast<int32_t>(product) / 100});
}

}  // namespace

DisparityRange GetDispRange(Plane<const uint16_t> disparity, int32_t percent) {
  const Histogram histogram = CountValues(disparity);
  const auto is_empty = [&](int32_t value) {
    return Total(histogram[static_cast<size_t>(value)]) == 0;
  };
  int32_t min = 0;
  while (min < kInvalidDisparity && is_empty(min)) ++min;
  if (min == kInvalidDisparity) return {kInvalidDisparity, 0};
  int32_t max = kInvalidDisparity - 1;
  while (is_empty(max)) --max;

  const uint64_t trimmed = PixelsToTrim(disparity.size(), percent);
  // From `end` in steps of `step`, the first value at which more pixels than
  // those to trim have been passed; `end` when that is not before `stop`.
  const auto trim = [&](int32_t end, int32_t step, int32_t stop) {
    uint64_t passed = 0;
    for (int32_t value = end; value != stop; value += step) {
      passed += Total(histogram[static_cast<size_t>(value)]);
      if (passed > trimmed) return value;
    }
    return end;
  };
  // The upper walk still looks at the pixels of `min`, the lower one never at
  // those of the trimmed `max`.
  max = trim(max, -1, min - 1);
  min = trim(min, +1, max);
  return {static_cast<uint16_t>(min), static_cast<uint16_t>(max)};
}

}  // namespace zuqel
