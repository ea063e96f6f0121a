// What a context holds, and the way into it that all calls of GL take.
#ifndef TESTING_FAKE_DRIVER_CONTEXT_H_
#define TESTING_FAKE_DRIVER_CONTEXT_H_

#include <GLES3/gl3.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "fake_driver/calls.h"

namespace zuqel::fake_driver {

inline constexpr GLint kLargestSide = 8192;
inline constexpr GLenum kOwnBinaryFormat = 0xFA4E;

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
  GLint min_filter = GL_NEAREST_MIPMAP_LINEAR;
  GLint mag_filter = GL_LINEAR;
  GLint wrap_s = GL_REPEAT;
  GLint wrap_t = GL_REPEAT;
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
  std::string name;
  std::string type;
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
  GLint is_enabled = 0;
  GLint size = 4;
  GLint type = GL_FLOAT;
  GLint is_normalised = 0;
  GLint stride = 0;
  GLint is_integer = 0;
  GLint divisor = 0;
  GLuint buffer = 0;
  const void* pointer = nullptr;
};

struct VertexArray {
  std::array<VertexAttribute, 8> attributes;
  GLuint element_buffer = 0;
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

  GLuint Make(T object = std::make_shared<typename T::element_type>()) {
    static Counter last_name;
    living.names.Add(1);
    const auto name = static_cast<GLuint>(last_name.Add(1));
    objects_.emplace(name, std::move(object));
    return name;
  }
  // Null where there is no such object here.
  T Find(GLuint name) const {
    const auto found = objects_.find(name);
    return found == objects_.end() ? T() : found->second;
  }
  bool Erase(GLuint name) {
    const bool was_here = objects_.erase(name) == 1;
    if (was_here) living.names.Add(-1);
    return was_here;
  }
  [[nodiscard]] size_t size() const { return objects_.size(); }

 private:
  std::map<GLuint, T> objects_;
};
template <typename T>
using SharedObjects = Objects<std::shared_ptr<T>>;

struct Context {
  explicit Context(int client_version) : version(client_version) {}

  // Objects without one are of the context itself, by the name 0.
  SharedObjects<Texture> textures, renderbuffers;
  SharedObjects<Framebuffer> framebuffers;
  SharedObjects<Shader> shaders;
  SharedObjects<Program> programs;
  SharedObjects<Bytes> buffers;
  SharedObjects<VertexArray> vertex_arrays;

  int version;
  GLenum error = GL_NO_ERROR;
  std::shared_ptr<Image> surface;  // null where none is current

  std::array<GLuint, 8> units = {};  // the texture bound to each
  std::shared_ptr<Texture> default_texture = std::make_shared<Texture>();
  size_t active_unit = 0;
  GLuint framebuffer = 0, renderbuffer = 0;
  GLuint program_name = 0;
  std::shared_ptr<Program> program;  // in use, be its name deleted or not
  GLuint vertex_array_name = 0;
  std::shared_ptr<VertexArray> vertex_array = std::make_shared<VertexArray>();
  std::shared_ptr<VertexArray> default_vertex_array = vertex_array;
  std::map<GLenum, GLuint> bound_buffers;  // but for elements

  std::map<GLenum, GLint> pixel_store = {{GL_PACK_ALIGNMENT, 4},
                                         {GL_UNPACK_ALIGNMENT, 4}};
  std::map<GLenum, bool> switches;
  std::array<GLint, 2> blend_factors = {GL_ONE, GL_ZERO};
  std::array<GLint, 4> viewport = {}, scissor = {};
  std::array<GLboolean, 4> colour_mask = {1, 1, 1, 1};
  std::array<GLfloat, 4> clear_colour = {};

  // Notes an error of the call's.
  void Fault(Call call, GLenum code) {
    if (error == GL_NO_ERROR) error = code;
    NoteError(call, code);
  }

  // The texture bound to a unit; null for a name that is none.
  [[nodiscard]] std::shared_ptr<Texture> TextureOf(size_t unit) const {
    return units[unit] == 0 ? default_texture : textures.Find(units[unit]);
  }
  // What draws go to; null where it is not complete, with an error for a call.
  [[nodiscard]] Image* CompleteTarget() const;
  Image* Target(Call call);

  [[nodiscard]] bool IsOn(GLenum name) const {
    const auto found = switches.find(name);
    return found != switches.end() && found->second;
  }
  [[nodiscard]] GLint PixelStore(GLenum name) const {
    const auto found = pixel_store.find(name);
    return found == pixel_store.end() ? 0 : found->second;
  }
  [[nodiscard]] GLuint BoundBuffer(GLenum target) const;
  // `count` bytes at an address, or at an offset in the buffer; null, noted,
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

// The same for a call that has only succeeded where `condition` holds.
#define ZUQEL_REQUIRE(condition, code, ...) \
  if (!(condition)) {                       \
    c.Fault(kCall, code);                   \
    return __VA_ARGS__;                     \
  }

}  // namespace zuqel::fake_driver

#endif  // TESTING_FAKE_DRIVER_CONTEXT_H_
