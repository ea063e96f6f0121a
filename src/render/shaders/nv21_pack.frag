precision highp float;

uniform sampler2D inputYTexture;
uniform sampler2D inputUVTexture;
varying vec2 textureCoordinate;

void main() {
  vec4 luma = texture2D(inputYTexture, textureCoordinate);
  vec4 chroma = texture2D(inputUVTexture, textureCoordinate);
  gl_FragColor = vec4(luma.r, chroma.a, chroma.r, 1.0);
}
