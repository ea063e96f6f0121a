// Distance maps reduced to 10 bits, and their statistics.
#ifndef ZUQEL_DEPTH_QUANTISED_DISTANCE_H_
#define ZUQEL_DEPTH_QUANTISED_DISTANCE_H_

#include <cstdint>

#include "base/plane.h"
#include "depth/value_histogram.h"

namespace zuqel {

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

#endif  // ZUQEL_DEPTH_QUANTISED_DISTANCE_H_
