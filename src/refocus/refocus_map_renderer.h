// Draws refocus maps on the GPU: weights from disparity, and the softening of a
// map that the CPU has cleaned in between.
#ifndef ZUQEL_REFOCUS_REFOCUS_MAP_RENDERER_H_
#define ZUQEL_REFOCUS_REFOCUS_MAP_RENDERER_H_

#include <array>
#include <cstdint>
#include <span>

#include "base/plane.h"
#include "gl/gl_handle.h"
#include "gl/in_context.h"
#include "gl/program_cache.h"
#include "render/pass_draws.h"
#include "render/shader_catalogue.h"

namespace zuqel {

// All GL objects of the refocus maps. The two targets have the size of the map:
// RGBA colour and 24-bit depth. The programs are DepthWeightProgram,
// AllInFocusWeightProgram, BlurHProgram and BlurVProgram. Destroyed from the
// last.
struct RefocusMapState {
  bool is_es3 = false;  // their context
  ProgramTable programs;
  std::array<Renderbuffer, 2> depth_buffers;
  std::array<Framebuffer, 2> framebuffers;
  std::array<ImageTexture, 2> colour_textures;
  ImageTexture map_texture;
  ImageTexture depth_texture;
};

// The functions below need PlainGlState; `rgba` is room for one word for each
// pixel of the map at hand.

// Makes textures, targets and programs in the current context; leaves
// framebuffer 0 bound. `program_cache` is as in PrepareRefocusMapPrograms.
InContext<RefocusMapState> MakeRefocusMapState(
    ImageSize map_size, const ProgramCache& program_cache);

// Packs disparity and gives it to the depth texture.
void UploadRefocusDepth(RefocusMapState& state, Plane<const uint16_t> disparity,
                        std::span<uint32_t> rgba);

// Draws the weights of the uploaded disparity. `program` is DepthWeightProgram
// or AllInFocusWeightProgram.
void PassRefocusWeights(RefocusMapState& state, Drawing& drawing,
                        ProgramRole program, ImageSize map_size,
                        ImageSize depth_size,
                        const DepthWeightUniforms& uniforms);

// Draws `map` blurred by one texel, down and then across.
void PassSoftenRefocusMap(RefocusMapState& state, Drawing& drawing,
                          Plane<const uint8_t> map, std::span<uint32_t> rgba);

// Reads what the last of these passes has drawn; zeros where it could not draw.
void ReadRefocusMap(ImageSize map_size, std::span<uint32_t> rgba);

}  // namespace zuqel

#endif  // ZUQEL_REFOCUS_REFOCUS_MAP_RENDERER_H_
