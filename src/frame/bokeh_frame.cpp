// Takes a frame through its stages.
#include "frame/bokeh_frame.h"

#include <optional>
#include <span>

#include "base/clock.h"
#include "base/log.h"
#include "frame/focus.h"
#include "frame/frame_renderer.h"
#include "frame/frame_upload.h"
#include "frame/intake.h"
#include "gl/frame_dump.h"

namespace zuqel {
namespace {

Plane<const uint8_t> WeightsOf(const FrameCall& call, const FrameSetup& setup) {
  return {call.weights, setup.work.width, setup.work.height};
}

void DumpInputs(const FrameSetup& setup, const FrameCall& call,
                const DumpName& name) {
  const Plane<uint8_t> luma = FrameOf(call, setup.preview).luma;
  DumpFrame({luma.data, luma.size(), luma.width, luma.height, "Bokeh"}, name);
  if (call.from_depth) return;
  const Plane<const uint8_t> weights = WeightsOf(call, setup);
  DumpFrame({weights.data, weights.size(), weights.width, weights.height, "RM"},
            name);
}

// Uploads weights or disparity. Without a map everything stays as the frame
// before left it.
void UploadMap(RenderState& state, const FrameSetup& setup,
               const FrameCall& call, const Buffer& rgba,
               DepthStatistics& statistics) {
  if (call.from_depth) {
    if (call.depth == nullptr) return;
    const Plane<uint16_t> depth = {call.depth, setup.depth.width,
                                   setup.depth.height};
    statistics = TakeDepth(setup, call, depth);
    UploadDepth(state, depth, rgba.words());
  } else if (call.weights != nullptr) {
    UploadWeights(state, WeightsOf(call, setup), rgba.words());
  }
}

// Reads what was rendered and gives it to the caller: off screen, or whatever a
// graphic buffer holds.
void ReadResult(const FrameSetup& setup, const Frame& frame,
                FrameSession& session) {
  if (session.graphic_buffer) {
    session.graphic_buffer->ReadPixels([&](std::span<const uint32_t> pixels) {
      UnpackFrame(pixels, setup.source_format, frame);
    });
    return;
  }
  const Buffer& pixels = session.memory.read_back;
  glReadPixels(0, 0, frame.luma.width, frame.luma.height, GL_RGBA,
               GL_UNSIGNED_BYTE, pixels.bytes());
  if (setup.off_screen) UnpackFrame(pixels.words(), setup.source_format, frame);
}

}  // namespace

void RenderBokehFrame(const FrameSetup& setup, const FrameCall& call,
                      FrameSession* session, FrameHistory& history) {
  const Frame frame = FrameOf(call, setup.preview);
  DumpInputs(setup, call, DumpNameOf(call, history));
  const uint32_t preprocess_start = MillisecondClock();
  const FocusPoint centre = FindFocus(call, setup.preview);

  RenderState* state = session != nullptr ? session->gl.IfCurrent() : nullptr;
  std::optional<FrameDrawing> drawing;
  if (state != nullptr) {
    drawing.emplace(*state, SizesOf(setup));
    if (setup.has_focus_dot) DrawFocusDot(frame.luma, centre);
    UploadMap(*state, setup, call, session->memory.map_rgba, history.depth);
  }
  if (setup.off_screen) {
    ZUQEL_LOG("NV21 to 4444 a_dImgWidth = %d, a_dImgHeight = %d",
              setup.given_width, setup.given_height);
  }
  if (state != nullptr) {
    const Buffer& chroma = session->memory.chroma;
    UploadFrame(*state, setup, frame, session->memory.packed_frame.words(),
                {chroma.bytes(), chroma.size()});
  }
  ZUQEL_LOG("*VX* zuQelRT_GL Preprocess = %d (ms)",
            ElapsedSince(preprocess_start));
  ZUQEL_LOG("ret = 0x%x", ZUQEL_SUCCESS);

  const uint32_t refocusing_start = MillisecondClock();
  RenderPasses(drawing ? &*drawing : nullptr, setup, call, history);
  if (state != nullptr) ReadResult(setup, frame, *session);
  ZUQEL_LOG("gInfo.PreviewWidth, = %d, gInfo.PreviewHeight = %d",
            setup.given_width, setup.given_height);

  history.counters.CountFrame();
  ZUQEL_LOG("*VX* zuQelRT_GL Refocusing = %d (ms)",
            ElapsedSince(refocusing_start));
  history.counters.frame_index += 1;
}

}  // namespace zuqel
