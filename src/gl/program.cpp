// Compiles and links programs, and looks up their inputs.
#include "gl/program.h"

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

LinkedProgram::LinkedProgram() {
  attributes_.fill(-1);
  uniforms_.fill(-1);
}

LinkedProgram::LinkedProgram(Program program, const ProgramInterface& interface)
    : LinkedProgram() {
  program_ = std::move(program);
  for (size_t i = 0; i < interface.attributes.size(); ++i) {
    attributes_[i] = glGetAttribLocation(name(), interface.attributes[i]);
  }
  for (size_t i = 0; i < interface.uniforms.size(); ++i) {
    uniforms_[i] = glGetUniformLocation(name(), interface.uniforms[i]);
  }
}

}  // namespace zuqel
