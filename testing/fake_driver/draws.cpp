// Buffers, vertex attributes, and what fills a target.
#include <GLES3/gl3.h>

#include <algorithm>
#include <bit>

#include "fake_driver/content.h"
#include "fake_driver/context.h"

namespace zuqel::fake_driver {
namespace {

// The binding that a target of glBindBuffer sets; 0 for none.
GLenum BindingOf(GLenum target) {
  switch (target) {
    case GL_ARRAY_BUFFER:
      return GL_ARRAY_BUFFER_BINDING;
    case GL_ELEMENT_ARRAY_BUFFER:
      return GL_ELEMENT_ARRAY_BUFFER_BINDING;
    case GL_PIXEL_PACK_BUFFER:
      return GL_PIXEL_PACK_BUFFER_BINDING;
    case GL_PIXEL_UNPACK_BUFFER:
      return GL_PIXEL_UNPACK_BUFFER_BINDING;
    default:
      return 0;
  }
}

size_t TypeBytes(GLint type) {
  switch (static_cast<GLenum>(type)) {
    case GL_UNSIGNED_BYTE:
      return 1;
    case GL_SHORT:
    case GL_UNSIGNED_SHORT:
      return 2;
    default:
      return 4;
  }
}

// Null, with an error, for an attribute that there is not.
VertexAttribute* AttributeAt(Call call, Context& c, GLuint index) {
  auto& attributes = c.vertex_array->attributes;
  if (index < attributes.size()) return &attributes[index];
  c.Fault(call, GL_INVALID_VALUE);
  return nullptr;
}

void SetValues(Call call, Context& c, GLuint index, const Values& values) {
  VertexAttribute* attribute = AttributeAt(call, c, index);
  if (attribute == nullptr) return;
  for (const auto& [name, value] : values) attribute->values[name] = value;
}

void SetPointer(Call call, Context& c, GLuint index, const void* pointer,
                Values values) {
  VertexAttribute* attribute = AttributeAt(call, c, index);
  if (attribute == nullptr) return;
  attribute->pointer = pointer;
  values[GL_VERTEX_ATTRIB_ARRAY_BUFFER_BINDING] =
      c.Value(GL_ARRAY_BUFFER_BINDING);
  SetValues(call, c, index, values);
}

// What the program reads of its arrays, at the vertices of the draw.
void AddVertices(Call call, const Context& c,
                 const std::vector<size_t>& vertices, Hash& hash) {
  for (const ProgramInput& input : c.program->attributes) {
    const auto& attribute =
        c.vertex_array->attributes[static_cast<size_t>(input.location)];
    const auto value = [&](GLenum name) { return attribute.values.at(name); };
    const GLint type = value(GL_VERTEX_ATTRIB_ARRAY_TYPE);
    hash.Add(type, value(GL_VERTEX_ATTRIB_ARRAY_INTEGER));
    if (value(GL_VERTEX_ATTRIB_ARRAY_ENABLED) == 0) continue;
    const size_t bytes =
        static_cast<size_t>(value(GL_VERTEX_ATTRIB_ARRAY_SIZE)) *
        TypeBytes(type);
    const auto given =
        static_cast<size_t>(value(GL_VERTEX_ATTRIB_ARRAY_STRIDE));
    const size_t stride = given == 0 ? bytes : given;
    const bool is_for_all = value(GL_VERTEX_ATTRIB_ARRAY_DIVISOR) != 0;
    const size_t last =
        is_for_all ? 0 : *std::max_element(vertices.begin(), vertices.end());
    const uint8_t* from = c.BytesAt(
        call, static_cast<GLuint>(value(GL_VERTEX_ATTRIB_ARRAY_BUFFER_BINDING)),
        attribute.pointer, last * stride + bytes);
    if (from == nullptr) continue;
    for (const size_t vertex : vertices) {
      hash.AddBytes(from + std::min(vertex, last) * stride, bytes);
    }
  }
}

// GL samples black where there is no image.
void AddSample(Call call, const Context& c, GLint unit, const Image& target,
               Hash& hash) {
  const auto index = static_cast<size_t>(unit);
  if (index >= c.units.size()) return;
  const Texture& texture = c.TextureOf(c.units[index]);
  if (!texture.image || texture.image->width == 0 ||
      texture.image->height == 0) {
    return;
  }
  const Image& image = *texture.image;
  if (&image == &target) NoteMisuse(call, "samples what it draws into");
  if (!image.is_written) NoteMisuse(call, "samples what nobody has written");
  const GLint filter = texture.values.at(GL_TEXTURE_MIN_FILTER);
  if (filter != GL_NEAREST && filter != GL_LINEAR) {
    NoteMisuse(call, "samples mipmaps that are not there");
  }
  hash.Add(image.content, image.width, image.height, image.format);
  for (const auto& [name, value] : texture.values) hash.Add(value);
}

// State that decides which pixels are written.
void AddState(const Context& c, const Image& target, Hash& hash) {
  hash.Add(target.content, target.width, target.height, c.colour_mask);
  if (c.Value(GL_SCISSOR_TEST) != 0) hash.Add(c.scissor);
}

void Draw(Call call, Context& c, GLenum mode,
          const std::vector<size_t>& vertices) {
  Image* const target = c.Target(call);
  if (target == nullptr) return;
  if (!c.program || !c.program->is_linked) {
    NoteMisuse(call, "draws without a program");
    return;
  }
  Hash hash;
  AddState(c, *target, hash);
  hash.Add(mode, c.viewport);
  hash.Add(c.Value(GL_CULL_FACE), c.Value(GL_DEPTH_TEST));
  if (c.Value(GL_BLEND) != 0) {
    hash.Add(c.Value(GL_BLEND_SRC_RGB), c.Value(GL_BLEND_DST_RGB));
  }
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
}  // namespace zuqel::fake_driver

using namespace zuqel::fake_driver;

void glBindBuffer(GLenum target, GLuint name) {
  ZUQEL_ENTER(glBindBuffer);
  const GLenum binding = BindingOf(target);
  ZUQEL_REQUIRE(c.values.contains(binding), GL_INVALID_ENUM);
  if (c.buffers.Has(kCall, name)) c.values[binding] = static_cast<GLint>(name);
}

void glBufferData(GLenum target, GLsizeiptr size, const void* data, GLenum) {
  ZUQEL_ENTER(glBufferData);
  const auto buffer = c.buffers.Find(c.Name(BindingOf(target)));
  ZUQEL_REQUIRE(buffer, GL_INVALID_OPERATION);
  buffer->assign(static_cast<size_t>(size), 0);
  const auto* bytes = static_cast<const uint8_t*>(data);
  if (bytes != nullptr) std::copy_n(bytes, buffer->size(), buffer->begin());
}

void glGenVertexArrays(GLsizei count, GLuint* names) {
  ZUQEL_ENTER(glGenVertexArrays);
  for (GLsizei i = 0; i < count; ++i) names[i] = c.vertex_arrays.Make();
}

void glBindVertexArray(GLuint name) {
  ZUQEL_ENTER(glBindVertexArray);
  ZUQEL_REQUIRE(c.version >= 3 && c.vertex_arrays.Has(kCall, name),
                GL_INVALID_OPERATION);
  GLint& elements = c.values[GL_ELEMENT_ARRAY_BUFFER_BINDING];
  c.vertex_array->element_buffer = elements;
  c.values[GL_VERTEX_ARRAY_BINDING] = static_cast<GLint>(name);
  c.vertex_array =
      name == 0 ? c.default_vertex_array : c.vertex_arrays.Find(name);
  elements = c.vertex_array->element_buffer;
}

void glEnableVertexAttribArray(GLuint index) {
  ZUQEL_ENTER(glEnableVertexAttribArray);
  SetValues(kCall, c, index, {{GL_VERTEX_ATTRIB_ARRAY_ENABLED, 1}});
}

void glDisableVertexAttribArray(GLuint index) {
  ZUQEL_ENTER(glDisableVertexAttribArray);
  SetValues(kCall, c, index, {{GL_VERTEX_ATTRIB_ARRAY_ENABLED, 0}});
}

void glVertexAttribDivisor(GLuint index, GLuint divisor) {
  ZUQEL_ENTER(glVertexAttribDivisor);
  ZUQEL_REQUIRE(c.version >= 3, GL_INVALID_OPERATION);
  SetValues(kCall, c, index,
            {{GL_VERTEX_ATTRIB_ARRAY_DIVISOR, static_cast<GLint>(divisor)}});
}

void glVertexAttribPointer(GLuint index, GLint size, GLenum type,
                           GLboolean normalised, GLsizei stride,
                           const void* pointer) {
  ZUQEL_ENTER(glVertexAttribPointer);
  SetPointer(kCall, c, index, pointer,
             {{GL_VERTEX_ATTRIB_ARRAY_SIZE, size},
              {GL_VERTEX_ATTRIB_ARRAY_TYPE, static_cast<GLint>(type)},
              {GL_VERTEX_ATTRIB_ARRAY_NORMALIZED, normalised},
              {GL_VERTEX_ATTRIB_ARRAY_STRIDE, stride},
              {GL_VERTEX_ATTRIB_ARRAY_INTEGER, 0}});
}

void glVertexAttribIPointer(GLuint index, GLint size, GLenum type,
                            GLsizei stride, const void* pointer) {
  ZUQEL_ENTER(glVertexAttribIPointer);
  ZUQEL_REQUIRE(c.version >= 3, GL_INVALID_OPERATION);
  SetPointer(kCall, c, index, pointer,
             {{GL_VERTEX_ATTRIB_ARRAY_SIZE, size},
              {GL_VERTEX_ATTRIB_ARRAY_TYPE, static_cast<GLint>(type)},
              {GL_VERTEX_ATTRIB_ARRAY_STRIDE, stride},
              {GL_VERTEX_ATTRIB_ARRAY_INTEGER, 1}});
}

void glGetVertexAttribiv(GLuint index, GLenum name, GLint* result) {
  ZUQEL_ENTER(glGetVertexAttribiv);
  const VertexAttribute* attribute = AttributeAt(kCall, c, index);
  if (attribute == nullptr) return;
  const bool is_of_es3 = name == GL_VERTEX_ATTRIB_ARRAY_INTEGER ||
                         name == GL_VERTEX_ATTRIB_ARRAY_DIVISOR;
  ZUQEL_REQUIRE(
      attribute->values.contains(name) && (c.version >= 3 || !is_of_es3),
      GL_INVALID_ENUM);
  *result = attribute->values.at(name);
}

void glGetVertexAttribPointerv(GLuint index, GLenum, void** pointer) {
  ZUQEL_ENTER(glGetVertexAttribPointerv);
  const VertexAttribute* attribute = AttributeAt(kCall, c, index);
  if (attribute != nullptr) *pointer = const_cast<void*>(attribute->pointer);
}

void glDrawElements(GLenum mode, GLsizei count, GLenum type,
                    const void* indices) {
  ZUQEL_ENTER(glDrawElements);
  ZUQEL_REQUIRE(type == GL_UNSIGNED_SHORT, GL_INVALID_ENUM);
  ZUQEL_REQUIRE(count > 0, GL_INVALID_VALUE);
  std::vector<size_t> vertices(static_cast<size_t>(count));
  const uint8_t* from =
      c.BytesAt(kCall, c.Name(GL_ELEMENT_ARRAY_BUFFER_BINDING), indices,
                vertices.size() * sizeof(GLushort));
  if (from == nullptr) return;
  for (size_t i = 0; i < vertices.size(); ++i) {
    vertices[i] = from[2 * i] + size_t{256} * from[2 * i + 1];
  }
  Draw(kCall, c, mode, vertices);
}

void glClear(GLbitfield mask) {
  ZUQEL_ENTER(glClear);
  Image* const target = c.Target(kCall);
  if (target == nullptr || (mask & GL_COLOR_BUFFER_BIT) == 0) return;
  const bool is_whole = c.Value(GL_SCISSOR_TEST) == 0 &&
                        c.colour_mask == std::array<GLboolean, 4>{1, 1, 1, 1};
  Hash hash;
  if (!is_whole) AddState(c, *target, hash);
  hash.Add(std::bit_cast<std::array<uint32_t, 4>>(c.clear_colour));
  target->content = hash.value();
  target->is_written = target->is_written || is_whole;
}
