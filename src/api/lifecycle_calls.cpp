// Starts and ends a session.
#include <zuQelRT_GL.h>

#include "api/initialisation.h"
#include "api/session.h"
#include "base/log.h"

using zuqel::Session;
using zuqel::Start;
using zuqel::TheSession;

uint32_t zuQelRT_GLInitV1(const uint8_t* calibA, uint32_t calibASize,
                          const uint8_t* calibB, uint32_t calibBSize,
                          const GLInitInfo* info) {
  ZUQEL_LOG("zuQelRT_GLInitV1 +");
  const uint32_t status =
      zuqel::Initialise({.calibration = {.block_a = calibA,
                                         .block_a_size = calibASize,
                                         .block_b = calibB,
                                         .block_b_size = calibBSize},
                         .info = info},
                        TheSession());
  if (status == ZUQEL_SUCCESS) ZUQEL_LOG("zuQelRT_GLInitV1 -");
  return status;
}

uint32_t zuQelRT_GLInitV1_1(const uint8_t* calibA, uint32_t calibASize,
                            const uint8_t* calibB, uint32_t calibBSize,
                            const GLInitInfo* info,
                            uint8_t* programBinaryCache) {
  ZUQEL_LOG("zuQelRT_GLInitV1_1 +");
  const uint32_t status =
      zuqel::Initialise({.start = Start::kCached,
                         .calibration = {.block_a = calibA,
                                         .block_a_size = calibASize,
                                         .block_b = calibB,
                                         .block_b_size = calibBSize},
                         .info = info,
                         .program_cache = programBinaryCache},
                        TheSession());
  if (status == ZUQEL_SUCCESS) ZUQEL_LOG("zuQelRT_GLInitV1_1 -");
  return status;
}

uint32_t zuQelRT_GLClose() {
  ZUQEL_LOG("zuQelRT_GLClose +");
  Session& session = TheSession();
  const auto in_progress = session.Enter(zuqel::kAllCalls);
  session.QelMode = zuqel::kModeClosed;
  session.until_close.emplace();
  if (session.gInfo.offmode != 0 || session.frame_context.HoldsContext()) {
    zuqel::DeleteContext(session.frame_context, session.refocus_context);
  }
  ZUQEL_LOG("zuQelRT_GLClose -");
  return ZUQEL_SUCCESS;
}
