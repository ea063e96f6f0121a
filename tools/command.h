// A command as main() sees it: its options and how to run it. Each command has
// a file of its own and a line in zuqel.cpp.
#ifndef ZUQEL_TOOLS_COMMAND_H_
#define ZUQEL_TOOLS_COMMAND_H_

#include <CLI/CLI.hpp>
#include <functional>

namespace zuqel::tools {

struct Command {
  CLI::App* options;          // owned by the program's CLI::App
  std::function<void()> run;  // after parsing; throws as in tool_error.h
};

Command AddRenderCommand(CLI::App& program);
Command AddRefocusMapCommand(CLI::App& program);
Command AddSequenceCommand(CLI::App& program);
Command AddDemoCommand(CLI::App& program);
Command AddRawCommand(CLI::App& program);
Command AddCalibrationCommand(CLI::App& program);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_COMMAND_H_
