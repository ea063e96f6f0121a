// GL programs made from source.
#ifndef ZUQEL_GL_PROGRAM_H_
#define ZUQEL_GL_PROGRAM_H_

#include "gl/gl_handle.h"

namespace zuqel {

// The texts of one program, zero-terminated, living as long as the process.
struct ProgramSource {
  const char* vertex = nullptr;
  const char* fragment = nullptr;
};

// Compiles and links. Whether that went well is not looked at: a program that
// did not link draws nothing.
Program BuildProgram(const ProgramSource& source);

}  // namespace zuqel

#endif  // ZUQEL_GL_PROGRAM_H_
