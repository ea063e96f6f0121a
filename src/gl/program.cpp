// Compiles and links programs, and looks up their inputs.
#include "gl/program.h"

#include <bit>
#include <utility>

namespace zuqel {
namespace {

Shader Compile(GLenum type, const char* source) {
  Shader shader(glCreateShader(type));
  glShaderSource(shader.get(), 1, &source, nullptr);
  glCompileShader(shader.get());
  return shader;
}

}  // namespace

Program BuildProgram(const ProgramSource& source, AttributeNames attributes) {
  const Shader vertex = Compile(GL_VERTEX_SHADER, source.vertex);
  const Shader fragment = Compile(GL_FRAGMENT_SHADER, source.fragment);
  Program program(glCreateProgram());
  if (vertex.get() == 0 || fragment.get() == 0 || program.get() == 0) {
    return program;
  }
  glAttachShader(program.get(), vertex.get());
  glAttachShader(program.get(), fragment.get());
  for (GLuint i = 0; i < attributes.size(); ++i) {
    glBindAttribLocation(program.get(), i, attributes[i]);
  }
  glLinkProgram(program.get());
  glDetachShader(program.get(), vertex.get());
  glDetachShader(program.get(), fragment.get());
  return program;
}

GLint LinkStatus(const Program& program) {
  GLint status = GL_FALSE;
  if (program.get() != 0) {
    glGetProgramiv(program.get(), GL_LINK_STATUS, &status);
  }
  return status;
}

LinkedProgram::LinkedProgram() {
  attributes_.fill(-1);
  uniforms_.fill(-1);
}

LinkedProgram::LinkedProgram(Program program, const ProgramInterface& interface)
    : LinkedProgram() {
  if (LinkStatus(program) != GL_TRUE) return;
  for (size_t i = 0; i < interface.attributes.size(); ++i) {
    attributes_[i] =
        glGetAttribLocation(program.get(), interface.attributes[i]);
    if (attributes_[i] < 0) return;
  }
  for (size_t i = 0; i < interface.uniforms.size(); ++i) {
    uniforms_[i] = glGetUniformLocation(program.get(), interface.uniforms[i]);
  }
  program_ = std::move(program);
}

bool LinkedProgram::IsNews(size_t index, uint32_t bits) {
  if (uniforms_[index] < 0 || values_[index] == bits) return false;
  values_[index] = bits;
  return true;
}

void LinkedProgram::SetUniform(size_t index, GLint value) {
  if (!IsNews(index, static_cast<uint32_t>(value))) return;
  glUniform1i(uniforms_[index], value);
}

void LinkedProgram::SetUniform(size_t index, GLfloat value) {
  if (!IsNews(index, std::bit_cast<uint32_t>(value))) return;
  glUniform1f(uniforms_[index], value);
}

void LinkedProgram::SetIdentity(size_t index) {
  constexpr std::array<GLfloat, 16> kIdentity = {1, 0, 0, 0, 0, 1, 0, 0,
                                                 0, 0, 1, 0, 0, 0, 0, 1};
  if (!IsNews(index, 1)) return;
  glUniformMatrix4fv(uniforms_[index], 1, GL_FALSE, kIdentity.data());
}

}  // namespace zuqel
