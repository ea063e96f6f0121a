// Functions that a caller takes by name.
#ifndef TESTING_FAKE_DRIVER_EXTENSION_CALLS_H_
#define TESTING_FAKE_DRIVER_EXTENSION_CALLS_H_

#include <GLES2/gl2.h>

namespace zuqel::fake_driver {

void BindVertexArray(GLuint name);
void GenVertexArrays(GLsizei count, GLuint* names);
void GetProgramBinary(GLuint name, GLsizei size, GLsizei* length,
                      GLenum* format, void* binary);
void ProgramBinary(GLuint name, GLenum format, const void* binary,
                   GLint length);
void VertexAttribDivisor(GLuint index, GLuint divisor);
void VertexAttribIPointer(GLuint index, GLint size, GLenum type, GLsizei stride,
                          const void* pointer);

}  // namespace zuqel::fake_driver

#endif  // TESTING_FAKE_DRIVER_EXTENSION_CALLS_H_
