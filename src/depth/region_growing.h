// Edge-aware growing of the region in focus.
#ifndef ZUQEL_DEPTH_REGION_GROWING_H_
#define ZUQEL_DEPTH_REGION_GROWING_H_

#include <cstdint>

#include "base/buffer.h"
#include "base/image_size.h"
#include "base/plane.h"

namespace zuqel {

// The planes of a picture of the map's size: brightness and two of colour.
struct ThreePlanes {
  const uint8_t* plane0 = nullptr;
  const uint8_t* plane1 = nullptr;
  const uint8_t* plane2 = nullptr;
};

struct GrowthLimits {
  // Disparity in focus, inside the trimmed range of the map. Every disparity is
  // clamped to the range.
  int32_t focus = 0;
  int32_t max = 0;
  int32_t min = 0;
  // In percent of the range behind the focus: how far the region may reach, and
  // up to where every pixel is a seed.
  int32_t grow_limit = 0;
  int32_t seed_limit = 0;
};

// Grows `scratch` to what growing in maps of this size needs, so that it cannot
// fail; false when there is no memory.
[[nodiscard]] bool ReserveRegionGrowing(ImageSize size, Buffer& scratch);

// Writes 255 for each pixel that is reached from a seed and 0 for the others.
// A reached pixel reaches a neighbour when the differences of disparity, of
// colour (planes 1 and 2) and of brightness (plane 0) between the two, and
// between the pixel and the neighbour on its other side, are likely within
// tolerances that shrink with the distance behind the focus. Likelihoods are
// natural logarithms in 1/1024. The region depends on the order of growing: the
// pixel reached last grows first, to its neighbours above, left, right and
// below. Squares and their multiples wrap at 32 bits. False, with the mask
// untouched, when there is no memory.
[[nodiscard]] bool GrowFocusRegion(Plane<const uint16_t> disparity,
                                   const ThreePlanes& image,
                                   const GrowthLimits& limits, Buffer& scratch,
                                   Plane<uint8_t> mask);

}  // namespace zuqel

#endif  // ZUQEL_DEPTH_REGION_GROWING_H_
