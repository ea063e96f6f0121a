// The options that name a depth map and say how to understand it.
#ifndef ZUQEL_TOOLS_COMMANDS_DEPTH_OPTIONS_H_
#define ZUQEL_TOOLS_COMMANDS_DEPTH_OPTIONS_H_

#include "commands/command_line.h"
#include "rendering/depth_input.h"

namespace zuqel::tools {

void AddDepthOptions(CommandLine app, DepthOptions& options);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_COMMANDS_DEPTH_OPTIONS_H_
