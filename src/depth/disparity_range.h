// Statistics of a disparity map.
#ifndef ZUQEL_DEPTH_DISPARITY_RANGE_H_
#define ZUQEL_DEPTH_DISPARITY_RANGE_H_

#include <cstdint>

#include "base/plane.h"
#include "depth/value_histogram.h"

namespace zuqel {

// Marks a pixel that the depth chip could not measure. Disparities are 10 bits,
// 0..1022, larger is nearer; whatever lies above 1023 counts as 1023.
inline constexpr uint16_t kInvalidDisparity = 1023;

using DisparityRange = ValueRange;

// Smallest and largest valid disparity of a map, after `percent` of its pixels
// have been trimmed from the upper end and then from the lower end. A walk that
// would cross the other end leaves its own end untrimmed; the upper walk counts
// the pixels at `min`, the lower one never those at `max`. A map without valid
// pixels gives {1023, 0}.
DisparityRange GetDispRange(Plane<const uint16_t> disparity, int32_t percent);

}  // namespace zuqel

#endif  // ZUQEL_DEPTH_DISPARITY_RANGE_H_
