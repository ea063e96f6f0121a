// GL programs made from source, and where their inputs are.
#ifndef ZUQEL_GL_PROGRAM_H_
#define ZUQEL_GL_PROGRAM_H_

#include <array>
#include <cstddef>
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

// What programs are fed by; a program need not have all of it.
struct ProgramInterface {
  AttributeNames attributes;
  UniformNames uniforms;
};

// Compiles and links. Whether that went well is not looked at: a program that
// did not link draws nothing.
Program BuildProgram(const ProgramSource& source, AttributeNames attributes);

// A program with the locations of its inputs. One that it does not have, which
// compilers also make of one that no output depends on, is at -1, which GL
// ignores.
class LinkedProgram {
 public:
  LinkedProgram();
  // `program` has been linked, or loaded from a binary, which may have put the
  // attributes elsewhere.
  LinkedProgram(Program program, const ProgramInterface& interface);

  [[nodiscard]] GLuint name() const { return program_.get(); }
  // Locations, by index in the interface.
  [[nodiscard]] GLint attribute(size_t index) const {
    return attributes_[index];
  }
  [[nodiscard]] GLint uniform(size_t index) const { return uniforms_[index]; }

 private:
  Program program_;
  std::array<GLint, kMaxAttributes> attributes_;
  std::array<GLint, kMaxUniforms> uniforms_;
};

}  // namespace zuqel

#endif  // ZUQEL_GL_PROGRAM_H_
