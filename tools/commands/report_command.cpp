// zuqel report: renders scenes and photos in every way into a page to look at.
#include <memory>
#include <string>

#include "commands/command.h"
#include "commands/depth_options.h"
#include "report/report_job.h"

namespace zuqel::tools {
namespace {

struct ReportCommandOptions {
  ReportOptions report;
  std::string f_numbers = "1,2,4", makers;
  bool has_no_times = false;
};

void Run(ReportCommandOptions options) {
  options.report.f_numbers = ParseFNumbers(options.f_numbers);
  options.report.makers = ParseMakers(options.makers);
  options.report.has_times = !options.has_no_times;
  MakeReport(options.report);
}

void AddChoices(CommandLine app, ReportCommandOptions& options) {
  app.AddOption("--f-numbers", options.f_numbers,
                "1 to 10, separated by commas (1,2,4 by default)")
      .TypeName("N,...");
  app.AddOption("--makers", options.makers,
                "Ways to make a picture, separated by commas, of frame (from\n"
                "the disparity), a generator's name (from its map, see zuqel\n"
                "refocus-map --help) and cpu (the CPU renderer, one strength\n"
                "of blur); all by default")
      .TypeName("NAME,...");
  app.AddOption("--focus", options.report.foci,
                "A point to focus on in each picture, in place of those of\n"
                "meta.json; may be given several times")
      .TypeName("X,Y|auto")
      .OneEach();
  app.AddFlag("--no-times", options.has_no_times,
              "Leave times out: reports of the same are the same bytes");
}

}  // namespace

Command AddReportCommand(CommandLine program) {
  CommandLine app = program.AddCommand(
      "report", "Render scenes in every way into a page to look at");
  auto options = std::make_shared<ReportCommandOptions>();
  app.AddOption("input", options->report.inputs,
                "A photo with depth inside; a photo, with an option for its\n"
                "depth; a scene, which is a folder with scene.png,\n"
                "disparity*.png (the first by name is taken) and meta.json\n"
                "with focus points; or a folder of scenes")
      .TypeName("INPUT")
      .Required();
  app.AddOption("-o,--output", options->report.output,
                "The folder for index.html, its pictures, and their figures\n"
                "in report.json; created if it does not exist")
      .TypeName("FOLDER")
      .Required();
  app.AddOption("--against", options->report.against,
                "Compare with an earlier report: pictures that have changed\n"
                "are shown beside their difference, the worst first")
      .TypeName("FOLDER");
  AddChoices(app, *options);
  AddDepthOptions(app, options->report.depth);
  app.Footer(
      "Without focus points, two are chosen: what zuqel render --focus auto\n"
      "takes, and the middle of the farthest large surface, found the same "
      "way\nin the map turned round.\n"
      "\n"
      "Examples:\n"
      "  zuqel report -o report photo.heic scenes/\n"
      "  zuqel report -o new --against report photo.heic scenes/");
  return {app, [options] { Run(*options); }};
}

}  // namespace zuqel::tools
