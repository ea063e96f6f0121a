// The output image in a graphic buffer, which the CPU reads without a copy.
#ifndef ZUQEL_GL_GRAPHIC_BUFFER_H_
#define ZUQEL_GL_GRAPHIC_BUFFER_H_

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <gb_wrapper.h>

#include <cstdint>
#include <span>

#include "base/image_size.h"

namespace zuqel {

// Whether the device's wrapper can be used at all.
bool GraphicBuffersAreUsable();

// Owns the buffer and its EGL image.
class GraphicBuffer {
 public:
  // Makes the buffer, of `size` RGBA pixels, and its EGL image on the current
  // display.
  explicit GraphicBuffer(ImageSize size);
  ~GraphicBuffer();
  GraphicBuffer(const GraphicBuffer&) = delete;
  GraphicBuffer& operator=(const GraphicBuffer&) = delete;

  // Gives the texture bound to GL_TEXTURE_2D the buffer as its storage.
  void BackBoundTexture() const;

  // Waits for GL and calls `read` with the pixels, a row after the other; not
  // when the buffer cannot be locked.
  template <typename Read>
  void ReadPixels(Read read) {
    const std::span<const uint32_t> pixels = Lock();
    if (pixels.data() != nullptr) read(pixels);
    Unlock();
  }

 private:
  std::span<const uint32_t> Lock();
  void Unlock();

  GBWrapper wrapper_;
  EGLDisplay display_;
  EGLImageKHR image_ = EGL_NO_IMAGE_KHR;
  ImageSize size_;
};

}  // namespace zuqel

#endif  // ZUQEL_GL_GRAPHIC_BUFFER_H_
