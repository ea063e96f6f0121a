// The demo scene: a picture and the disparity that a stereo chip would give.
#ifndef ZUQEL_TOOLS_DEMO_SCENE_H_
#define ZUQEL_TOOLS_DEMO_SCENE_H_

#include "image.h"

namespace zuqel::tools {

// Flowers on a table, a town at dusk behind; the same bytes on every machine.
struct Scene {
  Picture picture;         // 1280 x 960
  DisparityMap disparity;  // 320 x 240
  FocusPoint near_focus;   // a flower
  FocusPoint far_focus;    // the town
};

Scene MakeScene();

// The scene while one more orange crosses the table from right to left.
class MovingScene {
 public:
  MovingScene();

  // 0 is the start, 1 the end; `near_focus` is the orange.
  [[nodiscard]] Scene At(float part) const;

 private:
  Scene still_;  // without the orange
};

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_DEMO_SCENE_H_
