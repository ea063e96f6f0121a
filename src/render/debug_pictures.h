// Pictures of the caller's that are drawn over every frame.
#ifndef ZUQEL_RENDER_DEBUG_PICTURES_H_
#define ZUQEL_RENDER_DEBUG_PICTURES_H_

#include <zuQelRT_GL.h>

#include <array>
#include <cstddef>

#include "gl/program.h"
#include "gl/texture.h"
#include "render/pass_draws.h"

namespace zuqel {

inline constexpr size_t kDebugPictureCount = 10;

struct DebugPictures {
  // Once a picture is loaded, its pointer is only compared with null.
  std::array<DebugPicture, kDebugPictureCount> table = {};
  bool show = false;
  bool blend = false;
};

using DebugTextures = std::array<ImageTexture, kDebugPictureCount>;

// Copies ten entries and uploads the pictures of those in use, which it logs;
// the textures of the others stay as they are. With null `textures`, uploads
// nothing. Needs PlainGlState.
void LoadDebugPictures(DebugTextures* textures, const DebugPicture* table,
                       DebugPictures& pictures);

// Stretches each picture in use over its region of the framebuffer, which stays
// bound. Blending that has once been enabled stays so.
void DrawDebugPictures(Drawing& drawing, LinkedProgram& copy_program,
                       DebugTextures& textures, GLuint framebuffer,
                       const DebugPictures& pictures);

}  // namespace zuqel

#endif  // ZUQEL_RENDER_DEBUG_PICTURES_H_
