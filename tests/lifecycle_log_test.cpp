// The log of the calls that start, render and end, whole and in order, and what
// remains when steps of the driver fail.
#include <driver_adaptation.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "base/clock.h"
#include "driver_turns.h"
#include "fresh_session.h"

namespace zuqel {
namespace {

using driver::Call;
using Handles = std::array<bool, 3>;  // display, surface, context

constexpr Handles kNoHandles = {};
constexpr Handles kAllHandles = {true, true, true};

constexpr const char* kDeletion = "OpenGLDeltet tid = #, index = 0\n";
constexpr const char* kSkippedDeletion = R"(OpenGLDeltet tid = #, index = 0
EGL display, surface and context are NULL, skip delete process
)";

constexpr const char* kStrong = "1.000000, scale = 3.600000";
constexpr const char* kWeak = "10.000000, scale = 0.100000";

struct FrameCase {
  int32_t off_screen, format;
  FrameArguments call;
  const char* f_number = kStrong;  // and scale, as logged
  bool has_rect = false;
};

std::string FrameLog(const FrameCase& row) {
  std::string log = row.call.from_depth ? "" : "zuQelRT_GLStartV1 +\n";
  log += !row.has_rect ? "focus rect too small\n" : R"(focus rect ok
rect.x = 8, rect.y = 9, rect.right = 40, rect.bottom = 41_
Src_focus_X = 24, Src_focus_Y = 25
)";
  log += row.off_screen == 0
             ? ""
             : "NV21 to 4444 a_dImgWidth = 64, a_dImgHeight = 48\n";
  log += R"(*VX* zuQelRT_GL Preprocess = # (ms)
ret = 0x0
*VX* zuQelRT_GL initialize shader_bypass(1) = # (ms)
)";
  if (row.call.bypass == 0) {
    log += R"(*VX* zuQelRT_GL minimize depth shader_bypass(2) = # (ms)
f number = )" +
           std::string(row.f_number) + R"(
*VX* zuQelRT_GL depth blur shader_gauss(1) = # (ms)
*VX* zuQelRT_GL minimize depth shader_bypass(3) = # (ms)
*VX* zuQelRT_GL refocus(2) = # (ms)
)";
  }
  log += "gInfo.PreviewWidth, = 64, gInfo.PreviewHeight = 48\n";
  log += row.call.from_depth ? "Bokeh lib FPS = 2\n" : "";
  log += "*VX* zuQelRT_GL Refocusing = # (ms)\n";
  return log + (row.call.from_depth
                    ? "GLStartV1HWDepth take = # (ms)\n"
                    : "GLStartV1 take = # (ms)\nzuQelRT_GLStartV1 -\n");
}

class LifecycleLog : public FreshSessionTest {
 protected:
  [[nodiscard]] Handles HandlesHeld() const {
    const ContextSlot& slot = session_.frame_context;
    return {slot.display != EGL_NO_DISPLAY, slot.surface != EGL_NO_SURFACE,
            slot.context != EGL_NO_CONTEXT};
  }
  void ExpectInit(int32_t off_screen, const std::string& creation) {
    const std::string check =
        "check context +_\n" + creation + "check context -_\n";
    TakeLog();
    EXPECT_EQ(InitSession(SmallInfo(off_screen)), 0U);
    EXPECT_EQ(TakeLog(),
              "zuQelRT_GLInitV1 +\nQel status pass\ngInfo.offmode = " +
                  std::to_string(off_screen) +
                  ", gInfo.srcformat = 0 InitV1_\n" +
                  (off_screen != 0 ? check : "") +
                  "Dot enable = 0\nGraphics buffer flag = 0\n"
                  "zuQelRT_GLInitV1 -\n");
    EXPECT_EQ(session_.QelMode, kModeRunning);
  }
  void ExpectClose(const std::string& deletion) {
    TakeLog();
    EXPECT_EQ(zuQelRT_GLClose(), 0U);
    EXPECT_EQ(TakeLog(),
              "zuQelRT_GLClose +\n" + deletion + "zuQelRT_GLClose -\n");
    EXPECT_EQ(session_.QelMode, kModeClosed);
  }
  // A session that works gives a frame of zero weights back exactly.
  void ExpectGoodSession() {
    ExpectInit(1, CreationLog(0));
    const CallerFrame frame(SmallInfo());
    const auto before = frame.Contents();
    EXPECT_EQ(frame.Render({}), 0U);
    EXPECT_EQ(frame.Contents(), before);
    ExpectClose(kDeletion);
    EXPECT_EQ(HandlesHeld(), kNoHandles);
  }
};

TEST_F(LifecycleLog, StartAndEnd) {
  ExpectClose("");  // never initialised
  for (int i = 0; i < 2; ++i) {
    ExpectGoodSession();
    EXPECT_EQ(eglGetCurrentContext(), EGL_NO_CONTEXT);
    ExpectClose(kSkippedDeletion);
  }
  const CallerContext caller;
  for (const int32_t off_screen : {1, 0, -1}) {
    ExpectInit(off_screen, "");
    ExpectClose(off_screen != 0 ? kSkippedDeletion : "");
    EXPECT_TRUE(caller.is_current());
  }
}

