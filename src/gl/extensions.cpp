// Looks up functions and the context's version.
#include "gl/extensions.h"

#include <string_view>

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
      LookUp<decltype(Extensions::BindVertexArray)>("glBindVertexArray"),
      LookUp<decltype(Extensions::VertexAttribDivisor)>(
          "glVertexAttribDivisor"),
      LookUp<decltype(Extensions::VertexAttribIPointer)>(
          "glVertexAttribIPointer"),
  };
  return extensions;
}

bool IsEs3() {
  constexpr std::string_view kPrefix = "OpenGL ES ";
  const auto* version = reinterpret_cast<const char*>(glGetString(GL_VERSION));
  if (version == nullptr) return false;
  const std::string_view text(version);
  return text.starts_with(kPrefix) && text.size() > kPrefix.size() &&
         text[kPrefix.size()] >= '3';
}

}  // namespace zuqel
