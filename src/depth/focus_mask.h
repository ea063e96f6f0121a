// Masks that decide whether the scene is focused on its foreground or on its
// background: 0 keeps a pixel sharp, 255 blurs it.
#ifndef ZUQEL_DEPTH_FOCUS_MASK_H_
#define ZUQEL_DEPTH_FOCUS_MASK_H_

#include <cstdint>

#include "base/buffer.h"
#include "base/plane.h"
#include "depth/region_growing.h"

namespace zuqel {

// Trimmed range of a map and the value in focus. A focus outside the range
// counts as the nearer end, and so does every value of the map.
struct FocusRange {
  uint16_t max = 0;
  uint16_t min = 0;
  uint16_t focus = 0;
};

// All masks have their map's size and are written in full. The ramps between
// 0 and 255 run against their neighbours, by design.

// From disparity, larger nearer. The background wins when its range is at most
// half of the foreground's. Decisions go to the log and to standard output.
void FocusMaskDisparity(Plane<const uint16_t> disparity,
                        const FocusRange& range, Plane<uint8_t> mask);

// From quantised distance, larger farther. The background wins when its range
// is at most the foreground's. Decisions go to standard output.
void FocusMaskDist(Plane<const uint16_t> distance, const FocusRange& range,
                   Plane<uint8_t> mask);

// From disparity and a picture of its size: like FocusMaskDisparity on the
// background, region growing (GrowFocusRegion) on the foreground, whose mask
// has 255 in focus. `scratch` is reserved by ReserveRegionGrowing; false, with
// the mask untouched, when there is no memory for it.
[[nodiscard]] bool FocusMaskExpansion(Plane<const uint16_t> disparity,
                                      const ThreePlanes& image,
                                      const FocusRange& range, Buffer& scratch,
                                      Plane<uint8_t> mask);

}  // namespace zuqel

#endif  // ZUQEL_DEPTH_FOCUS_MASK_H_
