// Turns standard output aside while the library works.
#include "library_output.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iostream>

#include "library_log.h"
#include "tool_error.h"

namespace zuqel::tools {
namespace {

// The library prints through the same buffer as the program, so what stands in
// it goes out before its target changes.
void PointOutputAt(int target) {
  static_cast<void>(std::fflush(stdout));
  dup2(target, STDOUT_FILENO);
}

}  // namespace

LibraryOutput::LibraryOutput()
    : program_output_(fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0)) {
  if (program_output_ < 0) return;
  aside_ = memfd_create("library_output", MFD_CLOEXEC);
  if (aside_ < 0) {
    const std::string reason = std::strerror(errno);
    close(program_output_);
    throw WorkError("standard output cannot be turned aside: " + reason);
  }
  PointOutputAt(aside_);
}

LibraryOutput::~LibraryOutput() {
  if (program_output_ < 0) return;
  if (LibraryLogIsShown()) std::cerr << Text();
  PointOutputAt(program_output_);
  close(program_output_);
  close(aside_);
}

std::string LibraryOutput::Text() const {
  static_cast<void>(std::fflush(stdout));
  std::string text;
  std::array<char, 1024> piece;
  ssize_t size = 0;
  while ((size = pread(aside_, piece.data(), piece.size(),
                       static_cast<off_t>(text.size()))) > 0) {
    text.append(piece.data(), static_cast<size_t>(size));
  }
  return text;
}

}  // namespace zuqel::tools
