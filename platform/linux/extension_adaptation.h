// Extension functions that a desktop driver offers in another form.
#ifndef PLATFORM_LINUX_EXTENSION_ADAPTATION_H_
#define PLATFORM_LINUX_EXTENSION_ADAPTATION_H_

#include <EGL/egl.h>
#include <GLES2/gl2.h>

namespace zuqel::driver {

// The driver's only program-binary format, which the device's stands for; 0 if
// it does not have exactly one.
GLenum OwnBinaryFormat();

// The replacement for the driver's function of this name; null where the
// driver's own is used.
__eglMustCastToProperFunctionPointerType AdaptedFunction(const char* name);

}  // namespace zuqel::driver

#endif  // PLATFORM_LINUX_EXTENSION_ADAPTATION_H_
