// Shaders and programs. A program's binary is a checksum and its sources.
#include <GLES2/gl2.h>
#include <GLES2/gl2ext.h>
#include <GLES3/gl3.h>

#include <algorithm>
#include <cstring>
#include <string_view>

#include "fake_driver/content.h"
#include "fake_driver/context.h"

namespace zuqel::fake_driver {
namespace {

bool IsInWord(char letter) {
  return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') ||
         (letter >= '0' && letter <= '9') || letter == '_';
}

struct DeclaredInput {
  bool is_uniform = false;
  bool is_used = false;
  ProgramInput input;
};

// The inputs that a source declares; one is used that it names once more. A
// source is read once on each thread.
const std::vector<DeclaredInput>& InputsOf(std::string_view source) {
  thread_local std::map<uint64_t, std::vector<DeclaredInput>> known;
  const uint64_t hash = Hash().AddBytes(source.data(), source.size()).value();
  const auto [found, is_new] = known.try_emplace(hash);
  std::vector<DeclaredInput>& inputs = found->second;
  if (!is_new) return inputs;
  std::array<std::string_view, 3> words;  // the latest last
  while (!source.empty()) {
    if (source.starts_with("//")) {
      source.remove_prefix(std::min(source.find('\n'), source.size()));
    }
    const auto length = static_cast<size_t>(
        std::find_if_not(source.begin(), source.end(), IsInWord) -
        source.begin());
    if (length == 0) {
      if (!source.empty()) source.remove_prefix(1);
      continue;
    }
    words = {words[1], words[2], source.substr(0, length)};
    source.remove_prefix(length);
    for (DeclaredInput& input : inputs) {
      if (input.input.name == words[2]) input.is_used = true;
    }
    if (words[0] == "uniform" || words[0] == "attribute") {
      inputs.push_back({words[0] == "uniform",
                        false,
                        {std::string(words[2]), std::string(words[1])}});
    }
  }
  return inputs;
}

const ProgramInput* FindInput(const std::vector<ProgramInput>& inputs,
                              const std::string& name) {
  for (const ProgramInput& input : inputs) {
    if (input.name == name) return &input;
  }
  return nullptr;
}

// Gives a program its inputs.
void SetInputs(Program& program, const std::string& vertex,
               const std::string& fragment) {
  program.attributes.clear();
  program.uniforms.clear();
  for (const std::string* source : {&vertex, &fragment}) {
    for (const auto& [is_uniform, is_used, input] : InputsOf(*source)) {
      auto& inputs = is_uniform ? program.uniforms : program.attributes;
      if (!is_used || FindInput(inputs, input.name) != nullptr) continue;
      inputs.push_back(input);
      inputs.back().location = static_cast<GLint>(inputs.size()) - 1;
    }
  }
  for (ProgramInput& input : program.attributes) {
    const auto bound = program.attribute_locations.find(input.name);
    if (bound != program.attribute_locations.end()) {
      input.location = static_cast<GLint>(bound->second);
    }
  }
}

// Parts of a binary end with a zero.
std::string BinaryOf(const Program& program) {
  std::string text = program.vertex->source + '\0' + program.fragment->source;
  text += '\0';
  for (const ProgramInput& input : program.attributes) {
    text += input.name + '\0' + static_cast<char>(input.location) + '\0';
  }
  const uint64_t sum = Hash().AddBytes(text.data(), text.size()).value();
  std::string binary(sizeof(sum), '\0');
  std::memcpy(binary.data(), &sum, sizeof(sum));
  return binary + text;
}

bool IsBinary(std::string_view binary) {
  uint64_t sum = 0;
  if (binary.size() <= sizeof(sum)) return false;
  std::memcpy(&sum, binary.data(), sizeof(sum));
  binary.remove_prefix(sizeof(sum));
  return Hash().AddBytes(binary.data(), binary.size()).value() == sum;
}

std::string TakePart(std::string_view& binary) {
  const size_t end = binary.find('\0');
  std::string part(binary.substr(0, end));
  binary.remove_prefix(end + 1);
  return part;
}

bool IsWhole(const std::shared_ptr<Shader>& shader) {
  return shader && shader->is_compiled;
}

// Where a uniform's value goes; null where none is.
ProgramInput* UniformAt(Call call, Context& c, GLint location,
                        std::initializer_list<std::string_view> types) {
  if (!c.program || !c.program->is_linked) {
    c.Fault(call, GL_INVALID_OPERATION);
    return nullptr;
  }
  if (location == -1) return nullptr;
  auto& uniforms = c.program->uniforms;
  const auto index = static_cast<size_t>(location);
  if (index >= uniforms.size() ||
      std::find(types.begin(), types.end(), uniforms[index].type) ==
          types.end()) {
    c.Fault(call, GL_INVALID_OPERATION);
    return nullptr;
  }
  return &uniforms[index];
}

// Sets or clears the stage that a shader is for.
void SetStage(Call call, Context& c, GLuint name, GLuint shader_name,
              bool is_attached) {
  const auto program = c.programs.Find(name);
  const auto shader = c.shaders.Find(shader_name);
  if (!program || !shader) return c.Fault(call, GL_INVALID_VALUE);
  auto& stage =
      shader->type == GL_VERTEX_SHADER ? program->vertex : program->fragment;
  if (stage != (is_attached ? nullptr : shader)) {
    return c.Fault(call, GL_INVALID_OPERATION);
  }
  stage = is_attached ? shader : nullptr;
}

GLint LocationOf(Call call, Context& c, GLuint name,
                 std::vector<ProgramInput> Program::*inputs,
                 const GLchar* input_name) {
  const auto program = c.programs.Find(name);
  if (!program || !program->is_linked) {
    c.Fault(call, program ? GL_INVALID_OPERATION : GL_INVALID_VALUE);
    return -1;
  }
  const auto* input = FindInput(*program.*inputs, input_name);
  return input == nullptr ? -1 : input->location;
}

}  // namespace
}  // namespace zuqel::fake_driver

