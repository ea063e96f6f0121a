// Resizes planes.
#ifndef ZUQEL_CPU_BOKEH_RESIZE_RESIZE_PLANE_H_
#define ZUQEL_CPU_BOKEH_RESIZE_RESIZE_PLANE_H_

#include <array>
#include <cstdint>

#include "base/buffer.h"
#include "base/image_size.h"
#include "base/plane.h"
#include "cpu_bokeh/resize/resize_by_taps.h"

namespace zuqel {

// Memory that resizing reuses.
struct ResizeScratch {
  TapScratch taps;
  std::array<Buffer, 2> between;  // planes between the steps of a chain
};

// Makes room for resizing planes of `Sample`, uint8_t or uint16_t, so that it
// cannot fail; false when there is no memory.
template <typename Sample>
[[nodiscard]] bool ReserveResize(ImageSize from, ImageSize to,
                                 ResizeScratch& scratch);

// Fills `out` with `in` at another size: linear interpolation at centre-aligned
// positions where an axis grows, the mean weighted by coverage where it
// shrinks. Weights are in 1/256; rows are combined before columns, and each
// pass is rounded to nearest. Exact factors that both axes share (enlarging by
// 2, 3, 6, 8, 9 and 12, reducing by 2, 3, 4, 6, 8, 9 and 12) have fixed weights
// of their own, 8, 9 and 12 in two or three steps. The planes do not overlap.
// An empty `in` gives zeros. False, with `out` untouched, when there is no
// memory.
[[nodiscard]] bool ResizePlane(Plane<const uint8_t> in, ResizeScratch& scratch,
                               Plane<uint8_t> out);

// The same for 16 bits, but that enlarging has fixed weights from 1280 x 720 to
// 1920 x 1080 only.
[[nodiscard]] bool ResizePlane(Plane<const uint16_t> in, ResizeScratch& scratch,
                               Plane<uint16_t> out);

}  // namespace zuqel

#endif  // ZUQEL_CPU_BOKEH_RESIZE_RESIZE_PLANE_H_
