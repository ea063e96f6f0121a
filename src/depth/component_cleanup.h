// Removes components from masks. They are labelled by LabelComponents with
// 65535 labels; pixels of 255 are set.
#ifndef ZUQEL_DEPTH_COMPONENT_CLEANUP_H_
#define ZUQEL_DEPTH_COMPONENT_CLEANUP_H_

#include <cstdint>

#include "base/buffer.h"
#include "base/image_size.h"
#include "base/plane.h"

namespace zuqel {

// A point of a mask as its caller gives it. It means the linear index
// x + y * width; a point outside the mask is in no component.
struct MaskPoint {
  int64_t x = 0;
  int64_t y = 0;
};

// Memory that the clean-ups share and reuse.
struct CleanupScratch {
  Buffer labelling;

  // Makes room for all that a clean-up of masks of this size needs, so that it
  // cannot fail; false when there is no memory.
  [[nodiscard]] bool Reserve(ImageSize size);
};

// All of these write a cleaned copy of `in` to `out`, of the same size, and
// return false, with `out` untouched, when there is no memory.

// Keeps the component at the focus point, and without `keep_only_focus` those
// of more than 80 % of the largest area. The outer ring becomes a copy of the
// one inside it. `focus_area`, unless null, receives the area of the focus
// component.
[[nodiscard]] bool PruneComponents(Plane<const uint8_t> in, MaskPoint focus,
                                   bool keep_only_focus,
                                   CleanupScratch& scratch, Plane<uint8_t> out,
                                   uint32_t* focus_area);

// Keeps the component at the focus point and those that touch a ring one pixel
// inside the border, ring included. Border pixels become copies of those two
// steps inward.
[[nodiscard]] bool KeepFocusAndBorderComponents(Plane<const uint8_t> in,
                                                MaskPoint focus,
                                                CleanupScratch& scratch,
                                                Plane<uint8_t> out);

// Removes components of at most `focus_area` / 200 pixels. Border pixels become
// copies of those two steps inward.
[[nodiscard]] bool RemoveSpecks(Plane<const uint8_t> in, uint32_t focus_area,
                                CleanupScratch& scratch, Plane<uint8_t> out);

}  // namespace zuqel

#endif  // ZUQEL_DEPTH_COMPONENT_CLEANUP_H_
