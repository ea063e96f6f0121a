// Times OpenCV on the same masks, on one thread, after checking that both give
// the same components and pixels.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <opencv2/core.hpp>
#include <opencv2/core/utility.hpp>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "base/buffer.h"
#include "bench_masks.h"
#include "depth/labelling/components.h"
#include "depth/morphology.h"
#include "difference.h"
#include "expect.h"
#include "opencv_images.h"
#include "time_rounds.h"

namespace zuqel::bench {
namespace {

cv::Mat SquareOf(int32_t radius) {
  const int32_t side = 2 * radius + 1;
  return cv::getStructuringElement(cv::MORPH_RECT, {side, side});
}

// Labels map one to one and areas are equal. Past the label limit ours would
// share the last one, so there is room for all.
void CompareComponents(const Image<uint8_t>& mask, const char* name) {
  cv::Mat theirs, statistics, centroids;
  const int32_t count = cv::connectedComponentsWithStats(
      MatOf(mask), theirs, statistics, centroids, 4);
  const size_t pixels = mask.values.size();
  std::vector<uint32_t> ours(pixels), areas(pixels + 1);
  Buffer scratch;
  static_cast<void>(LabelComponents(mask.View(), ours, areas, scratch));

  std::vector<int32_t> their_label(pixels + 1, -1);
  std::vector<int64_t> our_label(static_cast<size_t>(count), -1);
  for (size_t i = 0; i < pixels; ++i) {
    int32_t& theirs_here = their_label[ours[i]];
    const int32_t label = theirs.at<int32_t>(static_cast<int32_t>(i));
    int64_t& ours_here = our_label[static_cast<size_t>(label)];
    ExpectTrue((theirs_here < 0) == (ours_here < 0), name);
    theirs_here = theirs_here < 0 ? label : theirs_here;
    ours_here = ours_here < 0 ? ours[i] : ours_here;
    ExpectTrue(theirs_here == label && ours_here == ours[i], name);
  }
  ExpectTrue(their_label[0] == 0, name);
  for (int32_t label = 1; label < count; ++label) {
    const uint32_t area =
        areas[static_cast<size_t>(our_label[static_cast<size_t>(label)])];
    ExpectTrue(statistics.at<int32_t>(label, cv::CC_STAT_AREA) ==
                   static_cast<int32_t>(area),
               name);
  }
}

void CompareFilters(const Image<uint8_t>& image, const Image<uint8_t>& mask,
                    int32_t radius) {
  Buffer scratch;
  Image<uint8_t> ours = image;
  cv::Mat theirs;
  const auto expect_equal = [&ours, &theirs](bool is_done, const char* name) {
    ExpectTrue(is_done && std::equal(ours.values.begin(), ours.values.end(),
                                     theirs.datastart),
               name);
  };
  const auto reach = static_cast<uint8_t>(radius);
  cv::erode(MatOf(image), theirs, SquareOf(radius));
  expect_equal(ErodeMin(image.View(), reach, scratch, ours.View()), "ErodeMin");
  cv::dilate(MatOf(image), theirs, SquareOf(radius));
  expect_equal(DilateMax(image.View(), reach, scratch, ours.View()),
               "DilateMax");
  ours = mask;
  cv::dilate(MatOf(mask), theirs, SquareOf(radius));
  expect_equal(DilateMask(mask.View(), reach, scratch, ours.View()),
               "DilateMask");
}

// Before anything is timed; a difference ends the program.
bool CompareAll() noexcept {
  cv::setNumThreads(1);
  CompareComponents(SceneMask(), "components of the scene");
  CompareComponents(HalfNoise(), "components of noise");
  CompareComponents(DenseNoise(), "components of dense noise");
  CompareComponents(Checkerboard(), "components of a checkerboard");
  for (const int32_t radius : {2, 4, 32}) {
    CompareFilters(NoiseImage<uint8_t>(640, 480, 5), SceneMask(), radius);
  }
  return true;
}
[[maybe_unused]] const bool kIsCompared = CompareAll();

void CvComponents(benchmark::State& state, MaskMaker make_mask) {
  const Image<uint8_t> mask = make_mask();
  cv::Mat labels, statistics, centroids;
  TimeRounds(state, 5 * mask.values.size(), [&] {
    benchmark::DoNotOptimize(cv::connectedComponentsWithStats(
        MatOf(mask), labels, statistics, centroids, 4));
  });
}

using CvFilter = void (*)(cv::InputArray, cv::OutputArray, cv::InputArray,
                          cv::Point, int, int, const cv::Scalar&);

void CvSquareFilter(benchmark::State& state, CvFilter filter) {
  const Image image = NoiseImage<uint8_t>(640, 480, 5);
  const cv::Mat square = SquareOf(static_cast<int32_t>(state.range(0)));
  cv::Mat filtered;
  TimeRounds(state, 2 * image.values.size(), [&] {
    filter(MatOf(image), filtered, square, {-1, -1}, 1, cv::BORDER_CONSTANT,
           cv::morphologyDefaultBorderValue());
  });
}

ZUQEL_BENCH_ON_MASKS(CvComponents);
BENCHMARK_CAPTURE(CvSquareFilter, erode, cv::erode)->Apply(Radii);
BENCHMARK_CAPTURE(CvSquareFilter, dilate, cv::dilate)->Apply(Radii);

}  // namespace
}  // namespace zuqel::bench
