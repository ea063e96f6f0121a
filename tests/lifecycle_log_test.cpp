// The log lines of the calls that start, render and end, whole and in order,
// and what remains when steps of the driver fail.
#include <driver_adaptation.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "base/clock.h"
#include "caller_context.h"
#include "log_capture.h"
#include "test_session.h"

namespace zuqel {
namespace {

using driver::Call;

constexpr int32_t kWidth = 64;
constexpr int32_t kHeight = 48;
constexpr size_t kMapSize = 76800;
constexpr FocusRect kNoRect = {0, 0, 0, 0};

GLInitInfo Info(int32_t off_screen, int32_t format) {
  GLInitInfo info = DefaultInfo();
  info.PreviewWidth = kWidth;
  info.PreviewHeight = kHeight;
  info.offmode = off_screen;
  info.srcformat = format;
  return info;
}

Lines operator+(Lines first, const Lines& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

const Lines& CreationLines() {
  static const Lines lines = {
      "OpenGLCreateContextSurface",           "eglDisplay return successfully",
      "eglInitialize successfully",           "eglChooseConfig successfully",
      "eglCreatePbufferSurface successfully", "eglCreateContext successfully",
      "eglMakeCurrent successfully"};
  return lines;
}

Lines InitLines(int32_t off_screen, const Lines& creation) {
  Lines lines = {"zuQelRT_GLInitV1 +", "Qel status pass",
                 "gInfo.offmode = " + std::to_string(off_screen) +
                     ", gInfo.srcformat = 0 InitV1 "};
  if (off_screen != 0) lines.emplace_back("check context + ");
  if (!creation.empty()) {
    lines.emplace_back(
        "There is no openGL context, going to create opengl context, tid = #, "
        "index 0");
  }
  lines = lines + creation;
  if (off_screen != 0) lines.emplace_back("check context - ");
  return lines + Lines{"Dot enable = 0", "Graphics buffer flag = 0",
                       "zuQelRT_GLInitV1 -"};
}

enum class Deletion { kNotTried, kSkipped, kDone, kFailed };

Lines CloseLines(Deletion deletion, const char* failure = "") {
  Lines lines = {"zuQelRT_GLClose +"};
  if (deletion != Deletion::kNotTried) {
    lines.emplace_back("OpenGLDeltet tid = #, index = 0");
  }
  if (deletion == Deletion::kSkipped) {
    lines.emplace_back(
        "EGL display, surface and context are NULL, skip delete process");
  }
  if (deletion == Deletion::kFailed) lines.emplace_back(failure);
  lines.emplace_back("zuQelRT_GLClose -");
  return lines;
}

// A frame of its own planes and maps.
struct TestFrame {
  std::vector<uint8_t> luma = Noise(size_t{kWidth} * kHeight, 1);
  std::vector<uint8_t> chroma = Noise(size_t{kWidth} * kHeight / 2, 2);
  std::vector<uint8_t> weights = std::vector<uint8_t>(kMapSize);
  std::vector<uint16_t> depth = std::vector<uint16_t>(kMapSize, 100);

  static std::vector<uint8_t> Noise(size_t count, uint32_t state) {
    std::vector<uint8_t> bytes(count);
    for (uint8_t& byte : bytes) {
      state = state * 1664525 + 1013904223;
      byte = static_cast<uint8_t>(state >> 24);
    }
    return bytes;
  }

  uint32_t Render(bool from_depth, int32_t bypass, FocusRect rect,
                  float f_number) {
    return from_depth
               ? zuQelRT_GLStartV1HWDepth(luma.data(), chroma.data(),
                                          depth.data(), 3, 4, bypass, rect,
                                          f_number)
               : zuQelRT_GLStartV1(luma.data(), chroma.data(), weights.data(),
                                   3, 4, bypass, rect, f_number);
  }
};

struct FrameCase {
  int32_t off_screen;
  int32_t format;
  bool from_depth;
  int32_t bypass;
  float f_number;
  std::string f_text;  // f-number and scale as logged
  FocusRect rect = kNoRect;
  std::pair<int32_t, int32_t> centre = {-1, -1};  // of a rectangle taken
};

Lines RectLines(const FrameCase& row) {
  if (row.centre.first < 0) return {"focus rect too small"};
  const auto text = [](int32_t value) { return std::to_string(value); };
  return {"focus rect ok",
          "rect.x = " + text(row.rect.x) + ", rect.y = " + text(row.rect.y) +
              ", rect.right = " + text(row.rect.right) +
              ", rect.bottom = " + text(row.rect.bottom) + " ",
          "Src_focus_X = " + text(row.centre.first) +
              ", Src_focus_Y = " + text(row.centre.second)};
}

Lines FrameLines(const FrameCase& row, int32_t width, int32_t height) {
  const std::string size_text = std::to_string(width) + ", ";
  const std::string height_text = std::to_string(height);
  Lines lines;
  if (!row.from_depth) lines.emplace_back("zuQelRT_GLStartV1 +");
  lines = lines + RectLines(row);
  if (row.off_screen != 0) {
    lines.push_back("NV21 to 4444 a_dImgWidth = " + size_text +
                    "a_dImgHeight = " + height_text);
  }
  lines = lines + Lines{"*VX* zuQelRT_GL Preprocess = # (ms)", "ret = 0x0",
                        "*VX* zuQelRT_GL initialize shader_bypass(1) = # (ms)"};
  if (row.bypass == 0) {
    lines = lines +
            Lines{"*VX* zuQelRT_GL minimize depth shader_bypass(2) = # (ms)",
                  "f number = " + row.f_text,
                  "*VX* zuQelRT_GL depth blur shader_gauss(1) = # (ms)",
                  "*VX* zuQelRT_GL minimize depth shader_bypass(3) = # (ms)",
                  "*VX* zuQelRT_GL refocus(2) = # (ms)"};
  }
  lines = lines + Lines{"gInfo.PreviewWidth, = " + size_text +
                            "gInfo.PreviewHeight = " + height_text,
                        "*VX* zuQelRT_GL Refocusing = # (ms)"};
  return lines + (row.from_depth ? Lines{"GLStartV1HWDepth take = # (ms)"}
                                 : Lines{"GLStartV1 take = # (ms)",
                                         "zuQelRT_GLStartV1 -"});
}

// Every test begins as the process does.
class LifecycleLog : public testing::Test {
 protected:
  LifecycleLog() { ResetSession(); }
  ~LifecycleLog() override {
    zuQelRT_GLClose();
    EXPECT_EQ(Handles(), kNoHandles);
  }

  // The next frame logs no rate.
  void HoldFpsLine() {
    session_.frame.counters.time_of_last_fps_line = MillisecondClock();
  }
  [[nodiscard]] std::array<bool, 3> Handles() const {
    const ContextSlot& slot = session_.context;
    return {slot.display != EGL_NO_DISPLAY, slot.surface != EGL_NO_SURFACE,
            slot.context != EGL_NO_CONTEXT};
  }
  // A session that works gives a frame of zero weights back exactly.
  static void ExpectGoodSession() {
    const ScopedSession session(Info(1, 0));
    EXPECT_EQ(session.status(), 0U);
    TestFrame frame;
    const TestFrame before = frame;
    EXPECT_EQ(frame.Render(/*from_depth=*/false, 0, kNoRect, 1), 0U);
    EXPECT_TRUE(frame.luma == before.luma && frame.chroma == before.chroma);
    frame.weights.assign(frame.weights.size(), 255);
    EXPECT_EQ(frame.Render(/*from_depth=*/false, 0, kNoRect, 1), 0U);
    EXPECT_NE(frame.luma, before.luma);
  }

  static constexpr std::array<bool, 3> kNoHandles = {};
  static constexpr std::array<bool, 3> kAllHandles = {true, true, true};
  Session& session_ = TheSession();
  LogCapture log_;
};

TEST_F(LifecycleLog, StartAndEnd) {
  // Never initialised, and again.
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(zuQelRT_GLClose(), 0U);
    EXPECT_EQ(log_.Take(), CloseLines(Deletion::kNotTried));
    EXPECT_EQ(session_.QelMode, kModeClosed);
  }
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(InitSession(Info(1, 0)), 0U);
    EXPECT_EQ(log_.Take(), InitLines(1, CreationLines()));
    EXPECT_EQ(Handles(), kAllHandles);
    zuQelRT_GLClose();
    EXPECT_EQ(log_.Take(), CloseLines(Deletion::kDone));
    EXPECT_EQ(eglGetCurrentContext(), EGL_NO_CONTEXT);
    zuQelRT_GLClose();
    EXPECT_EQ(log_.Take(), CloseLines(Deletion::kSkipped));
  }
  const CallerContext caller;
  auto* const own = eglGetCurrentContext();
  ASSERT_NE(own, EGL_NO_CONTEXT);
  for (const int32_t off_screen : {1, 0, -1}) {
    EXPECT_EQ(InitSession(Info(off_screen, 0)), 0U);
    EXPECT_EQ(log_.Take(), InitLines(off_screen, {}));
    zuQelRT_GLClose();
    EXPECT_EQ(log_.Take(), CloseLines(off_screen != 0 ? Deletion::kSkipped
                                                      : Deletion::kNotTried));
    EXPECT_EQ(eglGetCurrentContext(), own) << "the caller keeps its context";
  }
}

std::vector<FrameCase> FrameCases() {
  const std::string strong = "1.000000, scale = 3.600000";
  const std::string weak = "10.000000, scale = 0.100000";
  constexpr int32_t kMin = INT32_MIN, kMax = INT32_MAX;
  return {
      {1, 0, false, 0, 1, strong},
      {1, 2, false, 0, 0.5F, strong},
      {1, 7, false, 0, -INFINITY, strong},
      {1, 1, false, 0, 2.8F, "2.800000, scale = 2.880000"},
      {1, 0, true, 0, 5.5F, "5.500000, scale = 1.800000"},
      {1, 2, true, 0, 9.9F, "9.900000, scale = 0.040000"},
      {1, 7, true, 0, 10, weak},
      {1, 1, true, 0, 12, weak},
      {0, 0, false, 0, INFINITY, weak},
      {0, 7, true, 0, 1, strong},
      {0, 0, false, 1, 1, ""},
      {0, 2, true, -1, 1, ""},
      {1, 0, false, 0, 1, strong, {8, 9, 40, 41}, {24, 25}},
      {1, 0, true, 0, 1, strong, {0, 0, 63, 47}, {31, 23}},
      {1, 0, false, 0, 1, strong, {8, 8, 39, 40}},
      {1, 0, false, 0, 1, strong, {8, 8, 40, 39}},
      {1, 0, false, 0, 1, strong, {-1, 8, 40, 40}},
      {1, 0, false, 0, 1, strong, {8, -1, 40, 40}},
      {1, 0, false, 0, 1, strong, {8, 8, 64, 40}},
      {1, 0, false, 0, 1, strong, {8, 8, 40, 48}},
      {1, 0, true, 0, 1, strong, {kMin, kMin, kMax, kMax}},
      {1, 0, true, 0, 1, strong, {kMax, kMax, kMin, kMin}},
  };
}

TEST_F(LifecycleLog, Frames) {
  for (const FrameCase& row : FrameCases()) {
    SCOPED_TRACE(testing::Message()
                 << "offmode " << row.off_screen << ", format " << row.format
                 << ", depth " << row.from_depth << ", rect " << row.rect.x);
    std::optional<CallerContext> caller;
    if (row.off_screen == 0) caller.emplace();
    const ScopedSession session(Info(row.off_screen, row.format));
    TestFrame frame;
    HoldFpsLine();
    log_.Take();
    EXPECT_EQ(frame.Render(row.from_depth, row.bypass, row.rect, row.f_number),
              0U);
    EXPECT_EQ(log_.Take(), FrameLines(row, kWidth, kHeight));
  }
}

TEST_F(LifecycleLog, RefusedAndBypassedFrames) {
  // Never touched: the other plane is null.
  auto* const plane = reinterpret_cast<uint8_t*>(0x123456789A);
  struct Row {
    uint8_t* luma;
    uint8_t* chroma;
    int32_t bypass;

    uint32_t status;
    std::string line;
  };
  const std::string null_plane =
      "Pointer is NULL in GLStartV1, a_pucInputImage = ";
  const std::vector<Row> rows = {
      {plane, nullptr, 0, 0x2004,
       null_plane + "0x3456789a, a_pucInputCbCrImage = 0x0"},
      {nullptr, plane, 0, 0x2004,
       null_plane + "0x0, a_pucInputCbCrImage = 0x3456789a"},
      {nullptr, nullptr, -1, 0, "Qel Bokeh bypass"},
      {plane, plane, 1, 0, "Qel Bokeh bypass"},
  };
  const ScopedSession session(Info(1, 0));
  FrameCounters& counters = session_.frame.counters;
  for (const Row& row : rows) {
    counters = {.dump_number = 7, .frame_index = 8, .frames_since_start = 9};
    log_.Take();
    EXPECT_EQ(zuQelRT_GLStartV1(row.luma, row.chroma, nullptr, 0, 0, row.bypass,
                                kNoRect, 1),
              row.status);
    EXPECT_EQ(log_.Take(), (Lines{"zuQelRT_GLStartV1 +", row.line}));
    EXPECT_EQ(zuQelRT_GLStartV1HWDepth(row.luma, row.chroma, nullptr, 0, 0,
                                       row.bypass, kNoRect, 1),
              row.status);
    EXPECT_EQ(log_.Take(), Lines{row.line});
    EXPECT_EQ(std::tuple(counters.dump_number, counters.frame_index,
                         counters.frames_since_start),
              std::tuple(7, row.bypass != 0 ? 0 : 8, 9));
  }
}

TEST_F(LifecycleLog, FramesWithoutASession) {
  for (const bool closed : {false, true}) {
    // A closed session still knows its record.
    if (closed) {
      const ScopedSession session(Info(1, 0));
    }
    session_.FocusDotEnable = 1;
    for (const bool from_depth : {false, true}) {
      TestFrame frame;
      frame.depth[5] = 1023;
      const TestFrame before = frame;
      HoldFpsLine();
      log_.Take();
      EXPECT_EQ(frame.Render(from_depth, 0, kNoRect, 1), 0U);
      EXPECT_EQ(log_.Take(),
                FrameLines({closed ? 1 : 0, 0, from_depth, 0, 1,
                            "1.000000, scale = 3.600000"},
                           closed ? kWidth : 0, closed ? kHeight : 0));
      EXPECT_TRUE(frame.luma == before.luma && frame.chroma == before.chroma &&
                  frame.depth == before.depth);
    }
  }
}

TEST_F(LifecycleLog, CountersAndRate) {
  const auto rate_line = [&]() -> std::string {
    TestFrame().Render(/*from_depth=*/false, 0, kNoRect, 1);
    const Lines lines = log_.Take();
    const auto found = std::find_if(
        lines.begin(), lines.end(),
        [](const std::string& line) { return line.starts_with("Bokeh lib"); });
    return found == lines.end() ? "" : *found;
  };
  FrameCounters& counters = session_.frame.counters;
  {
    const ScopedSession session(Info(1, 0));
    EXPECT_EQ(rate_line(), "Bokeh lib FPS = 1") << "first of the process";
    HoldFpsLine();
    EXPECT_EQ(rate_line(), "");
    EXPECT_EQ(rate_line(), "");
    counters.time_of_last_fps_line -= 1000;
    EXPECT_EQ(rate_line(), "Bokeh lib FPS = 3");
    EXPECT_EQ(counters.frame_index, 4U);
    EXPECT_EQ(TestFrame().Render(/*from_depth=*/true, 1, kNoRect, 1), 0U);
    EXPECT_EQ(counters.frame_index, 0U);
  }
  const ScopedSession session(Info(1, 0));
  HoldFpsLine();
  EXPECT_EQ(rate_line(), "");
  EXPECT_EQ(std::tuple(counters.dump_number, counters.frame_index,
                       counters.frames_since_start),
            std::tuple(5, 1, 5));
}

TEST_F(LifecycleLog, CreationStopsAtTheStepThatFails) {
  struct Row {
    Call call;
    size_t lines_before;
    const char* line;
    std::array<bool, 3> handles;
  };
  const std::vector<Row> rows = {
      {Call::kGetDisplay, 1, "eglDisplay return EGL_NO_DISPLAY", kNoHandles},
      {Call::kInitialize, 2, "eglInitialize failed", {true}},
      {Call::kChooseConfig, 3, "eglChooseConfig failed", {true}},
      {Call::kCreatePbufferSurface,
       4,
       "eglCreatePbufferSurface failed",
       {true}},
      {Call::kCreateContext, 5, "eglCreateContext failed", {true, true}},
      {Call::kMakeCurrent, 6, "eglMakeCurrent failed", kAllHandles},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.line);
    driver::SetFailing(row.call, true);
    log_.Take();
    EXPECT_EQ(InitSession(Info(1, 0)), 0U);
    const auto first = CreationLines().begin();
    Lines creation(first,
                   first + static_cast<std::ptrdiff_t>(row.lines_before));

    const bool names_error = row.lines_before > 3;
    creation.push_back(std::string(row.line) +
                       (names_error ? " - eglGetError Returned: 0x3003" : ""));

    EXPECT_EQ(log_.Take(), InitLines(1, creation));
    EXPECT_EQ(session_.QelMode, kModeRunning);
    EXPECT_EQ(Handles(), row.handles);
    EXPECT_EQ(eglGetCurrentContext(), EGL_NO_CONTEXT);
    EXPECT_EQ(TestFrame().Render(/*from_depth=*/true, 0, kNoRect, 1), 0U);
    driver::SetFailing(row.call, false);
    log_.Take();
    zuQelRT_GLClose();
    const bool complete = row.handles == kAllHandles;
    EXPECT_EQ(log_.Take(),
              CloseLines(complete ? Deletion::kDone : Deletion::kSkipped));
    EXPECT_EQ(Handles(), complete ? kNoHandles : row.handles);
    ExpectGoodSession();
    EXPECT_EQ(Handles(), kNoHandles);
  }
}

