// The camera's frame format, and the way to it from RGB and back.
#ifndef ZUQEL_TOOLS_NV21_H_
#define ZUQEL_TOOLS_NV21_H_

#include <cstdint>
#include <vector>

#include "image.h"

namespace zuqel::tools {

// Full-range BT.601, 4:2:0: width x height bytes of luma; width x height / 2
// bytes of chroma, V then U for each 2x2 pixels. Both sides are even.
struct Nv21Frame {
  int width = 0;
  int height = 0;
  std::vector<uint8_t> luma;
  std::vector<uint8_t> chroma;
};

// The chroma is that of the mean of the 2x2 pixels. `picture` has even sides.
Nv21Frame ToNv21(const Picture& picture);

// One pixel to red, green and blue; full-range BT.601.
void YuvToRgb(int luma, int u, int v, uint8_t* rgb);

// Each of the 2x2 pixels takes the chroma as it is.
Picture ToPicture(const Nv21Frame& frame);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_NV21_H_
