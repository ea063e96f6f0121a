// Makes and deletes the render targets.
#include "gl/render_targets.h"

#include "base/log.h"
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

// A graphic buffer cannot be filled by an upload: the texture gets its
// parameters and takes the buffer's image.
void BackByGraphicBuffer(GLuint texture, GraphicBuffer& graphic_buffer,
                         TargetSize size) {
  ZUQEL_LOG("Graphics buffer +");
  graphic_buffer.Create(size.width, size.height);
  BindTexture(texture, {});
  graphic_buffer.BackBoundTexture();
}

}  // namespace

void RenderTargets::Create(int32_t preview_width, int32_t preview_height,
                           GraphicBuffer* graphic_buffer) {
  for (Texture& texture : textures_) texture.Generate();
  for (Framebuffer& framebuffer : framebuffers_) framebuffer.Generate();
  for (size_t i = 0; i < kCount; ++i) {
    const TargetSize size = SizeOfTarget(i, {preview_width, preview_height});
    const bool is_graphic_buffer = i == kOutput && graphic_buffer != nullptr;
    if (is_graphic_buffer) {
      BackByGraphicBuffer(texture(i), *graphic_buffer, size);
    } else {
      UploadTexture(texture(i), GL_RGBA, size.width, size.height, nullptr, {});
    }
    Attach(i);
    if (is_graphic_buffer) ZUQEL_LOG("Graphics buffer -");
  }
  glBindFramebuffer(GL_FRAMEBUFFER, 0);
}

void RenderTargets::Attach(size_t index) const {
  glBindFramebuffer(GL_FRAMEBUFFER, framebuffer(index));
  glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D,
                         texture(index), 0);
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
