// Draws what passes share.
#include "render/pass_draws.h"

namespace zuqel {

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

void DrawDepthWeight(const DepthWeightDraw& draw,
                     const DepthWeightUniforms& uniforms) {
  const GLuint program = draw.program;
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
  const GLuint program = draw.program;
  BeginPass(program, draw.framebuffer, draw.viewport);
  SetImageSize(program, draw.image);
  SetUniform(program, "myscale", draw.scale);
  SetTexture(program, "inputImageTexture", 0, draw.source_texture);
  DrawQuad(program, quad);
}

}  // namespace zuqel
