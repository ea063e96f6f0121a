// Standard input and output in the place of files.
#include "files/standard_streams.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "tool_error.h"

namespace zuqel::tools {
namespace {

// A process has one of each, so their state is global.
struct StreamState {
  bool output_was_closed = false;
  bool input_is_taken = false;
  int reserved_output = -1;
};

StreamState& State() {
  static StreamState state;
  return state;
}

// Not as one of the standard streams.
int Duplicate(int file) {
  const int copy = fcntl(file, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  if (copy >= 0) return copy;
  throw WorkError(std::string("-: cannot be opened: ") + std::strerror(errno));
}

}  // namespace

bool IsStandardStream(const std::string& path) {
  return path == "-";
}

void OpenStandardStreams() {
  while (true) {
    const int file = open("/dev/null", O_RDWR);
    if (file == STDOUT_FILENO) State().output_was_closed = true;
    if (file > STDERR_FILENO) close(file);
    if (file < 0 || file > STDERR_FILENO) return;
  }
}

int TakeStandardInput() {
  if (State().input_is_taken) {
    throw InputError("-: is given for two inputs");
  }
  State().input_is_taken = true;
  return Duplicate(STDIN_FILENO);
}

void ReserveStandardOutput() {
  if (State().output_was_closed) throw WorkError("-: is closed");
  if (isatty(STDOUT_FILENO) == 1) {
    throw InputError("-: is a terminal; send the output to a file or a pipe");
  }
  // What is printed already belongs to where it was printed to.
  static_cast<void>(std::fflush(stdout));
  State().reserved_output = Duplicate(STDOUT_FILENO);
  dup2(STDERR_FILENO, STDOUT_FILENO);
}

int OpenReservedOutput() {
  return Duplicate(State().reserved_output);
}

}  // namespace zuqel::tools
