// Moves a frame and its weights or disparity into textures.
#ifndef ZUQEL_FRAME_FRAME_UPLOAD_H_
#define ZUQEL_FRAME_FRAME_UPLOAD_H_

#include <cstddef>
#include <cstdint>
#include <span>

#include "base/plane.h"
#include "frame/frame_setup.h"
#include "frame/passes.h"
#include "render/plane_conversion.h"

namespace zuqel {

// Uploads are made with PlainGlState.

// Weights go to the refocus texture, clamped to the edge. `rgba` has room for a
// word for each of them.
void UploadWeights(RenderState& state, Plane<const uint8_t> weights,
                   std::span<uint32_t> rgba);

// Disparity goes to the refocus texture, repeated beyond its edges.
void UploadDepth(RenderState& state, Plane<const uint16_t> depth,
                 std::span<uint32_t> rgba);

// Bytes of scratch that UploadFrame needs: none unless the preview has an odd
// side.
size_t ChromaScratchBytes(const FrameSetup& setup);

// The frame by its kind of upload: NV21 and planar frames to textures for each
// of their planes, chroma sampled nearest off screen, so that a sharp pixel's
// planes come back exactly; others as one texture of `packed` pixels, which
// kFormatPacked fills first.
void UploadFrame(RenderState& state, const FrameSetup& setup,
                 const Frame& frame, std::span<uint32_t> packed,
                 std::span<uint8_t> chroma_scratch);

}  // namespace zuqel

#endif  // ZUQEL_FRAME_FRAME_UPLOAD_H_
