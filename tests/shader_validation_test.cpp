// Holds every shader against the least that OpenGL ES 2.0 promises: a
// validator checks language, indices and loops and links each program; what it
// does not count is counted here, with the same limits.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <string>
#include <utility>

#include "render/shader_catalogue.h"

namespace zuqel {
namespace {

namespace fs = std::filesystem;

int Limit(const std::string& name) {
  std::ifstream limits(ZUQEL_ES2_LIMITS);
  std::string key;
  for (int value = 0; limits >> key >> value;) {
    if (key == name) return value;
  }
  return 0;  // not among the limits: nothing passes
}

// Vectors of declarations like "uniform vec2 name[3];", unpacked.
int CountVectors(const std::string& source, const std::string& qualifier) {
  const std::regex pattern(qualifier + R"((mat)?\w*?(\d?)D? \w+(\[(\d+)\])?;)");
  int vectors = 0;
  for (std::sregex_iterator i(source.begin(), source.end(), pattern), end;
       i != end; ++i) {
    const int rows = (*i)[1].matched ? std::stoi((*i)[2]) : 1;
    vectors += rows * ((*i)[4].matched ? std::stoi((*i)[4]) : 1);
  }
  return vectors;
}

// Why a program is refused; empty when it is not.
std::string Refusal(const std::string& vertex, const std::string& fragment,
                    int varyings_allowed) {
  for (const std::string& source : {vertex, fragment}) {
    if (!source.starts_with("precision highp float;\n")) return "first line";
    if (CountVectors(source, "varying ") > varyings_allowed) return "varyings";
  }
  for (const auto& [qualifier, limit] :
       {std::pair("uniform (?!sampler)", "MaxFragmentUniformVectors"),
        std::pair("uniform (?=sampler)", "MaxTextureImageUnits")}) {
    if (CountVectors(fragment, qualifier) > Limit(limit)) return limit;
  }
  const std::string base =
      testing::TempDir() + "zuqel_shader_" + std::to_string(getpid());
  std::ofstream(base + ".vert") << vertex;
  std::ofstream(base + ".frag") << fragment;
  const std::string command = ZUQEL_GLSL_VALIDATOR " -l " ZUQEL_ES2_LIMITS " " +
                              base + ".vert " + base + ".frag";
  // NOLINTNEXTLINE(cert-env33-c): the command is the build's own.
  const int status = std::system(command.c_str());
  fs::remove(base + ".vert");
  fs::remove(base + ".frag");
  return status == 0 ? "" : "validator";
}

TEST(ShaderValidationTest, ProgramsFitEs2AndOthersAreRefused) {
  if (!fs::exists(ZUQEL_GLSL_VALIDATOR)) GTEST_SKIP() << "no GLSL validator";
  const int least = Limit("MaxVaryingVectors");
  for (const auto& [role, source, entry] : kPrograms) {
    const bool is_3x3 = role == ProgramRole::Max3x3Program ||
                        role == ProgramRole::Min3x3Program;
    // Nine neighbours and the texture coordinate.
    const int allowed = is_3x3 ? 10 : least;
    EXPECT_EQ(Refusal(source.vertex, source.fragment, allowed), "")
        << source.fragment;
  }

  const std::string first_line = "precision highp float;\n";
  const std::string vertex = first_line + R"(
attribute vec4 position;
varying vec2 v[3];
void main() { gl_Position = position; v[0] = v[1] = v[2] = position.xy; })";
  EXPECT_EQ(Refusal(vertex, "void main() {}", least), "first line");
  const auto refusal = [&](const std::string& fragment) {
    return Refusal(vertex, first_line + fragment, least);
  };
  EXPECT_EQ(refusal("varying vec2 n[9];"), "varyings");
  EXPECT_EQ(refusal("uniform mat4 m[5];"), "MaxFragmentUniformVectors");
  EXPECT_EQ(refusal("uniform sampler2D s[9];"), "MaxTextureImageUnits");
  EXPECT_EQ(refusal("void main() { gl_FragColor = vec4(1); }"), "");
  EXPECT_EQ(refusal("varying vec2 v[3]; uniform int i; "
                    "void main() { gl_FragColor = v[i].xyxy; }"),
            "validator");
}

}  // namespace
}  // namespace zuqel
