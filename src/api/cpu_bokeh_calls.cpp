// Renders a frame without a GPU.
#include <zuQelRT_GL.h>

#include <cstddef>

#include "api/session.h"
#include "base/clock.h"
#include "base/log.h"

uint32_t zuQelRT_Bokeh_ZU4410_DisparityBase_Expansion_CPU(uint8_t* yPlane,
                                                          uint8_t* vuPlane,
                                                          uint16_t* disparity,
                                                          int32_t a_dReX,
                                                          uint32_t a_dReY) {
  const uint32_t start = zuqel::MillisecondClock();
  if (yPlane == nullptr || vuPlane == nullptr || disparity == nullptr) {
    return ZUQEL_SUCCESS;
  }
  zuqel::Session& session = zuqel::TheSession();
  const auto in_progress = session.Enter(zuqel::kCpuFrameCalls);
  const auto [width, height] = session.frame_setup.preview;
  const auto [depth_width, depth_height] = session.frame_setup.depth;
  const auto chroma_bytes =
      static_cast<size_t>(width) * static_cast<size_t>(height / 2);
  const bool rendered = zuqel::RenderExpansion(
      {.luma = {yPlane, width, height},
       .chroma = {vuPlane, chroma_bytes},
       .disparity = {disparity, depth_width, depth_height},
       .focus_x = a_dReX,
       .focus_y = static_cast<int32_t>(a_dReY)},
      session.until_close->expansion, session.expansionFrameCounter);
  if (rendered) {
    ZUQEL_LOG("Bokeh_ZU4410_DisparityBase_Expansion take %d ms",
              zuqel::ElapsedSince(start));
  }
  return ZUQEL_SUCCESS;
}
