// The depth that goes with a picture: from a map or from inside of a photo.
#ifndef ZUQEL_TOOLS_RENDERING_DEPTH_INPUT_H_
#define ZUQEL_TOOLS_RENDERING_DEPTH_INPUT_H_

#include <cstdint>
#include <optional>
#include <string>

#include "image.h"
#include "photo/depth_map.h"
#include "photo/depth_scale.h"
#include "photo/photo.h"
#include "rendering/refocus_map.h"

namespace zuqel::tools {

// Which map, and how to understand it; commands/depth_options.h has the options
// of these names.
struct DepthOptions {
  [[nodiscard]] bool HasMap() const {
    return !disparity.empty() || !depth.empty();
  }

  std::string disparity, depth;  // files
  std::optional<float> unknown, near, far;
  DisparityScale scale;
  bool is_turned_round = false, may_stretch = false;
};

// Checks that need no file; with `has_photo`, depth may come from a photo
// instead of a map. Throws InputError, as do all below.
void CheckDepthOptions(const DepthOptions& options, bool has_photo);

struct NamedDepth {
  std::string name;  // of the file that it is from
  DepthMap map;
  bool is_16_bit = false;
};

// Nothing if no map is given.
std::optional<NamedDepth> ReadDepthMap(const DepthOptions& options);

// The depth inside of the photo, which has to have some. Leaves it without.
NamedDepth TakeDepth(const std::string& path, Photo& photo,
                     const DepthOptions& options);

// The map that is given, or else the depth inside of the photo. Requires the
// proportions of the picture, within 2 percent.
NamedDepth ChooseDepth(const DepthOptions& options, const std::string& path,
                       Photo& photo);

struct NotedMap {
  Map<uint16_t> map;
  // For PrintNote (rendering/notes.h): what was assumed, where users have to
  // know or asked for it.
  std::string note;
};

// A disparity map.
NotedMap MakeDisparity(const NamedDepth& depth, const DepthOptions& options);

// What the generator takes. Of 16-bit lengths, one that takes distances takes
// the values as they are, unless a scale is given.
NotedMap MakeDepthFor(const Generator& generator, const NamedDepth& depth,
                      const DepthOptions& options);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_RENDERING_DEPTH_INPUT_H_
