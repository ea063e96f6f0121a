// One frame of a photo: the map that it is made from, and the call that makes
// it.
#ifndef ZUQEL_TOOLS_RENDERING_FRAME_JOB_H_
#define ZUQEL_TOOLS_RENDERING_FRAME_JOB_H_

#include <optional>
#include <string>
#include <vector>

#include "photo/nv21.h"
#include "rendering/bokeh_session.h"
#include "rendering/depth_input.h"
#include "rendering/photo_input.h"
#include "rendering/refocus_map.h"

namespace zuqel::tools {

// Holds exactly one of disparity and weights.
struct FrameMap {
  std::optional<DisparityMap> disparity;
  std::optional<WeightMap> weights;
  std::string note;              // for PrintNote
  std::optional<double> map_ms;  // the generator's call
};

// The photo's disparity or weights; with a `generator`, the weights that it
// makes for this focus point, for which it opens a session of its own, so none
// may be open. Throws InputError and WorkError.
FrameMap MakeFrameMap(const PhotoInput& input, const DepthOptions& options,
                      const Generator* generator, FocusPoint focus);

// For frames of this size from this map, on the GPU.
SessionSetup SetupFor(Size picture, const FrameMap& map);

struct Rendered {
  Nv21Frame frame;  // the last one
  bool is_focus_sharp = true;
  std::vector<double> times_ms;  // of each call
};

// Renders a copy of `source`, in a session that was set up for the map.
void RenderFrame(const BokehSession& session, const Nv21Frame& source,
                 const FrameMap& map, const Focus& focus, Rendered& rendered);

// The same, so many times, in a session of its own.
Rendered RenderFrames(const SessionSetup& setup, const Nv21Frame& source,
                      const FrameMap& map, const Focus& focus, int count);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_RENDERING_FRAME_JOB_H_
