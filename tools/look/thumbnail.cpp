// Small copies of pictures.
#include "look/thumbnail.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace zuqel::tools {
namespace {

// Of the pixels from `from` to before `to`, at least one.
void AverageArea(const Picture& picture, FocusPoint from, FocusPoint to,
                 uint8_t* rgb) {
  std::array<int64_t, 3> sums = {};
  for (int y = from.y; y < to.y; ++y) {
    const uint8_t* pixel = picture.Pixel(from.x, y);
    for (int x = from.x; x < to.x; ++x) {
      for (int64_t& sum : sums) sum += *pixel++;
    }
  }
  const int64_t count = int64_t{to.x - from.x} * (to.y - from.y);
  for (const int64_t sum : sums) {
    *rgb++ = static_cast<uint8_t>((sum + count / 2) / count);
  }
}

}  // namespace

Size ThumbnailSize(Size picture, int longest) {
  const int side = std::max(picture.width, picture.height);
  if (side <= longest) return picture;
  return {std::max(picture.width * longest / side, 1),
          std::max(picture.height * longest / side, 1)};
}

Picture MakeThumbnail(const Picture& picture, int longest) {
  const Size size = ThumbnailSize(SizeOf(picture), longest);
  Picture small(size.width, size.height);
  for (int y = 0; y < size.height; ++y) {
    for (int x = 0; x < size.width; ++x) {
      AverageArea(
          picture,
          {x * picture.width / size.width, y * picture.height / size.height},
          {(x + 1) * picture.width / size.width,
           (y + 1) * picture.height / size.height},
          small.Pixel(x, y));
    }
  }
  return small;
}

}  // namespace zuqel::tools
