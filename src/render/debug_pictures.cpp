// Loads and draws debug pictures.
#include "render/debug_pictures.h"

#include <algorithm>
#include <cstddef>

#include "base/buffer.h"
#include "base/log.h"

namespace zuqel {
namespace {

bool IsInUse(const DebugPicture& picture) {
  return picture.pData != nullptr && picture.iWidth != 0 &&
         picture.iHeight != 0;
}

}  // namespace

void LoadDebugPictures(DebugTextures* textures, const DebugPicture* table,
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
    if (textures == nullptr) continue;
    (*textures)[i].Upload(GL_RGBA, {picture.iWidth, picture.iHeight},
                          picture.pData);
  }
}

void DrawDebugPictures(Drawing& drawing, LinkedProgram& copy_program,
                       DebugTextures& textures, GLuint framebuffer,
                       const DebugPictures& pictures) {
  if (!pictures.show) return;
  for (size_t i = 0; i < pictures.table.size(); ++i) {
    const DebugPicture& picture = pictures.table[i];
    if (!IsInUse(picture)) continue;
    glUseProgram(copy_program.name());
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    drawing.SetViewport({picture.iX, picture.iY,
                         NonNegative(picture.iDrawWidth),
                         NonNegative(picture.iDrawHeight)});
    if (pictures.blend) {
      glEnable(GL_BLEND);
      glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    }
    if (!copy_program.exists()) continue;
    drawing.SetTexture(copy_program, {"inputImageTexture", 0, textures[i]});
    drawing.DrawQuad(copy_program, Quad::kUpright);
  }
}

}  // namespace zuqel
