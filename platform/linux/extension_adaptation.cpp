// Makes a desktop driver's program binaries and EGL images look like a
// device's.
#include "extension_adaptation.h"

#include <EGL/eglext.h>
#include <GLES2/gl2.h>
#include <GLES2/gl2ext.h>

#include <array>
#include <cstdint>
#include <string_view>

#include "native_buffer.h"

namespace zuqel::driver {
namespace {

// The device's format stands for the driver's own.
void GL_APIENTRY ProgramBinary(GLuint program, GLenum format,
                               const void* binary, GLint length) {
  const auto program_binary = reinterpret_cast<PFNGLPROGRAMBINARYOESPROC>(
      eglGetProcAddress("glProgramBinaryOES"));
  if (program_binary == nullptr) return;
  const bool is_devices = format == GL_SGX_PROGRAM_BINARY_IMG;
  program_binary(program, is_devices ? OwnBinaryFormat() : format, binary,
                 length);
}

// A native buffer is a texture of the current context.
EGLImageKHR EGLAPIENTRY CreateImage(EGLDisplay display, EGLContext context,
                                    EGLenum target, EGLClientBuffer buffer,
                                    const EGLint* attributes) {
  const auto create_image = reinterpret_cast<PFNEGLCREATEIMAGEKHRPROC>(
      eglGetProcAddress("eglCreateImageKHR"));
  if (create_image == nullptr) return EGL_NO_IMAGE_KHR;
  if (target != EGL_NATIVE_BUFFER_ANDROID) {
    return create_image(display, context, target, buffer, attributes);
  }
  if (buffer == nullptr) return EGL_NO_IMAGE_KHR;
  const uintptr_t texture = static_cast<NativeBuffer*>(buffer)->texture;
  return create_image(display, eglGetCurrentContext(), EGL_GL_TEXTURE_2D_KHR,
                      // EGL takes a texture's name as a pointer.
                      // NOLINTNEXTLINE(performance-no-int-to-ptr)
                      reinterpret_cast<EGLClientBuffer>(texture), attributes);
}

struct Adapted {
  std::string_view name;
  __eglMustCastToProperFunctionPointerType function;
};

}  // namespace

GLenum OwnBinaryFormat() {
  GLint count = 0;
  glGetIntegerv(GL_NUM_PROGRAM_BINARY_FORMATS_OES, &count);
  if (count != 1) return 0;
  GLint format = 0;
  glGetIntegerv(GL_PROGRAM_BINARY_FORMATS_OES, &format);
  return static_cast<GLenum>(format);
}

__eglMustCastToProperFunctionPointerType AdaptedFunction(const char* name) {
  using Any = __eglMustCastToProperFunctionPointerType;
  static const std::array<Adapted, 2> adapted = {{
      {"glProgramBinaryOES", reinterpret_cast<Any>(&ProgramBinary)},
      {"eglCreateImageKHR", reinterpret_cast<Any>(&CreateImage)},
  }};
  for (const Adapted& row : adapted) {
    if (row.name == name) return row.function;
  }
  return nullptr;
}

}  // namespace zuqel::driver
