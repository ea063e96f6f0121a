// GL programs made from source.
#ifndef ZUQEL_GL_PROGRAM_H_
#define ZUQEL_GL_PROGRAM_H_

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

// Compiles and links. Whether that went well is not looked at: a program that
// did not link draws nothing.
Program BuildProgram(const ProgramSource& source, AttributeNames attributes);

}  // namespace zuqel

#endif  // ZUQEL_GL_PROGRAM_H_
