precision highp float;

attribute vec4 position;
attribute vec2 inputTextureCoordinate;
uniform mat4 projection;
varying vec2 textureCoordinate;

void main() {
  gl_Position = projection * position;
  textureCoordinate = inputTextureCoordinate.xy;
}
