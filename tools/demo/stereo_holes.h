// The gaps that a stereo depth chip leaves in its map.
#ifndef ZUQEL_TOOLS_DEMO_STEREO_HOLES_H_
#define ZUQEL_TOOLS_DEMO_STEREO_HOLES_H_

#include "image.h"

namespace zuqel::tools {

// Marks as unknown what the chip's second camera, to the right of the first,
// cannot see: the stripes to the left of nearer objects. `map` is complete; a
// disparity of 1000 moves a pixel by `shift_px` between the cameras.
void MarkStereoHoles(float shift_px, DisparityMap& map);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_DEMO_STEREO_HOLES_H_
