// The one session of the process: what the entry points keep between calls.
#ifndef ZUQEL_API_SESSION_H_
#define ZUQEL_API_SESSION_H_

#include <EGL/egl.h>
#include <zuQelRT_GL.h>

#include <atomic>
#include <cstdint>
#include <mutex>

#include "api/working_buffers.h"
#include "base/buffer.h"
#include "calib/calibration.h"
#include "cpu_bokeh/expansion.h"
#include "depth/refocus_refinement.h"
#include "gl/context.h"
#include "gl/graphic_buffer.h"
#include "gl/program_cache.h"
#include "render/debug_pictures.h"
#include "frame/frame_renderer.h"
#include "refocus/refocus_map_renderer.h"

namespace zuqel {

// Values of `QelMode`.
inline constexpr int32_t kModeRunning = 0;
inline constexpr int32_t kModeClosed = 3;
inline constexpr int32_t kModeNeverInitialised = 4;

struct FrameCounters {
  uint32_t dump_number = 0;  // frame calls that reached their end
  // The same, since the last bypass or end of the refocus maps, which may come
  // from another thread.
  std::atomic<uint32_t> frame_index{0};
  uint32_t frames_since_start = 0;
  uint32_t frames_at_last_fps_line = 0;
  uint32_t time_of_last_fps_line = 0;
};

// What the frame calls keep.
struct FrameSession {
  RenderState render;
  GraphicBuffer graphic_buffer;
  DebugPictures debug_pictures;
  EGLContext render_context = EGL_NO_CONTEXT;  // where its names live
  Buffer weight_rgba;
  Buffer depth_rgba;
  Buffer chroma_scratch;
  DepthStatistics depth_statistics;
  FrameCounters counters;
};

// What the generators make when they first need it. The end of the session and
// that of the refocus maps free it by making it afresh.
struct GeneratorScratch {
  RefinementScratch refinement;
  Buffer mask;
  Buffer quantised;
  Buffer filter;
};

// What the refocus-map calls keep, besides the named working buffers.
struct RefocusMapSession {
  RefocusMapState render;
  EGLContext render_context = EGL_NO_CONTEXT;  // where its names live
  ContextSlot context;
  GeneratorScratch scratch;
};

struct Session {
  // Parameters may be set while another thread renders; what both touch is
  // atomic.
  std::atomic<int32_t> QelMode{kModeNeverInitialised};
  std::atomic<bool> PortraitFlag{true};

  GLInitInfo gInfo = {};
  int32_t camera_layout = 1;
  int32_t StillCount = 90;
  int32_t GsensorState = 2;
  bool FadeInEffect = true;
  int32_t gsensor_value = 0;
  int32_t vcm_value = 0;
  int32_t FocusDotEnable = 0;
  calib::CameraValues camera;

  ContextSlot context;
  WorkingBuffers buffers;
  ProgramCache program_cache;
  FrameSession frame;
  RefocusMapSession refocus_map;
  ExpansionBuffers expansion;
  int32_t expansionFrameCounter = 0;  // reset by initialisation only

  // Taken by zuQelRT_SetParameter only.
  std::mutex mutex;
};

// Lives in static storage and is never destroyed: calls may still come while
// the process exits.
Session& TheSession();

}  // namespace zuqel

#endif  // ZUQEL_API_SESSION_H_
