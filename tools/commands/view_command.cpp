// zuqel view: looks at a photo and moves its focus.
#include <algorithm>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "commands/command.h"
#include "commands/depth_options.h"
#include "commands/shared_options.h"
#include "demo/scene.h"
#include "photo/auto_focus.h"
#include "photo/nv21.h"
#include "rendering/photo_input.h"
#include "rendering/render_job.h"
#include "tool_error.h"
#include "view/window.h"

namespace zuqel::tools {
namespace {

constexpr int kDemoMoments = 50;

struct ViewOptions {
  RenderOptions start;
  std::string photo;
  bool is_demo = false;
};

// As the files that zuqel demo writes would be read.
PhotoInput ToInput(const Scene& scene) {
  PhotoInput input;
  input.path = "demo.png";
  input.picture = scene.picture;
  input.size = SizeOf(scene.picture);
  NamedDepth depth = {input.path,
                      DepthMap(scene.disparity.width, scene.disparity.height),
                      true};
  depth.map.is_native = true;
  std::transform(scene.disparity.values.begin(), scene.disparity.values.end(),
                 depth.map.values.begin(), [](uint16_t value) {
                   return value >= kUnknownDisparity
                              ? std::numeric_limits<float>::quiet_NaN()
                              : static_cast<float>(value);
                 });
  input.depth = std::move(depth);
  return input;
}

ViewSource DemoSource(FocusPoint& focus) {
  const Scene scene = MakeScene();
  focus = scene.near_focus;
  ViewSource source = {ToInput(scene), kDemoMoments, {}};
  source.at_moment = [series =
                          std::shared_ptr<MovingScene>()](int moment) mutable {
    if (!series) series = std::make_shared<MovingScene>();
    const float last = kDemoMoments - 1;
    return ToInput(series->At(static_cast<float>(moment - 1) / last));
  };
  return source;
}

// The middle where nothing tells better.
FocusPoint ProposeFocus(const PhotoInput& input, const DepthOptions& options) {
  std::optional<FocusPoint> found;
  if (input.depth) {
    found = FindNearestSurface(MakeDisparity(*input.depth, options).map,
                               input.size);
  }
  return found.value_or(
      FocusPoint{input.size.width / 2, input.size.height / 2});
}

void Run(const ViewOptions& options) {
  if (options.photo.empty() && !options.is_demo) {
    throw InputError("give a photo or --demo");
  }
  const RenderOptions& start = options.start;
  CheckRenderOptions(start);
  const Display display;
  ViewState state;
  ViewSource source;
  if (options.is_demo) {
    source = DemoSource(state.focus);
  } else {
    source.input = ReadPhotoInput(options.photo, start.depth, start.weights);
    state.focus = ProposeFocus(source.input, start.depth);
  }
  if (!start.focus.empty()) {
    state.focus = ChooseFocus(source.input, start.depth, start.focus);
  }
  state.photo = source.input.size;
  state.has_depth = source.input.depth.has_value();
  state.moments = source.moments;
  state.f_number = start.f_number;
  const std::string photo = source.input.path;
  RunWindow(display, std::move(source), start.depth, std::move(state), photo);
}

}  // namespace

Command AddViewCommand(CommandLine program) {
  CommandLine app = program.AddCommand(
      "view", "Look at a photo in a window, and focus with the mouse");
  auto options = std::make_shared<ViewOptions>();
  RenderOptions& start = options->start;
  Option photo = app.AddOption("--image,photo", options->photo,
                               "The photo, as zuqel render takes it")
                     .TypeName("FILE");
  app.AddFlag("--demo", options->is_demo,
              "Instead of a photo, the built-in scene, which also moves")
      .Excludes(photo);
  app.AddOption("--focus", start.focus,
                "The point in focus to begin with, in pixels of the upright\n"
                "picture; without it, or with auto, as zuqel render has it\n"
                "for auto")
      .TypeName("X,Y|auto");
  app.AddOption("--f-number", start.f_number,
                "To begin with, 1 (strongest blur, the default) to 10")
      .TypeName("N");
  AddDepthOptions(app, start.depth);
  AddFileOption(app, "--weights", start.weights,
                "Instead of depth, weights as zuqel render takes them");
  app.Footer(
      "H in the window shows its keys. S saves the photo as zuqel render "
      "does,\n"
      "beside it, as NAME_bokeh.jpg or .png, and replaces nothing.\n"
      "\n"
      "Examples:\n"
      "  zuqel view photo.heic\n"
      "  zuqel view photo.jpg --disparity disparity.png --f-number 1.4\n"
      "  zuqel view --demo");
  return {app, [options] { Run(*options); }};
}

}  // namespace zuqel::tools
