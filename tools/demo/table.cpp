// The slanted ground of the demo scene: a wooden table seen from its end.
#include "demo/table.h"

#include <algorithm>
#include <cmath>

namespace zuqel::tools {
namespace {

constexpr float kHorizon = 490;  // where the planks converge
constexpr float kCentre = 660;

Colour Wood(float across, float along, int plank) {
  const auto shift = static_cast<float>(plank) * 7.3F;
  const float rings = Fraction(
      across * 7 + 1.6F * FractalNoise(across * 3 + shift, along / 3, 3, 61));
  const float fibre = FractalNoise(across * 60, along * 1.2F + shift, 3, 62);
  const float tone = Random(plank, 0, 63);
  const Colour base =
      Mix({0.50F, 0.29F, 0.16F}, {0.74F, 0.50F, 0.30F}, tone * 0.7F);
  const float ring_shade = Mix(0.72F, 1.1F, Smooth(0, 0.6F, rings));
  return base * ring_shade * Mix(0.75F, 1.2F, fibre);
}

}  // namespace

float TableDisparity(float y) {
  return 2.1F * (y - kHorizon);
}

Surface PaintTable(float x, float y) {
  // On the table, `across` counts planks and `along` runs away from the camera.
  const float distance = 470 / (y - kHorizon);
  const float across = (x - kCentre) * distance / 150 + 40.5F;
  const float along = distance * 6;
  const int plank = static_cast<int>(std::floor(across));
  const float in_plank = across - std::floor(across);
  const float end = Fraction(along / 9 + Random(plank, 1, 64));
  const bool joint = std::min(in_plank, 1 - in_plank) < 0.022F || end < 0.012F;
  const Colour wood = Wood(in_plank, along, plank);
  // The sky shines on the far end.
  const float sheen = Smooth(1.2F, 4, distance) * 0.35F;
  const Colour lit = Mix(wood, {1.0F, 0.70F, 0.52F}, sheen);
  return {joint ? wood * 0.28F : lit, TableDisparity(y)};
}

}  // namespace zuqel::tools
