// zuqel render: renders a picture with bokeh, given its depth.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "bokeh_session.h"
#include "command.h"
#include "coordinates.h"
#include "depth_options.h"
#include "false_colour.h"
#include "frame_difference.h"
#include "frame_progress.h"
#include "image_file.h"
#include "nv21.h"
#include "output_files.h"
#include "panel.h"
#include "refocus_map.h"
#include "shared_options.h"
#include "tool_error.h"

namespace zuqel::tools {
namespace {

constexpr float kWidestLens = 1.0F;

struct RenderOptions {
  std::string image, weights, map_from, focus, output, panel, compare;
  DepthOptions depth;
  Renderer renderer = Renderer::kGpu;
  float f_number = kWidestLens;
  int repeat = 0;  // 0: once, without printing the time
  bool focus_dot = false;
};

// Holds exactly one of the two maps.
struct RenderInput {
  Picture picture;
  std::optional<DisparityMap> disparity;
  std::optional<WeightMap> weights;
  Focus focus;
  std::string note;
};

// Refuses what only the GPU can do if the CPU renders, alone or for comparison.
void CheckRenderer(const RenderOptions& options) {
  const bool on_cpu = options.renderer == Renderer::kCpu;
  if (!on_cpu && options.compare.empty()) return;
  const std::string reason = on_cpu ? ": does not work with --renderer cpu"
                                    : ": does not work with --compare";
  const auto refuse = [&](bool is_given, const char* option) {
    if (is_given) throw InputError(option + reason);
  };
  refuse(!options.weights.empty(), "--weights");
  refuse(!options.map_from.empty(), "--map-from");
  refuse(options.focus_dot, "--focus-dot");
  refuse(on_cpu && options.f_number != kWidestLens, "--f-number");
}

// Checks that need no file.
void CheckCombination(const RenderOptions& options) {
  CheckRenderer(options);
  CheckDepthOptions(options.depth);
  if (options.depth.HasMap() != options.weights.empty()) {
    throw InputError("give one of --disparity, --depth and --weights");
  }
  if (!options.map_from.empty() && !options.weights.empty()) {
    throw InputError("--map-from: works with --disparity, not with --weights");
  }
  if (!(options.f_number >= 1.0F && options.f_number <= 10.0F)) {
    throw InputError("--f-number: is not between 1 and 10");
  }
}

RenderInput ReadInput(const RenderOptions& options) {
  RenderInput input;
  input.picture = ReadFramePicture(options.image);
  input.focus = {ParseFocusPoint("--focus", options.focus, "picture",
                                 SizeOf(input.picture)),
                 options.f_number};
  if (const auto depth = ReadDepthMap(options.depth)) {
    CheckProportions(*depth, SizeOf(input.picture), options.depth);
    auto [map, note] = options.map_from.empty()
                           ? MakeDisparity(*depth, options.depth)
                           : MakeDepthFor(*GeneratorNamed(options.map_from),
                                          *depth, options.depth);
    input.disparity = std::move(map);
    input.note = std::move(note);
  } else {
    input.weights = ReadWeights(options.weights);
  }
  return input;
}

// Replaces the disparity, or what else the generator takes, with weights of the
// same size.
void MakeWeights(const Generator& generator, RenderInput& input) {
  input.weights = MakeRefocusMap(generator, *std::move(input.disparity),
                                 {input.focus.point, SizeOf(input.picture)})
                      .weights;
  input.disparity.reset();
}

SessionSetup SetupFor(const RenderInput& input, const RenderOptions& options) {
  SessionSetup setup;
  setup.picture = SizeOf(input.picture);
  setup.renderer = options.renderer;
  setup.focus_dot = options.focus_dot;
  if (input.disparity) {
    setup.depth = SizeOf(*input.disparity);
  } else {
    setup.work = SizeOf(*input.weights);
  }
  return setup;
}

struct Rendered {
  Nv21Frame frame;  // the last one
  bool is_focus_sharp = true;
  std::vector<double> times_ms;  // of each call
};

// Renders a copy of the input.
void RenderFrame(const BokehSession& session, const Nv21Frame& source,
                 const RenderInput& input, Rendered& rendered) {
  using Clock = std::chrono::steady_clock;
  rendered.frame = source;
  std::optional<DisparityMap> disparity = input.disparity;
  const Clock::time_point start = Clock::now();
  if (disparity) {
    rendered.is_focus_sharp =
        session.Render(rendered.frame, *disparity, input.focus);
  } else {
    session.Render(rendered.frame, *input.weights, input.focus);
  }
  rendered.times_ms.push_back(
      std::chrono::duration<double, std::milli>(Clock::now() - start).count());
}

// Opens a session of its own, so none may be open.
Rendered RenderFrames(const RenderInput& input, const SessionSetup& setup,
                      int count) {
  const BokehSession session(setup);
  const Nv21Frame source = ToNv21(input.picture);
  Rendered rendered;
  const ProgressBar bar(count);
  for (int i = 0; i < count; ++i) {
    RenderFrame(session, source, input, rendered);
    bar.Show(i + 1);
  }
  return rendered;
}

void PrintTimes(const std::vector<double>& times_ms) {
  const FrameTimes times = Summarise(times_ms);
  std::printf("frame time: median %.2f ms, worst %.2f ms (%zu frames)\n",
              times.median_ms, times.worst_ms, times_ms.size());
}

void PrintDifferences(const Nv21Frame& a, const Nv21Frame& b) {
  for (const PlaneDifference& difference : Compare(a, b)) {
    std::printf("%s: PSNR %.2f dB, largest difference %d\n", difference.plane,
                difference.psnr_db, difference.largest);
  }
}

SessionSetup WithOtherRenderer(SessionSetup setup) {
  const bool on_gpu = setup.renderer == Renderer::kGpu;
  setup.renderer = on_gpu ? Renderer::kCpu : Renderer::kGpu;
  return setup;
}

Picture Panel(const RenderInput& input, const Picture& result) {
  const Picture map = input.disparity ? FalseColour(*input.disparity)
                                      : FalseColour(*input.weights);
  return MakePanel({input.picture, map, result});
}

void Run(const RenderOptions& options) {
  CheckCombination(options);
  OutputFiles outputs;
  outputs.Announce(options.output);
  for (const std::string& path : {options.panel, options.compare}) {
    if (!path.empty()) outputs.Announce(path);
  }

  RenderInput input = ReadInput(options);
  if (!options.map_from.empty()) {
    MakeWeights(*GeneratorNamed(options.map_from), input);
  }
  const SessionSetup setup = SetupFor(input, options);
  const Rendered one = RenderFrames(input, setup, std::max(options.repeat, 1));
  std::optional<Rendered> other;
  if (!options.compare.empty()) {
    other = RenderFrames(input, WithOtherRenderer(setup), 1);
    outputs.Write(options.compare, ShowDifference(one.frame, other->frame));
  }
  const Picture result = ToPicture(one.frame);
  outputs.Write(options.output, result);
  if (!options.panel.empty()) {
    outputs.Write(options.panel, Panel(input, result));
  }
  outputs.Commit();
  PrintNote(input.note);
  const bool is_focus_sharp =
      one.is_focus_sharp && (!other || other->is_focus_sharp);
  ReportBlurredFocus(is_focus_sharp ? 0 : 1, 1);
  if (other) PrintDifferences(one.frame, other->frame);
  if (options.repeat > 0) PrintTimes(one.times_ms);
}

}  // namespace

Command AddRenderCommand(CommandLine program) {
  CommandLine app = program.AddCommand(
      "render", "Render a picture with a synthetic shallow depth of field");
  auto options = std::make_shared<RenderOptions>();
  AddFileOption(app, "--image", options->image,
                "The picture, PNG or JPEG, of even width and height")
      .Required();
  AddDepthOptions(app, options->depth);
  AddFileOption(app, "--weights", options->weights,
                "Instead of a depth map, 8-bit grey PNG of any size: 0 keeps\n"
                "a pixel sharp, 255 blurs it fully");
  app.AddOption("--map-from", options->map_from,
                "With a depth map, render from the refocus map that this\n"
                "generator makes from it; see zuqel refocus-map --help")
      .TypeName("NAME")
      .Check(CheckGeneratorName);
  app.AddOption("--focus", options->focus,
                "The point in focus, in picture pixels")
      .TypeName("X,Y")
      .Required();
  app.AddOption("--f-number", options->f_number,
                "1 (strongest blur, the default) to 10 (hardly any)")
      .TypeName("N");
  AddRendererOption(app, options->renderer);
  app.AddFlag("--focus-dot", options->focus_dot,
              "Mark the focus point in the result");
  AddFileOption(app, "-o,--output", options->output, "The result, PNG")
      .Required();
  AddFileOption(app, "--panel", options->panel,
                "Also write input, map in false colour and result side by\n"
                "side, PNG");
  app.AddOption("--repeat", options->repeat,
                "Render this many frames and print the frame time")
      .TypeName("N")
      .Range(1, 100000);
  AddFileOption(app, "--compare", options->compare,
                "Also render with the other renderer, print how much the\n"
                "results differ, and write the difference, amplified\n" +
                    std::to_string(kDifferenceGain) + " times, PNG");
  app.Footer(
      "Example:\n"
      "  zuqel render --image photo.jpg --disparity disparity.png \\\n"
      "    --focus 640,480 --f-number 1.4 -o bokeh.png --panel panel.png");
  return {app, [options] { Run(*options); }};
}

}  // namespace zuqel::tools
