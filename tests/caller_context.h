// A GL context of the library's caller.
#ifndef TESTS_CALLER_CONTEXT_H_
#define TESTS_CALLER_CONTEXT_H_

#include <EGL/egl.h>
#include <egl_display.h>

#include <array>
#include <vector>

#include "pin_driver.h"

namespace zuqel {

// Current on this thread while it lives, with a pbuffer as its default
// framebuffer. Declare it before the session. It is made of the driver's own
// calls, so that a program without the library's objects can have one too.
class CallerContext {
 public:
  // `attributes` are those of the context that go beyond its version.
  explicit CallerContext(EGLint width = 1, EGLint height = 1,
                         EGLint version = 2,
                         const std::vector<EGLint>& attributes = {})
      : display_(OpenDisplay()) {
    const EGLint renderable =
        version == 3 ? EGL_OPENGL_ES3_BIT : EGL_OPENGL_ES2_BIT;
    const std::array wanted = {
        EGL_SURFACE_TYPE,    EGL_PBUFFER_BIT, EGL_ALPHA_SIZE, 8,
        EGL_RENDERABLE_TYPE, renderable,      EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    eglChooseConfig(display_, wanted.data(), &config, 1, &count);
    const std::array size = {EGL_WIDTH, width, EGL_HEIGHT, height, EGL_NONE};
    EGLSurface surface = eglCreatePbufferSurface(display_, config, size.data());
    std::vector client = {EGL_CONTEXT_CLIENT_VERSION, version};
    client.insert(client.end(), attributes.begin(), attributes.end());
    client.push_back(EGL_NONE);
    context_ =
        eglCreateContext(display_, config, EGL_NO_CONTEXT, client.data());
    eglMakeCurrent(display_, surface, surface, context_);
    PinDriverLibraries();
  }
  ~CallerContext() {
    eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    eglTerminate(display_);
  }
  CallerContext(const CallerContext&) = delete;
  CallerContext& operator=(const CallerContext&) = delete;

  // Initialised; the one that the library draws on.
  static EGLDisplay OpenDisplay() {
    EGLDisplay display = driver::FindDisplay().handle;
    eglInitialize(display, nullptr, nullptr);
    return display;
  }

  [[nodiscard]] bool is_current() const {
    return context_ != EGL_NO_CONTEXT && eglGetCurrentContext() == context_;
  }

 private:
  EGLDisplay display_;
  EGLContext context_ = EGL_NO_CONTEXT;
};

}  // namespace zuqel

#endif  // TESTS_CALLER_CONTEXT_H_
