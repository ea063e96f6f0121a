// NV21, the camera's frame format, and its conversion from and to RGB.
#ifndef ZUQEL_TOOLS_PHOTO_NV21_H_
#define ZUQEL_TOOLS_PHOTO_NV21_H_

#include <cstdint>
#include <vector>

#include "image.h"

namespace zuqel::tools {

// Full-range BT.601, 4:2:0: width x height bytes of luma; width x height / 2
// bytes of chroma, V then U for each 2x2 block. Both sides are even.
struct Nv21Frame {
  int width = 0;
  int height = 0;
  std::vector<uint8_t> luma;
  std::vector<uint8_t> chroma;
};

// Chroma is that of each 2x2 block's mean colour. Width and height are even.
Nv21Frame ToNv21(const Picture& picture);

// Stretches limited range, luma of 16..235 and chroma of 16..240, to full
// range.
void ExpandRange(Nv21Frame& frame);

// Converts one pixel to red, green and blue (full-range BT.601).
void YuvToRgb(int luma, int u, int v, uint8_t* rgb);

// Chroma is repeated over each 2x2 block.
Picture ToPicture(const Nv21Frame& frame);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_PHOTO_NV21_H_
