// Makes a report.
#include "report/report_job.h"

#include <cstdio>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "photo/output_files.h"
#include "rendering/frame_progress.h"
#include "report/comparison.h"
#include "report/json_files.h"
#include "report/page.h"
#include "report/picture_folder.h"
#include "report/scene_rendering.h"

namespace zuqel::tools {
namespace {

void PrintFindings(const Findings& findings) {
  std::printf("against %s: %zu changed, %d the same, %zu not compared\n",
              findings.folder.c_str(), findings.changes.size(), findings.same,
              findings.notes.size());
  if (findings.changes.empty()) return;
  const Change& worst = findings.changes.front();
  std::printf("worst: %.2f dB, %s\n", worst.psnr_db,
              Describe(worst.entry).c_str());
}

}  // namespace

void MakeReport(const ReportOptions& options) {
  CheckDepthOptions(options.depth, true);
  const std::vector<PlannedScene> planned = PlanScenes(options);
  OutputFiles outputs;
  PictureFolder folder(options.output, outputs);
  const std::string page_path = folder.PathOf(kPageName);
  const std::string record_path = folder.PathOf(kRecordName);
  outputs.Announce(page_path);
  outputs.Announce(record_path);
  std::optional<Comparison> comparison;
  if (!options.against.empty()) comparison.emplace(options.against);

  int count = 0;
  for (const PlannedScene& scene : planned) {
    count += CountEntries(scene, options);
  }
  std::vector<SceneResult> scenes;
  std::vector<ReportEntry> entries;
  {
    const ProgressBar bar(count, "pictures");
    bar.Show(0);
    const IsRendered is_rendered = [&](const ReportEntry& entry,
                                       const Picture& picture,
                                       const Bytes& icc) {
      if (comparison) comparison->Add(entry, picture, icc, folder);
      entries.push_back(entry);
      bar.Show(static_cast<int>(entries.size()));
    };
    for (const PlannedScene& scene : planned) {
      scenes.push_back(RenderScene(scene, options, folder, is_rendered));
    }
  }
  std::optional<Findings> findings;
  if (comparison) findings = comparison->Finish();
  PendingFile& record = outputs.Begin(record_path, "").file;
  record.Write(ToJson(entries));
  PendingFile& page =
      outputs.Begin(page_path, std::to_string(count) + " pictures").file;
  page.Write(WritePage(scenes, findings));
  outputs.Commit();
  if (findings) PrintFindings(*findings);
}

}  // namespace zuqel::tools
