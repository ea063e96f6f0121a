precision highp float;

// The 3x3 neighbourhood of a pixel, `scale` texels apart in an image of `fWidth`
// x `fHeight`.
//
//   [6] [2] [5]
//   [3] [0] [1]
//   [7] [4] [8]

#include "quad_vertex.glsl"

uniform float fWidth;
uniform float fHeight;
uniform float scale;
varying vec2 blurCoordinates[9];

void main() {
  PlaceVertex();

  vec2 dx = vec2(scale / fWidth, 0.0);
  vec2 dy = vec2(0.0, scale / fHeight);
  blurCoordinates[0] = textureCoordinate;
  blurCoordinates[1] = textureCoordinate + dx;
  blurCoordinates[2] = textureCoordinate + dy;
  blurCoordinates[3] = textureCoordinate - dx;
  blurCoordinates[4] = textureCoordinate - dy;
  blurCoordinates[5] = textureCoordinate + dx + dy;
  blurCoordinates[6] = textureCoordinate - dx + dy;
  blurCoordinates[7] = textureCoordinate - dx - dy;
  blurCoordinates[8] = textureCoordinate + dx - dy;
}
