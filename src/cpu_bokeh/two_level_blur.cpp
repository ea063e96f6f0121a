// Blurs at full and at reduced size, and blends by a mask.
#include "cpu_bokeh/two_level_blur.h"

#include <cstddef>

#include "cpu_bokeh/box_blur.h"

namespace zuqel {
namespace {

// floor(value / 255) for products of two bytes: 257 / 65536 is 1 / 255 less one
// part in 65536, for which the added 1 makes up.
inline uint8_t DivideBy255(uint16_t value) {
  const auto next = static_cast<uint16_t>(value + 1U);
  return static_cast<uint8_t>(next * 257U >> 16);
}

ImageSize ReducedSize(ImageSize size, int32_t scale) {
  return {size.width / scale, size.height / scale};
}

}  // namespace

bool ReserveTwoLevelBlur(ImageSize size, int32_t scale, int32_t strength,
                         BlurScratch& scratch) {
  const ImageSize small = ReducedSize(size, scale);
  return ReserveBoxGaussianBlur(small, strength, scratch.box) &&
         (scale == 1 || (scratch.reduced.Reserve(ByteCount(small, 1)) &&
                         scratch.blurred.Reserve(ByteCount(small, 1)) &&
                         ReserveResize<uint8_t>(size, small, scratch.resize) &&
                         ReserveResize<uint8_t>(small, size, scratch.resize)));
}

bool TwoLevelBlur(Plane<const uint8_t> in, int32_t scale, int32_t strength,
                  BlurScratch& scratch, Plane<uint8_t> out) {
  if (!ReserveTwoLevelBlur(in.extent(), scale, strength, scratch)) return false;
  if (scale == 1) return BoxGaussianBlur(in, strength, scratch.box, out);
  const auto [width, height] = ReducedSize(in.extent(), scale);
  const Plane<uint8_t> reduced = {scratch.reduced.bytes(), width, height};
  const Plane<uint8_t> blurred = {scratch.blurred.bytes(), width, height};
  return ResizePlane(in, scratch.resize, reduced) &&
         BoxGaussianBlur(reduced, strength, scratch.box, blurred) &&
         ResizePlane(Plane<const uint8_t>(blurred), scratch.resize, out);
}

void BlendByMask(Plane<const uint8_t> strong, Plane<const uint8_t> mild,
                 Plane<const uint8_t> mask, Plane<uint8_t> sharp) {
  const size_t count = sharp.size();
  for (size_t i = 0; i < count; ++i) {
    const uint8_t weight = mask.data[i];
    const uint8_t sharp_pixel = sharp.data[i], mild_pixel = mild.data[i];
    // At 255 the other pixel has no weight, so either will do.
    const uint8_t other = weight == 0 ? sharp_pixel : mild_pixel;
    const int more = weight * (strong.data[i] - other);
    sharp.data[i] = DivideBy255(static_cast<uint16_t>(255 * other + more));
  }
}

}  // namespace zuqel
