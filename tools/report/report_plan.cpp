// What a report shows.
#include "report/report_plan.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <set>
#include <system_error>
#include <utility>

#include "coordinates.h"
#include "files/file_bytes.h"
#include "photo/auto_focus.h"
#include "photo/number_text.h"
#include "report/text.h"
#include "tool_error.h"

namespace zuqel::tools {
namespace {

namespace fs = std::filesystem;

std::vector<std::string> Split(const std::string& text) {
  std::vector<std::string> parts(1);
  for (const char c : text) {
    if (c == ',')
      parts.emplace_back();
    else
      parts.back() += c;
  }
  return parts;
}

std::vector<Maker> AllMakers() {
  std::vector<Maker> makers = {{"frame"}};
  for (const Generator& generator : Generators()) {
    makers.push_back({generator.name, &generator});
  }
  makers.push_back({"cpu", nullptr, Renderer::kCpu});
  return makers;
}

Maker MakerNamed(const std::string& name) {
  std::string known;
  for (Maker& maker : AllMakers()) {
    if (maker.name == name) return std::move(maker);
    known += " " + maker.name;
  }
  throw InputError("--makers: " + name + " is not one of" + known);
}

template <typename Taken>
void RequireNew(Taken& taken, const char* option, const std::string& name) {
  if (taken.insert(name).second) return;
  throw InputError(std::string(option) + ": " + name + " is given twice");
}

// By name.
std::vector<fs::path> ListFolder(const fs::path& folder) {
  std::vector<fs::path> paths;
  std::error_code error;
  for (fs::directory_iterator at(folder, error), end; !error && at != end;
       at.increment(error)) {
    paths.push_back(at->path());
  }
  if (error) {
    throw InputError(folder.string() + ": cannot be read: " + error.message());
  }
  std::sort(paths.begin(), paths.end());
  return paths;
}

bool IsFolder(const fs::path& path) {
  std::error_code ignored;
  return fs::is_directory(path, ignored);
}

bool IsScene(const fs::path& folder) {
  std::error_code ignored;
  return fs::exists(folder / "scene.png", ignored);
}

// The last part of the path that is a name.
std::string NameOf(fs::path path) {
  if (!path.has_filename()) path = path.parent_path();
  std::string name = path.filename();
  if (name != "." && name != "..") return name;
  std::error_code ignored;
  return fs::canonical(path, ignored).filename();
}

// The first by name, which is the smaller of disparity_320x240.png and
// disparity_640x480.png.
std::string FindMap(const fs::path& folder) {
  for (const fs::path& path : ListFolder(folder)) {
    const std::string name = path.filename();
    if (name.starts_with("disparity") && name.ends_with(".png")) return path;
  }
  throw InputError(folder.string() + ": has no disparity*.png");
}

PlannedScene PlanFolder(const fs::path& folder, const ReportOptions& options) {
  PlannedScene scene;
  scene.picture = folder / "scene.png";
  scene.name = ToUtf8(NameOf(folder));
  scene.depth = options.depth;
  scene.depth.disparity = FindMap(folder);
  const fs::path meta = folder / "meta.json";
  std::error_code ignored;
  if (!fs::exists(meta, ignored)) return scene;
  scene.meta_file = meta;
  Bytes bytes(kLargestMeta);
  bytes.resize(ReadFileInto(scene.meta_file, bytes));
  scene.meta = ParseSceneMeta(scene.meta_file, bytes);
  return scene;
}

PlannedScene PlanPhoto(const std::string& photo, const ReportOptions& options) {
  PlannedScene scene;
  scene.picture = photo;
  scene.name = ToUtf8(NameOf(photo));
  scene.depth = options.depth;
  return scene;
}

void PlanInput(const std::string& input, const ReportOptions& options,
               std::vector<PlannedScene>& scenes) {
  if (!IsFolder(input)) {
    scenes.push_back(PlanPhoto(input, options));
    return;
  }
  if (IsScene(input)) {
    scenes.push_back(PlanFolder(input, options));
    return;
  }
  const size_t before = scenes.size();
  for (const fs::path& path : ListFolder(input)) {
    if (IsScene(path)) scenes.push_back(PlanFolder(path, options));
  }
  if (scenes.size() == before) {
    throw InputError(input + ": has no scene.png, and no folder with one");
  }
}

// Tells scenes of one name apart by a number.
void NameApart(std::vector<PlannedScene>& scenes) {
  std::set<std::string> names, stems;
  for (PlannedScene& scene : scenes) {
    const std::string name = scene.name, stem = ToFileStem(name);
    scene.stem = stem;
    for (int i = 2; !names.insert(scene.name).second; ++i) {
      scene.name = name + " (" + std::to_string(i) + ")";
    }
    for (int i = 2; !stems.insert(scene.stem).second; ++i) {
      scene.stem = stem + "_" + std::to_string(i);
    }
  }
}

std::vector<NamedFocus> ScaledFoci(const PlannedScene& scene, Size picture) {
  std::vector<NamedFocus> foci = scene.meta.foci;
  const Size frame = scene.meta.frame.value_or(picture);
  for (auto& [what, point] : foci) {
    if (point.x >= frame.width || point.y >= frame.height) {
      throw InputError(scene.meta_file + ": the focus point " +
                       std::to_string(point.x) + "," + std::to_string(point.y) +
                       " lies outside the picture of " + ToText(frame));
    }
    point = {point.x * picture.width / frame.width,
             point.y * picture.height / frame.height};
  }
  return foci;
}

FocusPoint FarthestSurface(const std::string& path, DisparityMap map,
                           Size picture) {
  for (uint16_t& value : map.values) {
    if (value < kUnknownDisparity) {
      value = static_cast<uint16_t>(kUnknownDisparity - 1 - value);
    }
  }
  const auto found = FindNearestSurface(map, picture);
  if (!found) throw InputError(path + ": has no large surface to focus on");
  return *found;
}

}  // namespace

std::vector<Maker> ParseMakers(const std::string& text) {
  if (text.empty()) return AllMakers();
  std::vector<Maker> makers;
  std::set<std::string> taken;
  for (const std::string& name : Split(text)) {
    makers.push_back(MakerNamed(name));
    RequireNew(taken, "--makers", name);
  }
  return makers;
}

std::vector<double> ParseFNumbers(const std::string& text) {
  std::vector<double> numbers;
  std::set<std::string> taken;
  for (const std::string& part : Split(text)) {
    const std::optional<double> number = ParseNumber(part);
    if (!number || !(*number >= 1 && *number <= 10)) {
      throw InputError("--f-numbers: " + part + " is not between 1 and 10");
    }
    RequireNew(taken, "--f-numbers", ToText(*number));
    numbers.push_back(*number);
  }
  return numbers;
}

std::vector<PlannedScene> PlanScenes(const ReportOptions& options) {
  std::vector<PlannedScene> scenes;
  for (const std::string& input : options.inputs) {
    PlanInput(input, options, scenes);
  }
  const bool is_one_photo =
      options.inputs.size() == 1 && !IsFolder(options.inputs.front());
  if (options.depth.HasMap() && !is_one_photo) {
    throw InputError("--disparity and --depth are for one photo");
  }
  NameApart(scenes);
  return scenes;
}

int CountEntries(const PlannedScene& scene, const ReportOptions& options) {
  constexpr size_t kByDepth = 2;
  const size_t foci = !options.foci.empty()     ? options.foci.size()
                      : scene.meta.foci.empty() ? kByDepth
                                                : scene.meta.foci.size();
  size_t shots = 0;
  for (const Maker& maker : options.makers) {
    shots += maker.HasFNumber() ? options.f_numbers.size() : 1;
  }
  return static_cast<int>(foci * shots);
}

std::vector<NamedFocus> ChooseFoci(const PlannedScene& scene,
                                   const PhotoInput& input,
                                   const ReportOptions& options) {
  std::vector<NamedFocus> foci;
  for (const std::string& text : options.foci) {
    foci.push_back({"", ChooseFocus(input, scene.depth, text)});
  }
  if (foci.empty()) foci = ScaledFoci(scene, input.size);
  if (foci.empty()) {
    const DisparityMap map = MakeDisparity(*input.depth, scene.depth).map;
    foci = {{"the nearest large surface",
             ChooseFocus(input, scene.depth, kAutoFocus)},
            {"the farthest large surface",
             FarthestSurface(input.path, map, input.size)}};
  }
  return foci;
}

}  // namespace zuqel::tools
