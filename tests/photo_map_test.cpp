// Map files, and the disparities that are made of them.
#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "image_samples.h"
#include "photo/depth_scale.h"
#include "photo/image_file.h"
#include "photo/map_file.h"
#include "tool_error.h"

namespace zuqel::tools {
namespace {

using Bytes = std::vector<uint8_t>;
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

Bytes Pfm(const std::string& header, const std::vector<float>& values,
          bool is_big = false) {
  Bytes file(header.begin(), header.end());
  for (const float value : values) {
    const auto bits = std::bit_cast<uint32_t>(value);
    for (int i = 0; i < 4; ++i) {
      file.push_back(static_cast<uint8_t>(bits >> 8 * (is_big ? 3 - i : i)));
    }
  }
  return file;
}

// What is wrong with the file; empty if it is read.
std::string Refusal(const Bytes& file) {
  try {
    DecodeMapFile("map", file);
  } catch (const InputError& error) {
    return error.what();
  }
  return {};
}

TEST(MapFile, ReadsPfmOfBothByteOrdersFromItsLastRowUp) {
  const std::vector<float> up = {1.5F, -2, 3e9F, kInfinity, 0, 1e-40F};
  for (const auto& [header, is_big] : {std::pair{"Pf\n2 3\n-1\n", false},
                                       {"Pf 2\t3 -0.00392\r", false},
                                       {"Pf\n2 3\n1.0\n", true},
                                       {"Pf\n2\n3\n+2e-3\n", true}}) {
    const MapFile map = DecodeMapFile("map", Pfm(header, up, is_big));
    EXPECT_EQ(map.depth, MapDepth::kFloat) << header;
    EXPECT_EQ(map.width, 2) << header;
    EXPECT_EQ(map.values,
              (std::vector<float>{up[4], up[5], up[2], up[3], up[0], up[1]}))
        << header;
  }
}

TEST(MapFile, RefusesPfmThatIsNotWhatItsHeaderSays) {
  const std::vector<float> six(6);
  struct Row {
    const char *header, *refusal;
  };
  for (const auto& [header, refusal] : {
           Row{"PF\n2 3\n-1\n", "is PFM of three channels"},
           Row{"P5\n2 3\n255\n", "is not a map in PNG, JPEG or PFM; convert"},
           Row{"Pfoo", "is not a map"},
           Row{"Pf\n2 2\n-1\n", "it is longer than its header says"},
           Row{"Pf\n2 3\n-1\r\n", "it is longer"},
           Row{"Pf\n2 4\n-1\n", "is truncated"},
           Row{"Pf\n8192 8192\n-1\n", "is truncated"},
           Row{"Pf\n8193 1\n-1\n", "is 8193 x 1 pixels; at most 8192 x 8192"},
           Row{"Pf\n2 0\n-1\n", "is 2 x 0 pixels"},
           Row{"Pf\n-2 -3\n-1\n", "is -2 x -3 pixels"},
           Row{"Pf\n99999999999 3\n-1\n", "its size in its header is wrong"},
           Row{"Pf\n2x3\n-1\n", "its size"},
           Row{"Pf\n2 3\n0\n", "its scale in its header is wrong"},
           Row{"Pf\n2 3\n-inf\n", "its scale"},
           Row{"Pf\n2 3\n1e999\n", "its scale"},
           Row{"Pf\n2 3\n0x1\n", "its scale"},
           Row{"Pf\n2 3\n-\n", "its scale"},
           Row{"Pf\n2 3\n-1.000000000000000000000000000000000\n", "a word in"},
       }) {
    const std::string words = Refusal(Pfm(header, six));
    EXPECT_NE(words.find(refusal), std::string::npos) << header << words;
  }
  const Bytes whole = Pfm("Pf\n2 3\n-1\n", six);
  for (size_t size = 0; size < whole.size(); ++size) {
    EXPECT_NE(Refusal({whole.data(), whole.data() + size}), "") << size;
  }
}

TEST(MapFile, KeepsTheKindOfGreyPicturesAndRefusesColour) {
  const TemporaryFolder folder;
  Map<uint8_t> low(3, 2);
  low.values = {0, 5, 60, 128, 250, 255};
  WriteGrey(low, folder / "low");
  DisparityMap high(3, 2);
  high.values = {0, 5, 1023, 1024, 40000, 65535};
  WriteDisparity(high, folder / "high");
  Picture grey(3, 2);
  for (size_t i = 0; i < 18; ++i) grey.rgb[i] = low.values[i / 3];
  WritePicture(grey, folder / "grey");
  WriteBytes(folder / "jpeg", Jpeg(grey));
  WritePicture(NoisePicture(3, 2), folder / "colour");
  const auto expect = [&](const char* name, MapDepth depth, float most,
                          const auto& values) {
    const MapFile map = ReadMapFile(folder / name);
    EXPECT_EQ(map.depth, depth) << name;
    for (size_t i = 0; i < 6; ++i) {
      EXPECT_NEAR(map.values[i], values[i], most) << name << i;
    }
  };
  expect("low", MapDepth::k8Bits, 0, low.values);
  expect("high", MapDepth::k16Bits, 0, high.values);
  expect("grey", MapDepth::k8Bits, 0, low.values);
  expect("jpeg", MapDepth::k8Bits, 4, low.values);
  EXPECT_NE(Refusal(ReadBytes(folder / "colour")).find("is in colour"),
            std::string::npos);
}

constexpr auto kLength = DepthMeaning::kLength;
constexpr auto kDisparity = DepthMeaning::kDisparity;
constexpr DisparityScale kAuto = {DisparityScale::kSpan},
                         kNone = {DisparityScale::kFactor};

MapFile RowOf(MapDepth depth, const std::vector<float>& values) {
  MapFile file(static_cast<int>(values.size()), 1);
  file.depth = depth;
  file.values = values;
  return file;
}

TEST(DepthScale, MakesDisparityOfEveryKindOfMap) {
  constexpr auto k8 = MapDepth::k8Bits;
  constexpr auto k16 = MapDepth::k16Bits;
  constexpr auto kFloat = MapDepth::kFloat;
  constexpr float kMost = std::numeric_limits<float>::max(), kLeast = 1e-45F;
  const MapReading disparity,
      length = {kLength}, turned = {kDisparity, {}, true},
      turned_length = {kLength, {}, true},
      lengths = {kLength, {}, false, LengthRange{1, 52}};
  const DisparityScale by_map, by_520 = {DisparityScale::kFactor, 520};
  // `assumed` is how the words for it begin.
  const auto expect = [](MapDepth depth, const MapReading& reading,
                         const DisparityScale& scale,
                         const std::vector<float>& values,
                         const std::vector<uint16_t>& expected,
                         const std::string& assumed) {
    const auto [map, words, is_scaled] =
        ToDisparity("map", ToDepth(RowOf(depth, values), reading), scale);
    EXPECT_EQ(map.values, expected) << words;
    EXPECT_EQ(words.substr(0, assumed.size()), assumed);
    EXPECT_EQ(is_scaled, words.find("as it is") == std::string::npos) << words;
  };
  expect(
      k16, disparity, by_map, {0, 7, 1022, 1023}, {0, 7, 1022, 1023},
      "16-bit disparity, 1023 unknown, 0..1022 as it is, 25.0 percent unknown");
  expect(k16, disparity, kAuto, {0, 10, 20, 1023}, {1, 501, 1000, 1023},
         "16-bit disparity, 1023 unknown, 0..20 scaled to 1..1000");
  expect(k16, {kDisparity, 65535}, by_map, {0, 1022, 65535}, {0, 1022, 1023},
         "16-bit disparity, 65535 unknown, 1023 unknown, 0..1022 as it is");
  expect(k16, disparity, by_map, {0, 1023, 1024, 2048}, {1, 500, 501, 1000},
         "16-bit disparity, 0..2048 scaled to 1..1000");
  expect(k16, disparity, kNone, {0, 1023, 1024}, {0, 1022, 1022},
         "16-bit disparity, 0..1024 as it is");
  expect(k16, turned, by_map, {0, 5, 20}, {1000, 750, 1},
         "16-bit disparity turned round, 0..20 scaled to 1..1000");
  expect(k8, disparity, by_map, {0, 51, 255}, {1, 201, 1000},
         "8-bit disparity, 0..255 scaled to 1..1000");
  expect(k8, {kDisparity, 0}, by_map, {0, 10, 20}, {1023, 1, 1000},
         "8-bit disparity, 0 unknown, 10..20 scaled to 1..1000, 33.3 percent");
  expect(k8, turned, kNone, {0, 51, 255}, {255, 204, 0},
         "8-bit disparity turned round, 0..255 as it is");
  expect(k8, length, kNone, {0, 51, 255}, {255, 204, 0},
         "8-bit depth, relative, 0..255 as it is");
  expect(k8, turned_length, by_map, {0, 51, 255}, {1, 201, 1000},
         "8-bit depth turned round, relative, 0..255 scaled");
  expect(k8, lengths, by_520, {0, 5, 255}, {520, 260, 10},
         "8-bit depth, lengths of 1..52, inverse of 1..52 times 520");
  expect(k16, length, by_map, {0, 500, 1000, 2000}, {1023, 1000, 334, 1},
         "16-bit depth, 0 unknown, inverse of 500..2000 scaled to 1..1000");
  expect(k16, turned_length, by_map, {500, 2000}, {1, 1000},
         "16-bit depth turned round, 0 unknown, inverse of 500..2000");
  expect(kFloat, length, by_520, {-1, 0, kInfinity, kNan, 2, 1e-4F},
         {1023, 1023, 1023, 1023, 260, 1022},
         "PFM depth, 0 unknown, inverse of 0.0001..2 times 520, 66.7 percent");
  expect(kFloat, disparity, by_map, {-1, 0, 1, -kInfinity, kNan},
         {1, 501, 1000, 1023, 1023},
         "PFM disparity, -1..1 scaled to 1..1000, 40.0 percent unknown");
  expect(kFloat, disparity, by_map, {-kMost, 0, kMost}, {1, 501, 1000}, "PFM");
  expect(kFloat, length, by_map, {kLeast, 1, kMost}, {1000, 1, 1}, "PFM");
  expect(kFloat, turned_length, by_map, {kLeast, kMost}, {1, 1000}, "PFM");
  expect(kFloat, disparity, by_map, {7, 7, kNan}, {500, 500, 1023},
         "PFM disparity, 7 throughout taken as 500, 33.3 percent unknown");
}

TEST(DepthScale, RefusesWhatTellsNothing) {
  struct Row {
    std::vector<float> values;
    DisparityScale scale;
    const char* refusal;
  };
  for (const auto& [values, scale, refusal] :
       {Row{{0, kNan}, {}, "map: nothing in it is known"},
        Row{{500, 4000},
            kNone,
            "map: all of it becomes a disparity of 0: PFM depth, 0 unknown, "
            "inverse of 500..4000 as it is"}}) {
    try {
      const MapFile file = RowOf(MapDepth::kFloat, values);
      ToDisparity("map", ToDepth(file, {kLength}), scale);
      ADD_FAILURE() << refusal;
    } catch (const InputError& error) {
      EXPECT_STREQ(error.what(), refusal);
    }
  }
}

}  // namespace
}  // namespace zuqel::tools
