// Takes and shows debug pictures.
#include <zuQelRT_GL.h>

#include "api/session.h"
#include "base/log.h"

using zuqel::Session;
using zuqel::TheSession;

uint32_t zuQelRT_GLShowDebugPicture(int32_t isShow, int32_t isBlending) {
  Session& session = TheSession();
  const auto in_progress = session.Enter(zuqel::kFrameCalls);
  zuqel::DebugPictures& pictures = session.frames.debug_pictures;
  pictures.show = isShow != 0;
  pictures.blend = isBlending != 0;
  ZUQEL_LOG("isShow = %d, isBlending = %d", isShow, isBlending);
  return ZUQEL_SUCCESS;
}

uint32_t zuQelRT_GLSetDebugPicture(const DebugPicture* table) {
  if (table == nullptr) return ZUQEL_NULL_POINTER;
  Session& session = TheSession();
  const auto in_progress = session.Enter(zuqel::kFrameCalls);
  zuqel::TakeDebugPictures(session.RunningFrame(), table, session.frames);
  return ZUQEL_SUCCESS;
}
