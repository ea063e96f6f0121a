// Renders a scene in every way that the report asks for.
#include "report/scene_rendering.h"

#include <utility>

#include "look/false_colour.h"
#include "look/sharpness.h"
#include "photo/nv21.h"
#include "rendering/bokeh_session.h"
#include "rendering/frame_job.h"
#include "rendering/frame_progress.h"
#include "report/text.h"

namespace zuqel::tools {
namespace {

// A scene in memory while it is rendered.
struct Rendering {
  const PlannedScene* scene;
  const ReportOptions* options;
  PictureFolder* folder;
  const IsRendered* is_rendered;
  PhotoInput input;
  Nv21Frame source;
};

std::optional<double> Ratio(double part, double whole) {
  if (whole == 0) return std::nullopt;
  return part / whole;
}

SharpnessKept CompareSharpness(const Rendering& rendering,
                               const Nv21Frame& result, FocusPoint focus) {
  const Size size = rendering.input.size;
  const Sharpness before = MeasureSharpness(rendering.source, size, focus);
  const Sharpness after = MeasureSharpness(result, size, focus);
  return {Ratio(after.at_focus, before.at_focus),
          Ratio(after.elsewhere, before.elsewhere)};
}

std::string StemOf(const Rendering& rendering, size_t focus,
                   const Maker& maker) {
  return rendering.scene->stem + "-" + std::to_string(focus + 1) + "-" +
         maker.name;
}

// The first frame of a session takes longer, so a time is the median of three.
// The CPU renderer, which goes by what it has seen, renders one.
Rendered RenderOnce(const Rendering& rendering, const BokehSession& session,
                    const FrameMap& map, const Maker& maker,
                    const Focus& focus) {
  const bool repeats =
      rendering.options->has_times && maker.renderer == Renderer::kGpu;
  Rendered rendered;
  for (int left = repeats ? 3 : 1; left > 0; --left) {
    RenderFrame(session, rendering.source, map, focus, rendered);
  }
  return rendered;
}

// With a picture of `stem` for each f-number, which `entry` lacks.
void RenderEntries(const Rendering& rendering, const Maker& maker,
                   const FrameMap& map, const std::string& stem,
                   ReportEntry entry, MakerResult& result) {
  const PhotoInput& input = rendering.input;
  SessionSetup setup = SetupFor(SizeOf(input.picture), map);
  setup.renderer = maker.renderer;
  const BokehSession session(setup);
  std::vector<std::optional<double>> f_numbers = {std::nullopt};
  if (maker.HasFNumber()) {
    f_numbers.assign(rendering.options->f_numbers.begin(),
                     rendering.options->f_numbers.end());
  }
  for (const std::optional<double>& f_number : f_numbers) {
    const Focus focus = {entry.focus.point,
                         static_cast<float>(f_number.value_or(1))};
    const Rendered rendered = RenderOnce(rendering, session, map, maker, focus);
    result.is_focus_sharp &= rendered.is_focus_sharp;
    const Picture picture = CutToPhoto(ToPicture(rendered.frame), input);
    entry.f_number = f_number;
    entry.picture = rendering.folder->Keep(
        f_number ? stem + "-f" + ToText(*f_number) : stem, picture,
        input.metadata.icc);
    entry.sharpness = CompareSharpness(rendering, rendered.frame, focus.point);
    if (rendering.options->has_times) {
      entry.frame_ms = Summarise(rendered.times_ms).median_ms;
    }
    (*rendering.is_rendered)(entry, picture, input.metadata.icc);
    result.entries.push_back(entry);
  }
}

MakerResult RenderMaker(const Rendering& rendering, const Maker& maker,
                        const std::string& stem, const NamedFocus& focus) {
  const FrameMap map = MakeFrameMap(rendering.input, rendering.scene->depth,
                                    maker.generator, focus.point);
  MakerResult result;
  result.maker = maker.name;
  if (map.weights) {
    result.map =
        rendering.folder->Keep(stem + "-map", FalseColour(*map.weights), {});
  }
  if (rendering.options->has_times) result.map_ms = map.map_ms;
  ReportEntry entry;
  entry.scene = rendering.scene->name;
  entry.focus = focus;
  entry.maker = maker.name;
  RenderEntries(rendering, maker, map, stem, entry, result);
  return result;
}

}  // namespace

SceneResult RenderScene(const PlannedScene& scene, const ReportOptions& options,
                        PictureFolder& folder, const IsRendered& is_rendered) {
  Rendering rendering = {&scene, &options, &folder, &is_rendered, {}, {}};
  rendering.input = ReadPhotoInput(scene.picture, scene.depth, "");
  PhotoInput& input = rendering.input;
  rendering.source = ToNv21(input.picture);
  const NotedMap disparity = MakeDisparity(*input.depth, scene.depth);

  SceneResult result;
  result.name = scene.name;
  result.title = scene.meta.title;
  result.note = ToUtf8(disparity.note);
  result.disparity =
      folder.Keep(scene.stem + "-disparity", FalseColour(disparity.map), {});
  result.source =
      folder.Keep(scene.stem + "-source", CutToPhoto(input.picture, input),
                  input.metadata.icc);
  const std::vector<NamedFocus> foci = ChooseFoci(scene, input, options);
  for (size_t i = 0; i < foci.size(); ++i) {
    FocusResult& focus = result.foci.emplace_back();
    focus.focus = foci[i];
    for (const Maker& maker : options.makers) {
      focus.makers.push_back(
          RenderMaker(rendering, maker, StemOf(rendering, i, maker), foci[i]));
    }
  }
  return result;
}

}  // namespace zuqel::tools
