// Functions that not every context has: extensions of EGL and GL, and ES 3.
#ifndef ZUQEL_GL_EXTENSIONS_H_
#define ZUQEL_GL_EXTENSIONS_H_

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GLES2/gl2.h>
#include <GLES2/gl2ext.h>

namespace zuqel {

// A function that the driver lacks is null.
struct Extensions {
  PFNGLPROGRAMBINARYOESPROC ProgramBinary;
  PFNGLGETPROGRAMBINARYOESPROC GetProgramBinary;
  PFNGLEGLIMAGETARGETTEXTURE2DOESPROC EglImageTargetTexture2D;
  PFNEGLCREATEIMAGEKHRPROC CreateImage;
  PFNEGLDESTROYIMAGEKHRPROC DestroyImage;
  // ES 3; to be called in such a context only.
  void(GL_APIENTRY* BindVertexArray)(GLuint name);
  void(GL_APIENTRY* VertexAttribDivisor)(GLuint index, GLuint divisor);
  void(GL_APIENTRY* VertexAttribIPointer)(GLuint index, GLint size, GLenum type,
                                          GLsizei stride, const void* pointer);
};

// Looked up once: the addresses are the same in every context.
const Extensions& GetExtensions();

// True in a context of OpenGL ES 3, which a caller may have made current.
bool IsEs3();

}  // namespace zuqel

#endif  // ZUQEL_GL_EXTENSIONS_H_
