// zuqel raw: turns a frame dump of the library into a picture.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "commands/command.h"
#include "commands/shared_options.h"
#include "coordinates.h"
#include "files/file_bytes.h"
#include "image.h"
#include "photo/nv21.h"
#include "photo/output_files.h"
#include "tool_error.h"

namespace zuqel::tools {
namespace {

struct RawOptions {
  std::string file, size, kind, output;
  bool is_rgb = false;
};

struct Kind {
  const char* name;
  const char* tag;  // in the names of dumps
  size_t pixel_bytes;
};
constexpr Kind kLuma = {"luma", "Bokeh", 1};
constexpr Kind kWeights = {"weights", "RM", 1};
constexpr Kind kOutput = {"output", "Output", 4};
constexpr std::array<const Kind*, 3> kKinds = {&kLuma, &kWeights, &kOutput};

struct Dump {
  const Kind* kind = nullptr;
  Size size;
};

// Parses the name that the library gave a dump; nothing if it is another name.
// A folder property without its final slash puts the folder's name in front.
std::optional<Dump> ParseName(const std::string& path) {
  const std::string name = std::filesystem::path(path).filename();
  for (const Kind* kind : kKinds) {
    const std::string start = std::string("GL") + kind->tag + "_";
    const size_t found = name.find(start);
    if (found == std::string::npos) continue;
    const size_t from = found + start.size();
    const size_t version = name.find("_v", from);
    if (version == std::string::npos) continue;
    const auto size = ParseSize(name.substr(from, version - from));
    if (size) return Dump{kind, *size};
  }
  return std::nullopt;
}

const Kind* KindNamed(const std::string& name) {
  const auto* const found =
      std::find_if(kKinds.begin(), kKinds.end(),
                   [&](const Kind* kind) { return kind->name == name; });
  return found == kKinds.end() ? nullptr : *found;
}

// Combines the name with the options, which must not contradict it.
Dump Identify(const RawOptions& options) {
  const std::optional<Dump> named = ParseName(options.file);
  if (!named && (options.size.empty() || options.kind.empty())) {
    throw InputError(options.file +
                     ": the name does not give size and kind; add --size "
                     "and --kind");
  }
  Dump dump = named.value_or(Dump{});
  if (!options.size.empty()) dump.size = ParseSizeOption(options.size);
  if (!options.kind.empty()) dump.kind = KindNamed(options.kind);
  if (named && named->size != dump.size) {
    throw InputError("--size " + options.size + ": the name says " +
                     ToText(named->size));
  }
  if (named && named->kind != dump.kind) {
    throw InputError("--kind " + options.kind + ": the name says " +
                     named->kind->name);
  }
  CheckSize(named ? options.file : "--size", dump.size);
  if (options.is_rgb && dump.kind != &kOutput) {
    throw InputError(std::string("--rgb: is for output; this is ") +
                     dump.kind->name);
  }
  return dump;
}

std::vector<uint8_t> ReadDump(const std::string& path, const Dump& dump) {
  std::vector<uint8_t> bytes = ReadFile(path);
  const size_t expected =
      PixelCount(dump.size.width, dump.size.height) * dump.kind->pixel_bytes;
  if (bytes.size() != expected) {
    throw InputError(path + ": has " + std::to_string(bytes.size()) +
                     " bytes; " + dump.kind->name + " of " + ToText(dump.size) +
                     " has " + std::to_string(expected));
  }
  return bytes;
}

// Pixels have four bytes; the last is unused.
Picture ColourPicture(Size size, const std::vector<uint8_t>& bytes,
                      bool is_rgb) {
  Picture picture(size.width, size.height);
  uint8_t* rgb = picture.rgb.data();
  for (size_t i = 0; i < bytes.size(); i += 4, rgb += 3) {
    const uint8_t* pixel = &bytes[i];
    if (is_rgb) {
      std::copy_n(pixel, 3, rgb);
    } else {
      YuvToRgb(pixel[0], pixel[1], pixel[2], rgb);
    }
  }
  return picture;
}

void Run(const RawOptions& options) {
  const Dump dump = Identify(options);
  OutputFiles outputs;
  outputs.Announce(options.output);
  std::vector<uint8_t> bytes = ReadDump(options.file, dump);
  if (dump.kind == &kOutput) {
    outputs.Write(options.output,
                  ColourPicture(dump.size, bytes, options.is_rgb));
  } else {
    Map<uint8_t> grey(dump.size.width, dump.size.height);
    grey.values = std::move(bytes);
    outputs.Write(options.output, grey);
  }
  outputs.Commit();
}

}  // namespace

Command AddRawCommand(CommandLine program) {
  CommandLine app = program.AddCommand(
      "raw", "Turn a frame dump of the library into a picture");
  auto options = std::make_shared<RawOptions>();
  app.AddOption("FILE", options->file,
                "The dump; its name gives size and kind unless it was renamed")
      .TypeName("")
      .Required();
  app.AddOption("--size", options->size, "Width and height in pixels")
      .TypeName("WxH");
  app.AddOption("--kind", options->kind,
                "luma and weights, one byte per pixel, become 8-bit grey;\n"
                "output, four bytes per pixel, becomes a colour picture")
      .TypeName("luma|weights|output")
      .Check([](const std::string& name) {
        return KindNamed(name) == nullptr
                   ? name + " is not luma, weights or output"
                   : std::string();
      });
  app.AddFlag("--rgb", options->is_rgb,
              "The output's channels are R, G, B, as when the library\n"
              "renders to a screen; off screen they are Y, U, V");
  AddFileOption(app, "-o,--output", options->output, "The picture, PNG")
      .Required();
  app.Footer(
      "Examples:\n"
      "  zuqel raw GLOutput_*_0007_*.raw -o output.png");
  return {app, [options] { Run(*options); }};
}

}  // namespace zuqel::tools
