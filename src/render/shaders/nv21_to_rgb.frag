precision highp float;

// Full-range BT.601. The chroma texture has V in its first channel and U in
// alpha.

uniform sampler2D inputYTexture;
uniform sampler2D inputUVTexture;
varying vec2 textureCoordinate;

void main() {
  vec4 luma = texture2D(inputYTexture, textureCoordinate);
  vec4 chroma = texture2D(inputUVTexture, textureCoordinate);
  float y = luma.r;
  float u = chroma.a - 0.5;
  float v = chroma.r - 0.5;
  gl_FragColor = vec4(y + 1.40200 * v, y - 0.34414 * u - 0.71414 * v,
                      y + 1.77200 * u, 1.0);
}
