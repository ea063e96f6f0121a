// Writes a few inputs for each target: noise, and what readers take.
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "heif_samples.h"
#include "image_samples.h"
#include "photo/image_file.h"
#include "photo_samples.h"
#include "random.h"
#include "report/json_files.h"

namespace {

namespace fs = std::filesystem;
namespace tools = zuqel::tools;
using Bytes = std::vector<uint8_t>;

constexpr auto kTargets = {"calibration", "commands", "cpu_calls",
                           "depth",       "masks",    "photos",
                           "pictures",    "planes",   "session"};

// The reader and whether check sums are repaired come last in an input, and
// before them the options of a map.
void AddPicture(const std::string& file, Bytes bytes, uint8_t reader) {
  if (reader == 3) bytes.insert(bytes.end(), 5, 0);
  bytes.insert(bytes.end(), {1, reader});
  tools::WriteBytes(file, bytes);
}

void WritePictures(const fs::path& folder) {
  const std::string png = folder / "file.png";
  const tools::Picture picture = tools::NoisePicture(8, 6);
  AddPicture(folder / "jpeg", tools::Jpeg(picture), 0);
  tools::WritePicture(picture, png);
  AddPicture(folder / "picture", tools::ReadBytes(png), 0);
  tools::WriteDisparity(tools::DisparityMap(5, 4), png);
  AddPicture(folder / "disparity", tools::ReadBytes(png), 1);
  AddPicture(folder / "map16", tools::ReadBytes(png), 3);
  tools::WriteGrey(tools::WeightMap(5, 4), png);
  AddPicture(folder / "weights", tools::ReadBytes(png), 2);
  AddPicture(folder / "map8", tools::ReadBytes(png), 3);
  const std::string pfm = "Pf\n2 1\n-1\n\1\2\3\4\5\6\7\x3f";
  AddPicture(folder / "pfm", {pfm.begin(), pfm.end()}, 3);
  const std::string y4m =
      "YUV4MPEG2 W2 H2 F25:1 Ip A1:1 C420jpeg XCOLORRANGE=FULL\nFRAME\n"
      "abcdefFRAME Ip\nghijkl";
  AddPicture(folder / "y4m", {y4m.begin(), y4m.end()}, 4);
  fs::remove(png);
}

void WritePhotos(const fs::path& folder) {
  enum : uint8_t { kFile, kPacket, kExtended, kExif, kTurns, kHeif };
  constexpr uint8_t kMeta = 6, kReport = 7;
  const auto add = [&](const char* name, tools::Bytes bytes, uint8_t kind) {
    bytes.push_back(kind);
    tools::WriteBytes(folder / name, bytes);
  };
  const auto add_text = [&](const char* name, const std::string& text,
                            uint8_t kind) {
    add(name, {text.begin(), text.end()}, kind);
  };
  add_text("meta", R"({"title": "t", "focus_points_64x48": [{"x": 1, "y": 2,
           "what": "\u00fc"}]})",
           kMeta);
  tools::ReportEntry entry;
  entry.f_number = 2.8;
  entry.picture.stem = "stem";
  add_text("report", tools::ToJson({entry, entry}), kReport);
  const auto add_packet = [&](const char* name, const std::string& packet) {
    const std::string file = tools::Text(tools::DynamicDepth("")),
                      both = packet + file;
    add_text(name, both, kPacket);
  };
  const std::string gdepth = tools::Packet(tools::GDepth("RangeLinear"));
  add_packet("gdepth", gdepth);
  add_packet("flat", tools::DynamicPacket(tools::kFlat));
  add_packet("elements", tools::DynamicPacket(tools::kElements));
  add("segments", tools::JpegWith(tools::ExtendedSegments()), kFile);
  add_text("extended", gdepth, kExtended);
  // Big-endian, with an orientation of 6 alone.
  const std::string exif(
      "Exif\0\0MM\0*\0\0\0\x8\0\x1\x1\x12\0\3\0\0\0\1\0\6\0\0\0\0\0\0", 32);
  add_text("exif", exif, kExif);
  tools::HeifSample sample = {tools::NoisePicture(64, 64)};
  sample.turns = "r1m0";
  add("turns", tools::Heif(sample), kTurns);
  sample.depth = {64, 64};
  sample.depth_subtypes =
      tools::DepthRepresentation(1, {.d_min = 1, .d_max = 9});
  for (const bool is_avif : {false, true}) {
    sample.is_avif = is_avif;
    add(is_avif ? "avif" : "heic", tools::Heif(sample), kHeif);
  }
}

void WriteNoise(const fs::path& folder) {
  zuqel::Random random(1);
  for (const size_t size : {16U, 64U, 256U, 1024U, 3000U}) {
    tools::WriteBytes(folder / std::to_string(size),
                      random.Values<uint8_t>(size));
  }
}

void WriteSeeds(const fs::path& folder) {
  for (const char* target : kTargets) {
    fs::create_directories(folder / target);
    WriteNoise(folder / target);
  }
  WritePictures(folder / "pictures");
  WritePhotos(folder / "photos");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    static_cast<void>(std::fputs("usage: fuzz_seeds FOLDER\n", stderr));
    return 2;
  }
  try {
    WriteSeeds(argv[1]);
  } catch (const std::exception& error) {
    static_cast<void>(std::fprintf(stderr, "fuzz_seeds: %s\n", error.what()));
    return 1;
  }
  return 0;
}
