// Draws the passes.
#include "frame/passes.h"

namespace zuqel {
namespace {

// Size of the conversion to RGB, whatever the preview size.
constexpr ImageSize kConversionSize = {1280, 960};

void ConvertNv21(const RenderState& state, ProgramRole role, ImageSize size,
                 const Quad& quad) {
  const LinkedProgram& program = state.programs[role];
  BeginPass(program, state.targets.framebuffer(kWorkImage), size);
  SetTexture(program, "inputYTexture", 0, state.inputs[kInputY].get());
  SetTexture(program, "inputUVTexture", 1, state.inputs[kInputUV].get());
  DrawQuad(program, quad);
}

}  // namespace

void PassNv21ToRgb(const RenderState& state) {
  ConvertNv21(state, ProgramRole::Nv21ToRgbProgram, kConversionSize,
              kQuadConversion);
}

void PassNv21Pack(const RenderState& state, ImageSize size) {
  ConvertNv21(state, ProgramRole::Nv21PackProgram, size, kQuadUpright);
}

void PassPlanarYuvPack(const RenderState& state, ImageSize size) {
  const LinkedProgram& program =
      state.programs[ProgramRole::PlanarYuvPackProgram];
  BeginPass(program, state.targets.framebuffer(kWorkImage), size);
  SetTexture(program, "inputYTexture", 0, state.inputs[kInputY].get());
  SetTexture(program, "inputUTexture", 1, state.inputs[kInputUV].get());
  SetTexture(program, "inputVTexture", 2, state.inputs[kInputV].get());
  DrawQuad(program, kQuadUpright);
}

void PassBypass(const RenderState& state, ImageSize size, bool rotate) {
  const LinkedProgram& program = state.programs[ProgramRole::CopyProgram];
  BeginPass(program, 0, size);
  SetTexture(program, "inputImageTexture", 0,
             state.targets.texture(kWorkImage));
  DrawQuad(program, rotate ? kQuadRotate : kQuadFlipCrop);
}

// The two halves of a blur flip the image once each.
void PassSeparableBlur(const RenderState& state, GLuint source_texture,
                       GLuint destination_framebuffer, ImageSize size,
                       float scale) {
  DrawBlur({.program = state.programs[ProgramRole::BlurVProgram],
            .framebuffer = state.targets.framebuffer(kBlurTemporary),
            .source_texture = source_texture,
            .viewport = {kReducedWidth, kReducedHeight},
            .image = size,
            .scale = scale},
           kQuadFlip);
  DrawBlur({.program = state.programs[ProgramRole::BlurHProgram],
            .framebuffer = destination_framebuffer,
            .source_texture = state.targets.texture(kBlurTemporary),
            .viewport = size,
            .image = size,
            .scale = scale},
           kQuadFlip);
}

void PassDepthWeight(const RenderState& state, ImageSize size,
                     const DepthWeightUniforms& uniforms) {
  DrawDepthWeight({state.programs[ProgramRole::DepthWeightProgram],
                   state.targets.framebuffer(kWeights),
                   state.inputs[kInputRefocus].get(), size},
                  uniforms);
}

void PassPick3x3(const RenderState& state, ProgramRole program_role,
                 GLuint source_texture, GLuint destination_framebuffer,
                 ImageSize size) {
  const LinkedProgram& program = state.programs[program_role];
  BeginPass(program, destination_framebuffer, size);
  SetImageSize(program, size);
  SetUniform(program, "scale", 1.0F);
  SetTexture(program, "inputImageTexture", 0, source_texture);
  DrawQuad(program, kQuadUpright);
}

void PassComposite(const RenderState& state, const CompositeInputs& inputs,
                   const Quad& quad) {
  const LinkedProgram& program = state.programs[ProgramRole::CompositeProgram];
  BeginPass(program, inputs.framebuffer, inputs.output);
  SetUniform(program, "blurTexture4", 6);
  SetUniform(program, "blurLayer", 1);
  SetTexture(program, "inputImageTexture", 0, inputs.image_texture);
  SetTexture(program, "blurTexture1", 1, state.targets.texture(kBlurredImage));
  SetTexture(program, "refocusTexture", 4, inputs.weight_texture);
  DrawQuad(program, quad);
}

void PassDebugPicture(const RenderState& state, GLuint picture_texture,
                      DrawRegion region, bool blend) {
  const LinkedProgram& program = state.programs[ProgramRole::CopyProgram];
  glUseProgram(program.name());
  glBindFramebuffer(GL_FRAMEBUFFER, state.targets.framebuffer(kOutputTarget));
  SetViewport(region);
  if (blend) {
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
  }
  SetTexture(program, "inputImageTexture", 0, picture_texture);
  DrawQuad(program, kQuadUpright);
}

}  // namespace zuqel
