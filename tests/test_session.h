// Starts sessions, and contexts of a caller's own, for the length of a test.
// For tests that link the library's objects.
#ifndef ZUQEL_TEST_SESSION_H_
#define ZUQEL_TEST_SESSION_H_

#include <EGL/egl.h>
#include <zuQelRT_GL.h>

#include <array>
#include <memory>
#include <new>

#include "api/session.h"
#include "pin_driver.h"

namespace zuqel {

// 640 x 480 NV21 off screen with maps of 320 x 240.
inline GLInitInfo DefaultInfo() {
  return {.PreviewWidth = 640,
          .PreviewHeight = 480,
          .DepthWidth = 320,
          .DepthHeight = 240,
          .WorkWidth = 320,
          .WorkHeight = 240,
          .OutputWidth = 640,
          .OutputHeight = 480,
          .PortraitMode = 0,
          .offmode = 1,
          .srcformat = 0,
          .GraphicBufferFlag = 0};
}

// Initialises with a calibration record of zeros, which gives no camera values.
inline uint32_t InitSession(const GLInitInfo& info) {
  constexpr std::array<uint8_t, 512> kRecord = {};
  const uint32_t status = zuQelRT_GLInitV1(
      kRecord.data(), uint32_t{kRecord.size()}, nullptr, 0, &info);
  PinDriverLibraries();
  return status;
}

// A session that ends with its scope.
class ScopedSession {
 public:
  explicit ScopedSession(const GLInitInfo& info = DefaultInfo())
      : status_(InitSession(info)) {}
  ~ScopedSession() { zuQelRT_GLClose(); }
  ScopedSession(const ScopedSession&) = delete;
  ScopedSession& operator=(const ScopedSession&) = delete;

  [[nodiscard]] uint32_t status() const { return status_; }

 private:
  uint32_t status_;
};

// Puts the session back to what it is at load. None runs.
inline void ResetSession() {
  Session* session = &TheSession();
  std::destroy_at(session);
  new (session) Session;
}

// A context made by the library's caller, current on this thread, with a
// pbuffer as its default framebuffer. Declare it before the session.
class CallerContext {
 public:
  explicit CallerContext(EGLint width = 1, EGLint height = 1,
                         EGLint client_version = 2)
      : display_(eglGetDisplay(EGL_DEFAULT_DISPLAY)) {
    eglInitialize(display_, nullptr, nullptr);
    const std::array config_attributes = {EGL_SURFACE_TYPE,
                                          EGL_PBUFFER_BIT,
                                          EGL_RED_SIZE,
                                          8,
                                          EGL_GREEN_SIZE,
                                          8,
                                          EGL_BLUE_SIZE,
                                          8,
                                          EGL_ALPHA_SIZE,
                                          8,
                                          EGL_RENDERABLE_TYPE,
                                          EGL_OPENGL_ES2_BIT,
                                          EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    eglChooseConfig(display_, config_attributes.data(), &config, 1, &count);
    const std::array surface_attributes = {EGL_WIDTH, width, EGL_HEIGHT, height,
                                           EGL_NONE};
    surface_ =
        eglCreatePbufferSurface(display_, config, surface_attributes.data());
    const std::array context_attributes = {EGL_CONTEXT_CLIENT_VERSION,
                                           client_version, EGL_NONE};
    context_ = eglCreateContext(display_, config, EGL_NO_CONTEXT,
                                context_attributes.data());
    is_current_ =
        eglMakeCurrent(display_, surface_, surface_, context_) == EGL_TRUE;
    PinDriverLibraries();
  }
  ~CallerContext() {
    eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    eglTerminate(display_);
  }
  CallerContext(const CallerContext&) = delete;
  CallerContext& operator=(const CallerContext&) = delete;

  [[nodiscard]] bool is_current() const { return is_current_; }

 private:
  EGLDisplay display_;
  EGLSurface surface_ = EGL_NO_SURFACE;
  EGLContext context_ = EGL_NO_CONTEXT;
  bool is_current_ = false;
};

}  // namespace zuqel

#endif  // ZUQEL_TEST_SESSION_H_
