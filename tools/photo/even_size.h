// The library draws pictures of even width and height only.
#ifndef ZUQEL_TOOLS_PHOTO_EVEN_SIZE_H_
#define ZUQEL_TOOLS_PHOTO_EVEN_SIZE_H_

#include "image.h"

namespace zuqel::tools {

// Repeats the last column of an odd width and the last row of an odd height.
void PadToEvenSize(Picture& picture);

// Keeps the top left, at most as large as the picture.
void CutToSize(Picture& picture, Size size);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_PHOTO_EVEN_SIZE_H_
