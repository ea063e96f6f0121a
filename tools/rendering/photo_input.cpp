// A photo and what its blur is made from.
#include "rendering/photo_input.h"

#include <string>
#include <utility>

#include "coordinates.h"
#include "photo/auto_focus.h"
#include "photo/even_size.h"
#include "photo/image_file.h"
#include "photo/photo.h"
#include "tool_error.h"

namespace zuqel::tools {

PhotoInput ReadPhotoInput(const std::string& path, const DepthOptions& options,
                          const std::string& weights) {
  Photo photo = ReadPhoto(path);
  PhotoInput input;
  input.path = path;
  input.size = SizeOf(photo.picture);
  if (weights.empty()) {
    input.depth = ChooseDepth(options, path, photo);
  } else {
    input.weights = ReadWeights(weights);
  }
  input.picture = std::move(photo.picture);
  input.metadata = std::move(photo.metadata);
  PadToEvenSize(input.picture);
  return input;
}

FocusPoint ChooseFocus(const PhotoInput& input, const DepthOptions& options,
                       const std::string& focus) {
  if (focus != kAutoFocus) {
    return ParseFocusPoint("--focus", focus, "picture", input.size);
  }
  if (!input.depth) throw InputError("--focus auto: needs depth");
  const auto found =
      FindNearestSurface(MakeDisparity(*input.depth, options).map, input.size);
  if (!found) {
    throw InputError(input.path + ": has no large surface to focus on");
  }
  return *found;
}

Picture CutToPhoto(Picture picture, const PhotoInput& input) {
  CutToSize(picture, input.size);
  return picture;
}

}  // namespace zuqel::tools
