// The light of the demo scene: from the upper left, with a warm sky behind.
#include "demo/light.h"

#include <algorithm>
#include <cmath>

namespace zuqel::tools {

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
