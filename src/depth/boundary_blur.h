// Smoothing of marked pixels of a map.
#ifndef ZUQEL_DEPTH_BOUNDARY_BLUR_H_
#define ZUQEL_DEPTH_BOUNDARY_BLUR_H_

#include <cstdint>

#include "base/buffer.h"
#include "base/image_size.h"
#include "base/plane.h"

namespace zuqel {

// Grows `scratch` to what smoothing maps of this size needs, so that it cannot
// fail; false when there is no memory.
[[nodiscard]] bool ReserveBoundaryBlur(ImageSize size, Buffer& scratch);

// Smooths the pixels of `map` whose mark is not 0, in place and in raster
// order. Such a pixel becomes the truncated mean of those pixels of its 7 x 7
// neighbourhood inside the image whose mark is below 255; its mark becomes 0,
// so that it counts for later pixels. A pixel without such a neighbour keeps
// its value and mark. A second sweep in reverse order does the same for the
// marks that remain. `map` and `marks` have one size. `scratch` is grown as
// needed; false, with both untouched, when there is no memory.
[[nodiscard]] bool BoundaryBlur(Plane<uint8_t> map, Plane<uint8_t> marks,
                                Buffer& scratch);

}  // namespace zuqel

#endif  // ZUQEL_DEPTH_BOUNDARY_BLUR_H_
