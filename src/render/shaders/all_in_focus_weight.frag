precision highp float;

// Blur weight of a disparity that keeps a share of each side in focus. The ramps
// run against their neighbours; the jump where they begin belongs to the design.

#define AllinRatio_BG 30.0        // percent of the background range kept sharp
#define AllinRatio_BG_alpha 40.0  // percent at which the ramp ends

#include "weight_inputs.glsl"

void main() {
  float currentDepth = DepthHere();
  float focusplane = ClampToRange(focusPlane);
  float dRangeBg = focusplane - min_depth;
  float dRangeFg = max_depth - focusplane;

  float weight = 255.0;
  if (dRangeBg > dRangeFg / 2.0) {
    float AllinMinDisp = focusplane - dRangeBg * AllinRatio_BG / 100.0;
    float AllinMinDisp_alpha =
        focusplane - dRangeBg * AllinRatio_BG_alpha / 100.0;
    if (currentDepth >= AllinMinDisp) {
      weight = 0.0;
    } else if (currentDepth >= AllinMinDisp_alpha) {
      weight = 255.0 - (focusplane - currentDepth) * 255.0 / dRangeBg;
    }
  } else {
    float AllinMaxDisp = (max_depth + min_depth) / 2.0;
    float TmpRangeFG = AllinMaxDisp - focusplane;
    if (currentDepth <= focusplane) {
      weight = 0.0;
    } else if (currentDepth < AllinMaxDisp) {
      weight = 255.0 - (currentDepth - focusplane) * 255.0 / TmpRangeFG;
    }
  }
  if (dRangeBg == 0.0 && dRangeFg == 0.0) weight = 0.0;
  gl_FragColor = vec4(weight / 255.0, 0.0, 0.0, 1.0);
}
