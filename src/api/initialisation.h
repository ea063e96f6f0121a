// The steps of an initialisation.
#ifndef ZUQEL_API_INITIALISATION_H_
#define ZUQEL_API_INITIALISATION_H_

#include <zuQelRT_GL.h>

#include <cstdint>

#include "api/session.h"
#include "calib/calibration.h"

namespace zuqel {

// The two ways to start a session: compile the programs, or take them from the
// caller's cache.
enum class Start { kCompiled, kCached };

// Arguments of an initialisation; the calibration's selector is still open.
struct InitCall {
  Start start = Start::kCompiled;
  calib::CalibrationInput calibration;
  const GLInitInfo* info = nullptr;
  uint8_t* program_cache = nullptr;
};

// Starts the session. A call that fails keeps nothing but the record. A cached
// start drops the refocus maps' buffers even when it fails later.
uint32_t Initialise(const InitCall& call, Session& session);

}  // namespace zuqel

#endif  // ZUQEL_API_INITIALISATION_H_
