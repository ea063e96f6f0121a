// From the values of a map file to depth, and from depth to the disparities
// that the library takes.
#include "photo/depth_scale.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <limits>

#include "tool_error.h"

namespace zuqel::tools {
namespace {

constexpr float kUnknown = std::numeric_limits<float>::quiet_NaN();
constexpr int kLargestByte = 255;
// Disparities that a map is spanned over. They leave out 0, which has no
// length.
constexpr int kLowest = 1, kHighest = 1000, kOfOneValue = 500;
constexpr int kLargestDisparity = kUnknownDisparity - 1;

// Of what is known.
struct Range {
  double low = std::numeric_limits<double>::infinity();
  double high = -std::numeric_limits<double>::infinity();
  size_t unknown = 0;

  [[nodiscard]] bool IsEmpty() const { return low > high; }
  [[nodiscard]] bool IsOneValue() const { return low == high; }
};

Range RangeOf(const Map<float>& map) {
  Range range;
  for (const float value : map.values) {
    if (std::isnan(value)) {
      ++range.unknown;
      continue;
    }
    range.low = std::min<double>(range.low, value);
    range.high = std::max<double>(range.high, value);
  }
  return range;
}

// Unknown values stay so.
template <typename Function>
void Change(DepthMap& depth, Function function) {
  for (float& value : depth.values) {
    value = static_cast<float>(function(double{value}));
  }
}

std::string Text(double value) {
  std::array<char, 32> text = {};
  static_cast<void>(std::snprintf(text.data(), text.size(), "%g", value));
  return text.data();
}

std::string RangeText(double low, double high) {
  return Text(low) + ".." + Text(high);
}

std::string KindOf(const MapFile& file, const MapReading& reading) {
  const std::string bits = file.depth == MapDepth::k8Bits    ? "8-bit "
                           : file.depth == MapDepth::k16Bits ? "16-bit "
                                                             : "PFM ";
  const bool is_length = reading.meaning == DepthMeaning::kLength;
  std::string kind = bits + (is_length ? "depth" : "disparity");
  if (reading.is_turned_round) kind += " turned round";
  if (is_length && file.depth != MapDepth::k8Bits) kind += ", 0 unknown";
  if (reading.unknown) kind += ", " + Text(*reading.unknown) + " unknown";
  return kind;
}

// Marks what is unknown in every file, and what `reading` says is.
DepthMap Known(const MapFile& file, const MapReading& reading) {
  const bool is_length = reading.meaning == DepthMeaning::kLength &&
                         file.depth != MapDepth::k8Bits;
  DepthMap depth(file.width, file.height);
  std::transform(file.values.begin(), file.values.end(), depth.values.begin(),
                 [&](float value) {
                   const bool is_known = std::isfinite(value) &&
                                         reading.unknown != value &&
                                         !(is_length && value <= 0);
                   return is_known ? value : kUnknown;
                 });
  depth.meaning = reading.meaning;
  depth.kind = KindOf(file, reading);
  return depth;
}

void ReadBytes(const MapReading& reading, DepthMap& depth) {
  if (reading.is_turned_round) {
    Change(depth, [](double value) { return kLargestByte - value; });
  }
  if (reading.meaning == DepthMeaning::kDisparity) return;
  if (!reading.lengths) {
    depth.meaning = DepthMeaning::kDisparity;
    depth.kind += ", relative";
    Change(depth, [](double value) { return kLargestByte - value; });
    return;
  }
  const double near = reading.lengths->near, far = reading.lengths->far;
  depth.kind += ", lengths of " + RangeText(near, far);
  Change(depth, [&](double value) {
    return near + (far - near) * value / kLargestByte;
  });
}

void ReadNumbers(const MapFile& file, const MapReading& reading,
                 DepthMap& depth) {
  if (reading.is_turned_round) return TurnRound(depth);
  if (file.depth != MapDepth::k16Bits) return;
  if (reading.meaning == DepthMeaning::kLength) {
    depth.is_native = true;
  } else if (RangeOf(depth).high <= kUnknownDisparity) {
    depth.is_native = true;
    depth.kind += ", 1023 unknown";
    for (float& value : depth.values) {
      if (value == kUnknownDisparity) value = kUnknown;
    }
  }
}

// A disparity, or a length's inverse.
double DisparityOf(double value, DepthMeaning meaning) {
  return meaning == DepthMeaning::kLength ? 1 / value : value;
}

// From the map's disparities to the library's.
struct Line {
  [[nodiscard]] double At(double disparity) const {
    return std::round(offset + factor * disparity);
  }

