// Creates and deletes off-screen contexts.
#include "gl/context.h"

#include <unistd.h>

#include <array>

#include "base/log.h"

namespace zuqel {
namespace {

constexpr std::array kConfigAttributes = {EGL_SURFACE_TYPE,
                                          EGL_WINDOW_BIT | EGL_PBUFFER_BIT,
                                          EGL_RENDERABLE_TYPE,
                                          EGL_OPENGL_ES2_BIT,
                                          EGL_RED_SIZE,
                                          5,
                                          EGL_GREEN_SIZE,
                                          6,
                                          EGL_BLUE_SIZE,
                                          5,
                                          EGL_ALPHA_SIZE,
                                          EGL_DONT_CARE,
                                          EGL_DEPTH_SIZE,
                                          16,
                                          EGL_STENCIL_SIZE,
                                          4,
                                          EGL_NONE};
constexpr std::array kPbufferAttributes = {EGL_WIDTH, 1, EGL_HEIGHT, 1,
                                           EGL_NONE};
constexpr std::array kContextAttributes = {EGL_CONTEXT_CLIENT_VERSION, 2,
                                           EGL_NONE};
constexpr EGLint kMaxConfigs = 10;

unsigned EglError() {
  return static_cast<unsigned>(eglGetError());
}

// Logs a step of deletion that did not succeed.
bool Succeeded(EGLBoolean result, const char* step) {
  if (result == EGL_TRUE) return true;
  ZUQEL_LOG("%s Returned: 0x%x", step, result);
  return false;
}

// A driver that counts initialisations goes on after a termination.
bool HasEnded(EGLDisplay display) {
  return eglQueryString(display, EGL_VERSION) == nullptr;
}

void CreateContext(ContextSlot& slot) {
  ZUQEL_LOG("OpenGLCreateContextSurface");

  slot.display = eglGetDisplay(EGL_DEFAULT_DISPLAY);
  if (slot.display == EGL_NO_DISPLAY) {
    ZUQEL_LOG("eglDisplay return EGL_NO_DISPLAY");
    return;
  }
  ZUQEL_LOG("eglDisplay return successfully");

  EGLint major = 0, minor = 0;
  if (eglInitialize(slot.display, &major, &minor) == EGL_FALSE) {
    ZUQEL_LOG("eglInitialize failed");
    return;
  }
  ZUQEL_LOG("eglInitialize successfully");

  // The first config is taken; without any it stays null and the next step
  // fails.
  std::array<EGLConfig, kMaxConfigs> configs = {};
  EGLint config_count = 0;
  if (eglChooseConfig(slot.display, kConfigAttributes.data(), configs.data(),
                      kMaxConfigs, &config_count) == EGL_FALSE) {
    ZUQEL_LOG("eglChooseConfig failed");
    return;
  }
  ZUQEL_LOG("eglChooseConfig successfully");

  slot.surface = eglCreatePbufferSurface(slot.display, configs[0],
                                         kPbufferAttributes.data());
  if (slot.surface == EGL_NO_SURFACE) {
    ZUQEL_LOG("eglCreatePbufferSurface failed - eglGetError Returned: 0x%x",
              EglError());
    return;
  }
  ZUQEL_LOG("eglCreatePbufferSurface successfully");

  slot.context = eglCreateContext(slot.display, configs[0], EGL_NO_CONTEXT,
                                  kContextAttributes.data());
  if (slot.context == EGL_NO_CONTEXT) {
    ZUQEL_LOG("eglCreateContext failed - eglGetError Returned: 0x%x",
              EglError());
    // Nothing would ever delete it: a slot is deleted only as a whole.
    eglDestroySurface(slot.display, slot.surface);
    slot.surface = EGL_NO_SURFACE;
    return;
  }
  ZUQEL_LOG("eglCreateContext successfully");

  if (eglMakeCurrent(slot.display, slot.surface, slot.surface, slot.context) ==
      EGL_FALSE) {
    ZUQEL_LOG("eglMakeCurrent failed - eglGetError Returned: 0x%x", EglError());
    return;
  }
  ZUQEL_LOG("eglMakeCurrent successfully");
}

}  // namespace

void EnsureContext(ContextSlot& slot, ContextSlot& other) {
  for (ContextSlot* ended : {&slot, &other}) {
    if (ended->is_terminated && HasEnded(ended->display)) {
      *ended = {.index = ended->index};
    }
    ended->is_terminated = false;
  }
  if (HasContext()) return;
  ZUQEL_LOG(
      "There is no openGL context, going to create opengl context, tid = %d, "
      "index %d",
      gettid(), slot.index);
  CreateContext(slot);
}

void DeleteContext(ContextSlot& slot, ContextSlot& other) {
  ZUQEL_LOG("OpenGLDeltet tid = %d, index = %d", gettid(), slot.index);
  if (slot.display == EGL_NO_DISPLAY || slot.surface == EGL_NO_SURFACE ||
      slot.context == EGL_NO_CONTEXT) {
    ZUQEL_LOG("EGL display, surface and context are NULL, skip delete process");
    return;
  }
  const bool deleted = Succeeded(eglMakeCurrent(slot.display, EGL_NO_SURFACE,
                                                EGL_NO_SURFACE, EGL_NO_CONTEXT),
                                 "eglMakeCurrent") &&
                       Succeeded(eglDestroySurface(slot.display, slot.surface),
                                 "eglDestroySurface") &&
                       Succeeded(eglDestroyContext(slot.display, slot.context),
                                 "eglDestroyContext") &&
                       Succeeded(eglTerminate(slot.display), "eglTerminate");
  if (deleted && other.display == slot.display) other.is_terminated = true;
  if (deleted || slot.is_terminated) slot = {.index = slot.index};
}

bool HasContext() {
  return eglGetCurrentContext() != EGL_NO_CONTEXT;
}

bool IsCurrent(EGLContext home) {
  return home != EGL_NO_CONTEXT && eglGetCurrentContext() == home;
}

}  // namespace zuqel
