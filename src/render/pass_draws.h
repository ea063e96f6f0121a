// Passes: each fills a target with one quad drawn by one program.
#ifndef ZUQEL_RENDER_PASS_DRAWS_H_
#define ZUQEL_RENDER_PASS_DRAWS_H_

#include <GLES2/gl2.h>

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <variant>

#include "base/image_size.h"
#include "gl/texture.h"
#include "render/program_inputs.h"
#include "render/quad.h"

namespace zuqel {

struct Pass {
  LinkedProgram& program;
  GLuint framebuffer = 0;
  ImageSize size;
  Quad quad;
};

// A texture for a sampler, by way of a texture unit.
struct TextureInput {
  Uniform sampler;
  GLint unit = 0;
  ImageTexture& texture;
  GLint filter = GL_LINEAR;
};

// How an upright pass reads an image that it covers once: one of the target's
// size is read at the centres of its texels, where filters agree, and the
// nearest texel is the one that no driver's arithmetic can miss.
GLint FilterBetween(ImageSize source, ImageSize target);

struct UniformInput {
  Uniform uniform;
  std::variant<GLint, GLfloat> value;
};

// A region of a target in pixels, from the lower left.
struct DrawRegion {
  int32_t x = 0;
  int32_t y = 0;
  int32_t width = 0;
  int32_t height = 0;

  bool operator==(const DrawRegion&) const = default;
};

// The draws of one call, while nobody else calls GL: what one leaves as the
// next needs it is not set again. Starts and ends as PlainGlState does.
class Drawing {
 public:
  // `is_es3` says which context is current.
  explicit Drawing(bool is_es3) : quads_(is_es3) {}

  // Clears the target and draws. The last texture's unit stays the active one.
  void DrawPass(const Pass& pass, std::initializer_list<TextureInput> textures,
                std::initializer_list<UniformInput> uniforms = {});

  // Draws with what is in use and bound.
  void DrawQuad(LinkedProgram& program, Quad quad) const {
    quads_.Draw(program, quad);
  }
  // A height of 0 counts as 1.
  void SetViewport(DrawRegion region);
  // Of the program in use.
  void SetTexture(LinkedProgram& program, const TextureInput& input);

 private:
  QuadArrays quads_;
  std::optional<DrawRegion> viewport_;
  std::optional<GLint> active_unit_;
};

struct DepthWeightUniforms {
  float mouse_x = 0;
  float mouse_y = 0;
  float focus_plane = 0;
  float min_depth = 0;
  float max_depth = 0;
  float focal_length = 0;
};

// Weights from packed disparity of `depth` pixels, by DepthWeightProgram or
// AllInFocusWeightProgram.
void DrawDepthWeight(Drawing& drawing, const Pass& pass,
                     ImageTexture& depth_texture, ImageSize depth,
                     const DepthWeightUniforms& uniforms);

// One direction of a separable blur, by BlurHProgram or BlurVProgram. `scale`
// is its reach to either side in texels of an image of `image` pixels.
void DrawBlur(Drawing& drawing, const Pass& pass, ImageTexture& source,
              ImageSize image, float scale);

}  // namespace zuqel

#endif  // ZUQEL_RENDER_PASS_DRAWS_H_
