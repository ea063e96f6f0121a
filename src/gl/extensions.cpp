// Looks the extension functions up.
#include "gl/extensions.h"

namespace zuqel {
namespace {

template <typename Function>
Function LookUp(const char* name) {
  return reinterpret_cast<Function>(eglGetProcAddress(name));
}

}  // namespace

const Extensions& GetExtensions() {
  static const Extensions extensions = {
      LookUp<PFNGLPROGRAMBINARYOESPROC>("glProgramBinaryOES"),
      LookUp<PFNGLGETPROGRAMBINARYOESPROC>("glGetProgramBinaryOES"),
      LookUp<PFNGLEGLIMAGETARGETTEXTURE2DOESPROC>(
          "glEGLImageTargetTexture2DOES"),
      LookUp<PFNEGLCREATEIMAGEKHRPROC>("eglCreateImageKHR"),
      LookUp<PFNEGLDESTROYIMAGEKHRPROC>("eglDestroyImageKHR"),
  };
  return extensions;
}

}  // namespace zuqel
