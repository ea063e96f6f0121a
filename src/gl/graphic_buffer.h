// The output image in a graphic buffer, which the CPU reads without a copy.
#ifndef ZUQEL_GL_GRAPHIC_BUFFER_H_
#define ZUQEL_GL_GRAPHIC_BUFFER_H_

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <gb_wrapper.h>

#include <cstdint>
#include <optional>
#include <span>

namespace zuqel {

class GraphicBuffer {
 public:
  // Makes the buffer, of `width` x `height` RGBA pixels, and its EGL image on
  // the current display.
  void Create(int32_t width, int32_t height);

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

  [[nodiscard]] bool exists() const { return wrapper_.has_value(); }

  // Destroys image and buffer.
  void Release();

 private:
  std::span<const uint32_t> Lock();
  void Unlock();

  std::optional<GBWrapper> wrapper_;
  EGLImageKHR image_ = EGL_NO_IMAGE_KHR;
  int32_t width_ = 0;
  int32_t height_ = 0;
};

}  // namespace zuqel

#endif  // ZUQEL_GL_GRAPHIC_BUFFER_H_
