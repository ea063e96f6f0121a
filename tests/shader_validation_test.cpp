// Holds every shader against the least that OpenGL ES 2.0 promises: a
// validator checks language, indices and loops and links each program; what it
// does not count is counted here, with the same limits.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "render/shader_catalogue.h"

namespace zuqel {
namespace {

namespace fs = std::filesystem;

// Varyings of the 3x3 programs: nine neighbours and the texture coordinate.
constexpr int kVaryingsOf3x3 = 10;

std::string ReadFile(const fs::path& path) {
  std::ostringstream text;
  text << std::ifstream(path).rdbuf();
  return text.str();
}

int Limit(const std::string& name) {
  std::ifstream limits(ZUQEL_ES2_LIMITS);
  std::string key;
  for (int value = 0; limits >> key >> value;) {
    if (key == name) return value;
  }
  ADD_FAILURE() << name << " is not among the limits";
  return 0;
}

// Vectors that a shader declares, unpacked: a driver needs no more.
struct Usage {
  int attributes = 0, varyings = 0, uniforms = 0, samplers = 0;
};

// Declarations have the form "uniform vec2 name[3];".
Usage CountDeclarations(const std::string& source) {
  std::string text;
  std::istringstream lines(source);
  for (std::string line; std::getline(lines, line);) {
    text += line.substr(0, line.find("//")) + ' ';
  }
  // An array's size becomes the word after its name, else that is ";".
  for (size_t i = 0; (i = text.find_first_of("[];", i)) != std::string::npos;
       i += 3) {
    text.replace(i, 1, text[i] == ';' ? " ; " : "   ");
  }
  Usage usage;
  const std::map<std::string, int*> counters = {
      {"attribute", &usage.attributes},
      {"varying", &usage.varyings},
      {"uniform", &usage.uniforms}};
  std::istringstream words(text);
  for (std::string word, type, name, size; words >> word;) {
    const auto counter = counters.find(word);
    if (counter == counters.end()) continue;
    words >> type >> name >> size;
    const int rows = type.starts_with("mat") ? type[3] - '0' : 1;
    (type.starts_with("sampler") ? usage.samplers : *counter->second) +=
        rows * (size == ";" ? 1 : std::stoi(size));
  }
  return usage;
}

fs::path Temporary(const char* extension) {
  return fs::path(testing::TempDir()) /
         ("zuqel_shader_" + std::to_string(getpid()) + extension);
}

// What the validator says against the files; empty when nothing.
std::string Validate(const std::vector<fs::path>& files) {
  const fs::path log = Temporary(".log");
  std::ostringstream command;  // writes paths in quotes
  command << fs::path(ZUQEL_GLSL_VALIDATOR) << " -l "
          << fs::path(ZUQEL_ES2_LIMITS);
  for (const fs::path& file : files) command << ' ' << file;
  command << " > " << log << " 2>&1";
  // NOLINTNEXTLINE(cert-env33-c): the command is the build's own.
  const bool accepted = std::system(command.str().c_str()) == 0;
  std::string said = accepted ? "" : ReadFile(log);
  fs::remove(log);
  return said;
}

// Why a program is refused; empty when it is not.
std::string Refusal(const std::string& vertex, const std::string& fragment,
                    int varyings_allowed) {
  const Usage v = CountDeclarations(vertex);
  const Usage f = CountDeclarations(fragment);
  if (v.attributes > Limit("MaxVertexAttribs")) return "attributes";
  if (v.uniforms > Limit("MaxVertexUniformVectors")) return "vertex uniforms";
  if (f.uniforms > Limit("MaxFragmentUniformVectors")) {
    return "fragment uniforms";
  }
  if (v.samplers > Limit("MaxVertexTextureImageUnits")) {
    return "vertex samplers";
  }
  if (f.samplers > Limit("MaxTextureImageUnits")) return "samplers";
  if (std::max(v.varyings, f.varyings) > varyings_allowed) return "varyings";

  const std::vector files = {Temporary(".vert"), Temporary(".frag")};
  std::ofstream(files[0]) << vertex;
  std::ofstream(files[1]) << fragment;
  std::string said = Validate(files);
  for (const fs::path& file : files) fs::remove(file);
  return said;
}

class ShaderValidationTest : public testing::Test {
 protected:
  void SetUp() override {
    if (!fs::exists(ZUQEL_GLSL_VALIDATOR)) GTEST_SKIP() << "no GLSL validator";
  }
};

TEST_F(ShaderValidationTest, ProgramsFitTheLeastThatEs2Promises) {
  for (size_t i = 0; i < kProgramCount; ++i) {
    const auto role = static_cast<ProgramRole>(i);
    const bool is_3x3 = role == ProgramRole::Max3x3Program ||
                        role == ProgramRole::Min3x3Program;
    EXPECT_EQ(Refusal(SourceOf(role).vertex, SourceOf(role).fragment,
                      is_3x3 ? kVaryingsOf3x3 : Limit("MaxVaryingVectors")),
              "")
        << "program " << i;
  }
}

TEST_F(ShaderValidationTest, EveryFileIsValidAndBeginsWithItsPrecision) {
  int count = 0;
  for (const auto& file : fs::directory_iterator(ZUQEL_SHADERS)) {
    EXPECT_TRUE(ReadFile(file.path()).starts_with("precision highp float;\n"))
        << file.path();
    EXPECT_EQ(Validate({file.path()}), "");
    ++count;
  }
  EXPECT_GT(count, 0);
}

constexpr const char* kVertex = R"(precision highp float;
attribute vec4 position;
varying vec2 textureCoordinate;
varying vec2 v[3];
void main() {
  gl_Position = position;
  textureCoordinate = position.xy;
  v[0] = v[1] = v[2] = position.xy;
})";
constexpr const char* kFragment = R"(precision highp float;
varying vec2 textureCoordinate;
void main() { gl_FragColor = vec4(textureCoordinate, 0.0, 1.0); })";

