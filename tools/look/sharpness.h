// How much fine detail a frame has, in focus and elsewhere.
#ifndef ZUQEL_TOOLS_LOOK_SHARPNESS_H_
#define ZUQEL_TOOLS_LOOK_SHARPNESS_H_

#include "image.h"
#include "photo/nv21.h"

namespace zuqel::tools {

// The mean of |4c - l - r - a - b| over pixels, in levels of luma (0..1020): c
// is the pixel, l, r, a and b are those left, right, above and below of it, at
// a distance of a 240th of the picture's shorter side, at least one pixel. 0 on
// even surfaces and even slopes. Direct neighbours would not do: the blurred
// copy is small, so they hardly differ at any strength of blur.
struct Sharpness {
  double at_focus = 0;
  double elsewhere = 0;
};

// The focus is a square around the point, with sides of a sixteenth of the
// shorter side of the picture, cut off at the picture's edge. `picture` is the
// size of what counts, from the top left of the frame. Pixels at its edge,
// which lack a neighbour, do not count; 0 where none does.
Sharpness MeasureSharpness(const Nv21Frame& frame, Size picture,
                           FocusPoint focus);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_LOOK_SHARPNESS_H_
