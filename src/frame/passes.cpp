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
  const Quad& quad;
};

constexpr PassRow kNv21ToRgb = {Nv21ToRgbProgram, kWorkImage,
                                &FrameSizes::conversion, kQuadConversion};
constexpr PassRow kNv21Pack = {Nv21PackProgram, kWorkImage, &FrameSizes::image,
                               kQuadUpright};
constexpr PassRow kPlanarYuvPack = {PlanarYuvPackProgram, kWorkImage,
                                    &FrameSizes::image, kQuadUpright};
constexpr PassRow kBypass = {CopyProgram, kScreen, &FrameSizes::output,
                             kQuadFlipCrop};
// The two halves of a blur flip the image once each.
constexpr PassRow kBlurDown = {BlurVProgram, kBlurTemporary, &FrameSizes::blur,
                               kQuadFlip};
constexpr PassRow kBlurImageAcross = {BlurHProgram, kBlurredImage,
                                      &FrameSizes::blur, kQuadFlip};
constexpr PassRow kBlurWeightsAcross = {BlurHProgram, kBlurredWeights,
                                        &FrameSizes::work, kQuadFlip};
constexpr PassRow kDepthWeight = {DepthWeightProgram, kWeights,
                                  &FrameSizes::work, kQuadUpright};
constexpr PassRow kErodeWeights = {Min3x3Program, kErodedWeights,
                                   &FrameSizes::work, kQuadUpright};
constexpr PassRow kDilateWeights = {Max3x3Program, kWeights, &FrameSizes::work,
                                    kQuadUpright};
constexpr PassRow kComposite = {CompositeProgram, kOutputTarget,
                                &FrameSizes::output, kQuadUpright};
constexpr PassRow kCompositeOnScreen = {CompositeProgram, kScreen,
                                        &FrameSizes::output, kQuadFlipCrop};

Pass PassOf(const PassRow& row, const RenderState& state,
            const FrameSizes& sizes, bool rotated = false) {
  return {state.programs[row.program],
          row.target == kScreen ? 0 : state.targets.framebuffer(row.target),
          sizes.*row.size, rotated ? kQuadRotate : row.quad};
}

void BlurSeparably(const RenderState& state, const FrameSizes& sizes,
                   const PassRow& across, GLuint source_texture, float scale) {
  const ImageSize image = sizes.*across.size;
  DrawBlur(PassOf(kBlurDown, state, sizes), source_texture, image, scale);
  DrawBlur(PassOf(across, state, sizes), state.targets.texture(kBlurTemporary),
           image, scale);
}

void Pick3x3(const RenderState& state, const FrameSizes& sizes,
             const PassRow& row, size_t source) {
  DrawPass(PassOf(row, state, sizes),
           {{"inputImageTexture", 0, state.targets.texture(source),
             FilterBetween(sizes.weights, sizes.work)}},
           {{"fWidth", static_cast<float>(sizes.work.width)},
            {"fHeight", static_cast<float>(sizes.work.height)},
            {"scale", 1.0F}});
}

void DrawNv21(const RenderState& state, const FrameSizes& sizes,
              const PassRow& row, GLint filter) {
  DrawPass(PassOf(row, state, sizes),
           {{"inputYTexture", 0, state.inputs[kInputY].get(), filter},
            {"inputUVTexture", 1, state.inputs[kInputUV].get(), filter}});
}

}  // namespace

void PassNv21ToRgb(const RenderState& state, const FrameSizes& sizes) {
  DrawNv21(state, sizes, kNv21ToRgb, GL_LINEAR);
}

void PassNv21Pack(const RenderState& state, const FrameSizes& sizes) {
  DrawNv21(state, sizes, kNv21Pack, GL_NEAREST);
}

void PassPlanarYuvPack(const RenderState& state, const FrameSizes& sizes) {
  DrawPass(PassOf(kPlanarYuvPack, state, sizes),
           {{"inputYTexture", 0, state.inputs[kInputY].get(), GL_NEAREST},
            {"inputUTexture", 1, state.inputs[kInputUV].get(), GL_NEAREST},
            {"inputVTexture", 2, state.inputs[kInputV].get(), GL_NEAREST}});
}

void PassBypass(const RenderState& state, const FrameSizes& sizes,
                bool portrait) {
  DrawPass(PassOf(kBypass, state, sizes, portrait),
           {{"inputImageTexture", 0, state.targets.texture(kWorkImage)}});
}

void PassBlurImage(const RenderState& state, const FrameSizes& sizes,
                   GLuint image_texture, float scale) {
  BlurSeparably(state, sizes, kBlurImageAcross, image_texture, scale);
}

void PassDepthWeight(const RenderState& state, const FrameSizes& sizes,
                     const DepthWeightUniforms& uniforms) {
  DrawDepthWeight(PassOf(kDepthWeight, state, sizes),
                  state.inputs[kInputRefocus].get(), sizes.depth, uniforms);
}

void PassErodeWeights(const RenderState& state, const FrameSizes& sizes) {
  Pick3x3(state, sizes, kErodeWeights, kWeights);
}

void PassDilateWeights(const RenderState& state, const FrameSizes& sizes) {
  Pick3x3(state, sizes, kDilateWeights, kErodedWeights);
}

void PassBlurWeights(const RenderState& state, const FrameSizes& sizes,
                     float scale) {
  BlurSeparably(state, sizes, kBlurWeightsAcross,
                state.targets.texture(kWeights), scale);
}

void PassComposite(const RenderState& state, const FrameSizes& sizes,
                   const CompositeInputs& inputs) {
  const PassRow& row = inputs.off_screen ? kComposite : kCompositeOnScreen;
  const bool is_whole = inputs.off_screen && !inputs.portrait;
  const auto filter = [&](ImageSize source) {
    return is_whole ? FilterBetween(source, sizes.output) : GL_LINEAR;
  };
  DrawPass(PassOf(row, state, sizes, inputs.portrait),
           {{"inputImageTexture", 0, inputs.image_texture, filter(sizes.image)},
            {"blurTexture1", 1, state.targets.texture(kBlurredImage),
             filter(sizes.blur)},
            {"refocusTexture", 4, inputs.weight_texture,
             filter(inputs.weight_size)}},
           {{"blurTexture4", 6}, {"blurLayer", 1}});
}

}  // namespace zuqel
