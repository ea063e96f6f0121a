// A session for benchmarks.
#ifndef ZUQEL_BENCH_GL_SESSION_H_
#define ZUQEL_BENCH_GL_SESSION_H_

#include <zuQelRT_GL.h>

#include <array>
#include <cstdint>
#include <stdexcept>

#include "plane_image.h"

namespace zuqel::bench {

// A running session, off screen. Its programs are compiled, or come from a
// cache that a session before it has filled.
class GlSession {
 public:
  GlSession(Size frame, Size map, uint8_t* program_cache = nullptr) {
    const GLInitInfo info = {.PreviewWidth = frame.width,
                             .PreviewHeight = frame.height,
                             .DepthWidth = map.width,
                             .DepthHeight = map.height,
                             .WorkWidth = map.width,
                             .WorkHeight = map.height,
                             .OutputWidth = 0,
                             .OutputHeight = 0,
                             .PortraitMode = 0,
                             .offmode = 1,
                             .srcformat = ZUQEL_SRCFORMAT_NV21,
                             .GraphicBufferFlag = 0};
    const std::array<uint8_t, 512> calibration = {};
    if (zuQelRT_GLInitV1_1(calibration.data(), calibration.size(), nullptr, 0,
                           &info, program_cache) != ZUQEL_SUCCESS) {
      throw std::runtime_error("no session: is there an OpenGL ES driver?");
    }
    zuQelRT_GenRefocusMap_init();
  }
  ~GlSession() {
    zuQelRT_GLClose();
    zuQelRT_GenRefocusMap_Deinit();
  }
  GlSession(const GlSession&) = delete;
  GlSession& operator=(const GlSession&) = delete;
};

}  // namespace zuqel::bench

#endif  // ZUQEL_BENCH_GL_SESSION_H_
