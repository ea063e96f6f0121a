// The private off-screen context, for threads that come without one.
#ifndef ZUQEL_GL_CONTEXT_H_
#define ZUQEL_GL_CONTEXT_H_

#include <EGL/egl.h>

namespace zuqel {

// A slot is empty, partly filled (a step of creation failed; what was made
// until then stays) or complete.
struct ContextSlot {
  EGLDisplay display = EGL_NO_DISPLAY;
  EGLSurface surface = EGL_NO_SURFACE;
  EGLContext context = EGL_NO_CONTEXT;
};

// Makes an ES 2 context with a 1x1 pbuffer and makes it current on this thread.
// Each step is logged; the first that fails ends the work.
void CreateContext(ContextSlot& slot);

// Deletes a complete slot's objects and terminates its display. A step that
// fails is logged and ends the work with the slot unchanged. `index` is the
// slot's number in the log.
void DeleteContext(ContextSlot& slot, int index);

// Whether `home`, the context that GL names live in, is this thread's; never of
// EGL_NO_CONTEXT. Names can be used and given back only there.
bool IsCurrent(EGLContext home);

}  // namespace zuqel

#endif  // ZUQEL_GL_CONTEXT_H_
