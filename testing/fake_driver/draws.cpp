// Buffers, vertex attributes, and what fills a target.
#include <GLES2/gl2.h>

#include <algorithm>
#include <bit>

#include "fake_driver/content.h"
#include "fake_driver/context.h"
#include "fake_driver/extension_calls.h"

namespace zuqel::fake_driver {

namespace {

size_t TypeBytes(GLint type) {
  switch (static_cast<GLenum>(type)) {
    case GL_BYTE:
    case GL_UNSIGNED_BYTE:
      return 1;
    case GL_SHORT:
    case GL_UNSIGNED_SHORT:
      return 2;
    default:
      return 4;
  }
}

VertexAttribute* AttributeAt(Call call, Context& c, GLuint index) {
  auto& attributes = c.vertex_array->attributes;
  if (index < attributes.size()) return &attributes[index];
  c.Fault(call, GL_INVALID_VALUE);
  return nullptr;
}

void SetPointer(Call call, Context& c, GLuint index,
                const VertexAttribute& values) {
  VertexAttribute* attribute = AttributeAt(call, c, index);
  if (attribute == nullptr) return;
  const auto [is_enabled, divisor] =
      std::pair(attribute->is_enabled, attribute->divisor);
  *attribute = values;
  attribute->is_enabled = is_enabled;
  attribute->divisor = divisor;
  attribute->buffer = c.BoundBuffer(GL_ARRAY_BUFFER);
}

// What the program reads of its arrays, at the vertices of the draw.
void AddVertices(Call call, const Context& c,
                 const std::vector<size_t>& vertices, Hash& hash) {
  for (const ProgramInput& input : c.program->attributes) {
    const VertexAttribute& attribute =
        c.vertex_array->attributes[static_cast<size_t>(input.location)];
    hash.Add(input.location, attribute.is_enabled, attribute.type,
             attribute.is_integer);
    if (attribute.is_enabled == 0) continue;
    const size_t bytes =
        static_cast<size_t>(attribute.size) * TypeBytes(attribute.type);
    const size_t stride =
        attribute.stride == 0 ? bytes : static_cast<size_t>(attribute.stride);
    const size_t last =
        attribute.divisor != 0
            ? 0
            : *std::max_element(vertices.begin(), vertices.end());
    const uint8_t* from = c.BytesAt(call, attribute.buffer, attribute.pointer,
                                    last * stride + bytes);
    if (from == nullptr) continue;
    for (const size_t vertex : vertices) {
      hash.AddBytes(from + std::min(vertex, last) * stride, bytes);
    }
  }
}

void AddSample(Call call, const Context& c, GLint unit, const Image& target,
               Hash& hash) {
  const auto index = static_cast<size_t>(unit);
  const auto texture =
      index < c.units.size() ? c.TextureOf(index) : std::make_shared<Texture>();
  // GL samples black where there is no image.
  if (!texture->image || texture->image->width == 0 ||
      texture->image->height == 0) {
    return;
  }
  const Image& image = *texture->image;
  if (&image == &target) NoteMisuse(call, "samples what it draws into");
  if (!image.is_written) NoteMisuse(call, "samples what nobody has written");
  if (texture->min_filter != GL_NEAREST && texture->min_filter != GL_LINEAR) {
    NoteMisuse(call, "samples mipmaps that are not there");
  }
  hash.Add(image.content, image.width, image.height, image.format,
           texture->min_filter, texture->mag_filter, texture->wrap_s,
           texture->wrap_t);
}

// State that decides which pixels are written, and how.
void AddState(const Context& c, const Image& target, Hash& hash) {
  hash.Add(target.content, target.width, target.height, c.colour_mask);
  if (c.IsOn(GL_SCISSOR_TEST)) hash.Add(c.scissor);
}

void Draw(Call call, Context& c, GLenum mode,
          const std::vector<size_t>& vertices) {
  Image* const target = c.Target(call);
  if (target == nullptr) return;
  if (!c.program || !c.program->is_linked) {
    NoteMisuse(call, "draws without a program");
    return;
  }
  if (vertices.empty()) return;
  Hash hash;
  AddState(c, *target, hash);
  hash.Add(mode, c.viewport, vertices.size());
  hash.Add(c.IsOn(GL_BLEND), c.IsOn(GL_CULL_FACE), c.IsOn(GL_DEPTH_TEST));
  if (c.IsOn(GL_BLEND)) hash.Add(c.blend_factors);
  hash.AddBytes(c.program->binary.data(), c.program->binary.size());
  for (const ProgramInput& uniform : c.program->uniforms) {
    if (uniform.type == "sampler2D") {
      AddSample(call, c, uniform.integer, *target, hash);
    } else {
      hash.Add(uniform.integer)
          .AddBytes(uniform.value.data(), sizeof(uniform.value));
    }
  }
  AddVertices(call, c, vertices, hash);
  target->content = hash.value();
  target->is_written = true;
}

}  // namespace

void GenVertexArrays(GLsizei count, GLuint* names) {
  ZUQEL_ENTER(glGenVertexArrays);
  ZUQEL_REQUIRE(c.version >= 3, GL_INVALID_OPERATION);
  for (GLsizei i = 0; i < count; ++i) names[i] = c.vertex_arrays.Make();
}

void BindVertexArray(GLuint name) {
  ZUQEL_ENTER(glBindVertexArray);
  ZUQEL_REQUIRE(c.version >= 3 && (name == 0 || c.vertex_arrays.Find(name)),
                GL_INVALID_OPERATION);
  c.vertex_array_name = name;
  c.vertex_array =
      name == 0 ? c.default_vertex_array : c.vertex_arrays.Find(name);
}

void VertexAttribDivisor(GLuint index, GLuint divisor) {
  ZUQEL_ENTER(glVertexAttribDivisor);
  ZUQEL_REQUIRE(c.version >= 3, GL_INVALID_OPERATION);
  auto* attribute = AttributeAt(kCall, c, index);
  if (attribute != nullptr) attribute->divisor = static_cast<GLint>(divisor);
}

void VertexAttribIPointer(GLuint index, GLint size, GLenum type, GLsizei stride,
                          const void* pointer) {
  ZUQEL_ENTER(glVertexAttribIPointer);
  ZUQEL_REQUIRE(c.version >= 3, GL_INVALID_OPERATION);
  SetPointer(kCall, c, index,
             {.size = size,
              .type = static_cast<GLint>(type),
              .stride = stride,
              .is_integer = 1,
              .pointer = pointer});
}

}  // namespace zuqel::fake_driver

