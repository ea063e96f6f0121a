// What passes are made of: uniforms, textures, targets, and the draws that the
// frames and the refocus maps have in common. Needs PlainGlState. Uniforms are
// set at each draw.
#ifndef ZUQEL_RENDER_PASS_DRAWS_H_
#define ZUQEL_RENDER_PASS_DRAWS_H_

#include <GLES2/gl2.h>

#include <cstdint>

#include "base/image_size.h"
#include "render/program_inputs.h"
#include "render/quad.h"

namespace zuqel {

// A region of the output in pixels, from the lower left.
struct DrawRegion {
  int32_t x = 0;
  int32_t y = 0;
  int32_t width = 0;
  int32_t height = 0;
};

void SetUniform(const LinkedProgram& program, Uniform uniform, GLint value);
void SetUniform(const LinkedProgram& program, Uniform uniform, GLfloat value);

// Binds a texture to a unit and tells a sampler of the program.
void SetTexture(const LinkedProgram& program, Uniform sampler, GLint unit,
                GLuint texture);

// Sets the size that shaders step texels by.
void SetImageSize(const LinkedProgram& program, ImageSize size);

// A height of 0 counts as 1.
void SetViewport(DrawRegion region);

// Takes `program` into use and clears a target of `size`.
void BeginPass(const LinkedProgram& program, GLuint framebuffer,
               ImageSize size);

struct DepthWeightUniforms {
  float mouse_x = 0;
  float mouse_y = 0;
  float focus_plane = 0;
  float min_depth = 0;
  float max_depth = 0;
  float focal_length = 0;
};

// Weights from packed disparity, by DepthWeightProgram or
// AllInFocusWeightProgram.
struct DepthWeightDraw {
  const LinkedProgram& program;
  GLuint framebuffer = 0;
  GLuint depth_texture = 0;
  ImageSize size;
};
void DrawDepthWeight(const DepthWeightDraw& draw,
                     const DepthWeightUniforms& uniforms);

// One direction of a separable blur, by BlurHProgram or BlurVProgram. `scale`
// is its reach to either side in texels of an image of `image` pixels.
struct BlurDraw {
  const LinkedProgram& program;
  GLuint framebuffer = 0;
  GLuint source_texture = 0;
  ImageSize viewport;
  ImageSize image;
  float scale = 0;
};
void DrawBlur(const BlurDraw& draw, const Quad& quad);

}  // namespace zuqel

#endif  // ZUQEL_RENDER_PASS_DRAWS_H_
