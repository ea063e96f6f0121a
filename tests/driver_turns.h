// Which turns of a long test a driver takes.
#ifndef ZUQEL_DRIVER_TURNS_H_
#define ZUQEL_DRIVER_TURNS_H_

#include <EGL/egl.h>

#include <optional>

#include "caller_context.h"
#include "gl_driver.h"

namespace zuqel {

// The driver that this run is on.
inline const GlDriver& TestedDriver() {
  static const GlDriver& driver = []() -> const GlDriver& {
    std::optional<CallerContext> context;
    if (eglGetCurrentContext() == EGL_NO_CONTEXT) context.emplace();
    return CurrentGlDriver();
  }();
  return driver;
}

// True for every turn, or where frames take a second for every `stride`-th.
// Take a stride that shares no factor with the number of cases, so that each
// kind still has its turn.
inline bool TakesTurn(int turn, int stride) {
  return !TestedDriver().is_slow || turn % stride == 0;
}

}  // namespace zuqel

#endif  // ZUQEL_DRIVER_TURNS_H_
