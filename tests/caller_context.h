// A GL context of the library's caller.
#ifndef TESTS_CALLER_CONTEXT_H_
#define TESTS_CALLER_CONTEXT_H_

#include <EGL/egl.h>
#include <EGL/eglext.h>

#include <array>
#include <cstdlib>

#include "pin_driver.h"

namespace zuqel {

// Current on this thread while it lives, with a pbuffer as its default
// framebuffer. Declare it before the session. It is made of the driver's own
// calls, so that a program without the library's objects can have one too.
class CallerContext {
 public:
  explicit CallerContext(EGLint width = 1, EGLint height = 1,
                         EGLint client_version = 2)
      : display_(OpenDisplay()) {
    eglInitialize(display_, nullptr, nullptr);
    const EGLint version_bit =
        client_version == 3 ? EGL_OPENGL_ES3_BIT : EGL_OPENGL_ES2_BIT;
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
                                          version_bit,
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
    made_current_ =
        eglMakeCurrent(display_, surface_, surface_, context_) == EGL_TRUE;
    PinDriverLibraries();
  }
  ~CallerContext() {
    eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    eglTerminate(display_);
  }
  CallerContext(const CallerContext&) = delete;
  CallerContext& operator=(const CallerContext&) = delete;

  [[nodiscard]] bool is_current() const {
    return made_current_ && eglGetCurrentContext() == context_;
  }

 private:
  // The surfaceless display where there is no window system.
  static EGLDisplay OpenDisplay() {
    const auto get_platform_display =
        reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(
            eglGetProcAddress("eglGetPlatformDisplayEXT"));
    if (std::getenv("DISPLAY") != nullptr ||
        std::getenv("WAYLAND_DISPLAY") != nullptr ||
        get_platform_display == nullptr) {
      return eglGetDisplay(EGL_DEFAULT_DISPLAY);
    }
    return get_platform_display(EGL_PLATFORM_SURFACELESS_MESA,
                                EGL_DEFAULT_DISPLAY, nullptr);
  }

  EGLDisplay display_;
  EGLSurface surface_ = EGL_NO_SURFACE;
  EGLContext context_ = EGL_NO_CONTEXT;
  bool made_current_ = false;
};

}  // namespace zuqel

#endif  // TESTS_CALLER_CONTEXT_H_
