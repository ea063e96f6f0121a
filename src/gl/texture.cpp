// Sets up and fills textures.
#include "gl/texture.h"

namespace zuqel {

bool FitsDriver(GLenum limit, ImageSize size) {
  GLint largest = 0;
  glGetIntegerv(limit, &largest);
  return size.width <= largest && size.height <= largest;
}

void ImageTexture::Bind(GLint filter) {
  glBindTexture(GL_TEXTURE_2D, get());
  if (filter_ == filter) return;
  filter_ = filter;
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, filter);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, filter);
}

void ImageTexture::SetUp(GLint wrap) {
  Bind(filter_ == 0 ? GL_LINEAR : filter_);
  if (wrap_ == wrap) return;
  wrap_ = wrap;
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, wrap);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, wrap);
}

void ImageTexture::Upload(GLint format, ImageSize size, const void* pixels,
                          GLint wrap) {
  SetUp(wrap);
  if (pixels != nullptr && format == format_ && size == size_) {
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, size.width, size.height,
                    static_cast<GLenum>(format), GL_UNSIGNED_BYTE, pixels);
    return;
  }
  if (!FitsDriver(GL_MAX_TEXTURE_SIZE, size)) return;
  glTexImage2D(GL_TEXTURE_2D, 0, format, size.width, size.height, 0,
               static_cast<GLenum>(format), GL_UNSIGNED_BYTE, pixels);
  format_ = format;
  size_ = size;
}

}  // namespace zuqel
