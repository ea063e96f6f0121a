// Box blur, and the approximation of a Gaussian by three of them.
#ifndef ZUQEL_CPU_BOKEH_BOX_BLUR_H_
#define ZUQEL_CPU_BOKEH_BOX_BLUR_H_

#include <array>
#include <cstdint>

#include "base/buffer.h"
#include "base/image_size.h"
#include "base/plane.h"

namespace zuqel {

inline constexpr int32_t kLargestBoxRadius = UINT16_MAX;

// Grow `scratch` to what a blur of planes of this size needs, so that it cannot
// fail; false when there is no memory.
[[nodiscard]] bool ReserveBoxBlur(ImageSize size, int32_t radius,
                                  Buffer& scratch);
[[nodiscard]] bool ReserveBoxGaussianBlur(ImageSize size, int32_t strength,
                                          Buffer& scratch);

// Each pixel becomes the truncated mean of the 2 * radius + 1 pixels around it
// in its row, and then of those in its column; edge pixels are repeated
// outside. A radius of 0 or less copies; one above 65535 counts as 65535. `in`
// and `out` have one size and may be the same. `scratch` is grown as needed;
// false, with `out` untouched, when there is no memory.
[[nodiscard]] bool BoxBlur(Plane<const uint8_t> in, int32_t radius,
                           Buffer& scratch, Plane<uint8_t> out);

// Radii of three boxes that together approximate a Gaussian of standard
// deviation strength / 3. Their sizes are the two odd numbers around the ideal
// size sqrt(12 sigma^2 / 3 + 1), mixed so as to match its variance best.
std::array<int32_t, 3> GaussianBoxRadii(int32_t strength);

// BoxBlur by each of those radii in turn.
[[nodiscard]] bool BoxGaussianBlur(Plane<const uint8_t> in, int32_t strength,
                                   Buffer& scratch, Plane<uint8_t> out);

}  // namespace zuqel

#endif  // ZUQEL_CPU_BOKEH_BOX_BLUR_H_
