// Renders the bokeh of one frame without a GPU, in place.
#ifndef ZUQEL_CPU_BOKEH_EXPANSION_H_
#define ZUQEL_CPU_BOKEH_EXPANSION_H_

#include <array>
#include <cstdint>
#include <span>

#include "base/buffer.h"
#include "base/plane.h"
#include "cpu_bokeh/blur_and_blend.h"
#include "cpu_bokeh/frame_reduction.h"
#include "depth/component_cleanup.h"

namespace zuqel {

// Memory that calls reuse, and the masks that they leave for later ones.
struct ExpansionBuffers {
  // Smoothed masks of the last three calls, each in the slot of its number
  // modulo 3. A slot that is too small is replaced by zeros.
  std::array<Buffer, 3> mask_history;

  Buffer reduced_frame;
  Buffer focus_mask;
  Buffer work_mask;
  Buffer growth;
  CleanupScratch cleanup;
  Buffer feather;
  FrameReduction reduction;
  BlendScratch blend;
  // Chroma of frames whose width is odd.
  Buffer u_region;
  Buffer v_region;
};

struct ExpansionFrame {
  Plane<uint8_t> luma;
  std::span<uint8_t> chroma;  // V and U, width x (height / 2) bytes
  Plane<uint16_t> disparity;  // its holes are filled
  int32_t focus_x = 0;        // in pixels of the frame
  int32_t focus_y = 0;
};

// Blurs what is out of focus: a mask made from disparity and frame, smoothed
// over the last three calls, blends the frame with two blurs of itself. The
// steps log as they go. `expansionFrameCounter` counts the calls that were
// completed; it outlives the buffers. False, with picture and disparity
// untouched, when there is no memory.
[[nodiscard]] bool RenderExpansion(const ExpansionFrame& frame,
                                   ExpansionBuffers& buffers,
                                   int32_t& expansionFrameCounter);

}  // namespace zuqel

#endif  // ZUQEL_CPU_BOKEH_EXPANSION_H_
