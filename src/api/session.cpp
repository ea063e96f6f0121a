// Holds the session.
#include "api/session.h"

#include <mutex>

#include "base/never_destroyed.h"

namespace zuqel {

void Session::TakeInfo(const GLInitInfo& info) {
  {
    const std::lock_guard lock(mutex);
    gInfo = info;
  }
  const ImageSize preview = SizeFrom(info.PreviewWidth, info.PreviewHeight);
  const ImageSize depth = SizeFrom(info.DepthWidth, info.DepthHeight);
  const ImageSize work = SizeFrom(info.WorkWidth, info.WorkHeight);
  const bool off_screen = info.offmode != 0;
  frame_setup = {.preview = preview,
                 .depth = depth,
                 .work = work,
                 .output = off_screen
                               ? preview
                               : SizeFrom(info.OutputWidth, info.OutputHeight),
                 .given_width = info.PreviewWidth,
                 .given_height = info.PreviewHeight,
                 .source_format = info.srcformat,
                 .off_screen = off_screen};
  map_setup = {.map = work, .depth = depth};
}

const ProgramCache& Session::RunningProgramCache() const {
  return until_close->frame ? until_close->frame->memory.program_cache
                            : NeverDestroyed<ProgramCache>();
}

Session& TheSession() {
  return NeverDestroyed<Session>();
}

}  // namespace zuqel
