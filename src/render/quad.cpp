// Draws the quad.
#include "render/quad.h"

#include <array>
#include <cstddef>
#include <numeric>
#include <optional>

#include "gl/vertex_attribute.h"
#include "render/program_inputs.h"

namespace zuqel {
namespace {

constexpr GLsizei kVertexCount = 4;

struct Vertex {
  std::array<GLfloat, 2> position;
  std::array<GLfloat, 2> texture_coordinate;
};

// Four of each quad, in the order of a triangle fan.
constexpr auto kVertices = std::to_array<Vertex>({
    {{-1, -1}, {0, 1}},  // kFlip
    {{1, -1}, {1, 1}},         {{1, 1}, {1, 0}},
    {{-1, 1}, {0, 0}},         {{-1, -1}, {0.99F, 0.99F}},  // kRotate
    {{1, -1}, {0.99F, 0.01F}}, {{1, 1}, {0.01F, 0.01F}},
    {{-1, 1}, {0.01F, 0.99F}}, {{-1, 1}, {0, 1}},  // kUpright
    {{-1, -1}, {0, 0}},        {{1, -1}, {1, 0}},
    {{1, 1}, {1, 1}},          {{-1, -1}, {0.01F, 0.99F}},  // kFlipCrop
    {{1, -1}, {0.99F, 0.99F}}, {{1, 1}, {0.99F, 0.01F}},
    {{-1, 1}, {0.01F, 0.01F}}, {{-1, -1}, {0, 0}},  // kConversion
    {{1, -1}, {1, 0}},         {{1, 1}, {1, 1}},
    {{-1, 1}, {0, 1}},
});

constexpr auto kIndices = [] {
  std::array<GLushort, kVertices.size()> indices = {};
  std::iota(indices.begin(), indices.end(), GLushort{0});
  return indices;
}();

// By attribute, as in kAttributeNames.
constexpr std::array kArrays = {kVertices[0].position.data(),
                                kVertices[0].texture_coordinate.data()};

void FeedFromClient(GLuint location, const GLfloat* array) {
  glEnableVertexAttribArray(location);
  glVertexAttribPointer(location, 2, GL_FLOAT, GL_FALSE, sizeof(Vertex), array);
}

// An attribute that a program from a binary has elsewhere, where it was when
// the binary was made.
class MovedAttribute {
 public:
  MovedAttribute(GLuint location, const GLfloat* array, bool is_es3)
      : saved_(location, is_es3) {
    FeedFromClient(location, array);
  }

 private:
  SavedVertexAttribute saved_;
};

}  // namespace

QuadArrays::QuadArrays(bool is_es3) : is_es3_(is_es3), plain_state_(is_es3) {
  for (GLuint i = 0; i < kArrays.size(); ++i) FeedFromClient(i, kArrays[i]);
}

void QuadArrays::Draw(LinkedProgram& program, Quad quad) const {
  std::array<std::optional<MovedAttribute>, kArrays.size()> moved;
  for (size_t i = 0; i < kArrays.size(); ++i) {
    const auto location = static_cast<GLuint>(program.attribute(i));
    if (location != i) moved[i].emplace(location, kArrays[i], is_es3_);
  }
  program.SetIdentity(Uniform("projection").index());
  glDrawElements(GL_TRIANGLE_FAN, kVertexCount, GL_UNSIGNED_SHORT,
                 &kIndices[static_cast<size_t>(quad) * kVertexCount]);
}

}  // namespace zuqel
