// Renders frames: the outer steps that both frame calls share.
#include <zuQelRT_GL.h>

#include <algorithm>
#include <cstddef>
#include <optional>
#include <span>

#include "api/session.h"
#include "base/clock.h"
#include "base/log.h"
#include "depth/statistics.h"
#include "depth/hole_filling.h"
#include "frame/focus_dot.h"
#include "frame/frame_upload.h"
#include "gl/frame_dump.h"
#include "gl/gl_state.h"

namespace {

using zuqel::BufferRole;
using zuqel::DumpName;
using zuqel::FocusPoint;
using zuqel::Frame;
using zuqel::FrameCounters;
using zuqel::FrameJob;
using zuqel::ImageSize;
using zuqel::Plane;
using zuqel::Session;

constexpr float kStrongestFNumber = 1.0F;
constexpr float kWeakestFNumber = 10.0F;
constexpr int32_t kDepthTrimPercent = 5;
constexpr uint32_t kFpsPeriodMs = 999;

// Arguments of a frame call. Where the two calls differ, `from_depth` says
// which one this is.
struct FrameCall {
  uint8_t* luma = nullptr;
  uint8_t* chroma = nullptr;
  const uint8_t* weights = nullptr;
  uint16_t* depth = nullptr;
  bool from_depth = false;
  uint32_t focus_x = 0;
  uint32_t focus_y = 0;
  int32_t bypass = 0;
  FocusRect rect = {};
  float f_number = 0;
};

ImageSize PreviewSize(const GLInitInfo& info) {
  return zuqel::SizeFrom(info.PreviewWidth, info.PreviewHeight);
}

Frame FrameOf(const FrameCall& call, const GLInitInfo& info) {
  const ImageSize size = PreviewSize(info);
  const auto chroma_bytes =
      static_cast<size_t>(size.width) * static_cast<size_t>(size.height / 2);
  return {{call.luma, size.width, size.height}, {call.chroma, chroma_bytes}};
}

Plane<const uint8_t> WeightsOf(const FrameCall& call, const GLInitInfo& info) {
  const ImageSize size = zuqel::SizeFrom(info.WorkWidth, info.WorkHeight);
  return {call.weights, size.width, size.height};
}

// A frame can be rendered where initialisation has made its buffers and where
// its GL objects live.
bool IsReady(Session& session) {
  return session.buffers[BufferRole::kReadBack].exists() &&
         zuqel::IsCurrent(session.frame.render_context);
}

FocusPoint FindFocus(const FrameCall& call, const GLInitInfo& info) {
  const auto centre =
      zuqel::CentreOfFocus(call.rect, info.PreviewWidth, info.PreviewHeight);
  if (!centre) {
    ZUQEL_LOG("focus rect too small");
    return {static_cast<int32_t>(call.focus_x),
            static_cast<int32_t>(call.focus_y)};
  }
  ZUQEL_LOG("focus rect ok");
  ZUQEL_LOG("rect.x = %d, rect.y = %d, rect.right = %d, rect.bottom = %d ",
            call.rect.x, call.rect.y, call.rect.right, call.rect.bottom);
  ZUQEL_LOG("Src_focus_X = %d, Src_focus_Y = %d", centre->x, centre->y);
  return *centre;
}

// Raw disparity under the focus point. A zero preview size counts as column or
// row 0.
uint16_t FocusDepth(const FrameCall& call, Plane<const uint16_t> depth,
                    ImageSize preview) {
  const auto scale = [](int32_t depth_size, uint32_t focus, int32_t size) {
    if (size == 0) return uint32_t{0};
    return static_cast<uint32_t>(depth_size) * focus /
           static_cast<uint32_t>(size);
  };
  return zuqel::ValueAt(depth, scale(depth.width, call.focus_x, preview.width),
                        scale(depth.height, call.focus_y, preview.height));
}

// Statistics of the disparity map, its holes filled, and its upload. Without a
// map everything stays as the frame before left it.
bool TakeDepth(Session& session, const FrameCall& call) {
  if (call.depth == nullptr) return true;
  const ImageSize size =
      zuqel::SizeFrom(session.gInfo.DepthWidth, session.gInfo.DepthHeight);
  const Plane<uint16_t> depth = {call.depth, size.width, size.height};
  const auto range = zuqel::GetDispRange(depth, kDepthTrimPercent);
  session.frame.depth_statistics = {
      range.min, range.max,
      FocusDepth(call, depth, PreviewSize(session.gInfo))};
  zuqel::FillDisparityHoles(depth);
  return zuqel::UploadDepth(session.frame.render, depth,
                            session.frame.depth_rgba);
}

bool TakeWeights(Session& session, const FrameCall& call) {
  if (call.weights == nullptr) return true;
  return zuqel::UploadWeights(session.frame.render,
                              WeightsOf(call, session.gInfo),
                              session.frame.weight_rgba);
}

bool UploadFrame(Session& session, const Frame& frame) {
  const auto& render = session.frame.render;
  zuqel::Buffer& scratch = session.frame.chroma_scratch;
  const zuqel::Buffer& packed = session.buffers[BufferRole::kPackedFrame];
  const bool off_screen = session.gInfo.offmode != 0;
  const int32_t format = session.gInfo.srcformat;
  if (!off_screen || format == zuqel::kFormatNv21) {
    return zuqel::UploadNv21(render, frame, off_screen, scratch);
  }
  if (format == zuqel::kFormatPlanar) {
    return zuqel::UploadPlanar(render, frame, scratch);
  }
  if (format == zuqel::kFormatPacked) zuqel::PackFrame(frame, packed.words());
  zuqel::UploadPacked(render, PreviewSize(session.gInfo), packed);
  return true;
}

DumpName DumpNameOf(const Session& session, const FrameCall& call) {
  return {session.frame.counters.dump_number,
          static_cast<int32_t>(call.focus_x),
          static_cast<int32_t>(call.focus_y)};
}

void DumpInputs(const Session& session, const FrameCall& call,
                const Frame& frame) {
  const DumpName name = DumpNameOf(session, call);
  zuqel::DumpFrame({frame.luma.data, frame.luma.size(), frame.luma.width,
                    frame.luma.height, "Bokeh"},
                   name);
  if (call.from_depth) return;
  const Plane<const uint8_t> weights = WeightsOf(call, session.gInfo);
  zuqel::DumpFrame(
      {weights.data, weights.size(), weights.width, weights.height, "RM"},
      name);
}

FrameJob JobOf(const Session& session, const FrameCall& call) {
  const GLInitInfo& info = session.gInfo;
  const auto& camera = session.camera;
  return {.image = PreviewSize(info),
          .output = zuqel::SizeFrom(info.OutputWidth, info.OutputHeight),
          .work = zuqel::SizeFrom(info.WorkWidth, info.WorkHeight),
          .source_format = info.srcformat,
          .off_screen = info.offmode != 0,
          .portrait = session.PortraitFlag,
          .bypass = call.bypass != 0,
          .focus_x = call.focus_x,
          .focus_y = call.focus_y,
          .f_number = call.f_number,
          .focal_length = camera.focal_length / camera.focal_length_divisor,
          .depth = call.from_depth ? &session.frame.depth_statistics : nullptr,
          .debug_pictures = &session.frame.debug_pictures,
          .dump_name = DumpNameOf(session, call)};
}

// Reads what was rendered and gives it to the caller: off screen, or whatever a
// graphic buffer holds.
void ReadResult(Session& session, const Frame& frame) {
  if (session.gInfo.GraphicBufferFlag != 0) {
    session.frame.graphic_buffer.ReadPixels(
        [&](std::span<const uint32_t> pixels) {
          zuqel::UnpackFrame(pixels, session.gInfo.srcformat, frame);
        });
    return;
  }
  const zuqel::Buffer& pixels = session.buffers[BufferRole::kReadBack];
  glReadPixels(0, 0, frame.luma.width, frame.luma.height, GL_RGBA,
               GL_UNSIGNED_BYTE, pixels.bytes());
  if (session.gInfo.offmode == 0) return;
  zuqel::UnpackFrame(pixels.words(), session.gInfo.srcformat, frame);
}

void CountFrame(FrameCounters& counters) {
  counters.dump_number += 1;
  counters.frames_since_start += 1;
  const uint32_t now = zuqel::MillisecondClock();
  if (now - counters.time_of_last_fps_line <= kFpsPeriodMs) return;
  ZUQEL_LOG("Bokeh lib FPS = %d",
            static_cast<int>(counters.frames_since_start -
                             counters.frames_at_last_fps_line));
  counters.time_of_last_fps_line = now;
  counters.frames_at_last_fps_line = counters.frames_since_start;
}

// All steps between the checks and the last log line of a call.
void RenderCall(Session& session, const FrameCall& call) {
  const GLInitInfo& info = session.gInfo;
  const Frame frame = FrameOf(call, info);
  DumpInputs(session, call, frame);
  const uint32_t preprocess_start = zuqel::MillisecondClock();
  const FocusPoint centre = FindFocus(call, info);
  bool ready = IsReady(session);
  if (ready && session.FocusDotEnable != 0) {
    zuqel::DrawFocusDot(frame.luma, centre);
  }

  std::optional<zuqel::PlainGlState> plain_state;
  if (ready) plain_state.emplace();
  ready = ready && (call.from_depth ? TakeDepth(session, call)
                                    : TakeWeights(session, call));
  if (info.offmode != 0) {
    ZUQEL_LOG("NV21 to 4444 a_dImgWidth = %d, a_dImgHeight = %d",
              info.PreviewWidth, info.PreviewHeight);
  }
  ready = ready && UploadFrame(session, frame);
  ZUQEL_LOG("*VX* zuQelRT_GL Preprocess = %d (ms)",
            zuqel::ElapsedSince(preprocess_start));
  ZUQEL_LOG("ret = 0x%x", ZUQEL_SUCCESS);

  const uint32_t refocusing_start = zuqel::MillisecondClock();
  zuqel::RenderFrame(ready ? &session.frame.render : nullptr,
                     JobOf(session, call));
  if (ready) ReadResult(session, frame);
  ZUQEL_LOG("gInfo.PreviewWidth, = %d, gInfo.PreviewHeight = %d",
            info.PreviewWidth, info.PreviewHeight);

  CountFrame(session.frame.counters);
  ZUQEL_LOG("*VX* zuQelRT_GL Refocusing = %d (ms)",
            zuqel::ElapsedSince(refocusing_start));
  session.frame.counters.frame_index += 1;
}

uint32_t RunFrameCall(FrameCall call) {
  const uint32_t start = zuqel::MillisecondClock();
  Session& session = zuqel::TheSession();
  if (call.bypass != 0 && session.gInfo.offmode != 0) {
    ZUQEL_LOG("Qel Bokeh bypass");
    session.frame.counters.frame_index = 0;
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
  RenderCall(session, call);
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
                       .bypass = bypass,
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
                       .bypass = bypass,
                       .rect = rect,
                       .f_number = fNumber});
}
