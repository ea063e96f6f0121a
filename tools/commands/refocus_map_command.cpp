// zuqel refocus-map: makes a refocus map from disparity or distance.
#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "commands/command.h"
#include "commands/depth_options.h"
#include "commands/shared_options.h"
#include "coordinates.h"
#include "look/false_colour.h"
#include "look/panel.h"
#include "photo/output_files.h"
#include "photo/photo.h"
#include "photo/picture_writer.h"
#include "rendering/notes.h"
#include "rendering/refocus_map.h"
#include "tool_error.h"

namespace zuqel::tools {
namespace {

struct RefocusMapOptions {
  std::string image, focus, generator, size, output, panel;
  DepthOptions depth;
};

struct RefocusMapInput {
  const Generator* generator = nullptr;
  Map<uint16_t> depth;  // as the generator takes it
  std::optional<Picture> image;
  FramedFocus focus;         // in pixels of the image, else of the depth
  std::optional<Size> size;  // of the map to make
  std::string note;
};

// Checks that need no file.
void CheckCombination(const RefocusMapOptions& options,
                      const Generator& generator) {
  const bool has_photo = !options.image.empty();
  CheckDepthOptions(options.depth, has_photo);
  if (!options.depth.HasMap() && !has_photo) {
    throw InputError("give --disparity, --depth or an --image with depth");
  }
  if (!options.size.empty() && !generator.takes_size) {
    throw InputError("--size: " + options.generator +
                     " makes maps of the depth's size only");
  }
}

RefocusMapInput ReadInput(const RefocusMapOptions& options,
                          const Generator& generator) {
  RefocusMapInput input;
  input.generator = &generator;
  if (!options.size.empty()) {
    input.size = ParseSizeOption(options.size);
    CheckSize("--size", *input.size);
  }
  NamedDepth depth;
  if (options.image.empty()) {
    depth = *ReadDepthMap(options.depth);
    input.focus.frame = SizeOf(depth.map);
  } else {
    Photo photo = ReadPhoto(options.image);
    depth = ChooseDepth(options.depth, options.image, photo);
    input.image = std::move(photo.picture);
    input.focus.frame = SizeOf(*input.image);
  }
  auto [map, note] = MakeDepthFor(generator, depth, options.depth);
  input.depth = std::move(map);
  input.note = std::move(note);
  input.focus.point =
      ParseFocusPoint("--focus", options.focus, input.image ? "picture" : "map",
                      input.focus.frame);
  return input;
}

Picture Panel(const RefocusMapInput& input, const WeightMap& map) {
  const Picture colours = input.generator->takes_distance
                              ? FalseColourOfDistance(input.depth)
                              : FalseColour(input.depth);
  return MakeRefocusPanel(colours, map, input.image ? &*input.image : nullptr,
                          input.focus.point);
}

void Run(const RefocusMapOptions& options) {
  const Generator& generator = *GeneratorNamed(options.generator);
  CheckCombination(options, generator);
  OutputFiles outputs;
  outputs.Announce(options.output);
  if (!options.panel.empty()) {
    CheckPictureName("--panel", options.panel);
    outputs.Announce(options.panel);
  }

  const RefocusMapInput input = ReadInput(options, generator);
  const RefocusMap map =
      MakeRefocusMap(generator, input.depth, input.focus, input.size);
  outputs.Write(options.output, map.weights);
  if (!options.panel.empty()) {
    outputs.Write(options.panel, Panel(input, map.weights));
  }
  outputs.Commit();
  PrintNote(input.note);
  if (map.range) {
    std::printf("disparity: minimum %u, maximum %u, focus %u\n", map.range->min,
                map.range->max, map.range->focus);
  }
}

// Names and summaries in columns, and the names that take --size.
std::string GeneratorList() {
  constexpr size_t kNameColumns = 20;
  std::string list, sized;
  for (const Generator& generator : Generators()) {
    std::string name = generator.name;
    if (generator.takes_size) sized += (sized.empty() ? "" : ", ") + name;
    name.resize(std::max(kNameColumns, name.size() + 1), ' ');
    list += "  " + name + generator.summary + "\n";
  }
  return list + "\nGenerators that take --size: " + sized + ".\n";
}

}  // namespace

Command AddRefocusMapCommand(CommandLine program) {
  CommandLine app = program.AddCommand(
      "refocus-map", "Make a map of what stays sharp and what is blurred");
  auto options = std::make_shared<RefocusMapOptions>();
  AddDepthOptions(app, options->depth);
  app.AddOption("--focus", options->focus,
                "The point in focus, in pixels of --image if given, else of\n"
                "the disparity or distance map")
      .TypeName("X,Y")
      .Required();
  app.AddOption("--generator", options->generator,
                "How the map is made; see the list below")
      .TypeName(GeneratorNames("|"))
      .Check(CheckGeneratorName)
      .Required();
  app.AddOption("--size", options->size,
                "Width and height of the map; by default, those of the depth")
      .TypeName("WxH");
  AddFileOption(app, "--image", options->image,
                "The photo that the depth belongs to: PNG, JPEG, HEIC or\n"
                "AVIF. Its own depth is taken when no map is given");
  AddFileOption(app, "-o,--output", options->output,
                "The map, 8-bit grey PNG: 0 stays sharp, 255 blurs fully")
      .Required();
  AddFileOption(app, "--panel", options->panel,
                "Also write the depth in false colour, the map and the\n"
                "image, blue where it is blurred, side by side, PNG or JPEG");
  app.Footer(
      "Generators:\n" + GeneratorList() +
      "distance takes a 16-bit --distance as it is, unless --scale is given, "
      "and\n262144 / disparity of any other map.\n"
      "\n"
      "Prints the range of disparities, without a few percent of the pixels "
      "at\n"
      "either end, and the disparity in focus.\n"
      "\n"
      "Examples:\n"
      "  zuqel refocus-map --disparity disparity.png --image photo.jpg \\\n"
      "    --focus 640,480 --generator gpu -o map.png --panel panel.png");
  return {app, [options] { Run(*options); }};
}

}  // namespace zuqel::tools
