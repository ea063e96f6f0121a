// What blur weights are computed from.

// Two 8-bit halves make a 16-bit value: the sample keeps all of its bits.
uniform highp sampler2D depthTexture;
uniform sampler2D depthTexture2;  // blurred depth
uniform float focusPlane;
uniform float mouseX;
uniform float mouseY;
uniform float min_depth;
uniform float max_depth;
uniform float F_number;
uniform float baseline;
uniform float focal_length;
varying vec2 textureCoordinate;

float ClampToRange(float depth) {
  return max(min(depth, max_depth), min_depth);
}

float DepthHere() {
  // A sample is low precision until it stands in a variable of its own.
  vec4 depth = texture2D(depthTexture, textureCoordinate);
  return ClampToRange(256.0 * 256.0 * depth.g + 256.0 * depth.r);
}
