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
  kCount,
};

class WorkingBuffers {
 public:
  // Makes what is missing or too small. False when memory does not suffice;
  // then what close frees has been freed.
  [[nodiscard]] bool Reserve(const GLInitInfo& info);

  // Frees all but the refocus-map buffers, which outlive a session.
  void ReleaseAtClose();

  Buffer& operator[](BufferRole role) {
    return buffers_[static_cast<size_t>(role)];
  }

 private:
  std::array<Buffer, static_cast<size_t>(BufferRole::kCount)> buffers_;
};

}  // namespace zuqel

#endif  // ZUQEL_API_WORKING_BUFFERS_H_
