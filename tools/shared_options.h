// Options that several commands have.
#ifndef ZUQEL_TOOLS_SHARED_OPTIONS_H_
#define ZUQEL_TOOLS_SHARED_OPTIONS_H_

#include <string>

#include "bokeh_session.h"
#include "command_line.h"

namespace zuqel::tools {

// An option whose value names a file.
Option AddFileOption(CommandLine app, const std::string& names,
                     std::string& path, const std::string& help);

// --renderer; `renderer` holds its default.
void AddRendererOption(CommandLine app, Renderer& renderer);

// --quality; `quality` holds its default.
void AddQualityOption(CommandLine app, int& quality);

// Prints a line if the focus was `blurred` in some of `count` frames, as
// Renderer::kCpu may leave it.
void ReportBlurredFocus(int blurred, int count);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_SHARED_OPTIONS_H_
