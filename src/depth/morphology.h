// Square filters: each pixel becomes the union, minimum or maximum of the
// pixels inside the image that lie within a radius in both directions.
#ifndef ZUQEL_DEPTH_MORPHOLOGY_H_
#define ZUQEL_DEPTH_MORPHOLOGY_H_

#include <cstdint>

#include "base/buffer.h"
#include "base/image_size.h"
#include "base/plane.h"

namespace zuqel {

// Grows `scratch` to what a filter of images of this size needs, so that it
// cannot fail; false when there is no memory.
[[nodiscard]] bool ReserveSquareFilter(ImageSize size, uint8_t radius,
                                       Buffer& scratch);

// `in` and `out` have one size and may be the same. `scratch` is grown as
// needed; false, with `out` untouched, when there is no memory.

// Bitwise union.
[[nodiscard]] bool DilateMask(Plane<const uint8_t> in, uint8_t radius,
                              Buffer& scratch, Plane<uint8_t> out);
[[nodiscard]] bool ErodeMin(Plane<const uint8_t> in, uint8_t radius,
                            Buffer& scratch, Plane<uint8_t> out);
[[nodiscard]] bool DilateMax(Plane<const uint8_t> in, uint8_t radius,
                             Buffer& scratch, Plane<uint8_t> out);

}  // namespace zuqel

#endif  // ZUQEL_DEPTH_MORPHOLOGY_H_
