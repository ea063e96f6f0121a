// The frame at the size of the map.
#ifndef ZUQEL_CPU_BOKEH_FRAME_REDUCTION_H_
#define ZUQEL_CPU_BOKEH_FRAME_REDUCTION_H_

#include <array>
#include <cstdint>
#include <span>

#include "base/plane.h"
#include "cpu_bokeh/made_rows.h"
#include "cpu_bokeh/resize/resize_plane.h"

namespace zuqel {

// Resizes planes, and keeps the memory for it.
class FrameReduction {
 public:
  // Makes room for a frame and a map of these sizes, so that nothing below can
  // fail; false when there is no memory.
  [[nodiscard]] bool Reserve(ImageSize frame, ImageSize map);

  // As ResizePlane.
  void ReducePlane(Plane<const uint8_t> in, Plane<uint8_t> out);

  // The same for both regions of chroma, without making them; see
  // ChromaRegions. The frame's width is even.
  void ReduceChroma(std::span<const uint8_t> vu, ImageSize frame,
                    Plane<uint8_t> u, Plane<uint8_t> v);

 private:
  ResizeScratch luma_;
  std::array<ResizedRows<uint8_t>, 2> chroma_;
  MadeRows<uint8_t> pairs_;
};

}  // namespace zuqel

#endif  // ZUQEL_CPU_BOKEH_FRAME_REDUCTION_H_
