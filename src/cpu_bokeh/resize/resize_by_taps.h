// Resizes by any ratio.
#ifndef ZUQEL_CPU_BOKEH_RESIZE_RESIZE_BY_TAPS_H_
#define ZUQEL_CPU_BOKEH_RESIZE_RESIZE_BY_TAPS_H_

#include <cstdint>

#include "base/buffer.h"
#include "base/image_size.h"
#include "base/plane.h"
#include "cpu_bokeh/resize/axis_taps.h"
#include "cpu_bokeh/resize/enlarge_rows.h"

namespace zuqel {

struct TapScratch {
  AxisTaps columns;
  AxisTaps rows;
  Buffer row;
};

// `Sample` is uint8_t or uint16_t here, and no plane is empty.

// Makes room for a change of size; false when there is no memory.
template <typename Sample>
[[nodiscard]] bool ReserveTaps(ImageSize from, ImageSize to,
                               TapScratch& scratch);

// Combines rows, then columns, each by its axis's taps and rounded to nearest.
// `resize_row`, unless null, replaces the taps of the columns. `scratch` has
// been reserved.
template <typename Sample>
void ResizeByTaps(Plane<const Sample> in, RowFunction<Sample> resize_row,
                  TapScratch& scratch, Plane<Sample> out);

}  // namespace zuqel

#endif  // ZUQEL_CPU_BOKEH_RESIZE_RESIZE_BY_TAPS_H_
