// Sits between the library and the desktop's EGL. The linker redirects the
// library's calls of eglX to __wrap_eglX here; calls made in this file reach
// the driver.
#include "driver_adaptation.h"

#include <EGL/egl.h>
#include <GLES2/gl2.h>
#include <GLES2/gl2ext.h>

#include <array>
#include <atomic>
#include <vector>

#include "egl_display.h"
#include "extension_adaptation.h"

namespace zuqel::driver {
namespace {

struct CallState {
  std::atomic<int> count{0};
  std::atomic<bool> fails{false};
};

std::array<CallState, static_cast<size_t>(Call::kCount)> call_states;
std::atomic<bool> error_is_pending{false};

// Counts a call. True if it has to fail.
bool Fails(Call call) {
  CallState& state = call_states[static_cast<size_t>(call)];
  state.count += 1;
  if (!state.fails) return false;
  error_is_pending = true;
  return true;
}

// The same attributes without the window bit: where there are no windows, no
// config can draw to them.
std::vector<EGLint> WithoutWindowBit(const EGLint* attributes) {
  std::vector<EGLint> changed;
  for (; *attributes != EGL_NONE; attributes += 2) {
    const bool is_type = attributes[0] == EGL_SURFACE_TYPE;
    changed.push_back(attributes[0]);
    changed.push_back(is_type ? attributes[1] & ~EGL_WINDOW_BIT
                              : attributes[1]);
  }
  changed.push_back(EGL_NONE);
  return changed;
}

}  // namespace

void SetFailing(Call call, bool fails) {
  call_states[static_cast<size_t>(call)].fails = fails;
}

int CallCount(Call call) {
  return call_states[static_cast<size_t>(call)].count;
}

}  // namespace zuqel::driver

using zuqel::driver::Call;
using zuqel::driver::Fails;

extern "C" {

EGLDisplay __wrap_eglGetDisplay(EGLNativeDisplayType native) {
  if (Fails(Call::kGetDisplay)) return EGL_NO_DISPLAY;
  return native == EGL_DEFAULT_DISPLAY ? zuqel::driver::FindDisplay().handle
                                       : eglGetDisplay(native);
}

EGLBoolean __wrap_eglInitialize(EGLDisplay display, EGLint* major,
                                EGLint* minor) {
  return Fails(Call::kInitialize)
             ? EGL_FALSE
             : zuqel::driver::Initialise(display, major, minor);
}

EGLBoolean __wrap_eglChooseConfig(EGLDisplay display, const EGLint* attributes,
                                  EGLConfig* configs, EGLint size,
                                  EGLint* count) {
  if (Fails(Call::kChooseConfig)) return EGL_FALSE;
  const EGLBoolean chosen =
      eglChooseConfig(display, attributes, configs, size, count);
  if (chosen != EGL_TRUE || *count != 0) return chosen;
  const std::vector<EGLint> changed =
      zuqel::driver::WithoutWindowBit(attributes);
  return eglChooseConfig(display, changed.data(), configs, size, count);
}

EGLSurface __wrap_eglCreatePbufferSurface(EGLDisplay display, EGLConfig config,
                                          const EGLint* attributes) {
  if (Fails(Call::kCreatePbufferSurface)) return EGL_NO_SURFACE;
  return eglCreatePbufferSurface(display, config, attributes);
}

EGLContext __wrap_eglCreateContext(EGLDisplay display, EGLConfig config,
                                   EGLContext share, const EGLint* attributes) {
  if (Fails(Call::kCreateContext)) return EGL_NO_CONTEXT;
  return eglCreateContext(display, config, share, attributes);
}

EGLBoolean __wrap_eglMakeCurrent(EGLDisplay display, EGLSurface draw,
                                 EGLSurface read, EGLContext context) {
  if (Fails(Call::kMakeCurrent)) return EGL_FALSE;
  return eglMakeCurrent(display, draw, read, context);
}

EGLBoolean __wrap_eglDestroySurface(EGLDisplay display, EGLSurface surface) {
  if (Fails(Call::kDestroySurface)) return EGL_FALSE;
  return eglDestroySurface(display, surface);
}

EGLBoolean __wrap_eglDestroyContext(EGLDisplay display, EGLContext context) {
  if (Fails(Call::kDestroyContext)) return EGL_FALSE;
  return eglDestroyContext(display, context);
}

EGLBoolean __wrap_eglTerminate(EGLDisplay display) {
  if (Fails(Call::kTerminate)) return EGL_FALSE;
  return eglTerminate(display);
}

__eglMustCastToProperFunctionPointerType __wrap_eglGetProcAddress(
    const char* name) {
  const auto adapted = zuqel::driver::AdaptedFunction(name);
  return adapted != nullptr ? adapted : eglGetProcAddress(name);
}

void __wrap_glCompileShader(GLuint shader) {
  if (!Fails(Call::kCompileShader)) glCompileShader(shader);
}

void __wrap_glLinkProgram(GLuint program) {
  if (!Fails(Call::kLinkProgram)) glLinkProgram(program);
}

GLint __wrap_glGetAttribLocation(GLuint program, const char* name) {
  return Fails(Call::kGetAttribLocation) ? -1
                                         : glGetAttribLocation(program, name);
}

GLint __wrap_glGetUniformLocation(GLuint program, const char* name) {
  return Fails(Call::kGetUniformLocation) ? -1
                                          : glGetUniformLocation(program, name);
}

void __wrap_glGetIntegerv(GLenum name, GLint* values) {
  glGetIntegerv(name, values);
  if (name == GL_PROGRAM_BINARY_FORMATS_OES &&
      zuqel::driver::OwnBinaryFormat() != 0) {
    *values = GL_SGX_PROGRAM_BINARY_IMG;
  }
}

void __wrap_glGetProgramiv(GLuint program, GLenum name, GLint* value) {
  if (name == GL_PROGRAM_BINARY_LENGTH_OES &&
      Fails(Call::kProgramBinaryLength)) {
    *value = 0;
    return;
  }
  glGetProgramiv(program, name, value);
}

EGLint __wrap_eglGetError() {
  if (zuqel::driver::error_is_pending.exchange(false)) return EGL_BAD_ALLOC;
  return eglGetError();
}

}  // extern "C"
