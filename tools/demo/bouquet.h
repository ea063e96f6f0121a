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

enum class BladeKind { kLeaf, kPetal, kStem, kDisc };

// A leaf, petal or stem: a curve with a width. The disc at a flower's centre is
// a blade without length.
class Blade {
 public:
  // From `base` to `tip`, pulled toward `bend`.
  Blade(BladeKind kind, Point base, Point bend, Point tip, float half_width,
        Colour colour, float disparity);

  // The bounding box in the picture.
  [[nodiscard]] float left() const { return left_; }
  [[nodiscard]] float right() const { return right_; }
  [[nodiscard]] float top() const { return top_; }
  [[nodiscard]] float bottom() const { return bottom_; }

  // True if the blade covers the point; sets `surface` then.
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

  // True if the bouquet is visible at the point; sets `surface` then.
  bool Paint(float x, float y, Surface& surface) const;

 private:
  // A grid over the picture, so that a point tests only the blades near it.
  static constexpr size_t kCellSize = 32, kColumns = 24, kRows = 24;

  static size_t CellIndex(float position, size_t count);

  std::vector<Blade> blades_;                               // nearest first
  std::array<std::vector<size_t>, kColumns * kRows> near_;  // by grid cell
};

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_DEMO_BOUQUET_H_
