// Extension functions of EGL and GL.
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
};

// Looked up once: the addresses are the same in every context.
const Extensions& GetExtensions();

}  // namespace zuqel

#endif  // ZUQEL_GL_EXTENSIONS_H_
