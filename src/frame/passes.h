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
  bool is_es3 = false;  // their context
  ProgramTable programs;
  RenderTargets targets;
  std::array<ImageTexture, kInputCount> inputs;
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

// A frame on its way: the objects, the draws, and the sizes.
struct FrameDrawing {
  FrameDrawing(RenderState& objects, const FrameSizes& frame_sizes)
      : state(objects), drawing(objects.is_es3), sizes(frame_sizes) {}

  RenderState& state;
  Drawing drawing;
  FrameSizes sizes;
};

// From the input textures to the work image.
void PassNv21ToRgb(FrameDrawing& frame);
void PassNv21Pack(FrameDrawing& frame);
void PassPlanarYuvPack(FrameDrawing& frame);

// The work image to the default framebuffer, turned in portrait mode.
void PassBypass(FrameDrawing& frame, bool portrait);

// `image` blurred. `scale` is the blur's reach to either side in texels
// of the blurred image.
void PassBlurImage(FrameDrawing& frame, ImageTexture& image, float scale);

// Weights from the refocus texture, then cleaned and softened step by step; the
// softened ones are in target kBlurredWeights. `scale` as above, in texels of
// the weights.
void PassDepthWeight(FrameDrawing& frame, const DepthWeightUniforms& uniforms);
void PassErodeWeights(FrameDrawing& frame);
void PassDilateWeights(FrameDrawing& frame);
void PassBlurWeights(FrameDrawing& frame, float scale);

// Mixes the image with the blurred one by weight, off screen into the output
// target, else into the default framebuffer.
struct CompositeInputs {
  ImageTexture& image;
  ImageTexture& weights;
  ImageSize weight_size;
  bool off_screen = false;
  bool portrait = false;
};
void PassComposite(FrameDrawing& frame, const CompositeInputs& inputs);

}  // namespace zuqel

#endif  // ZUQEL_FRAME_PASSES_H_
