// Every call with odd sizes and values that nobody should pass: no byte outside
// of the caller's buffers is touched.
#include <sys/system_properties.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>
#include <vector>

#include "caller_context.h"
#include "guarded_memory.h"
#include "test_session.h"

namespace zuqel {
namespace {

enum class Guard { kBehind, kInFront };

// `count` elements that end, or begin, where a protected page does.
template <typename T>
class CallerBuffer {
 public:
  CallerBuffer(size_t count, Guard guard)
      : count_(count),
        memory_(guard == Guard::kBehind ? count : WholePages(count)) {}

  [[nodiscard]] T* data() const { return memory_.data(); }
  [[nodiscard]] std::span<T> span() const { return {data(), count_}; }

 private:
  static size_t WholePages(size_t count) {
    const size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE)) / sizeof(T);
    return (count + page - 1) / page * page;
  }

  size_t count_;
  GuardedMemory<T> memory_;
};

size_t Area(int32_t width, int32_t height) {
  return static_cast<size_t>(width) * static_cast<size_t>(height);
}

// What a caller hands to the frame calls of one session.
struct CallerFrame {
  CallerFrame(const GLInitInfo& info, Guard guard)
      : luma(Area(info.PreviewWidth, info.PreviewHeight), guard),
        chroma(Area(info.PreviewWidth, info.PreviewHeight / 2), guard),
        weights(Area(info.WorkWidth, info.WorkHeight), guard),
        depth(Area(info.DepthWidth, info.DepthHeight), guard) {
    for (size_t i = 0; i < depth.span().size(); ++i) {
      depth.data()[i] = i % 3 == 0 ? uint16_t{0xFFFF} : uint16_t{500};
    }
  }

  CallerBuffer<uint8_t> luma;
  CallerBuffer<uint8_t> chroma;
  CallerBuffer<uint8_t> weights;
  CallerBuffer<uint16_t> depth;
};

struct Point {
  uint32_t x, y;
};

struct FrameArguments {
  Point focus;
  FocusRect rect;
  float f_number;
};

constexpr int32_t kMin = INT32_MIN;
constexpr int32_t kMax = INT32_MAX;
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

std::vector<FrameArguments> Arguments(const GLInitInfo& info) {
  const auto w = static_cast<uint32_t>(info.PreviewWidth);
  const auto h = static_cast<uint32_t>(info.PreviewHeight);
  return {
      {{0, 0}, {0, 0, 0, 0}, kNan},
      {{w - 1, h - 1}, {kMin, kMin, kMax, kMax}, INFINITY},
      {{w, h}, {kMax, kMax, kMin, kMin}, -INFINITY},
      {{UINT32_MAX, UINT32_MAX}, {kMin, kMax, kMax, kMin}, -1},
      {{0x80000000, 0x7FFFFFFF}, {kMax - 1, 0, kMax, kMax}, 1e30F},
      {{0, UINT32_MAX}, {0, 0, 32, 32}, std::numeric_limits<float>::min()},
  };
}

// Renders with a few of the arguments; `turn` chooses which.
void RenderFrames(const GLInitInfo& info, Guard guard, size_t turn) {
  const ScopedSession session(info);
  ASSERT_EQ(session.status(), 0U);
  const CallerFrame frame(info, guard);
  const std::vector<FrameArguments> arguments = Arguments(info);
  const auto render = [&](bool from_depth, int32_t bypass, bool has_map) {
    const FrameArguments& row = arguments[turn++ % arguments.size()];
    const auto [x, y] = row.focus;
    uint8_t* const luma = frame.luma.data();
    uint8_t* const chroma = frame.chroma.data();
    EXPECT_EQ(from_depth
                  ? zuQelRT_GLStartV1HWDepth(
                        luma, chroma, has_map ? frame.depth.data() : nullptr, x,
                        y, bypass, row.rect, row.f_number)
                  : zuQelRT_GLStartV1(luma, chroma,
                                      has_map ? frame.weights.data() : nullptr,
                                      x, y, bypass, row.rect, row.f_number),
              0U);
  };
  render(/*from_depth=*/false, 0, /*has_map=*/true);
  render(/*from_depth=*/true, 0, /*has_map=*/true);
  render(/*from_depth=*/turn % 2 == 0, 1, /*has_map=*/true);
  if (info.srcformat == 0) render(turn % 2 == 0, 0, /*has_map=*/false);
}

class HostileInput : public testing::TestWithParam<Guard> {
 protected:
  HostileInput() {
    __system_property_set("persist.zu.LVGLbokeh.FocusDot", "1");
  }
  ~HostileInput() override {
    __system_property_set("persist.zu.LVGLbokeh.FocusDot", "");
  }
};

