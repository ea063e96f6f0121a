// The caller's GL state that would affect the library's draws and transfers.
#ifndef ZUQEL_GL_GL_STATE_H_
#define ZUQEL_GL_GL_STATE_H_

#include <GLES2/gl2.h>

#include <array>
#include <cstddef>
#include <optional>

#include "gl/extensions.h"
#include "gl/program.h"
#include "gl/vertex_attribute.h"

namespace zuqel {

// While it lives, draws take their vertices from client memory and fill whole
// viewports, and transfers move rows without padding from and to client memory:
// no buffer objects (nor, in an ES 3 context, a vertex array or pixel buffers),
// pixel-store values for packed rows, scissor, depth test and face culling off,
// all colours written. Restores everything on exit, attributes 0 and 1 too: an
// array that the caller has enabled must not be left pointing into the library.
// Blending, clear colour, viewport, and bindings of framebuffer, program and
// textures are not touched.
//
// What decides where GL reads and writes is set even where a query says that it
// is so already: the query may have failed. What needs no restoring gets none.
class PlainGlState {
 public:
  // `is_es3` says which context is current, for those who have asked before.
  explicit PlainGlState(bool is_es3 = IsEs3());
  ~PlainGlState();
  PlainGlState(const PlainGlState&) = delete;
  PlainGlState& operator=(const PlainGlState&) = delete;

 private:
  [[nodiscard]] bool AllColoursAreWritten() const;

  static constexpr size_t kSwitchCount = 3;
  static constexpr size_t kPixelStoreCount = 8;
  static constexpr size_t kBufferCount = 4;

  bool is_es3_;
  GLint vertex_array_ = 0;
  std::array<std::optional<SavedVertexAttribute>, kMaxAttributes> attributes_;
  std::array<GLint, kBufferCount> buffers_ = {};
  std::array<GLint, kPixelStoreCount> pixel_store_ = {};
  std::array<GLboolean, kSwitchCount> switches_ = {};
  std::array<GLboolean, 4> colour_mask_ = {};
};

}  // namespace zuqel

#endif  // ZUQEL_GL_GL_STATE_H_
