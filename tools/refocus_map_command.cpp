// zuqel refocus-map: disparity or distance and a focus point in, a map out.
#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "command.h"
#include "false_colour.h"
#include "focus_point.h"
#include "image_file.h"
#include "output_files.h"
#include "refocus_map.h"
#include "refocus_panel.h"
#include "size.h"
#include "tool_error.h"

namespace zuqel::tools {
namespace {

struct RefocusMapOptions {
  std::string disparity, distance, image, focus, generator, size, output, panel;
};

struct RefocusMapInput {
  const Generator* generator = nullptr;
  Map<uint16_t> depth;  // as the generator takes it
  std::optional<Picture> image;
  FramedFocus focus;         // in pixels of the image, else of the depth
  std::optional<Size> size;  // of the map to make
};

// What can be said before any file is read.
void CheckCombination(const RefocusMapOptions& options,
                      const Generator& generator) {
  if (options.disparity.empty() == options.distance.empty()) {
    throw InputError("give one of --disparity and --distance");
  }
  if (!options.distance.empty() && !generator.of_distances) {
    throw InputError("--distance: " + options.generator + " takes --disparity");
  }
  if (!options.size.empty() && !generator.on_gpu) {
    throw InputError("--size: " + options.generator +
                     " makes maps of the depth's size only");
  }
}

RefocusMapInput ReadInput(const RefocusMapOptions& options) {
  RefocusMapInput input;
  input.generator = GeneratorNamed(options.generator);
  CheckCombination(options, *input.generator);
  if (!options.size.empty()) {
    input.size = ParseSizeOption(options.size);
    CheckSize("--size", *input.size);
  }
  input.depth =
      options.disparity.empty()
          ? ReadDistance(options.distance)
          : DepthFor(*input.generator, ReadDisparity(options.disparity));
  input.focus.frame = SizeOf(input.depth);
  if (!options.image.empty()) {
    input.image = ReadPicture(options.image);
    input.focus.frame = SizeOf(*input.image);
  }
  input.focus.point =
      ParseFocusPoint("--focus", options.focus, input.image ? "picture" : "map",
                      input.focus.frame);
  return input;
}

Picture Panel(const RefocusMapInput& input, const WeightMap& map) {
  const Picture colours = input.generator->of_distances
                              ? FalseColourOfDistance(input.depth)
                              : FalseColour(input.depth);
  return MakeRefocusPanel(colours, map, input.image ? &*input.image : nullptr,
                          input.focus.point);
}

void Run(const RefocusMapOptions& options) {
  const RefocusMapInput input = ReadInput(options);
  OutputFiles outputs;
  outputs.Announce(options.output);
  if (!options.panel.empty()) outputs.Announce(options.panel);

  const RefocusMap map =
      MakeRefocusMap(*input.generator, input.depth, input.focus, input.size);
  outputs.Write(options.output, map.weights);
  if (!options.panel.empty()) {
    outputs.Write(options.panel, Panel(input, map.weights));
  }
  outputs.Commit();
  if (map.range) {
    std::printf("disparity: minimum %u, maximum %u, focus %u\n", map.range->min,
                map.range->max, map.range->focus);
  }
}

}  // namespace

Command AddRefocusMapCommand(CLI::App& program) {
  CLI::App* app = program.add_subcommand(
      "refocus-map", "Make a map of what stays sharp and what is blurred");
  auto options = std::make_shared<RefocusMapOptions>();
  app->add_option("--disparity", options->disparity,
                  "16-bit grey PNG of any size: 0..1022, larger is nearer,\n"
                  "1023 is unknown")
      ->type_name("FILE");
  app->add_option("--distance", options->distance,
                  "In its place, for the generator `distance`: 16-bit grey\n"
                  "PNG, larger is farther, 0 is unknown. That generator also\n"
                  "takes a disparity, as distances of 262144 / disparity")
      ->type_name("FILE");
  app->add_option(
         "--focus", options->focus,
         "What is sharp, in pixels of --image where it is given, else\n"
         "of the disparity or distance map")
      ->type_name("X,Y")
      ->required();
  app->add_option("--generator", options->generator,
                  "gpu: weights by the distance from the focus, on the GPU;\n"
                  "disparity-base: all of the foreground or background is\n"
                  "sharp, on the GPU; disparity-base-cpu: the same on the\n"
                  "CPU; distance: the same from distances")
      ->type_name("NAME")
      ->check(CheckGeneratorName)
      ->required();
  app->add_option("--size", options->size,
                  "Width and height of the map, for gpu and disparity-base;\n"
                  "by default, and for the others, those of the depth")
      ->type_name("WxH");
  app->add_option("--image", options->image,
                  "The picture that belongs to the depth, PNG or JPEG")
      ->type_name("FILE");
  app->add_option("-o,--output", options->output,
                  "The map, 8-bit grey PNG: 0 stays sharp, 255 blurs fully")
      ->type_name("FILE")
      ->required();
  app->add_option("--panel", options->panel,
                  "Also write the depth in false colour, the map and the\n"
                  "image, blue where it is blurred, side by side, PNG")
      ->type_name("FILE");
  app->footer(
      "Prints the range of the disparities, less a few percent of the pixels\n"
      "at either end, and the disparity in focus.\n"
      "\n"
      "Example:\n"
      "  zuqel refocus-map --disparity disparity.png --image photo.jpg \\\n"
      "    --focus 640,480 --generator gpu -o map.png --panel panel.png");
  return {app, [options] { Run(*options); }};
}

}  // namespace zuqel::tools
