// Renders a scene in every way that the report asks for.
#ifndef ZUQEL_TOOLS_REPORT_SCENE_RENDERING_H_
#define ZUQEL_TOOLS_REPORT_SCENE_RENDERING_H_

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "image.h"
#include "report/picture_folder.h"
#include "report/report_plan.h"
#include "report/report_record.h"

namespace zuqel::tools {

// What one maker has made for one focus point.
struct MakerResult {
  std::string maker;
  std::optional<KeptPicture> map;  // a generator's, in false colour
  std::optional<double> map_ms;    // the generator's call
  bool is_focus_sharp = true;      // the CPU renderer blurs any background
  std::vector<ReportEntry> entries;
};

struct FocusResult {
  NamedFocus focus;
  std::vector<MakerResult> makers;
};

// Pictures are in the folder; what is here is small.
struct SceneResult {
  std::string name, title;
  std::string note;  // about the map; may be empty
  KeptPicture source, disparity;
  std::vector<FocusResult> foci;
};

// Called for each picture, once it is in the folder.
using IsRendered =
    std::function<void(const ReportEntry&, const Picture&, const Bytes& icc)>;

// Opens sessions of its own, so none may be open. Throws InputError and
// WorkError.
SceneResult RenderScene(const PlannedScene& scene, const ReportOptions& options,
                        PictureFolder& folder, const IsRendered& is_rendered);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_REPORT_SCENE_RENDERING_H_
