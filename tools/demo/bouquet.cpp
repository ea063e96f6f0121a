// Flowers and leaves in the vase of the demo scene.
#include "demo/bouquet.h"

#include <algorithm>
#include <cmath>

namespace zuqel::tools {
namespace {

constexpr Point kMouth = {400, 545};
constexpr float kDisparity = 860;

constexpr Colour kGreen = {0.22F, 0.46F, 0.20F};
constexpr Colour kPaleGreen = {0.50F, 0.66F, 0.34F};

Colour DiscColour(float x, float y, float distance) {
  const Cell seed = CellAt(x / 5, y / 5, 84);
  const Colour seeds = Mix({0.99F, 0.72F, 0.24F}, {0.26F, 0.11F, 0.05F},
                           Smooth(0.15F, 0.7F, seed.distance));
  return seeds * Mix(1.1F, 0.65F, distance);
}

// A flower: two rings of petals around a disc.
struct Flower {
  Point centre;
  float radius;
  Colour petal;
  float disparity;
};

void AddFlower(const Flower& flower, std::vector<Blade>& blades) {
  const Point c = flower.centre;
  blades.emplace_back(BladeKind::kDisc, c, c, c, 0.32F * flower.radius,
                      Colour{}, flower.disparity + 12);
  // A petal every sixteenth of a turn; the second ring is half a step off.
  constexpr Point kTurn = {0.92387953F, 0.38268343F};
  constexpr Point kHalfTurn = {0.98078528F, 0.19509032F};
  for (int ring = 0; ring < 2; ++ring) {
    Point d = ring == 0 ? Point{1, 0} : kHalfTurn;
    const float length = flower.radius * (ring == 0 ? 0.94F : 1.0F);
    for (int i = 0; i < 16; ++i) {
      const float bent = Mix(0.86F, 1.08F, Random(i, ring, 82)) * length;
      const Point tip = {c.x + bent * d.x, c.y + 0.9F * bent * d.y};
      const Point middle = {c.x + 0.55F * bent * d.x - 4 * d.y,
                            c.y + 0.5F * bent * d.y + 4 * d.x};
      const Colour shade = flower.petal * (ring == 0 ? 1.0F : 0.78F);
      blades.emplace_back(BladeKind::kPetal, c, middle, tip,
                          0.155F * flower.radius, shade,
                          flower.disparity - 6 * static_cast<float>(ring));
      d = {d.x * kTurn.x - d.y * kTurn.y, d.x * kTurn.y + d.y * kTurn.x};
    }
  }
}

constexpr std::array kFlowers = {
    Flower{{330, 300}, 112, {0.98F, 0.78F, 0.16F}, kDisparity + 40},
    Flower{{520, 225}, 96, {0.94F, 0.34F, 0.26F}, kDisparity},
    Flower{{215, 425}, 82, {0.97F, 0.93F, 0.88F}, kDisparity + 20},
    Flower{{545, 420}, 74, {0.96F, 0.60F, 0.70F}, kDisparity + 30},
    Flower{{395, 130}, 70, {0.97F, 0.93F, 0.88F}, kDisparity - 30},
};

struct Leaf {
  Point bend, tip;
  float half_width;
  float disparity;
};

constexpr std::array kLeaves = {
    Leaf{{300, 470}, {150, 560}, 24, kDisparity + 30},
    Leaf{{510, 480}, {660, 590}, 25, kDisparity + 20},
    Leaf{{470, 400}, {640, 330}, 22, kDisparity - 10},
    Leaf{{330, 400}, {140, 300}, 23, kDisparity - 10},
    Leaf{{420, 330}, {440, 60}, 15, kDisparity - 40},
    Leaf{{360, 330}, {240, 150}, 19, kDisparity - 40},
    Leaf{{470, 340}, {625, 130}, 17, kDisparity - 40},
    Leaf{{450, 470}, {585, 505}, 20, kDisparity + 10},
    Leaf{{350, 480}, {265, 530}, 19, kDisparity + 10},
};

}  // namespace

Blade::Blade(BladeKind kind, Point base, Point bend, Point tip,
             float half_width, Colour colour, float disparity)
    : kind_(kind),
      half_width_(half_width),
      colour_(colour),
      disparity_(disparity) {
  for (int i = 0; i <= kSteps; ++i) {
    const float t = static_cast<float>(i) / kSteps, s = 1 - t;
    line_[static_cast<size_t>(i)] = {
        s * s * base.x + 2 * s * t * bend.x + t * t * tip.x,
        s * s * base.y + 2 * s * t * bend.y + t * t * tip.y};
  }
  left_ = std::min({base.x, bend.x, tip.x}) - half_width;
  right_ = std::max({base.x, bend.x, tip.x}) + half_width;
  top_ = std::min({base.y, bend.y, tip.y}) - half_width;
  bottom_ = std::max({base.y, bend.y, tip.y}) + half_width;
}

float Blade::WidthAt(float t) const {
  if (kind_ == BladeKind::kStem || kind_ == BladeKind::kDisc) {
    return half_width_;
  }
  // Thin at the base, widest near the middle, pointed at the tip.
  const float swell = kind_ == BladeKind::kPetal ? 0.62F : 0.45F;
  const float part = t < swell ? t / swell : (1 - t) / (1 - swell);
  return half_width_ * std::sqrt(std::max(0.0F, part * (2 - part)));
}

Colour Blade::ColourAt(float t, float side, float x, float y) const {
  const float across = std::abs(side);
  switch (kind_) {
    case BladeKind::kDisc:
      return DiscColour(x, y, across);
    case BladeKind::kStem:
      return colour_ * Mix(1.0F, 0.5F, 0.5F + 0.5F * side);
    case BladeKind::kPetal: {
      const bool streak = Fraction(side * 2.5F + 0.25F) < 0.3F;
      const float shade = Mix(0.62F, 1.08F, t) * Mix(1, 0.82F, across);
      return colour_ * (streak ? shade * 0.86F : shade);
    }
    case BladeKind::kLeaf:
      break;
  }
  if (across < 0.07F) return kPaleGreen * 1.15F;
  const bool vein = Fraction(t * 15 - across * 1.6F) < 0.16F;
  const float shade = side < 0 ? 1.08F : 0.72F;
  const float mottle = Mix(0.85F, 1.1F, Noise(x / 9, y / 9, 83));
  return (vein ? kPaleGreen : colour_) * (shade * mottle);
}

bool Blade::Paint(float x, float y, Surface& surface) const {
  if (x < left_ || x > right_ || y < top_ || y > bottom_) return false;
  float nearest = 1e9F, along = 0, side = 0;
  for (int i = 0; i < kSteps; ++i) {
    const Point from = line_[static_cast<size_t>(i)];
    const Point to = line_[static_cast<size_t>(i) + 1];
    const float dx = to.x - from.x, dy = to.y - from.y;
    const float px = x - from.x, py = y - from.y;
    const float length = std::max(dx * dx + dy * dy, 1e-6F);
    const float t = std::clamp((px * dx + py * dy) / length, 0.0F, 1.0F);
    const float ex = px - t * dx, ey = py - t * dy;
    const float distance = ex * ex + ey * ey;
    if (distance >= nearest) continue;
    nearest = distance;
    along = (static_cast<float>(i) + t) / kSteps;
    side = dx * py - dy * px;
  }
  const float width = WidthAt(along);
  const float distance = std::sqrt(nearest);
  if (distance > width) return false;
  const float across = distance / width;
  surface.colour = ColourAt(along, side < 0 ? -across : across, x, y);
  surface.disparity = disparity_;
  return true;
}

Bouquet::Bouquet() {
  for (const Flower& flower : kFlowers) AddFlower(flower, blades_);
  for (const Leaf& leaf : kLeaves) {
    blades_.emplace_back(BladeKind::kLeaf, kMouth, leaf.bend, leaf.tip,
                         leaf.half_width, kGreen, leaf.disparity);
  }
  for (const Flower& flower : kFlowers) {
    const Point bend = {Mix(kMouth.x, flower.centre.x, 0.2F),
                        Mix(kMouth.y, flower.centre.y, 0.6F)};
    blades_.emplace_back(BladeKind::kStem, kMouth, bend, flower.centre, 6.0F,
                         kPaleGreen * 0.8F, kDisparity - 20);
  }
  for (size_t i = 0; i < blades_.size(); ++i) {
    const Blade& blade = blades_[i];
    for (size_t row = CellIndex(blade.top(), kRows);
         row <= CellIndex(blade.bottom(), kRows); ++row) {
      for (size_t column = CellIndex(blade.left(), kColumns);
           column <= CellIndex(blade.right(), kColumns); ++column) {
        near_[row * kColumns + column].push_back(i);
      }
    }
  }
}

// Points outside the grid belong to its last cell, whose blades then miss.
size_t Bouquet::CellIndex(float position, size_t count) {
  return std::min(static_cast<size_t>(std::max(position, 0.0F)) / kCellSize,
                  count - 1);
}

bool Bouquet::Paint(float x, float y, Surface& surface) const {
  const auto& candidates =
      near_[CellIndex(y, kRows) * kColumns + CellIndex(x, kColumns)];
  return std::any_of(candidates.begin(), candidates.end(),
                     [&](size_t i) { return blades_[i].Paint(x, y, surface); });
}

}  // namespace zuqel::tools
