// The one session of the process: what the exported calls keep between them.
#ifndef ZUQEL_API_SESSION_H_
#define ZUQEL_API_SESSION_H_

#include <zuQelRT_GL.h>

#include <atomic>
#include <cstdint>
#include <optional>
#include <utility>

#include "api/call_in_progress.h"
#include "base/mutex.h"
#include "calib/calibration.h"
#include "cpu_bokeh/expansion.h"
#include "frame/frame_history.h"
#include "frame/frame_session.h"
#include "frame/frame_setup.h"
#include "gl/context.h"
#include "refocus/refocus_maps.h"

namespace zuqel {

// Values of `QelMode`.
inline constexpr int32_t kModeRunning = 0;
inline constexpr int32_t kModeClosed = 3;
inline constexpr int32_t kModeNeverInitialised = 4;

// What lives from initialisation to close, and what the CPU calls make when no
// session runs. Close destroys it and leaves a fresh one.
struct UntilClose {
  std::optional<FrameSession> frame;
  ExpansionBuffers expansion;
  GeneratorScratch generators;
};

struct Session {
  // Parameters may be set while another thread renders; what both touch is
  // atomic.
  std::atomic<int32_t> QelMode{kModeNeverInitialised};
  std::atomic<bool> PortraitFlag{true};

  // Of the latest initialisation, a refused one included, with what follows
  // from it.
  GLInitInfo gInfo = {};
  FrameSetup frame_setup;
  MapSetup map_setup;

  int32_t camera_layout = 1;
  int32_t StillCount = 90;
  int32_t GsensorState = 2;
  bool FadeInEffect = true;
  int32_t gsensor_value = 0;
  int32_t vcm_value = 0;
  int32_t FocusDotEnable = 0;
  calib::CameraValues camera;

  // Each outlives what is made in it: a deletion that fails keeps its slot.
  ContextSlot frame_context{.index = 0};
  ContextSlot refocus_context{.index = 1};

  FrameHistory frames;
  int32_t expansionFrameCounter = 0;  // reset by initialisation only

  std::optional<UntilClose> until_close{std::in_place};
  RefocusMaps refocus_maps;  // until their deinitialisation

  // Taken where a parameter is set, and where a record with one is copied.
  Mutex mutex;
  std::atomic<uint32_t> calls_in_progress{0};  // families

  // For the length of a call.
  [[nodiscard]] CallInProgress Enter(CallFamily family) {
    return {family, calls_in_progress};
  }

  // Copies the record and takes all sizes from it.
  void TakeInfo(const GLInitInfo& info);

  // Null where no session runs.
  FrameSession* RunningFrame() {
    return until_close->frame ? &*until_close->frame : nullptr;
  }
  // Of the running session; an unset one where none runs.
  [[nodiscard]] const ProgramCache& RunningProgramCache() const;
};

// Never destroyed: calls may still come while the process exits.
Session& TheSession();

}  // namespace zuqel

#endif  // ZUQEL_API_SESSION_H_
