// zuqel info: shows what the library runs on.
#include <iostream>
#include <memory>

#include "commands/command.h"
#include "system/system_report.h"
#include "tool_error.h"

namespace zuqel::tools {
namespace {

void Run(bool as_json) {
  const SystemReport report = ExamineSystem();
  std::cout << (as_json ? ReportJson(report) : ReportText(report));
  if (!report.gl_failure.empty()) throw WorkError(report.gl_failure);
}

}  // namespace

Command AddInfoCommand(CommandLine program) {
  CommandLine app = program.AddCommand(
      "info", "Show versions, GPUs, the GL driver and properties");
  auto as_json = std::make_shared<bool>(false);
  app.AddFlag("--json", *as_json, "Print one JSON object instead of text");
  app.Footer(
      "Exit code 1 where OpenGL ES does not work; what is known is printed\n"
      "all the same.\n"
      "\n"
      "Examples:\n"
      "  zuqel info --device 0");
  return {app, [as_json] { Run(*as_json); }};
}

}  // namespace zuqel::tools
