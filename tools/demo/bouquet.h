// Flowers and leaves in the vase of the demo scene.
#ifndef ZUQEL_TOOLS_DEMO_BOUQUET_H_
#define ZUQEL_TOOLS_DEMO_BOUQUET_H_

#include <array>
#include <cstddef>
#include <vector>

#include "demo/paint.h"

namespace zuqel::tools {

struct Point {
  float x, y;
};

enum class BladeKind { kLeaf, kPetal, kStem, kHeart };

// A leaf, petal or stem: a bent line with a width. A flower's heart is a disc:
// a blade without length.
class Blade {
 public:
  // From `base` to `tip`, pulled toward `bend`.
  Blade(BladeKind kind, Point base, Point bend, Point tip, float half_width,
        Colour colour, float disparity);

  // The box of the picture outside of which the blade is not seen.
  [[nodiscard]] float left() const { return left_; }
  [[nodiscard]] float right() const { return right_; }
  [[nodiscard]] float top() const { return top_; }
  [[nodiscard]] float bottom() const { return bottom_; }

  // Whether the blade covers the point; writes `surface` when it does.
  bool Paint(float x, float y, Surface& surface) const;

 private:
  static constexpr int kSteps = 20;

  [[nodiscard]] float WidthAt(float t) const;
  [[nodiscard]] Colour ColourAt(float t, float side, float x, float y) const;

  BladeKind kind_;
  std::array<Point, kSteps + 1> line_;
  float half_width_;
  Colour colour_;
  float disparity_;
  float left_, right_, top_, bottom_;
};

class Bouquet {
 public:
  Bouquet();

  // Whether the bouquet is seen at the point; writes `surface` when it is.
  bool Paint(float x, float y, Surface& surface) const;

 private:
  // Squares of the picture, so that a point asks only the blades near it.
  static constexpr size_t kSquare = 32, kColumns = 24, kRows = 24;

  static size_t Square(float position, size_t count);

  std::vector<Blade> blades_;                               // nearest first
  std::array<std::vector<size_t>, kColumns * kRows> near_;  // by square
};

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_DEMO_BOUQUET_H_
