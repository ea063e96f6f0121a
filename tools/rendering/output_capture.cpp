// Keeps what the library prints out of the program's standard output.
#include "rendering/output_capture.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iostream>

#include "rendering/library_log.h"
#include "tool_error.h"

namespace zuqel::tools {
namespace {

// The library prints through the program's own stdio buffer, so that is flushed
// before its target changes.
void RedirectOutput(int target) {
  static_cast<void>(std::fflush(stdout));
  dup2(target, STDOUT_FILENO);
}

}  // namespace

OutputCapture::OutputCapture()
    : program_output_(fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0)) {
  if (program_output_ < 0) return;
  captured_ = memfd_create("captured_output", MFD_CLOEXEC);
  if (captured_ < 0) {
    const std::string reason = std::strerror(errno);
    close(program_output_);
    throw WorkError("standard output cannot be captured: " + reason);
  }
  RedirectOutput(captured_);
}

OutputCapture::~OutputCapture() {
  if (program_output_ < 0) return;
  if (LibraryLogIsShown()) std::cerr << Text();
  RedirectOutput(program_output_);
  close(program_output_);
  close(captured_);
}

std::string OutputCapture::Text() const {
  static_cast<void>(std::fflush(stdout));
  std::string text;
  std::array<char, 1024> piece;
  ssize_t size = 0;
  while ((size = pread(captured_, piece.data(), piece.size(),
                       static_cast<off_t>(text.size()))) > 0) {
    text.append(piece.data(), static_cast<size_t>(size));
  }
  return text;
}

}  // namespace zuqel::tools
