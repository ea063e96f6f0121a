// Turns standard output aside while the library works.
#include "library_output.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

#include "library_log.h"

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
  if (LibraryLogIsShown()) {
    PointOutputAt(STDERR_FILENO);
    return;
  }
  const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
  if (nowhere < 0) return;
  PointOutputAt(nowhere);
  close(nowhere);
}

LibraryOutput::~LibraryOutput() {
  if (program_output_ < 0) return;
  PointOutputAt(program_output_);
  close(program_output_);
}

}  // namespace zuqel::tools
