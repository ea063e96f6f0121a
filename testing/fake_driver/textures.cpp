// Textures, renderbuffers and framebuffers: what is drawn from and into.
#include <GLES2/gl2.h>
#include <GLES2/gl2ext.h>

#include "fake_driver/content.h"
#include "fake_driver/context.h"

namespace zuqel::fake_driver {

namespace {

// Where rows lie in a caller's memory.
struct Rows {
  Rows(const Context& c, GLsizei width, GLsizei height, GLenum format,
       bool is_packed)
      : count(static_cast<size_t>(height)),
        bytes(static_cast<size_t>(width) * PixelBytes(format)) {
    const auto value = [&](GLenum pack, GLenum unpack) {
      return static_cast<size_t>(c.PixelStore(is_packed ? pack : unpack));
    };
    const size_t row_pixels = value(GL_PACK_ROW_LENGTH, GL_UNPACK_ROW_LENGTH);
    const size_t row_bytes =
        row_pixels == 0 ? bytes : row_pixels * PixelBytes(format);
    const size_t alignment = value(GL_PACK_ALIGNMENT, GL_UNPACK_ALIGNMENT);
    stride = (row_bytes + alignment - 1) / alignment * alignment;
    skipped =
        value(GL_PACK_SKIP_ROWS, GL_UNPACK_SKIP_ROWS) * stride +
        value(GL_PACK_SKIP_PIXELS, GL_UNPACK_SKIP_PIXELS) * PixelBytes(format);
  }

  static size_t PixelBytes(GLenum format) {
    switch (format) {
      case GL_RGBA:
        return 4;
      case GL_RGB:
        return 3;
      case GL_LUMINANCE_ALPHA:
        return 2;
      case GL_LUMINANCE:
      case GL_ALPHA:
        return 1;
      default:
        return 0;
    }
  }
  [[nodiscard]] size_t extent() const {
    return count == 0 || bytes == 0 ? 0
                                    : skipped + (count - 1) * stride + bytes;
  }

  size_t count, bytes, stride = 0, skipped = 0;
};

// True, or noted: GL would make an object of a name that nobody generated.
template <typename T>
bool IsThere(Call call, const SharedObjects<T>& objects, GLuint name) {
  if (name == 0 || objects.Find(name)) return true;
  NoteMisuse(call, "no such name in this context");
  return false;
}

// Deletes names and, but for 0, notes those that are not there.
template <typename T, typename Unbind>
void DeleteAll(Call call, SharedObjects<T>& objects, GLsizei count,
               const GLuint* names, Unbind unbind) {
  for (GLsizei i = 0; i < count; ++i) {
    if (names[i] == 0) continue;
    if (IsThere(call, objects, names[i])) {
      unbind(names[i]);
      objects.Erase(names[i]);
    }
  }
}

template <typename T>
void GenerateAll(SharedObjects<T>& objects, GLsizei count, GLuint* names) {
  for (GLsizei i = 0; i < count; ++i) names[i] = objects.Make();
}

}  // namespace
}  // namespace zuqel::fake_driver

using namespace zuqel::fake_driver;

void glGenTextures(GLsizei count, GLuint* names) {
  ZUQEL_ENTER(glGenTextures);
  GenerateAll(c.textures, count, names);
}

void glDeleteTextures(GLsizei count, const GLuint* names) {
  ZUQEL_ENTER(glDeleteTextures);
  DeleteAll(kCall, c.textures, count, names, [&](GLuint name) {
    for (GLuint& unit : c.units) {
      if (unit == name) unit = 0;
    }
    const auto bound = c.framebuffers.Find(c.framebuffer);
    if (bound && bound->colour == c.textures.Find(name)) bound->colour.reset();
  });
}

void glActiveTexture(GLenum unit) {
  ZUQEL_ENTER(glActiveTexture);
  ZUQEL_REQUIRE(unit >= GL_TEXTURE0 && unit - GL_TEXTURE0 < c.units.size(),
                GL_INVALID_ENUM);
  c.active_unit = unit - GL_TEXTURE0;
}

