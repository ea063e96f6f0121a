precision highp float;

// Sharp x (1 - w) + blurred x w. The interface has room for a stack of blur
// layers; there is one, so the blend is always between the image and the first.

uniform sampler2D inputImageTexture;
uniform sampler2D blurTexture1;
uniform sampler2D blurTexture2;
uniform sampler2D blurTexture3;
uniform sampler2D blurTexture4;
uniform sampler2D refocusTexture;
uniform int blurLayer;
varying vec2 textureCoordinate;

void main() {
  vec4 weight = texture2D(refocusTexture, textureCoordinate);
  vec4 sharp = texture2D(inputImageTexture, textureCoordinate);
  vec4 blurred = texture2D(blurTexture1, textureCoordinate);
  gl_FragColor = mix(sharp, blurred, min(weight.r, 3.0));
}
