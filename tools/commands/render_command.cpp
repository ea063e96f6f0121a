// zuqel render: renders photos with bokeh, given their depth.
#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include "commands/command.h"
#include "commands/depth_options.h"
#include "commands/shared_options.h"
#include "files/standard_streams.h"
#include "look/frame_difference.h"
#include "photo/output_files.h"
#include "photo/picture_writer.h"
#include "rendering/frame_progress.h"
#include "rendering/refocus_map.h"
#include "rendering/render_job.h"
#include "rendering/worker_processes.h"
#include "tool_error.h"

namespace zuqel::tools {
namespace {

namespace fs = std::filesystem;

struct RenderCommandOptions {
  RenderOptions each;
  std::vector<std::string> photos;
  std::string output;
  int jobs = 1;
};

// What is for one photo only.
void CheckSeveral(const RenderCommandOptions& options) {
  std::error_code ignored;
  if (!options.output.ends_with('/') &&
      (IsStandardStream(options.output) ||
       !fs::is_directory(options.output, ignored))) {
    throw InputError("--output: several photos need a folder, as in " +
                     options.output + "/");
  }
  const RenderOptions& each = options.each;
  const auto refuse = [](bool is_given, const char* option) {
    if (is_given) throw InputError(std::string(option) + ": is for one photo");
  };
  refuse(!each.depth.disparity.empty(), "--disparity");
  refuse(!each.depth.depth.empty(), "--depth");
  refuse(!each.weights.empty(), "--weights");
  refuse(!each.panel.empty(), "--panel");
  refuse(!each.compare.empty(), "--compare");
  refuse(each.repeat > 0, "--repeat");
  for (const std::string& photo : options.photos) {
    refuse(IsStandardStream(photo), "-");
  }
}

std::string NameInFolder(const std::string& folder, const std::string& photo) {
  return fs::path(folder) /
         fs::path(photo).filename().replace_extension(ResultExtension(photo));
}

void RenderSeveral(const RenderCommandOptions& options) {
  CheckSeveral(options);
  OutputFiles outputs;  // which the processes write
  outputs.CreateFolder(options.output);
  std::vector<std::string> names;
  for (const std::string& photo : options.photos) {
    names.push_back(NameInFolder(options.output, photo));
    outputs.Announce(names.back());
  }
  const auto count = static_cast<int>(names.size());
  int failed = 0;
  {
    const ProgressBar bar(count, "photos");
    bar.Show(0);
    failed = RunInProcesses(
        count, options.jobs,
        [&](int i) {
          const auto at = static_cast<size_t>(i);
          OutputFiles its;
          RenderPhoto(options.each, options.photos[at], names[at], its);
        },
        [&](int done) { bar.Show(done); });
  }
  outputs.Commit();
  if (failed > 0) {
    throw WorkError(std::to_string(failed) + " of " + std::to_string(count) +
                    " photos failed");
  }
}

void Run(const RenderCommandOptions& options) {
  CheckRenderOptions(options.each);
  if (options.photos.size() > 1) {
    RenderSeveral(options);
    return;
  }
  OutputFiles outputs;
  const std::string& photo = options.photos.front();
  std::string output = options.output;
  if (output.ends_with('/')) {
    if (IsStandardStream(photo)) {
      throw InputError("--output: the photo has no name; give one for it");
    }
    outputs.CreateFolder(output);
    output = NameInFolder(output, photo);
  }
  CheckPictureName("--output", output);
  RenderPhoto(options.each, photo, output, outputs);
}

void AddRendering(CommandLine app, RenderOptions& options) {
  app.AddOption("--focus", options.focus,
                "The point in focus, in pixels of the upright picture; or\n"
                "auto: the middle of the nearest connected surface that\n"
                "covers a fiftieth of the picture")
      .TypeName("X,Y|auto")
      .Required();
  app.AddOption("--f-number", options.f_number,
                "1 (strongest blur, the default) to 10 (hardly any)")
      .TypeName("N");
  AddDepthOptions(app, options.depth);
  AddFileOption(app, "--weights", options.weights,
                "Instead of depth, 8-bit grey PNG of any size: 0 keeps a\n"
                "pixel sharp, 255 blurs it fully");
  app.AddOption("--map-from", options.map_from,
                "Render from the refocus map that this generator makes from\n"
                "the depth; see zuqel refocus-map --help")
      .TypeName(GeneratorNames("|"))
      .Check(CheckGeneratorName);
  AddRendererOption(app, options.renderer);
  app.AddFlag("--focus-dot", options.focus_dot,
              "Mark the focus point in the result");
}

void AddOutputs(CommandLine app, RenderCommandOptions& options) {
  RenderOptions& each = options.each;
  AddFileOption(app, "-o,--output", options.output,
                "The result, PNG or JPEG by its name; of several photos, a\n"
                "folder for results of their names")
      .Required();
  AddQualityOption(app, each.quality);
  app.AddOption("--jobs", options.jobs,
                "Render so many photos at a time, each in a process")
      .Range(1, 64);
  AddFileOption(app, "--panel", each.panel,
                "Also write input, map in false colour and result side by\n"
                "side, PNG or JPEG");
  app.AddOption("--repeat", each.repeat,
                "Render this many frames and print the frame time")
      .Range(1, 100000);
  AddFileOption(app, "--compare", each.compare,
                "Also render with the other renderer, print how much the\n"
                "results differ, and write the difference, amplified\n" +
                    std::to_string(kDifferenceGain) + " times, PNG or JPEG");
}

}  // namespace

Command AddRenderCommand(CommandLine program) {
  CommandLine app = program.AddCommand(
      "render", "Render photos with a synthetic shallow depth of field");
  auto options = std::make_shared<RenderCommandOptions>();
  app.AddOption("--image,photo", options->photos,
                "The photo: PNG, JPEG, HEIC or AVIF. Without another option\n"
                "for it, the depth is what the photo has inside")
      .TypeName("FILE")
      .Required();
  AddRendering(app, options->each);
  AddOutputs(app, *options);
  app.Footer(
      "Takes 100 MB and 17 bytes of memory a pixel.\n"
      "\n"
      "Examples:\n"
      "  zuqel render photo.heic --focus 2000,1500 -o refocused.jpg\n"
      "  zuqel render photo.jpg --disparity disparity.png \\\n"
      "    --focus 640,480 --f-number 1.4 -o bokeh.png --panel panel.png\n"
      "  zuqel render *.heic --focus auto -o refocused/");
  return {app, [options] { Run(*options); }};
}

}  // namespace zuqel::tools