void glBindTexture(GLenum target, GLuint name) {
  ZUQEL_ENTER(glBindTexture);
  ZUQEL_REQUIRE(target == GL_TEXTURE_2D, GL_INVALID_ENUM);
  if (IsThere(kCall, c.textures, name)) c.units[c.active_unit] = name;
}

void glTexParameteri(GLenum target, GLenum name, GLint value) {
  ZUQEL_ENTER(glTexParameteri);
  ZUQEL_REQUIRE(target == GL_TEXTURE_2D, GL_INVALID_ENUM);
  Texture& texture = *c.TextureOf(c.active_unit);
  switch (name) {
    case GL_TEXTURE_MIN_FILTER:
      texture.min_filter = value;
      break;
    case GL_TEXTURE_MAG_FILTER:
      texture.mag_filter = value;
      break;
    case GL_TEXTURE_WRAP_S:
      texture.wrap_s = value;
      break;
    case GL_TEXTURE_WRAP_T:
      texture.wrap_t = value;
      break;
    default:
      c.Fault(kCall, GL_INVALID_ENUM);
  }
}

void glTexImage2D(GLenum target, GLint level, GLint internal_format,
                  GLsizei width, GLsizei height, GLint border, GLenum format,
                  GLenum type, const void* pixels) {
  ZUQEL_ENTER(glTexImage2D);
  ZUQEL_REQUIRE(target == GL_TEXTURE_2D && type == GL_UNSIGNED_BYTE &&
                    Rows::PixelBytes(format) != 0,
                GL_INVALID_ENUM);
  ZUQEL_REQUIRE(level == 0 && border == 0 && width >= 0 && height >= 0 &&
                    width <= kLargestSide && height <= kLargestSide,
                GL_INVALID_VALUE);
  ZUQEL_REQUIRE(static_cast<GLenum>(internal_format) == format,
                GL_INVALID_OPERATION);
  Hash hash;
  hash.Add(width, height, format);
  const GLuint buffer = c.BoundBuffer(GL_PIXEL_UNPACK_BUFFER);
  const bool is_written = pixels != nullptr || buffer != 0;
  if (is_written) {
    const Rows rows(c, width, height, format, /*is_packed=*/false);
    const uint8_t* bytes = c.BytesAt(kCall, buffer, pixels, rows.extent());
    if (bytes == nullptr) return;
    for (size_t y = 0; y < rows.count; ++y) {
      hash.AddBytes(bytes + rows.skipped + y * rows.stride, rows.bytes);
    }
  }
  c.TextureOf(c.active_unit)->image = std::make_shared<Image>(
      Image{width, height, format, hash.value(), is_written});
}

void glGenRenderbuffers(GLsizei count, GLuint* names) {
  ZUQEL_ENTER(glGenRenderbuffers);
  GenerateAll(c.renderbuffers, count, names);
}

void glDeleteRenderbuffers(GLsizei count, const GLuint* names) {
  ZUQEL_ENTER(glDeleteRenderbuffers);
  DeleteAll(kCall, c.renderbuffers, count, names, [&](GLuint name) {
    if (c.renderbuffer == name) c.renderbuffer = 0;
  });
}

void glBindRenderbuffer(GLenum target, GLuint name) {
  ZUQEL_ENTER(glBindRenderbuffer);
  ZUQEL_REQUIRE(target == GL_RENDERBUFFER, GL_INVALID_ENUM);
  if (IsThere(kCall, c.renderbuffers, name)) c.renderbuffer = name;
}

void glRenderbufferStorage(GLenum, GLenum format, GLsizei width,
                           GLsizei height) {
  ZUQEL_ENTER(glRenderbufferStorage);
  const auto renderbuffer = c.renderbuffers.Find(c.renderbuffer);
  ZUQEL_REQUIRE(renderbuffer, GL_INVALID_OPERATION);
  ZUQEL_REQUIRE(width >= 0 && height >= 0 && width <= kLargestSide &&
                    height <= kLargestSide,
                GL_INVALID_VALUE);
  renderbuffer->image =
      std::make_shared<Image>(Image{width, height, format, 0, false});
}

