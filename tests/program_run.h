// Runs the zuqel program as a child process.
#ifndef ZUQEL_TESTS_PROGRAM_RUN_H_
#define ZUQEL_TESTS_PROGRAM_RUN_H_

#include <gtest/gtest.h>

#include <array>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "image_samples.h"

namespace zuqel::tools {

struct Outcome {
  int exit_code = -1;
  std::string out, err;
};

// Arguments, separated by spaces, or a script; and a piece of what is printed.
using Cases = std::vector<std::pair<std::string, std::string>>;

// Settings of the environment, NAME=value.
using Settings = std::span<const char* const>;
// The system's own loader, without a driver to load.
inline constexpr std::array kNoGl = {"__EGL_VENDOR_LIBRARY_FILENAMES=/none",
                                     "LD_LIBRARY_PATH="};
// The driver's libraries are unloaded with the session, so the leak checker
// cannot tell what they still hold from what is lost. The library's own tests
// look for leaks of a session.
inline constexpr std::array kGl = {"ASAN_OPTIONS=detect_leaks=0"};

std::string ReadText(const std::string& path);

std::string Concat(std::initializer_list<std::string_view> parts);

// The program in a folder of its own.
class CommandLine : public testing::Test {
 protected:
  [[nodiscard]] std::string File(const std::string& name) const {
    return folder_ / name;
  }
  [[nodiscard]] Outcome Run(const std::string& arguments,
                            Settings settings = kNoGl) const;
  // Runs a script of the shell, which finds the program as zuqel.
  [[nodiscard]] Outcome Shell(const std::string& script,
                              Settings settings = kNoGl) const;

  // Each is refused in one line, and no file is touched.
  void ExpectRefused(const Cases& cases, int exit_code = 2,
                     Outcome (CommandLine::*run)(const std::string&, Settings)
                         const = &CommandLine::Run) const;

 private:
  [[nodiscard]] Outcome Start(const char* program,
                              std::vector<std::string> arguments,
                              Settings settings) const;

  const TemporaryFolder folder_;
};

}  // namespace zuqel::tools

#endif  // ZUQEL_TESTS_PROGRAM_RUN_H_
