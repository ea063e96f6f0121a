// A context's state, and what it says of itself.
#include "fake_driver/context.h"

#include <GLES2/gl2.h>
#include <GLES2/gl2ext.h>

#include <algorithm>
#include <sstream>

namespace zuqel::fake_driver {

Context* Enter(Call call) {
  const bool fails = Fails(call);
  Context* const context = current_context;
  if (context == nullptr) NoteMisuse(call, "no context is current");
  if (context == nullptr || !fails) return context;
  if (context->error == GL_NO_ERROR) context->error = GL_OUT_OF_MEMORY;
  return nullptr;
}

Context::Context(int client_version)
    : version(client_version),
      values({{GL_ACTIVE_TEXTURE, GL_TEXTURE0},
              {GL_ARRAY_BUFFER_BINDING, 0},
              {GL_BLEND, 0},
              {GL_BLEND_DST_RGB, GL_ZERO},
              {GL_BLEND_SRC_RGB, GL_ONE},
              {GL_CULL_FACE, 0},
              {GL_CURRENT_PROGRAM, 0},
              {GL_DEPTH_FUNC, GL_LESS},
              {GL_DEPTH_TEST, 0},
              {GL_ELEMENT_ARRAY_BUFFER_BINDING, 0},
              {GL_FRAMEBUFFER_BINDING, 0},
              {GL_MAX_RENDERBUFFER_SIZE, kLargestSide},
              {GL_MAX_TEXTURE_SIZE, kLargestSide},
              {GL_NUM_PROGRAM_BINARY_FORMATS_OES, 1},
              {GL_PACK_ALIGNMENT, 4},
              {GL_PROGRAM_BINARY_FORMATS_OES, GLint{kOwnBinaryFormat}},
              {GL_RENDERBUFFER_BINDING, 0},
              {GL_SCISSOR_TEST, 0},
              {GL_UNPACK_ALIGNMENT, 4}}) {
  if (version < 3) return;
  values.merge(Values({{GL_PACK_ROW_LENGTH, 0},
                       {GL_PACK_SKIP_PIXELS, 0},
                       {GL_PACK_SKIP_ROWS, 0},
                       {GL_PIXEL_PACK_BUFFER_BINDING, 0},
                       {GL_PIXEL_UNPACK_BUFFER_BINDING, 0},
                       {GL_UNPACK_ROW_LENGTH, 0},
                       {GL_UNPACK_SKIP_PIXELS, 0},
                       {GL_UNPACK_SKIP_ROWS, 0},
                       {GL_VERTEX_ARRAY_BINDING, 0}}));
}

Context::~Context() {
  std::ostringstream text;
  const auto add = [&](size_t count, const char* kind) {
    if (count != 0) text << ", " << count << " " << kind;
  };
  add(textures.size(), "textures");
  add(renderbuffers.size(), "renderbuffers");
  add(framebuffers.size(), "framebuffers");
  add(shaders.size(), "shaders");
  add(programs.size(), "programs");
  if (!text.str().empty()) NoteAbandoned(text.str().substr(2));
}

Image* Context::Target(Call call) {
  const auto has_pixels = [](const std::shared_ptr<Texture>& attached) {
    return attached && attached->image && attached->image->width > 0 &&
           attached->image->height > 0;
  };
  const auto bound = framebuffers.Find(Name(GL_FRAMEBUFFER_BINDING));
  if (!bound && surface) return surface.get();
  if (bound && has_pixels(bound->colour)) {
    Image* const image = bound->colour->image.get();
    if (!bound->depth || (has_pixels(bound->depth) &&
                          bound->depth->image->width == image->width &&
                          bound->depth->image->height == image->height)) {
      return image;
    }
  }
  Fault(call, GL_INVALID_FRAMEBUFFER_OPERATION);
  return nullptr;
}

const uint8_t* Context::BytesAt(Call call, GLuint buffer, const void* pointer,
                                size_t count) const {
  static constexpr uint8_t kNothing = 0;
  if (count == 0) return &kNothing;
  if (buffer == 0 && pointer != nullptr) {
    return static_cast<const uint8_t*>(pointer);
  }
  const auto bytes = buffers.Find(buffer);
  const auto offset = reinterpret_cast<uintptr_t>(pointer);
  if (!bytes || offset > bytes->size() || count > bytes->size() - offset) {
    NoteMisuse(call, "reads outside of a buffer");
    return nullptr;
  }
  return bytes->data() + offset;
}

namespace {

void Switch(Call call, Context& c, GLenum name, bool is_on) {
  const bool is_switch = name == GL_BLEND || name == GL_SCISSOR_TEST ||
                         name == GL_DEPTH_TEST || name == GL_CULL_FACE;
  if (!is_switch) return c.Fault(call, GL_INVALID_ENUM);
  c.values[name] = is_on ? 1 : 0;
}

}  // namespace
}  // namespace zuqel::fake_driver

