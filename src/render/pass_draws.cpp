// Draws what passes share.
#include "render/pass_draws.h"

namespace zuqel {

void SetUniform(const LinkedProgram& program, Uniform uniform, GLint value) {
  glUniform1i(uniform.LocationIn(program), value);
}

void SetUniform(const LinkedProgram& program, Uniform uniform, GLfloat value) {
  glUniform1f(uniform.LocationIn(program), value);
}

void SetViewport(DrawRegion region) {
  glViewport(region.x, region.y, region.width,
             region.height == 0 ? 1 : region.height);
}

void BeginPass(const LinkedProgram& program, GLuint framebuffer,
               ImageSize size) {
  glUseProgram(program.name());
  glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
  SetViewport({0, 0, size.width, size.height});
}

void SetTexture(const LinkedProgram& program, Uniform sampler, GLint unit,
                GLuint texture) {
  glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(unit));
  glBindTexture(GL_TEXTURE_2D, texture);
  SetUniform(program, sampler, unit);
}

void SetImageSize(const LinkedProgram& program, ImageSize size) {
  SetUniform(program, "fWidth", static_cast<GLfloat>(size.width));
  SetUniform(program, "fHeight", static_cast<GLfloat>(size.height));
}

void DrawDepthWeight(const DepthWeightDraw& draw,
                     const DepthWeightUniforms& uniforms) {
  const LinkedProgram& program = draw.program;
  BeginPass(program, draw.framebuffer, draw.size);
  SetTexture(program, "depthTexture", 4, draw.depth_texture);
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

void DrawBlur(const BlurDraw& draw, const Quad& quad) {
  const LinkedProgram& program = draw.program;
  BeginPass(program, draw.framebuffer, draw.viewport);
  SetImageSize(program, draw.image);
  SetUniform(program, "myscale", draw.scale);
  SetTexture(program, "inputImageTexture", 0, draw.source_texture);
  DrawQuad(program, quad);
}

}  // namespace zuqel
