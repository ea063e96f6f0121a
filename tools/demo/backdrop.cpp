// The far end of the demo scene: a town at dusk under a string of lamps.
#include "demo/backdrop.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace zuqel::tools {
namespace {

constexpr float kStreet = 610;  // the row on which the town stands

// Too far for the chip to tell distances apart.
constexpr float kFarDisparity = 60;
constexpr float kHedgeDisparity = 90;

Colour Sky(float x, float y) {
  constexpr Colour kTop = {0.10F, 0.13F, 0.33F};
  constexpr Colour kMiddle = {0.55F, 0.33F, 0.52F};
  constexpr Colour kLow = {1.0F, 0.66F, 0.38F};
  const float height = y / kStreet;
  const Colour clear = height < 0.55F
                           ? Mix(kTop, kMiddle, height / 0.55F)
                           : Mix(kMiddle, kLow, (height - 0.55F) / 0.45F);
  const float cloud = Smooth(0.48F, 0.8F, FractalNoise(x / 260, y / 55, 5, 11));
  return Mix(clear, {1.0F, 0.62F, 0.55F}, 0.55F * cloud);
}

// One row of houses; nearer rows are lower and darker.
struct HouseRow {
  float top, height_range;  // of the roofs
  float house_width;
  float window_width, window_height;
  Colour wall;
  float lit;  // fraction of the windows
  int seed;
};

constexpr std::array kRows = {
    HouseRow{400, 130, 84, 12, 16, {0.15F, 0.12F, 0.22F}, 0.55F, 21},
    HouseRow{300, 150, 67, 10, 13, {0.30F, 0.20F, 0.33F}, 0.42F, 31},
    HouseRow{200, 190, 52, 8, 10, {0.52F, 0.33F, 0.42F}, 0.25F, 41},
};

Colour Window(const HouseRow& row, float x, float y, int house) {
  const float column = x / row.window_width, floor = y / row.window_height;
  const int cx = static_cast<int>(std::floor(column));
  const int cy = static_cast<int>(std::floor(floor));
  const float in_x = Fraction(column), in_y = Fraction(floor);
  if (in_x < 0.25F || in_x > 0.8F || in_y < 0.25F || in_y > 0.8F) {
    return row.wall;
  }
  const float state = Random(cx + 64 * house, cy, row.seed + 3);
  if (state > row.lit) return row.wall * 0.55F;
  const float warmth = Random(cx + 64 * house, cy, row.seed + 4);
  const Colour light = Mix({1.0F, 0.72F, 0.30F}, {1.0F, 0.93F, 0.72F}, warmth);
  return light * Mix(0.75F, 1.05F, state / row.lit);
}

bool PaintHouses(const HouseRow& row, float x, float y, Surface& surface) {
  const float position = x / row.house_width + 0.37F;
  const int house = static_cast<int>(std::floor(position));
  const float roof = row.top + row.height_range * Random(house, 0, row.seed);
  const float across = Fraction(position);
  // Every third house has a gable.
  const bool gable = Random(house, 1, row.seed) < 0.34F;
  const float slope = gable ? 42 * std::abs(across - 0.5F) : 0;
  if (y < roof + slope) return false;
  const float shade = Mix(0.85F, 1.1F, Random(house, 2, row.seed));
  const bool wall_only = y < roof + 24 || across < 0.05F || across > 0.95F;
  surface.colour =
      wall_only ? row.wall * shade
                : Window(row, across * row.house_width, y - roof - 24, house);
  return true;
}

// A hedge in front of the town, leaf by leaf.
bool PaintHedge(float x, float y, Surface& surface) {
  const float top = 545 - 46 * FractalNoise(x / 90, 0, 3, 51);
  const float ragged = 12 * Noise(x / 5, y / 5, 52);
  if (y < top + ragged) return false;
  const Cell leaf = CellAt(x / 8, y / 6.5F, 53);
  const float clump = FractalNoise(x / 42, y / 30, 3, 56);
  const float light =
      Smooth(0.25F, 0.85F, 0.45F * leaf.tone + 0.75F * clump - 0.1F) *
      Smooth(0.95F, 0.2F, leaf.distance);
  const Colour green = Mix({0.03F, 0.06F, 0.06F}, {0.44F, 0.52F, 0.20F}, light);
  const bool berry = leaf.tone > 0.93F && leaf.distance < 0.5F;
  surface.colour = berry ? Colour{0.95F, 0.42F, 0.22F} : green;
  surface.disparity = kHedgeDisparity;
  return true;
}

// Lamps on a wire that sags between its posts.
struct Wire {
  float left, right;      // columns of its ends
  float left_y, right_y;  // rows of its ends
  float sag;
  int lamps;
};

constexpr std::array kWires = {Wire{-80, 700, 40, 96, 150, 17},
                               Wire{700, 1380, 96, 30, 130, 15}};

float WireY(const Wire& wire, float x) {
  const float t = (x - wire.left) / (wire.right - wire.left);
  return Mix(wire.left_y, wire.right_y, t) + wire.sag * 4 * t * (1 - t);
}

// Adds the lamps and their glow to what is painted already.
void PaintLamps(float x, float y, const Wire& wire, Colour& colour) {
  if (x >= wire.left && x < wire.right && std::abs(y - WireY(wire, x)) < 1.6F) {
    colour = {0.07F, 0.06F, 0.10F};
  }
  const float spacing =
      (wire.right - wire.left) / static_cast<float>(wire.lamps);
  const float number = std::clamp(std::floor((x - wire.left) / spacing), 0.0F,
                                  static_cast<float>(wire.lamps - 1));
  const float lamp_x = wire.left + (number + 0.5F) * spacing;
  const float dx = x - lamp_x, dy = y - WireY(wire, lamp_x) - 11;
  const float distance = std::sqrt(dx * dx + dy * dy);
  if (distance < 8.5F) {
    colour = Mix({1.3F, 1.2F, 0.95F}, {1.1F, 0.72F, 0.28F},
                 Smooth(2, 8.5F, distance));
    return;
  }
  const float glow = std::max(0.0F, 1 - distance / 34);
  colour = colour + Colour{0.55F, 0.32F, 0.12F} * (glow * glow);
}

}  // namespace

Surface PaintBackdrop(float x, float y) {
  Surface surface = {Sky(x, y), kFarDisparity};
  bool found = PaintHedge(x, y, surface);
  for (const HouseRow& row : kRows) {
    found = found || PaintHouses(row, x, y, surface);
  }
  for (const Wire& wire : kWires) PaintLamps(x, y, wire, surface.colour);
  return surface;
}

}  // namespace zuqel::tools