struct BadShader {
  const char* reason;  // part of the refusal
  bool is_vertex;
  const char* body;  // after the precision
};

constexpr auto kBadShaders = std::to_array<BadShader>({
    {"Non-constant-index", false,
     "varying vec2 v[3]; uniform int i;"
     "void main() { gl_FragColor = vec4(v[i], 0.0, 1.0); }"},
    {"Non-constant-index", false,
     "uniform sampler2D s[3]; uniform int i;"
     "void main() { gl_FragColor = texture2D(s[i], vec2(0.5)); }"},
    {"Non-constant-index", false,
     "uniform int i; void main() {"
     "  vec4 a[2]; a[0] = a[1] = vec4(1.0); gl_FragColor = a[i]; }"},
    {"while loops", false,
     "void main() { int i = 0; while (i < 3) ++i; gl_FragColor = vec4(i); }"},
    {"inductive-loop", false,
     "uniform int n; void main() {"
     "  int k = 0; for (int i = 0; i < n; i++) k++; gl_FragColor = vec4(k); }"},
    {"Types must match", false,
     "varying vec3 textureCoordinate;"
     "void main() { gl_FragColor = vec4(textureCoordinate, 1.0); }"},
    {"undeclared", false, "void main() { gl_FragColor = vec4(missing); }"},
    {"varyings", false, "varying vec2 n[9]; void main() {}"},
    {"fragment uniforms", false, "uniform mat4 m[5]; void main() {}"},
    {"samplers", false, "uniform sampler2D s[9]; void main() {}"},
    {"vertex samplers", true, "uniform sampler2D s; void main() {}"},
    {"vertex uniforms", true, "uniform mat4 m[33]; void main() {}"},
    {"attributes", true,
     "attribute mat4 m; attribute mat4 n; attribute vec2 p; void main() {}"},
});

TEST_F(ShaderValidationTest, WhatPassesALimitIsRefused) {
  const int varyings = Limit("MaxVaryingVectors");
  ASSERT_EQ(Refusal(kVertex, kFragment, varyings), "");
  for (const BadShader& bad : kBadShaders) {
    const std::string source =
        std::string("precision highp float;\n") + bad.body;
    const std::string refusal = bad.is_vertex
                                    ? Refusal(source, kFragment, varyings)
                                    : Refusal(kVertex, source, varyings);
    EXPECT_NE(refusal.find(bad.reason), std::string::npos) << bad.body << "\n"
                                                           << refusal;
  }
}

}  // namespace
}  // namespace zuqel
