// One frame of a photo.
#include "rendering/frame_job.h"

#include <chrono>
#include <utility>

#include "rendering/frame_progress.h"

namespace zuqel::tools {

FrameMap MakeFrameMap(const PhotoInput& input, const DepthOptions& options,
                      const Generator* generator, FocusPoint focus) {
  FrameMap result;
  if (input.weights) {
    result.weights = input.weights;
    return result;
  }
  NotedMap noted = generator == nullptr
                       ? MakeDisparity(*input.depth, options)
                       : MakeDepthFor(*generator, *input.depth, options);
  result.note = std::move(noted.note);
  if (generator == nullptr) {
    result.disparity = std::move(noted.map);
  } else {
    RefocusMap made = MakeRefocusMap(*generator, std::move(noted.map),
                                     {focus, SizeOf(input.picture)});
    result.weights = std::move(made.weights);
    result.map_ms = made.time_ms;
  }
  return result;
}

SessionSetup SetupFor(Size picture, const FrameMap& map) {
  SessionSetup setup;
  setup.picture = picture;
  if (map.disparity) {
    setup.depth = SizeOf(*map.disparity);
  } else {
    setup.work = SizeOf(*map.weights);
  }
  return setup;
}

void RenderFrame(const BokehSession& session, const Nv21Frame& source,
                 const FrameMap& map, const Focus& focus, Rendered& rendered) {
  using Clock = std::chrono::steady_clock;
  rendered.frame = source;
  std::optional<DisparityMap> disparity = map.disparity;
  const Clock::time_point start = Clock::now();
  if (disparity) {
    rendered.is_focus_sharp = session.Render(rendered.frame, *disparity, focus);
  } else {
    session.Render(rendered.frame, *map.weights, focus);
  }
  rendered.times_ms.push_back(
      std::chrono::duration<double, std::milli>(Clock::now() - start).count());
}

Rendered RenderFrames(const SessionSetup& setup, const Nv21Frame& source,
                      const FrameMap& map, const Focus& focus, int count) {
  const BokehSession session(setup);
  Rendered rendered;
  const ProgressBar bar(count);
  for (int i = 0; i < count; ++i) {
    RenderFrame(session, source, map, focus, rendered);
    bar.Show(i + 1);
  }
  return rendered;
}

}  // namespace zuqel::tools
