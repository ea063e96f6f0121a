// Textures, renderbuffers and framebuffers: what is drawn from and into.
#include <GLES2/gl2.h>

#include <algorithm>

#include "fake_driver/content.h"
#include "fake_driver/context.h"

namespace zuqel::fake_driver {
namespace {

size_t PixelBytes(GLenum format) {
  switch (format) {
    case GL_RGBA:
      return 4;
    case GL_LUMINANCE_ALPHA:
      return 2;
    case GL_LUMINANCE:
      return 1;
    default:
      return 0;
  }
}

// The names of the values that say where rows lie in a caller's memory.
struct RowNames {
  GLenum alignment, row_length, skipped_rows, skipped_pixels;
};
constexpr RowNames kPack = {GL_PACK_ALIGNMENT, GL_PACK_ROW_LENGTH,
                            GL_PACK_SKIP_ROWS, GL_PACK_SKIP_PIXELS};
constexpr RowNames kUnpack = {GL_UNPACK_ALIGNMENT, GL_UNPACK_ROW_LENGTH,
                              GL_UNPACK_SKIP_ROWS, GL_UNPACK_SKIP_PIXELS};

struct Rows {
  Rows(const Context& c, const RowNames& names, GLsizei width, GLsizei height,
       size_t pixel_bytes)
      : count(static_cast<size_t>(height)),
        bytes(static_cast<size_t>(width) * pixel_bytes) {
    const auto value = [&](GLenum name) {
      return static_cast<size_t>(c.Value(name));
    };
    const size_t length = value(names.row_length) * pixel_bytes;
    const size_t alignment = std::max(value(names.alignment), size_t{1});
    stride = ((length == 0 ? bytes : length) + alignment - 1) / alignment *
             alignment;
    skipped = value(names.skipped_rows) * stride +
              value(names.skipped_pixels) * pixel_bytes;
  }
  [[nodiscard]] size_t extent() const {
    return count == 0 || bytes == 0 ? 0
                                    : skipped + (count - 1) * stride + bytes;
  }

  size_t count, bytes, stride = 0, skipped = 0;
};

bool IsSize(GLsizei width, GLsizei height) {
  return width >= 0 && height >= 0 && width <= kLargestSide &&
         height <= kLargestSide;
}

// Gives the bound texture an image.
void Fill(Call call, Context& c, Image image, const void* pixels) {
  Hash hash;
  hash.Add(image.width, image.height, image.format);
  const GLuint buffer = c.Name(GL_PIXEL_UNPACK_BUFFER_BINDING);
  image.is_written = pixels != nullptr || buffer != 0;
  if (image.is_written) {
    const Rows rows(c, kUnpack, image.width, image.height,
                    PixelBytes(image.format));
    const uint8_t* bytes = c.BytesAt(call, buffer, pixels, rows.extent());
    if (bytes == nullptr) return;
    for (size_t y = 0; y < rows.count; ++y) {
      hash.AddBytes(bytes + rows.skipped + y * rows.stride, rows.bytes);
    }
  }
  image.content = hash.value();
  c.TextureOf(c.ActiveUnit()).image = std::make_shared<Image>(image);
}

}  // namespace
}  // namespace zuqel::fake_driver

using namespace zuqel::fake_driver;

// Makes names, and deletes them after `forget`, which sees each as `name`.
#define ZUQEL_NAMES(Names, objects, forget)                   \
  void glGen##Names(GLsizei count, GLuint* names) {           \
    ZUQEL_ENTER(glGen##Names);                                \
    for (GLsizei i = 0; i < count; ++i) {                     \
      names[i] = c.objects.Make();                            \
    }                                                         \
  }                                                           \
  void glDelete##Names(GLsizei count, const GLuint* names) {  \
    ZUQEL_ENTER(glDelete##Names);                             \
    for (GLsizei i = 0; i < count; ++i) {                     \
      const GLuint name = names[i];                           \
      if (!c.objects.Has(kCall, name) || name == 0) continue; \
      forget;                                                 \
      c.objects.Erase(name);                                  \
    }                                                         \
  }

ZUQEL_NAMES(Textures, textures, {
  for (GLuint& unit : c.units) {
    if (unit == name) unit = 0;
  }
  const auto bound = c.framebuffers.Find(c.Name(GL_FRAMEBUFFER_BINDING));
  if (bound && bound->colour == c.textures.Find(name)) bound->colour.reset();
})
ZUQEL_NAMES(Renderbuffers, renderbuffers, {
  if (c.Name(GL_RENDERBUFFER_BINDING) == name) {
    c.values[GL_RENDERBUFFER_BINDING] = 0;
  }
})
ZUQEL_NAMES(Framebuffers, framebuffers, {
  if (c.Name(GL_FRAMEBUFFER_BINDING) == name) {
    c.values[GL_FRAMEBUFFER_BINDING] = 0;
  }
})
ZUQEL_NAMES(Buffers, buffers, {
  for (auto& [binding, value] : c.values) {
    const bool is_binding = binding == GL_ARRAY_BUFFER_BINDING ||
                            binding == GL_ELEMENT_ARRAY_BUFFER_BINDING ||
                            binding == GL_PIXEL_PACK_BUFFER_BINDING ||
                            binding == GL_PIXEL_UNPACK_BUFFER_BINDING;
    if (is_binding && value == static_cast<GLint>(name)) value = 0;
  }
})

