// Plain forms of resampling and box blur, weighted sums along one axis and then
// along the other, and of what is made with them.
#ifndef ZUQEL_TESTING_REFERENCE_PLANES_H_
#define ZUQEL_TESTING_REFERENCE_PLANES_H_

#include <cstdint>

#include "plane_image.h"

namespace zuqel::reference {

// Of bytes or 16 bits.
template <typename T>
Image<T> ResizePlane(Image<T> in, int32_t width, int32_t height);

Image<uint8_t> BoxBlur(const Image<uint8_t>& in, int32_t radius);

// `sharp` blended with its two blurs, each made whole, by weights of its size.
Image<uint8_t> BlurAndBlend(const Image<uint8_t>& sharp,
                            const Image<uint8_t>& weights);

}  // namespace zuqel::reference

#endif  // ZUQEL_TESTING_REFERENCE_PLANES_H_
