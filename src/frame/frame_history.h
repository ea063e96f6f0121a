// What frames leave for later ones, across sessions.
#ifndef ZUQEL_FRAME_FRAME_HISTORY_H_
#define ZUQEL_FRAME_FRAME_HISTORY_H_

#include <atomic>
#include <cstdint>

#include "render/debug_pictures.h"

namespace zuqel {

struct FrameCounters {
  uint32_t dump_number = 0;  // frame calls that reached their end
  // The same, since the last bypass or end of the refocus maps, which may come
  // from another thread.
  std::atomic<uint32_t> frame_index{0};
  uint32_t frames_since_start = 0;
  uint32_t frames_at_last_fps_line = 0;
  uint32_t time_of_last_fps_line = 0;

  // Counts a frame call that reached its end, and logs the rate once a second.
  void CountFrame();
};

// Of the latest disparity map: trimmed range, and the value under the focus
// point. Weights are computed from them.
struct DepthStatistics {
  uint16_t min = 0;
  uint16_t max = 0;
  uint16_t focus = 0;
};

struct FrameHistory {
  FrameCounters counters;
  DepthStatistics depth;
  DebugPictures debug_pictures;
};

}  // namespace zuqel

#endif  // ZUQEL_FRAME_FRAME_HISTORY_H_
