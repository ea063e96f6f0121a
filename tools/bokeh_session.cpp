// The library's one session, from initialisation to close.
#include "bokeh_session.h"

#include <sys/system_properties.h>
#include <zuQelRT_GL.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <string>

#include "library_log.h"
#include "tool_error.h"

namespace zuqel::tools {
namespace {

using CalibrationRecord = std::array<uint8_t, 512>;

void PutFloat(CalibrationRecord& record, size_t offset, float value) {
  static_assert(sizeof(value) == 4);
  std::memcpy(record.data() + offset, &value, sizeof(value));
}

// Initialisation wants a record of a camera module; a rendered picture does not
// depend on it.
CalibrationRecord PlainCalibration() {
  CalibrationRecord record = {};
  PutFloat(record, 340, 20.0F);
  PutFloat(record, 344, 1.0F);
  PutFloat(record, 356, 4.0F);  // focal length, divided by the one before
  return record;
}

void CheckStatus(uint32_t status, const char* call) {
  if (status == ZUQEL_SUCCESS) return;
  std::array<char, 16> code = {};
  std::snprintf(code.data(), code.size(), "0x%04x", status);
  throw WorkError(std::string(call) + " returned " + code.data());
}

constexpr FocusRect kNoRect = {0, 0, 0, 0};

}  // namespace

BokehSession::BokehSession(const SessionSetup& setup) {
  __system_property_set("persist.zu.LVGLbokeh.FocusDot",
                        setup.focus_dot ? "1" : "0");
  GLInitInfo info = {};
  info.PreviewWidth = setup.picture_width;
  info.PreviewHeight = setup.picture_height;
  info.DepthWidth = setup.depth_width;
  info.DepthHeight = setup.depth_height;
  info.WorkWidth = setup.work_width;
  info.WorkHeight = setup.work_height;
  info.offmode = 1;
  info.srcformat = 0;
  const CalibrationRecord record = PlainCalibration();
  CheckStatus(zuQelRT_GLInitV1(record.data(), record.size(), nullptr, 0, &info),
              "zuQelRT_GLInitV1");
  const std::string failure = ContextFailure();
  if (!failure.empty()) {
    zuQelRT_GLClose();
    throw WorkError("no OpenGL ES 2.0 to render with: " + failure);
  }
}

BokehSession::~BokehSession() {
  zuQelRT_GLClose();
}

void BokehSession::Render(Nv21Frame& frame, DisparityMap& map,
                          const Focus& focus) {
  const uint32_t status = zuQelRT_GLStartV1HWDepth(
      frame.luma.data(), frame.chroma.data(), map.values.data(),
      static_cast<uint32_t>(focus.point.x),
      static_cast<uint32_t>(focus.point.y), 0, kNoRect, focus.f_number);
  CheckStatus(status, "zuQelRT_GLStartV1HWDepth");
}

void BokehSession::Render(Nv21Frame& frame, const WeightMap& map,
                          const Focus& focus) {
  const uint32_t status = zuQelRT_GLStartV1(
      frame.luma.data(), frame.chroma.data(), map.values.data(),
      static_cast<uint32_t>(focus.point.x),
      static_cast<uint32_t>(focus.point.y), 0, kNoRect, focus.f_number);
  CheckStatus(status, "zuQelRT_GLStartV1");
}

}  // namespace zuqel::tools
