// What every vertex shader takes from the quad.

attribute vec4 position;
attribute vec2 inputTextureCoordinate;
uniform mat4 projection;
varying vec2 textureCoordinate;

void PlaceVertex() {
  gl_Position = projection * position;
  textureCoordinate = inputTextureCoordinate.xy;
}