TEST_P(HostileInput, FramesStayInsideTheirBuffers) {
  struct Row {
    int32_t width, height, work_width, work_height, depth_width, depth_height;
  };
  const std::vector<Row> rows = {
      {1, 1, 1, 1, 1, 1},         {1, 2, 0, 0, 0, 0},
      {2, 1, 0, 5, 5, 0},         {3, 3, 3, 1, 1, 3},
      {4, 3, 7, 3, 17, 1},        {5, 7, 33, 17, 9, 5},
      {33, 17, 5, 0, 0, 9},       {64, 49, 1, 33, 3, 67},
      {101, 67, 101, 67, 33, 17}, {1, 1000, 2, 2, 1, 1000},
  };
  struct Mode {
    int32_t off_screen, format;
  };
  // On screen the format does not count.
  const std::vector<Mode> modes = {{1, 0}, {1, 2}, {1, 7}, {1, kMin}, {0, 2}};
  size_t turn = 0;
  for (const Row& row : rows) {
    for (const auto& [off_screen, format] : modes) {
      SCOPED_TRACE(testing::Message()
                   << row.width << "x" << row.height << ", format " << format
                   << ", offmode " << off_screen);
      std::optional<CallerContext> caller;
      if (off_screen == 0) caller.emplace(8, 8);
      RenderFrames({.PreviewWidth = row.width,
                    .PreviewHeight = row.height,
                    .DepthWidth = row.depth_width,
                    .DepthHeight = row.depth_height,
                    .WorkWidth = row.work_width,
                    .WorkHeight = row.work_height,
                    .OutputWidth = kMax,
                    .OutputHeight = kMin,
                    .PortraitMode = row.width % 2,
                    .offmode = off_screen,
                    .srcformat = format,
                    .GraphicBufferFlag = 1},
                   GetParam(), turn++);
    }
  }
}

// The dot's pixels are linear indices, so it wraps into the next row.
void DrawDotReference(std::span<uint8_t> luma, int64_t width, int64_t x,
                      int64_t y) {
  for (int64_t dy = -5; dy <= 5; ++dy) {
    for (int64_t dx = -5; dx <= 5; ++dx) {
      const int64_t index = x + dx + (y + dy) * width;
      if (index < 0 || index >= static_cast<int64_t>(luma.size())) continue;
      luma[static_cast<size_t>(index)] = 255;
    }
  }
}

TEST_P(HostileInput, FocusDotIsClippedToThePlane) {
  const CallerContext caller;
  GLInitInfo info = DefaultInfo();
  info.PreviewWidth = 67;
  info.PreviewHeight = 41;
  info.offmode = 0;  // nothing but the dot is written
  const ScopedSession session(info);
  struct Row {
    Point focus;
    FocusRect rect;
    int64_t x, y;
  };
  const std::vector<Row> rows = {
      {{30, 20}, {0, 0, 31, 40}, 30, 20},
      {{0, 0}, {0, 0, 0, 0}, 0, 0},
      {{66, 40}, {0, 0, 0, 0}, 66, 40},
      {{66, 2}, {0, 0, 0, 0}, 66, 2},
      {{2, 45}, {0, 0, 0, 0}, 2, 45},
      {{70, 46}, {0, 0, 0, 0}, 70, 46},
      {{0, 0}, {1, 2, 36, 36}, 18, 19},
      {{9, 9}, {0, 0, 67, 40}, 9, 9},
      {{UINT32_MAX, 3}, {0, 0, 0, 0}, -1, 3},
      {{5, UINT32_MAX - 1}, {0, 0, 0, 0}, 5, -2},
      {{0x7FFFFFFF, 0x80000000}, {0, 0, 0, 0}, kMax, kMin},
  };
  for (const Row& row : rows) {
    const CallerFrame frame(info, GetParam());
    std::vector<uint8_t> expected(frame.luma.span().size());
    DrawDotReference(expected, info.PreviewWidth, row.x, row.y);
    EXPECT_EQ(zuQelRT_GLStartV1(frame.luma.data(), frame.chroma.data(), nullptr,
                                row.focus.x, row.focus.y, 0, row.rect, 1),
              0U);
    EXPECT_TRUE(std::ranges::equal(frame.luma.span(), expected))
        << row.focus.x << ", " << row.focus.y;
    EXPECT_EQ(std::ranges::count(frame.chroma.span(), 0), 67 * 20);
  }
}

TEST_P(HostileInput, SmallCallsStayInsideTheirBuffers) {
  const CallerBuffer<char> version(256, GetParam());
  EXPECT_EQ(zuQel_GLVersionInfo_Get(version.data(), kMax), 0U);
  const CallerBuffer<uint32_t> layout(1, GetParam());
  EXPECT_EQ(zuQelRT_CameraLayout_Get(layout.data()), 0U);
  const CallerBuffer<ParameterInfo> parameter(1, GetParam());
  const CallerBuffer<GLInitInfo> info(1, GetParam());
  *info.data() = DefaultInfo();
  for (const uint32_t size : {1U, 464U, 496U, 512U, 514U, 544U, 1403U, 1488U,
                              1499U, 1547U, 1643U, 2080U, 2801U, 2993U}) {
    const CallerBuffer<uint8_t> block(size, GetParam());
    std::ranges::fill(block.span(), uint8_t{0xFF});
    for (const bool second : {false, true}) {
      zuQelRT_GLInitV1(second ? nullptr : block.data(), second ? 0 : size,
                       second ? block.data() : nullptr, second ? size : 0,
                       info.data());
      for (const int32_t id : {kMin, 0, 1, 2, 3, kMax}) {
        zuQelRT_SetParameter(id, parameter.data());
      }
      EXPECT_EQ(zuQelRT_GLClose(), 0U);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Guards, HostileInput,
                         testing::Values(Guard::kBehind, Guard::kInFront),
                         [](const auto& guard) {
                           return guard.param == Guard::kBehind ? "Behind"
                                                                : "InFront";
                         });

}  // namespace
}  // namespace zuqel
