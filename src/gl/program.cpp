// Compiles and links programs.
#include "gl/program.h"

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

}  // namespace zuqel
