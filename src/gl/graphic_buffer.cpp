// Allocates, shares and reads the graphic buffer.
#include "gl/graphic_buffer.h"

#include <GLES2/gl2.h>

#include <array>
#include <cstddef>

#include "gl/extensions.h"

namespace zuqel {
namespace {

constexpr int kBufferIndex = 1;
constexpr unsigned kBufferFormat = 771;  // the maker's code
constexpr std::array<EGLint, 3> kImageAttributes = {EGL_IMAGE_PRESERVED_KHR,
                                                    EGL_TRUE, EGL_NONE};

}  // namespace

bool GraphicBuffersAreUsable() {
  return isValidGBWrapper();
}

GraphicBuffer::GraphicBuffer(ImageSize size)
    : display_(eglGetCurrentDisplay()), size_(size) {
  wrapper_.AllocBuffer(size.width, size.height, kBufferFormat, kBufferIndex);
  const auto create_image = GetExtensions().CreateImage;
  if (create_image == nullptr) return;
  image_ = create_image(
      display_, EGL_NO_CONTEXT, EGL_NATIVE_BUFFER_ANDROID,
      static_cast<EGLClientBuffer>(wrapper_.getNativeBuffer(kBufferIndex)),
      kImageAttributes.data());
}

GraphicBuffer::~GraphicBuffer() {
  const auto destroy_image = GetExtensions().DestroyImage;
  if (image_ == EGL_NO_IMAGE_KHR || destroy_image == nullptr) return;
  destroy_image(display_, image_);
}

void GraphicBuffer::BackBoundTexture() const {
  const auto back_texture = GetExtensions().EglImageTargetTexture2D;
  if (back_texture == nullptr || image_ == EGL_NO_IMAGE_KHR) return;
  back_texture(GL_TEXTURE_2D, image_);
}

std::span<const uint32_t> GraphicBuffer::Lock() {
  glFlush();
  glFinish();
  void* pixels = nullptr;
  wrapper_.lock_read(&pixels, kBufferIndex);
  return {static_cast<const uint32_t*>(pixels),
          pixels == nullptr ? 0
                            : static_cast<size_t>(size_.width) *
                                  static_cast<size_t>(size_.height)};
}

void GraphicBuffer::Unlock() {
  wrapper_.unlock(kBufferIndex);
}

}  // namespace zuqel
