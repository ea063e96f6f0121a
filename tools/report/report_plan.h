// What a report shows: scenes, and what each of them is rendered with.
#ifndef ZUQEL_TOOLS_REPORT_REPORT_PLAN_H_
#define ZUQEL_TOOLS_REPORT_REPORT_PLAN_H_

#include <string>
#include <vector>

#include "rendering/bokeh_session.h"
#include "rendering/depth_input.h"
#include "rendering/photo_input.h"
#include "rendering/refocus_map.h"
#include "report/json_files.h"
#include "report/report_record.h"

namespace zuqel::tools {

// A way to make a picture: "frame", the library's frame from a disparity map;
// the name of a generator, a frame from its map; "cpu", the CPU renderer, whose
// strength of blur is fixed.
struct Maker {
  [[nodiscard]] bool HasFNumber() const { return renderer == Renderer::kGpu; }

  std::string name;
  const Generator* generator = nullptr;
  Renderer renderer = Renderer::kGpu;
};

struct ReportOptions {
  std::vector<std::string> inputs;
  std::string output;   // folder
  std::string against;  // folder of an earlier report, or empty
  DepthOptions depth;
  std::vector<std::string> foci;  // in place of those of the scenes
  std::vector<double> f_numbers;
  std::vector<Maker> makers;
  bool has_times = true;
};

// Values of --makers and --f-numbers, separated by commas; an empty list of
// makers stands for all. Throw InputError.
std::vector<Maker> ParseMakers(const std::string& text);
std::vector<double> ParseFNumbers(const std::string& text);

struct PlannedScene {
  std::string picture;  // file
  std::string name;     // UTF-8, and no other scene's
  std::string stem;     // start of the names of its files, and no other's
  DepthOptions depth;
  std::string meta_file;
  SceneMeta meta;
};

// Scenes, by the names of their folders, and photos. Reads the scenes'
// meta.json, but no picture. Throws InputError.
std::vector<PlannedScene> PlanScenes(const ReportOptions& options);

// How many pictures the scene is rendered into.
int CountEntries(const PlannedScene& scene, const ReportOptions& options);

// Those that the options give, else those of meta.json, else two: what --focus
// auto takes, and the same of the map turned round, so the middle of the
// farthest large surface. Throws InputError.
std::vector<NamedFocus> ChooseFoci(const PlannedScene& scene,
                                   const PhotoInput& input,
                                   const ReportOptions& options);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_REPORT_REPORT_PLAN_H_
