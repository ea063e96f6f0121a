// The choice between the renderers, as people make it and hear of it.
#ifndef ZUQEL_TOOLS_RENDERER_CHOICE_H_
#define ZUQEL_TOOLS_RENDERER_CHOICE_H_

#include <CLI/CLI.hpp>

#include "bokeh_session.h"

namespace zuqel::tools {

// Adds --renderer; `renderer` holds its default.
void AddRendererOption(CLI::App& app, Renderer& renderer);

// Prints a line when the focus was `blurred` in some of `count` frames.
void TellOfBlurredFocus(int blurred, int count);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_RENDERER_CHOICE_H_