void glActiveTexture(GLenum unit) {
  ZUQEL_ENTER(glActiveTexture);
  ZUQEL_REQUIRE(unit >= GL_TEXTURE0 && unit - GL_TEXTURE0 < c.units.size(),
                GL_INVALID_ENUM);
  c.values[GL_ACTIVE_TEXTURE] = static_cast<GLint>(unit);
}

void glBindTexture(GLenum, GLuint name) {
  ZUQEL_ENTER(glBindTexture);
  if (c.textures.Has(kCall, name)) c.ActiveUnit() = name;
}

void glTexParameteri(GLenum, GLenum name, GLint value) {
  ZUQEL_ENTER(glTexParameteri);
  Values& values = c.TextureOf(c.ActiveUnit()).values;
  ZUQEL_REQUIRE(values.contains(name), GL_INVALID_ENUM);
  values[name] = value;
}

void glTexImage2D(GLenum target, GLint level, GLint internal_format,
                  GLsizei width, GLsizei height, GLint border, GLenum format,
                  GLenum type, const void* pixels) {
  ZUQEL_ENTER(glTexImage2D);
  ZUQEL_REQUIRE(target == GL_TEXTURE_2D && type == GL_UNSIGNED_BYTE &&
                    PixelBytes(format) != 0,
                GL_INVALID_ENUM);
  ZUQEL_REQUIRE(level == 0 && border == 0 && IsSize(width, height),
                GL_INVALID_VALUE);
  ZUQEL_REQUIRE(static_cast<GLenum>(internal_format) == format,
                GL_INVALID_OPERATION);
  Fill(kCall, c, {width, height, format}, pixels);
}

// All of an image at once.
void glTexSubImage2D(GLenum target, GLint level, GLint x, GLint y,
                     GLsizei width, GLsizei height, GLenum format, GLenum type,
                     const void* pixels) {
  ZUQEL_ENTER(glTexSubImage2D);
  ZUQEL_REQUIRE(target == GL_TEXTURE_2D && type == GL_UNSIGNED_BYTE,
                GL_INVALID_ENUM);
  const auto& image = c.TextureOf(c.ActiveUnit()).image;
  ZUQEL_REQUIRE(image && image->format == format, GL_INVALID_OPERATION);
  ZUQEL_REQUIRE(level == 0 && x == 0 && y == 0 && width == image->width &&
                    height == image->height,
                GL_INVALID_VALUE);
  Fill(kCall, c, {width, height, format}, pixels);
}

void glBindRenderbuffer(GLenum, GLuint name) {
  ZUQEL_ENTER(glBindRenderbuffer);
  if (!c.renderbuffers.Has(kCall, name)) return;
  c.values[GL_RENDERBUFFER_BINDING] = static_cast<GLint>(name);
}

void glRenderbufferStorage(GLenum, GLenum format, GLsizei width,
                           GLsizei height) {
  ZUQEL_ENTER(glRenderbufferStorage);
  const auto renderbuffer =
      c.renderbuffers.Find(c.Name(GL_RENDERBUFFER_BINDING));
  ZUQEL_REQUIRE(renderbuffer, GL_INVALID_OPERATION);
  ZUQEL_REQUIRE(IsSize(width, height), GL_INVALID_VALUE);
  renderbuffer->image =
      std::make_shared<Image>(Image{width, height, format, 0, false});
}

void glBindFramebuffer(GLenum, GLuint name) {
  ZUQEL_ENTER(glBindFramebuffer);
  if (!c.framebuffers.Has(kCall, name)) return;
  c.values[GL_FRAMEBUFFER_BINDING] = static_cast<GLint>(name);
}

void glFramebufferTexture2D(GLenum, GLenum attachment, GLenum, GLuint name,
                            GLint) {
  ZUQEL_ENTER(glFramebufferTexture2D);
  const auto bound = c.framebuffers.Find(c.Name(GL_FRAMEBUFFER_BINDING));
  ZUQEL_REQUIRE(attachment == GL_COLOR_ATTACHMENT0, GL_INVALID_ENUM);
  ZUQEL_REQUIRE(bound && (name == 0 || c.textures.Find(name)),
                GL_INVALID_OPERATION);
  bound->colour = c.textures.Find(name);
}

void glFramebufferRenderbuffer(GLenum, GLenum attachment, GLenum, GLuint name) {
  ZUQEL_ENTER(glFramebufferRenderbuffer);
  const auto bound = c.framebuffers.Find(c.Name(GL_FRAMEBUFFER_BINDING));
  ZUQEL_REQUIRE(attachment == GL_DEPTH_ATTACHMENT, GL_INVALID_ENUM);
  ZUQEL_REQUIRE(bound && (name == 0 || c.renderbuffers.Find(name)),
                GL_INVALID_OPERATION);
  bound->depth = c.renderbuffers.Find(name);
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
  ZUQEL_REQUIRE(c.Value(GL_PIXEL_PACK_BUFFER_BINDING) == 0,
                GL_INVALID_OPERATION);
  const Rows rows(c, kPack, width, height, PixelBytes(format));
  Hash hash(image->content);
  hash.Add(x, y, width, height);
  for (size_t row = 0; row < rows.count; ++row) {
    hash.Generate(
        static_cast<uint8_t*>(pixels) + rows.skipped + row * rows.stride,
        rows.bytes);
  }
}
