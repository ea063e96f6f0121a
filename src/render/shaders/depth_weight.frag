precision highp float;

// Blur weight of a disparity: 0 near the focus plane, rising to 255 with the
// distance from it in percent of the range on that side.

#define FrontBlurReduce 1.2  // a larger value keeps the front sharper
#define uwClearThres1 30.0   // percent: sharp below,
#define uwClearThres2 70.0   // fully blurred from here on

// Two 8-bit halves make a 16-bit value: the sample keeps all of its bits.
uniform highp sampler2D depthTexture;
uniform sampler2D depthTexture2;  // blurred depth
uniform float focusPlane;
uniform float mouseX;
uniform float mouseY;
uniform float min_depth;
uniform float max_depth;
uniform float F_number;
uniform float baseline;
uniform float focal_length;
varying vec2 textureCoordinate;

void main() {
  // A sample is low precision until it stands in a variable of its own.
  vec4 depth = texture2D(depthTexture, textureCoordinate);
  float currentDepth = 256.0 * 256.0 * depth.g + 256.0 * depth.r;
  currentDepth = max(min(currentDepth, max_depth), min_depth);

  float focusplane = max(min(focusPlane, max_depth), min_depth);
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
