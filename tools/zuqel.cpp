// zuqel: the library on the command line.
#include <zuQelRT_GL.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <exception>
#include <iostream>
#include <new>
#include <optional>
#include <string>

#include "commands/command.h"
#include "coordinates.h"
#include "files/file_bytes.h"
#include "files/standard_streams.h"
#include "files/temporary_path.h"
#include "image.h"
#include "rendering/library_log.h"
#include "system/device_choice.h"
#include "tool_error.h"

namespace {

using zuqel::tools::Command;

constexpr int kExitWorkFailed = 1;
constexpr int kExitBadInput = 2;
constexpr int kExitClosedPipe = 128 + SIGPIPE;

std::string Version() {
  std::array<char, ZUQEL_VERSION_BUFFER_SIZE> text = {};
  zuQel_GLVersionInfo_Get(text.data(), static_cast<int32_t>(text.size()));
  return std::string("zuqel ") + text.data();
}

int Fail(int exit_code, const char* message) {
  std::cerr << "zuqel: " << message << "\n";
  return exit_code;
}

void FlushOutput() {
  if (!std::cout.flush() || std::fflush(stdout) != 0) {
    if (errno == EPIPE) throw zuqel::tools::ClosedPipe();
    throw zuqel::tools::WorkError(
        std::string("standard output cannot be written: ") +
        std::strerror(errno));
  }
}

int Run(int argc, char** argv) {
  using zuqel::tools::kLargestFile, zuqel::tools::kLargestSide,
      zuqel::tools::ToText;
  zuqel::tools::Program program(
      "zuqel", "Synthetic shallow depth of field from stereo disparity",
      Version);
  zuqel::tools::CommandLine options = program.Options();
  bool verbose = false;
  options.AddFlag("--verbose", verbose, "Show the library's log and output");
  std::optional<int> device;
  options
      .AddOption("--device", device,
                 "Draw on the GPU of this number; zuqel info lists them")
      .TypeName("N");
  options.RequireCommand();
  options.Footer(
      "Reads files of up to " + std::to_string(kLargestFile >> 20) +
      " MiB, videos of any length, and pictures of up to\n" +
      ToText({kLargestSide, kLargestSide}) +
      " pixels. In the place of an input file, - is standard input;\n"
      "in that of an output, standard output: PNG, or y4m from sequence. Then\n"
      "messages go to standard error.\n"
      "\n"
      "Exit code: 0, 2 for bad arguments or inputs, 1 for anything else, such "
      "as\nan output that cannot be written.\n"
      "\n"
      "`zuqel COMMAND --help` has the details and an example.");
  const std::array commands = {
      zuqel::tools::AddRenderCommand(options),
      zuqel::tools::AddDepthCommand(options),
      zuqel::tools::AddRefocusMapCommand(options),
      zuqel::tools::AddSequenceCommand(options),
      zuqel::tools::AddReportCommand(options),
      zuqel::tools::AddDemoCommand(options),
      zuqel::tools::AddViewCommand(options),
      zuqel::tools::AddRawCommand(options),
      zuqel::tools::AddCalibrationCommand(options),
      zuqel::tools::AddInfoCommand(options),
  };
  if (const auto exit_code = program.Parse(argc, argv)) return *exit_code;
  zuqel::tools::CaptureLibraryLog(verbose);
  if (device) zuqel::tools::UseDevice(*device);
  for (const Command& command : commands) {
    if (command.options.IsGiven()) command.run();
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    zuqel::tools::OpenStandardStreams();
    zuqel::tools::RemoveTemporaryPathsOnSignals();
    const int exit_code = Run(argc, argv);
    FlushOutput();
    return exit_code;
  } catch (const zuqel::tools::InputError& error) {
    return Fail(kExitBadInput, error.what());
  } catch (const zuqel::tools::ClosedPipe&) {
    return kExitClosedPipe;
  } catch (const std::bad_alloc&) {
    return Fail(kExitWorkFailed, "out of memory");
  } catch (const std::exception& error) {
    return Fail(kExitWorkFailed, error.what());
  }
}
