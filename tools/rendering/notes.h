// What users are told about a rendering beside its result.
#ifndef ZUQEL_TOOLS_RENDERING_NOTES_H_
#define ZUQEL_TOOLS_RENDERING_NOTES_H_

#include <string>

namespace zuqel::tools {

// Prints a line to standard error; nothing if it is empty. A command that fails
// prints its failure alone, so notes come after the work.
void PrintNote(const std::string& note);

// Prints a line if the focus was `blurred` in some of `count` frames, as
// Renderer::kCpu may leave it.
void ReportBlurredFocus(int blurred, int count);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_RENDERING_NOTES_H_
