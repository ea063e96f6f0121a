// Starts a session, in the order of the log.
#include "api/initialisation.h"

#include <optional>
#include <utility>

#include "base/log.h"
#include "base/property.h"
#include "calib/built_in_keys.h"
#include "gl/graphic_buffer.h"

namespace zuqel {
namespace {

constexpr int32_t kDefaultStillCount = 90;

// Decodes the calibration and keeps the camera's values. The layouts are places
// in a calibration container.
uint32_t TakeCalibration(calib::CalibrationInput input, Session& session) {
  input.selector = session.camera_layout - 1;
  input.default_keys = calib::BuiltInKeys();
  calib::CalibrationRecord record;
  const uint32_t status = calib::DecodeCalibration(input, record);
  if (status != ZUQEL_SUCCESS) return status;
  session.camera = calib::TakeCameraValues(record).value_or(session.camera);
  const float focal_length =
      session.camera.focal_length / session.camera.focal_length_divisor;
  session.frame_setup.focal_length = focal_length;
  session.map_setup.focal_length = focal_length;
  return ZUQEL_SUCCESS;
}

// All memory of the session, before anything that would have to be taken back.
// Without memory, no buffer of the refocus maps is left either.
std::optional<FrameMemory> ReserveMemory(const InitCall& call,
                                         Session& session) {
  std::optional<FrameMemory> memory =
      FrameMemory::Create(session.frame_setup, call.program_cache != nullptr);
  RefocusBuffers& buffers = session.refocus_maps.buffers;
  if (memory && buffers.ReserveForGpu(session.map_setup)) return memory;
  buffers = {};
  return std::nullopt;
}

void ReadStillCount(Session& session) {
  const int32_t count = ReadIntProperty("persist.zu.LVGLbokeh.StillCount");
  session.StillCount = count < 1 ? kDefaultStillCount : count;
}

// Off screen the output is as large as the preview, and a thread without a
// context is given one.
void PrepareOffScreen(Session& session) {
  session.gInfo.OutputWidth = session.gInfo.PreviewWidth;
  session.gInfo.OutputHeight = session.gInfo.PreviewHeight;
  ZUQEL_LOG("check context + ");
  EnsureContext(session.frame_context, session.refocus_context);
  ZUQEL_LOG("check context - ");
}

// Gives the session what its record asks for.
void SetUp(const InitCall& call, FrameMemory&& memory, Session& session) {
  GLInitInfo& info = session.gInfo;
  ReadStillCount(session);
  if (info.offmode != 0) PrepareOffScreen(session);
  session.FocusDotEnable = ReadIntProperty("persist.zu.LVGLbokeh.FocusDot");
  session.frame_setup.has_focus_dot = session.FocusDotEnable != 0;
  ZUQEL_LOG("Dot enable = %d", session.FocusDotEnable);
  if (!GraphicBuffersAreUsable()) info.GraphicBufferFlag = 0;
  ZUQEL_LOG("Graphics buffer flag = %d", info.GraphicBufferFlag);
  session.until_close->frame.emplace(session.frame_setup, std::move(memory),
                                     info.GraphicBufferFlag != 0,
                                     call.program_cache);
  session.expansionFrameCounter = 0;
  session.PortraitFlag = info.PortraitMode != 0;
}

}  // namespace

uint32_t Initialise(const InitCall& call, Session& session) {
  const auto in_progress = session.Enter(kAllCalls);
  if (session.QelMode != kModeClosed &&
      session.QelMode != kModeNeverInitialised) {
    ZUQEL_LOG("Qel status abnormal");
    return ZUQEL_INIT_REFUSED;
  }
  ZUQEL_LOG("Qel status pass");
  if (call.info == nullptr) return ZUQEL_NULL_POINTER;
  const bool is_cached = call.start == Start::kCached;
  RefocusBuffers& buffers = session.refocus_maps.buffers;
  if (is_cached) {
    buffers.LogInitialised("Init pointer status");
    buffers.EndInitialised();
  }

  session.TakeInfo(*call.info);
  ZUQEL_LOG("gInfo.offmode = %d, gInfo.srcformat = %d %s",
            session.gInfo.offmode, session.gInfo.srcformat,
            is_cached ? "InitV1_1" : "InitV1 ");
  const uint32_t calibration = TakeCalibration(call.calibration, session);
  if (calibration != ZUQEL_SUCCESS) return calibration;
  std::optional<FrameMemory> memory = ReserveMemory(call, session);
  if (!memory) return ZUQEL_INIT_REFUSED;

  SetUp(call, std::move(*memory), session);
  if (is_cached) buffers.LogInitialised("Init");
  session.QelMode = kModeRunning;
  return ZUQEL_SUCCESS;
}

}  // namespace zuqel
