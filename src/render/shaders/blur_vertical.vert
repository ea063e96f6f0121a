precision highp float;

#define STEP vec2(0.0, myscale / fHeight)
#include "blur_coordinates.glsl"