TEST_F(LifecycleLog, DeletionKeepsHandlesWhenAStepFails) {
  struct Row {
    Call call;
    const char* line;
    // A surface that is already gone cannot be destroyed by the retry.
    bool retry_succeeds;
  };
  const std::vector<Row> rows = {
      {Call::kMakeCurrent, "eglMakeCurrent Returned: 0x0", true},
      {Call::kDestroySurface, "eglDestroySurface Returned: 0x0", true},
      {Call::kDestroyContext, "eglDestroyContext Returned: 0x0", false},
      {Call::kTerminate, "eglTerminate Returned: 0x0", false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.line);
    ASSERT_EQ(InitSession(Info(1, 0)), 0U);
    const ContextSlot slot = session_.context;
    driver::SetFailing(row.call, true);
    log_.Take();
    EXPECT_EQ(zuQelRT_GLClose(), 0U);
    EXPECT_EQ(log_.Take(), CloseLines(Deletion::kFailed, row.line));
    EXPECT_EQ(session_.QelMode, kModeClosed);
    EXPECT_EQ(std::tie(session_.context.display, session_.context.surface,
                       session_.context.context),
              std::tie(slot.display, slot.surface, slot.context));
    driver::SetFailing(row.call, false);
    zuQelRT_GLClose();
    EXPECT_EQ(log_.Take(), CloseLines(row.retry_succeeds ? Deletion::kDone
                                                         : Deletion::kFailed,
                                      "eglDestroySurface Returned: 0x0"));
    EXPECT_EQ(Handles(), row.retry_succeeds ? kNoHandles : kAllHandles);
    ExpectGoodSession();
  }
}

}  // namespace
}  // namespace zuqel
