// Rows of kernels on masks: labelling, clean-ups, square filters.
#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <opencv2/imgproc.hpp>
#include <utility>
#include <vector>

#include "agreement.h"
#include "depth/boundary_blur.h"
#include "depth/component_cleanup.h"
#include "depth/labelling/components.h"
#include "depth/morphology.h"
#include "depth/refocus_refinement.h"
#include "masks.h"
#include "row.h"

namespace zuqel::bench {
namespace {

constexpr Size kSize = {640, 480};
constexpr size_t kLabelLimit = 65535;

using MaskMaker = Image<uint8_t> (*)(const Scene&);

Image<uint8_t> SceneMask(const Scene& scene) {
  return FocusMaskOf(scene, kSize);
}

template <uint32_t kPercent>
Image<uint8_t> Noise(const Scene&) {
  Image<uint8_t> mask =
      DrawMask({"", IsNoise<kPercent>, 3}, kSize.width, kSize.height);
  SetRing(mask, 0, 0);
  return mask;
}

struct Labels {
  std::vector<uint32_t> labels, areas;
  Buffer scratch;

  uint32_t Find(const Image<uint8_t>& mask) {
    labels.resize(mask.values.size());
    areas.resize(kLabelLimit);
    return LabelComponents(mask.View(), labels, areas, scratch).value_or(0);
  }
};

// A pixel of the largest component.
MaskPoint LargestIn(const Image<uint8_t>& mask) {
  Labels found;
  const uint32_t largest = found.Find(mask);
  const auto at = std::find(found.labels.begin(), found.labels.end(), largest);
  const auto index = at - found.labels.begin();
  return {index % mask.width, index / mask.width};
}

// Labels map one to one and areas are equal.
bool SameComponents(const Labels& ours, const cv::Mat& labels,
                    const cv::Mat& statistics) {
  std::vector<int64_t> theirs_of(kLabelLimit, -1);
  std::vector<int64_t> ours_of(static_cast<size_t>(statistics.rows), -1);
  for (size_t i = 0; i < ours.labels.size(); ++i) {
    const int32_t label = labels.at<int32_t>(static_cast<int32_t>(i));
    int64_t& theirs_here = theirs_of[ours.labels[i]];
    int64_t& ours_here = ours_of[static_cast<size_t>(label)];
    if ((theirs_here < 0) != (ours_here < 0)) return false;
    if (theirs_here < 0) {
      theirs_here = label;
      ours_here = ours.labels[i];
      if (label != 0 && statistics.at<int32_t>(label, cv::CC_STAT_AREA) !=
                            static_cast<int32_t>(ours.areas[ours.labels[i]])) {
        return false;
      }
    }
    if (theirs_here != label || ours_here != ours.labels[i]) return false;
  }
  return theirs_of[0] == 0;
}

// Labels are words.
Row Labelling(const char* name, MaskMaker make, double operations,
              const char* which) {
  const auto prepare = [=](const Scene& scene) -> Trial {
    struct Data {
      Image<uint8_t> mask;
      Labels ours;
      cv::Mat labels, statistics, centroids;
    };
    const auto data = std::make_shared<Data>();
    data->mask = make(scene);
    const size_t pixels = data->mask.values.size();
    return {.pixels = pixels,
            .bytes = 5 * pixels,
            .ours = [=] { data->ours.Find(data->mask); },
            .peers = {{"cv::connectedComponentsWithStats",
                       [=] {
                         cv::connectedComponentsWithStats(
                             MatOf(data->mask), data->labels, data->statistics,
                             data->centroids, 4);
                       }}},
            .agrees =
                [=] {
                  return SameComponents(data->ours, data->labels,
                                        data->statistics);
                }};
  };
  return {kMasks, name, operations, which, prepare};
}

struct CleanupData {
  Image<uint8_t> in, out;
  MaskPoint focus;
  CleanupScratch scratch;
  RefinementScratch refinement;
};

std::shared_ptr<CleanupData> MakeCleanup(Image<uint8_t> mask) {
  auto data = std::make_shared<CleanupData>();
  data->focus = LargestIn(mask);
  data->out = mask;
  data->in = std::move(mask);
  return data;
}

template <typename CleanUp>
Row Cleaning(const char* name, MaskMaker make, double operations,
             CleanUp clean_up) {
  const auto prepare = [=](const Scene& scene) -> Trial {
    const auto data = MakeCleanup(make(scene));
    const size_t pixels = data->in.values.size();
    return {.pixels = pixels, .bytes = 2 * pixels, .ours = [=] {
              static_cast<void>(clean_up(*data));
            }};
  };
  return {kMasks, name, operations,
          "a labelling; a label read, 2 comparisons, a choice", prepare};
}

bool Prune(CleanupData& data) {
  return PruneComponents(std::as_const(data.in).View(), data.focus,
                         /*keep_only_focus=*/true, data.scratch,
                         data.out.View(), nullptr);
}

bool KeepFocusAndBorder(CleanupData& data) {
  return KeepFocusAndBorderComponents(std::as_const(data.in).View(), data.focus,
                                      data.scratch, data.out.View());
}

bool DropSpecks(CleanupData& data) {
  constexpr uint32_t kFocusArea = 40000;
  return RemoveSpecks(std::as_const(data.in).View(), kFocusArea, data.scratch,
                      data.out.View());
}

// What is set in the mask is sharp in the map.
Trial Refine(const Scene& scene) {
  const auto data = MakeCleanup(SceneMask(scene));
  for (uint8_t& pixel : data->in.values) pixel = pixel == 0 ? 200 : 30;
  const size_t pixels = data->in.values.size();
  return {.pixels = pixels, .bytes = 2 * pixels, .ours = [=] {
            static_cast<void>(RefineRefocusMap(std::as_const(data->in).View(),
                                               data->focus, data->refinement,
                                               data->out.View()));
          }};
}

// A band along the mask's outline is smoothed; both planes change.
Trial SmoothBoundary(const Scene& scene) {
  struct Data {
    Image<uint8_t> map, marks, kept_map, kept_marks;
    Buffer scratch;
  };
  const auto data = std::make_shared<Data>();
  data->kept_map = SceneMask(scene);
  data->kept_marks = data->kept_map;
  cv::Mat marks = MatOf(data->kept_marks);
  cv::morphologyEx(MatOf(data->kept_map), marks, cv::MORPH_GRADIENT,
                   cv::Mat::ones(3, 3, CV_8U));
  const size_t pixels = data->kept_map.values.size();
  return {.pixels = pixels,
          .bytes = 4 * pixels,
          .ours =
              [=] {
                static_cast<void>(BoundaryBlur(
                    data->map.View(), data->marks.View(), data->scratch));
              },
          .restore =
              [=] {
                data->map = data->kept_map;
                data->marks = data->kept_marks;
              }};
}

using Filter = bool (*)(Plane<const uint8_t>, uint8_t, Buffer&, Plane<uint8_t>);

struct FilterKind {
  const char* name;
  Filter ours;
  bool dilates, on_mask;
};

Row SquareFilter(const FilterKind& kind, int32_t radius) {
  const auto prepare = [=](const Scene& scene) -> Trial {
    struct Data {
      Image<uint8_t> in, ours;
      cv::Mat theirs, square;
      Buffer scratch;
    };
    const auto data = std::make_shared<Data>();
    data->in = kind.on_mask ? SceneMask(scene)
                            : NoiseImage<uint8_t>(kSize.width, kSize.height, 5);
    data->ours = data->in;
    const int32_t side = 2 * radius + 1;
    data->square = cv::getStructuringElement(cv::MORPH_RECT, {side, side});
    const size_t pixels = data->in.values.size();
    return {
        .pixels = pixels,
        .bytes = 2 * pixels,
        .ours =
            [=] {
              static_cast<void>(kind.ours(std::as_const(data->in).View(),
                                          static_cast<uint8_t>(radius),
                                          data->scratch, data->ours.View()));
            },
        .peers = {{kind.dilates ? "cv::dilate" : "cv::erode",
                   [=] {
                     const auto filter = kind.dilates ? cv::dilate : cv::erode;
                     filter(MatOf(data->in), data->theirs, data->square,
                            {-1, -1}, 1, cv::BORDER_CONSTANT,
                            cv::morphologyDefaultBorderValue());
                   }}},
        .agrees = [=] { return AllWithin(0, data->ours, data->theirs); }};
  };
  return {kMasks, kind.name + std::string(", radius ") + std::to_string(radius),
          6, "3 comparisons in each of 2 passes, by van Herk's blocks",
          prepare};
}

constexpr std::array kFilters = {
    FilterKind{"erode plane", ErodeMin, false, false},
    FilterKind{"dilate plane", DilateMax, true, false},
    FilterKind{"dilate mask", DilateMask, true, true},
};

}  // namespace

std::vector<Row> MaskRows() {
  constexpr const char* kRuns =
      "a comparison, a label; 40 at a run: none, 0.09 or 0.25 runs a pixel";
  constexpr double kOnScene = 2, kOnNoise10 = 5.6, kOnNoise50 = 12;
  std::vector<Row> rows = {
      Labelling("label, scene", SceneMask, kOnScene, kRuns),
      Labelling("label, noise of 10 %", Noise<10>, kOnNoise10, kRuns),
      Labelling("label, noise of 50 %", Noise<50>, kOnNoise50, kRuns),
      Cleaning("prune components, scene", SceneMask, kOnScene + 4, Prune),
      Cleaning("prune components, noise of 50 %", Noise<50>, kOnNoise50 + 4,
               Prune),
      Cleaning("keep focus and border, scene", SceneMask, kOnScene + 4,
               KeepFocusAndBorder),
      Cleaning("remove specks, scene", SceneMask, kOnScene + 4, DropSpecks),
      {kMasks, "refine refocus map, scene", 22,
       "a threshold, 2 clean-ups, 2 comparisons, a dilation; as smoothing",
       Refine},
      {kMasks, "smooth boundary, scene", 9,
       "a comparison; in rows with marks 2 comparisons, 2 choices, 4 sums; 12 "
       "at a mark",
       SmoothBoundary}};
  for (const FilterKind& kind : kFilters) {
    for (const int32_t radius : {4, 32}) {
      rows.push_back(SquareFilter(kind, radius));
    }
  }
  return rows;
}

}  // namespace zuqel::bench
