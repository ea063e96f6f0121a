// Renders frames on the GPU.
#include <zuQelRT_GL.h>

#include <algorithm>

#include "api/session.h"
#include "base/clock.h"
#include "base/log.h"
#include "frame/bokeh_frame.h"

namespace {

using zuqel::FrameCall;
using zuqel::Session;

constexpr float kStrongestFNumber = 1.0F;
constexpr float kWeakestFNumber = 10.0F;

uint32_t RunFrameCall(FrameCall call) {
  const uint32_t start = zuqel::MillisecondClock();
  Session& session = zuqel::TheSession();
  const auto in_progress = session.Enter(zuqel::kFrameCalls);
  if (call.bypass && session.gInfo.offmode != 0) {
    ZUQEL_LOG("Qel Bokeh bypass");
    session.frames.counters.frame_index = 0;
    return ZUQEL_SUCCESS;
  }
  if (call.luma == nullptr || call.chroma == nullptr) {
    ZUQEL_LOG(
        "Pointer is NULL in GLStartV1, a_pucInputImage = 0x%x, "
        "a_pucInputCbCrImage = 0x%x",
        zuqel::Low32(call.luma), zuqel::Low32(call.chroma));
    return ZUQEL_NULL_POINTER;
  }
  call.f_number = std::clamp(call.f_number, kStrongestFNumber, kWeakestFNumber);
  call.portrait = session.PortraitFlag;
  zuqel::RenderBokehFrame(session.frame_setup, call, session.RunningFrame(),
                          session.frames);
  ZUQEL_LOG("%s take = %d (ms)",
            call.from_depth ? "GLStartV1HWDepth" : "GLStartV1",
            zuqel::ElapsedSince(start));
  if (!call.from_depth) ZUQEL_LOG("zuQelRT_GLStartV1 -");
  return ZUQEL_SUCCESS;
}

}  // namespace

uint32_t zuQelRT_GLStartV1(uint8_t* a_pucInputImage,
                           uint8_t* a_pucInputCbCrImage,
                           const uint8_t* weightMap, uint32_t focusX,
                           uint32_t focusY, int32_t bypass, FocusRect rect,
                           float fNumber) {
  ZUQEL_LOG("zuQelRT_GLStartV1 +");
  return RunFrameCall({.luma = a_pucInputImage,
                       .chroma = a_pucInputCbCrImage,
                       .weights = weightMap,
                       .focus_x = focusX,
                       .focus_y = focusY,
                       .bypass = bypass != 0,
                       .rect = rect,
                       .f_number = fNumber});
}

uint32_t zuQelRT_GLStartV1HWDepth(uint8_t* a_pucInputImage,
                                  uint8_t* a_pucInputCbCrImage, uint16_t* depth,
                                  uint32_t focusX, uint32_t focusY,
                                  int32_t bypass, FocusRect rect,
                                  float fNumber) {
  return RunFrameCall({.luma = a_pucInputImage,
                       .chroma = a_pucInputCbCrImage,
                       .depth = depth,
                       .from_depth = true,
                       .focus_x = focusX,
                       .focus_y = focusY,
                       .bypass = bypass != 0,
                       .rect = rect,
                       .f_number = fNumber});
}
