// Makes and deletes the render targets.
#include "gl/render_targets.h"

#include "gl/texture.h"

namespace zuqel {
namespace {

constexpr size_t kFirstReduced = 1;
constexpr size_t kFirstQuarter = 9;
constexpr size_t kOutput = 13;

struct TargetSize {
  int32_t width;
  int32_t height;
};

TargetSize SizeOfTarget(size_t index, TargetSize preview) {
  if (index < kFirstReduced || index == kOutput) return preview;
  if (index < kFirstQuarter) return {kReducedWidth, kReducedHeight};
  return {kQuarterWidth, kQuarterHeight};
}

}  // namespace

void RenderTargets::Create(int32_t preview_width, int32_t preview_height) {
  for (Texture& texture : textures_) texture.Generate();
  for (Framebuffer& framebuffer : framebuffers_) framebuffer.Generate();
  for (size_t i = 0; i < kCount; ++i) {
    const TargetSize size = SizeOfTarget(i, {preview_width, preview_height});
    UploadTexture(texture(i), GL_RGBA, size.width, size.height, nullptr, {});
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer(i));
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D,
                           texture(i), 0);
  }
  glBindFramebuffer(GL_FRAMEBUFFER, 0);
}

void RenderTargets::DeleteTextures() {
  for (Texture& texture : textures_) texture.Delete();
}

void RenderTargets::DeleteFramebuffers() {
  for (Framebuffer& framebuffer : framebuffers_) framebuffer.Delete();
}

void RenderTargets::Forget() {
  for (Texture& texture : textures_) texture.Forget();
  for (Framebuffer& framebuffer : framebuffers_) framebuffer.Forget();
}

}  // namespace zuqel
