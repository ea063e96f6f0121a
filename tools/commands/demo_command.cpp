// zuqel demo: renders a built-in scene with several lenses.
#include <array>
#include <memory>
#include <string>
#include <vector>

#include "commands/command.h"
#include "demo/scene.h"
#include "files/standard_streams.h"
#include "look/false_colour.h"
#include "look/panel.h"
#include "photo/nv21.h"
#include "photo/output_files.h"
#include "rendering/bokeh_session.h"
#include "rendering/frame_progress.h"
#include "rendering/refocus_map.h"
#include "tool_error.h"

namespace zuqel::tools {
namespace {

struct Lens {
  const char* name;
  float f_number;
};

constexpr std::array kLenses = {Lens{"f1", 1.0F}, Lens{"f2.8", 2.8F},
                                Lens{"f8", 8.0F}};

struct Shot {
  std::string path;
  Focus focus;
};

std::vector<Shot> PlanShots(const std::string& folder, const Scene& scene) {
  std::vector<Shot> shots;
  shots.reserve(2 * kLenses.size());
  for (const Lens& lens : kLenses) {
    shots.push_back({folder + "/near_" + lens.name + ".png",
                     {scene.near_focus, lens.f_number}});
  }
  for (const Lens& lens : kLenses) {
    shots.push_back({folder + "/far_" + lens.name + ".png",
                     {scene.far_focus, lens.f_number}});
  }
  return shots;
}

std::vector<Picture> RenderShots(const Scene& scene,
                                 const std::vector<Shot>& shots) {
  const BokehSession session(
      {.picture = SizeOf(scene.picture), .depth = SizeOf(scene.disparity)});
  const Nv21Frame source = ToNv21(scene.picture);
  std::vector<Picture> results;
  const ProgressBar bar(static_cast<int>(shots.size()));
  for (const Shot& shot : shots) {
    Nv21Frame frame = source;
    DisparityMap disparity = scene.disparity;
    session.Render(frame, disparity, shot.focus);
    results.push_back(ToPicture(frame));
    bar.Show(static_cast<int>(results.size()));
  }
  return results;
}

Picture RefocusPanel(const Scene& scene) {
  const RefocusMap map =
      MakeRefocusMap(*GeneratorNamed("gpu"), scene.disparity,
                     {scene.near_focus, SizeOf(scene.picture)});
  return MakeRefocusPanel(FalseColour(scene.disparity), map.weights,
                          &scene.picture, scene.near_focus);
}

void Run(const std::string& folder) {
  if (IsStandardStream(folder)) {
    throw InputError("--output: takes a folder, not standard output");
  }
  OutputFiles outputs;
  outputs.CreateFolder(folder);
  const Scene scene = MakeScene();
  const std::vector<Shot> shots = PlanShots(folder, scene);
  const std::string picture_path = folder + "/scene.png";
  const std::string disparity_path = folder + "/disparity.png";
  const std::string panel_path = folder + "/panel.png";
  const std::string refocus_path = folder + "/refocus_map.png";
  for (const std::string& path :
       {picture_path, disparity_path, panel_path, refocus_path}) {
    outputs.Announce(path);
  }
  for (const Shot& shot : shots) outputs.Announce(shot.path);

  const std::vector<Picture> results = RenderShots(scene, shots);
  outputs.Write(picture_path, scene.picture);
  outputs.Write(disparity_path, scene.disparity);
  for (size_t i = 0; i < shots.size(); ++i) {
    outputs.Write(shots[i].path, results[i]);
  }
  outputs.Write(panel_path,
                MakePanel({scene.picture, FalseColour(scene.disparity),
                           results.front()}));
  outputs.Write(refocus_path, RefocusPanel(scene));
  outputs.Commit();
}

}  // namespace

Command AddDemoCommand(CommandLine program) {
  CommandLine app = program.AddCommand(
      "demo", "Render a built-in scene for two focus points and three lenses");
  auto folder = std::make_shared<std::string>();
  app.AddOption("-o,--output", *folder,
                "The folder for the pictures, created if it does not exist")
      .TypeName("FOLDER")
      .Required();
  app.Footer(
      "Writes the scene (scene.png), its disparity (disparity.png), a result\n"
      "for each focus and f-number, a panel of the strongest, and one of the\n"
      "refocus map that the GPU makes (refocus_map.png).\n"
      "\n"
      "Examples:\n"
      "  zuqel demo -o demo\n"
      "  zuqel render demo/scene.png --disparity demo/disparity.png "
      "\\\n"
      "    --focus 900,650 -o bokeh.png");
  return {app, [folder] { Run(*folder); }};
}

}  // namespace zuqel::tools
