// The GPU steps of a frame.
#ifndef ZUQEL_FRAME_PASSES_H_
#define ZUQEL_FRAME_PASSES_H_

#include <array>
#include <cstddef>
#include <cstdint>

#include "gl/render_targets.h"
#include "render/debug_pictures.h"
#include "render/pass_draws.h"
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

// All GL objects of the frames. Destroyed from the last: pictures and inputs go
// before targets, programs at the end.
struct RenderState {
  ProgramTable programs;
  RenderTargets targets;
  std::array<Texture, kInputCount> inputs;
  DebugTextures debug_pictures;
};

// Sizes of what passes read and fill.
struct FrameSizes {
  ImageSize image;
  ImageSize depth;
  ImageSize work;
  ImageSize output;
  // Whatever the preview size.
  ImageSize conversion = {1280, 960};
  ImageSize blur = {kReducedWidth, kReducedHeight};
  ImageSize weights = {kQuarterWidth, kQuarterHeight};
};

// From the input textures to the work image.
void PassNv21ToRgb(const RenderState& state, const FrameSizes& sizes);
void PassNv21Pack(const RenderState& state, const FrameSizes& sizes);
void PassPlanarYuvPack(const RenderState& state, const FrameSizes& sizes);

// The work image to the default framebuffer, turned in portrait mode.
void PassBypass(const RenderState& state, const FrameSizes& sizes,
                bool portrait);

// `image_texture` blurred. `scale` is the blur's reach to either side in texels
// of the blurred image.
void PassBlurImage(const RenderState& state, const FrameSizes& sizes,
                   GLuint image_texture, float scale);

// Weights from the refocus texture, then cleaned and softened step by step; the
// softened ones are in target kBlurredWeights. `scale` as above, in texels of
// the weights.
void PassDepthWeight(const RenderState& state, const FrameSizes& sizes,
                     const DepthWeightUniforms& uniforms);
void PassErodeWeights(const RenderState& state, const FrameSizes& sizes);
void PassDilateWeights(const RenderState& state, const FrameSizes& sizes);
void PassBlurWeights(const RenderState& state, const FrameSizes& sizes,
                     float scale);

// Mixes the image with the blurred one by weight, off screen into the output
// target, else into the default framebuffer.
struct CompositeInputs {
  GLuint image_texture = 0;
  GLuint weight_texture = 0;
  ImageSize weight_size;
  bool off_screen = false;
  bool portrait = false;
};
void PassComposite(const RenderState& state, const FrameSizes& sizes,
                   const CompositeInputs& inputs);

}  // namespace zuqel

#endif  // ZUQEL_FRAME_PASSES_H_
