// Square filters: each pixel takes the union, smallest or largest of the pixels
// within a radius in both directions that lie inside the image.
#ifndef ZUQEL_DEPTH_MORPHOLOGY_H_
#define ZUQEL_DEPTH_MORPHOLOGY_H_

#include <cstdint>

#include "base/buffer.h"
#include "base/plane.h"

namespace zuqel {

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
