// A frame with its maps.
#ifndef ZUQEL_TESTS_TEST_FRAME_H_
#define ZUQEL_TESTS_TEST_FRAME_H_

#include <zuQelRT_GL.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "scoped_property.h"
#include "test_scene.h"
#include "test_session.h"

namespace zuqel {

// Frames of 64 x 48, or as wide as given, shown in their own size.
inline GLInitInfo SmallInfo(int32_t off_screen = 1, int32_t width = 64) {
  GLInitInfo info = DefaultInfo();
  info.PreviewWidth = info.OutputWidth = width;
  info.PreviewHeight = info.OutputHeight = 48;
  info.offmode = off_screen;
  return info;
}

// Noise with maps of 320 x 240, both sharp and blurred somewhere. The focus
// point is (3, 4).
struct TestFrame {
  explicit TestFrame(const GLInitInfo& info = SmallInfo(), int seed = 1)
      : luma(PatternBytes(Pattern::kNoise, info.PreviewWidth,
                          info.PreviewHeight, seed)),
        chroma(PatternBytes(Pattern::kNoise, info.PreviewWidth,
                            info.PreviewHeight / 2, seed + 1)),
        weights(PatternBytes(Pattern::kRamp, 320, 240, 0)),
        depth(DisparityScene(320, 240, 200, 700)) {}

  uint32_t Render(bool from_depth = false, int32_t bypass = 0) {
    return from_depth
               ? zuQelRT_GLStartV1HWDepth(luma.data(), chroma.data(),
                                          depth.data(), 3, 4, bypass,
                                          {0, 0, 0, 0}, 1)
               : zuQelRT_GLStartV1(luma.data(), chroma.data(), weights.data(),
                                   3, 4, bypass, {0, 0, 0, 0}, 1);
  }

  std::vector<uint8_t> luma, chroma, weights;
  std::vector<uint16_t> depth;
};

}  // namespace zuqel

#endif  // ZUQEL_TESTS_TEST_FRAME_H_
