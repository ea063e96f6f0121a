// Storage and sampling of textures.
#ifndef ZUQEL_GL_TEXTURE_H_
#define ZUQEL_GL_TEXTURE_H_

#include <GLES2/gl2.h>

#include <cstdint>

namespace zuqel {

// True if the driver allows images of this size; `limit` is GL_MAX_TEXTURE_SIZE
// or GL_MAX_RENDERBUFFER_SIZE. GL would refuse a larger one, but a driver's own
// arithmetic may overflow before it does.
inline bool FitsDriver(GLenum limit, int32_t width, int32_t height) {
  GLint largest = 0;
  glGetIntegerv(limit, &largest);
  return width <= largest && height <= largest;
}

// Binds `texture` to the active unit, to be filtered by `filter`, GL_LINEAR or
// GL_NEAREST.
inline void BindTexture(GLuint texture, GLint filter) {
  glBindTexture(GL_TEXTURE_2D, texture);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, filter);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, filter);
}

// Binds `texture` to the active unit, to be filtered linearly and continued
// beyond its edges by `wrap`, GL_CLAMP_TO_EDGE or GL_REPEAT.
inline void SetUpTexture(GLuint texture, GLint wrap) {
  BindTexture(texture, GL_LINEAR);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, wrap);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, wrap);
}

// Sets `texture` up and gives it an image of unsigned bytes. `format` is
// GL_RGBA, GL_LUMINANCE_ALPHA or GL_LUMINANCE; `pixels` are rows without
// padding, or null for storage without content. A size that the driver does not
// allow leaves the texture's image as it was. Needs PlainGlState.
inline void UploadTexture(GLuint texture, GLint format, int32_t width,
                          int32_t height, const void* pixels,
                          GLint wrap = GL_CLAMP_TO_EDGE) {
  SetUpTexture(texture, wrap);
  if (!FitsDriver(GL_MAX_TEXTURE_SIZE, width, height)) return;
  glTexImage2D(GL_TEXTURE_2D, 0, format, width, height, 0,
               static_cast<GLenum>(format), GL_UNSIGNED_BYTE, pixels);
}

}  // namespace zuqel

#endif  // ZUQEL_GL_TEXTURE_H_