using namespace zuqel::fake_driver;

void glGenBuffers(GLsizei count, GLuint* names) {
  ZUQEL_ENTER(glGenBuffers);
  for (GLsizei i = 0; i < count; ++i) names[i] = c.buffers.Make();
}

void glDeleteBuffers(GLsizei count, const GLuint* names) {
  ZUQEL_ENTER(glDeleteBuffers);
  for (GLsizei i = 0; i < count; ++i) {
    if (names[i] != 0 && !c.buffers.Erase(names[i])) {
      NoteMisuse(kCall, "no such name in this context");
    }
  }
}

void glBindBuffer(GLenum target, GLuint name) {
  ZUQEL_ENTER(glBindBuffer);
  ZUQEL_REQUIRE(target == GL_ARRAY_BUFFER ||
                    target == GL_ELEMENT_ARRAY_BUFFER ||
                    (c.version >= 3 && (target == GL_PIXEL_PACK_BUFFER ||
                                        target == GL_PIXEL_UNPACK_BUFFER)),
                GL_INVALID_ENUM);
  if (name != 0 && !c.buffers.Find(name)) {
    NoteMisuse(kCall, "no such name in this context");
  } else if (target == GL_ELEMENT_ARRAY_BUFFER) {
    c.vertex_array->element_buffer = name;
  } else {
    c.bound_buffers[target] = name;
  }
}

void glBufferData(GLenum target, GLsizeiptr size, const void* data, GLenum) {
  ZUQEL_ENTER(glBufferData);
  const auto buffer = c.buffers.Find(c.BoundBuffer(target));
  ZUQEL_REQUIRE(buffer, GL_INVALID_OPERATION);
  buffer->assign(static_cast<size_t>(size), 0);
  const auto* bytes = static_cast<const uint8_t*>(data);
  if (bytes != nullptr) std::copy_n(bytes, buffer->size(), buffer->begin());
}

void glEnableVertexAttribArray(GLuint index) {
  ZUQEL_ENTER(glEnableVertexAttribArray);
  auto* attribute = AttributeAt(kCall, c, index);
  if (attribute != nullptr) attribute->is_enabled = 1;
}

void glDisableVertexAttribArray(GLuint index) {
  ZUQEL_ENTER(glDisableVertexAttribArray);
  auto* attribute = AttributeAt(kCall, c, index);
  if (attribute != nullptr) attribute->is_enabled = 0;
}

