// Small copies of pictures.
#include "look/thumbnail.h"

#include <algorithm>

#include "look/shrink.h"

namespace zuqel::tools {

Size ThumbnailSize(Size picture, int longest) {
  const int side = std::max(picture.width, picture.height);
  if (side <= longest) return picture;
  return {std::max(picture.width * longest / side, 1),
          std::max(picture.height * longest / side, 1)};
}

Picture MakeThumbnail(const Picture& picture, int longest) {
  return Shrink(picture, ThumbnailSize(SizeOf(picture), longest));
}

}  // namespace zuqel::tools
