// Pictures of the caller's that are drawn over every frame.
#ifndef ZUQEL_RENDER_DEBUG_PICTURES_H_
#define ZUQEL_RENDER_DEBUG_PICTURES_H_

#include <zuQelRT_GL.h>

#include <array>

#include "frame/passes.h"

namespace zuqel {

struct DebugPictures {
  // Of an entry's pointer only whether it is null counts once it is loaded.
  std::array<DebugPicture, kDebugPictureCount> table = {};
  bool show = false;
  bool blend = false;
};

// Copies ten entries and uploads the pictures of those in use, which it logs;
// the others' textures stay as they are. With a null `state` there are no
// textures to upload to. Needs PlainGlState.
void LoadDebugPictures(const RenderState* state, const DebugPicture* table,
                       DebugPictures& pictures);

// Draws the pictures in use over the output target, which stays bound.
void DrawDebugPictures(const RenderState& state, const DebugPictures& pictures);

}  // namespace zuqel

#endif  // ZUQEL_RENDER_DEBUG_PICTURES_H_
