// The library's one session, from initialisation to close.
#include "rendering/bokeh_session.h"

#include <sys/system_properties.h>
#include <zuQelRT_GL.h>

#include <array>
#include <cstring>
#include <iomanip>
#include <sstream>
#include <string>

#include "rendering/library_log.h"
#include "rendering/output_capture.h"
#include "tool_error.h"

namespace zuqel::tools {
namespace {

using CalibrationRecord = std::array<uint8_t, 512>;

void PutFloat(CalibrationRecord& record, size_t offset, float value) {
  static_assert(sizeof(value) == 4);
  std::memcpy(record.data() + offset, &value, sizeof(value));
}

// Initialisation requires a calibration record; the rendered picture does not
// depend on it.
CalibrationRecord PlaceholderCalibration() {
  CalibrationRecord record = {};
  PutFloat(record, 340, 20.0F);
  PutFloat(record, 344, 1.0F);
  PutFloat(record, 356, 4.0F);  // focal length, divided by the value at 344
  return record;
}

constexpr FocusRect kNoRect = {0, 0, 0, 0};

// The library reads and writes as many bytes as initialisation was told of.
void RequireSize(const char* what, Size size, Size session_size) {
  if (size == session_size) return;
  throw WorkError(std::string("the size of the ") + what +
                  " is not the session's");
}

// The library reports its decision only in what it prints.
bool RenderOnCpu(Nv21Frame& frame, DisparityMap& map, FocusPoint focus) {
  const OutputCapture output;
  const uint32_t status = zuQelRT_Bokeh_ZU4410_DisparityBase_Expansion_CPU(
      frame.luma.data(), frame.chroma.data(), map.values.data(), focus.x,
      static_cast<uint32_t>(focus.y));
  CheckStatus(status, "zuQelRT_Bokeh_ZU4410_DisparityBase_Expansion_CPU");
  return output.Text().find("Focus at BG!") == std::string::npos;
}

}  // namespace

void CheckStatus(uint32_t status, const char* call) {
  if (status == ZUQEL_SUCCESS) return;
  std::ostringstream message;
  message << call << " returned 0x" << std::hex << std::setw(4)
          << std::setfill('0') << status;
  throw WorkError(message.str());
}

BokehSession::BokehSession(const SessionSetup& setup) : setup_(setup) {
  // Else the properties' file may ask for it.
  if (setup.focus_dot) {
    __system_property_set("persist.zu.LVGLbokeh.FocusDot", "1");
  }
  GLInitInfo info = {};
  info.PreviewWidth = setup.picture.width;
  info.PreviewHeight = setup.picture.height;
  info.DepthWidth = setup.depth.width;
  info.DepthHeight = setup.depth.height;
  info.WorkWidth = setup.work.width;
  info.WorkHeight = setup.work.height;
  info.offmode = 1;
  info.srcformat = ZUQEL_SRCFORMAT_NV21;
  const CalibrationRecord record = PlaceholderCalibration();
  CheckStatus(zuQelRT_GLInitV1(record.data(), record.size(), nullptr, 0, &info),
              "zuQelRT_GLInitV1");
  const std::string failure = ContextFailure();
  if (!failure.empty() && setup.renderer == Renderer::kGpu) {
    zuQelRT_GLClose();
    throw WorkError("no OpenGL ES 2.0 to render with: " + failure);
  }
}

BokehSession::~BokehSession() {
  zuQelRT_GLClose();
}

bool BokehSession::Render(Nv21Frame& frame, DisparityMap& map,
                          const Focus& focus) const {
  RequireSize("frame", SizeOf(frame), setup_.picture);
  RequireSize("disparity map", SizeOf(map), setup_.depth);
  if (setup_.renderer == Renderer::kCpu) {
    return RenderOnCpu(frame, map, focus.point);
  }
  const uint32_t status = zuQelRT_GLStartV1HWDepth(
      frame.luma.data(), frame.chroma.data(), map.values.data(),
      static_cast<uint32_t>(focus.point.x),
      static_cast<uint32_t>(focus.point.y), 0, kNoRect, focus.f_number);
  CheckStatus(status, "zuQelRT_GLStartV1HWDepth");
  return true;
}

void BokehSession::Render(Nv21Frame& frame, const WeightMap& map,
                          const Focus& focus) const {
  RequireSize("frame", SizeOf(frame), setup_.picture);
  RequireSize("weight map", SizeOf(map), setup_.work);
  const uint32_t status = zuQelRT_GLStartV1(
      frame.luma.data(), frame.chroma.data(), map.values.data(),
      static_cast<uint32_t>(focus.point.x),
      static_cast<uint32_t>(focus.point.y), 0, kNoRect, focus.f_number);
  CheckStatus(status, "zuQelRT_GLStartV1");
}

}  // namespace zuqel::tools
