// Cleans up a refocus map read back from the GPU.
#ifndef ZUQEL_DEPTH_REFOCUS_REFINEMENT_H_
#define ZUQEL_DEPTH_REFOCUS_REFINEMENT_H_

#include <cstdint>

#include "base/buffer.h"
#include "base/image_size.h"
#include "base/plane.h"
#include "depth/component_cleanup.h"

namespace zuqel {

// Memory kept between calls.
struct RefinementScratch {
  Buffer work_a;
  Buffer work_b;
  Buffer changes;
  Buffer dilated_changes;
  Buffer dilation;
  Buffer smoothing;
  CleanupScratch cleanup;

  // Makes room for all that refining maps of this size needs, so that it cannot
  // fail; false when there is no memory.
  [[nodiscard]] bool Reserve(ImageSize size);
};

// Finds the holes and islands of the sharp region around the focus point (in
// map pixels): components of the sharp pixels, below 128, other than the
// focus's, and components of the blurred ones that touch neither focus nor
// border. `out` is `in`, smoothed over those pixels and two more around them.
// False, with `out` untouched, when there is no memory.
[[nodiscard]] bool RefineRefocusMap(Plane<const uint8_t> in, MaskPoint focus,
                                    RefinementScratch& scratch,
                                    Plane<uint8_t> out);

}  // namespace zuqel

#endif  // ZUQEL_DEPTH_REFOCUS_REFINEMENT_H_
