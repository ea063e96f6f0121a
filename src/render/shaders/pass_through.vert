precision highp float;

#include "quad_vertex.glsl"

void main() {
  PlaceVertex();
}
