precision highp float;

// Blur weight of a disparity: 0 near the focus plane, rising to 255 with the
// distance from it in percent of the range on that side.

#define FrontBlurReduce 1.2  // a larger value keeps the front sharper
#define uwClearThres1 30.0   // percent: sharp below,
#define uwClearThres2 70.0   // fully blurred from here on

#include "weight_inputs.glsl"

void main() {
  float currentDepth = DepthHere();
  float focusplane = ClampToRange(focusPlane);
  float dRangeBgLimit = max(focusplane - min_depth, 10.0);
  float dRangeFgLimit = max(max_depth - focusplane, 10.0);
  // Neither can be 0 while the limits above stand.
  if (dRangeBgLimit == 0.0) dRangeBgLimit = dRangeFgLimit;
  if (dRangeFgLimit == 0.0) dRangeFgLimit = dRangeBgLimit;

  float diff = focusplane - currentDepth;
  float range = dRangeBgLimit;
  if (currentDepth > focusplane) {
    diff = (currentDepth - focusplane) / FrontBlurReduce;
    range = dRangeFgLimit;
  }

  float uwLevel = 100.0 * diff / range;
  float weight = 255.0;
  if (uwLevel < uwClearThres1) {
    weight = 0.0;
  } else if (uwLevel < uwClearThres2) {
    weight =
        255.0 * (uwLevel - uwClearThres1) / (uwClearThres2 - uwClearThres1);
  }
  gl_FragColor = vec4(weight / 255.0, 0.0, 0.0, 1.0);
}
