// The one session of the process: what the entry points keep between calls.
#ifndef ZUQEL_API_SESSION_H_
#define ZUQEL_API_SESSION_H_

#include <zuQelRT_GL.h>

#include <atomic>
#include <cstdint>
#include <mutex>

namespace zuqel {

// Values of `QelMode`.
inline constexpr int32_t kModeRunning = 0;
inline constexpr int32_t kModeClosed = 3;
inline constexpr int32_t kModeNeverInitialised = 4;

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

  // Taken by zuQelRT_SetParameter only.
  std::mutex mutex;
};

// Lives in static storage and is never destroyed: calls may still come while
// the process exits.
Session& TheSession();

}  // namespace zuqel

#endif  // ZUQEL_API_SESSION_H_
