// A photo and what its blur is made from: read once, rendered any number of
// times.
#ifndef ZUQEL_TOOLS_RENDERING_PHOTO_INPUT_H_
#define ZUQEL_TOOLS_RENDERING_PHOTO_INPUT_H_

#include <optional>
#include <string>

#include "image.h"
#include "photo/metadata.h"
#include "rendering/depth_input.h"

namespace zuqel::tools {

// Holds exactly one of depth and weights.
struct PhotoInput {
  std::string path;
  Picture picture;  // padded to an even size
  Size size;        // of the photo
  Metadata metadata;
  std::optional<NamedDepth> depth;
  std::optional<WeightMap> weights;
};

// Weights from the file of that name unless that is empty, else the depth that
// the options name, else the depth inside of the photo. Throws InputError.
PhotoInput ReadPhotoInput(const std::string& path, const DepthOptions& options,
                          const std::string& weights);

// The value of --focus that leaves the choice to FindNearestSurface.
inline constexpr const char* kAutoFocus = "auto";

// The point that the value of --focus names, in pixels of the upright photo.
// Throws InputError.
FocusPoint ChooseFocus(const PhotoInput& input, const DepthOptions& options,
                       const std::string& focus);

// Of the size of the photo, from one of the size that is rendered.
Picture CutToPhoto(Picture picture, const PhotoInput& input);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_RENDERING_PHOTO_INPUT_H_
