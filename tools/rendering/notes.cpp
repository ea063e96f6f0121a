// What users are told about a rendering beside its result.
#include "rendering/notes.h"

#include <cstdio>
#include <iostream>
#include <string>

namespace zuqel::tools {

void PrintNote(const std::string& note) {
  if (!note.empty()) std::cerr << note << "\n";
}

void ReportBlurredFocus(int blurred, int count) {
  if (blurred == 0) return;
  const std::string frames = count == 1
                                 ? std::string()
                                 : " in " + std::to_string(blurred) + " of " +
                                       std::to_string(count) + " frames";
  std::printf(
      "the background is in focus%s: the CPU renderer blurs it anyway; "
      "--renderer gpu keeps it sharp\n",
      frames.c_str());
}

}  // namespace zuqel::tools