using namespace zuqel::fake_driver;

GLuint glCreateShader(GLenum type) {
  ZUQEL_ENTER(glCreateShader, 0);
  return c.shaders.Make(std::make_shared<Shader>(Shader{type, {}, false}));
}

void glShaderSource(GLuint name, GLsizei count, const GLchar* const* texts,
                    const GLint* lengths) {
  ZUQEL_ENTER(glShaderSource);
  const auto shader = c.shaders.Find(name);
  ZUQEL_REQUIRE(shader, GL_INVALID_VALUE);
  shader->source.clear();
  for (GLsizei i = 0; i < count; ++i) {
    const bool is_terminated = lengths == nullptr || lengths[i] < 0;
    shader->source.append(texts[i], is_terminated
                                        ? std::strlen(texts[i])
                                        : static_cast<size_t>(lengths[i]));
  }
}

void glCompileShader(GLuint name) {
  ZUQEL_ENTER(glCompileShader);
  const auto shader = c.shaders.Find(name);
  ZUQEL_REQUIRE(shader, GL_INVALID_VALUE);
  shader->is_compiled = shader->source.find("main") != std::string::npos;
}

void glDeleteShader(GLuint name) {
  ZUQEL_ENTER(glDeleteShader);
  ZUQEL_REQUIRE(name == 0 || c.shaders.Erase(name), GL_INVALID_VALUE);
}

GLuint glCreateProgram() {
  ZUQEL_ENTER(glCreateProgram, 0);
  return c.programs.Make();
}

void glDeleteProgram(GLuint name) {
  ZUQEL_ENTER(glDeleteProgram);
  ZUQEL_REQUIRE(name == 0 || c.programs.Erase(name), GL_INVALID_VALUE);
}

void glAttachShader(GLuint name, GLuint shader) {
  ZUQEL_ENTER(glAttachShader);
  SetStage(kCall, c, name, shader, true);
}

void glDetachShader(GLuint name, GLuint shader) {
  ZUQEL_ENTER(glDetachShader);
  SetStage(kCall, c, name, shader, false);
}

void glBindAttribLocation(GLuint name, GLuint index, const GLchar* attribute) {
  ZUQEL_ENTER(glBindAttribLocation);
  const auto program = c.programs.Find(name);
  ZUQEL_REQUIRE(program && index < VertexArray().attributes.size(),
                GL_INVALID_VALUE);
  program->attribute_locations[attribute] = index;
}

void glLinkProgram(GLuint name) {
  ZUQEL_ENTER(glLinkProgram);
  const auto program = c.programs.Find(name);
  ZUQEL_REQUIRE(program, GL_INVALID_VALUE);
  program->is_linked = IsWhole(program->vertex) && IsWhole(program->fragment);
  if (!program->is_linked) return;
  SetInputs(*program, program->vertex->source, program->fragment->source);
  program->binary = BinaryOf(*program);
}

