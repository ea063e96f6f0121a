// Uploads textures.
#include "frame/frame_upload.h"

#include <algorithm>
#include <cstring>

namespace zuqel {
namespace {

size_t Area(int32_t width, int32_t height) {
  return static_cast<size_t>(width) * static_cast<size_t>(height);
}

// Where the U plane of a planar frame begins, and the bytes of each plane. An
// odd height makes the plane reach past the chroma buffer.
size_t UPlaneOffset(ImageSize size) {
  return Area(size.height, size.width / 2) / 2;
}
size_t ChromaPlaneBytes(ImageSize size) {
  return Area(size.width / 2, size.height / 2);
}

ImageSize HalfOf(ImageSize size) {
  return {size.width / 2, size.height / 2};
}

void UploadLuma(RenderState& state, Plane<const uint8_t> luma) {
  state.inputs[kInputY].Upload(GL_LUMINANCE, luma.extent(), luma.data);
}

// The U plane; bytes past the end of the buffer are 0.
const uint8_t* UPlane(std::span<const uint8_t> chroma, ImageSize size,
                      std::span<uint8_t> scratch) {
  const size_t offset = UPlaneOffset(size);
  const size_t count = ChromaPlaneBytes(size);
  if (offset + count <= chroma.size()) return chroma.data() + offset;
  const size_t inside =
      offset < chroma.size() ? std::min(count, chroma.size() - offset) : 0;
  if (inside > 0) std::memcpy(scratch.data(), &chroma[offset], inside);
  std::memset(scratch.data() + inside, 0, count - inside);
  return scratch.data();
}

// The whole pairs of each chroma row, without the odd byte that ends the rows
// of an odd width.
const uint8_t* ChromaPairs(const Frame& frame, std::span<uint8_t> scratch) {
  const auto width = static_cast<size_t>(frame.luma.width);
  if (width % 2 == 0) return frame.chroma.data();
  const auto rows = static_cast<size_t>(frame.luma.height / 2);
  for (size_t y = 0; y < rows; ++y) {
    std::memcpy(scratch.data() + y * (width - 1),
                frame.chroma.data() + y * width, width - 1);
  }
  return scratch.data();
}

void UploadNv21(RenderState& state, const Frame& frame,
                std::span<uint8_t> scratch) {
  UploadLuma(state, frame.luma);
  state.inputs[kInputUV].Upload(GL_LUMINANCE_ALPHA, HalfOf(frame.luma.extent()),
                                ChromaPairs(frame, scratch));
}

void UploadPlanar(RenderState& state, const Frame& frame, ImageSize size,
                  std::span<uint8_t> scratch) {
  UploadLuma(state, frame.luma);
  state.inputs[kInputUV].Upload(GL_LUMINANCE, HalfOf(size),
                                UPlane(frame.chroma, size, scratch));
  state.inputs[kInputV].Upload(GL_LUMINANCE, HalfOf(size), frame.chroma.data());
}

}  // namespace

void UploadWeights(RenderState& state, Plane<const uint8_t> weights,
                   std::span<uint32_t> rgba) {
  PackWeights(weights, rgba);
  state.inputs[kInputRefocus].Upload(GL_RGBA, weights.extent(), rgba.data());
}

void UploadDepth(RenderState& state, Plane<const uint16_t> depth,
                 std::span<uint32_t> rgba) {
  PackDepth(depth, rgba);
  state.inputs[kInputRefocus].Upload(GL_RGBA, depth.extent(), rgba.data(),
                                     GL_REPEAT);
}

size_t ChromaScratchBytes(const FrameSetup& setup) {
  const auto [width, height] = setup.preview;
  switch (UploadKindOf(setup)) {
    case UploadKind::kNv21:
      return width % 2 == 0 ? 0 : Area(width - 1, height / 2);
    case UploadKind::kPlanar: {
      const size_t plane = ChromaPlaneBytes(setup.preview);
      const bool is_inside =
          UPlaneOffset(setup.preview) + plane <= Area(width, height / 2);
      return is_inside ? 0 : plane;
    }
    case UploadKind::kPacked:
      return 0;
  }
  return 0;
}

void UploadFrame(RenderState& state, const FrameSetup& setup,
                 const Frame& frame, std::span<uint32_t> packed,
                 std::span<uint8_t> chroma_scratch) {
  switch (UploadKindOf(setup)) {
    case UploadKind::kNv21:
      UploadNv21(state, frame, chroma_scratch);
      break;
    case UploadKind::kPlanar:
      UploadPlanar(state, frame, setup.preview, chroma_scratch);
      break;
    case UploadKind::kPacked:
      if (setup.source_format == kFormatPacked) PackFrame(frame, packed);
      state.inputs[kInputY].Upload(GL_RGBA, setup.preview, packed.data());
      break;
  }
}

}  // namespace zuqel
