// Blurs a frame where a mask says so.
#ifndef ZUQEL_CPU_BOKEH_BLUR_AND_BLEND_H_
#define ZUQEL_CPU_BOKEH_BLUR_AND_BLEND_H_

#include <array>
#include <cstdint>
#include <span>

#include "base/plane.h"
#include "cpu_bokeh/blend_mask.h"
#include "cpu_bokeh/blurred_plane.h"
#include "cpu_bokeh/made_rows.h"

namespace zuqel {

// Memory that blends reuse.
struct BlendScratch {
  BlendMask mask;
  std::array<BlurredPlane, 2> planes;
  MadeRows<uint8_t> sharp;
  Buffer blended;

  // Makes room for blends of a frame by a map of these sizes, so that they
  // cannot fail; false when there is no memory.
  [[nodiscard]] bool Reserve(ImageSize frame, ImageSize map);
};

// Blends the first `rows` rows of a plane, in place, with two blurs of the
// plane, by a mask that is enlarged to its size: 0 keeps the sharp pixel and
// 255 takes the strong blur. Weights in between blend the strong with the mild
// blur, so that no edge of the sharp picture shows through: (weight * strong +
// (255 - weight) * mild) / 255, truncated.
void BlurAndBlend(Plane<const uint8_t> mask, int32_t rows,
                  BlendScratch& scratch, Plane<uint8_t> plane);

// The same for both planes of interleaved chroma; see ChromaRegions. `frame` is
// the frame's size, whose width is even; `vu` has as many bytes as its chroma.
void BlurAndBlendChroma(Plane<const uint8_t> mask, ImageSize frame,
                        BlendScratch& scratch, std::span<uint8_t> vu);

}  // namespace zuqel

#endif  // ZUQEL_CPU_BOKEH_BLUR_AND_BLEND_H_
