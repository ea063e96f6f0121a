// Pottery on the table of the demo scene.
#include "demo/pottery.h"

#include <algorithm>
#include <cmath>

#include "demo/table.h"

namespace zuqel::tools {
namespace {

// Height over width of a horizontal circle in the picture: the camera looks
// down a little.
constexpr float kTilt = 0.22F;

// The outline at `height`: a cubic spline through its points.
float RadiusAt(const Pot& pot, float height) {
  const int last = static_cast<int>(pot.radii.size()) - 1;
  const float position =
      std::clamp(height / pot.height, 0.0F, 1.0F) * static_cast<float>(last);
  const int i = std::min(static_cast<int>(position), last - 1);
  const float t = position - static_cast<float>(i);
  const auto at = [&](int k) {
    return pot.radii[static_cast<size_t>(std::clamp(k, 0, last))];
  };
  const float before = (at(i + 1) - at(i - 1)) / 2;
  const float after = (at(i + 2) - at(i)) / 2;
  const float a = 2 * (at(i) - at(i + 1)) + before + after;
  const float b = 3 * (at(i + 1) - at(i)) - 2 * before - after;
  return std::max(0.5F, at(i) + t * (before + t * (b + t * a)));
}

// Arc sine in quarter turns; four digits are enough.
float Angle(float sine) {
  const float s = std::abs(sine);
  const float series =
      1.5707288F + s * (-0.2121144F + s * (0.0742610F - s * 0.0187293F));
  const float angle =
      1 - std::sqrt(std::max(0.0F, 1 - s)) * series / 1.5707963F;
  return sine < 0 ? -angle : angle;
}

// Finds the height of the front surface that is visible at `y`. The front of a
// circle appears below its centre, by an amount that depends on the radius at
// that height, so the two are found by iteration.
bool FrontHeight(const Pot& pot, float dx, float y, float& height,
                 float& facing) {
  const float above = pot.foot - y;
  height = above;
  for (int i = 0; i < 6; ++i) {
    const float radius = RadiusAt(pot, height);
    const float sine = std::clamp(dx / radius, -1.0F, 1.0F);
    facing = std::sqrt(1 - sine * sine);
    height = above + kTilt * radius * facing;
  }
  return height >= 0 && height <= pot.height &&
         std::abs(dx) <= RadiusAt(pot, height);
}

bool PaintMouth(const Pot& pot, float dx, float y, Surface& surface) {
  const float radius = RadiusAt(pot, pot.height);
  const float dy = (y - (pot.foot - pot.height)) / kTilt;
  const float distance = std::sqrt(dx * dx + dy * dy) / radius;
  if (distance > 1) return false;
  const PotPoint rim = {0, pot.height, radius};
  const Colour lip = pot.pattern(rim) * 0.95F;
  surface.colour = distance > 0.88F ? lip : Colour{0.09F, 0.06F, 0.06F};
  surface.disparity = TableDisparity(pot.foot);
  return true;
}

// Cobalt on white, in bands.
Colour VasePattern(const PotPoint& point) {
  constexpr Colour kWhite = {0.93F, 0.92F, 0.88F};
  constexpr Colour kBlue = {0.10F, 0.20F, 0.55F};
  constexpr Colour kRust = {0.76F, 0.33F, 0.18F};
  const float around = point.angle * 8 + 0.5F;
  const float band = point.height / 47;
  const int row = static_cast<int>(std::floor(band));
  const float v = Fraction(band);
  if (v < 0.12F || v > 0.96F) return kBlue;
  const float u = Fraction(around);
  switch (row % 4) {
    case 0:
      return std::abs(u - 0.5F) * 2 < v ? kBlue : kWhite;
    case 1: {
      const float du = (u - 0.5F) * 1.1F, dv = v - 0.54F;
      const float d = du * du + dv * dv;
      if (d < 0.025F) return kRust;
      return d < 0.06F || d > 0.13F ? kWhite : kBlue;
    }
    case 2:
      return Fraction(around + v * 1.5F) < 0.42F ? kRust : kWhite;
    default:
      return (Fraction(around * 1.5F) < 0.5F) == (v < 0.5F) ? kBlue : kWhite;
  }
}

// Teal glaze that runs over bare clay, with combed lines.
Colour JarPattern(const PotPoint& point) {
  constexpr Colour kClay = {0.70F, 0.45F, 0.30F};
  const float edge = 52 + 16 * FractalNoise(point.angle * 5 + 9, 0, 2, 71);
  if (point.height < edge) {
    return kClay *
           Mix(0.8F, 1.1F, CellAt(point.angle * 26, point.height / 5, 72).tone);
  }
  const float comb =
      Fraction(point.height / 9 + 0.35F * Noise(point.angle * 9, 0, 73));
  const Colour teal = Mix({0.04F, 0.30F, 0.34F}, {0.30F, 0.66F, 0.62F}, comb);
  const Cell speck = CellAt(point.angle * 14, point.height / 11, 76);
  return speck.tone > 0.6F && speck.distance < 0.24F
             ? Colour{0.93F, 0.90F, 0.74F}
             : teal;
}

Colour CupPattern(const PotPoint& point) {
  const float u = Fraction(point.angle * 8);
  return u < 0.5F ? Colour{0.86F, 0.24F, 0.22F} : Colour{0.95F, 0.90F, 0.80F};
}

}  // namespace

bool PaintPot(const Pot& pot, float x, float y, Surface& surface) {
  const float widest = *std::max_element(pot.radii.begin(), pot.radii.end());
  const float dx = x - pot.x;
  if (std::abs(dx) > widest || y > pot.foot + widest ||
      y < pot.foot - pot.height - widest) {
    return false;
  }
  if (pot.open && PaintMouth(pot, dx, y, surface)) return true;
  float height = 0, facing = 0;
  if (!FrontHeight(pot, dx, y, height, facing)) return false;
  const float radius = RadiusAt(pot, height);
  const float sine = std::clamp(dx / radius, -1.0F, 1.0F);
  const float slope =
      (RadiusAt(pot, height + 2) - RadiusAt(pot, height - 2)) / 4;
  const Colour clay = pot.pattern({Angle(sine), height, radius});
  const float level = 1 / std::sqrt(1 + slope * slope);
  const Normal normal = {sine * level, -slope * level, facing * level};
  surface.colour = Light(clay, normal, pot.gloss);
  surface.disparity = TableDisparity(pot.foot + 2 * kTilt * radius * facing);
  return true;
}

float PotShadow(const Pot& pot, float x, float y) {
  const float widest = *std::max_element(pot.radii.begin(), pot.radii.end());
  const float reach = std::max(pot.radii.front(), 0.8F * widest);
  return Shadow(pot.x, pot.foot, reach, x, y);
}

std::vector<Pot> MakePots() {
  return {
      {400,
       862,
       330,
       {62, 84, 112, 132, 138, 128, 104, 74, 58, 60, 74},
       VasePattern,
       0.9F,
       true},
      {880,
       676,
       210,
       {56, 76, 92, 98, 94, 80, 58, 50, 56},
       JarPattern,
       0.7F,
       true},
      {668, 636, 74, {26, 32, 36, 38, 40}, CupPattern, 0.5F, true},
  };
}

}  // namespace zuqel::tools
