// Starts and ends a session.
#include <EGL/egl.h>
#include <gb_wrapper.h>
#include <unistd.h>
#include <zuQelRT_GL.h>

#include <array>

#include "api/session.h"
#include "base/log.h"
#include "base/property.h"
#include "calib/built_in_keys.h"
#include "calib/calibration.h"
#include "gl/gl_state.h"
#include "render/cached_programs.h"

namespace {

using zuqel::BufferRole;
using zuqel::FrameSession;
using zuqel::Session;
using zuqel::Start;

constexpr int32_t kDefaultStillCount = 90;
constexpr int kFrameContextIndex = 0;

// The layouts' places in a calibration container.
int32_t CalibrationSelector(int32_t camera_layout) {
  return camera_layout - 1;
}

// Arguments of an initialisation; the calibration's selector is still open.
struct StartCall {
  Start start = Start::kCompiled;
  zuqel::calib::CalibrationInput calibration;
  const GLInitInfo* info = nullptr;
  uint8_t* program_cache = nullptr;
};

// Decodes the calibration and keeps the camera's values.
uint32_t TakeCalibration(Session& session,
                         zuqel::calib::CalibrationInput input) {
  input.selector = CalibrationSelector(session.camera_layout);
  input.default_keys = zuqel::calib::BuiltInKeys();
  zuqel::calib::CalibrationRecord record;
  const uint32_t status = zuqel::calib::DecodeCalibration(input, record);
  if (status != ZUQEL_SUCCESS) return status;
  session.camera =
      zuqel::calib::TakeCameraValues(record).value_or(session.camera);
  return ZUQEL_SUCCESS;
}

void ReadStillCount(Session& session) {
  const int32_t count =
      zuqel::ReadIntProperty("persist.zu.LVGLbokeh.StillCount");
  session.StillCount = count < 1 ? kDefaultStillCount : count;
}

// Off screen the output is as large as the preview, and a thread without a
// context is given one.
void PrepareOffScreen(Session& session) {
  session.gInfo.OutputWidth = session.gInfo.PreviewWidth;
  session.gInfo.OutputHeight = session.gInfo.PreviewHeight;
  ZUQEL_LOG("check context + ");
  if (eglGetCurrentContext() == EGL_NO_CONTEXT) {
    ZUQEL_LOG(
        "There is no openGL context, going to create opengl context, tid = "
        "%d, index %d",
        gettid(), kFrameContextIndex);
    zuqel::CreateContext(session.context);
  }
  ZUQEL_LOG("check context - ");
}

void CreateGlObjects(Session& session, const StartCall& call) {
  FrameSession& frame = session.frame;
  const zuqel::PlainGlState plain_state;
  frame.render_context = eglGetCurrentContext();
  zuqel::CreateImages(
      frame.render,
      zuqel::SizeFrom(session.gInfo.PreviewWidth, session.gInfo.PreviewHeight),
      session.gInfo.GraphicBufferFlag != 0 ? &frame.graphic_buffer : nullptr);
  if (call.start == Start::kCompiled) {
    frame.render.programs.BuildAll();
  } else {
    zuqel::PreparePrograms(call.program_cache, session.program_cache,
                           frame.render.programs);
  }
}

void DeleteGlObjects(FrameSession& frame) {
  if (zuqel::IsCurrent(frame.render_context)) {
    zuqel::DeleteRenderState(frame.render);
  } else {
    zuqel::ForgetRenderState(frame.render);
  }
  frame.render_context = EGL_NO_CONTEXT;
}

// The buffer that the refocus maps make for themselves is not one of these.
template <typename Action>
void ForEachSharedBuffer(Action action) {
  for (const zuqel::NamedBuffer& buffer : zuqel::kRefocusMapBuffers) {
    if (buffer.role != BufferRole::kBoundaryBlur) action(buffer);
  }
}

void LogRefocusMapBuffers(Session& session, const char* event) {
  ForEachSharedBuffer([&](const zuqel::NamedBuffer& buffer) {
    zuqel::LogBuffer(session.buffers, buffer, event);
  });
}

// Makes the buffers, before anything that would have to be taken back, or keeps
// none.
bool ReserveBuffers(Session& session, Start start) {
  if (session.buffers.Reserve(session.gInfo, start) &&
      (start == Start::kCompiled ||
       session.program_cache.copy.Reserve(zuqel::kProgramCacheBytes))) {
    return true;
  }
  session.buffers.Release(zuqel::FreedBy::kClose);
  session.buffers.Release(zuqel::FreedBy::kRefocusMapDeinit);
  return false;
}

// Gives the session what its record asks for, in the order of the log.
void SetUp(Session& session, const StartCall& call) {
  ReadStillCount(session);
  if (session.gInfo.offmode != 0) PrepareOffScreen(session);
  session.FocusDotEnable =
      zuqel::ReadIntProperty("persist.zu.LVGLbokeh.FocusDot");
  ZUQEL_LOG("Dot enable = %d", session.FocusDotEnable);
  if (!isValidGBWrapper()) session.gInfo.GraphicBufferFlag = 0;
  ZUQEL_LOG("Graphics buffer flag = %d", session.gInfo.GraphicBufferFlag);
  CreateGlObjects(session, call);
  session.expansionFrameCounter = 0;
  session.PortraitFlag = session.gInfo.PortraitMode != 0;
}

uint32_t Initialise(const StartCall& call) {
  Session& session = zuqel::TheSession();
  if (session.QelMode != zuqel::kModeClosed &&
      session.QelMode != zuqel::kModeNeverInitialised) {
    ZUQEL_LOG("Qel status abnormal");
    return ZUQEL_INIT_REFUSED;
  }
  ZUQEL_LOG("Qel status pass");
  if (call.info == nullptr) return ZUQEL_NULL_POINTER;
  if (call.start == Start::kCached) {
    LogRefocusMapBuffers(session, "Init pointer status");
    ForEachSharedBuffer([&](const zuqel::NamedBuffer& buffer) {
      session.buffers[buffer.role].Release();
    });
  }

  session.gInfo = *call.info;
  ZUQEL_LOG("gInfo.offmode = %d, gInfo.srcformat = %d %s",
            session.gInfo.offmode, session.gInfo.srcformat,
            call.start == Start::kCompiled ? "InitV1 " : "InitV1_1");
  const uint32_t calibration = TakeCalibration(session, call.calibration);
  if (calibration != ZUQEL_SUCCESS) return calibration;
  if (!ReserveBuffers(session, call.start)) return ZUQEL_INIT_REFUSED;

  SetUp(session, call);
  if (call.start == Start::kCached) LogRefocusMapBuffers(session, "Init");
  session.QelMode = zuqel::kModeRunning;
  return ZUQEL_SUCCESS;
}

}  // namespace