void glGetProgramiv(GLuint name, GLenum value, GLint* result) {
  ZUQEL_ENTER(glGetProgramiv);
  const auto program = c.programs.Find(name);
  ZUQEL_REQUIRE(program, GL_INVALID_VALUE);
  switch (value) {
    case GL_LINK_STATUS:
      *result = program->is_linked ? GL_TRUE : GL_FALSE;
      break;
    case GL_PROGRAM_BINARY_LENGTH_OES:
      *result = static_cast<GLint>(program->binary.size());
      break;
    default:
      c.Fault(kCall, GL_INVALID_ENUM);
  }
}

GLint glGetAttribLocation(GLuint name, const GLchar* attribute) {
  ZUQEL_ENTER(glGetAttribLocation, -1);
  return LocationOf(kCall, c, name, &Program::attributes, attribute);
}

GLint glGetUniformLocation(GLuint name, const GLchar* uniform) {
  ZUQEL_ENTER(glGetUniformLocation, -1);
  return LocationOf(kCall, c, name, &Program::uniforms, uniform);
}

void glUseProgram(GLuint name) {
  ZUQEL_ENTER(glUseProgram);
  const auto program = c.programs.Find(name);
  ZUQEL_REQUIRE(name == 0 || program, GL_INVALID_VALUE);
  ZUQEL_REQUIRE(name == 0 || program->is_linked, GL_INVALID_OPERATION);
  c.values[GL_CURRENT_PROGRAM] = static_cast<GLint>(name);
  c.program = program;
}

void glUniform1i(GLint location, GLint value) {
  ZUQEL_ENTER(glUniform1i);
  auto* uniform = UniformAt(kCall, c, location, {"int", "bool", "sampler2D"});
  if (uniform != nullptr) uniform->integer = value;
}

void glUniform1f(GLint location, GLfloat value) {
  ZUQEL_ENTER(glUniform1f);
  auto* uniform = UniformAt(kCall, c, location, {"float", "bool"});
  if (uniform != nullptr) uniform->value[0] = value;
}

void glUniformMatrix4fv(GLint location, GLsizei count, GLboolean transpose,
                        const GLfloat* values) {
  ZUQEL_ENTER(glUniformMatrix4fv);
  ZUQEL_REQUIRE(count == 1 && transpose == GL_FALSE, GL_INVALID_VALUE);
  auto* uniform = UniformAt(kCall, c, location, {"mat4"});
  if (uniform == nullptr) return;
  std::copy_n(values, uniform->value.size(), uniform->value.begin());
}

void glGetProgramBinary(GLuint name, GLsizei size, GLsizei* length,
                        GLenum* format, void* binary) {
  ZUQEL_ENTER(glGetProgramBinaryOES);
  const auto program = c.programs.Find(name);
  ZUQEL_REQUIRE(program, GL_INVALID_VALUE);
  ZUQEL_REQUIRE(
      program->is_linked && static_cast<size_t>(size) >= program->binary.size(),
      GL_INVALID_OPERATION);
  std::memcpy(binary, program->binary.data(), program->binary.size());
  if (length != nullptr) *length = static_cast<GLsizei>(program->binary.size());
  *format = kOwnBinaryFormat;
}

void glProgramBinary(GLuint name, GLenum format, const void* binary,
                     GLint length) {
  ZUQEL_ENTER(glProgramBinaryOES);
  const auto program = c.programs.Find(name);
  ZUQEL_REQUIRE(program, GL_INVALID_VALUE);
  ZUQEL_REQUIRE(format == kOwnBinaryFormat, GL_INVALID_ENUM);
  program->binary.assign(static_cast<const char*>(binary),
                         static_cast<size_t>(length));
  program->is_linked = IsBinary(program->binary);
  if (!program->is_linked) return;
  std::string_view rest(program->binary);
  rest.remove_prefix(sizeof(uint64_t));
  const std::string vertex = TakePart(rest), fragment = TakePart(rest);
  program->attribute_locations.clear();
  while (!rest.empty()) {
    const std::string attribute = TakePart(rest);
    program->attribute_locations[attribute] =
        static_cast<unsigned char>(rest[0]);
    rest.remove_prefix(2);
  }
  SetInputs(*program, vertex, fragment);
}
