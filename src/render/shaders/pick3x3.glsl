// Picks the sample whose red is the most extreme of nine; the first of equals
// wins. BEYOND(a, b) says that red a is more extreme than b, LEAST_EXTREME is
// where the search begins. Written out because indices of varyings have to be
// constants.

uniform sampler2D inputImageTexture;
varying vec2 blurCoordinates[9];

void Consider(vec4 candidate, inout vec4 picked, inout float bound) {
  if (BEYOND(candidate.r, bound)) {
    picked = candidate;
    bound = candidate.r;
  }
}

void main() {
  vec4 centre = texture2D(inputImageTexture, blurCoordinates[0]);
  vec4 picked = centre;
  float bound = LEAST_EXTREME;
  Consider(centre, picked, bound);
  Consider(texture2D(inputImageTexture, blurCoordinates[1]), picked, bound);
  Consider(texture2D(inputImageTexture, blurCoordinates[2]), picked, bound);
  Consider(texture2D(inputImageTexture, blurCoordinates[3]), picked, bound);
  Consider(texture2D(inputImageTexture, blurCoordinates[4]), picked, bound);
  Consider(texture2D(inputImageTexture, blurCoordinates[5]), picked, bound);
  Consider(texture2D(inputImageTexture, blurCoordinates[6]), picked, bound);
  Consider(texture2D(inputImageTexture, blurCoordinates[7]), picked, bound);
  Consider(texture2D(inputImageTexture, blurCoordinates[8]), picked, bound);
  gl_FragColor = picked;
}
