// Statistics by histograms of 10-bit values.
#include "depth/statistics.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>

#include "base/kernel_set.h"
#include "depth/map_kernels.h"

namespace zuqel {
namespace {

constexpr int32_t kLargest = 1023;

// Neighbours mostly have equal values, so with one counter per value each
// increment would wait for the store of the one before. Four pixels in a row
// use four counters instead. A value's counters lie side by side: tables of
// 4096 bytes each would alias in the low address bits that processors compare
// first when they match loads with earlier stores.
constexpr size_t kLanes = 4;
using Bin = std::array<uint32_t, kLanes>;

// Pixels by value. A map has fewer than 2^31 bytes: no counter overflows.
using Histogram = std::array<uint32_t, kLargest + 1>;

// Values above the largest count as that.
Histogram HistogramOf(Plane<const uint16_t> values) {
  // Of four values at once.
  constexpr uint64_t kAboveLargest = 0xFC00FC00FC00FC00;
  std::array<Bin, kLargest + 1> bins = {};
  const auto count = [&bins](uint16_t value, size_t lane) {
    ++bins[std::min<size_t>(value, kLargest)][lane];
  };
  const uint16_t* pixels = values.data;
  const size_t whole = values.size() / kLanes * kLanes;
  for (size_t i = 0; i < whole; i += kLanes) {
    uint64_t four = 0;
    std::memcpy(&four, pixels + i, sizeof(four));
    if ((four & kAboveLargest) != 0) {
      for (size_t lane = 0; lane < kLanes; ++lane) {
        count(pixels[i + lane], lane);
      }
      continue;
    }
    ++bins[four & UINT16_MAX][0];
    ++bins[four >> 16 & UINT16_MAX][1];
    ++bins[four >> 32 & UINT16_MAX][2];
    ++bins[four >> 48][3];
  }
  for (size_t i = whole; i < values.size(); ++i) count(pixels[i], 0);
  Histogram histogram;
  std::transform(
      bins.begin(), bins.end(), histogram.begin(),
      [](const Bin& bin) { return bin[0] + bin[1] + bin[2] + bin[3]; });
  return histogram;
}

uint32_t PixelsOf(const Histogram& histogram, int32_t value) {
  return histogram[static_cast<size_t>(value)];
}

// Smallest and largest value up to `last` that some pixel has; {last + 1, 0}
// where none has.
ValueRange RangeUpTo(int32_t last, const Histogram& histogram) {
  int32_t min = 0;
  while (min <= last && PixelsOf(histogram, min) == 0) ++min;
  int32_t max = last;
  while (max > 0 && PixelsOf(histogram, max) == 0) --max;
  return {static_cast<uint16_t>(min),
          static_cast<uint16_t>(min > last ? 0 : max)};
}

// The product wraps at 32 bits and the quotient keeps its sign: a negative one
// is a huge number of pixels, so that nothing is trimmed.
uint64_t PixelsToTrim(size_t pixels, int32_t percent) {
  const uint32_t product =
      static_cast<uint32_t>(percent) * static_cast<uint32_t>(pixels);
  return static_cast<uint64_t>(int64_t{static_cast<int32_t>(product) / 100});
}

// `range` without `percent` of `pixels` at its upper, then at its lower end.
ValueRange Trim(ValueRange range, const Histogram& histogram, size_t pixels,
                int32_t percent) {
  const uint64_t trimmed = PixelsToTrim(pixels, percent);
  // From `end` in steps of `step`, the first value at which more pixels than
  // those to trim have been passed; `end` when that is not before `stop`.
  const auto trim = [&](int32_t end, int32_t step, int32_t stop) {
    uint64_t passed = 0;
    for (int32_t value = end; value != stop; value += step) {
      passed += PixelsOf(histogram, value);
      if (passed > trimmed) return value;
    }
    return end;
  };
  const int32_t max = trim(range.max, -1, range.min - 1);
  const int32_t min = trim(range.min, +1, max);
  return {static_cast<uint16_t>(min), static_cast<uint16_t>(max)};
}

// min(width, height) / 45, rounded, of which the low 8 bits count.
int32_t NeighbourhoodRadius(ImageSize size) {
  const int64_t side = std::min(size.width, size.height);
  return static_cast<uint8_t>((8 * side + 180) / 360);
}

}  // namespace

ValueRange GetDispRange(Plane<const uint16_t> disparity, int32_t percent) {
  const Histogram histogram = HistogramOf(disparity);
  const ValueRange range = RangeUpTo(kInvalidDisparity - 1, histogram);
  if (range.max < range.min) return range;
  return Trim(range, histogram, disparity.size(), percent);
}

uint16_t GetFocusDisp(Plane<const uint16_t> disparity, uint16_t x, uint16_t y) {
  const int32_t radius = NeighbourhoodRadius(disparity.extent());
  const int32_t left = std::max(x - radius, 0);
  const int32_t right = std::min(x + radius, disparity.width - 1);
  const int32_t top = std::max(y - radius, 0);
  const int32_t bottom = std::min(y + radius, disparity.height - 1);

  std::array<uint16_t, kInvalidDisparity + 1> histogram = {};
  for (int32_t row = top; row <= bottom; ++row) {
    const uint16_t* values = disparity.row(row);
    for (int32_t column = left; column <= right; ++column) {
      ++histogram[std::min(values[column], kInvalidDisparity)];
    }
  }
  // Pixels without a measurement do not count; where nothing does, 0 is found.
  histogram[0] = 0;
  const auto* most = std::max_element(histogram.begin(), histogram.end());
  return static_cast<uint16_t>(most - histogram.begin());
}

uint16_t SmallestDistance(Plane<const uint16_t> distance) {
  return Kernels<MapKernels>().smallest(distance.data, distance.size());
}

void QuantiseDistance(Plane<const uint16_t> distance, uint16_t smallest,
                      Plane<uint16_t> quantised) {
  Kernels<MapKernels>().quantise(distance.data, distance.size(), smallest,
                                 quantised.data);
}

ValueRange GetQuanDistRange(Plane<const uint16_t> quantised, int32_t percent) {
  if (quantised.size() == 0) return {UINT16_MAX, 0};
  Histogram histogram = HistogramOf(quantised);
  const ValueRange range = RangeUpTo(kLargest, histogram);
  for (uint32_t& pixels : histogram) pixels &= 0xFFFF;
  return Trim(range, histogram, quantised.size(), percent);
}

}  // namespace zuqel
