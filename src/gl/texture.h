// Storage and sampling of textures.
#ifndef ZUQEL_GL_TEXTURE_H_
#define ZUQEL_GL_TEXTURE_H_

#include <GLES2/gl2.h>

#include "base/image_size.h"
#include "gl/gl_handle.h"

namespace zuqel {

// True if the driver allows images of this size; `limit` is GL_MAX_TEXTURE_SIZE
// or GL_MAX_RENDERBUFFER_SIZE. GL would refuse a larger one, but a driver's own
// arithmetic may overflow before it does.
bool FitsDriver(GLenum limit, ImageSize size);

// Owns a texture and knows what GL has been told of it, so that no frame tells
// it again.
class ImageTexture {
 public:
  static ImageTexture Generate() { return ImageTexture(Texture::Generate()); }
  ImageTexture() = default;

  [[nodiscard]] GLuint get() const { return name_.get(); }

  // Binds it to the active unit, to be filtered by `filter`, GL_LINEAR or
  // GL_NEAREST.
  void Bind(GLint filter);
  // Binds it to the active unit, to be continued beyond its edges by `wrap`,
  // GL_CLAMP_TO_EDGE or GL_REPEAT, and filtered linearly until bound otherwise.
  void SetUp(GLint wrap);

  // Sets it up and gives it an image of unsigned bytes. `format` is GL_RGBA,
  // GL_LUMINANCE_ALPHA or GL_LUMINANCE; `pixels` are rows without padding, or
  // null for storage without content. A size that the driver does not allow
  // leaves the image as it was. Needs PlainGlState.
  void Upload(GLint format, ImageSize size, const void* pixels,
              GLint wrap = GL_CLAMP_TO_EDGE);

 private:
  explicit ImageTexture(Texture name) : name_(std::move(name)) {}

  Texture name_;
  GLint filter_ = 0;
  GLint wrap_ = 0;
  GLint format_ = 0;  // 0 without an image
  ImageSize size_;
};

}  // namespace zuqel

#endif  // ZUQEL_GL_TEXTURE_H_
