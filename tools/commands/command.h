// A command as main() sees it: its options and how to run it. Each command has
// a file of its own and a line in zuqel.cpp.
#ifndef ZUQEL_TOOLS_COMMANDS_COMMAND_H_
#define ZUQEL_TOOLS_COMMANDS_COMMAND_H_

#include <functional>

#include "commands/command_line.h"

namespace zuqel::tools {

struct Command {
  CommandLine options;
  std::function<void()> run;  // after parsing; throws as in tool_error.h
};

Command AddRenderCommand(CommandLine program);
Command AddDepthCommand(CommandLine program);
Command AddRefocusMapCommand(CommandLine program);
Command AddSequenceCommand(CommandLine program);
Command AddReportCommand(CommandLine program);
Command AddDemoCommand(CommandLine program);
Command AddViewCommand(CommandLine program);
Command AddRawCommand(CommandLine program);
Command AddCalibrationCommand(CommandLine program);
Command AddInfoCommand(CommandLine program);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_COMMANDS_COMMAND_H_
