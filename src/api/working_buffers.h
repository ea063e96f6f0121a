// The buffers that a session is given at its start.
#ifndef ZUQEL_API_WORKING_BUFFERS_H_
#define ZUQEL_API_WORKING_BUFFERS_H_

#include <zuQelRT_GL.h>

#include <array>
#include <cstddef>

#include "base/buffer.h"

namespace zuqel {

enum class BufferRole {
  kPreviewMap,
  kPackedFrame,
  kReadBack,
  kWork1,
  kWork2,
  kWorkMap1,
  kWorkMap2,
  kWeightMapRm,
  kWeightMapCharRm,
  kInputDepthRgbaRm,
  kDepthRgba2,
  kLastDepth,
  kBoundaryBlur,
  kCount,
};

// The two ways to start a session: compile the programs, or take them from the
// caller's cache.
enum class Start { kCompiled, kCached };

// Refocus-map buffers outlive a session.
enum class FreedBy { kClose, kRefocusMapDeinit };

// The refocus-map buffers as the log names them, in the log's order.
struct NamedBuffer {
  BufferRole role;
  const char* name;
};
inline constexpr std::array<NamedBuffer, 5> kRefocusMapBuffers = {{
    {BufferRole::kInputDepthRgbaRm, "pucInputDepthRGBA_RM"},
    {BufferRole::kWeightMapRm, "WeightMap_buffer_RM"},
    {BufferRole::kWeightMapCharRm, "WeightMap_buffer_char_RM"},
    {BufferRole::kBoundaryBlur, "pucRfocusMapBoundaryBlur"},
    {BufferRole::kLastDepth, "gLastDepth"},
}};

class WorkingBuffers {
 public:
  // Makes what this start needs and is missing or too small. False when memory
  // does not suffice; then some have been made.
  [[nodiscard]] bool Reserve(const GLInitInfo& info, Start start);

  // Makes one buffer that is missing or too small. False when memory does not
  // suffice; then it is as it was.
  [[nodiscard]] bool Reserve(BufferRole role, const GLInitInfo& info);

  // Frees the buffers that are freed by this.
  void Release(FreedBy by);

  Buffer& operator[](BufferRole role) {
    return buffers_[static_cast<size_t>(role)];
  }

 private:
  std::array<Buffer, static_cast<size_t>(BufferRole::kCount)> buffers_;
};

// Logs where a buffer is, behind what happens to it.
void LogBuffer(WorkingBuffers& buffers, const NamedBuffer& buffer,
               const char* event);

}  // namespace zuqel

#endif  // ZUQEL_API_WORKING_BUFFERS_H_
