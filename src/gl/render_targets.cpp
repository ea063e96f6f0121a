// Makes the render targets.
#include "gl/render_targets.h"

#include "base/log.h"
#include "gl/texture.h"

namespace zuqel {
namespace {

constexpr size_t kFirstReduced = 1;
constexpr size_t kFirstQuarter = 9;
constexpr size_t kOutput = 13;

ImageSize SizeOfTarget(size_t index, ImageSize preview) {
  if (index < kFirstReduced || index == kOutput) return preview;
  if (index < kFirstQuarter) return {kReducedWidth, kReducedHeight};
  return {kQuarterWidth, kQuarterHeight};
}

// A graphic buffer cannot be filled by an upload: the texture gets its
// parameters and takes the buffer's image.
void BackByGraphicBuffer(ImageTexture& texture, ImageSize size,
                         std::optional<GraphicBuffer>& graphic_buffer) {
  ZUQEL_LOG("Graphics buffer +");
  graphic_buffer.emplace(size);
  texture.SetUp(GL_CLAMP_TO_EDGE);
  graphic_buffer->BackBoundTexture();
}

void Attach(GLuint framebuffer, GLuint texture) {
  glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
  glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D,
                         texture, 0);
}

}  // namespace

RenderTargets::RenderTargets(ImageSize preview, bool has_graphic_buffer,
                             std::optional<GraphicBuffer>& graphic_buffer) {
  for (ImageTexture& texture : textures_) texture = ImageTexture::Generate();
  for (Framebuffer& framebuffer : framebuffers_) {
    framebuffer = Framebuffer::Generate();
  }
  for (size_t i = 0; i < kCount; ++i) {
    const ImageSize size = SizeOfTarget(i, preview);
    const bool is_graphic_buffer = i == kOutput && has_graphic_buffer;
    if (is_graphic_buffer) {
      BackByGraphicBuffer(texture(i), size, graphic_buffer);
    } else {
      texture(i).Upload(GL_RGBA, size, nullptr);
    }
    Attach(framebuffer(i), texture(i).get());
    if (is_graphic_buffer) ZUQEL_LOG("Graphics buffer -");
  }
  glBindFramebuffer(GL_FRAMEBUFFER, 0);
}

}  // namespace zuqel
