// Where to focus when nobody says.
#ifndef ZUQEL_TOOLS_PHOTO_AUTO_FOCUS_H_
#define ZUQEL_TOOLS_PHOTO_AUTO_FOCUS_H_

#include <optional>

#include "image.h"

namespace zuqel::tools {

// The middle of the nearest large surface, in pixels of a picture of the same
// view. Going away from the camera, it is the first connected part of what is
// at least as near that covers a fiftieth of the map; its middle is the place
// farthest from its edge. None if no part is as large.
std::optional<FocusPoint> FindNearestSurface(const DisparityMap& map,
                                             Size picture);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_PHOTO_AUTO_FOCUS_H_
