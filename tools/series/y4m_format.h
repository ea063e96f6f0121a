// YUV4MPEG2, uncompressed video that common players open: what its frames are.
#ifndef ZUQEL_TOOLS_SERIES_Y4M_FORMAT_H_
#define ZUQEL_TOOLS_SERIES_Y4M_FORMAT_H_

#include <string>

#include "image.h"

namespace zuqel::tools {

struct Ratio {
  int number = 1, of = 1;
};

// 8-bit 4:2:0, progressive. By default, frames as they are made from pictures:
// chroma is sited at the centre of its four pixels, values are full range.
struct Y4mFormat {
  Size size;
  Ratio rate = {25, 1};   // frames in so many seconds
  Ratio aspect = {1, 1};  // of a pixel; 0:0 is unknown
  std::string chroma = "420jpeg";
  std::string range = "FULL";  // or LIMITED; where empty, it is that too
};

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_SERIES_Y4M_FORMAT_H_
