// The library in a caller's ES 3 context whose state would break its draws and
// transfers. Links the shared library alone.
#include <GLES3/gl3.h>
#include <gtest/gtest.h>
#include <zuQelRT_GL.h>

#include <algorithm>
#include <array>

#include "caller_context.h"
#include "caller_state.h"
#include "compare.h"
#include "test_scene.h"

namespace zuqel {
namespace {

constexpr int kWidth = 322, kHeight = 182;

// Off screen, maps of 320 x 240.
uint32_t Init() {
  constexpr GLInitInfo kInfo = {kWidth, kHeight, 320, 240, 320, 240,
                                0,      0,       0,   1,   0,   0};
  constexpr std::array<uint8_t, 512> kRecord = {};
  return zuQelRT_GLInitV1(kRecord.data(), uint32_t{kRecord.size()}, nullptr, 0,
                          &kInfo);
}

// Frames with weights and from depth: their planes, one after the other.
std::vector<uint8_t> RenderFrames() {
  const auto weights = PatternBytes(Pattern::kRamp, 320, 240, 1);
  auto disparity = DisparityScene(320, 240, 100, 900);
  auto frames = PatternBytes(Pattern::kNoise, kWidth, kHeight * 3, 1);
  uint8_t* first = frames.data();
  uint8_t* second = &frames[frames.size() / 2];
  constexpr int kLuma = kWidth * kHeight;
  EXPECT_EQ(zuQelRT_GLStartV1(first, first + kLuma, weights.data(), 160, 90, 0,
                              {}, 1),
            ZUQEL_SUCCESS);
  EXPECT_EQ(zuQelRT_GLStartV1HWDepth(second, second + kLuma, disparity.data(),
                                     160, 90, 0, {}, 1),
            ZUQEL_SUCCESS);
  return frames;
}

constexpr auto kOthers = std::to_array<GLenum>(
    {GL_ARRAY_BUFFER_BINDING, GL_PIXEL_PACK_BUFFER_BINDING,
     GL_PIXEL_UNPACK_BUFFER_BINDING, GL_VERTEX_ARRAY_BINDING, GL_SCISSOR_BOX,
     GL_COLOR_WRITEMASK});

constexpr auto kAttribute = std::to_array<GLenum>(
    {GL_VERTEX_ATTRIB_ARRAY_ENABLED, GL_VERTEX_ATTRIB_ARRAY_SIZE,
     GL_VERTEX_ATTRIB_ARRAY_TYPE, GL_VERTEX_ATTRIB_ARRAY_NORMALIZED,
     GL_VERTEX_ATTRIB_ARRAY_STRIDE, GL_VERTEX_ATTRIB_ARRAY_BUFFER_BINDING,
     GL_VERTEX_ATTRIB_ARRAY_INTEGER, GL_VERTEX_ATTRIB_ARRAY_DIVISOR});

void ReadAttributes(std::vector<GLint>& state) {
  for (const GLuint index : {0U, 1U}) {
    for (const GLenum name : kAttribute) {
      glGetVertexAttribiv(index, name, &state.emplace_back());
    }
    void* pointer = nullptr;
    glGetVertexAttribPointerv(index, GL_VERTEX_ATTRIB_ARRAY_POINTER, &pointer);
    const auto address = reinterpret_cast<uintptr_t>(pointer);
    state.push_back(static_cast<GLint>(address));
    state.push_back(static_cast<GLint>(address >> 32));
  }
}

std::vector<GLint> ReadState() {
  std::vector<GLint> state;
  const auto read = [&](GLenum name) {
    std::array<GLint, 4> values = {};
    glGetIntegerv(name, values.data());
    state.insert(state.end(), values.begin(), values.end());
  };
  std::for_each(std::begin(kPixelStore), std::end(kPixelStore), read);
  std::for_each(std::begin(kSwitches), std::end(kSwitches), read);
  std::for_each(std::begin(kOthers), std::end(kOthers), read);
  GLint vertex_array = 0;
  glGetIntegerv(GL_VERTEX_ARRAY_BINDING, &vertex_array);
  ReadAttributes(state);
  glBindVertexArray(0);
  ReadAttributes(state);
  glBindVertexArray(static_cast<GLuint>(vertex_array));
  return state;
}

TEST(CallerContextTest, StateNeitherAffectsTheFrameNorChanges) {
  ASSERT_EQ(Init(), ZUQEL_SUCCESS);
  PinDriverLibraries();
  const std::vector<uint8_t> in_own_context = RenderFrames();
  zuQelRT_GLClose();

  const CallerContext context(16, 16, 3);
  if (!context.is_current()) GTEST_SKIP() << "no ES 3 context";
  SetState();
  const std::vector<GLint> before = ReadState();
  ASSERT_EQ(Init(), ZUQEL_SUCCESS);
  EXPECT_EQ(ReadState(), before) << "after initialisation";
  EXPECT_TRUE(IsNear(RenderFrames(), in_own_context, kRounding, 1));
  EXPECT_EQ(ReadState(), before) << "after frames";
  zuQelRT_GLClose();
  EXPECT_EQ(ReadState(), before) << "after close";
  EXPECT_TRUE(context.is_current());
}

}  // namespace
}  // namespace zuqel
