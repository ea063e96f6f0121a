precision highp float;

// Sampling points of the horizontal blur. They stand half a step and a whole
// step from the centre, a step being `myscale` texels of an image of `fWidth` x
// `fHeight`; that spacing sets the blur radius.
//
//   [4]  [3]  [0]  [1]  [2]
//   -1  -1/2   0   1/2   1    step

attribute vec4 position;
attribute vec2 inputTextureCoordinate;
uniform mat4 projection;
uniform float fWidth;
uniform float fHeight;
uniform float myscale;
varying vec2 blurCoordinates[5];
varying vec2 textureCoordinate;

void main() {
  gl_Position = projection * position;
  textureCoordinate = inputTextureCoordinate.xy;

  vec2 singleStepOffset = vec2(myscale / fWidth, 0.0);
  blurCoordinates[0] = textureCoordinate;
  blurCoordinates[1] = textureCoordinate + singleStepOffset * 0.5;
  blurCoordinates[2] = textureCoordinate + singleStepOffset;
  blurCoordinates[3] = textureCoordinate - singleStepOffset * 0.5;
  blurCoordinates[4] = textureCoordinate - singleStepOffset;
}
