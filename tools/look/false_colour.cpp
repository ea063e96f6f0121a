// Maps as false-colour pictures: blue is low, red is high.
#include "look/false_colour.h"

#include <algorithm>
#include <array>

namespace zuqel::tools {
namespace {

using Colour = std::array<int, 3>;

constexpr std::array<Colour, 7> kScale = {{{38, 28, 92},
                                           {48, 98, 205},
                                           {38, 178, 200},
                                           {110, 208, 110},
                                           {236, 212, 64},
                                           {240, 128, 40},
                                           {160, 24, 24}}};

// `value` is in low..high, inclusive; low < high.
void Paint(int value, int low, int high, uint8_t* rgb) {
  constexpr int kSteps = kScale.size() - 1;
  const int range = high - low;
  const int position = (value - low) * kSteps;
  const int step = std::min(position / range, kSteps - 1);
  const int part = position - step * range;
  const Colour& from = kScale[static_cast<size_t>(step)];
  const Colour& to = kScale[static_cast<size_t>(step) + 1];
  for (size_t i = 0; i < from.size(); ++i) {
    rgb[i] =
        static_cast<uint8_t>((from[i] * (range - part) + to[i] * part) / range);
  }
}

}  // namespace

Picture FalseColour(const DisparityMap& map) {
  int low = kUnknownDisparity, high = 0;
  for (const int value : map.values) {
    if (value >= kUnknownDisparity) continue;
    low = std::min(low, value);
    high = std::max(high, value);
  }
  high = std::max(high, low + 1);
  Picture picture(map.width, map.height);
  for (size_t i = 0; i < map.values.size(); ++i) {
    if (map.values[i] >= kUnknownDisparity) continue;
    Paint(map.values[i], low, high, &picture.rgb[3 * i]);
  }
  return picture;
}

Picture FalseColourOfDistance(const DistanceMap& map) {
  constexpr int kSpan = 4092;
  int nearest = UINT16_MAX;
  for (const int value : map.values) {
    if (value > 0) nearest = std::min(nearest, value);
  }
  Picture picture(map.width, map.height);
  for (size_t i = 0; i < map.values.size(); ++i) {
    if (map.values[i] == 0) continue;
    const int beyond = std::min(map.values[i] - nearest, kSpan);
    Paint(kSpan - beyond, 0, kSpan, &picture.rgb[3 * i]);
  }
  return picture;
}

Picture FalseColour(const WeightMap& map) {
  Picture picture(map.width, map.height);
  for (size_t i = 0; i < map.values.size(); ++i) {
    Paint(map.values[i], 0, 255, &picture.rgb[3 * i]);
  }
  return picture;
}

}  // namespace zuqel::tools
