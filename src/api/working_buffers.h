// The buffers that a session is given at its start.
#ifndef ZUQEL_API_WORKING_BUFFERS_H_
#define ZUQEL_API_WORKING_BUFFERS_H_

#include <zuQelRT_GL.h>

#include <array>
#include <cstddef>
#include <vector>

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
  kCount,
};

// The two ways to start a session: compile the programs, or take them from the
// caller's cache.
enum class Start { kCompiled, kCached };

class WorkingBuffers {
 public:
  // Makes what this start needs and is missing or too small. False when memory
  // does not suffice; then what close frees has been freed.
  [[nodiscard]] bool Reserve(const GLInitInfo& info, Start start);

  // Takes the refocus-map buffers out of use, so that they are made afresh, and
  // keeps their memory until close.
  void AbandonRefocusMapBuffers();

  // Frees what was abandoned and all but the refocus-map buffers, which outlive
  // a session.
  void ReleaseAtClose();

  Buffer& operator[](BufferRole role) {
    return buffers_[static_cast<size_t>(role)];
  }

 private:
  std::array<Buffer, static_cast<size_t>(BufferRole::kCount)> buffers_;
  std::vector<Buffer> abandoned_;
};

}  // namespace zuqel

#endif  // ZUQEL_API_WORKING_BUFFERS_H_
