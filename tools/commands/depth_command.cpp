// zuqel depth: shows and takes out the depth inside of a photo.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <memory>
#include <string>

#include "commands/command.h"
#include "commands/depth_options.h"
#include "commands/shared_options.h"
#include "coordinates.h"
#include "look/false_colour.h"
#include "photo/depth_scale.h"
#include "photo/output_files.h"
#include "photo/photo.h"
#include "photo/picture_writer.h"
#include "tool_error.h"

namespace zuqel::tools {
namespace {

struct TakeOutOptions {
  std::string photo, output, picture;
  bool false_colour = false;
  int quality = kDefaultQuality;
};

void PrintDepth(const DepthMap& depth) {
  size_t known = 0;
  float least = INFINITY, most = -INFINITY;
  for (const float value : depth.values) {
    if (std::isnan(value)) continue;
    least = std::min(least, value);
    most = std::max(most, value);
    ++known;
  }
  const bool is_length = depth.meaning == DepthMeaning::kLength;
  std::printf(
      "depth: %s, %s, %s\n", depth.kind.c_str(), ToText(SizeOf(depth)).c_str(),
      is_length ? "lengths, larger is farther" : "disparity, larger is nearer");
  if (known > 0) {
    std::printf("range: %g to %g%s%s\n", double{least}, double{most},
                depth.unit.empty() ? "" : " ", depth.unit.c_str());
  }
  std::printf("known: %.1f %%\n", 100.0 * static_cast<double>(known) /
                                      static_cast<double>(depth.values.size()));
}

void Run(const TakeOutOptions& options) {
  OutputFiles outputs;
  if (!options.output.empty()) {
    CheckPictureName("--output", options.output);
    if (!options.false_colour && IsJpegName(options.output)) {
      throw InputError("--output: " + options.output +
                       ": has to end in .png, or give --false-colour");
    }
    outputs.Announce(options.output);
  }
  if (!options.picture.empty()) {
    CheckPictureName("--picture", options.picture);
    outputs.Announce(options.picture);
  }

  Photo photo = ReadPhoto(options.photo);
  const NamedDepth depth = TakeDepth(options.photo, photo, {});
  if (!options.output.empty()) {
    const DisparityMap map = MakeDisparity(depth, {}).map;
    if (options.false_colour) {
      outputs.Write(options.output, FalseColour(map));
    } else {
      outputs.Write(options.output, map);
    }
  }
  if (!options.picture.empty()) {
    outputs.Write(options.picture, photo.picture, photo.metadata,
                  options.quality);
  }
  outputs.Commit();
  std::printf("picture: %s%s\n", ToText(SizeOf(photo.picture)).c_str(),
              photo.is_before_blur ? ", from before the phone blurred it" : "");
  PrintDepth(depth.map);
}

}  // namespace

Command AddDepthCommand(CommandLine program) {
  CommandLine app = program.AddCommand(
      "depth", "Show and take out the depth inside of a photo");
  auto options = std::make_shared<TakeOutOptions>();
  app.AddOption("photo", options->photo, "The photo: JPEG, HEIC or AVIF")
      .TypeName("FILE")
      .Required();
  const Option output = AddFileOption(
      app, "-o,--output", options->output,
      "The depth as zuqel render takes it, 16-bit grey PNG: 1..1000,\n"
      "larger is nearer, 1023 is unknown");
  app.AddFlag("--false-colour", options->false_colour,
              "Write the depth in colours instead: red is near, blue far")
      .Needs(output);
  AddFileOption(app, "--picture", options->picture,
                "Also write the picture that the depth belongs to, upright,\n"
                "PNG or JPEG");
  AddQualityOption(app, options->quality);
  app.Footer(
      "Prints what is inside: the kind, the size, the range and its unit.\n"
      "\n"
      "Examples:\n"
      "  zuqel depth photo.heic -o depth.png --false-colour");
  return {app, [options] { Run(*options); }};
}

}  // namespace zuqel::tools
