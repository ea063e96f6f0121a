// Draws the passes.
#include "frame/passes.h"

namespace zuqel {
namespace {

using enum ProgramRole;

// In place of a target: the default framebuffer.
constexpr size_t kScreen = RenderTargets::kCount;

struct PassRow {
  ProgramRole program;
  size_t target;
  ImageSize FrameSizes::*size;
  Quad quad;
};

constexpr PassRow kNv21ToRgb = {Nv21ToRgbProgram, kWorkImage,
                                &FrameSizes::conversion, Quad::kConversion};
constexpr PassRow kNv21Pack = {Nv21PackProgram, kWorkImage, &FrameSizes::image,
                               Quad::kUpright};
constexpr PassRow kPlanarYuvPack = {PlanarYuvPackProgram, kWorkImage,
                                    &FrameSizes::image, Quad::kUpright};
constexpr PassRow kBypass = {CopyProgram, kScreen, &FrameSizes::output,
                             Quad::kFlipCrop};
// The two halves of a blur flip the image once each.
constexpr PassRow kBlurDown = {BlurVProgram, kBlurTemporary, &FrameSizes::blur,
                               Quad::kFlip};
constexpr PassRow kBlurImageAcross = {BlurHProgram, kBlurredImage,
                                      &FrameSizes::blur, Quad::kFlip};
constexpr PassRow kBlurWeightsAcross = {BlurHProgram, kBlurredWeights,
                                        &FrameSizes::work, Quad::kFlip};
constexpr PassRow kDepthWeight = {DepthWeightProgram, kWeights,
                                  &FrameSizes::work, Quad::kUpright};
constexpr PassRow kErodeWeights = {Min3x3Program, kErodedWeights,
                                   &FrameSizes::work, Quad::kUpright};
constexpr PassRow kDilateWeights = {Max3x3Program, kWeights, &FrameSizes::work,
                                    Quad::kUpright};
constexpr PassRow kComposite = {CompositeProgram, kOutputTarget,
                                &FrameSizes::output, Quad::kUpright};
constexpr PassRow kCompositeOnScreen = {CompositeProgram, kScreen,
                                        &FrameSizes::output, Quad::kFlipCrop};

Pass PassOf(const PassRow& row, const FrameDrawing& frame,
            bool rotated = false) {
  RenderState& state = frame.state;
  return {state.programs[row.program],
          row.target == kScreen ? 0 : state.targets.framebuffer(row.target),
          frame.sizes.*row.size, rotated ? Quad::kRotate : row.quad};
}

void BlurSeparably(FrameDrawing& frame, const PassRow& across,
                   ImageTexture& source, float scale) {
  const ImageSize image = frame.sizes.*across.size;
  DrawBlur(frame.drawing, PassOf(kBlurDown, frame), source, image, scale);
  DrawBlur(frame.drawing, PassOf(across, frame),
           frame.state.targets.texture(kBlurTemporary), image, scale);
}

void Pick3x3(FrameDrawing& frame, const PassRow& row, size_t source) {
  const ImageSize work = frame.sizes.work;
  frame.drawing.DrawPass(
      PassOf(row, frame),
      {{"inputImageTexture", 0, frame.state.targets.texture(source),
        FilterBetween(frame.sizes.weights, work)}},
      {{"fWidth", static_cast<float>(work.width)},
       {"fHeight", static_cast<float>(work.height)},
       {"scale", 1.0F}});
}

void DrawNv21(FrameDrawing& frame, const PassRow& row, GLint filter) {
  auto& inputs = frame.state.inputs;
  frame.drawing.DrawPass(PassOf(row, frame),
                         {{"inputYTexture", 0, inputs[kInputY], filter},
                          {"inputUVTexture", 1, inputs[kInputUV], filter}});
}

}  // namespace

void PassNv21ToRgb(FrameDrawing& frame) {
  DrawNv21(frame, kNv21ToRgb, GL_LINEAR);
}

void PassNv21Pack(FrameDrawing& frame) {
  DrawNv21(frame, kNv21Pack, GL_NEAREST);
}

void PassPlanarYuvPack(FrameDrawing& frame) {
  auto& inputs = frame.state.inputs;
  frame.drawing.DrawPass(PassOf(kPlanarYuvPack, frame),
                         {{"inputYTexture", 0, inputs[kInputY], GL_NEAREST},
                          {"inputUTexture", 1, inputs[kInputUV], GL_NEAREST},
                          {"inputVTexture", 2, inputs[kInputV], GL_NEAREST}});
}

void PassBypass(FrameDrawing& frame, bool portrait) {
  frame.drawing.DrawPass(
      PassOf(kBypass, frame, portrait),
      {{"inputImageTexture", 0, frame.state.targets.texture(kWorkImage)}});
}

void PassBlurImage(FrameDrawing& frame, ImageTexture& image, float scale) {
  BlurSeparably(frame, kBlurImageAcross, image, scale);
}

void PassDepthWeight(FrameDrawing& frame, const DepthWeightUniforms& uniforms) {
  DrawDepthWeight(frame.drawing, PassOf(kDepthWeight, frame),
                  frame.state.inputs[kInputRefocus], frame.sizes.depth,
                  uniforms);
}

void PassErodeWeights(FrameDrawing& frame) {
  Pick3x3(frame, kErodeWeights, kWeights);
}

void PassDilateWeights(FrameDrawing& frame) {
  Pick3x3(frame, kDilateWeights, kErodedWeights);
}

void PassBlurWeights(FrameDrawing& frame, float scale) {
  BlurSeparably(frame, kBlurWeightsAcross,
                frame.state.targets.texture(kWeights), scale);
}

void PassComposite(FrameDrawing& frame, const CompositeInputs& inputs) {
  const PassRow& row = inputs.off_screen ? kComposite : kCompositeOnScreen;
  const FrameSizes& sizes = frame.sizes;
  const bool is_whole = inputs.off_screen && !inputs.portrait;
  const auto filter = [&](ImageSize source) {
    return is_whole ? FilterBetween(source, sizes.output) : GL_LINEAR;
  };
  frame.drawing.DrawPass(
      PassOf(row, frame, inputs.portrait),
      {{"inputImageTexture", 0, inputs.image, filter(sizes.image)},
       {"blurTexture1", 1, frame.state.targets.texture(kBlurredImage),
        filter(sizes.blur)},
       {"refocusTexture", 4, inputs.weights, filter(inputs.weight_size)}},
      {{"blurTexture4", 6}, {"blurLayer", 1}});
}

}  // namespace zuqel
