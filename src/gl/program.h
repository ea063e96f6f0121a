// GL programs made from source, and where their inputs are.
#ifndef ZUQEL_GL_PROGRAM_H_
#define ZUQEL_GL_PROGRAM_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "gl/gl_handle.h"

namespace zuqel {

// The texts of one program, zero-terminated, living as long as the process.
struct ProgramSource {
  const char* vertex = nullptr;
  const char* fragment = nullptr;
};

// Vertex attributes by name; linking gives them locations 0, 1 and so on.
using AttributeNames = std::span<const char* const>;
using UniformNames = std::span<const char* const>;

inline constexpr size_t kMaxAttributes = 2;
inline constexpr size_t kMaxUniforms = 24;

// Inputs of all programs by name; no program needs to have all of them.
struct ProgramInterface {
  AttributeNames attributes;
  UniformNames uniforms;
};

// Compiles and links, without asking how that went: see LinkStatus.
Program BuildProgram(const ProgramSource& source, AttributeNames attributes);

// What GL says of the latest link or load: GL_TRUE, or else GL_FALSE.
GLint LinkStatus(const Program& program);

// A program and the locations of its inputs. An input that it lacks, or that
// the compiler has dropped as unused, has location -1, which GL ignores. GL
// takes no uniforms and no draws without a program.
class LinkedProgram {
 public:
  LinkedProgram();
  // `program` comes from a link or from a binary, whose attributes may have
  // other locations. One that did not link, or lacks an attribute, is not
  // taken: in its place GL would draw with the program before, and from
  // whichever arrays the caller has enabled.
  LinkedProgram(Program program, const ProgramInterface& interface);

  [[nodiscard]] bool exists() const { return name() != 0; }
  [[nodiscard]] GLuint name() const { return program_.get(); }
  // Its location, by index in the interface.
  [[nodiscard]] GLint attribute(size_t index) const {
    return attributes_[index];
  }

  // Set uniforms of the program in use, by index in the interface. A program
  // keeps its values, so GL hears only of those that change.
  void SetUniform(size_t index, GLint value);
  void SetUniform(size_t index, GLfloat value);
  void SetIdentity(size_t index);  // of a matrix

 private:
  // True if `bits` are new to a uniform that the program has.
  bool IsNews(size_t index, uint32_t bits);

  Program program_;
  std::array<GLint, kMaxAttributes> attributes_;
  std::array<GLint, kMaxUniforms> uniforms_;
  std::array<std::optional<uint32_t>, kMaxUniforms> values_;  // the bits
};

}  // namespace zuqel

#endif  // ZUQEL_GL_PROGRAM_H_
