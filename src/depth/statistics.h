// Statistics of disparity and distance maps.
#ifndef ZUQEL_DEPTH_STATISTICS_H_
#define ZUQEL_DEPTH_STATISTICS_H_

#include <cstdint>

#include "base/plane.h"

namespace zuqel {

// Marks a pixel that the depth chip could not measure. Disparities have 10
// bits, 0..1022, larger is nearer; values above 1023 count as 1023.
inline constexpr uint16_t kInvalidDisparity = 1023;

struct ValueRange {
  uint16_t min = 0;
  uint16_t max = 0;
};

// Smallest and largest valid disparity of a map, after `percent` of its pixels
// have been trimmed from the upper end and then from the lower end. A walk that
// would cross the other end leaves its own end untrimmed; the upper walk counts
// the pixels at `min`, the lower one never those at `max`. The product of
// percent and pixels wraps at 32 bits; a negative one trims like a huge one. A
// map without valid pixels gives {1023, 0}.
ValueRange GetDispRange(Plane<const uint16_t> disparity, int32_t percent);

// The most frequent disparity other than 0 within a square around (x, y),
// clipped to the map; the smallest of equally frequent ones, and 0 where there
// is none. The square's radius is min(width, height) / 45, rounded. Counters
// have 16 bits and wrap.
uint16_t GetFocusDisp(Plane<const uint16_t> disparity, uint16_t x, uint16_t y);

// Smallest value of a map; 65535 of an empty one.
uint16_t SmallestDistance(Plane<const uint16_t> distance);

// Writes min((d - smallest) >> 2, 1023) of each distance d, none of which is
// below `smallest`; both planes have one size.
void QuantiseDistance(Plane<const uint16_t> distance, uint16_t smallest,
                      Plane<uint16_t> quantised);

// Like GetDispRange for a quantised map, in which every value is valid: larger
// is farther, and the pixels of a value are counted modulo 65536. An empty map
// gives {65535, 0}.
ValueRange GetQuanDistRange(Plane<const uint16_t> quantised, int32_t percent);

}  // namespace zuqel

#endif  // ZUQEL_DEPTH_STATISTICS_H_
