// What the demo scene is painted with: colours, light, and noise. The result is
// the same on every machine, so only exact library functions are used.
#ifndef ZUQEL_TOOLS_DEMO_PAINT_H_
#define ZUQEL_TOOLS_DEMO_PAINT_H_

#include <cstdint>

namespace zuqel::tools {

// 0..1 each; glowing surfaces may exceed 1.
struct Colour {
  float r = 0, g = 0, b = 0;
};

constexpr Colour operator+(Colour a, Colour b) {
  return {a.r + b.r, a.g + b.g, a.b + b.b};
}
constexpr Colour operator*(Colour a, float scale) {
  return {a.r * scale, a.g * scale, a.b * scale};
}
constexpr Colour operator*(Colour a, Colour b) {
  return {a.r * b.r, a.g * b.g, a.b * b.b};
}

// `part` 0 gives `a`, 1 gives `b`.
constexpr float Mix(float a, float b, float part) {
  return a + (b - a) * part;
}
constexpr Colour Mix(Colour a, Colour b, float part) {
  return a + (b + a * -1.0F) * part;
}

// 0 below `low`, 1 above `high`, smooth in between.
float Smooth(float low, float high, float value);

// The fractional part, in 0..1.
float Fraction(float value);

// Uniform in 0..1.
float Random(int x, int y, int seed);

// Value noise in 0..1, about one feature per unit.
float Noise(float x, float y, int seed);

// Sum of `octaves` noises, each with half the scale and amplitude of the last.
float FractalNoise(float x, float y, int octaves, int seed);

// Cellular noise without a visible grid, about one cell per unit square:
// leaves, seeds, pores.
struct Cell {
  float distance;  // from the cell's centre, about 0..1
  float tone;      // 0..1, random per cell
};
Cell CellAt(float x, float y, int seed);

// The direction that a surface faces; of length 1.
struct Normal {
  float right, up, toward;
};

// The colour of a lit surface; `gloss` is 0..1.
Colour Light(Colour colour, const Normal& normal, float gloss);

// How much light the shadow of an object leaves at a point of the table, 0..1.
// The object stands at (`foot_x`, `foot_y`) and extends `reach` to each side.
float Shadow(float foot_x, float foot_y, float reach, float x, float y);

// What is visible at a point of the picture.
struct Surface {
  Colour colour;
  float disparity = 0;  // 0..1000, larger is nearer
};

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_DEMO_PAINT_H_
