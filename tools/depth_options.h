// The options that name a depth map and say how to understand it.
#ifndef ZUQEL_TOOLS_DEPTH_OPTIONS_H_
#define ZUQEL_TOOLS_DEPTH_OPTIONS_H_

#include <cstdint>
#include <optional>
#include <string>

#include "command_line.h"
#include "image.h"
#include "photo/depth_map.h"
#include "photo/depth_scale.h"
#include "photo/photo.h"
#include "refocus_map.h"

namespace zuqel::tools {

struct DepthOptions {
  [[nodiscard]] bool HasMap() const {
    return !disparity.empty() || !depth.empty();
  }

  std::string disparity, depth;  // files
  std::optional<float> unknown, near, far;
  DisparityScale scale;
  bool is_turned_round = false, may_stretch = false;
};

void AddDepthOptions(CommandLine app, DepthOptions& options);

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
  // For PrintNote: what was assumed, where users have to know or asked for it.
  std::string note;
};

// A disparity map.
NotedMap MakeDisparity(const NamedDepth& depth, const DepthOptions& options);

// What the generator takes. Of 16-bit lengths, one that takes distances takes
// the values as they are, unless a scale is given.
NotedMap MakeDepthFor(const Generator& generator, const NamedDepth& depth,
                      const DepthOptions& options);

// Prints a line to standard error; nothing if it is empty. A command that fails
// prints its failure alone, so notes come after the work.
void PrintNote(const std::string& note);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_DEPTH_OPTIONS_H_
