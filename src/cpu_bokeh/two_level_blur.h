// The two blurs of the CPU render path, and their blend.
#ifndef ZUQEL_CPU_BOKEH_TWO_LEVEL_BLUR_H_
#define ZUQEL_CPU_BOKEH_TWO_LEVEL_BLUR_H_

#include <cstdint>

#include "base/buffer.h"
#include "base/image_size.h"
#include "base/plane.h"
#include "cpu_bokeh/resize/resize_plane.h"

namespace zuqel {

struct BlurScratch {
  ResizeScratch resize;
  Buffer box;
  Buffer reduced;
  Buffer blurred;
};

// Makes room for a blur of planes of this size, so that it cannot fail; false
// when there is no memory.
[[nodiscard]] bool ReserveTwoLevelBlur(ImageSize size, int32_t scale,
                                       int32_t strength, BlurScratch& scratch);

// Blurs a plane by BoxGaussianBlur of `strength` at 1 / `scale` of its size: 1
// is the mild blur, 2 the strong one. `scale` is positive. False, with `out`
// untouched, when there is no memory.
[[nodiscard]] bool TwoLevelBlur(Plane<const uint8_t> in, int32_t scale,
                                int32_t strength, BlurScratch& scratch,
                                Plane<uint8_t> out);

// Blends `strong` into `sharp`, in place, by a mask: 0 keeps the sharp pixel
// and 255 takes the strong blur. Values in between blend the strong with the
// mild blur, so that no edge of the sharp picture shows through. Truncated. All
// planes have one size.
void BlendByMask(Plane<const uint8_t> strong, Plane<const uint8_t> mild,
                 Plane<const uint8_t> mask, Plane<uint8_t> sharp);

}  // namespace zuqel

#endif  // ZUQEL_CPU_BOKEH_TWO_LEVEL_BLUR_H_
