// The library's log, which commands hide by default.
#include "rendering/library_log.h"

#include <android/log.h>

#include <iostream>
#include <string_view>

namespace zuqel::tools {
namespace {

// The logger is a plain function, so its state is global.
struct LogState {
  bool verbose = false;
  std::string context_failure;
};

LogState& State() {
  static LogState state;
  return state;
}

bool ReportsContextFailure(std::string_view line) {
  return line.substr(0, 3) == "egl" &&
         (line.find("failed") != std::string_view::npos ||
          line.find("EGL_NO_DISPLAY") != std::string_view::npos);
}

void OnLine(const __android_log_message* line) {
  LogState& state = State();
  if (state.context_failure.empty() && ReportsContextFailure(line->message)) {
    state.context_failure = line->message;
  }
  if (!state.verbose) return;
  std::string_view message = line->message;
  if (message.ends_with('\n')) message.remove_suffix(1);
  std::cerr << line->tag << ": " << message << "\n";
}

}  // namespace

void CaptureLibraryLog(bool verbose) {
  State().verbose = verbose;
  __android_log_set_logger(OnLine);
}

bool LibraryLogIsShown() {
  return State().verbose;
}

std::string ContextFailure() {
  return State().context_failure;
}

}  // namespace zuqel::tools
