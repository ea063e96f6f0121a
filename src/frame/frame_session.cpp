// Makes what frames are rendered with.
#include "frame/frame_session.h"

#include <utility>

#include "frame/frame_upload.h"
#include "gl/context.h"
#include "gl/extensions.h"
#include "gl/gl_state.h"
#include "render/cached_programs.h"

namespace zuqel {
namespace {

InContext<RenderState> MakeRenderState(
    ImageSize preview, bool has_graphic_buffer,
    std::optional<GraphicBuffer>& graphic_buffer, uint8_t* program_cache,
    ProgramCache& session_cache) {
  if (!HasContext()) return {};
  RenderState state;
  state.is_es3 = IsEs3();
  const PlainGlState plain_state(state.is_es3);
  for (ImageTexture& input : state.inputs) input = ImageTexture::Generate();
  for (ImageTexture& picture : state.debug_pictures) {
    picture = ImageTexture::Generate();
  }
  state.targets = RenderTargets(preview, has_graphic_buffer, graphic_buffer);
  PreparePrograms(program_cache, session_cache, state.programs);
  return InContext<RenderState>(std::move(state));
}

}  // namespace

std::optional<FrameMemory> FrameMemory::Create(const FrameSetup& setup,
                                               bool has_program_cache) {
  FrameMemory memory;
  const auto frame_bytes = ByteCount(setup.preview, 4);
  const bool is_packed = UploadKindOf(setup) == UploadKind::kPacked;
  const bool is_whole =
      memory.read_back.Reserve(frame_bytes) &&
      (!is_packed || memory.packed_frame.Reserve(frame_bytes)) &&
      memory.map_rgba.Reserve(ByteCount(setup.work, 4)) &&
      memory.map_rgba.Reserve(ByteCount(setup.depth, 4)) &&
      memory.chroma.Reserve(ChromaScratchBytes(setup)) &&
      (!has_program_cache ||
       memory.program_cache.copy.Reserve(kProgramCacheBytes));
  if (!is_whole) return std::nullopt;
  return memory;
}

FrameSession::FrameSession(const FrameSetup& setup, FrameMemory&& reserved,
                           bool has_graphic_buffer, uint8_t* program_cache)
    : memory(std::move(reserved)),
      gl(MakeRenderState(setup.preview, has_graphic_buffer, graphic_buffer,
                         program_cache, memory.program_cache)) {}

void TakeDebugPictures(FrameSession* session, const DebugPicture* table,
                       FrameHistory& history) {
  RenderState* state = session != nullptr ? session->gl.IfCurrent() : nullptr;
  std::optional<PlainGlState> plain_state;
  if (state != nullptr) plain_state.emplace(state->is_es3);
  LoadDebugPictures(state != nullptr ? &state->debug_pictures : nullptr, table,
                    history.debug_pictures);
}

}  // namespace zuqel
