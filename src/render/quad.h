// The full-screen quad that every pass draws.
#ifndef ZUQEL_RENDER_QUAD_H_
#define ZUQEL_RENDER_QUAD_H_

#include <cstdint>

#include "gl/gl_state.h"
#include "gl/program.h"

namespace zuqel {

// How the quad shows its texture.
enum class Quad : uint8_t {
  kFlip,        // upside down
  kRotate,      // a quarter turn, 1 % cropped at each edge
  kUpright,     // as is
  kFlipCrop,    // upside down, 1 % cropped at each edge
  kConversion,  // as is, its fan begun at the lower left: the conversion to RGB
};

// While it lives, attributes 0 and 1 take the vertices of all quads from client
// memory, so that a draw only chooses among them.
class QuadArrays {
 public:
  explicit QuadArrays(bool is_es3);

  // Draws with `program`, which is in use.
  void Draw(LinkedProgram& program, Quad quad) const;

 private:
  bool is_es3_;
  PlainGlState plain_state_;
};

}  // namespace zuqel

#endif  // ZUQEL_RENDER_QUAD_H_
