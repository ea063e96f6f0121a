// Times OpenCV on the same planes and frame, on one thread, after checking that
// its results differ in rounding only.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "bokeh_frame.h"
#include "cpu_bokeh/box_blur.h"
#include "cpu_bokeh/resize/resize_plane.h"
#include "expect.h"
#include "opencv_bokeh.h"
#include "opencv_images.h"
#include "resize_rows.h"
#include "time_rounds.h"

namespace zuqel::bench {
namespace {

void Resize(const cv::Mat& image, const ResizeCase& sizes, cv::Mat& resized) {
  const bool grows = sizes.to_width > sizes.from_width;
  cv::resize(image, resized, {sizes.to_width, sizes.to_height}, 0, 0,
             grows ? cv::INTER_LINEAR : cv::INTER_AREA);
}

// Coverages of 8 bits move a few pixels by one more level.
void CompareResizing() {
  ResizeScratch scratch;
  for (const ResizeCase& sizes :
       {kHalf, kQuarter, kTwice, kFourTimes, kAreas}) {
    const Image image =
        NoiseImage<uint8_t>(sizes.from_width, sizes.from_height, 5);
    Image ours = NoiseImage<uint8_t>(sizes.to_width, sizes.to_height, 5);
    cv::Mat theirs;
    Resize(MatOf(image), sizes, theirs);
    ExpectTrue(ResizePlane(image.View(), scratch, ours.View()) &&
                   ShareWithin(2, ours.values, BytesOf(theirs)) >= 0.9999,
               "cv::resize");
  }
}

// Ours truncates after each pass, theirs rounds once.
void CompareBlur() {
  const Image image = NoiseImage<uint8_t>(1280, 960, 5);
  Image<uint8_t> ours = image;
  cv::Mat theirs;
  Buffer scratch;
  cv::blur(MatOf(image), theirs, {3, 3}, {-1, -1}, cv::BORDER_REPLICATE);
  ExpectTrue(BoxBlur(image.View(), 1, scratch, ours.View()) &&
                 ShareWithin(2, ours.values, BytesOf(theirs)) == 1,
             "cv::blur");
}

void CompareFrames() {
  const Silence silence;
  BokehFrame ours, theirs;
  ExpansionBuffers buffers;
  int32_t frame_counter = 0;
  OpenCvBokeh opencv;
  ExpectTrue(RenderExpansion(ours.View(), buffers, frame_counter), "memory");
  ExpectTrue(ShareWithin(0, ours.luma.values, theirs.luma.values) < 0.9,
             "nothing is blurred");
  opencv.Render(theirs.View());
  ExpectTrue(
      ShareWithin(3, ours.luma.values, theirs.luma.values) >= 0.95 &&
          ShareWithin(3, ours.chroma.values, theirs.chroma.values) >= 0.95,
      "the whole frame");
}

// Before anything is timed; a difference ends the program.
bool CompareAll() noexcept {
  cv::setNumThreads(1);
  CompareResizing();
  CompareBlur();
  CompareFrames();
  return true;
}
[[maybe_unused]] const bool kIsCompared = CompareAll();

void CvResize(benchmark::State& state, ResizeCase sizes) {
  const Image image =
      NoiseImage<uint8_t>(sizes.from_width, sizes.from_height, 5);
  Image resized = NoiseImage<uint8_t>(sizes.to_width, sizes.to_height, 5);
  cv::Mat out = MatOf(resized);
  TimeRounds(state, image.values.size() + resized.values.size(),
             [&] { Resize(MatOf(image), sizes, out); });
}

void CvBlur(benchmark::State& state) {
  const Image image = NoiseImage<uint8_t>(1280, 960, 5);
  cv::Mat blurred;
  const auto side = 2 * static_cast<int32_t>(state.range(0)) + 1;
  TimeRounds(state, 2 * image.values.size(), [&] {
    cv::blur(MatOf(image), blurred, {side, side}, {-1, -1},
             cv::BORDER_REPLICATE);
  });
}

void CvWholeCall(benchmark::State& state) {
  const Silence silence;
  BokehFrame frame;
  OpenCvBokeh opencv;
  TimeRounds(state, 2 * (frame.luma.values.size() * 3 / 2), [&] {
    frame.Restore();
    opencv.Render(frame.View());
  });
}

ZUQEL_BENCH_RESIZE_CASES(CvResize);
BENCHMARK(CvBlur)->Arg(1)->Arg(4)->Unit(benchmark::kMicrosecond);
BENCHMARK(CvWholeCall)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace zuqel::bench
