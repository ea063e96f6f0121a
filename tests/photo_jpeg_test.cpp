// Depth inside of JPEG files, put together here and by another program.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "image_file.h"
#include "image_samples.h"
#include "photo/jpeg_depth.h"
#include "photo_samples.h"
#include "program_run.h"
#include "random.h"
#include "tool_error.h"

namespace zuqel::tools {
namespace {

JpegDepth Read(const Bytes& file) {
  return ReadJpegDepth("file.jpg", file, ReadJpegSegments("file.jpg", file));
}

std::string Refusal(const Bytes& file) {
  try {
    Read(file);
    return "";
  } catch (const InputError& error) {
    return error.what();
  }
}

void ExpectDepth(const Bytes& file, DepthMeaning meaning,
                 const std::string& unit, const std::vector<float>& values) {
  const JpegDepth read = Read(file);
  ASSERT_TRUE(read.depth);
  EXPECT_EQ(read.depth->meaning, meaning);
  EXPECT_EQ(read.depth->unit, unit);
  EXPECT_EQ(PixelCount(read.depth->width, read.depth->height), values.size());
  EXPECT_EQ(read.depth->values, values);
  EXPECT_EQ(Text(read.original), "original");
}

constexpr std::array<uint8_t, 2> kFrame = {0xff, 0xc0};

TEST(JpegDepth, HasAllFormsOfGDepth) {
  const Bytes grey = DepthPng();
  Picture colour(3, 1);
  colour.rgb = {0, 0, 0, 51, 51, 51, 255, 255, 255};
  DisparityMap deep(3, 1);
  deep.values = {0, 13107, 65535};
  const auto inverse = [](const Bytes& depth) {
    return JpegWith({Standard(GDepth(depth, "RangeInverse"))});
  };
  std::vector<App> mixed = InSegments(grey);
  std::swap(mixed[2], mixed.back());
  mixed.push_back(Extended(std::string(32, 'A'), 9, 0, "left over"));
  struct Case {
    const char* name;
    Bytes file;
  };
  for (const auto& [name, file] : {
           Case{"attributes", inverse(grey)},
           Case{"elements", JpegWith({Standard(Packet(
                                "", Elements(Range("GDepth", "RangeInverse")) +
                                        Elements(Data(grey))))})},
           Case{"extended segments, out of order", JpegWith(mixed)},
           Case{"16 bits", inverse(Png(deep))},
           Case{"colours", inverse(Png(colour))},
       }) {
    SCOPED_TRACE(name);
    ExpectDepth(file, DepthMeaning::kDisparity, "1/m", {2.F, 1.65F, 0.25F});
  }
  ExpectDepth(JpegWith({Standard(GDepth(grey, "RangeLinear"))}),
              DepthMeaning::kLength, "m", {0.5F, 1.2F, 4.F});
  Picture block(2, 1);
  block.rgb = {51, 51, 51, 51, 51, 51};
  ExpectDepth(JpegWith({Standard(GDepth(Jpeg(block), "RangeLinear"))}),
              DepthMeaning::kLength, "m", {1.2F, 1.2F});
}

using JpegDepthFile = CommandLine;

TEST_F(JpegDepthFile, IsWhatExifToolWrote) {
  for (const int side : {8, 300}) {  // 120 KB need extended XMP
    for (const std::string form : {"", "-api compact=Shorthand "}) {
      Map<uint8_t> depth(side, side);
      depth.values = Random(1).Values<uint8_t>(depth.values.size());
      WriteGrey(depth, File("depth"));
      WriteBytes(File("photo"), JpegWith({}));
      const Outcome outcome = Shell(
          "printf original >original; exiftool -q -overwrite_original " + form +
          "-XMP-GDepth:Format=RangeLinear -XMP-GDepth:Near=1 "
          "-XMP-GDepth:Far=256 -XMP-GDepth:Units=m "
          "'-XMP-GDepth:DepthImage<=depth' '-XMP-GImage:ImageData<=original' "
          "photo");
      ASSERT_EQ(outcome.exit_code, 0) << outcome.err;
      const Bytes photo = ReadBytes(File("photo"));
      EXPECT_EQ(ReadJpegSegments("", photo).extended_xmp.size(),
                side == 8 ? 0 : 2);
      std::vector<float> lengths;
      for (const uint8_t value : depth.values) {
        lengths.push_back(static_cast<float>(value) + 1);
      }
      ExpectDepth(photo, DepthMeaning::kLength, "m", lengths);
    }
  }
}

TEST(JpegDepth, HasAllFormsOfLists) {
  for (const ListForm form : {kAttributes, kElements, kFlat}) {
    SCOPED_TRACE(form);
    std::string packet = DynamicPacket(form);
    ExpectDepth(DynamicDepth(packet), DepthMeaning::kDisparity, "1/m",
                {2.F, 1.65F, 0.25F});
    for (const auto& [from, to] :
         {std::pair("dd/1.0/container/", "1.0/container/"),
          std::pair("dd/1.0/item/", "1.0/container/item/")}) {
      packet.replace(packet.find(from), std::string(from).size(), to);
    }
    ExpectDepth(DynamicDepth(packet), DepthMeaning::kDisparity, "1/m",
                {2.F, 1.65F, 0.25F});
  }
}

TEST(JpegDepth, IsNoneWithoutASign) {
  const std::string gain_map =
      Packet("", List({{"Primary", {}}, {"GainMap", {1}}}, kAttributes));
  for (const std::string& packet :
       {std::string(), std::string("<damaged"), Packet(""), gain_map,
        Packet(Attributes({{"GImage:Data", "cmlnaHQgZXll"}}))}) {
    const JpegDepth read = Read(JpegWith({Standard(packet)}));
    EXPECT_FALSE(read.depth) << packet;
    EXPECT_TRUE(read.original.empty());
  }
}

struct Change {
  std::string_view from, to, refusal;
};

// Each change alone is refused.
void ExpectRefused(const std::string& packet,
                   const std::vector<Change>& changes,
                   const std::function<Bytes(const std::string&)>& make) {
  for (const auto& [from, to, refusal] : changes) {
    std::string changed = packet;
    // The last, as names come before what they stand for.
    const size_t at = changed.rfind(from);
    ASSERT_NE(at, std::string::npos) << from;
    changed.replace(at, from.size(), to);
    const std::string message = Refusal(make(changed));
    EXPECT_NE(message.find(refusal), std::string::npos)
        << from << " to " << to << ": " << message;
    EXPECT_EQ(message.find("file.jpg"), 0) << message;
    EXPECT_EQ(message.find('\n'), std::string::npos) << message;
  }
}

TEST(JpegDepth, RefusesFaults) {
  const std::string deep_elements = [] {
    std::string text;
    for (int i = 0; i < 70; ++i) text += "<rdf:Bag>";
    return text;
  }();
  std::string many;
  for (int i = 0; i < 5000; ++i) many += "<GDepth:A/>";
  Bytes huge = Jpeg(NoisePicture(8, 6));
  *(std::search(huge.begin(), huge.end(), kFrame.begin(), kFrame.end()) + 5) =
      0x21;
  ExpectRefused(
      GDepth(DepthPng(), "RangeInverse"),
      {{"Near='0.5'", "Near='0'", "Near \"0\" is no length above 0"},
       {"Near='0.5'", "Near='-1'", "Near \"-1\" is no"},
       {"Near='0.5'", "Near='nan'", "Near \"nan\" is no"},
       {"Near='0.5'", "Near='1e-400'", "Near \"1e-400\" is no"},
       {"Near='0.5'", "Near='0,5'", "Near \"0,5\" is no"},
       {"Near='0.5'", "Nearly='0.5'", "Near \"\" is no"},
       {"Near='0.5'", "Near='4'", "Far 4.0 is not beyond its Near 4"},
       {"Far=' 4.0 '", "Far='inf'", "Far \"inf\" is no"},
       {"Far=' 4.0 '", "Far='1e300'", "Far \"1e300\" is no"},
       {"RangeInverse", "Range", "Format \"Range\" is neither"},
       {"Units='m'", "Units='Diopters'", "Units are no unit of length"},
       {"GDepth:Data", "GDepth:None", "GDepth:Data is missing"},
       {"Data='iVBOR", "Data='iVB&amp;OR", "GDepth:Data is not base64"},
       {"SUhEUg", "SUhEUA", "(depth): is damaged"},
       {"Data='iVBOR", "Data='AAAAA", "(depth): is not a PNG or JPEG picture"},
       {"Data='b3Jp", "Data='b3J=", "GImage:Data is not base64"},
       {"<x:x", "<!DOCTYPE x [<!ENTITY e 'ee'>]><x:x", "a document type"},
       {"</rdf:Desc", deep_elements, "it is nested too deeply"},
       {"</rdf:Desc", many, "it has too many properties"},
       {"</rdf:RDF>", "", "its XMP is damaged: mismatched tag"}},
      [](const std::string& packet) { return JpegWith({Standard(packet)}); });
  EXPECT_EQ(Refusal(JpegWith({Standard(GDepth(huge, "RangeInverse"))})),
            "file.jpg (depth): is 8 x 8454 pixels; at most 8192 x 8192 is "
            "supported");
}

TEST(JpegDepth, RefusesFaultsOfExtendedXmp) {
  const std::vector<App> whole = InSegments(DepthPng());
  ASSERT_GT(whole.size(), 4);
  constexpr size_t kHeader = 35, kLength = kHeader + 32, kOffset = kLength + 4;
  struct Case {
    std::string refusal;
    std::function<void(std::vector<App>&)> change;
  };
  for (const auto& [refusal, change] : std::vector<Case>{
           {"lacks a segment", [](auto& all) { all.erase(all.begin() + 2); }},
           {"lacks a segment", [](auto& all) { all.erase(all.begin() + 1); }},
           {"lacks a segment", [](auto& all) { all.pop_back(); }},
           {"is missing", [](auto& all) { all.resize(1); }},
           {"overlapping", [](auto& all) { all.push_back(all[2]); }},
           {"overlapping", [](auto& all) { --all[2].second[kOffset + 3]; }},
           {"lacks a segment", [](auto& all) { ++all[2].second[kOffset + 3]; }},
           {"lacks a segment", [](auto& all) { all[2].second[kOffset] = 127; }},
           {"differ in its length",
            [](auto& all) { all[2].second[kLength] = 127; }},
           {"is longer than it says",
            [](auto& all) { all.back().second += 'x'; }},
           {"lacks a segment",  // of two gigabytes
            [](auto& all) {
              for (size_t i = 1; i < all.size(); ++i) {
                all[i].second[kLength] = 127;
              }
            }},
           {"cut short", [](auto& all) { all[2].second.resize(kOffset + 3); }},
           {"is damaged: its MD5 sum is another",
            [](auto& all) { all[2].second.back() ^= 1; }},
           {"is missing",
            [](auto& all) {
              for (size_t i = 1; i < all.size(); ++i) {
                all[i].second[kHeader] ^= 1;
              }
            }},
       }) {
    std::vector<App> changed = whole;
    change(changed);
    const std::string message = Refusal(JpegWith(changed));
    EXPECT_NE(message.find(refusal), std::string::npos)
        << refusal << ": " << message;
  }
}

TEST(JpegDepth, RefusesFaultsOfLists) {
  const std::string length =
      "Length='" + std::to_string(DepthPng().size()) + "'";
  const std::string past_end = "list of files goes past the end of the file";
  ExpectRefused(
      DynamicPacket(kAttributes),
      {{length, "Length='999'", past_end},
       {length, "Length='18446744073709551615'", past_end},
       {length, "Length='18446744073709551616'", "has a length of \"1844"},
       {length, "Length='-5'", "has a length of \"-5\""},
       {length, "Length='1'", "(depth): is not a PNG or JPEG picture"},
       {length, "Length='60'", "(depth): is truncated"},
       {length, "Length='0'", "has no length for Depth"},
       {length, "Long='7'", "has no length for Depth"},
       {"Length='8'", "Length='0'", "(depth): is not a PNG"},
       {"Padding='3'", "Padding='18446744073709551615'", past_end},
       {"'Primary'", "'First'", "does not begin with Primary"},
       {"'Primary'", "'Depth'", "does not begin with Primary"},
       {"DepthURI='uri/Depth'", "DepthURI='none'", "has no DepthMap:Format"},
       {"DepthMap:Near='0.5'", "DepthMap:Near='0'", "Near \"0\" is no"}},
      DynamicDepth);
  Bytes file = DynamicDepth(DynamicPacket(kFlat));
  ASSERT_EQ(JpegSize(JpegWith({{0xef, "\xff\xd9"}})), JpegWith({}).size() + 6);
  EXPECT_EQ(JpegSize(std::span(file).first(900)), std::nullopt);
}

TEST(JpegDepth, IsRefusedInEveryPieceAndSurvivesDamage) {
  const Bytes depth = DepthPng();
  for (const Bytes& whole :
       {JpegWith({Standard(GDepth(depth, "RangeInverse"))}),
        JpegWith(InSegments(depth)), DynamicDepth(DynamicPacket(kElements))}) {
    for (size_t size = 0; size < whole.size(); ++size) {
      const Bytes piece(whole.begin(),
                        whole.begin() + static_cast<std::ptrdiff_t>(size));
      const auto read_all = [&] {
        Read(piece);
        DecodePicture("file.jpg", piece);
      };
      EXPECT_THROW(read_all(), InputError) << "cut at " << size;
      Bytes damaged = whole;
      damaged[size] ^= 0x15;
      Refusal(damaged);  // or taken: much is not looked at
    }
  }
}

TEST(JpegSegments, HoldExifAndTheProfileInItsOrder) {
  const std::string exif("Exif\0\0MM", 8);
  const auto profile = [](const char* place, const char* content) {
    return App{0xe2, std::string("ICC_PROFILE\0", 12) + place + content};
  };
  const App first = profile("\1\2", "pro"), second = profile("\2\2", "file");
  JpegSegments read = ReadJpegSegments(
      "", JpegWith({second, {0xe1, exif}, first, {0xe1, "Exif"}}));
  EXPECT_EQ(Text(read.exif), exif);
  EXPECT_EQ(Text(read.icc), "profile");
  EXPECT_EQ(Text(ReadJpegSegments("", JpegWith({second})).icc), "");
}

}  // namespace
}  // namespace zuqel::tools
