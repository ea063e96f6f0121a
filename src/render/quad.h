// The full-screen quad that every pass draws.
#ifndef ZUQEL_RENDER_QUAD_H_
#define ZUQEL_RENDER_QUAD_H_

#include <GLES2/gl2.h>

#include <array>

#include "gl/program.h"

namespace zuqel {

// Four vertices in the order of a triangle fan: x, y and s, t of each.
struct Quad {
  std::array<GLfloat, 8> positions;
  std::array<GLfloat, 8> texture_coordinates;
};

// Upside down.
inline constexpr Quad kQuadFlip = {{-1, -1, 1, -1, 1, 1, -1, 1},
                                   {0, 1, 1, 1, 1, 0, 0, 0}};
// A quarter turn, 1 % cropped at each edge.
inline constexpr Quad kQuadRotate = {
    {-1, -1, 1, -1, 1, 1, -1, 1},
    {0.99F, 0.99F, 0.99F, 0.01F, 0.01F, 0.01F, 0.01F, 0.99F}};
// As is.
inline constexpr Quad kQuadUpright = {{-1, 1, -1, -1, 1, -1, 1, 1},
                                      {0, 1, 0, 0, 1, 0, 1, 1}};
// Upside down, 1 % cropped at each edge.
inline constexpr Quad kQuadFlipCrop = {
    {-1, -1, 1, -1, 1, 1, -1, 1},
    {0.01F, 0.99F, 0.99F, 0.99F, 0.99F, 0.01F, 0.01F, 0.01F}};
// As is, its fan begun at the lower left: the conversion to RGB.
inline constexpr Quad kQuadConversion = {{-1, -1, 1, -1, 1, 1, -1, 1},
                                         {0, 0, 1, 0, 1, 1, 0, 1}};

// Draws the quad with `program`, which is in use. Vertices come from client
// memory: needs PlainGlState.
void DrawQuad(const LinkedProgram& program, const Quad& quad);

}  // namespace zuqel

#endif  // ZUQEL_RENDER_QUAD_H_
