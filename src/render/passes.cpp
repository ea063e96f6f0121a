// Draws the passes. Uniforms are set by name at each draw; a name that the
// compiler has dropped has no location, which GL ignores.
#include "render/passes.h"

namespace zuqel {
namespace {

// Size of the conversion to RGB, whatever the preview size.
constexpr ImageSize kConversionSize = {1280, 960};

void SetUniform(GLuint program, const char* name, GLint value) {
  glUniform1i(glGetUniformLocation(program, name), value);
}

void SetUniform(GLuint program, const char* name, GLfloat value) {
  glUniform1f(glGetUniformLocation(program, name), value);
}

void SetViewport(DrawRegion region) {
  glViewport(region.x, region.y, region.width,
             region.height == 0 ? 1 : region.height);
}

void BeginPass(GLuint program, GLuint framebuffer, ImageSize size) {
  glUseProgram(program);
  glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
  SetViewport({0, 0, size.width, size.height});
}

// Binds a texture to a unit and tells a sampler of the program.
void SetTexture(GLuint program, const char* sampler, GLint unit,
                GLuint texture) {
  glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(unit));
  glBindTexture(GL_TEXTURE_2D, texture);
  SetUniform(program, sampler, unit);
}

void SetImageSize(GLuint program, ImageSize size) {
  SetUniform(program, "fWidth", static_cast<GLfloat>(size.width));
  SetUniform(program, "fHeight", static_cast<GLfloat>(size.height));
}

void ConvertNv21(const RenderState& state, ProgramRole role, ImageSize size,
                 const Quad& quad) {
  const GLuint program = state.programs[role];
  BeginPass(program, state.targets.framebuffer(kWorkImage), size);
  SetTexture(program, "inputYTexture", 0, state.inputs[kInputY].get());
  SetTexture(program, "inputUVTexture", 1, state.inputs[kInputUV].get());
  DrawQuad(program, quad);
}

struct BlurHalf {
  ProgramRole role;
  GLuint source_texture;
  GLuint framebuffer;
  ImageSize viewport;
};

// The two halves of a blur flip the image once each.
void DrawBlurHalf(const RenderState& state, const BlurHalf& half,
                  ImageSize size, float scale) {
  const GLuint program = state.programs[half.role];
  BeginPass(program, half.framebuffer, half.viewport);
  SetImageSize(program, size);
  SetUniform(program, "myscale", scale);
  SetTexture(program, "inputImageTexture", 0, half.source_texture);
  DrawQuad(program, kQuadFlip);
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
  const GLuint program = state.programs[ProgramRole::PlanarYuvPackProgram];
  BeginPass(program, state.targets.framebuffer(kWorkImage), size);
  SetTexture(program, "inputYTexture", 0, state.inputs[kInputY].get());
  SetTexture(program, "inputUTexture", 1, state.inputs[kInputUV].get());
  SetTexture(program, "inputVTexture", 2, state.inputs[kInputV].get());
  DrawQuad(program, kQuadUpright);
}

void PassBypass(const RenderState& state, ImageSize size, bool rotate) {
  const GLuint program = state.programs[ProgramRole::CopyProgram];
  BeginPass(program, 0, size);
  SetTexture(program, "inputImageTexture", 0,
             state.targets.texture(kWorkImage));
  DrawQuad(program, rotate ? kQuadRotate : kQuadFlipCrop);
}

void PassSeparableBlur(const RenderState& state, GLuint source_texture,
                       GLuint destination_framebuffer, ImageSize size,
                       float scale) {
  DrawBlurHalf(state,
               {ProgramRole::BlurVProgram,
                source_texture,
                state.targets.framebuffer(kBlurTemporary),
                {kReducedWidth, kReducedHeight}},
               size, scale);
  DrawBlurHalf(
      state,
      {ProgramRole::BlurHProgram, state.targets.texture(kBlurTemporary),
       destination_framebuffer, size},
      size, scale);
}

void PassDepthWeight(const RenderState& state, ImageSize size,
                     const DepthWeightUniforms& uniforms) {
  const GLuint program = state.programs[ProgramRole::DepthWeightProgram];
  BeginPass(program, state.targets.framebuffer(kWeights), size);
  SetTexture(program, "depthTexture", 4, state.inputs[kInputRefocus].get());
  SetUniform(program, "depthTexture2", 5);
  SetUniform(program, "focusPlane", uniforms.focus_plane);
  SetUniform(program, "mouseX", uniforms.mouse_x);
  SetUniform(program, "mouseY", uniforms.mouse_y);
  SetUniform(program, "F_number", 0.0F);
  SetUniform(program, "min_depth", uniforms.min_depth);
  SetUniform(program, "max_depth", uniforms.max_depth);
  SetUniform(program, "focal_length", uniforms.focal_length);
  DrawQuad(program, kQuadUpright);
}

void PassPick3x3(const RenderState& state, ProgramRole program_role,
                 GLuint source_texture, GLuint destination_framebuffer,
                 ImageSize size) {
  const GLuint program = state.programs[program_role];
  BeginPass(program, destination_framebuffer, size);
  SetImageSize(program, size);
  SetUniform(program, "scale", 1.0F);
  SetTexture(program, "inputImageTexture", 0, source_texture);
  DrawQuad(program, kQuadUpright);
}

void PassComposite(const RenderState& state, const CompositeInputs& inputs,
                   const Quad& quad) {
  const GLuint program = state.programs[ProgramRole::CompositeProgram];
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
  const GLuint program = state.programs[ProgramRole::CopyProgram];
  glUseProgram(program);
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
