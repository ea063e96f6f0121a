// Draws the quad.
#include "render/quad.h"

namespace zuqel {
namespace {

constexpr GLsizei kVertexCount = 4;
constexpr std::array<GLushort, kVertexCount> kIndices = {0, 1, 2, 3};
constexpr std::array<GLfloat, 16> kIdentity = {1, 0, 0, 0, 0, 1, 0, 0,
                                               0, 0, 1, 0, 0, 0, 0, 1};

// A vertex attribute fed from client memory while it lives: an array left
// enabled would point into this library when the caller draws next.
class ClientAttribute {
 public:
  ClientAttribute(GLuint program, const char* name,
                  const std::array<GLfloat, 8>& values)
      : location_(glGetAttribLocation(program, name)) {
    if (location_ < 0) return;  // the program did not link
    glEnableVertexAttribArray(static_cast<GLuint>(location_));
    glVertexAttribPointer(static_cast<GLuint>(location_), 2, GL_FLOAT, GL_FALSE,
                          0, values.data());
  }
  ~ClientAttribute() {
    if (location_ < 0) return;
    glDisableVertexAttribArray(static_cast<GLuint>(location_));
  }
  ClientAttribute(const ClientAttribute&) = delete;
  ClientAttribute& operator=(const ClientAttribute&) = delete;

 private:
  GLint location_;
};

}  // namespace

void DrawQuad(GLuint program, const Quad& quad) {
  const ClientAttribute positions(program, "position", quad.positions);
  const ClientAttribute coordinates(program, "inputTextureCoordinate",
                                    quad.texture_coordinates);
  glUniformMatrix4fv(glGetUniformLocation(program, "projection"), 1, GL_FALSE,
                     kIdentity.data());
  glDrawElements(GL_TRIANGLE_FAN, kVertexCount, GL_UNSIGNED_SHORT,
                 kIndices.data());
}

}  // namespace zuqel
