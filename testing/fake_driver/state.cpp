// The rest of a context's state, and what it says of itself.
#include <GLES2/gl2.h>
#include <GLES2/gl2ext.h>

#include <algorithm>
#include <utility>

#include "fake_driver/context.h"

namespace {

using zuqel::fake_driver::Call;
using zuqel::fake_driver::Context;
using zuqel::fake_driver::Enter;
using zuqel::fake_driver::kLargestSide;
using zuqel::fake_driver::kOwnBinaryFormat;

bool IsSwitch(GLenum name) {
  return name == GL_BLEND || name == GL_SCISSOR_TEST || name == GL_DEPTH_TEST ||
         name == GL_CULL_FACE;
}

bool IsPixelStore(const Context& c, GLenum name) {
  switch (name) {
    case GL_PACK_ALIGNMENT:
    case GL_UNPACK_ALIGNMENT:
      return true;
    case GL_PACK_ROW_LENGTH:
    case GL_PACK_SKIP_ROWS:
    case GL_PACK_SKIP_PIXELS:
    case GL_UNPACK_ROW_LENGTH:
    case GL_UNPACK_SKIP_ROWS:
    case GL_UNPACK_SKIP_PIXELS:
      return c.version >= 3;
    default:
      return false;
  }
}

}  // namespace

void glEnable(GLenum name) {
  ZUQEL_ENTER(glEnable);
  ZUQEL_REQUIRE(IsSwitch(name), GL_INVALID_ENUM);
  c.switches[name] = true;
}

void glDisable(GLenum name) {
  ZUQEL_ENTER(glDisable);
  ZUQEL_REQUIRE(IsSwitch(name), GL_INVALID_ENUM);
  c.switches[name] = false;
}

GLboolean glIsEnabled(GLenum name) {
  ZUQEL_ENTER(glIsEnabled, GL_FALSE);
  ZUQEL_REQUIRE(IsSwitch(name), GL_INVALID_ENUM, GL_FALSE);
  return c.IsOn(name) ? GL_TRUE : GL_FALSE;
}

void glPixelStorei(GLenum name, GLint value) {
  ZUQEL_ENTER(glPixelStorei);
  ZUQEL_REQUIRE(IsPixelStore(c, name), GL_INVALID_ENUM);
  const bool is_alignment =
      name == GL_PACK_ALIGNMENT || name == GL_UNPACK_ALIGNMENT;
  ZUQEL_REQUIRE(is_alignment
                    ? value == 1 || value == 2 || value == 4 || value == 8
                    : value >= 0,
                GL_INVALID_VALUE);
  c.pixel_store[name] = value;
}

void glColorMask(GLboolean red, GLboolean green, GLboolean blue,
                 GLboolean alpha) {
  ZUQEL_ENTER(glColorMask);
  c.colour_mask = {red, green, blue, alpha};
}

void glBlendFunc(GLenum source, GLenum target) {
  ZUQEL_ENTER(glBlendFunc);
  c.blend_factors = {static_cast<GLint>(source), static_cast<GLint>(target)};
}

void glClearColor(GLfloat red, GLfloat green, GLfloat blue, GLfloat alpha) {
  ZUQEL_ENTER(glClearColor);
  c.clear_colour = {red, green, blue, alpha};
}

void glViewport(GLint x, GLint y, GLsizei width, GLsizei height) {
  ZUQEL_ENTER(glViewport);
  ZUQEL_REQUIRE(width >= 0 && height >= 0, GL_INVALID_VALUE);
  c.viewport = {x, y, std::min(width, kLargestSide),
                std::min(height, kLargestSide)};
}

void glScissor(GLint x, GLint y, GLsizei width, GLsizei height) {
  ZUQEL_ENTER(glScissor);
  ZUQEL_REQUIRE(width >= 0 && height >= 0, GL_INVALID_VALUE);
  c.scissor = {x, y, width, height};
}

void glFlush() {
  ZUQEL_ENTER(glFlush);
}

void glFinish() {
  ZUQEL_ENTER(glFinish);
}

GLenum glGetError() {
  ZUQEL_ENTER(glGetError, GL_NO_ERROR);
  return std::exchange(c.error, GL_NO_ERROR);
}

const GLubyte* glGetString(GLenum name) {
  ZUQEL_ENTER(glGetString, nullptr);
  const char* text = "";
  if (name == GL_RENDERER) text = "fake driver";
  if (name == GL_VERSION) {
    text = c.version >= 3 ? "OpenGL ES 3.0 fake" : "OpenGL ES 2.0 fake";
  }
  return reinterpret_cast<const GLubyte*>(text);
}

void glGetBooleanv(GLenum name, GLboolean* values) {
  ZUQEL_ENTER(glGetBooleanv);
  ZUQEL_REQUIRE(name == GL_COLOR_WRITEMASK, GL_INVALID_ENUM);
  std::copy(c.colour_mask.begin(), c.colour_mask.end(), values);
}

void glGetIntegerv(GLenum name, GLint* values) {
  ZUQEL_ENTER(glGetIntegerv);
  const auto buffer = [&](GLenum target) {
    return static_cast<GLint>(c.BoundBuffer(target));
  };
  switch (name) {
    case GL_VIEWPORT:
      std::copy(c.viewport.begin(), c.viewport.end(), values);
      return;
    case GL_MAX_TEXTURE_SIZE:
    case GL_MAX_RENDERBUFFER_SIZE:
      *values = kLargestSide;
      return;
    case GL_NUM_PROGRAM_BINARY_FORMATS_OES:
      *values = 1;
      return;
    case GL_PROGRAM_BINARY_FORMATS_OES:
      *values = GLint{kOwnBinaryFormat};
      return;
    case GL_ACTIVE_TEXTURE:
      *values = static_cast<GLint>(GL_TEXTURE0 + c.active_unit);
      return;
    case GL_TEXTURE_BINDING_2D:
      *values = static_cast<GLint>(c.units[c.active_unit]);
      return;
    case GL_FRAMEBUFFER_BINDING:
      *values = static_cast<GLint>(c.framebuffer);
      return;
    case GL_CURRENT_PROGRAM:
      *values = static_cast<GLint>(c.program_name);
      return;
    case GL_ARRAY_BUFFER_BINDING:
      *values = buffer(GL_ARRAY_BUFFER);
      return;
    case GL_ELEMENT_ARRAY_BUFFER_BINDING:
      *values = buffer(GL_ELEMENT_ARRAY_BUFFER);
      return;
    default:
      break;
  }
  if (IsPixelStore(c, name)) {
    *values = c.PixelStore(name);
    return;
  }
  ZUQEL_REQUIRE(c.version >= 3, GL_INVALID_ENUM);
  switch (name) {
    case GL_VERTEX_ARRAY_BINDING:
      *values = static_cast<GLint>(c.vertex_array_name);
      return;
    case GL_PIXEL_PACK_BUFFER_BINDING:
      *values = buffer(GL_PIXEL_PACK_BUFFER);
      return;
    case GL_PIXEL_UNPACK_BUFFER_BINDING:
      *values = buffer(GL_PIXEL_UNPACK_BUFFER);
      return;
    default:
      c.Fault(kCall, GL_INVALID_ENUM);
  }
}