TEST_F(LifecycleLog, Frames) {
  const std::vector<FrameCase> rows = {
      {1, 0, {.f_number = -INFINITY}},
      {1, 2, {.f_number = 2.8F}, "2.800000, scale = 2.880000"},
      {1, 1, {.f_number = 9.9F}, "9.900000, scale = 0.040000"},
      {1, 0, {.rect = {8, 9, 40, 41}, .f_number = 10}, kWeak, true},
      {1, 0, {.rect = {8, 9, 39, 41}}},
      {1, 0, {.rect = {32, 9, 64, 41}}},
      {0, 0, {.f_number = INFINITY}, kWeak},
      {0, 2, {.bypass = -1}}};
  int turn = 0;
  for (FrameCase row : rows) {
    ++turn;  // alternates between the calls on a slow driver
    std::optional<CallerContext> caller;
    if (row.off_screen == 0) caller.emplace();
    const GLInitInfo info = SmallInfo(row.off_screen, row.format);
    const ScopedSession session(info);
    for (const bool from_depth : {false, true}) {
      if (!TakesTurn(turn + (from_depth ? 1 : 0), 2)) continue;
      row.call.from_depth = from_depth;
      // A second ends with the frame from depth, the second in it.
      auto& counters = session_.frames.counters;
      counters.time_of_last_fps_line =
          MillisecondClock() - (from_depth ? 1000 : 0);
      counters.frames_at_last_fps_line = counters.frames_since_start - 1;
      TakeLog();
      EXPECT_EQ(CallerFrame(info).Render(row.call), 0U);
      std::string log = TakeLog();
      // A driver may take a second for one frame.
      const std::string early = "Bokeh lib FPS = 2\n";
      const size_t found = from_depth ? std::string::npos : log.find(early);
      if (found != std::string::npos) log.erase(found, early.size());
      EXPECT_EQ(log, FrameLog(row));
    }
  }
}

TEST_F(LifecycleLog, RefusedAndBypassedFrames) {
  // Never touched: the other plane is null.
  auto* const plane = reinterpret_cast<uint8_t*>(0x123456789A);
  const std::string null = "Pointer is NULL in GLStartV1, a_pucInputImage = ";
  using Row = std::tuple<uint8_t*, uint8_t*, int32_t, std::string>;
  const std::vector<Row> rows = {
      {plane, nullptr, 0, null + "0x3456789a, a_pucInputCbCrImage = 0x0\n"},
      {nullptr, plane, 0, null + "0x0, a_pucInputCbCrImage = 0x3456789a\n"},
      {nullptr, nullptr, -1, "Qel Bokeh bypass\n"}};
  const ScopedSession session(SmallInfo());
  for (const auto& [luma, chroma, bypass, line] : rows) {
    const uint32_t status = bypass != 0 ? 0 : 0x2004;
    TakeLog();
    EXPECT_EQ(zuQelRT_GLStartV1(luma, chroma, nullptr, 0, 0, bypass, {}, 1),
              status);
    EXPECT_EQ(TakeLog(), "zuQelRT_GLStartV1 +\n" + line);
    EXPECT_EQ(
        zuQelRT_GLStartV1HWDepth(luma, chroma, nullptr, 0, 0, bypass, {}, 1),
        status);
    EXPECT_EQ(TakeLog(), line);
  }
}

TEST_F(LifecycleLog, CreationStopsAtTheStepThatFails) {
  struct Row {
    Call call;
    std::string step, failure;
    Handles handles;
  };
  const std::string failed = "failed - eglGetError Returned: 0x3003";
  const std::vector<Row> rows = {
      {Call::kGetDisplay, "eglDisplay return", "EGL_NO_DISPLAY", kNoHandles},
      {Call::kInitialize, "eglInitialize", "failed", {true}},
      {Call::kChooseConfig, "eglChooseConfig", "failed", {true}},
      {Call::kCreatePbufferSurface, "eglCreatePbufferSurface", failed, {true}},
      {Call::kCreateContext, "eglCreateContext", failed, {true}},
      {Call::kMakeCurrent, "eglMakeCurrent", failed, kAllHandles}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.step);
    std::string creation = CreationLog(0);
    creation.resize(creation.find(row.step + " successfully"));
    creation += row.step + " " + row.failure + "\n";
    driver::SetFailing(row.call, true);
    ExpectInit(1, creation);
    EXPECT_EQ(HandlesHeld(), row.handles);
    EXPECT_EQ(CallerFrame(SmallInfo()).Render({.from_depth = true}), 0U);
    driver::SetFailing(row.call, false);
    const bool complete = row.handles == kAllHandles;
    ExpectClose(complete ? kDeletion : kSkippedDeletion);
    EXPECT_EQ(HandlesHeld(), complete ? kNoHandles : row.handles);
    ExpectGoodSession();
  }
}

TEST_F(LifecycleLog, DeletionKeepsHandlesWhenAStepFails) {
  const std::vector<std::pair<Call, std::string>> rows = {
      {Call::kMakeCurrent, "eglMakeCurrent"},
      {Call::kDestroySurface, "eglDestroySurface"},
      {Call::kDestroyContext, "eglDestroyContext"},
      {Call::kTerminate, "eglTerminate"}};
  for (const auto& [call, step] : rows) {
    ExpectInit(1, CreationLog(0));
    driver::SetFailing(call, true);
    ExpectClose(kDeletion + step + " Returned: 0x0\n");
    EXPECT_EQ(HandlesHeld(), kAllHandles) << step;
    driver::SetFailing(call, false);
    zuQelRT_GLClose();
    ExpectGoodSession();
  }
}

}  // namespace
}  // namespace zuqel
