// Small copies of pictures.
#ifndef ZUQEL_TOOLS_LOOK_THUMBNAIL_H_
#define ZUQEL_TOOLS_LOOK_THUMBNAIL_H_

#include "image.h"

namespace zuqel::tools {

// The size of a thumbnail: the proportions of the picture, its longer side
// `longest`; a smaller picture keeps its size.
Size ThumbnailSize(Size picture, int longest);

// Each pixel is the mean of the area that it covers.
Picture MakeThumbnail(const Picture& picture, int longest);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_LOOK_THUMBNAIL_H_