uint32_t zuQelRT_GLInitV1(const uint8_t* calibA, uint32_t calibASize,
                          const uint8_t* calibB, uint32_t calibBSize,
                          const GLInitInfo* info) {
  ZUQEL_LOG("zuQelRT_GLInitV1 +");
  const uint32_t status =
      Initialise({.calibration = {.block_a = calibA,
                                  .block_a_size = calibASize,
                                  .block_b = calibB,
                                  .block_b_size = calibBSize},
                  .info = info});
  if (status == ZUQEL_SUCCESS) ZUQEL_LOG("zuQelRT_GLInitV1 -");
  return status;
}

uint32_t zuQelRT_GLInitV1_1(const uint8_t* calibA, uint32_t calibASize,
                            const uint8_t* calibB, uint32_t calibBSize,
                            const GLInitInfo* info,
                            uint8_t* programBinaryCache) {
  ZUQEL_LOG("zuQelRT_GLInitV1_1 +");
  const uint32_t status =
      Initialise({.start = Start::kCached,
                  .calibration = {.block_a = calibA,
                                  .block_a_size = calibASize,
                                  .block_b = calibB,
                                  .block_b_size = calibBSize},
                  .info = info,
                  .program_cache = programBinaryCache});
  if (status == ZUQEL_SUCCESS) ZUQEL_LOG("zuQelRT_GLInitV1_1 -");
  return status;
}

uint32_t zuQelRT_GLClose() {
  ZUQEL_LOG("zuQelRT_GLClose +");
  Session& session = zuqel::TheSession();
  session.QelMode = zuqel::kModeClosed;
  DeleteGlObjects(session.frame);
  session.frame.graphic_buffer.Release();
  session.buffers.Release(zuqel::FreedBy::kClose);
  session.expansion = {};
  session.refocus_map.scratch = {};
  session.frame.weight_rgba.Release();
  session.frame.depth_rgba.Release();
  session.frame.chroma_scratch.Release();
  session.program_cache.copy.Release();
  session.program_cache.binaryInfo = {};
  if (session.gInfo.offmode != 0) {
    zuqel::DeleteContext(session.context, kFrameContextIndex);
  }
  ZUQEL_LOG("zuQelRT_GLClose -");
  return ZUQEL_SUCCESS;
}
