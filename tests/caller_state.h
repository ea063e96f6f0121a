// State of a caller's ES 3 context that would break the library's draws and
// transfers.
#ifndef TESTS_CALLER_STATE_H_
#define TESTS_CALLER_STATE_H_

#include <GLES3/gl3.h>

#include <array>
#include <cstdint>

namespace zuqel {

inline constexpr auto kBuffers = std::to_array<GLenum>(
    {GL_ARRAY_BUFFER, GL_PIXEL_PACK_BUFFER, GL_PIXEL_UNPACK_BUFFER});
inline constexpr auto kPixelStore = std::to_array<GLenum>(
    {GL_PACK_ROW_LENGTH, GL_UNPACK_ALIGNMENT, GL_UNPACK_SKIP_ROWS});
inline constexpr auto kSwitches =
    std::to_array<GLenum>({GL_SCISSOR_TEST, GL_DEPTH_TEST});
// Both attributes of the bound vertex array, fed from the bound buffer and from
// client memory.
inline void SetAttributes() {
  static constexpr std::array<uint8_t, 64> kBytes = {};
  glVertexAttribPointer(0, 3, GL_SHORT, GL_TRUE, 24,
                        reinterpret_cast<const void*>(8));
  glVertexAttribDivisor(0, 2);
  glEnableVertexAttribArray(0);
  GLint vertex_array = 0;
  glGetIntegerv(GL_VERTEX_ARRAY_BINDING, &vertex_array);
  if (vertex_array == 0) glBindBuffer(GL_ARRAY_BUFFER, 0);
  glVertexAttribIPointer(1, 2, GL_UNSIGNED_BYTE, 4,
                         vertex_array == 0 ? kBytes.data() : nullptr);
}

// All of it different from what a new context has. The buffers are too small
// for a frame.
inline void SetState() {
  GLuint name = 0;
  glGenBuffers(1, &name);
  glBindBuffer(GL_ARRAY_BUFFER, name);
  SetAttributes();
  glGenVertexArrays(1, &name);
  glBindVertexArray(name);
  for (const GLenum target : kBuffers) {
    glGenBuffers(1, &name);
    glBindBuffer(target, name);
    glBufferData(target, 64, nullptr, GL_STATIC_DRAW);
  }
  SetAttributes();
  for (const GLenum store : kPixelStore) glPixelStorei(store, 8);
  for (const GLenum test : kSwitches) glEnable(test);
  glScissor(3, 4, 5, 6);
  glDepthFunc(GL_NEVER);
  glColorMask(GL_FALSE, GL_TRUE, GL_FALSE, GL_TRUE);
}

}  // namespace zuqel

#endif  // TESTS_CALLER_STATE_H_
