// The library draws pictures of even width and height only.
#include "photo/even_size.h"

#include <algorithm>
#include <cstddef>

namespace zuqel::tools {

void PadToEvenSize(Picture& picture) {
  const size_t old_row = 3 * static_cast<size_t>(picture.width);
  const auto height = static_cast<size_t>(picture.height);
  picture.width += picture.width % 2;
  picture.height += picture.height % 2;
  const size_t row = 3 * static_cast<size_t>(picture.width);
  picture.rgb.resize(row * static_cast<size_t>(picture.height));
  uint8_t* rgb = picture.rgb.data();
  // From the last row on, so that none is written over before it has moved.
  for (size_t y = row == old_row ? 0 : height; y-- > 0;) {
    uint8_t* const end = rgb + y * row + old_row;
    if (y > 0) {
      std::copy_backward(rgb + y * old_row, rgb + (y + 1) * old_row, end);
    }
    std::copy_n(end - 3, 3, end);
  }
  if (height % 2 != 0) {
    std::copy_n(rgb + (height - 1) * row, row, rgb + height * row);
  }
}

void CutToSize(Picture& picture, Size size) {
  const size_t old_row = 3 * static_cast<size_t>(picture.width);
  const size_t row = 3 * static_cast<size_t>(size.width);
  const auto height = static_cast<size_t>(size.height);
  uint8_t* rgb = picture.rgb.data();
  for (size_t y = 1; y < height && row < old_row; ++y) {
    std::copy_n(rgb + y * old_row, row, rgb + y * row);
  }
  picture.rgb.resize(row * height);
  picture.width = size.width;
  picture.height = size.height;
}

}  // namespace zuqel::tools
