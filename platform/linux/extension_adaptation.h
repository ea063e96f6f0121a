// Extension functions that a desktop driver offers in another form.
#ifndef PLATFORM_LINUX_EXTENSION_ADAPTATION_H_
#define PLATFORM_LINUX_EXTENSION_ADAPTATION_H_

#include <EGL/egl.h>

namespace zuqel::driver {

// What stands for the driver's own function of this name, or null where the
// driver's is used as it is.
__eglMustCastToProperFunctionPointerType AdaptedFunction(const char* name);

}  // namespace zuqel::driver

#endif  // PLATFORM_LINUX_EXTENSION_ADAPTATION_H_
