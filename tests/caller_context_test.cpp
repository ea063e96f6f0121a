// The library inside a caller's ES 3 context full of state that would bend its
// draws and transfers. Links the shared library alone.
#include <EGL/egl.h>
#include <GLES3/gl3.h>
#include <android/log.h>
#include <gtest/gtest.h>
#include <zuQelRT_GL.h>

#include <array>

#include "caller_context.h"
#include "compare.h"
#include "test_scene.h"

namespace zuqel {
namespace {

constexpr int kWidth = 322;
constexpr int kHeight = 182;
constexpr GLInitInfo kInfo = {.PreviewWidth = kWidth,
                              .PreviewHeight = kHeight,
                              .DepthWidth = 320,
                              .DepthHeight = 240,
                              .WorkWidth = 320,
                              .WorkHeight = 240,
                              .OutputWidth = 0,
                              .OutputHeight = 0,
                              .PortraitMode = 0,
                              .offmode = 1,
                              .srcformat = 0,
                              .GraphicBufferFlag = 0};

uint32_t Init() {
  constexpr std::array<uint8_t, 512> kRecord = {};
  return zuQelRT_GLInitV1(kRecord.data(), uint32_t{kRecord.size()}, nullptr, 0,
                          &kInfo);
}

// The planes, one behind the other.
std::vector<uint8_t> RenderFrame(bool from_depth) {
  auto frame = PatternBytes(Pattern::kNoise, kWidth, kHeight * 3 / 2, 1);
  uint8_t* chroma = &frame[size_t{kWidth} * kHeight];
  const auto weights = PatternBytes(Pattern::kRamp, 320, 240, 1);
  auto disparity = DisparityScene(320, 240, 100, 900);
  const uint32_t status =
      from_depth ? zuQelRT_GLStartV1HWDepth(frame.data(), chroma,
                                            disparity.data(), 160, 90, 0, {}, 1)
                 : zuQelRT_GLStartV1(frame.data(), chroma, weights.data(), 160,
                                     90, 0, {}, 1);
  EXPECT_EQ(status, ZUQEL_SUCCESS);
  return frame;
}

// Names of buffers and a vertex array, bound where transfers and draws look.
// The buffers are too small for a frame.
struct Bound {
  GLuint vertex_array = 0;
  std::array<GLuint, 4> buffers = {};
};

constexpr std::array<GLenum, 4> kTargets = {
    GL_ARRAY_BUFFER, GL_ELEMENT_ARRAY_BUFFER, GL_PIXEL_PACK_BUFFER,
    GL_PIXEL_UNPACK_BUFFER};

Bound SetState() {
  Bound bound;
  glGenVertexArrays(1, &bound.vertex_array);
  glBindVertexArray(bound.vertex_array);
  glGenBuffers(4, bound.buffers.data());
  for (size_t i = 0; i < kTargets.size(); ++i) {
    glBindBuffer(kTargets.at(i), bound.buffers.at(i));
    glBufferData(kTargets.at(i), 64, nullptr, GL_STATIC_DRAW);
  }
  glVertexAttribPointer(0, 4, GL_FLOAT, GL_FALSE, 16, nullptr);
  glEnableVertexAttribArray(0);
  glPixelStorei(GL_PACK_ALIGNMENT, 8);
  glPixelStorei(GL_UNPACK_ALIGNMENT, 8);
  glPixelStorei(GL_PACK_ROW_LENGTH, 1000);
  glPixelStorei(GL_PACK_SKIP_ROWS, 3);
  glPixelStorei(GL_PACK_SKIP_PIXELS, 5);
  glPixelStorei(GL_UNPACK_ROW_LENGTH, 1001);
  glPixelStorei(GL_UNPACK_SKIP_ROWS, 2);
  glPixelStorei(GL_UNPACK_SKIP_PIXELS, 7);
  glEnable(GL_SCISSOR_TEST);
  glScissor(3, 4, 5, 6);
  glEnable(GL_DEPTH_TEST);
  glDepthFunc(GL_NEVER);
  glEnable(GL_CULL_FACE);
  glCullFace(GL_FRONT_AND_BACK);
  glColorMask(GL_FALSE, GL_TRUE, GL_FALSE, GL_TRUE);
  return bound;
}

// Integers of one state after the other.
std::vector<GLint> ReadState() {
  constexpr std::array<GLenum, 23> kNames = {GL_VERTEX_ARRAY_BINDING,
                                             GL_ARRAY_BUFFER_BINDING,
                                             GL_ELEMENT_ARRAY_BUFFER_BINDING,
                                             GL_PIXEL_PACK_BUFFER_BINDING,
                                             GL_PIXEL_UNPACK_BUFFER_BINDING,
                                             GL_PACK_ALIGNMENT,
                                             GL_UNPACK_ALIGNMENT,
                                             GL_PACK_ROW_LENGTH,
                                             GL_PACK_SKIP_ROWS,
                                             GL_PACK_SKIP_PIXELS,
                                             GL_UNPACK_ROW_LENGTH,
                                             GL_UNPACK_SKIP_ROWS,
                                             GL_UNPACK_SKIP_PIXELS,
                                             GL_SCISSOR_TEST,
                                             GL_SCISSOR_BOX,
                                             GL_DEPTH_TEST,
                                             GL_DEPTH_FUNC,
                                             GL_DEPTH_WRITEMASK,
                                             GL_CULL_FACE,
                                             GL_CULL_FACE_MODE,
                                             GL_COLOR_WRITEMASK,
                                             GL_BLEND,
                                             GL_COLOR_CLEAR_VALUE};
  std::vector<GLint> state;
  for (const GLenum name : kNames) {
    std::array<GLint, 4> values = {};
    glGetIntegerv(name, values.data());
    state.insert(state.end(), values.begin(), values.end());
  }
  constexpr std::array<GLenum, 3> kAttributeNames = {
      GL_VERTEX_ATTRIB_ARRAY_ENABLED, GL_VERTEX_ATTRIB_ARRAY_BUFFER_BINDING,
      GL_VERTEX_ATTRIB_ARRAY_STRIDE};
  for (const GLenum name : kAttributeNames) {
    state.emplace_back();
    glGetVertexAttribiv(0, name, &state.back());
  }
  return state;
}

TEST(CallerContextTest, StateNeitherBendsTheFrameNorIsChanged) {
  __android_log_set_minimum_priority(ANDROID_LOG_SILENT);
  ASSERT_EQ(eglGetCurrentContext(), EGL_NO_CONTEXT);
  ASSERT_EQ(Init(), ZUQEL_SUCCESS);
  PinDriverLibraries();
  std::array<std::vector<uint8_t>, 2> own;
  for (const bool from_depth : {false, true}) {
    own.at(from_depth ? 1 : 0) = RenderFrame(from_depth);
  }
  zuQelRT_GLClose();
  ASSERT_EQ(eglGetCurrentContext(), EGL_NO_CONTEXT);

  const CallerContext context(16, 16, 3);
  if (!context.is_current()) GTEST_SKIP() << "no ES 3 context";
  const Bound bound = SetState();
  const std::vector<GLint> before = ReadState();
  ASSERT_EQ(glGetError(), GLenum{GL_NO_ERROR});

  ASSERT_EQ(Init(), ZUQEL_SUCCESS);
  EXPECT_EQ(ReadState(), before) << "after initialisation";
  for (const bool from_depth : {false, true}) {
    EXPECT_TRUE(IsNear(from_depth ? "from depth" : "from weights",
                       RenderFrame(from_depth), own.at(from_depth ? 1 : 0),
                       kWidth, 1, kRounding));
    EXPECT_EQ(ReadState(), before) << "after a frame";
  }
  zuQelRT_GLClose();
  EXPECT_EQ(ReadState(), before) << "after close";
  EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});

  EXPECT_TRUE(context.is_current());
  EXPECT_EQ(glIsVertexArray(bound.vertex_array), GL_TRUE);
  for (const GLuint buffer : bound.buffers) {
    EXPECT_EQ(glIsBuffer(buffer), GL_TRUE);
  }
}

}  // namespace
}  // namespace zuqel
