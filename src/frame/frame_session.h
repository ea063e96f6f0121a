// What frames are rendered with, from initialisation to close.
#ifndef ZUQEL_FRAME_FRAME_SESSION_H_
#define ZUQEL_FRAME_FRAME_SESSION_H_

#include <zuQelRT_GL.h>

#include <cstdint>
#include <optional>

#include "base/buffer.h"
#include "frame/frame_history.h"
#include "frame/frame_setup.h"
#include "frame/passes.h"
#include "gl/graphic_buffer.h"
#include "gl/in_context.h"
#include "gl/program_cache.h"

namespace zuqel {

// All memory of a session's frames: a frame call takes none of its own, dumps
// aside.
struct FrameMemory {
  Buffer packed_frame;  // pixels for the upload of frames that are not planes
  Buffer read_back;
  Buffer map_rgba;  // weights or disparity for their upload
  Buffer chroma;    // chroma without gaps, where sizes are odd
  ProgramCache program_cache;

  // All of it or, without memory, nothing.
  static std::optional<FrameMemory> Create(const FrameSetup& setup,
                                           bool has_program_cache);
};

struct FrameSession {
  // Makes the GL objects in the current context; none without one.
  // `program_cache`, unless null, is the caller's cache, as in PreparePrograms.
  FrameSession(const FrameSetup& setup, FrameMemory&& reserved,
               bool has_graphic_buffer, uint8_t* program_cache);

  FrameMemory memory;
  std::optional<GraphicBuffer> graphic_buffer;
  // Last, to be destroyed first: a texture may have its storage in the buffer.
  InContext<RenderState> gl;
};

// Takes a table of ten debug pictures. Without a session, or outside its
// context, nothing is uploaded.
void TakeDebugPictures(FrameSession* session, const DebugPicture* table,
                       FrameHistory& history);

}  // namespace zuqel

#endif  // ZUQEL_FRAME_FRAME_SESSION_H_
