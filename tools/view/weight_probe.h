// The weights of a frame, which the library does not give out.
#ifndef ZUQEL_TOOLS_VIEW_WEIGHT_PROBE_H_
#define ZUQEL_TOOLS_VIEW_WEIGHT_PROBE_H_

#include "image.h"
#include "rendering/frame_job.h"

namespace zuqel::tools {

// Measures them: a frame of fine chequers is rendered on the GPU from the same
// map with the same focus, and greys by its weights. To within 2 of 255, at the
// resolution that the library's own weights have. Opens a session of its own,
// so none may be open. `focus` is in pixels of `picture`. Throws WorkError.
WeightMap MeasureWeights(const FrameMap& map, FocusPoint focus, Size picture);

// The point of a picture of size `to`, of the same view, that falls into the
// same pixel of a map: it decides on which disparity is in focus.
FocusPoint FocusIn(Size to, FocusPoint focus, Size from, Size map);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_VIEW_WEIGHT_PROBE_H_
