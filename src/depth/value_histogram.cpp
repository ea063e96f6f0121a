// Counts values in lanes and trims ranges.
#include "depth/value_histogram.h"

#include <algorithm>
#include <numeric>

namespace zuqel {
namespace {

// Neighbours mostly have equal values, so with one counter per value each
// increment would wait for the store of the one before. Eight pixels in a row
// use eight counters instead. A value's counters lie side by side: tables of
// 4096 bytes each would alias in the low address bits that processors compare
// first when they match loads with earlier stores.
constexpr size_t kLanes = 8;
using Bin = std::array<uint32_t, kLanes>;

// The product wraps at 32 bits and the quotient keeps its sign: a negative one
// is a huge number of pixels, so that nothing is trimmed.
uint64_t PixelsToTrim(size_t pixels, int32_t percent) {
  const uint32_t product =
      static_cast<uint32_t>(percent) * static_cast<uint32_t>(pixels);
  return static_cast<uint64_t>(int64_t{static_cast<int32_t>(product) / 100});
}

}  // namespace

ValueHistogram::ValueHistogram(Plane<const uint16_t> values) {
  std::array<Bin, kLargest + 1> bins = {};
  const auto count = [&bins](uint16_t value, size_t lane) {
    ++bins[std::min<size_t>(value, kLargest)][lane];
  };
  const uint16_t* pixels = values.data;
  const size_t whole = values.size() / kLanes * kLanes;
  for (size_t i = 0; i < whole; i += kLanes) {
    for (size_t lane = 0; lane < kLanes; ++lane) count(pixels[i + lane], lane);
  }
  for (size_t i = whole; i < values.size(); ++i) count(pixels[i], 0);
  std::transform(bins.begin(), bins.end(), totals_.begin(), [](const Bin& bin) {
    return std::accumulate(bin.begin(), bin.end(), uint32_t{0});
  });
}

void ValueHistogram::WrapAt16Bits() {
  for (uint32_t& total : totals_) total &= 0xFFFF;
}

ValueRange ValueHistogram::RangeUpTo(int32_t last) const {
  int32_t min = 0;
  while (min <= last && (*this)[min] == 0) ++min;
  int32_t max = std::max(last, 0);
  while (max > 0 && (*this)[max] == 0) --max;
  return {static_cast<uint16_t>(min),
          static_cast<uint16_t>(min > last ? 0 : max)};
}

ValueRange ValueHistogram::Trim(ValueRange range, size_t pixels,
                                int32_t percent) const {
  const uint64_t trimmed = PixelsToTrim(pixels, percent);
  // From `end` in steps of `step`, the first value at which more pixels than
  // those to trim have been passed; `end` when that is not before `stop`.
  const auto trim = [&](int32_t end, int32_t step, int32_t stop) {
    uint64_t passed = 0;
    for (int32_t value = end; value != stop; value += step) {
      passed += (*this)[value];
      if (passed > trimmed) return value;
    }
    return end;
  };
  const int32_t max = trim(range.max, -1, range.min - 1);
  const int32_t min = trim(range.min, +1, max);
  return {static_cast<uint16_t>(min), static_cast<uint16_t>(max)};
}

}  // namespace zuqel
