// What a caller hands to calls, each buffer as long as the C header says.
#ifndef ZUQEL_FUZZ_FRAME_H_
#define ZUQEL_FUZZ_FRAME_H_

#include <zuQelRT_GL.h>

#include <cstdint>
#include <vector>

#include "caller_frame.h"
#include "input.h"

namespace zuqel::fuzz {

struct Frame {
  Frame(const GLInitInfo& info, Input& input)
      : luma(Plane(info.PreviewWidth, info.PreviewHeight, input)),
        chroma(Plane(info.PreviewWidth, info.PreviewHeight / 2, input)),
        weights(Plane(info.WorkWidth, info.WorkHeight, input)),
        depth_map(Plane(info.DepthWidth, info.DepthHeight, input)),
        depth(input
                  .Draw<uint16_t>({static_cast<int32_t>(CallerFrame::Area(
                                       info.DepthWidth, info.DepthHeight)),
                                   1},
                                  input.Flag() ? 1100 : UINT16_MAX)
                  .values) {
    // An empty buffer is not a null one.
    for (auto* plane : {&luma, &chroma, &weights, &depth_map}) {
      plane->reserve(1);
    }
    depth.reserve(1);
  }

  static std::vector<uint8_t> Plane(int32_t width, int32_t height,
                                    Input& input) {
    return input.Bytes(CallerFrame::Area(width, height));
  }

  std::vector<uint8_t> luma, chroma, weights, depth_map;
  std::vector<uint16_t> depth;
};

}  // namespace zuqel::fuzz

#endif  // ZUQEL_FUZZ_FRAME_H_
