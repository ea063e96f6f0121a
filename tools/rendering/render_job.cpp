// Renders one photo.
#include "rendering/render_job.h"

#include <algorithm>
#include <cstdio>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "look/false_colour.h"
#include "look/frame_difference.h"
#include "look/panel.h"
#include "photo/nv21.h"
#include "rendering/frame_job.h"
#include "rendering/frame_progress.h"
#include "rendering/notes.h"
#include "rendering/photo_input.h"
#include "rendering/refocus_map.h"
#include "tool_error.h"

namespace zuqel::tools {
namespace {

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

Picture Panel(const PhotoInput& input, const FrameMap& map,
              const Picture& result) {
  const Picture colours =
      map.disparity ? FalseColour(*map.disparity) : FalseColour(*map.weights);
  return MakePanel({CutToPhoto(input.picture, input), colours, result});
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
  RenderInput(options, ReadPhotoInput(photo, options.depth, options.weights),
              output, outputs);
}

void RenderInput(const RenderOptions& options, PhotoInput input,
                 const std::string& output, OutputFiles& outputs) {
  const Focus focus = {ChooseFocus(input, options.depth, options.focus),
                       options.f_number};
  const Generator* const generator =
      options.map_from.empty() ? nullptr : GeneratorNamed(options.map_from);
  const FrameMap map =
      MakeFrameMap(input, options.depth, generator, focus.point);
  SessionSetup setup = SetupFor(SizeOf(input.picture), map);
  setup.renderer = options.renderer;
  setup.focus_dot = options.focus_dot;
  const Nv21Frame source = ToNv21(input.picture);
  // Large, and of no more use.
  if (options.panel.empty()) input.picture = {};
  input.depth.reset();
  const Rendered one =
      RenderFrames(setup, source, map, focus, std::max(options.repeat, 1));
  std::optional<Rendered> other;
  if (!options.compare.empty()) {
    other = RenderFrames(WithOtherRenderer(setup), source, map, focus, 1);
    outputs.Write(options.compare,
                  CutToPhoto(ShowDifference(one.frame, other->frame), input));
  }
  const Picture result = CutToPhoto(ToPicture(one.frame), input);
  outputs.Write(output, result, input.metadata, options.quality);
  if (!options.panel.empty()) {
    outputs.Write(options.panel, Panel(input, map, result));
  }
  outputs.Commit();
  PrintNote(map.note);
  const bool is_focus_sharp =
      one.is_focus_sharp && (!other || other->is_focus_sharp);
  ReportBlurredFocus(is_focus_sharp ? 0 : 1, 1);
  if (other) PrintDifferences(one.frame, other->frame);
  if (options.repeat > 0) PrintTimes(one.times_ms);
}

}  // namespace zuqel::tools
