precision highp float;

// The outer weights are the unit Gaussian at 1 and 2; the centre is raised so
// that all five sum to 1.

uniform sampler2D inputImageTexture;
varying vec2 blurCoordinates[5];

void main() {
  vec4 centre = texture2D(inputImageTexture, blurCoordinates[0]);
  vec4 half_after = texture2D(inputImageTexture, blurCoordinates[1]);
  vec4 after = texture2D(inputImageTexture, blurCoordinates[2]);
  vec4 half_before = texture2D(inputImageTexture, blurCoordinates[3]);
  vec4 before = texture2D(inputImageTexture, blurCoordinates[4]);
  gl_FragColor = 0.408076 * centre + 0.241971 * (half_after + half_before) +
                 0.053991 * (after + before);
}
