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

void GraphicBuffer::Create(int32_t width, int32_t height) {
  if (!wrapper_) wrapper_.emplace();
  wrapper_->AllocBuffer(width, height, kBufferFormat, kBufferIndex);
  width_ = width;
  height_ = height;
  const auto create_image = GetExtensions().CreateImage;
  if (create_image == nullptr) return;
  image_ = create_image(
      eglGetCurrentDisplay(), EGL_NO_CONTEXT, EGL_NATIVE_BUFFER_ANDROID,
      static_cast<EGLClientBuffer>(wrapper_->getNativeBuffer(kBufferIndex)),
      kImageAttributes.data());
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
  wrapper_->lock_read(&pixels, kBufferIndex);
  return {static_cast<const uint32_t*>(pixels),
          pixels == nullptr
              ? 0
              : static_cast<size_t>(width_) * static_cast<size_t>(height_)};
}

void GraphicBuffer::Unlock() {
  wrapper_->unlock(kBufferIndex);
}

void GraphicBuffer::Release() {
  const auto destroy_image = GetExtensions().DestroyImage;
  if (image_ != EGL_NO_IMAGE_KHR && destroy_image != nullptr) {
    destroy_image(eglGetCurrentDisplay(), image_);
  }
  image_ = EGL_NO_IMAGE_KHR;
  wrapper_.reset();
}

}  // namespace zuqel
