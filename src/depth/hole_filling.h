// Fills pixels that the depth chip could not measure.
#ifndef ZUQEL_DEPTH_HOLE_FILLING_H_
#define ZUQEL_DEPTH_HOLE_FILLING_H_

#include <cstdint>

#include "base/plane.h"

namespace zuqel {

// Replaces, in place, each invalid pixel (1023 or more) by the truncated mean
// of the valid pixels among its eight neighbours: first in raster order,
// counting values filled on the way, then in reverse order for those that had
// no valid neighbour. A map without any valid pixel stays as it is.
void FillDisparityHoles(Plane<uint16_t> disparity);

// The same for a distance map (16 bits, larger is farther), in which 0 marks a
// pixel without a measurement.
void FillDistanceHoles(Plane<uint16_t> distance);

}  // namespace zuqel

#endif  // ZUQEL_DEPTH_HOLE_FILLING_H_
