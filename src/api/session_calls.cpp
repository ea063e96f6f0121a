// The small calls that read or change session values.
#include <zuQelRT_GL.h>

#include <algorithm>
#include <mutex>

#include "api/session.h"
#include "base/log.h"
#include "base/version.h"

namespace {

using zuqel::Session;

constexpr int32_t kVersionBufferSize = 256;

// Answers 4 or 1, which both mean success.
uint32_t SetGsensor(Session& session, int32_t value) {
  session.GsensorState = value != 0 ? 2 : 0;
  ZUQEL_LOG("Orvo Gsensor value = %d", value);
  session.gsensor_value = value;
  return value != 0 ? 4 : 1;
}

uint32_t ApplyParameter(Session& session, int32_t id,
                        const ParameterInfo& info) {
  switch (id) {
    case 0:
      ZUQEL_LOG("Orvo Gsensor parameter set");
      return SetGsensor(session, info.GsensorValue);
    case 1:
      ZUQEL_LOG("VCM parameter set");
      session.vcm_value = info.VcmValue;
      return ZUQEL_SUCCESS;
    case 2:
      ZUQEL_LOG("FADE IN EFFECT parameter set");
      session.FadeInEffect = info.FadeInEnable != 0;
      return ZUQEL_SUCCESS;
    case 3:
      ZUQEL_LOG("PortraitModev set Portrait = %d", info.PortraitMode);
      session.gInfo.PortraitMode = info.PortraitMode;
      session.PortraitFlag = info.PortraitMode != 0;
      return ZUQEL_SUCCESS;
    default:
      return ZUQEL_SUCCESS;
  }
}

}  // namespace

uint32_t zuQelRT_CameraLayout_Set(int32_t layout) {
  if (layout < 1 || layout > 4) return ZUQEL_BAD_CAMERA_LAYOUT;
  zuqel::TheSession().camera_layout = layout;
  return ZUQEL_SUCCESS;
}

uint32_t zuQelRT_CameraLayout_Get(uint32_t* layout) {
  if (layout == nullptr) return ZUQEL_NULL_POINTER;
  *layout = static_cast<uint32_t>(zuqel::TheSession().camera_layout);
  return ZUQEL_SUCCESS;
}

uint32_t zuQelRT_SetParameter(int32_t id, const ParameterInfo* info) {
  if (info == nullptr) return ZUQEL_NULL_POINTER;
  Session& session = zuqel::TheSession();
  const std::lock_guard lock(session.mutex);
  const int32_t mode = session.QelMode;
  if (mode == zuqel::kModeClosed || mode == zuqel::kModeNeverInitialised) {
    ZUQEL_LOG("SetParameter error, QelMode = %d", mode);
    return ZUQEL_PARAMETER_REFUSED;
  }
  const uint32_t result = ApplyParameter(session, id, *info);
  ZUQEL_LOG("zuQelRT_SetParameter return = 0x%x", result);
  return result;
}

uint32_t zuQel_GLVersionInfo_Get(char* buffer, int32_t size) {
  if (size < kVersionBufferSize) return ZUQEL_BUFFER_TOO_SMALL;
  if (buffer == nullptr) return ZUQEL_NULL_POINTER;
  *std::copy(zuqel::kVersion.begin(), zuqel::kVersion.end(), buffer) = '\0';
  return ZUQEL_SUCCESS;
}
