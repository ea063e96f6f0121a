// What a frame's arguments say before anything is drawn.
#ifndef ZUQEL_FRAME_INTAKE_H_
#define ZUQEL_FRAME_INTAKE_H_

#include <cstdint>

#include "base/plane.h"
#include "frame/focus.h"
#include "frame/frame_history.h"
#include "frame/frame_setup.h"

namespace zuqel {

// The centre of the focus rectangle where it counts, else the focus point; logs
// which.
FocusPoint FindFocus(const FrameCall& call, ImageSize preview);

// Statistics of the disparity map as it came, with the raw value under the
// focus point; then its holes are filled.
DepthStatistics TakeDepth(const FrameSetup& setup, const FrameCall& call,
                          Plane<uint16_t> depth);

}  // namespace zuqel

#endif  // ZUQEL_FRAME_INTAKE_H_
