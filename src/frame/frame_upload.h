// Moves a frame and its weights or depth into textures.
#ifndef ZUQEL_FRAME_UPLOAD_H_
#define ZUQEL_FRAME_UPLOAD_H_

#include <cstdint>

#include "base/buffer.h"
#include "frame/passes.h"
#include "render/plane_conversion.h"

namespace zuqel {

// Uploads are made with PlainGlState. Buffers are scratch that the next frame
// uses again; a function that returns false found no memory for it and uploaded
// nothing.

// Weights go to the refocus texture, clamped to the edge.
[[nodiscard]] bool UploadWeights(const RenderState& state,
                                 Plane<const uint8_t> weights, Buffer& rgba);

// Disparity goes to the refocus texture, repeated beyond its edges.
[[nodiscard]] bool UploadDepth(const RenderState& state,
                               Plane<const uint16_t> depth, Buffer& rgba);

// NV21: luma to the Y texture, chroma to the UV texture. `sharp_chroma` samples
// chroma nearest, so that a sharp pixel's planes come back exactly; smooth
// chroma is for display.
[[nodiscard]] bool UploadNv21(const RenderState& state, const Frame& frame,
                              bool sharp_chroma, Buffer& scratch);

// Luma to the Y texture, the two chroma planes to the UV (U) and V textures.
[[nodiscard]] bool UploadPlanar(const RenderState& state, const Frame& frame,
                                Buffer& scratch);

// One pixel a word for each pixel of the image, to the Y texture.
void UploadPacked(const RenderState& state, ImageSize size,
                  const Buffer& packed_frame);

}  // namespace zuqel

#endif  // ZUQEL_FRAME_UPLOAD_H_
