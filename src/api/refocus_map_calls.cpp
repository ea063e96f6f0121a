// Starts, makes and ends refocus maps.
#include <unistd.h>
#include <zuQelRT_GL.h>
#include <zuQelRT_generators.h>

#include "api/session.h"
#include "base/log.h"
#include "refocus/generators.h"

namespace {

using zuqel::Generator;
using zuqel::MapCall;
using zuqel::Session;
using zuqel::TheSession;

void Generate(const Generator& generator, const MapCall& call) {
  Session& session = TheSession();
  const auto in_progress = session.Enter(zuqel::kRefocusMapCalls);
  generator.generate(call, {session.map_setup, session.refocus_maps,
                            session.until_close->generators});
}

uint32_t GenerateFromDisparity(const Generator& generator,
                               const MapCall& call) {
  if (generator.began != nullptr) ZUQEL_LOG("%s", generator.began);
  if (call.map == nullptr || call.depth == nullptr) {
    ZUQEL_LOG(
        "Pointer is NULL in GenRefocusMap, a_pucDest = 0x%x, a_puwInputDepth = "
        "0x%x",
        zuqel::Low32(call.map), zuqel::Low32(call.depth));
    return ZUQEL_NULL_POINTER;
  }
  Generate(generator, call);
  return ZUQEL_SUCCESS;
}

uint32_t GenerateFromDistance(const Generator& generator, const MapCall& call) {
  if (call.map == nullptr || call.depth == nullptr) return ZUQEL_SUCCESS;
  Generate(generator, call);
  return ZUQEL_SUCCESS;
}

}  // namespace

uint32_t zuQelRT_GenRefocusMap_init() {
  ZUQEL_LOG("Init RefocusMap Gen tid = %d +", gettid());
  Session& session = TheSession();
  const auto in_progress = session.Enter(zuqel::kRefocusMapCalls);
  zuqel::RefocusMaps& maps = session.refocus_maps;
  maps.buffers.LogBoundaryBlur("Refocus init pointer status");
  if (session.gInfo.offmode != 0) {
    ZUQEL_LOG("Refocus init check context + ");
    zuqel::EnsureContext(session.refocus_context, session.frame_context);
    ZUQEL_LOG("Refocus init check context - ");
  }
  zuqel::StartRefocusMaps(session.map_setup, session.RunningProgramCache(),
                          maps);
  maps.buffers.LogBoundaryBlur("Refocus init");
  ZUQEL_LOG("Init RefocusMap Gen tid = %d -", gettid());
  return ZUQEL_SUCCESS;
}

uint32_t zuQelRT_GenRefocusMap_Deinit() {
  ZUQEL_LOG("Deinit RefocusMap Gen +");
  Session& session = TheSession();
  const auto in_progress = session.Enter(zuqel::kRefocusMapCalls);
  session.frames.counters.frame_index = 0;
  session.refocus_maps.buffers.Log("deinit");
  session.refocus_maps = {};
  session.until_close->generators = {};
  session.refocus_maps.buffers.Log("deinit after");
  if (session.gInfo.offmode != 0 || session.refocus_context.HoldsContext()) {
    zuqel::DeleteContext(session.refocus_context, session.frame_context);
  }
  ZUQEL_LOG("Deinit RefocusMap Gen -");
  return ZUQEL_SUCCESS;
}

// The generators' calls, one for each row of the table. Those on disparity
// report its range and the value in focus.
#define ZUQEL_CALL_ON_DISPARITY(id, call, y_type)                          \
  uint32_t call(uint8_t* a_pucDest, uint16_t* a_puwInputDepth, uint32_t x, \
                y_type y, uint32_t* min, uint32_t* max, uint32_t* focus) { \
    return GenerateFromDisparity(                                          \
        zuqel::k##id##Generator,                                           \
        {a_pucDest, a_puwInputDepth, x, y, min, max, focus});              \
  }
#define ZUQEL_CALL_ON_DISTANCE(id, call, y_type)                    \
  uint32_t call(uint8_t* a_pucDest, uint16_t* distance, uint32_t x, \
                y_type y) {                                         \
    return GenerateFromDistance(                                    \
        zuqel::k##id##Generator,                                    \
        {.map = a_pucDest, .depth = distance, .x = x, .y = y});     \
  }
#define ZUQEL_CALL(id, name, call, y_type, input, map_size, summary) \
  ZUQEL_CALL_ON_##input(id, call, y_type)
ZUQEL_REFOCUS_GENERATORS(ZUQEL_CALL)
