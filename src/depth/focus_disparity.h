// The disparity under the focus point.
#ifndef ZUQEL_DEPTH_FOCUS_DISPARITY_H_
#define ZUQEL_DEPTH_FOCUS_DISPARITY_H_

#include <cstdint>

#include "base/plane.h"

namespace zuqel {

// The most frequent disparity other than 0 in the square around (x, y) that
// lies inside the map; of equally frequent ones the smallest, and 0 where there
// is none. The square's radius is min(width, height) / 45, rounded. Counters
// have 16 bits and wrap.
uint16_t GetFocusDisp(Plane<const uint16_t> disparity, uint16_t x, uint16_t y);

}  // namespace zuqel

#endif  // ZUQEL_DEPTH_FOCUS_DISPARITY_H_
