// Oranges on the table of the demo scene.
#include "demo/fruit.h"

#include <cmath>

#include "demo/table.h"

namespace zuqel::tools {

bool PaintOrange(const Orange& orange, float x, float y, Surface& surface) {
  const float right = (x - orange.x) / orange.radius;
  const float up = (orange.y - y) / orange.radius;
  const float across = right * right + up * up;
  if (across >= 1) return false;
  const float toward = std::sqrt(1 - across);
  // The peel bulges, so pores crowd toward the edge.
  const float bulge = 1 / (0.45F + 0.55F * toward);
  const Cell pore = CellAt(right * bulge * 13, up * bulge * 13, 85);
  const float dx = right + 0.18F, dy = up - 0.62F;
  const float stalk = dx * dx + 2.4F * dy * dy;
  Colour peel = Mix({1.0F, 0.62F, 0.14F}, {0.86F, 0.36F, 0.04F},
                    Smooth(0.05F, 0.75F, pore.distance));
  if (stalk < 0.012F) peel = {0.24F, 0.36F, 0.12F};
  surface.colour = Light(peel, {right, up, toward}, 0.35F);
  const float foot = orange.y + 0.85F * orange.radius;
  surface.disparity = TableDisparity(foot + 0.2F * orange.radius * toward);
  return true;
}

float OrangeShadow(const Orange& orange, float x, float y) {
  return Shadow(orange.x, orange.y + 0.85F * orange.radius,
                0.8F * orange.radius, x, y);
}

}  // namespace zuqel::tools
