precision highp float;

uniform sampler2D inputYTexture;
uniform sampler2D inputUTexture;
uniform sampler2D inputVTexture;
varying vec2 textureCoordinate;

void main() {
  gl_FragColor = vec4(texture2D(inputYTexture, textureCoordinate).r,
                      texture2D(inputUTexture, textureCoordinate).r,
                      texture2D(inputVTexture, textureCoordinate).r, 1.0);
}
