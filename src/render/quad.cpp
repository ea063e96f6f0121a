// Draws the quad.
#include "render/quad.h"

#include <optional>

#include "gl/vertex_attribute.h"
#include "render/program_inputs.h"

namespace zuqel {
namespace {

constexpr GLsizei kVertexCount = 4;
constexpr std::array<GLushort, kVertexCount> kIndices = {0, 1, 2, 3};
constexpr std::array<GLfloat, 16> kIdentity = {1, 0, 0, 0, 0, 1, 0, 0,
                                               0, 0, 1, 0, 0, 0, 0, 1};

// A vertex attribute fed from client memory while it lives. A program from a
// binary has its attributes where they were when the binary was made; one that
// PlainGlState does not cover is restored here.
class ClientAttribute {
 public:
  ClientAttribute(GLint location, const std::array<GLfloat, 8>& values)
      : location_(location) {
    if (location_ >= GLint{kMaxAttributes}) {
      saved_.emplace(static_cast<GLuint>(location_));
    }
    glEnableVertexAttribArray(static_cast<GLuint>(location_));
    glVertexAttribPointer(static_cast<GLuint>(location_), 2, GL_FLOAT, GL_FALSE,
                          0, values.data());
  }
  ~ClientAttribute() {
    glDisableVertexAttribArray(static_cast<GLuint>(location_));
  }
  ClientAttribute(const ClientAttribute&) = delete;
  ClientAttribute& operator=(const ClientAttribute&) = delete;

 private:
  GLint location_;
  std::optional<SavedVertexAttribute> saved_;
};

}  // namespace

void DrawQuad(const LinkedProgram& program, const Quad& quad) {
  const ClientAttribute positions(program.attribute(0), quad.positions);
  const ClientAttribute coordinates(program.attribute(1),
                                    quad.texture_coordinates);
  glUniformMatrix4fv(Uniform("projection").LocationIn(program), 1, GL_FALSE,
                     kIdentity.data());
  glDrawElements(GL_TRIANGLE_FAN, kVertexCount, GL_UNSIGNED_SHORT,
                 kIndices.data());
}

}  // namespace zuqel
