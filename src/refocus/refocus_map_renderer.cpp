// Targets and passes of the refocus maps.
#include "refocus/refocus_map_renderer.h"

#include <GLES2/gl2ext.h>

#include <algorithm>
#include <cstddef>
#include <utility>

#include "gl/extensions.h"
#include "gl/gl_state.h"
#include "render/cached_programs.h"
#include "render/plane_conversion.h"

namespace zuqel {
namespace {

constexpr float kSofteningScale = 1.0F;

// Every pass has the size of the map and draws it upright.
struct PassRow {
  ProgramRole program;
  size_t target;
};
constexpr PassRow kSoftenDown = {ProgramRole::BlurVProgram, 1};
constexpr PassRow kSoftenAcross = {ProgramRole::BlurHProgram, 0};

Pass PassOf(const PassRow& row, RefocusMapState& state, ImageSize size) {
  return {state.programs[row.program], state.framebuffers[row.target].get(),
          size, Quad::kUpright};
}

void AttachDepth(GLuint depth_buffer, ImageSize size) {
  glBindRenderbuffer(GL_RENDERBUFFER, depth_buffer);
  if (FitsDriver(GL_MAX_RENDERBUFFER_SIZE, size)) {
    glRenderbufferStorage(GL_RENDERBUFFER, GL_DEPTH_COMPONENT24_OES, size.width,
                          size.height);
  }
  glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT,
                            GL_RENDERBUFFER, depth_buffer);
}

void SetUpTarget(RefocusMapState& state, size_t index, ImageSize size) {
  ImageTexture& colour = state.colour_textures[index];
  colour.Upload(GL_RGBA, size, nullptr, GL_REPEAT);
  glBindFramebuffer(GL_FRAMEBUFFER, state.framebuffers[index].get());
  glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D,
                         colour.get(), 0);
  AttachDepth(state.depth_buffers[index].get(), size);
}

}  // namespace

InContext<RefocusMapState> MakeRefocusMapState(
    ImageSize map_size, const ProgramCache& program_cache) {
  RefocusMapState state;
  state.is_es3 = IsEs3();
  const PlainGlState plain_state(state.is_es3);
  state.depth_texture = ImageTexture::Generate();
  state.map_texture = ImageTexture::Generate();
  for (ImageTexture& texture : state.colour_textures) {
    texture = ImageTexture::Generate();
  }
  for (Framebuffer& framebuffer : state.framebuffers) {
    framebuffer = Framebuffer::Generate();
  }
  for (Renderbuffer& buffer : state.depth_buffers) {
    buffer = Renderbuffer::Generate();
  }
  SetUpTarget(state, 0, map_size);
  SetUpTarget(state, 1, map_size);
  glBindFramebuffer(GL_FRAMEBUFFER, 0);
  PrepareRefocusMapPrograms(program_cache, state.programs);
  return InContext<RefocusMapState>(std::move(state));
}

void UploadRefocusDepth(RefocusMapState& state, Plane<const uint16_t> disparity,
                        std::span<uint32_t> rgba) {
  PackDepth(disparity, rgba);
  state.depth_texture.Upload(GL_RGBA, disparity.extent(), rgba.data(),
                             GL_REPEAT);
}

void PassRefocusWeights(RefocusMapState& state, Drawing& drawing,
                        ProgramRole program, ImageSize map_size,
                        ImageSize depth_size,
                        const DepthWeightUniforms& uniforms) {
  DrawDepthWeight(drawing, PassOf({program, 0}, state, map_size),
                  state.depth_texture, depth_size, uniforms);
}

void PassSoftenRefocusMap(RefocusMapState& state, Drawing& drawing,
                          Plane<const uint8_t> map, std::span<uint32_t> rgba) {
  PackRefocusMap(map, rgba);
  const ImageSize size = map.extent();
  state.map_texture.Upload(GL_RGBA, size, rgba.data(), GL_REPEAT);
  DrawBlur(drawing, PassOf(kSoftenDown, state, size), state.map_texture, size,
           kSofteningScale);
  DrawBlur(drawing, PassOf(kSoftenAcross, state, size),
           state.colour_textures[1], size, kSofteningScale);
}

void ReadRefocusMap(ImageSize map_size, std::span<uint32_t> rgba) {
  std::fill(rgba.begin(), rgba.end(), 0U);
  glReadPixels(0, 0, map_size.width, map_size.height, GL_RGBA, GL_UNSIGNED_BYTE,
               rgba.data());
}

}  // namespace zuqel
