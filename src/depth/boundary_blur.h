// Smoothing of marked pixels of a map.
#ifndef ZUQEL_DEPTH_BOUNDARY_BLUR_H_
#define ZUQEL_DEPTH_BOUNDARY_BLUR_H_

#include <cstdint>

#include "base/plane.h"

namespace zuqel {

// In place and in raster order, each pixel whose mark is not 0 becomes the
// truncated mean of the pixels within 3 in both directions, inside the image,
// whose mark is below 255; then its mark is 0, and it counts for later ones.
// One with no such neighbour keeps value and mark. A second sweep in reverse
// order takes up the marks that remain. `map` and `marks` have one size.
void BoundaryBlur(Plane<uint8_t> map, Plane<uint8_t> marks);

}  // namespace zuqel

#endif  // ZUQEL_DEPTH_BOUNDARY_BLUR_H_
