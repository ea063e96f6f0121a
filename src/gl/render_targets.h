// The fixed set of textures that passes draw into.
#ifndef ZUQEL_GL_RENDER_TARGETS_H_
#define ZUQEL_GL_RENDER_TARGETS_H_

#include <array>
#include <cstddef>
#include <cstdint>

#include "gl/gl_handle.h"
#include "gl/graphic_buffer.h"

namespace zuqel {

// Sizes of the reduced targets, whatever the preview size.
inline constexpr int32_t kReducedWidth = 640;
inline constexpr int32_t kReducedHeight = 480;
inline constexpr int32_t kQuarterWidth = 320;
inline constexpr int32_t kQuarterHeight = 240;

// Fourteen RGBA textures (linear, clamped to the edge), each the colour
// attachment of its own framebuffer:
//   0       preview size    work image
//   1..8    640 x 480       reduced
//   9..12   320 x 240       quarter
//   13      preview size    output
class RenderTargets {
 public:
  static constexpr size_t kCount = 14;

  // Makes all of them for one preview size, in pixels; leaves framebuffer 0
  // bound. With a graphic buffer the output texture has its storage there.
  void Create(int32_t preview_width, int32_t preview_height,
              GraphicBuffer* graphic_buffer);
  void DeleteTextures();
  void DeleteFramebuffers();
  // Lets go of names that died with their context.
  void Forget();

  [[nodiscard]] GLuint texture(size_t index) const {
    return textures_[index].get();
  }
  [[nodiscard]] GLuint framebuffer(size_t index) const {
    return framebuffers_[index].get();
  }

 private:
  void Attach(size_t index) const;

  std::array<Texture, kCount> textures_;
  std::array<Framebuffer, kCount> framebuffers_;
};

}  // namespace zuqel

#endif  // ZUQEL_GL_RENDER_TARGETS_H_
