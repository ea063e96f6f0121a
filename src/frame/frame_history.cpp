// Counts frames.
#include "frame/frame_history.h"

#include "base/clock.h"
#include "base/log.h"

namespace zuqel {
namespace {

constexpr uint32_t kFpsPeriodMs = 999;

}  // namespace

void FrameCounters::CountFrame() {
  dump_number += 1;
  frames_since_start += 1;
  const uint32_t now = MillisecondClock();
  if (now - time_of_last_fps_line <= kFpsPeriodMs) return;
  ZUQEL_LOG("Bokeh lib FPS = %d",
            static_cast<int>(frames_since_start - frames_at_last_fps_line));
  time_of_last_fps_line = now;
  frames_at_last_fps_line = frames_since_start;
}

}  // namespace zuqel
