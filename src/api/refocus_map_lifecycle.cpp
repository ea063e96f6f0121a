// Makes and releases what the refocus maps are drawn with.
#include <EGL/egl.h>
#include <unistd.h>
#include <zuQelRT_GL.h>

#include "api/session.h"
#include "base/log.h"
#include "gl/gl_state.h"
#include "render/cached_programs.h"

namespace {

using zuqel::BufferRole;
using zuqel::NamedBuffer;
using zuqel::RefocusMapSession;
using zuqel::Session;

constexpr int kRefocusMapContextIndex = 1;
constexpr NamedBuffer kBoundaryBlur = zuqel::kRefocusMapBuffers[3];
static_assert(kBoundaryBlur.role == BufferRole::kBoundaryBlur);

void PrepareContext(Session& session) {
  ZUQEL_LOG("Refocus init check context + ");
  if (eglGetCurrentContext() == EGL_NO_CONTEXT) {
    ZUQEL_LOG(
        "There is no openGL context, going to create opengl context, tid = "
        "%d, index %d",
        gettid(), kRefocusMapContextIndex);
    zuqel::CreateContext(session.refocus_map.context);
  }
  ZUQEL_LOG("Refocus init check context - ");
}

// Names of an earlier call that was not ended are lost.
void CreateGlObjects(Session& session) {
  RefocusMapSession& refocus_map = session.refocus_map;
  zuqel::ForgetRefocusMapState(refocus_map.render);
  refocus_map.render_context = eglGetCurrentContext();
  const zuqel::PlainGlState plain_state;
  zuqel::CreateRefocusMapImages(
      refocus_map.render,
      zuqel::SizeFrom(session.gInfo.WorkWidth, session.gInfo.WorkHeight));
  zuqel::PrepareRefocusMapPrograms(session.program_cache,
                                   refocus_map.render.programs);
}

void DeleteGlObjects(RefocusMapSession& refocus_map) {
  if (zuqel::IsCurrent(refocus_map.render_context)) {
    zuqel::DeleteRefocusMapState(refocus_map.render);
  } else {
    zuqel::ForgetRefocusMapState(refocus_map.render);
  }
  refocus_map.render_context = EGL_NO_CONTEXT;
}

void LogBuffers(Session& session, const char* event) {
  for (const NamedBuffer& buffer : zuqel::kRefocusMapBuffers) {
    zuqel::LogBuffer(session.buffers, buffer, event);
  }
}

}  // namespace

uint32_t zuQelRT_GenRefocusMap_init() {
  ZUQEL_LOG("Init RefocusMap Gen tid = %d +", gettid());
  Session& session = zuqel::TheSession();
  zuqel::LogBuffer(session.buffers, kBoundaryBlur,
                   "Refocus init pointer status");
  session.buffers[BufferRole::kBoundaryBlur].Release();
  if (session.gInfo.offmode != 0) PrepareContext(session);
  CreateGlObjects(session);
  // Without memory now, the maps try again.
  static_cast<void>(
      session.buffers.Reserve(BufferRole::kBoundaryBlur, session.gInfo));
  zuqel::LogBuffer(session.buffers, kBoundaryBlur, "Refocus init");
  ZUQEL_LOG("Init RefocusMap Gen tid = %d -", gettid());
  return ZUQEL_SUCCESS;
}

uint32_t zuQelRT_GenRefocusMap_Deinit() {
  ZUQEL_LOG("Deinit RefocusMap Gen +");
  Session& session = zuqel::TheSession();
  RefocusMapSession& refocus_map = session.refocus_map;
  DeleteGlObjects(refocus_map);
  session.frame.counters.frame_index = 0;
  LogBuffers(session, "deinit");
  session.buffers.Release(zuqel::FreedBy::kRefocusMapDeinit);
  refocus_map.scratch = {};
  LogBuffers(session, "deinit after");
  if (session.gInfo.offmode != 0) {
    zuqel::DeleteContext(refocus_map.context, kRefocusMapContextIndex);
  }
  ZUQEL_LOG("Deinit RefocusMap Gen -");
  return ZUQEL_SUCCESS;
}
