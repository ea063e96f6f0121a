// Options that several commands have.
#ifndef ZUQEL_TOOLS_COMMANDS_SHARED_OPTIONS_H_
#define ZUQEL_TOOLS_COMMANDS_SHARED_OPTIONS_H_

#include <string>

#include "commands/command_line.h"
#include "rendering/bokeh_session.h"

namespace zuqel::tools {

// An option whose value names a file.
Option AddFileOption(CommandLine app, const std::string& names,
                     std::string& path, const std::string& help);

// --renderer; `renderer` holds its default.
void AddRendererOption(CommandLine app, Renderer& renderer);

// --quality; `quality` holds its default.
void AddQualityOption(CommandLine app, int& quality);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_COMMANDS_SHARED_OPTIONS_H_
