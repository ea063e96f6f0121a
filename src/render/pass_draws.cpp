// Draws passes.
#include "render/pass_draws.h"

namespace zuqel {

void Drawing::SetViewport(DrawRegion region) {
  if (region.height == 0) region.height = 1;
  if (viewport_ == region) return;
  viewport_ = region;
  glViewport(region.x, region.y, region.width, region.height);
}

void Drawing::SetTexture(LinkedProgram& program, const TextureInput& input) {
  if (active_unit_ != input.unit) {
    active_unit_ = input.unit;
    glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(input.unit));
  }
  input.texture.Bind(input.filter);
  program.SetUniform(input.sampler.index(), input.unit);
}

void Drawing::DrawPass(const Pass& pass,
                       std::initializer_list<TextureInput> textures,
                       std::initializer_list<UniformInput> uniforms) {
  glUseProgram(pass.program.name());
  glBindFramebuffer(GL_FRAMEBUFFER, pass.framebuffer);
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
  SetViewport({0, 0, pass.size.width, pass.size.height});
  if (!pass.program.exists()) return;
  for (const auto& [uniform, value] : uniforms) {
    const size_t index = uniform.index();
    if (const auto* number = std::get_if<GLint>(&value)) {
      pass.program.SetUniform(index, *number);
    } else if (const auto* real = std::get_if<GLfloat>(&value)) {
      pass.program.SetUniform(index, *real);
    }
  }
  for (const TextureInput& input : textures) SetTexture(pass.program, input);
  DrawQuad(pass.program, pass.quad);
}

GLint FilterBetween(ImageSize source, ImageSize target) {
  return source == target ? GL_NEAREST : GL_LINEAR;
}

void DrawDepthWeight(Drawing& drawing, const Pass& pass,
                     ImageTexture& depth_texture, ImageSize depth,
                     const DepthWeightUniforms& uniforms) {
  drawing.DrawPass(
      pass,
      {{"depthTexture", 4, depth_texture, FilterBetween(depth, pass.size)}},
      {{"depthTexture2", 5},
       {"focusPlane", uniforms.focus_plane},
       {"mouseX", uniforms.mouse_x},
       {"mouseY", uniforms.mouse_y},
       {"F_number", 0.0F},
       {"min_depth", uniforms.min_depth},
       {"max_depth", uniforms.max_depth},
       {"focal_length", uniforms.focal_length}});
}

void DrawBlur(Drawing& drawing, const Pass& pass, ImageTexture& source,
              ImageSize image, float scale) {
  drawing.DrawPass(pass, {{"inputImageTexture", 0, source}},
                   {{"fWidth", static_cast<float>(image.width)},
                    {"fHeight", static_cast<float>(image.height)},
                    {"myscale", scale}});
}

}  // namespace zuqel
