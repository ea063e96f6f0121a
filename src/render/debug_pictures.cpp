// Loads and draws debug pictures.
#include "render/debug_pictures.h"

#include <algorithm>
#include <cstddef>

#include "base/buffer.h"
#include "base/log.h"
#include "gl/texture.h"

namespace zuqel {
namespace {

bool IsInUse(const DebugPicture& picture) {
  return picture.pData != nullptr && picture.iWidth != 0 &&
         picture.iHeight != 0;
}

}  // namespace

void LoadDebugPictures(const RenderState* state, const DebugPicture* table,
                       DebugPictures& pictures) {
  std::copy_n(table, pictures.table.size(), pictures.table.begin());
  for (size_t i = 0; i < pictures.table.size(); ++i) {
    const DebugPicture& picture = pictures.table[i];
    if (!IsInUse(picture)) continue;
    ZUQEL_LOG(
        "i = %d, picture[i].pData = 0x%x , picture[i].pData = %d, "
        "picture[i].iHeight = %d",
        static_cast<int>(i), Low32(picture.pData), picture.iWidth,
        picture.iHeight);
    if (state == nullptr) continue;
    UploadTexture(state->debug_pictures[i].get(), GL_RGBA, picture.iWidth,
                  picture.iHeight, picture.pData, {});
  }
}

void DrawDebugPictures(const RenderState& state,
                       const DebugPictures& pictures) {
  if (!pictures.show) return;
  for (size_t i = 0; i < pictures.table.size(); ++i) {
    const DebugPicture& picture = pictures.table[i];
    if (!IsInUse(picture)) continue;
    PassDebugPicture(state, state.debug_pictures[i].get(),
                     {picture.iX, picture.iY, NonNegative(picture.iDrawWidth),
                      NonNegative(picture.iDrawHeight)},
                     pictures.blend);
  }
}

}  // namespace zuqel
