// The GPU steps of a frame: each draws one quad with one program into one
// framebuffer.
//
//   pass             from                      into                 size
//   Nv21ToRgb        Y, UV textures            target 0             1280 x 960
//   Nv21Pack         Y, UV textures            target 0             image
//   PlanarYuvPack    Y, U, V textures          target 0             image
//   Bypass           target 0                  default framebuffer  output
//   SeparableBlur    a texture                 a target, through 1  as given
//   DepthWeight      depth texture             target 10            work
//   Pick3x3          a texture                 a target             work
//   Composite        image, target 2, weights  13 or default        output
//   DebugPicture     a debug texture           target 13            as given
#ifndef ZUQEL_FRAME_PASSES_H_
#define ZUQEL_FRAME_PASSES_H_

#include <array>
#include <cstddef>
#include <cstdint>

#include "gl/render_targets.h"
#include "render/pass_draws.h"
#include "render/quad.h"
#include "render/shader_catalogue.h"

namespace zuqel {

// Roles of the targets, by index.
inline constexpr size_t kWorkImage = 0;
inline constexpr size_t kBlurTemporary = 1;
inline constexpr size_t kBlurredImage = 2;
inline constexpr size_t kBlurredWeights = 9;
inline constexpr size_t kWeights = 10;
inline constexpr size_t kErodedWeights = 11;
inline constexpr size_t kOutputTarget = 13;

// Textures that frames are uploaded to, by index; the rest of the ten is
// unused.
inline constexpr size_t kInputY = 0;
inline constexpr size_t kInputUV = 1;  // interleaved chroma, or the U plane
inline constexpr size_t kInputV = 2;
inline constexpr size_t kInputRefocus = 3;  // weights, or packed disparity
inline constexpr size_t kInputCount = 10;
inline constexpr size_t kDebugPictureCount = 10;

// All GL objects of the frame renderer.
struct RenderState {
  ProgramTable programs;
  RenderTargets targets;
  std::array<Texture, kInputCount> inputs;
  std::array<Texture, kDebugPictureCount> debug_pictures;
};

struct CompositeInputs {
  GLuint framebuffer = 0;
  GLuint image_texture = 0;
  GLuint weight_texture = 0;
  ImageSize output;
};

void PassNv21ToRgb(const RenderState& state);
void PassNv21Pack(const RenderState& state, ImageSize size);
void PassPlanarYuvPack(const RenderState& state, ImageSize size);
void PassBypass(const RenderState& state, ImageSize size, bool rotate);
// `scale` is the blur's reach to either side in texels of an image of `size`.
void PassSeparableBlur(const RenderState& state, GLuint source_texture,
                       GLuint destination_framebuffer, ImageSize size,
                       float scale);
void PassDepthWeight(const RenderState& state, ImageSize size,
                     const DepthWeightUniforms& uniforms);
// `program` is Max3x3Program or Min3x3Program.
void PassPick3x3(const RenderState& state, ProgramRole program,
                 GLuint source_texture, GLuint destination_framebuffer,
                 ImageSize size);
// Stretches a picture over a region of what is there. Blending that has once
// been enabled stays so.
void PassDebugPicture(const RenderState& state, GLuint picture_texture,
                      DrawRegion region, bool blend);
void PassComposite(const RenderState& state, const CompositeInputs& inputs,
                   const Quad& quad);

}  // namespace zuqel

#endif  // ZUQEL_FRAME_PASSES_H_
