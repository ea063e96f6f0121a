// Extension functions that a desktop driver offers in another form.
#ifndef PLATFORM_LINUX_EXTENSION_ADAPTATION_H_
#define PLATFORM_LINUX_EXTENSION_ADAPTATION_H_

#include <EGL/egl.h>

namespace zuqel::driver {

// The replacement for the driver's function of this name; null where the
// driver's own is used.
__eglMustCastToProperFunctionPointerType AdaptedFunction(const char* name);

}  // namespace zuqel::driver

#endif  // PLATFORM_LINUX_EXTENSION_ADAPTATION_H_
