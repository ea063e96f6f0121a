// Renders one photo.
#include "rendering/render_job.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "coordinates.h"
#include "look/false_colour.h"
#include "look/frame_difference.h"
#include "look/panel.h"
#include "photo/auto_focus.h"
#include "photo/even_size.h"
#include "photo/image_file.h"
#include "photo/nv21.h"
#include "photo/photo.h"
#include "rendering/bokeh_session.h"
#include "rendering/depth_input.h"
#include "rendering/frame_progress.h"
#include "rendering/notes.h"
#include "rendering/refocus_map.h"
#include "tool_error.h"

namespace zuqel::tools {
namespace {

// Holds exactly one of the two maps.
struct RenderInput {
  Picture picture;  // of even size
  Size size;        // of the photo
  Metadata metadata;
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

FocusPoint FocusGiven(const RenderOptions& options, Size size) {
  return ParseFocusPoint("--focus", options.focus, "picture", size);
}

FocusPoint FocusOf(const RenderOptions& options, const std::string& path,
                   const NamedDepth& depth, Size size) {
  if (options.focus != kAutoFocus) return FocusGiven(options, size);
  const auto found =
      FindNearestSurface(MakeDisparity(depth, options.depth).map, size);
  if (!found) throw InputError(path + ": has no large surface to focus on");
  return *found;
}

RenderInput ReadInput(const RenderOptions& options, const std::string& path) {
  Photo photo = ReadPhoto(path);
  RenderInput input;
  input.size = SizeOf(photo.picture);
  input.focus.f_number = options.f_number;
  if (!options.weights.empty()) {
    input.focus.point = FocusGiven(options, input.size);
    input.weights = ReadWeights(options.weights);
  } else {
    const NamedDepth depth = ChooseDepth(options.depth, path, photo);
    input.focus.point = FocusOf(options, path, depth, input.size);
    auto [map, note] = options.map_from.empty()
                           ? MakeDisparity(depth, options.depth)
                           : MakeDepthFor(*GeneratorNamed(options.map_from),
                                          depth, options.depth);
    input.disparity = std::move(map);
    input.note = std::move(note);
  }
  input.picture = std::move(photo.picture);
  input.metadata = std::move(photo.metadata);
  PadToEvenSize(input.picture);
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
Rendered RenderFrames(const Nv21Frame& source, const RenderInput& input,
                      const SessionSetup& setup, int count) {
  const BokehSession session(setup);
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

// Of the size of the photo.
Picture ToPhotoSize(Picture picture, const RenderInput& input) {
  CutToSize(picture, input.size);
  return picture;
}

Picture Panel(const RenderInput& input, const Picture& result) {
  const Picture map = input.disparity ? FalseColour(*input.disparity)
                                      : FalseColour(*input.weights);
  return MakePanel({ToPhotoSize(input.picture, input), map, result});
}

}  // namespace

void CheckRenderOptions(const RenderOptions& options) {
  CheckRenderer(options);
  const bool has_weights = !options.weights.empty();
  CheckDepthOptions(options.depth, !has_weights);
  if (options.depth.HasMap() && has_weights) {
    throw InputError("give one of --disparity, --depth and --weights");
  }
  if (!options.map_from.empty() && has_weights) {
    throw InputError("--map-from: works with --disparity, not with --weights");
  }
  if (options.focus == kAutoFocus && has_weights) {
    throw InputError("--focus auto: does not work with --weights");
  }
  for (const auto& [option, path] :
       {std::pair("--panel", &options.panel),
        std::pair("--compare", &options.compare)}) {
    if (!path->empty()) CheckPictureName(option, *path);
  }
  if (!(options.f_number >= 1.0F && options.f_number <= 10.0F)) {
    throw InputError("--f-number: is not between 1 and 10");
  }
}

void RenderPhoto(const RenderOptions& options, const std::string& photo,
                 const std::string& output, OutputFiles& outputs) {
  outputs.Announce(output);
  for (const std::string& path : {options.panel, options.compare}) {
    if (!path.empty()) outputs.Announce(path);
  }

  RenderInput input = ReadInput(options, photo);
  if (!options.map_from.empty()) {
    MakeWeights(*GeneratorNamed(options.map_from), input);
  }
  const SessionSetup setup = SetupFor(input, options);
  const Nv21Frame source = ToNv21(input.picture);
  // Large, and of no more use.
  if (options.panel.empty()) input.picture = {};
  const Rendered one =
      RenderFrames(source, input, setup, std::max(options.repeat, 1));
  std::optional<Rendered> other;
  if (!options.compare.empty()) {
    other = RenderFrames(source, input, WithOtherRenderer(setup), 1);
    outputs.Write(options.compare,
                  ToPhotoSize(ShowDifference(one.frame, other->frame), input));
  }
  const Picture result = ToPhotoSize(ToPicture(one.frame), input);
  outputs.Write(output, result, input.metadata, options.quality);
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

}  // namespace zuqel::tools
