// Starts and ends a session.
#include <EGL/egl.h>
#include <gb_wrapper.h>
#include <unistd.h>
#include <zuQelRT_GL.h>

#include "api/session.h"
#include "base/log.h"
#include "base/property.h"
#include "calib/built_in_keys.h"
#include "calib/calibration.h"
#include "gl/gl_state.h"

namespace {

using zuqel::FrameSession;
using zuqel::Session;

constexpr int32_t kDefaultStillCount = 90;
constexpr int kFrameContextIndex = 0;

// The layouts' places in a calibration container.
int32_t CalibrationSelector(int32_t camera_layout) {
  return camera_layout - 1;
}

// Decodes the calibration and keeps the camera's values.
uint32_t TakeCalibration(Session& session,
                         const zuqel::calib::CalibrationInput& input) {
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

void CreateGlObjects(Session& session) {
  FrameSession& frame = session.frame;
  const zuqel::PlainGlState plain_state;
  frame.render_context = eglGetCurrentContext();
  zuqel::CreateRenderState(frame.render,
                           {zuqel::NonNegative(session.gInfo.PreviewWidth),
                            zuqel::NonNegative(session.gInfo.PreviewHeight)});
}

// Names can be given back only where they live.
void DeleteGlObjects(FrameSession& frame) {
  const bool is_current = frame.render_context != EGL_NO_CONTEXT &&
                          eglGetCurrentContext() == frame.render_context;
  if (is_current) {
    zuqel::DeleteRenderState(frame.render);
  } else {
    zuqel::ForgetRenderState(frame.render);
  }
  frame.render_context = EGL_NO_CONTEXT;
}

}  // namespace

uint32_t zuQelRT_GLInitV1(const uint8_t* calibA, uint32_t calibASize,
                          const uint8_t* calibB, uint32_t calibBSize,
                          const GLInitInfo* info) {
  ZUQEL_LOG("zuQelRT_GLInitV1 +");
  Session& session = zuqel::TheSession();
  if (session.QelMode != zuqel::kModeClosed &&
      session.QelMode != zuqel::kModeNeverInitialised) {
    ZUQEL_LOG("Qel status abnormal");
    return ZUQEL_INIT_REFUSED;
  }
  ZUQEL_LOG("Qel status pass");
  if (info == nullptr) return ZUQEL_NULL_POINTER;

  session.gInfo = *info;
  ZUQEL_LOG("gInfo.offmode = %d, gInfo.srcformat = %d InitV1 ",
            session.gInfo.offmode, session.gInfo.srcformat);
  const uint32_t calibration = TakeCalibration(
      session, {.block_a = calibA,
                .block_a_size = calibASize,
                .block_b = calibB,
                .block_b_size = calibBSize,
                .selector = CalibrationSelector(session.camera_layout),
                .default_keys = zuqel::calib::BuiltInKeys()});
  if (calibration != ZUQEL_SUCCESS) return calibration;
  // Before anything is made that would have to be taken back.
  if (!session.buffers.Reserve(session.gInfo)) return ZUQEL_INIT_REFUSED;

  ReadStillCount(session);
  if (session.gInfo.offmode != 0) PrepareOffScreen(session);
  session.FocusDotEnable =
      zuqel::ReadIntProperty("persist.zu.LVGLbokeh.FocusDot");
  ZUQEL_LOG("Dot enable = %d", session.FocusDotEnable);
  if (!isValidGBWrapper()) session.gInfo.GraphicBufferFlag = 0;
  ZUQEL_LOG("Graphics buffer flag = %d", session.gInfo.GraphicBufferFlag);
  CreateGlObjects(session);
  session.PortraitFlag = session.gInfo.PortraitMode != 0;

  session.QelMode = zuqel::kModeRunning;
  ZUQEL_LOG("zuQelRT_GLInitV1 -");
  return ZUQEL_SUCCESS;
}

uint32_t zuQelRT_GLClose() {
  ZUQEL_LOG("zuQelRT_GLClose +");
  Session& session = zuqel::TheSession();
  session.QelMode = zuqel::kModeClosed;
  DeleteGlObjects(session.frame);
  session.buffers.ReleaseAtClose();
  session.frame.weight_rgba.Release();
  session.frame.depth_rgba.Release();
  session.frame.chroma_scratch.Release();
  if (session.gInfo.offmode != 0) {
    zuqel::DeleteContext(session.context, kFrameContextIndex);
  }
  ZUQEL_LOG("zuQelRT_GLClose -");
  return ZUQEL_SUCCESS;
}
