// Results read through a graphic buffer.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "caller_frame.h"
#include "compare.h"
#include "driver_turns.h"
#include "log_capture.h"
#include "scoped_property.h"
#include "test_session.h"

namespace zuqel {
namespace {

constexpr const char* kProperty = "zuqel.graphicbuffer";

GLInitInfo Info(bool graphic_buffer, int32_t format = 0, int32_t width = 64) {
  GLInitInfo info = SmallPreviewInfo(1, width);
  info.srcformat = format;
  info.GraphicBufferFlag = graphic_buffer ? 1 : 0;
  return info;
}

// Textures and framebuffers that are alive.
int LiveNames() {
  int count = 0;
  for (GLuint name = 1; name <= 10000; ++name) {
    count += glIsTexture(name) + glIsFramebuffer(name);
  }
  return count;
}

class GraphicBufferTest : public testing::Test {
 protected:
  GraphicBufferTest() { ResetSession(); }

  // Two frames of a session of their own, the second of other noise; the
  // buffer is used or not, and nothing stays.
  std::array<TestFrame, 2> Frames(const GLInitInfo& info, bool from_depth,
                                  bool used) {
    log_.Take();
    std::array frames = {TestFrame(info, 1), TestFrame(info, 7)};
    {
      const ScopedSession session(info);
      EXPECT_EQ(TheSession().gInfo.GraphicBufferFlag, used ? 1 : 0);
      EXPECT_EQ(RunningFrame().graphic_buffer.has_value(), used);
      EXPECT_GE(LiveNames(), 14 + 14) << "targets";
      const Buffer& given = RunningFrame().memory.packed_frame;
      if (given.exists()) {
        const auto packed = PatternBytes(Pattern::kNoise, 4 * info.PreviewWidth,
                                         info.PreviewHeight, 5);
        std::copy(packed.begin(), packed.end(), given.bytes());
      }
      for (TestFrame& frame : frames) {
        EXPECT_EQ(frame.Render(from_depth), ZUQEL_SUCCESS);
      }
    }
    EXPECT_EQ(LiveNames(), 0);
    Lines log = log_.Take();
    std::erase_if(log, [](const std::string& line) {
      return !line.starts_with("Graphics buffer");
    });
    EXPECT_EQ(log, used ? Lines({"Graphics buffer flag = 1",
                                 "Graphics buffer +", "Graphics buffer -"})
                        : Lines({"Graphics buffer flag = 0"}));
    return frames;
  }

  const CallerContext caller_{64, 48};
  LogCapture log_;
};

TEST_F(GraphicBufferTest, GivesThePictureOfReadBack) {
  int turn = 0;
  for (const int32_t format : {0, 2, 7, 5}) {
    ++turn;  // alternates between the calls on a slow driver
    for (const bool from_depth : {false, true}) {
      if (!TakesTurn(turn + (from_depth ? 1 : 0), 2)) continue;
      SCOPED_TRACE(testing::Message()
                   << "format " << format << ", from depth " << from_depth);
      const int32_t width = 64 + 8 * format;  // another one after each other
      const GLInitInfo info = Info(true, format, width);
      const auto locked = Frames(info, from_depth, true);
      // Not asked for, or not to be had.
      const ScopedProperty unusable(kProperty, from_depth ? "0" : "");
      const auto plain =
          Frames(Info(from_depth, format, width), from_depth, false);
      for (size_t i = 0; i < locked.size(); ++i) {
        const TestFrame &actual = locked.at(i), &expected = plain.at(i);
        EXPECT_NE(actual.luma, TestFrame(info, i == 0 ? 1 : 7).luma);
        EXPECT_TRUE(IsNear(actual.luma, expected.luma, kRounding, 1));
        EXPECT_TRUE(IsNear(actual.chroma, expected.chroma, kRounding, 1));
      }
    }
  }
}

TEST_F(GraphicBufferTest, UnreadableBuffersLeaveThePlanes) {
  const ScopedSession session(Info(true));
  for (const bool readable : {true, false, true}) {
    const ScopedProperty property(kProperty, readable ? "" : "unreadable");
    TestFrame frame;
    EXPECT_EQ(frame.Render(), ZUQEL_SUCCESS);
    EXPECT_EQ(frame.luma != TestFrame().luma, readable);
  }
}

}  // namespace
}  // namespace zuqel
