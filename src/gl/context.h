// The private off-screen contexts, for threads that come without one.
#ifndef ZUQEL_GL_CONTEXT_H_
#define ZUQEL_GL_CONTEXT_H_

#include <EGL/egl.h>

namespace zuqel {

// A slot is empty, partly filled (a step of creation failed; what was made
// until then stays) or complete. `index` is its number in the log. The slots
// share their display, and terminating it ends the objects of both where the
// driver does not count initialisations. The other slot keeps its handles for
// its own deletion, which then fails, but not beyond it, and not when the
// display is opened again: they may name other objects then.
struct ContextSlot {
  int index = 0;
  bool is_terminated = false;
  EGLDisplay display = EGL_NO_DISPLAY;
  EGLSurface surface = EGL_NO_SURFACE;
  EGLContext context = EGL_NO_CONTEXT;

  [[nodiscard]] bool HoldsContext() const { return context != EGL_NO_CONTEXT; }
};

// Empties slots whose display has ended. Where this thread has no
// context, makes an ES 2 context with a 1x1 pbuffer and makes it current. Each
// step is logged; the first that fails ends the work.
void EnsureContext(ContextSlot& slot, ContextSlot& other);

// Deletes a complete slot's objects and terminates its display. A step that
// fails is logged and ends the work with the slot unchanged.
void DeleteContext(ContextSlot& slot, ContextSlot& other);

// Whether this thread has a context. Without one, calls of GL are not defined.
bool HasContext();

// Whether `home`, the context that GL names live in, is this thread's; never of
// EGL_NO_CONTEXT.
bool IsCurrent(EGLContext home);

}  // namespace zuqel

#endif  // ZUQEL_GL_CONTEXT_H_
