// Saves GL state, sets defaults, restores on exit.
#include "gl/gl_state.h"

#include <algorithm>

#include "gl/extensions.h"

namespace zuqel {
namespace {

// The ES 3 names that the ES 2 headers lack.
constexpr GLenum kVertexArrayBinding = 0x85B5;
constexpr GLenum kPixelPackBuffer = 0x88EB;
constexpr GLenum kPixelUnpackBuffer = 0x88EC;
constexpr GLenum kPixelPackBufferBinding = 0x88ED;
constexpr GLenum kPixelUnpackBufferBinding = 0x88EF;
constexpr GLenum kUnpackRowLength = 0x0CF2;
constexpr GLenum kUnpackSkipRows = 0x0CF3;
constexpr GLenum kUnpackSkipPixels = 0x0CF4;
constexpr GLenum kPackRowLength = 0x0D02;
constexpr GLenum kPackSkipRows = 0x0D03;
constexpr GLenum kPackSkipPixels = 0x0D04;

struct BufferBinding {
  GLenum target;
  GLenum binding;
};
constexpr std::array<BufferBinding, 4> kBuffers = {{
    {GL_ARRAY_BUFFER, GL_ARRAY_BUFFER_BINDING},
    {GL_ELEMENT_ARRAY_BUFFER, GL_ELEMENT_ARRAY_BUFFER_BINDING},
    {kPixelPackBuffer, kPixelPackBufferBinding},
    {kPixelUnpackBuffer, kPixelUnpackBufferBinding},
}};
constexpr size_t kEs2Buffers = 2;

struct PixelStoreValue {
  GLenum name;
  GLint set;
};
constexpr std::array<PixelStoreValue, 8> kPixelStore = {{
    {GL_PACK_ALIGNMENT, 1},
    {GL_UNPACK_ALIGNMENT, 1},
    {kUnpackRowLength, 0},
    {kUnpackSkipRows, 0},
    {kUnpackSkipPixels, 0},
    {kPackRowLength, 0},
    {kPackSkipRows, 0},
    {kPackSkipPixels, 0},
}};
constexpr size_t kEs2PixelStore = 2;

constexpr std::array<GLenum, 3> kSwitches = {GL_SCISSOR_TEST, GL_DEPTH_TEST,
                                             GL_CULL_FACE};

void BindVertexArray(GLint name) {
  const auto bind = GetExtensions().BindVertexArray;
  if (bind != nullptr) bind(static_cast<GLuint>(name));
}

}  // namespace

PlainGlState::PlainGlState(bool is_es3) : is_es3_(is_es3) {
  if (is_es3_) {
    glGetIntegerv(kVertexArrayBinding, &vertex_array_);
    if (vertex_array_ != 0) BindVertexArray(0);
  }
  for (size_t i = 0; i < (is_es3_ ? kBuffers.size() : kEs2Buffers); ++i) {
    glGetIntegerv(kBuffers[i].binding, &buffers_[i]);
    glBindBuffer(kBuffers[i].target, 0);
  }
  for (GLuint i = 0; i < kMaxAttributes; ++i) {
    attributes_[i].emplace(i, is_es3_);
  }
  for (size_t i = 0; i < (is_es3_ ? kPixelStore.size() : kEs2PixelStore); ++i) {
    const auto [name, set] = kPixelStore[i];
    glGetIntegerv(name, &pixel_store_[i]);
    glPixelStorei(name, set);
  }
  for (size_t i = 0; i < kSwitches.size(); ++i) {
    switches_[i] = glIsEnabled(kSwitches[i]);
    if (switches_[i] != GL_FALSE) glDisable(kSwitches[i]);
  }
  glGetBooleanv(GL_COLOR_WRITEMASK, colour_mask_.data());
  if (!AllColoursAreWritten()) glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
}

PlainGlState::~PlainGlState() {
  if (!AllColoursAreWritten()) {
    glColorMask(colour_mask_[0], colour_mask_[1], colour_mask_[2],
                colour_mask_[3]);
  }
  for (size_t i = 0; i < kSwitches.size(); ++i) {
    if (switches_[i] != GL_FALSE) glEnable(kSwitches[i]);
  }
  for (size_t i = 0; i < (is_es3_ ? kPixelStore.size() : kEs2PixelStore); ++i) {
    const auto [name, set] = kPixelStore[i];
    if (pixel_store_[i] != set) glPixelStorei(name, pixel_store_[i]);
  }
  for (auto& attribute : attributes_) attribute.reset();
  for (size_t i = 0; i < (is_es3_ ? kBuffers.size() : kEs2Buffers); ++i) {
    if (buffers_[i] == 0) continue;
    glBindBuffer(kBuffers[i].target, static_cast<GLuint>(buffers_[i]));
  }
  if (vertex_array_ != 0) BindVertexArray(vertex_array_);
}

bool PlainGlState::AllColoursAreWritten() const {
  return std::count(colour_mask_.begin(), colour_mask_.end(), GL_FALSE) == 0;
}

}  // namespace zuqel
