// Rows of the whole CPU frame.
#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "agreement.h"
#include "cpu_bokeh/expansion.h"
#include "library_allocations.h"
#include "opencv_bokeh.h"
#include "row.h"
#include "tuned_bokeh.h"

namespace zuqel::bench {
namespace {

// A frame that a call changes, and what it was.
class FrameInPlace {
 public:
  explicit FrameInPlace(CameraFrame frame) : kept_(std::move(frame)) {
    Restore();
  }

  void Restore() { frame_ = kept_; }
  ExpansionFrame View() {
    return {.luma = frame_.luma.View(),
            .chroma = frame_.chroma.values,
            .disparity = frame_.disparity.View(),
            .focus_x = frame_.focus_x,
            .focus_y = frame_.focus_y};
  }
  [[nodiscard]] const CameraFrame& frame() const { return frame_; }
  [[nodiscard]] const CameraFrame& kept() const { return kept_; }

 private:
  CameraFrame kept_, frame_;
};

struct Ours {
  explicit Ours(CameraFrame given) : frame(std::move(given)) {}
  void Render() {
    static_cast<void>(RenderExpansion(frame.View(), buffers, counter));
  }
  FrameInPlace frame;
  ExpansionBuffers buffers;
  int32_t counter = 0;
};

struct OpenCv {
  explicit OpenCv(CameraFrame given) : frame(std::move(given)) {}
  FrameInPlace frame;
  OpenCvBokeh bokeh;
};

struct Tuned {
  explicit Tuned(CameraFrame given) : frame(std::move(given)) {}
  CameraFrame frame;
  TunedBokeh bokeh;
};

size_t BytesOf(const CameraFrame& frame) {
  return 2 * (frame.luma.values.size() + frame.chroma.values.size()) +
         2 * frame.disparity.values.size();
}

// Ours, with what it takes from the heap in its first call.
Trial OursAlone(const std::shared_ptr<Ours>& ours) {
  library_allocations::ForgetMostBytesHeld();
  const size_t before = library_allocations::BytesHeld();
  ours->Render();
  const size_t memory = library_allocations::MostBytesHeld() - before;
  const CameraFrame& frame = ours->frame.frame();
  return {.pixels = frame.luma.values.size(),
          .bytes = BytesOf(frame),
          .ours = [=] { ours->Render(); },
          .restore = [=] { ours->frame.Restore(); },
          .working_memory = memory};
}

constexpr const char* kOperations =
    "1.5 samples of a half 2, boxes 10, an enlargement 8, a blend 9; mask 17";
constexpr double kOperationCount = 60;

// Every contender's frame is made anew before each call, and that is not timed.
// The first composition does the same steps as ours. The other does fewer, so
// its picture is another one.
Row AgainstCompositions(Size size, Size map) {
  const auto prepare = [=](const Scene& scene) {
    const CameraFrame frame = FrameOf(scene, size, map);
    const auto ours = std::make_shared<Ours>(frame);
    const auto opencv = std::make_shared<OpenCv>(frame);
    const auto tuned = std::make_shared<Tuned>(frame);
    Trial trial = OursAlone(ours);
    trial.peers = {{"OpenCV, same steps",
                    [=] { opencv->bokeh.Render(opencv->frame.View()); },
                    [=] { opencv->frame.Restore(); }},
                   {"OpenCV, libyuv, own loops",
                    [=] { tuned->bokeh.Render(tuned->frame); },
                    [=, kept = frame] { tuned->frame = kept; }}};
    trial.agrees = [=] {
      const CameraFrame& a = ours->frame.frame();
      const CameraFrame& b = opencv->frame.frame();
      const CameraFrame& source = ours->frame.kept();
      const auto is_blurred = [&](std::span<const uint8_t> luma) {
        return ShareWithin(0, luma, source.luma.values) < 0.9;
      };
      return ShareWithin(3, a.luma.values, b.luma.values) >= 0.95 &&
             ShareWithin(3, a.chroma.values, b.chroma.values) >= 0.95 &&
             is_blurred(a.luma.values) && is_blurred(tuned->bokeh.Luma());
    };
    return trial;
  };
  return {kCalls, "CPU frame " + Text(size) + ", depth " + Text(map),
          kOperationCount, kOperations, prepare};
}

// Maps of a quarter of each side.
Row Alone(Size size) {
  return {kGrowth, "CPU frame " + Text(size), kOperationCount, kOperations,
          [=](const Scene& scene) {
            return OursAlone(std::make_shared<Ours>(
                FrameOf(scene, size, {size.width / 4, size.height / 4})));
          }};
}

}  // namespace

std::vector<Row> FrameRows() {
  std::vector<Row> rows = {AgainstCompositions({1280, 960}, {320, 240}),
                           AgainstCompositions({1920, 1080}, {640, 480})};
  for (const Size size : {Size{320, 240}, Size{640, 480}, Size{1280, 960},
                          Size{1920, 1080}, Size{4000, 3000}}) {
    rows.push_back(Alone(size));
  }
  return rows;
}

}  // namespace zuqel::bench
