// Blurs at full and at reduced size, and blends by a mask.
#include "cpu_bokeh/two_level_blur.h"

#include "base/kernel_set.h"
#include "cpu_bokeh/blend_kernels.h"
#include "cpu_bokeh/box_blur.h"

namespace zuqel {
namespace {

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
  Kernels<BlendKernels>().by_mask(strong.data, mild.data, mask.data,
                                  sharp.size(), sharp.data);
}

}  // namespace zuqel
