// Owners of GL names.
#ifndef ZUQEL_GL_GL_HANDLE_H_
#define ZUQEL_GL_GL_HANDLE_H_

#include <GLES2/gl2.h>

#include <utility>

namespace zuqel {

// Owns one GL name; zero owns nothing. The context it was made in is current
// when it dies: names that outlive the call that made them are held by
// InContext, which sees to that.
template <typename Traits>
class GlHandle {
 public:
  GlHandle() = default;
  explicit GlHandle(GLuint name) : name_(name) {}
  GlHandle(GlHandle&& other) noexcept : name_(std::exchange(other.name_, 0)) {}
  GlHandle& operator=(GlHandle&& other) noexcept {
    std::swap(name_, other.name_);
    return *this;
  }
  GlHandle(const GlHandle&) = delete;
  GlHandle& operator=(const GlHandle&) = delete;
  ~GlHandle() {
    if (name_ != 0) Traits::Delete(name_);
  }

  static GlHandle Generate() {
    GLuint name = 0;
    Traits::Generate(&name);
    return GlHandle(name);
  }

  [[nodiscard]] GLuint get() const { return name_; }

 private:
  GLuint name_ = 0;
};

struct TextureTraits {
  static void Generate(GLuint* name) { glGenTextures(1, name); }
  static void Delete(GLuint name) { glDeleteTextures(1, &name); }
};
using Texture = GlHandle<TextureTraits>;

struct FramebufferTraits {
  static void Generate(GLuint* name) { glGenFramebuffers(1, name); }
  static void Delete(GLuint name) { glDeleteFramebuffers(1, &name); }
};
using Framebuffer = GlHandle<FramebufferTraits>;

struct RenderbufferTraits {
  static void Generate(GLuint* name) { glGenRenderbuffers(1, name); }
  static void Delete(GLuint name) { glDeleteRenderbuffers(1, &name); }
};
using Renderbuffer = GlHandle<RenderbufferTraits>;

struct ShaderTraits {
  static void Delete(GLuint name) { glDeleteShader(name); }
};
using Shader = GlHandle<ShaderTraits>;

struct ProgramTraits {
  static void Delete(GLuint name) { glDeleteProgram(name); }
};
using Program = GlHandle<ProgramTraits>;

}  // namespace zuqel

#endif  // ZUQEL_GL_GL_HANDLE_H_
