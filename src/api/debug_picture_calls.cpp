// The calls that manage the debug pictures.
#include <zuQelRT_GL.h>

#include "api/session.h"
#include "base/log.h"
#include "gl/gl_state.h"
#include "render/debug_pictures.h"

uint32_t zuQelRT_GLShowDebugPicture(int32_t isShow, int32_t isBlending) {
  zuqel::DebugPictures& pictures = zuqel::TheSession().frame.debug_pictures;
  pictures.show = isShow != 0;
  pictures.blend = isBlending != 0;
  ZUQEL_LOG("isShow = %d, isBlending = %d", isShow, isBlending);
  return ZUQEL_SUCCESS;
}

uint32_t zuQelRT_GLSetDebugPicture(const DebugPicture* table) {
  if (table == nullptr) return ZUQEL_NULL_POINTER;
  zuqel::FrameSession& frame = zuqel::TheSession().frame;
  if (zuqel::IsCurrent(frame.render_context)) {
    const zuqel::PlainGlState plain_state;
    zuqel::LoadDebugPictures(&frame.render.debug_pictures, table,
                             frame.debug_pictures);
  } else {
    zuqel::LoadDebugPictures(nullptr, table, frame.debug_pictures);
  }
  return ZUQEL_SUCCESS;
}
