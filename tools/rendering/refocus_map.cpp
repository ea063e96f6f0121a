// Refocus maps from the library's generators.
#include "rendering/refocus_map.h"

#include <zuQelRT_GL.h>
#include <zuQelRT_generators.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

#include "rendering/bokeh_session.h"
#include "rendering/output_capture.h"

namespace zuqel::tools {
namespace {

// On disparity a generator reports what it found; on distance it does not. The
// type of the row differs from call to call.
template <typename Row>
using DisparityCall = uint32_t (*)(uint8_t*, uint16_t*, uint32_t, Row,
                                   uint32_t*, uint32_t*, uint32_t*);
template <typename Row>
using DistanceCall = uint32_t (*)(uint8_t*, uint16_t*, uint32_t, Row);

template <typename Row>
uint32_t Call(DisparityCall<Row> call, uint8_t* map, uint16_t* depth,
              FocusPoint focus, DisparityRange& range) {
  return call(map, depth, static_cast<uint32_t>(focus.x),
              static_cast<Row>(focus.y), &range.min, &range.max, &range.focus);
}

template <typename Row>
uint32_t Call(DistanceCall<Row> call, uint8_t* map, uint16_t* depth,
              FocusPoint focus, DisparityRange& /*range*/) {
  return call(map, depth, static_cast<uint32_t>(focus.x),
              static_cast<Row>(focus.y));
}

// The words of the table.
enum class Input { DISPARITY, DISTANCE };
enum class MapSize { WORK, DEPTH };

#define ZUQEL_TOOLS_GENERATOR(id, name, call, y_type, input, map_size, \
                              summary)                                 \
  Generator{name,                                                      \
            #call,                                                     \
            summary,                                                   \
            Input::input == Input::DISTANCE,                           \
            MapSize::map_size == MapSize::WORK,                        \
            [](uint8_t* map, uint16_t* depth, FocusPoint focus,        \
               DisparityRange& range) {                                \
              return Call<y_type>(call, map, depth, focus, range);     \
            }},
constexpr std::array kGenerators = {
    ZUQEL_REFOCUS_GENERATORS(ZUQEL_TOOLS_GENERATOR)};
#undef ZUQEL_TOOLS_GENERATOR

// In a unit that spans 16 bits; disparities below 4 saturate.
DistanceMap ToDistances(const DisparityMap& disparity) {
  constexpr int kUnits = 262144;
  DistanceMap distances(disparity.width, disparity.height);
  std::transform(disparity.values.begin(), disparity.values.end(),
                 distances.values.begin(), [](int value) {
                   if (value == 0 || value >= kUnknownDisparity) return 0;
                   return std::min((kUnits + value / 2) / value, UINT16_MAX);
                 });
  return distances;
}

}  // namespace

std::span<const Generator> Generators() {
  return kGenerators;
}

const Generator* GeneratorNamed(const std::string& name) {
  const auto* const found = std::find_if(
      kGenerators.begin(), kGenerators.end(),
      [&](const Generator& generator) { return generator.name == name; });
  return found == kGenerators.end() ? nullptr : found;
}

std::string GeneratorNames(const std::string& separator) {
  std::string names;
  for (const Generator& generator : kGenerators) {
    names += (names.empty() ? "" : separator) + generator.name;
  }
  return names;
}

std::string CheckGeneratorName(const std::string& name) {
  if (GeneratorNamed(name) != nullptr) return {};
  return name + " is not one of " + GeneratorNames(" ");
}

MapMaker::MapMaker(const Generator& generator) : generator_(generator) {
  CheckStatus(zuQelRT_GenRefocusMap_init(), "zuQelRT_GenRefocusMap_init");
}

MapMaker::~MapMaker() {
  zuQelRT_GenRefocusMap_Deinit();
}

RefocusMap MapMaker::Make(Map<uint16_t> depth, const FramedFocus& focus,
                          Size size) const {
  const FocusPoint point = {focus.point.x * depth.width / focus.frame.width,
                            focus.point.y * depth.height / focus.frame.height};
  RefocusMap map;
  map.weights = WeightMap(size.width, size.height);
  DisparityRange range;
  {
    using Clock = std::chrono::steady_clock;
    const OutputCapture library_output;
    const Clock::time_point start = Clock::now();
    CheckStatus(generator_.make(map.weights.values.data(), depth.values.data(),
                                point, range),
                generator_.call);
    map.time_ms =
        std::chrono::duration<double, std::milli>(Clock::now() - start).count();
  }
  if (!generator_.takes_distance) map.range = range;
  return map;
}

RefocusMap MakeRefocusMap(const Generator& generator, Map<uint16_t> depth,
                          const FramedFocus& focus, std::optional<Size> size) {
  const Size map_size = size.value_or(SizeOf(depth));
  const BokehSession session(
      {.picture = SizeOf(depth), .depth = SizeOf(depth), .work = map_size});
  const MapMaker maker(generator);
  return maker.Make(std::move(depth), focus, map_size);
}

Map<uint16_t> DepthFor(const Generator& generator,
                       const DisparityMap& disparity) {
  return generator.takes_distance ? ToDistances(disparity) : disparity;
}

}  // namespace zuqel::tools
