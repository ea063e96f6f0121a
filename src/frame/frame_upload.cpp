// Uploads textures.
#include "frame/frame_upload.h"

#include <algorithm>
#include <cstring>

#include "gl/texture.h"

namespace zuqel {
namespace {

constexpr TextureSampling kSmooth = {GL_LINEAR, GL_CLAMP_TO_EDGE};
constexpr TextureSampling kSharp = {GL_NEAREST, GL_CLAMP_TO_EDGE};
constexpr TextureSampling kRepeated = {GL_LINEAR, GL_REPEAT};

void UploadLuma(const RenderState& state, Plane<const uint8_t> luma) {
  UploadTexture(state.inputs[kInputY].get(), GL_LUMINANCE, luma.width,
                luma.height, luma.data, kSmooth);
}

// `count` bytes of the chroma buffer from `offset` on; those outside of it, as
// odd image heights have them, are 0. Null when there is no memory.
const uint8_t* ChromaBytes(std::span<const uint8_t> chroma, size_t offset,
                           size_t count, Buffer& scratch) {
  if (offset + count <= chroma.size()) return chroma.data() + offset;
  if (!scratch.Reserve(count)) return nullptr;
  const size_t inside =
      offset < chroma.size() ? std::min(count, chroma.size() - offset) : 0;
  if (inside > 0) std::memcpy(scratch.bytes(), &chroma[offset], inside);
  std::memset(scratch.bytes() + inside, 0, count - inside);
  return scratch.bytes();
}

// The whole pairs of each chroma row, without the odd byte that ends the rows
// of an odd width. Null when there is no memory.
const uint8_t* ChromaPairs(const Frame& frame, Buffer& scratch) {
  const auto width = static_cast<size_t>(frame.luma.width);
  if (width % 2 == 0) return frame.chroma.data();
  const auto rows = static_cast<size_t>(frame.luma.height / 2);
  if (!scratch.Reserve((width - 1) * rows)) return nullptr;
  for (size_t y = 0; y < rows; ++y) {
    std::memcpy(scratch.bytes() + y * (width - 1),
                frame.chroma.data() + y * width, width - 1);
  }
  return scratch.bytes();
}

}  // namespace

bool UploadWeights(const RenderState& state, Plane<const uint8_t> weights,
                   Buffer& rgba) {
  if (!rgba.Reserve(ByteCount(weights.width, weights.height, 4))) return false;
  PackWeights(weights, rgba.words());
  UploadTexture(state.inputs[kInputRefocus].get(), GL_RGBA, weights.width,
                weights.height, rgba.bytes(), kSmooth);
  return true;
}

bool UploadDepth(const RenderState& state, Plane<const uint16_t> depth,
                 Buffer& rgba) {
  if (!rgba.Reserve(ByteCount(depth.width, depth.height, 4))) return false;
  PackDepth(depth, rgba.words());
  UploadTexture(state.inputs[kInputRefocus].get(), GL_RGBA, depth.width,
                depth.height, rgba.bytes(), kRepeated);
  return true;
}

bool UploadNv21(const RenderState& state, const Frame& frame, bool sharp_chroma,
                Buffer& scratch) {
  const uint8_t* pairs = ChromaPairs(frame, scratch);
  if (pairs == nullptr) return false;
  UploadLuma(state, frame.luma);
  UploadTexture(state.inputs[kInputUV].get(), GL_LUMINANCE_ALPHA,
                frame.luma.width / 2, frame.luma.height / 2, pairs,
                sharp_chroma ? kSharp : kSmooth);
  return true;
}

bool UploadPlanar(const RenderState& state, const Frame& frame,
                  Buffer& scratch) {
  const int32_t half_width = frame.luma.width / 2;
  const int32_t half_height = frame.luma.height / 2;
  const auto plane_size =
      static_cast<size_t>(half_width) * static_cast<size_t>(half_height);
  const size_t u_offset = static_cast<size_t>(frame.luma.height) *
                          static_cast<size_t>(half_width) / 2;
  const uint8_t* u = ChromaBytes(frame.chroma, u_offset, plane_size, scratch);
  if (u == nullptr) return false;
  UploadLuma(state, frame.luma);
  UploadTexture(state.inputs[kInputUV].get(), GL_LUMINANCE, half_width,
                half_height, u, kSharp);
  UploadTexture(state.inputs[kInputV].get(), GL_LUMINANCE, half_width,
                half_height, frame.chroma.data(), kSharp);
  return true;
}

void UploadPacked(const RenderState& state, ImageSize size,
                  const Buffer& packed_frame) {
  UploadTexture(state.inputs[kInputY].get(), GL_RGBA, size.width, size.height,
                packed_frame.bytes(), kSmooth);
}

}  // namespace zuqel
