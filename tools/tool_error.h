// The ways in which a command fails; main() turns them into one line on
// standard error, if any, and an exit code.
#ifndef ZUQEL_TOOLS_TOOL_ERROR_H_
#define ZUQEL_TOOLS_TOOL_ERROR_H_

#include <exception>
#include <stdexcept>

namespace zuqel::tools {

// The user's input cannot be used. Exit code 2.
class InputError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The input is good, but the work failed. Exit code 1.
class WorkError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Nobody reads the output any more, as after `| head`: not worth a line. Where
// SIGPIPE is not ignored, it has ended the program before; the exit code is the
// one that shells give for that.
class ClosedPipe : public std::exception {};

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_TOOL_ERROR_H_
