// What the command-line program reads besides pictures: sizes, points, name
// patterns, frame dumps, keys and calibrations.
#include <array>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "commands/command.h"
#include "coordinates.h"
#include "image_samples.h"
#include "input.h"
#include "rendering/refocus_map.h"
#include "require.h"
#include "series/file_series.h"
#include "tool_error.h"

namespace zuqel::fuzz {
namespace {

std::string Text(Input& input, size_t longest) {
  const auto bytes = input.Bytes(input.Between<size_t>(0, longest));
  return {bytes.begin(), bytes.end()};
}

// Two numbers, often around a limit, and in part any text.
std::string PairText(Input& input, char separator, int limit) {
  const auto number = [&] {
    return std::to_string(input.Flag() ? input.Between(limit - 2, limit + 2)
                                       : input.AnyInteger());
  };
  const std::string pair = number() + separator + number();
  return input.Between(0, 3) == 0 ? Text(input, 24) : pair;
}

void ReadSize(Input& input) {
  const std::string text = PairText(input, 'x', tools::kLargestSide);
  const auto size = tools::ParseSize(text);
  if (!size) return;
  Require(tools::ParseSize(tools::ToText(*size)) == size, "size as text");
  tools::CheckSize(text, *size);
  Require(size->width > 0 && size->width <= tools::kLargestSide &&
              size->height > 0 && size->height <= tools::kLargestSide,
          "size in range");
}

void ReadPoint(Input& input) {
  const tools::Size size = {input.Between(0, 3), input.Between(0, 99)};
  const auto [x, y] = tools::ParseFocusPoint(
      "--focus", PairText(input, ',', size.width), "picture", size);
  Require(x >= 0 && y >= 0 && x < size.width && y < size.height,
          "point inside");
}

void ReadPattern(Input& input) {
  const int number = input.Between(0, INT32_MAX);
  const tools::FileSeries series("--images", Text(input, 16));
  Require(series.Name(number).find(std::to_string(number)) != std::string::npos,
          "number in a name");
}

void ReadGenerator(Input& input) {
  const std::string name = Text(input, 20);
  Require(tools::CheckGeneratorName(name).empty() ==
              (tools::GeneratorNamed(name) != nullptr),
          "generator by its name");
}

const tools::TemporaryFolder& Folder() {
  static const tools::TemporaryFolder folder;
  return folder;
}

// The same file in each run, since the program remembers what it has read.
std::string WriteInput(const std::string& name,
                       const std::vector<uint8_t>& bytes) {
  std::string path = Folder() / name;
  std::ofstream file(path, std::ios::binary);
  file.write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
  return path;
}

void RunCommand(tools::Command (*add)(tools::CommandLine),
                std::vector<std::string> arguments) {
  tools::Program program("zuqel", "", [] { return std::string(); });
  const tools::Command command = add(program.Options());
  arguments.insert(arguments.begin(), "zuqel");
  std::vector<char*> pointers;
  pointers.reserve(arguments.size());
  for (std::string& argument : arguments) pointers.push_back(argument.data());
  const auto count = static_cast<int>(pointers.size());
  if (!program.Parse(count, pointers.data())) command.run();
}

// A dump, under a name as the library gives them or with options.
void ReadDump(Input& input) {
  const std::array<std::string, 4> kinds = {"luma", "weights", "output", "x"};
  const std::array<std::string, 4> tags = {"GLBokeh_", "GLRM_", "GLOutput_",
                                           ""};
  const tools::Size size = {input.Between(-1, 9), input.Between(-1, 9)};
  const auto kind = input.Between<size_t>(0, kinds.size() - 1);
  const bool is_named = input.Flag(), is_rgb = input.Flag();
  const std::string other_size = Text(input, input.Flag() ? 6 : 0);
  std::string name = tags[kind] + tools::ToText(size) + "_v" + Text(input, 4);
  for (char& c : name) c = c == '/' || c == '\0' ? '_' : c;
  const size_t pixel = kind == 2 ? 4 : 1;
  const int bytes = std::max(0, size.width * size.height) * int(pixel);
  const std::string written =
      WriteInput("dump", input.Bytes(static_cast<size_t>(bytes)));
  const std::string named = Folder() / (is_named ? name : "dump");
  std::filesystem::rename(written, named);
  const std::string output = Folder() / "out.png";
  std::vector<std::string> arguments = {"raw", named, "-o", output};
  if (!is_named || !other_size.empty()) {
    const std::string text =
        other_size.empty() ? tools::ToText(size) : other_size;
    arguments.insert(arguments.end(), {"--size", text, "--kind", kinds[kind]});
  }
  if (is_rgb) arguments.emplace_back("--rgb");
  try {
    RunCommand(tools::AddRawCommand, arguments);
  } catch (const tools::InputError&) {
  }
  std::filesystem::rename(named, written);
  std::filesystem::remove(output);
}

void ReadKey(Input& input) {
  const size_t length = input.OneOf(std::array<size_t, 5>{64, 65, 32, 40, 9});
  const bool has_digits = input.Flag(), seals = input.Flag();
  const size_t container =
      input.OneOf(std::array<size_t, 5>{464, 512, 1547, 1488, 7});
  const std::string layout = std::to_string(input.Between(0, 5));
  std::vector<uint8_t> key = input.Bytes(length);
  for (uint8_t& byte : key) {
    if (has_digits)
      byte = static_cast<uint8_t>("0123456789abcdefAB\n"[byte % 19]);
  }
  const std::string key_path = WriteInput("key", key);
  const std::string path = WriteInput("container", input.Bytes(container));
  const std::string output = Folder() / "sealed";
  try {
    if (seals) {
      RunCommand(
          tools::AddCalibrationCommand,
          {"calibration", "seal", path, "--key", key_path, "-o", output});
    } else {
      RunCommand(tools::AddCalibrationCommand,
                 {"calibration", "inspect", path, "--key", key_path, "--layout",
                  layout});
    }
  } catch (const tools::InputError&) {
  }
  std::filesystem::remove(output);
}

constexpr std::array kReaders = {ReadSize,      ReadPoint, ReadPattern,
                                 ReadGenerator, ReadDump,  ReadKey};

}  // namespace

void Run(Input& input) {
  try {
    input.OneOf(kReaders)(input);
  } catch (const tools::InputError&) {
    return;  // which is what bad input is for
  }
}

}  // namespace zuqel::fuzz
