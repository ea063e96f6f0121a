// zuqel render: one picture with its depth in, one picture with bokeh out.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "bokeh_session.h"
#include "command.h"
#include "false_colour.h"
#include "focus_point.h"
#include "frame_progress.h"
#include "image_file.h"
#include "nv21.h"
#include "output_files.h"
#include "panel.h"
#include "refocus_map.h"
#include "size.h"
#include "tool_error.h"

namespace zuqel::tools {
namespace {

struct RenderOptions {
  std::string image, disparity, weights, map_from, focus, output, panel;
  float f_number = 1.0F;
  int repeat = 0;  // 0: once, without a word about the time
  bool focus_dot = false;
};

// Exactly one of the two maps is there.
struct RenderInput {
  Picture picture;
  std::optional<DisparityMap> disparity;
  std::optional<WeightMap> weights;
  Focus focus;
};

RenderInput ReadInput(const RenderOptions& options) {
  if (options.disparity.empty() == options.weights.empty()) {
    throw InputError("give one of --disparity and --weights");
  }
  if (!options.map_from.empty() && options.disparity.empty()) {
    throw InputError("--map-from: goes with --disparity, not with --weights");
  }
  if (!(options.f_number >= 1.0F && options.f_number <= 10.0F)) {
    throw InputError("--f-number: is not between 1 and 10");
  }
  RenderInput input;
  input.picture = ReadPicture(options.image);
  const int width = input.picture.width, height = input.picture.height;
  if (width % 2 != 0 || height % 2 != 0) {
    throw InputError(options.image + ": is " + std::to_string(width) + " x " +
                     std::to_string(height) +
                     " pixels; an even width and height are needed");
  }
  input.focus = {
      ParseFocusPoint(options.focus, "picture", SizeOf(input.picture)),
      options.f_number};
  if (options.weights.empty()) {
    input.disparity = ReadDisparity(options.disparity);
  } else {
    input.weights = ReadWeights(options.weights);
  }
  return input;
}

// Weights of the disparity map's size, which take its place.
void MakeWeights(const Generator& generator, RenderInput& input) {
  input.weights =
      MakeRefocusMap(generator, DepthFor(generator, *input.disparity),
                     {input.focus.point, SizeOf(input.picture)})
          .weights;
  input.disparity.reset();
}

SessionSetup SetupFor(const RenderInput& input, bool focus_dot) {
  SessionSetup setup;
  setup.picture_width = input.picture.width;
  setup.picture_height = input.picture.height;
  if (input.disparity) {
    setup.depth_width = input.disparity->width;
    setup.depth_height = input.disparity->height;
  } else {
    setup.work_width = input.weights->width;
    setup.work_height = input.weights->height;
  }
  setup.focus_dot = focus_dot;
  return setup;
}

// Renders a copy of the input into `frame` and returns the call's time in ms.
double RenderFrame(const BokehSession& session, const Nv21Frame& source,
                   const RenderInput& input, Nv21Frame& frame) {
  using Clock = std::chrono::steady_clock;
  frame = source;
  std::optional<DisparityMap> disparity = input.disparity;
  const Clock::time_point start = Clock::now();
  if (disparity) {
    session.Render(frame, *disparity, input.focus);
  } else {
    session.Render(frame, *input.weights, input.focus);
  }
  return std::chrono::duration<double, std::milli>(Clock::now() - start)
      .count();
}

Picture RenderFrames(const RenderInput& input, const RenderOptions& options,
                     std::vector<double>& times_ms) {
  const BokehSession session(SetupFor(input, options.focus_dot));
  const Nv21Frame source = ToNv21(input.picture);
  Nv21Frame frame;
  const int count = std::max(options.repeat, 1);
  const ProgressBar bar(count);
  for (int i = 0; i < count; ++i) {
    times_ms.push_back(RenderFrame(session, source, input, frame));
    bar.Show(i + 1);
  }
  return ToPicture(frame);
}

void PrintTimes(const std::vector<double>& times_ms) {
  const FrameTimes times = Summarise(times_ms);
  std::printf("frame time: median %.2f ms, worst %.2f ms (%zu frames)\n",
              times.median_ms, times.worst_ms, times_ms.size());
}

void Run(const RenderOptions& options) {
  RenderInput input = ReadInput(options);
  OutputFiles outputs;
  outputs.Announce(options.output);
  if (!options.panel.empty()) outputs.Announce(options.panel);

  if (!options.map_from.empty()) {
    MakeWeights(*GeneratorNamed(options.map_from), input);
  }
  std::vector<double> times_ms;
  const Picture result = RenderFrames(input, options, times_ms);
  outputs.Write(options.output, result);
  if (!options.panel.empty()) {
    const Picture map = input.disparity ? FalseColour(*input.disparity)
                                        : FalseColour(*input.weights);
    outputs.Write(options.panel, MakePanel({input.picture, map, result}));
  }
  outputs.Commit();
  if (options.repeat > 0) PrintTimes(times_ms);
}

}  // namespace

Command AddRenderCommand(CLI::App& program) {
  CLI::App* app = program.add_subcommand(
      "render", "Render a picture with a synthetic shallow depth of field");
  auto options = std::make_shared<RenderOptions>();
  app->add_option("--image", options->image,
                  "The picture, PNG or JPEG, with even sides")
      ->type_name("FILE")
      ->required();
  app->add_option("--disparity", options->disparity,
                  "16-bit grey PNG of any size: 0..1022, larger is nearer,\n"
                  "1023 is unknown")
      ->type_name("FILE");
  app->add_option("--weights", options->weights,
                  "In its place, 8-bit grey PNG of any size: 0 keeps a pixel\n"
                  "sharp, 255 blurs it fully")
      ->type_name("FILE");
  app->add_option("--map-from", options->map_from,
                  "With --disparity, render from the refocus map that this\n"
                  "generator makes of it; see zuqel refocus-map --help")
      ->type_name("NAME")
      ->check(CheckGeneratorName);
  app->add_option("--focus", options->focus, "What is sharp, in picture pixels")
      ->type_name("X,Y")
      ->required();
  app->add_option("--f-number", options->f_number,
                  "1 (strongest blur, the default) to 10 (hardly any)")
      ->type_name("N");
  app->add_flag("--focus-dot", options->focus_dot,
                "Mark the focus point in the result");
  app->add_option("-o,--output", options->output, "The result, PNG")
      ->type_name("FILE")
      ->required();
  app->add_option("--panel", options->panel,
                  "Also write input, map in false colour and result side by\n"
                  "side, PNG")
      ->type_name("FILE");
  app->add_option("--repeat", options->repeat,
                  "Render this many frames and print the frame time")
      ->type_name("N")
      ->check(CLI::Range(1, 100000));
  app->footer(
      "Example:\n"
      "  zuqel render --image photo.jpg --disparity disparity.png \\\n"
      "    --focus 640,480 --f-number 1.4 -o bokeh.png --panel panel.png");
  return {app, [options] { Run(*options); }};
}

}  // namespace zuqel::tools