void glGenFramebuffers(GLsizei count, GLuint* names) {
  ZUQEL_ENTER(glGenFramebuffers);
  GenerateAll(c.framebuffers, count, names);
}

void glDeleteFramebuffers(GLsizei count, const GLuint* names) {
  ZUQEL_ENTER(glDeleteFramebuffers);
  DeleteAll(kCall, c.framebuffers, count, names, [&](GLuint name) {
    if (c.framebuffer == name) c.framebuffer = 0;
  });
}

void glBindFramebuffer(GLenum target, GLuint name) {
  ZUQEL_ENTER(glBindFramebuffer);
  ZUQEL_REQUIRE(target == GL_FRAMEBUFFER, GL_INVALID_ENUM);
  if (IsThere(kCall, c.framebuffers, name)) c.framebuffer = name;
}

void glFramebufferTexture2D(GLenum, GLenum attachment, GLenum, GLuint name,
                            GLint) {
  ZUQEL_ENTER(glFramebufferTexture2D);
  const auto framebuffer = c.framebuffers.Find(c.framebuffer);
  ZUQEL_REQUIRE(framebuffer, GL_INVALID_OPERATION);
  ZUQEL_REQUIRE(attachment == GL_COLOR_ATTACHMENT0, GL_INVALID_ENUM);
  ZUQEL_REQUIRE(name == 0 || c.textures.Find(name), GL_INVALID_OPERATION);
  framebuffer->colour = c.textures.Find(name);
}

void glFramebufferRenderbuffer(GLenum, GLenum attachment, GLenum, GLuint name) {
  ZUQEL_ENTER(glFramebufferRenderbuffer);
  const auto framebuffer = c.framebuffers.Find(c.framebuffer);
  ZUQEL_REQUIRE(framebuffer, GL_INVALID_OPERATION);
  ZUQEL_REQUIRE(attachment == GL_DEPTH_ATTACHMENT, GL_INVALID_ENUM);
  ZUQEL_REQUIRE(name == 0 || c.renderbuffers.Find(name), GL_INVALID_OPERATION);
  framebuffer->depth = c.renderbuffers.Find(name);
}

GLenum glCheckFramebufferStatus(GLenum) {
  ZUQEL_ENTER(glCheckFramebufferStatus, GL_FRAMEBUFFER_UNSUPPORTED);
  return c.CompleteTarget() != nullptr ? GL_FRAMEBUFFER_COMPLETE
                                       : GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT;
}

// Pixels outside of the framebuffer are undefined: they are written as well.
void glReadPixels(GLint x, GLint y, GLsizei width, GLsizei height,
                  GLenum format, GLenum type, void* pixels) {
  ZUQEL_ENTER(glReadPixels);
  ZUQEL_REQUIRE(format == GL_RGBA && type == GL_UNSIGNED_BYTE, GL_INVALID_ENUM);
  ZUQEL_REQUIRE(width >= 0 && height >= 0, GL_INVALID_VALUE);
  const Image* image = c.Target(kCall);
  if (image == nullptr) return;
  if (!image->is_written) NoteMisuse(kCall, "nobody has written the pixels");
  ZUQEL_REQUIRE(c.BoundBuffer(GL_PIXEL_PACK_BUFFER) == 0, GL_INVALID_OPERATION);
  const Rows rows(c, width, height, format, /*is_packed=*/true);
  Hash hash(image->content);
  hash.Add(x, y, width, height);
  for (size_t row = 0; row < rows.count; ++row) {
    hash.Generate(
        static_cast<uint8_t*>(pixels) + rows.skipped + row * rows.stride,
        rows.bytes);
  }
}
