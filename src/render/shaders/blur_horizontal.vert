precision highp float;

#define STEP vec2(myscale / fWidth, 0.0)
#include "blur_coordinates.glsl"
