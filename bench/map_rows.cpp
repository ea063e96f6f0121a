// Rows of kernels on maps of disparity and distance.
#include <algorithm>
#include <cstdint>
#include <memory>
#include <utility>

#include "cpu_bokeh/resize/resize_plane.h"
#include "depth/focus_mask.h"
#include "depth/hole_filling.h"
#include "depth/statistics.h"
#include "row.h"

namespace zuqel::bench {
namespace {

constexpr Size kSize = {640, 480};

struct MapData {
  Image<uint16_t> map;
  Image<uint16_t> changed;
  Image<uint8_t> mask;
  Image<uint8_t> reduced;  // the picture's three planes at the map's size
  Buffer scratch;
  FocusRange range;
  int64_t sink = 0;  // so that no result is left unread
};

// Near is small; what is unknown is 0.
void MakeDistance(MapData& data) {
  for (uint16_t& value : data.map.values) {
    const bool is_known = value != 0 && value < kInvalidDisparity;
    value = static_cast<uint16_t>(is_known ? 60000 / value : 0);
  }
}

enum class Values { kDisparity, kFilledDisparity, kDistance, kQuantised };

std::shared_ptr<MapData> MakeMap(const Scene& scene, Values values) {
  auto data = std::make_shared<MapData>();
  data->map = DisparityOf(scene, kSize);
  data->mask = {kSize.width, kSize.height};
  if (values == Values::kFilledDisparity) FillDisparityHoles(data->map.View());
  if (values == Values::kDistance || values == Values::kQuantised) {
    MakeDistance(*data);
  }
  if (values == Values::kQuantised) {
    FillDistanceHoles(data->map.View());
    QuantiseDistance(std::as_const(data->map).View(),
                     SmallestDistance(std::as_const(data->map).View()),
                     data->map.View());
  }
  data->changed = data->map;
  const auto [least, most] =
      std::minmax_element(data->map.values.begin(), data->map.values.end());
  const auto [x, y] = FocusIn(scene, kSize);
  data->range = {*most, *least, *data->map.At(x, y)};
  return data;
}

// `written` are bytes for each pixel of the map.
template <typename Work>
Row OnMap(const char* name, Values values, size_t written, double operations,
          const char* which, Work work) {
  const auto prepare = [=](const Scene& scene) -> Trial {
    const auto data = MakeMap(scene, values);
    const size_t pixels = data->map.values.size();
    return {.pixels = pixels, .bytes = pixels * (2 + written), .ours = [=] {
              work(*data);
            }};
  };
  return {kMaps, name, operations, which, prepare};
}

// In place: each run fills a fresh copy.
Row Filling(const char* name, Values values, void (*fill)(Plane<uint16_t>)) {
  const auto prepare = [=](const Scene& scene) -> Trial {
    const auto data = MakeMap(scene, values);
    const size_t pixels = data->map.values.size();
    return {.pixels = pixels,
            .bytes = pixels * 4,
            .ours = [=] { fill(data->changed.View()); },
            .restore = [=] { data->changed.values = data->map.values; }};
  };
  return {kMaps, name, 2, "a comparison in each of 2 sweeps; 8 sums at holes",
          prepare};
}

Trial Grow(const Scene& scene) {
  const auto data = MakeMap(scene, Values::kFilledDisparity);
  const size_t pixels = data->map.values.size();
  ResizeScratch scratch;
  CameraFrame frame = FrameOf(scene, {1280, 960}, kSize);
  Image<uint8_t> luma = {kSize.width, kSize.height};
  static_cast<void>(
      ResizePlane(std::as_const(frame.luma).View(), scratch, luma.View()));
  data->reduced = {kSize.width, 3 * kSize.height};
  std::copy(luma.values.begin(), luma.values.end(),
            data->reduced.values.begin());
  // Pairs of V and U at half the frame's size, which is the map's.
  for (size_t i = 0; i < pixels; ++i) {
    data->reduced.values[pixels + i] = frame.chroma.values[2 * i + 1];
    data->reduced.values[2 * pixels + i] = frame.chroma.values[2 * i];
  }
  return {.pixels = pixels, .bytes = pixels * 6, .ours = [=] {
            const uint8_t* planes = data->reduced.values.data();
            static_cast<void>(FocusMaskExpansion(
                std::as_const(data->map).View(),
                {planes, planes + pixels, planes + 2 * pixels}, data->range,
                data->scratch, data->mask.View()));
          }};
}

template <void (*kMake)(Plane<const uint16_t>, const FocusRange&,
                        Plane<uint8_t>)>
void MakeMask(MapData& data) {
  kMake(std::as_const(data.map).View(), data.range, data.mask.View());
}

}  // namespace

std::vector<Row> MapRows() {
  constexpr int32_t kTrimPercent = 1;
  constexpr const char* kHistogram = "a limit, a count read, raised, written";
  return {
      OnMap(
          "range of disparity", Values::kDisparity, 0, 4, kHistogram,
          [](MapData& data) {
            data.sink +=
                GetDispRange(std::as_const(data.map).View(), kTrimPercent).max;
          }),
      OnMap("range of distance", Values::kQuantised, 0, 4, kHistogram,
            [](MapData& data) {
              data.sink +=
                  GetQuanDistRange(std::as_const(data.map).View(), kTrimPercent)
                      .max;
            }),
      OnMap("smallest distance", Values::kDistance, 0, 1, "a comparison",
            [](MapData& data) {
              data.sink += SmallestDistance(std::as_const(data.map).View());
            }),
      OnMap("quantise distance", Values::kDistance, 2, 3,
            "a difference, a shift, a limit",
            [](MapData& data) {
              QuantiseDistance(std::as_const(data.map).View(), 0,
                               data.changed.View());
            }),
      Filling("fill holes of disparity", Values::kDisparity,
              FillDisparityHoles),
      Filling("fill holes of distance", Values::kDistance, FillDistanceHoles),
      OnMap("focus mask of disparity", Values::kFilledDisparity, 1, 3,
            "2 limits, a product, a choice", MakeMask<FocusMaskDisparity>),
      OnMap("focus mask of distance", Values::kQuantised, 1, 3,
            "2 limits, a product, a choice", MakeMask<FocusMaskDist>),
      {kMaps, "grow region in focus", 60,
       "15 for each of 4 neighbours of a pixel that is reached: differences, "
       "squares, products, a look-up, comparisons",
       Grow},
  };
}

}  // namespace zuqel::bench
