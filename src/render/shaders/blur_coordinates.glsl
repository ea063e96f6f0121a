// Sampling points of one direction of a separable blur. They stand half a step
// and a whole step from the centre. STEP is `myscale` texels of an image of
// `fWidth` x `fHeight`; that spacing sets the blur radius.
//
//   [4]  [3]  [0]  [1]  [2]
//   -1  -1/2   0   1/2   1    step

#include "quad_vertex.glsl"

uniform float fWidth;
uniform float fHeight;
uniform float myscale;
varying vec2 blurCoordinates[5];

void main() {
  PlaceVertex();

  vec2 singleStepOffset = STEP;
  blurCoordinates[0] = textureCoordinate;
  blurCoordinates[1] = textureCoordinate + singleStepOffset * 0.5;
  blurCoordinates[2] = textureCoordinate + singleStepOffset;
  blurCoordinates[3] = textureCoordinate - singleStepOffset * 0.5;
  blurCoordinates[4] = textureCoordinate - singleStepOffset;
}