using namespace zuqel::fake_driver;

void glEnable(GLenum name) {
  ZUQEL_ENTER(glEnable);
  Switch(kCall, c, name, true);
}

void glDisable(GLenum name) {
  ZUQEL_ENTER(glDisable);
  Switch(kCall, c, name, false);
}

GLboolean glIsEnabled(GLenum name) {
  ZUQEL_ENTER(glIsEnabled, GL_FALSE);
  return c.Value(name) != 0 ? GL_TRUE : GL_FALSE;
}

void glPixelStorei(GLenum name, GLint value) {
  ZUQEL_ENTER(glPixelStorei);
  ZUQEL_REQUIRE(c.values.contains(name), GL_INVALID_ENUM);
  const bool is_alignment =
      name == GL_PACK_ALIGNMENT || name == GL_UNPACK_ALIGNMENT;
  ZUQEL_REQUIRE(value >= 0 && (value != 0 || !is_alignment), GL_INVALID_VALUE);
  c.values[name] = value;
}

void glColorMask(GLboolean red, GLboolean green, GLboolean blue,
                 GLboolean alpha) {
  ZUQEL_ENTER(glColorMask);
  c.colour_mask = {red, green, blue, alpha};
}

void glBlendFunc(GLenum source, GLenum target) {
  ZUQEL_ENTER(glBlendFunc);
  c.values[GL_BLEND_SRC_RGB] = static_cast<GLint>(source);
  c.values[GL_BLEND_DST_RGB] = static_cast<GLint>(target);
}

void glClearColor(GLfloat red, GLfloat green, GLfloat blue, GLfloat alpha) {
  ZUQEL_ENTER(glClearColor);
  c.clear_colour = {red, green, blue, alpha};
}

void glDepthFunc(GLenum function) {
  ZUQEL_ENTER(glDepthFunc);
  c.values[GL_DEPTH_FUNC] = static_cast<GLint>(function);
}

void glViewport(GLint x, GLint y, GLsizei width, GLsizei height) {
  ZUQEL_ENTER(glViewport);
  ZUQEL_REQUIRE(width >= 0 && height >= 0, GL_INVALID_VALUE);
  c.viewport = {x, y, std::min(width, kLargestSide),
                std::min(height, kLargestSide)};
}

void glScissor(GLint x, GLint y, GLsizei width, GLsizei height) {
  ZUQEL_ENTER(glScissor);
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
  const char* text = "fake driver";
  if (name == GL_EXTENSIONS) text = "";
  if (name == GL_VERSION) {
    text = c.version < 3 ? "OpenGL ES 2.0 fake" : "OpenGL ES 3.0 fake";
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
  if (name == GL_VIEWPORT) {
    std::copy(c.viewport.begin(), c.viewport.end(), values);
  } else if (name == GL_TEXTURE_BINDING_2D) {
    *values = static_cast<GLint>(c.ActiveUnit());
  } else {
    ZUQEL_REQUIRE(c.values.contains(name), GL_INVALID_ENUM);
    *values = c.values[name];
  }
}
