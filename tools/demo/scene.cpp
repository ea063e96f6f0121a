// The demo scene: a picture and the disparity that a stereo chip would give.
#include "demo/scene.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "demo/backdrop.h"
#include "demo/bouquet.h"
#include "demo/fruit.h"
#include "demo/paint.h"
#include "demo/pottery.h"
#include "demo/stereo_holes.h"
#include "demo/table.h"

namespace zuqel::tools {
namespace {

constexpr int kWidth = 1280, kHeight = 960;
constexpr int kMapScale = 4;
constexpr float kStereoShift = 8;  // map pixels

class Painter {
 public:
  Painter() : oranges_(kOranges.begin(), kOranges.end()) {}
  explicit Painter(const Orange& nearest) : Painter() {
    oranges_.insert(oranges_.begin(), nearest);
  }

  [[nodiscard]] Surface At(float x, float y) const {
    Surface surface;
    if (PaintThings(x, y, surface)) return surface;
    if (y < kTableTop) return PaintBackdrop(x, y);
    surface = PaintTable(x, y);
    for (const Pot& pot : pots_) {
      surface.colour = surface.colour * PotShadow(pot, x, y);
    }
    for (const Orange& orange : oranges_) {
      surface.colour = surface.colour * OrangeShadow(orange, x, y);
    }
    return surface;
  }

 private:
  // What stands on the table, nearest first.
  bool PaintThings(float x, float y, Surface& surface) const {
    return bouquet_.Paint(x, y, surface) ||
           std::any_of(oranges_.begin(), oranges_.end(),
                       [&](const Orange& orange) {
                         return PaintOrange(orange, x, y, surface);
                       }) ||
           std::any_of(pots_.begin(), pots_.end(), [&](const Pot& pot) {
             return PaintPot(pot, x, y, surface);
           });
  }

  std::vector<Orange> oranges_;
  Bouquet bouquet_;
  std::vector<Pot> pots_ = MakePots();
};

uint8_t ToByte(float value) {
  return static_cast<uint8_t>(std::lround(std::clamp(value, 0.0F, 1.0F) * 255));
}

// The mean of 2 x 2 samples per pixel, each clamped to what a picture holds.
void PaintPixel(const Painter& painter, int x, int y, uint8_t* rgb) {
  Colour sum;
  for (const float dy : {0.25F, 0.75F}) {
    for (const float dx : {0.25F, 0.75F}) {
      const Colour c =
          painter.At(static_cast<float>(x) + dx, static_cast<float>(y) + dy)
              .colour;
      sum = sum + Colour{std::min(c.r, 1.0F), std::min(c.g, 1.0F),
                         std::min(c.b, 1.0F)};
    }
  }
  rgb[0] = ToByte(sum.r / 4);
  rgb[1] = ToByte(sum.g / 4);
  rgb[2] = ToByte(sum.b / 4);
}

// Paints columns `left` to `right` - 1, from row `top` down.
void PaintPart(const Painter& painter, int left, int top, int right,
               Picture& picture) {
  for (int y = top; y < kHeight; ++y) {
    for (int x = left; x < right; ++x) {
      PaintPixel(painter, x, y, picture.Pixel(x, y));
    }
  }
}

DisparityMap PaintDisparity(const Painter& painter) {
  DisparityMap map(kWidth / kMapScale, kHeight / kMapScale);
  for (int y = 0; y < map.height; ++y) {
    for (int x = 0; x < map.width; ++x) {
      const Surface surface =
          painter.At((static_cast<float>(x) + 0.5F) * kMapScale,
                     (static_cast<float>(y) + 0.5F) * kMapScale);
      map.At(x, y) =
          static_cast<uint16_t>(std::clamp(surface.disparity, 1.0F, 1000.0F));
    }
  }
  MarkStereoHoles(kStereoShift, map);
  return map;
}

}  // namespace

Scene MakeScene() {
  const Painter painter;
  Scene scene = {Picture(kWidth, kHeight),
                 PaintDisparity(painter),
                 {330, 300},
                 {900, 380}};
  PaintPart(painter, 0, 0, kWidth, scene.picture);
  return scene;
}

MovingScene::MovingScene() : still_(MakeScene()) {}

Scene MovingScene::At(float part) const {
  const Orange orange = {Mix(1130, 640, part), 815, 82};
  const Painter painter(orange);
  Scene scene = still_;
  scene.disparity = PaintDisparity(painter);
  scene.near_focus = {static_cast<int>(orange.x), static_cast<int>(orange.y)};
  // The orange and its shadow, which falls to the right.
  PaintPart(painter, scene.near_focus.x - 90, 700,
            std::min(scene.near_focus.x + 180, kWidth), scene.picture);
  return scene;
}

}  // namespace zuqel::tools
