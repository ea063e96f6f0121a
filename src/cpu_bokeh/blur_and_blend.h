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

  // Takes the mask of all planes of a frame, for which there is room. It stays
  // as it is meanwhile.
  void Begin(Plane<const uint8_t> map, ImageSize frame);
};

// Blends the first `rows` rows of a plane of the frame's size, in place, with
// two blurs of the plane, by the mask, which is enlarged to that size: 0 keeps
// the sharp pixel and 255 takes the strong blur. Weights in between blend the
// strong with the mild blur, so that no edge of the sharp picture shows
// through: (weight * strong + (255 - weight) * mild) / 255, truncated.
void BlurAndBlend(int32_t rows, BlendScratch& scratch, Plane<uint8_t> plane);

// The same for both planes of interleaved chroma; see ChromaRegions. The width
// of `frame` is even; `vu` has as many bytes as its chroma.
void BlurAndBlendChroma(ImageSize frame, BlendScratch& scratch,
                        std::span<uint8_t> vu);

}  // namespace zuqel

#endif  // ZUQEL_CPU_BOKEH_BLUR_AND_BLEND_H_