void glVertexAttribPointer(GLuint index, GLint size, GLenum type,
                           GLboolean normalised, GLsizei stride,
                           const void* pointer) {
  ZUQEL_ENTER(glVertexAttribPointer);
  ZUQEL_REQUIRE(size >= 1 && size <= 4 && stride >= 0, GL_INVALID_VALUE);
  SetPointer(kCall, c, index,
             {.size = size,
              .type = static_cast<GLint>(type),
              .is_normalised = normalised,
              .stride = stride,
              .pointer = pointer});
}

void glGetVertexAttribiv(GLuint index, GLenum name, GLint* result) {
  ZUQEL_ENTER(glGetVertexAttribiv);
  const VertexAttribute* attribute = AttributeAt(kCall, c, index);
  if (attribute == nullptr) return;
  switch (name) {
    case GL_VERTEX_ATTRIB_ARRAY_ENABLED:
      *result = attribute->is_enabled;
      return;
    case GL_VERTEX_ATTRIB_ARRAY_SIZE:
      *result = attribute->size;
      return;
    case GL_VERTEX_ATTRIB_ARRAY_TYPE:
      *result = attribute->type;
      return;
    case GL_VERTEX_ATTRIB_ARRAY_NORMALIZED:
      *result = attribute->is_normalised;
      return;
    case GL_VERTEX_ATTRIB_ARRAY_STRIDE:
      *result = attribute->stride;
      return;
    case GL_VERTEX_ATTRIB_ARRAY_BUFFER_BINDING:
      *result = static_cast<GLint>(attribute->buffer);
      return;
    default:
      break;
  }
  ZUQEL_REQUIRE(c.version >= 3, GL_INVALID_ENUM);
  if (name == GL_VERTEX_ATTRIB_ARRAY_INTEGER) *result = attribute->is_integer;
  if (name == GL_VERTEX_ATTRIB_ARRAY_DIVISOR) *result = attribute->divisor;
}

void glGetVertexAttribPointerv(GLuint index, GLenum, void** pointer) {
  ZUQEL_ENTER(glGetVertexAttribPointerv);
  const VertexAttribute* attribute = AttributeAt(kCall, c, index);
  if (attribute != nullptr) *pointer = const_cast<void*>(attribute->pointer);
}

void glDrawArrays(GLenum mode, GLint first, GLsizei count) {
  ZUQEL_ENTER(glDrawArrays);
  ZUQEL_REQUIRE(first >= 0 && count >= 0, GL_INVALID_VALUE);
  std::vector<size_t> vertices(static_cast<size_t>(count));
  for (size_t i = 0; i < vertices.size(); ++i) {
    vertices[i] = static_cast<size_t>(first) + i;
  }
  Draw(kCall, c, mode, vertices);
}

void glDrawElements(GLenum mode, GLsizei count, GLenum type,
                    const void* indices) {
  ZUQEL_ENTER(glDrawElements);
  ZUQEL_REQUIRE(type == GL_UNSIGNED_SHORT || type == GL_UNSIGNED_BYTE,
                GL_INVALID_ENUM);
  ZUQEL_REQUIRE(count >= 0, GL_INVALID_VALUE);
  const size_t bytes = TypeBytes(static_cast<GLint>(type));
  std::vector<size_t> vertices(static_cast<size_t>(count));
  const uint8_t* from = c.BytesAt(kCall, c.BoundBuffer(GL_ELEMENT_ARRAY_BUFFER),
                                  indices, vertices.size() * bytes);
  if (from == nullptr) return;
  for (size_t& vertex : vertices) {
    for (size_t i = 0; i < bytes; ++i) vertex |= size_t{*from++} << (8 * i);
  }
  Draw(kCall, c, mode, vertices);
}

void glClear(GLbitfield mask) {
  ZUQEL_ENTER(glClear);
  Image* const target = c.Target(kCall);
  if (target == nullptr || (mask & GL_COLOR_BUFFER_BIT) == 0) return;
  const bool is_whole = !c.IsOn(GL_SCISSOR_TEST) &&
                        c.colour_mask == std::array<GLboolean, 4>{1, 1, 1, 1};
  Hash hash;
  if (!is_whole) AddState(c, *target, hash);
  hash.Add(std::bit_cast<std::array<uint32_t, 4>>(c.clear_colour));
  target->content = hash.value();
  target->is_written = target->is_written || is_whole;
}
