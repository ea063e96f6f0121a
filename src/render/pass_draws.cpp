// Draws passes.
#include "render/pass_draws.h"

#include "gl/texture.h"

namespace zuqel {
namespace {

void SetUniform(const LinkedProgram& program, const UniformInput& input) {
  const GLint location = input.uniform.LocationIn(program);
  if (const auto* number = std::get_if<GLint>(&input.value)) {
    glUniform1i(location, *number);
  } else if (const auto* real = std::get_if<GLfloat>(&input.value)) {
    glUniform1f(location, *real);
  }
}

}  // namespace

void SetViewport(DrawRegion region) {
  glViewport(region.x, region.y, region.width,
             region.height == 0 ? 1 : region.height);
}

void SetTexture(const LinkedProgram& program, const TextureInput& input) {
  glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(input.unit));
  BindTexture(input.texture, input.filter);
  glUniform1i(input.sampler.LocationIn(program), input.unit);
}

void DrawPass(const Pass& pass, std::initializer_list<TextureInput> textures,
              std::initializer_list<UniformInput> uniforms) {
  glUseProgram(pass.program.name());
  glBindFramebuffer(GL_FRAMEBUFFER, pass.framebuffer);
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
  SetViewport({0, 0, pass.size.width, pass.size.height});
  if (!pass.program.exists()) return;
  for (const UniformInput& input : uniforms) SetUniform(pass.program, input);
  for (const TextureInput& input : textures) SetTexture(pass.program, input);
  DrawQuad(pass.program, pass.quad);
}

GLint FilterBetween(ImageSize source, ImageSize target) {
  return source == target ? GL_NEAREST : GL_LINEAR;
}

void DrawDepthWeight(const Pass& pass, GLuint depth_texture, ImageSize depth,
                     const DepthWeightUniforms& uniforms) {
  DrawPass(
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

void DrawBlur(const Pass& pass, GLuint source_texture, ImageSize image,
              float scale) {
  DrawPass(pass, {{"inputImageTexture", 0, source_texture}},
           {{"fWidth", static_cast<float>(image.width)},
            {"fHeight", static_cast<float>(image.height)},
            {"myscale", scale}});
}

}  // namespace zuqel
