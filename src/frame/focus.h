// The focus rectangle and the dot that shows where focus lies.
#ifndef ZUQEL_FRAME_FOCUS_H_
#define ZUQEL_FRAME_FOCUS_H_

#include <zuQelRT_GL.h>

#include <cstdint>
#include <optional>

#include "base/plane.h"

namespace zuqel {

struct FocusPoint {
  int32_t x = 0;
  int32_t y = 0;
};

// Centre of a rectangle larger than 31 x 31 that lies inside an image of the
// given size; nothing for any other.
std::optional<FocusPoint> CentreOfFocus(const FocusRect& rect,
                                        int32_t image_width,
                                        int32_t image_height);

// Sets the 11 x 11 pixels around a point to white. Positions are linear
// indices: the dot wraps into the next row, and what lies outside the plane is
// dropped.
void DrawFocusDot(Plane<uint8_t> luma, FocusPoint centre);

}  // namespace zuqel

#endif  // ZUQEL_FRAME_FOCUS_H_
