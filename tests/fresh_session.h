// Frames and the log of a session that begins as the process does, for tests
// that link the library's objects.
#ifndef TESTS_FRESH_SESSION_H_
#define TESTS_FRESH_SESSION_H_

#include <gtest/gtest.h>
#include <zuQelRT_GL.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "guarded_memory.h"
#include "log_capture.h"
#include "test_session.h"

namespace zuqel {

// A preview of 64 x 48 with depth of 16 x 12, weights of 32 x 24 and an output
// of 20 x 10.
inline GLInitInfo SmallInfo(int32_t off_screen = 1, int32_t format = 0) {
  return {64, 48, 16, 12, 32, 24, 20, 10, 0, off_screen, format, 0};
}

// The log of making the context of one slot.
inline std::string CreationLog(int index) {
  return "There is no openGL context, going to create opengl context, tid = #, "
         "index " +
         std::to_string(index) + R"(
OpenGLCreateContextSurface
eglDisplay return successfully
eglInitialize successfully
eglChooseConfig successfully
eglCreatePbufferSurface successfully
eglCreateContext successfully
eglMakeCurrent successfully
)";
}

// What a frame call is told besides its planes.
struct FrameArguments {
  bool from_depth = false;
  int32_t bypass = 0;
  FocusRect rect = {0, 0, 0, 0};
  float f_number = 1;
  uint32_t focus_x = 3, focus_y = 4;
};

// A caller's noisy planes, weights of zero and depth with holes, as large as a
// session takes them and each with a guard behind.
struct CallerFrame {
  explicit CallerFrame(const GLInitInfo& info)
      : luma(Area(info.PreviewWidth, info.PreviewHeight)),
        chroma(Area(info.PreviewWidth, info.PreviewHeight / 2)),
        weights(Area(info.WorkWidth, info.WorkHeight)),
        depth(Area(info.DepthWidth, info.DepthHeight)) {
    uint32_t noise = 1;
    const auto next = [&] {
      return static_cast<uint8_t>((noise *= 69069) >> 24);
    };
    std::generate(luma.span().begin(), luma.span().end(), next);
    std::generate(chroma.span().begin(), chroma.span().end(), next);
    constexpr std::array<uint16_t, 3> kDepths = {0xFFFF, 1023, 500};
    for (size_t i = 0; i < depth.size(); ++i) depth.data()[i] = kDepths[i % 3];
  }

  static size_t Area(int32_t width, int32_t height) {
    return ByteCount(width, height, 1).value_or(0);
  }

  // All that a call may change.
  [[nodiscard]] std::vector<uint16_t> Contents() const {
    std::vector<uint16_t> all(depth.span().begin(), depth.span().end());
    all.insert(all.end(), luma.span().begin(), luma.span().end());
    all.insert(all.end(), chroma.span().begin(), chroma.span().end());
    return all;
  }

  [[nodiscard]] uint32_t Render(const FrameArguments& call) const {
    const auto& [from_depth, bypass, rect, f_number, x, y] = call;
    if (from_depth) {
      return zuQelRT_GLStartV1HWDepth(luma.data(), chroma.data(), depth.data(),
                                      x, y, bypass, rect, f_number);
    }
    return zuQelRT_GLStartV1(luma.data(), chroma.data(), weights.data(), x, y,
                             bypass, rect, f_number);
  }

  GuardedMemory<uint8_t> luma, chroma, weights;
  GuardedMemory<uint16_t> depth;
};

// Every test begins as the process does and can look at the log, where a space
// at the end of a line is shown as "_".
class FreshSessionTest : public testing::Test {
 protected:
  FreshSessionTest() { ResetSession(); }
  ~FreshSessionTest() override { zuQelRT_GLClose(); }

  // The lines since the last call, each with a line feed.
  std::string TakeLog() {
    std::string text;
    for (std::string& line : log_.Take()) {
      if (line.ends_with(' ')) line.back() = '_';
      text += line + "\n";
    }
    return text;
  }

  Session& session_ = TheSession();

 private:
  LogCapture log_;
};

}  // namespace zuqel

#endif  // TESTS_FRESH_SESSION_H_
