// What the demo scene is painted with: colours, light and noise.
#include "demo/paint.h"

#include <algorithm>
#include <cmath>

namespace zuqel::tools {
namespace {

uint32_t Hash(uint32_t x) {
  x = (x ^ (x >> 16)) * 0x7feb352dU;
  x = (x ^ (x >> 15)) * 0x846ca68bU;
  return x ^ (x >> 16);
}

}  // namespace

float Smooth(float low, float high, float value) {
  const float t = std::clamp((value - low) / (high - low), 0.0F, 1.0F);
  return t * t * (3 - 2 * t);
}

float Fraction(float value) {
  return value - std::floor(value);
}

float Random(int x, int y, int seed) {
  const uint32_t hash =
      Hash(static_cast<uint32_t>(x) +
           Hash(static_cast<uint32_t>(y) + Hash(static_cast<uint32_t>(seed))));
  return static_cast<float>(hash >> 8) / 16777216.0F;
}

float Noise(float x, float y, int seed) {
  const int cell_x = static_cast<int>(std::floor(x));
  const int cell_y = static_cast<int>(std::floor(y));
  const float tx = Smooth(0, 1, Fraction(x)), ty = Smooth(0, 1, Fraction(y));
  const float top =
      Mix(Random(cell_x, cell_y, seed), Random(cell_x + 1, cell_y, seed), tx);
  const float bottom = Mix(Random(cell_x, cell_y + 1, seed),
                           Random(cell_x + 1, cell_y + 1, seed), tx);
  return Mix(top, bottom, ty);
}

float FractalNoise(float x, float y, int octaves, int seed) {
  float sum = 0, height = 0.5F, total = 0;
  for (int octave = 0; octave < octaves; ++octave) {
    sum += height * Noise(x, y, seed + octave);
    total += height;
    x *= 2;
    y *= 2;
    height /= 2;
  }
  return sum / total;
}

Cell CellAt(float x, float y, int seed) {
  const int home_x = static_cast<int>(std::floor(x));
  const int home_y = static_cast<int>(std::floor(y));
  float nearest = 8, tone = 0;
  for (int cy = home_y - 1; cy <= home_y + 1; ++cy) {
    for (int cx = home_x - 1; cx <= home_x + 1; ++cx) {
      const float dx = x - static_cast<float>(cx) - Random(cx, cy, seed);
      const float dy = y - static_cast<float>(cy) - Random(cx, cy, seed + 1);
      const float distance = dx * dx + dy * dy;
      if (distance >= nearest) continue;
      nearest = distance;
      tone = Random(cx, cy, seed + 2);
    }
  }
  return {std::sqrt(nearest), tone};
}

// From the upper left, with a warm sky behind.
Colour Light(Colour colour, const Normal& normal, float gloss) {
  const float diffuse = std::max(
      0.0F, -0.55F * normal.right + 0.62F * normal.toward + 0.45F * normal.up);
  float shine = std::max(
      0.0F, -0.45F * normal.right + 0.85F * normal.toward + 0.27F * normal.up);
  for (int i = 0; i < 6; ++i) shine *= shine;
  const float rim = Smooth(0.72F, 1, normal.right) * (0.1F + 0.3F * gloss);
  return colour * (0.30F + 0.85F * diffuse) +
         Colour{1.0F, 0.94F, 0.86F} * (shine * gloss) +
         Colour{0.9F, 0.45F, 0.25F} * rim;
}

float Shadow(float foot_x, float foot_y, float reach, float x, float y) {
  const float dx = (x - foot_x - 0.55F * reach) / (1.9F * reach);
  const float dy = (y - foot_y - 0.02F * reach) / (0.55F * reach);
  return Mix(0.30F, 1, Smooth(0.25F, 1, std::sqrt(dx * dx + dy * dy)));
}

}  // namespace zuqel::tools
