// The depth that goes with a picture.
#include "rendering/depth_input.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

#include "coordinates.h"
#include "photo/map_file.h"
#include "rendering/library_log.h"
#include "tool_error.h"

namespace zuqel::tools {
namespace {

void RequireMap(bool is_given, const char* option) {
  if (!is_given) return;
  throw InputError(std::string(option) + ": needs --disparity or --depth");
}

MapReading ReadingOf(const DepthOptions& options) {
  MapReading reading;
  if (options.disparity.empty()) reading.meaning = DepthMeaning::kLength;
  reading.unknown = options.unknown;
  reading.is_turned_round = options.is_turned_round;
  if (options.near) reading.lengths = {*options.near, *options.far};
  return reading;
}

void CheckProportions(const NamedDepth& depth, Size picture,
                      const DepthOptions& options) {
  const Size map = SizeOf(depth.map);
  const auto [less, more] = std::minmax({int64_t{map.width} * picture.height,
                                         int64_t{map.height} * picture.width});
  if (options.may_stretch || more * 100 <= less * 102) return;
  throw InputError(depth.name + ": is " + ToText(map) + ", the picture " +
                   ToText(picture) +
                   "; if both show the same view, give --stretch");
}

}  // namespace

void CheckDepthOptions(const DepthOptions& options, bool has_photo) {
  if (!options.disparity.empty() && !options.depth.empty()) {
    throw InputError("give one of --disparity and --depth");
  }
  if (!options.HasMap()) {
    RequireMap(options.unknown.has_value(), "--unknown");
  }
  if (!options.HasMap() && !has_photo) {
    RequireMap(options.is_turned_round, "--invert");
    RequireMap(options.scale.kind != DisparityScale::kByMap, "--scale");
    RequireMap(options.may_stretch, "--stretch");
  }
  if (!options.near) return;
  if (!(*options.near > 0 && *options.near < *options.far &&
        std::isfinite(*options.far))) {
    throw InputError("--near: is not above 0 and below --far");
  }
}

std::optional<NamedDepth> ReadDepthMap(const DepthOptions& options) {
  if (!options.HasMap()) return std::nullopt;
  NamedDepth depth;
  depth.name = options.disparity.empty() ? options.depth : options.disparity;
  const MapFile file = ReadMapFile(depth.name);
  if (options.near && file.depth != MapDepth::k8Bits) {
    throw InputError(depth.name +
                     ": holds lengths; --near and --far are for 8-bit maps");
  }
  depth.is_16_bit = file.depth == MapDepth::k16Bits;
  depth.map = ToDepth(file, ReadingOf(options));
  return depth;
}

NamedDepth TakeDepth(const std::string& path, Photo& photo,
                     const DepthOptions& options) {
  if (!photo.depth) {
    throw InputError(path +
                     ": has no depth inside; zuqel render takes depth by "
                     "--disparity, --depth or --weights");
  }
  NamedDepth depth = {path + ": depth inside", *std::move(photo.depth)};
  photo.depth.reset();
  if (options.is_turned_round) TurnRound(depth.map);
  return depth;
}

NamedDepth ChooseDepth(const DepthOptions& options, const std::string& path,
                       Photo& photo) {
  auto given = ReadDepthMap(options);
  NamedDepth depth =
      given ? *std::move(given) : TakeDepth(path, photo, options);
  CheckProportions(depth, SizeOf(photo.picture), options);
  return depth;
}

NotedMap MakeDisparity(const NamedDepth& depth, const DepthOptions& options) {
  auto [map, assumed, is_scaled] =
      ToDisparity(depth.name, depth.map, options.scale);
  const bool has_note = (depth.is_16_bit && is_scaled) || LibraryLogIsShown();
  return {std::move(map), has_note ? depth.name + ": " + assumed : ""};
}

NotedMap MakeDepthFor(const Generator& generator, const NamedDepth& depth,
                      const DepthOptions& options) {
  const bool is_distance = depth.map.is_native &&
                           depth.map.meaning == DepthMeaning::kLength &&
                           options.scale.kind == DisparityScale::kByMap;
  if (!generator.takes_distance || !is_distance) {
    NotedMap noted = MakeDisparity(depth, options);
    noted.map = DepthFor(generator, noted.map);
    return noted;
  }
  const std::string note = depth.name + ": " + depth.map.kind + ", as it is";
  return {ToDistance(depth.map), LibraryLogIsShown() ? note : ""};
}

}  // namespace zuqel::tools
