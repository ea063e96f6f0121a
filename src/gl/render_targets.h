// The fixed set of textures that passes draw into.
#ifndef ZUQEL_GL_RENDER_TARGETS_H_
#define ZUQEL_GL_RENDER_TARGETS_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "base/image_size.h"
#include "gl/gl_handle.h"
#include "gl/graphic_buffer.h"
#include "gl/texture.h"

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

  RenderTargets() = default;
  // Makes all of them for one preview size; leaves framebuffer 0 bound. Where
  // `graphic_buffer` is asked for, it is made here, and the output texture has
  // its storage there.
  RenderTargets(ImageSize preview, bool has_graphic_buffer,
                std::optional<GraphicBuffer>& graphic_buffer);

  ImageTexture& texture(size_t index) { return textures_[index]; }
  [[nodiscard]] GLuint framebuffer(size_t index) const {
    return framebuffers_[index].get();
  }

 private:
  // Destroyed from the last: the textures go first.
  std::array<Framebuffer, kCount> framebuffers_;
  std::array<ImageTexture, kCount> textures_;
};

}  // namespace zuqel

#endif  // ZUQEL_GL_RENDER_TARGETS_H_
