// zuqel calibration: inspects and encrypts calibration containers.
#include "calib/calibration.h"

#include <zuQelRT_GL.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <sstream>
#include <string>

#include "calib/built_in_keys.h"
#include "calibration/container_seal.h"
#include "calibration/key_file.h"
#include "commands/command.h"
#include "commands/shared_options.h"
#include "files/file_bytes.h"
#include "photo/output_files.h"
#include "tool_error.h"

namespace zuqel::tools {
namespace {

struct InspectOptions {
  std::string container, key;
  int layout = 1;
};

struct SealOptions {
  std::string container, key, output;
};

struct StatusText {
  uint32_t status;
  const char* text;
};

constexpr std::array<StatusText, 9> kStatusTexts = {{
    {ZUQEL_CALIB_BAD_LENGTH, "no container has this length"},
    {ZUQEL_CALIB_NOT_DECRYPTED,
     "a record does not decrypt: no key, another key, or damage"},
    {ZUQEL_CALIB_BAD_VERSION, "a record's version is below 2"},
    {ZUQEL_CALIB_BAD_COUNT, "a record's count equals neither of its parts"},
    {ZUQEL_CALIB_BAD_FIRST_COUNT, "a record's count at byte 4 is below 1"},
    {ZUQEL_CALIB_BAD_SECOND_COUNT, "a record's count at byte 244 is below 1"},
    {ZUQEL_CALIB_NO_BLOCK, "there is nothing to decode"},
    {ZUQEL_CALIB_NO_PAYLOAD, "no container follows the key"},
    {ZUQEL_CALIB_NO_KEY, "the key cannot be unwrapped"},
}};

std::string Explain(uint32_t status) {
  std::ostringstream text;
  text << "0x" << std::hex << status;
  for (const StatusText& row : kStatusTexts) {
    if (row.status == status) text << ": " << row.text;
  }
  return text.str();
}

// Saturated: no container has a size past 32 bits.
uint32_t SizeOf(const Bytes& block) {
  return static_cast<uint32_t>(std::min<size_t>(block.size(), UINT32_MAX));
}

calib::CalibrationRecord Decode(const std::string& path,
                                const calib::CalibrationInput& input) {
  calib::CalibrationRecord record;
  const uint32_t status = calib::DecodeCalibration(input, record);
  if (status != ZUQEL_SUCCESS) throw InputError(path + ": " + Explain(status));
  return record;
}

void Inspect(const InspectOptions& options) {
  const Bytes container = ReadFile(options.container);
  calib::CalibrationInput input = {.block_a = container.data(),
                                   .block_a_size = SizeOf(container),
                                   .selector = options.layout - 1,
                                   .default_keys = calib::BuiltInKeys()};
  SecondBlock second;
  if (!options.key.empty()) {
    ReadSecondBlock(options.key, second);
    input.block_b = second.bytes.values.data();
    input.block_b_size = second.size;
  }
  const calib::CalibrationRecord record = Decode(options.container, input);
  const calib::CameraValues values =
      calib::TakeCameraValues(record).value_or(calib::CameraValues());
  std::printf("kind                  %d\n", record.kind);
  std::printf("records               %u\n", record.count);
  std::printf("record                %u\n", record.index);
  std::printf("focal length          %.9g\n", values.focal_length);
  std::printf("focal length divisor  %.9g\n", values.focal_length_divisor);
  std::printf("third value           %.9g\n", values.third);
}

void Seal(const SealOptions& options) {
  OutputFiles outputs;
  outputs.Announce(options.output);
  const Bytes plain = ReadFile(options.container);
  calib::SecretBytes<kKeySize> key;
  ReadKey(options.key, key);
  Bytes sealed;
  try {
    sealed = SealContainer(plain, key.values);
  } catch (const InputError& error) {
    throw InputError(options.container + ": " + error.what());
  }
  // Write nothing that an initialisation would refuse.
  Decode(options.container, {.block_a = sealed.data(),
                             .block_a_size = SizeOf(sealed),
                             .block_b = key.values.data(),
                             .block_b_size = kKeySize});
  outputs.Write(options.output, sealed);
  outputs.Commit();
}

Command AddInspect(CommandLine group) {
  CommandLine app = group.AddCommand(
      "inspect", "Print what initialisation reads from a container");
  auto options = std::make_shared<InspectOptions>();
  app.AddOption("FILE", options->container,
                "The container, plain or encrypted; an empty file\n"
                "when it follows the key")
      .TypeName("")
      .Required();
  AddFileOption(app, "--key", options->key,
                "64 hex digits, or the camera module's second block; else\n"
                "this build's default keys are used");
  app.AddOption("--layout", options->layout,
                "Camera layout, 1 (the default) to 4, which picks the\n"
                "half of a kind-4 container")
      .Range(1, 4);
  app.Footer(
      "Examples:\n"
      "  zuqel calibration inspect sealed.bin --key key.hex");
  return {app, [options] { Inspect(*options); }};
}

Command AddSeal(CommandLine group) {
  CommandLine app = group.AddCommand("seal", "Encrypt a plain container");
  auto options = std::make_shared<SealOptions>();
  app.AddOption("FILE", options->container, "The plain container")
      .TypeName("")
      .Required();
  AddFileOption(app, "--key", options->key, "64 hex digits or 32 bytes")
      .Required();
  AddFileOption(app, "-o,--output", options->output, "The encrypted container")
      .Required();
  app.Footer(
      "Examples:\n"
      "  zuqel calibration seal plain.bin --key key.hex -o sealed.bin");
  return {app, [options] { Seal(*options); }};
}

}  // namespace

Command AddCalibrationCommand(CommandLine program) {
  CommandLine app = program.AddCommand(
      "calibration", "Inspect or encrypt a calibration container");
  app.RequireCommand();
  app.Footer(
      "`zuqel calibration COMMAND --help` has the details and an example.");
  const std::array commands = {AddInspect(app), AddSeal(app)};
  return {app, [commands] {
            for (const Command& command : commands) {
              if (command.options.IsGiven()) command.run();
            }
          }};
}

}  // namespace zuqel::tools
