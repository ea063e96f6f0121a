precision highp float;

#define BEYOND(a, b) ((a) < (b))
#define LEAST_EXTREME 10000.0
#include "pick3x3.glsl"
