// What a caller hands to a session: sizes, planes and maps.
#ifndef ZUQEL_TESTING_CALLER_FRAME_H_
#define ZUQEL_TESTING_CALLER_FRAME_H_

#include <zuQelRT_GL.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "base/buffer.h"
#include "guarded_memory.h"
#include "random.h"
#include "test_scene.h"

namespace zuqel {

// 640 x 480 NV21 off screen with maps of 320 x 240.
inline GLInitInfo DefaultInfo() {
  return {.PreviewWidth = 640,
          .PreviewHeight = 480,
          .DepthWidth = 320,
          .DepthHeight = 240,
          .WorkWidth = 320,
          .WorkHeight = 240,
          .OutputWidth = 640,
          .OutputHeight = 480,
          .PortraitMode = 0,
          .offmode = 1,
          .srcformat = 0,
          .GraphicBufferFlag = 0};
}

// Frames of 64 x 48, or as wide as given, shown in their own size, with maps of
// 320 x 240.
inline GLInitInfo SmallPreviewInfo(int32_t off_screen = 1, int32_t width = 64) {
  GLInitInfo info = DefaultInfo();
  info.PreviewWidth = info.OutputWidth = width;
  info.PreviewHeight = info.OutputHeight = 48;
  info.offmode = off_screen;
  return info;
}

// A preview of 64 x 48 with depth of 16 x 12, weights of 32 x 24 and an output
// of 20 x 10.
inline GLInitInfo SmallInfo(int32_t off_screen = 1, int32_t format = 0) {
  return {64, 48, 16, 12, 32, 24, 20, 10, 0, off_screen, format, 0};
}

// The arguments of a frame call but for its planes.
struct FrameArguments {
  bool from_depth = false;
  int32_t bypass = 0;
  FocusRect rect = {0, 0, 0, 0};
  float f_number = 1;
  uint32_t focus_x = 3, focus_y = 4;
};

inline uint32_t RenderFrame(auto& frame, const FrameArguments& call) {
  const auto& [from_depth, bypass, rect, f_number, x, y] = call;
  if (from_depth) {
    return zuQelRT_GLStartV1HWDepth(frame.luma.data(), frame.chroma.data(),
                                    frame.depth.data(), x, y, bypass, rect,
                                    f_number);
  }
  return zuQelRT_GLStartV1(frame.luma.data(), frame.chroma.data(),
                           frame.weights.data(), x, y, bypass, rect, f_number);
}

// Noise with maps of 320 x 240, both sharp and blurred somewhere.
struct TestFrame {
  explicit TestFrame(const GLInitInfo& info = SmallPreviewInfo(), int seed = 1)
      : luma(PatternBytes(Pattern::kNoise, info.PreviewWidth,
                          info.PreviewHeight, seed)),
        chroma(PatternBytes(Pattern::kNoise, info.PreviewWidth,
                            info.PreviewHeight / 2, seed + 1)),
        weights(PatternBytes(Pattern::kRamp, 320, 240, 0)),
        depth(DisparityScene(320, 240, 200, 700)) {}

  uint32_t Render(bool from_depth = false, int32_t bypass = 0) {
    return RenderFrame(*this, {.from_depth = from_depth, .bypass = bypass});
  }

  std::vector<uint8_t> luma, chroma, weights;
  std::vector<uint16_t> depth;
};

// Noise, weights of zero and depth with holes, of the sizes that a session
// takes and each right before a protected page. Depth lies at two distances, so
// that a focus has a background and a focus region grows.
struct CallerFrame {
  explicit CallerFrame(const GLInitInfo& info)
      : luma(Noise(Area(info.PreviewWidth, info.PreviewHeight), 1)),
        chroma(Noise(Area(info.PreviewWidth, info.PreviewHeight / 2), 2)),
        weights(Area(info.WorkWidth, info.WorkHeight)),
        depth(Area(info.DepthWidth, info.DepthHeight)) {
    constexpr std::array<uint16_t, 4> kDepths = {0xFFFF, 1023, 500, 200};
    for (size_t i = 0; i < depth.size(); ++i) depth.data()[i] = kDepths[i % 4];
  }

  static size_t Area(int32_t width, int32_t height) {
    return ByteCount(width, height, 1).value_or(0);
  }

  // All that a call may change.
  [[nodiscard]] std::vector<uint16_t> Contents() const {
    std::vector<uint16_t> all(depth.span().begin(), depth.span().end());
    all.insert(all.end(), luma.span().begin(), luma.span().end());
    all.insert(all.end(), chroma.span().begin(), chroma.span().end());
    return all;
  }

  [[nodiscard]] uint32_t Render(const FrameArguments& call) const {
    return RenderFrame(*this, call);
  }

  GuardedMemory<uint8_t> luma, chroma, weights;
  GuardedMemory<uint16_t> depth;

 private:
  static std::vector<uint8_t> Noise(size_t count, uint64_t seed) {
    return Random(seed).Values<uint8_t>(count);
  }
};

}  // namespace zuqel

#endif  // ZUQEL_TESTING_CALLER_FRAME_H_
