// Starts sessions for the length of a test. For tests that link the library's
// objects.
#ifndef TESTS_TEST_SESSION_H_
#define TESTS_TEST_SESSION_H_

#include <zuQelRT_GL.h>

#include <array>
#include <memory>
#include <new>

#include "api/session.h"
#include "caller_context.h"
#include "caller_frame.h"
#include "pin_driver.h"

namespace zuqel {

// Initialises with a calibration record of zeros, which gives no camera values.
inline uint32_t InitSession(const GLInitInfo& info) {
  constexpr std::array<uint8_t, 512> kRecord = {};
  const uint32_t status = zuQelRT_GLInitV1(
      kRecord.data(), uint32_t{kRecord.size()}, nullptr, 0, &info);
  PinDriverLibraries();
  return status;
}

// The same with a program cache, which may be null.
inline uint32_t InitCachedSession(const GLInitInfo& info, uint8_t* cache) {
  constexpr std::array<uint8_t, 512> kRecord = {};
  const uint32_t status = zuQelRT_GLInitV1_1(
      kRecord.data(), uint32_t{kRecord.size()}, nullptr, 0, &info, cache);
  PinDriverLibraries();
  return status;
}

// A session that ends with its scope.
class ScopedSession {
 public:
  explicit ScopedSession(const GLInitInfo& info = DefaultInfo())
      : status_(InitSession(info)) {}
  ScopedSession(const GLInitInfo& info, uint8_t* program_cache)
      : status_(InitCachedSession(info, program_cache)) {}
  ~ScopedSession() { zuQelRT_GLClose(); }
  ScopedSession(const ScopedSession&) = delete;
  ScopedSession& operator=(const ScopedSession&) = delete;

  [[nodiscard]] uint32_t status() const { return status_; }

 private:
  uint32_t status_;
};

// What frames are rendered with in the session that runs, and the GL objects of
// those where their context is current.
inline FrameSession& RunningFrame() {
  return *TheSession().RunningFrame();
}
inline RenderState& RunningRender() {
  return *RunningFrame().gl.IfCurrent();
}

// Puts the session back to what it is at load. None runs.
inline void ResetSession() {
  Session* session = &TheSession();
  std::destroy_at(session);
  new (session) Session;
}

}  // namespace zuqel

#endif  // TESTS_TEST_SESSION_H_
