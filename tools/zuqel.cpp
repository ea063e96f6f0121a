// zuqel: the library on the command line.
#include <zuQelRT_GL.h>

#include <array>
#include <exception>
#include <iostream>
#include <new>
#include <string>

#include "command.h"
#include "library_log.h"
#include "tool_error.h"

namespace {

using zuqel::tools::Command;

constexpr int kExitWorkFailed = 1;
constexpr int kExitBadInput = 2;

std::string Version() {
  std::array<char, ZUQEL_VERSION_BUFFER_SIZE> text = {};
  zuQel_GLVersionInfo_Get(text.data(), static_cast<int32_t>(text.size()));
  return std::string("zuqel ") + text.data();
}

int Fail(int exit_code, const char* message) {
  std::cerr << "zuqel: " << message << "\n";
  return exit_code;
}

int Run(int argc, char** argv) {
  zuqel::tools::Program program(
      "zuqel", "Synthetic shallow depth of field from stereo disparity",
      Version);
  zuqel::tools::CommandLine options = program.Options();
  bool verbose = false;
  options.AddFlag("--verbose", verbose, "Show the library's log and output");
  options.RequireCommand();
  options.Footer("`zuqel COMMAND --help` has the details and an example.");
  const std::array commands = {
      zuqel::tools::AddRenderCommand(options),
      zuqel::tools::AddRefocusMapCommand(options),
      zuqel::tools::AddSequenceCommand(options),
      zuqel::tools::AddDemoCommand(options),
      zuqel::tools::AddRawCommand(options),
      zuqel::tools::AddCalibrationCommand(options),
  };
  if (const auto exit_code = program.Parse(argc, argv)) return *exit_code;
  zuqel::tools::CaptureLibraryLog(verbose);
  for (const Command& command : commands) {
    if (command.options.IsGiven()) command.run();
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Run(argc, argv);
  } catch (const zuqel::tools::InputError& error) {
    return Fail(kExitBadInput, error.what());
  } catch (const std::bad_alloc&) {
    return Fail(kExitWorkFailed, "out of memory");
  } catch (const std::exception& error) {
    return Fail(kExitWorkFailed, error.what());
  }
}
