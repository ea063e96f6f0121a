// zuqel: the library on the command line.
#include <zuQelRT_GL.h>

#include <array>
#include <exception>
#include <iostream>
#include <new>
#include <string>
#include <vector>

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

// An unknown word is reported before missing options.
std::string Explain(const CLI::App& program, const CLI::ParseError& error) {
  const std::vector<std::string> unknown = program.remaining(true);
  if (unknown.empty()) return error.what();
  return "unknown option or command: " + unknown.front();
}

int Run(int argc, char** argv) {
  CLI::App program("Synthetic shallow depth of field from stereo disparity");
  program.name("zuqel");
  program.set_version_flag("--version", Version);
  bool verbose = false;
  program.add_flag("--verbose", verbose, "Show the library's log and output");
  program.require_subcommand(1);
  program.fallthrough();
  program.footer("`zuqel COMMAND --help` has the details and an example.");
  const std::array commands = {
      zuqel::tools::AddRenderCommand(program),
      zuqel::tools::AddRefocusMapCommand(program),
      zuqel::tools::AddSequenceCommand(program),
      zuqel::tools::AddDemoCommand(program),
      zuqel::tools::AddRawCommand(program),
      zuqel::tools::AddCalibrationCommand(program),
  };
  try {
    program.parse(argc, argv);
  } catch (const CLI::Success& help_or_version) {
    return program.exit(help_or_version);
  } catch (const CLI::ParseError& error) {
    return Fail(kExitBadInput, Explain(program, error).c_str());
  }
  zuqel::tools::CaptureLibraryLog(verbose);
  for (const Command& command : commands) {
    if (command.options->parsed()) command.run();
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