  [[nodiscard]] bool IsIdentity() const { return factor == 1 && offset == 0; }

  double factor = 1, offset = 0;
};

// Between the disparities of the smallest and the largest value.
Line Span(double low, double high) {
  if (low == high) return {0, kOfOneValue};
  const double factor = (kHighest - kLowest) / (high - low);
  return {factor, kLowest - factor * low};
}

std::string Percent(size_t part, size_t whole) {
  std::array<char, 32> text = {};
  static_cast<void>(std::snprintf(
      text.data(), text.size(), "%.1f percent",
      100 * static_cast<double>(part) / static_cast<double>(whole)));
  return text.data();
}

uint16_t Cut(double disparity) {
  return static_cast<uint16_t>(
      std::clamp<double>(disparity, 0, kLargestDisparity));
}

Line LineFor(const DepthMap& depth, const DisparityScale& scale, double low,
             double high) {
  if (scale.kind == DisparityScale::kFactor) return {scale.factor};
  const bool is_native =
      depth.is_native && depth.meaning == DepthMeaning::kDisparity;
  if (scale.kind == DisparityScale::kByMap && is_native) return {};
  return Span(low, high);
}

std::string Describe(const DepthMap& depth, const Range& range,
                     const Line& line) {
  const bool is_length = depth.meaning == DepthMeaning::kLength;
  std::string text = depth.kind + (is_length ? ", inverse of " : ", ");
  if (line.factor == 0) {
    text += Text(range.low) + " throughout taken as " + Text(line.offset);
  } else {
    text += RangeText(range.low, range.high);
    if (line.offset != 0) {
      text += " scaled to " + RangeText(kLowest, kHighest);
    } else {
      text += line.factor == 1 ? " as it is" : " times " + Text(line.factor);
    }
  }
  if (range.unknown == 0) return text;
  return text + ", " + Percent(range.unknown, depth.values.size()) + " unknown";
}

}  // namespace

DepthMap ToDepth(const MapFile& file, const MapReading& reading) {
  DepthMap depth = Known(file, reading);
  if (file.depth == MapDepth::k8Bits) {
    ReadBytes(reading, depth);
  } else {
    ReadNumbers(file, reading, depth);
  }
  return depth;
}

void TurnRound(DepthMap& depth) {
  const Range range = RangeOf(depth);
  if (range.IsEmpty()) return;
  // A sum of two that are far apart may lose the smaller one.
  Change(depth, [&](double value) {
    return std::clamp(range.low + range.high - value, range.low, range.high);
  });
}

ScaledDisparity ToDisparity(const std::string& name, const DepthMap& depth,
                            const DisparityScale& scale) {
  const Range range = RangeOf(depth);
  if (range.IsEmpty()) throw InputError(name + ": nothing in it is known");
  const double one = DisparityOf(range.low, depth.meaning);
  const double other = DisparityOf(range.high, depth.meaning);
  const Line line =
      LineFor(depth, scale, std::min(one, other), std::max(one, other));
  ScaledDisparity scaled = {DisparityMap(depth.width, depth.height),
                            Describe(depth, range, line), !line.IsIdentity()};
  const uint16_t disparity = Cut(line.At(one));
  if (range.low < range.high && disparity == Cut(line.At(other))) {
    throw InputError(name + ": all of it becomes a disparity of " +
                     std::to_string(disparity) + ": " + scaled.assumed);
  }
  std::transform(depth.values.begin(), depth.values.end(),
                 scaled.map.values.begin(), [&](float value) {
                   if (std::isnan(value)) return kUnknownDisparity;
                   return Cut(line.At(DisparityOf(value, depth.meaning)));
                 });
  return scaled;
}

DistanceMap ToDistance(const DepthMap& depth) {
  DistanceMap distance(depth.width, depth.height);
  std::transform(depth.values.begin(), depth.values.end(),
                 distance.values.begin(), [](float value) {
                   return std::isnan(value) ? uint16_t{0}
                                            : static_cast<uint16_t>(value);
                 });
  return distance;
}

}  // namespace zuqel::tools
