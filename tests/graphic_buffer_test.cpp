// Results read through a graphic buffer.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <vector>

#include "compare.h"
#include "log_capture.h"
#include "test_frame.h"
#include "test_session.h"

namespace zuqel {
namespace {

constexpr const char* kProperty = "zuqel.graphicbuffer";

GLInitInfo Info(int32_t format, bool graphic_buffer, int32_t width = 64) {
  GLInitInfo info = DefaultInfo();
  info.PreviewWidth = width;
  info.PreviewHeight = 48;
  info.OutputWidth = width;
  info.OutputHeight = 48;
  info.srcformat = format;
  info.GraphicBufferFlag = graphic_buffer ? 1 : 0;
  return info;
}

class GraphicBufferTest : public testing::Test {
 protected:
  GraphicBufferTest() { ResetSession(); }

  // The lines about graphic buffers since the last call.
  Lines BufferLines() {
    Lines lines = log_.Take();
    std::erase_if(lines, [](const std::string& line) {
      return !line.starts_with("Graphics buffer");
    });
    return lines;
  }
  // Two frames of a session, the second of other noise.
  static std::array<TestFrame, 2> Frames(const GLInitInfo& info,
                                         bool from_depth) {
    const ScopedSession session(info);
    const auto packed = PatternBytes(Pattern::kNoise, 4 * info.PreviewWidth,
                                     info.PreviewHeight, 5);
    std::copy(packed.begin(), packed.end(),
              TheSession().buffers[BufferRole::kPackedFrame].bytes());
    std::array frames = {TestFrame(info, 1), TestFrame(info, 7)};
    for (TestFrame& frame : frames) {
      EXPECT_EQ(frame.Render(from_depth), ZUQEL_SUCCESS);
    }
    return frames;
  }

  LogCapture log_;
  FrameSession& frame_session_ = TheSession().frame;
};

const Lines kUsed = {"Graphics buffer flag = 1", "Graphics buffer +",
                     "Graphics buffer -"};
const Lines kNotUsed = {"Graphics buffer flag = 0"};

TEST_F(GraphicBufferTest, GivesThePictureOfReadBack) {
  for (const int32_t format : {0, 2, 7, 5}) {
    for (const bool from_depth : {false, true}) {
      SCOPED_TRACE(testing::Message()
                   << "format " << format << ", from depth " << from_depth);
      const GLInitInfo info = Info(format, true);
      const auto read_back = Frames(Info(format, false), from_depth);
      EXPECT_EQ(BufferLines(), kNotUsed);
      const auto locked = Frames(info, from_depth);
      EXPECT_EQ(BufferLines(), kUsed);
      for (size_t i = 0; i < locked.size(); ++i) {
        EXPECT_NE(locked.at(i).luma, TestFrame(info, i == 0 ? 1 : 7).luma);
        EXPECT_TRUE(IsNear("luma", locked.at(i).luma, read_back.at(i).luma, 64,
                           1, kRounding));
        EXPECT_TRUE(IsNear("chroma", locked.at(i).chroma,
                           read_back.at(i).chroma, 64, 1, kRounding));
      }
    }
  }
}

TEST_F(GraphicBufferTest, OnScreenThePlanesReceiveWhatItHeld) {
  const CallerContext caller(64, 48);
  GLInitInfo info = Info(0, true);
  info.offmode = 0;
  const ScopedSession session(info);
  for (const bool from_depth : {false, true}) {
    const float red = from_depth ? 10 : 200;
    glBindFramebuffer(GL_FRAMEBUFFER,
                      frame_session_.render.targets.framebuffer(kOutputTarget));
    glClearColor(red / 255, 20.0F / 255, 30.0F / 255, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    glClearColor(0, 0, 0, 0);
    TestFrame frame(info);
    EXPECT_EQ(frame.Render(from_depth), ZUQEL_SUCCESS);
    EXPECT_EQ(frame.luma, std::vector<uint8_t>(frame.luma.size(),
                                               static_cast<uint8_t>(red)));
    for (size_t i = 0; i < frame.chroma.size(); ++i) {
      ASSERT_EQ(frame.chroma[i], i % 2 == 0 ? 30 : 20) << i;
    }
  }
}

TEST_F(GraphicBufferTest, UnusableBuffersAreReplacedByReadBack) {
  const auto expected = Frames(Info(0, false), false);
  log_.Take();
  const ScopedProperty unusable(kProperty, "0");
  EXPECT_EQ(Frames(Info(0, true), false)[1].luma, expected[1].luma);
  EXPECT_EQ(BufferLines(), kNotUsed);
  const ScopedSession session(Info(0, true));
  EXPECT_EQ(TheSession().gInfo.GraphicBufferFlag, 0);
  EXPECT_FALSE(frame_session_.graphic_buffer.exists());
}

TEST_F(GraphicBufferTest, UnreadableBuffersLeaveThePlanes) {
  const GLInitInfo info = Info(0, true);
  const ScopedSession session(info);
  for (const bool readable : {true, false, true}) {
    std::optional<ScopedProperty> unreadable;
    if (!readable) unreadable.emplace(kProperty, "unreadable");
    TestFrame frame(info);
    log_.Take();
    EXPECT_EQ(frame.Render(), ZUQEL_SUCCESS);
    EXPECT_EQ(frame.luma != TestFrame(info).luma, readable);
    EXPECT_EQ(frame.chroma != TestFrame(info).chroma, readable);
    const Lines log = log_.Take();
    EXPECT_EQ(std::count(log.begin(), log.end(),
                         "gInfo.PreviewWidth, = 64, gInfo.PreviewHeight = 48"),
              1);
  }
}

// Textures, framebuffers and programs that are alive; a driver may count names
// up over all sessions. A deleted program lives on while it is in use.
int LiveNames() {
  glUseProgram(0);
  int count = 0;
  for (GLuint name = 1; name <= 10000; ++name) {
    for (const GLboolean lives :
         {glIsTexture(name), glIsFramebuffer(name), glIsProgram(name)}) {
      count += lives == GL_TRUE ? 1 : 0;
    }
  }
  return count;
}

TEST_F(GraphicBufferTest, SessionsFollowEachOther) {
  const CallerContext caller;
  for (const int32_t width : {96, 64, 128}) {
    SCOPED_TRACE(width);
    const auto locked = Frames(Info(0, true, width), true);
    EXPECT_FALSE(frame_session_.graphic_buffer.exists());
    EXPECT_EQ(LiveNames(), 0);
    const auto read_back = Frames(Info(0, false, width), true);
    EXPECT_TRUE(
        IsNear("luma", locked[1].luma, read_back[1].luma, width, 1, kRounding));
    EXPECT_EQ(LiveNames(), 0);
  }
  const ScopedSession session(Info(0, true));
  EXPECT_TRUE(frame_session_.graphic_buffer.exists());
  EXPECT_GE(LiveNames(), 14 + 14 + 11 + 1) << "targets, programs, the buffer";
  EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
}

}  // namespace
}  // namespace zuqel
