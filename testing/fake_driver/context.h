// What a context holds, and the way into it that all calls of GL take.
#ifndef TESTING_FAKE_DRIVER_CONTEXT_H_
#define TESTING_FAKE_DRIVER_CONTEXT_H_

#include <GLES3/gl3.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "fake_driver/calls.h"

namespace zuqel::fake_driver {

inline constexpr GLint kLargestSide = 8192;
inline constexpr GLenum kOwnBinaryFormat = 0xFA4E;

// Values by the name that GL has for each.
using Values = std::map<GLenum, GLint>;

// Pixels. Two textures share them where one was made of the other's EGL image.
struct Image {
  int32_t width = 0;
  int32_t height = 0;
  GLenum format = GL_RGBA;
  uint64_t content = 0;
  bool is_written = false;
};

// A renderbuffer is one that nobody samples.
struct Texture {
  std::shared_ptr<Image> image;
  Values values = {{GL_TEXTURE_MIN_FILTER, GL_NEAREST_MIPMAP_LINEAR},
                   {GL_TEXTURE_MAG_FILTER, GL_LINEAR},
                   {GL_TEXTURE_WRAP_S, GL_REPEAT},
                   {GL_TEXTURE_WRAP_T, GL_REPEAT}};
};

struct Framebuffer {
  std::shared_ptr<Texture> colour, depth;
};

struct Shader {
  GLenum type = 0;
  std::string source;
  bool is_compiled = false;
};

// An input that the program uses.
struct ProgramInput {
  std::string name, type;
  GLint location = 0;
  std::array<GLfloat, 16> value = {};
  GLint integer = 0;
};

struct Program {
  std::shared_ptr<Shader> vertex, fragment;
  std::map<std::string, GLuint> attribute_locations;
  // Since it linked.
  bool is_linked = false;
  std::string binary;
  std::vector<ProgramInput> attributes, uniforms;
};

struct VertexAttribute {
  Values values = {{GL_VERTEX_ATTRIB_ARRAY_ENABLED, 0},
                   {GL_VERTEX_ATTRIB_ARRAY_SIZE, 4},
                   {GL_VERTEX_ATTRIB_ARRAY_TYPE, GL_FLOAT},
                   {GL_VERTEX_ATTRIB_ARRAY_NORMALIZED, 0},
                   {GL_VERTEX_ATTRIB_ARRAY_STRIDE, 0},
                   {GL_VERTEX_ATTRIB_ARRAY_BUFFER_BINDING, 0},
                   {GL_VERTEX_ATTRIB_ARRAY_INTEGER, 0},
                   {GL_VERTEX_ATTRIB_ARRAY_DIVISOR, 0}};
  const void* pointer = nullptr;
};

struct VertexArray {
  std::array<VertexAttribute, 8> attributes;
  GLint element_buffer = 0;  // while it is not bound
};

using Bytes = std::vector<uint8_t>;

// Objects by name; every name is the only one in all contexts.
template <typename T>
class Objects {
 public:
  Objects() = default;
  Objects(const Objects&) = delete;
  Objects& operator=(const Objects&) = delete;
  ~Objects() { living.names.Add(-static_cast<int>(objects_.size())); }

  GLuint Make(std::shared_ptr<T> object = std::make_shared<T>()) {
    static Counter last_name;
    living.names.Add(1);
    const auto name = static_cast<GLuint>(last_name.Add(1));
    objects_.emplace(name, std::move(object));
    return name;
  }
  // Null where there is no such object here.
  [[nodiscard]] std::shared_ptr<T> Find(GLuint name) const {
    const auto found = objects_.find(name);
    return found == objects_.end() ? nullptr : found->second;
  }
  // True for 0 too. Otherwise notes it: GL would pass over a deletion, and
  // would make an object of a name that nobody generated.
  [[nodiscard]] bool Has(Call call, GLuint name) const {
    if (name == 0 || objects_.contains(name)) return true;
    NoteMisuse(call, "no such name in this context");
    return false;
  }
  bool Erase(GLuint name) {
    const bool was_here = objects_.erase(name) == 1;
    if (was_here) living.names.Add(-1);
    return was_here;
  }
  [[nodiscard]] size_t size() const { return objects_.size(); }

 private:
  std::map<GLuint, std::shared_ptr<T>> objects_;
};

struct Context {
  explicit Context(int client_version);
  ~Context();
  Context(const Context&) = delete;
  Context& operator=(const Context&) = delete;

  Objects<Texture> textures, renderbuffers;
  Objects<Framebuffer> framebuffers;
  Objects<Shader> shaders;
  Objects<Program> programs;
  Objects<Bytes> buffers;
  Objects<VertexArray> vertex_arrays;

  int version;
  GLenum error = GL_NO_ERROR;
  std::shared_ptr<Image> surface;    // null where none is current
  Values values;                     // that glGetIntegerv knows
  std::array<GLuint, 8> units = {};  // the texture bound to each
  std::shared_ptr<Texture> default_texture = std::make_shared<Texture>();
  std::shared_ptr<Program> program;  // in use, be its name deleted or not
  std::shared_ptr<VertexArray> default_vertex_array =
      std::make_shared<VertexArray>();
  std::shared_ptr<VertexArray> vertex_array = default_vertex_array;
  std::array<GLint, 4> viewport = {}, scissor = {};
  std::array<GLboolean, 4> colour_mask = {1, 1, 1, 1};
  std::array<GLfloat, 4> clear_colour = {};

  // Notes an error of the call's.
  void Fault(Call call, GLenum code) {
    if (error == GL_NO_ERROR) error = code;
    NoteError(call, code);
  }
  [[nodiscard]] GLuint Name(GLenum binding) const {
    return static_cast<GLuint>(Value(binding));
  }
  [[nodiscard]] GLint Value(GLenum name) const {
    const auto found = values.find(name);
    return found == values.end() ? 0 : found->second;
  }
  GLuint& ActiveUnit() { return units[Name(GL_ACTIVE_TEXTURE) - GL_TEXTURE0]; }
  [[nodiscard]] Texture& TextureOf(GLuint unit) const {
    return unit == 0 ? *default_texture : *textures.Find(unit);
  }
  // What draws go to; null, with an error, where it is not complete.
  Image* Target(Call call);
  // `count` bytes at an address, or at an offset in a buffer; null, noted,
  // where they are not all in it.
  [[nodiscard]] const uint8_t* BytesAt(Call call, GLuint buffer,
                                       const void* pointer, size_t count) const;
};

// The context of this thread.
extern thread_local Context* current_context;

// Counts a call and gives the context; null where the call fails or there is
// none.
Context* Enter(Call call);

// Enters a call or returns: `c` is the context.
#define ZUQEL_ENTER(call, ...)                \
  Context* const entered = Enter(Call::call); \
  if (entered == nullptr) return __VA_ARGS__; \
  [[maybe_unused]] Context& c = *entered;     \
  [[maybe_unused]] constexpr Call kCall = Call::call

// An error, where `condition` does not hold.
#define ZUQEL_REQUIRE(condition, code, ...) \
  if (!(condition)) {                       \
    c.Fault(kCall, code);                   \
    return __VA_ARGS__;                     \
  }

}  // namespace zuqel::fake_driver

#endif  // TESTING_FAKE_DRIVER_CONTEXT_H_
