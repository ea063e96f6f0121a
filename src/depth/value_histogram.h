// Histogram of 10-bit values, and the two walks that trim its ends.
#ifndef ZUQEL_DEPTH_VALUE_HISTOGRAM_H_
#define ZUQEL_DEPTH_VALUE_HISTOGRAM_H_

#include <array>
#include <cstddef>
#include <cstdint>

#include "base/plane.h"

namespace zuqel {

struct ValueRange {
  uint16_t min = 0;
  uint16_t max = 0;
};

class ValueHistogram {
 public:
  static constexpr int32_t kLargest = 1023;

  // Values above 1023 count as 1023.
  explicit ValueHistogram(Plane<const uint16_t> values);

  // Pixels of one value. A map has fewer than 2^31 bytes: no counter overflows.
  [[nodiscard]] uint32_t operator[](int32_t value) const {
    return totals_[static_cast<size_t>(value)];
  }

  // Counts modulo 65536, as counters of 16 bits would.
  void WrapAt16Bits();

  // Smallest and largest value up to `last` that some pixel has; {last + 1, 0}
  // where none has.
  [[nodiscard]] ValueRange RangeUpTo(int32_t last) const;

  // `range` without `percent` of `pixels` at its upper end, and then at its
  // lower end: each end moves to the first value at which more pixels than
  // those have been passed. A walk that would cross the other end leaves its
  // own end untrimmed. The upper walk still looks at the pixels of `min`, the
  // lower one never at those of the trimmed `max`. The product of percent and
  // pixels wraps at 32 bits; a negative one trims like a huge one.
  [[nodiscard]] ValueRange Trim(ValueRange range, size_t pixels,
                                int32_t percent) const;

 private:
  std::array<uint32_t, kLargest + 1> totals_ = {};
};

}  // namespace zuqel

#endif  // ZUQEL_DEPTH_VALUE_HISTOGRAM_H_
