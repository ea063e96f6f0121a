// Reduces distances to 10 bits and finds their range.
#include "depth/quantised_distance.h"

#include <algorithm>
#include <cstddef>

namespace zuqel {

uint16_t SmallestDistance(Plane<const uint16_t> distance) {
  uint16_t smallest = UINT16_MAX;
  for (size_t i = 0; i < distance.size(); ++i) {
    smallest = std::min(smallest, distance.data[i]);
  }
  return smallest;
}

void QuantiseDistance(Plane<const uint16_t> distance, uint16_t smallest,
                      Plane<uint16_t> quantised) {
  constexpr uint16_t kLargest = ValueHistogram::kLargest;
  for (size_t i = 0; i < distance.size(); ++i) {
    const auto beyond = static_cast<uint16_t>(distance.data[i] - smallest);
    quantised.data[i] = std::min<uint16_t>(beyond >> 2, kLargest);
  }
}

ValueRange GetQuanDistRange(Plane<const uint16_t> quantised, int32_t percent) {
  if (quantised.size() == 0) return {UINT16_MAX, 0};
  ValueHistogram histogram(quantised);
  const ValueRange range = histogram.RangeUpTo(ValueHistogram::kLargest);
  histogram.WrapAt16Bits();
  return histogram.Trim(range, quantised.size(), percent);
}

}  // namespace zuqel
