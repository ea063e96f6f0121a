// Reads a framebuffer of the current context.
#ifndef TESTS_READ_PIXELS_H_
#define TESTS_READ_PIXELS_H_

#include <GLES2/gl2.h>

#include <cstdint>
#include <vector>

#include "reference_render.h"

namespace zuqel {

inline std::vector<uint8_t> ReadPixels(GLuint framebuffer,
                                       reference::Size size) {
  std::vector<uint8_t> pixels(size.area() * 4);
  glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
  glReadPixels(0, 0, size.width, size.height, GL_RGBA, GL_UNSIGNED_BYTE,
               pixels.data());
  return pixels;
}

}  // namespace zuqel

#endif  // TESTS_READ_PIXELS_H_
