// Resizes planes.
#ifndef ZUQEL_CPU_BOKEH_RESIZE_RESIZE_PLANE_H_
#define ZUQEL_CPU_BOKEH_RESIZE_RESIZE_PLANE_H_

#include <cstdint>

#include "base/plane.h"
#include "cpu_bokeh/resize/resized_rows.h"

namespace zuqel {

// Memory that resizing reuses.
struct ResizeScratch {
  ResizedRows<uint8_t> bytes;
  ResizedRows<uint16_t> words;
};

// Fills `out` with `in` at another size, as ResizedRows makes its rows. The
// planes do not overlap. An empty `in` gives zeros. False, with `out`
// untouched, when there is no memory.
[[nodiscard]] bool ResizePlane(Plane<const uint8_t> in, ResizeScratch& scratch,
                               Plane<uint8_t> out);

// The same for 16 bits, but that enlarging has weights of its own from
// 1280 x 720 to 1920 x 1080 only, and is never made in steps.
[[nodiscard]] bool ResizePlane(Plane<const uint16_t> in, ResizeScratch& scratch,
                               Plane<uint16_t> out);

}  // namespace zuqel

#endif  // ZUQEL_CPU_BOKEH_RESIZE_RESIZE_PLANE_H_
