// Depth inside of JPEG files, put together here and by another program.
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "image_samples.h"
#include "photo/extended_xmp.h"
#include "photo/image_file.h"
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

TEST(JpegDepth, HasAllFormsOfGDepth) {
  Picture colour(3, 1);
  colour.rgb = {0, 0, 0, 51, 51, 51, 255, 255, 255};
  DisparityMap deep(3, 1);
  deep.values = {0, 13107, 65535};
  Segments mixed = ExtendedSegments();
  std::swap(mixed[2], mixed.back());
  for (const Bytes& file :
       {JpegWithXmp(Packet(GDepth("RangeInverse"))),
        JpegWithXmp(Packet("", Elements(GDepth("RangeInverse")))),
        JpegWithXmp(Packet(GDepth("RangeInverse", Png(deep)))),
        JpegWithXmp(Packet(GDepth("RangeInverse", Png(colour)))),
        JpegWith(mixed)}) {
    ExpectDepth(file, DepthMeaning::kDisparity, "1/m", {2.F, 1.65F, 0.25F});
  }
  ExpectDepth(JpegWithXmp(Packet(GDepth("RangeLinear"))), DepthMeaning::kLength,
              "m", {0.5F, 1.2F, 4.F});
  Picture block(2, 1);
  block.rgb.assign(6, 51);
  ExpectDepth(JpegWithXmp(Packet(GDepth("RangeLinear", Jpeg(block)))),
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

std::string Replace(std::string text, std::string_view from,
                    std::string_view to) {
  // The last, as names are declared before they are used.
  const size_t at = text.rfind(from);
  EXPECT_NE(at, std::string::npos) << from;
  return at == std::string::npos ? text : text.replace(at, from.size(), to);
}

TEST(JpegDepth, HasAllFormsOfLists) {
  for (const ListForm form : {kAttributes, kElements, kFlat}) {
    const std::string packet = DynamicPacket(form);
    std::string other = packet;
    for (const auto& [from, to] :
         {std::pair("dd/1.0/container/", "1.0/container/"),
          std::pair("dd/1.0/item/", "1.0/container/item/"),
          std::pair("DepthURI='uri/O", "ItemURI='uri/O"),
          std::pair("'m'", "'Meters'")}) {
      other = Replace(other, from, to);
    }
    for (const std::string& one : {packet, other}) {
      ExpectDepth(DynamicDepth(one), DepthMeaning::kDisparity, "1/m",
                  {2.F, 1.65F, 0.25F});
    }
  }
}

TEST(JpegDepth, IsNoneWithoutASign) {
  for (const std::string& packet :
       {std::string(), std::string("<damaged"), Packet(""),
        Packet("", "<a:a xmlns:a='a'><GDepth:Near>1</GDepth:Near></a:a>"),
        Packet(" GImage:Data='cmlnaHQgZXll'"),
        Replace(DynamicPacket(kFlat), "'Depth'", "'Other'")}) {
    const JpegDepth read = Read(JpegWithXmp(packet));
    EXPECT_FALSE(read.depth) << packet;
    EXPECT_TRUE(read.original.empty());
  }
}

// By md5sum.
const char* const kSumOfAToF = "E80B5017098950FC58AAD83C8C14978E";

struct Change {
  std::string_view from, to, refusal;
};

// Each change alone is refused.
void ExpectRefused(const std::string& packet,
                   const std::vector<Change>& changes,
                   Bytes (*make)(const std::string&)) {
  for (const auto& [from, to, refusal] : changes) {
    const std::string message = Refusal(make(Replace(packet, from, to)));
    EXPECT_NE(message.find(refusal), std::string::npos)
        << from << " to " << to << ": " << message;
    EXPECT_EQ(message.find("file.jpg"), 0) << message;
    EXPECT_EQ(message.find('\n'), std::string::npos) << message;
  }
}

TEST(JpegDepth, RefusesFaults) {
  std::string deep, many;
  for (int i = 0; i < 70; ++i) deep += "<rdf:Bag>";
  for (int i = 0; i < 5000; ++i) many += "<GDepth:A/>";
  ExpectRefused(
      Packet(GDepth("RangeInverse")),
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
       {"Data='b3JpZ2", "Data='b3Jp", "GImage:Data is not base64"},
       {"<x:x", "<!DOCTYPE x [<!ENTITY e 'ee'>]><x:x", "a document type"},
       {"</rdf:Desc", deep, "it is nested too deeply"},
       {"</rdf:Desc", many, "it has too many properties"},
       {"</rdf:RDF>", "", "its XMP is damaged: mismatched tag"}},
      JpegWithXmp);
  std::string huge = Text(Jpeg(NoisePicture(8, 6)));
  huge[huge.find("\xff\xc0") + 5] = 0x21;
  EXPECT_EQ(Refusal(JpegWithXmp(
                Packet(GDepth("RangeInverse", {huge.begin(), huge.end()})))),
            "file.jpg (depth): is 8 x 8454 pixels; at most 8192 x 8192 is "
            "supported");
}

TEST(JoinExtendedXmp, TakesNothingButTheWhole) {
  struct Case {
    const char* result;
    std::vector<std::tuple<char, char, const char*>> pieces;
  };
  for (const auto& [result, pieces] : std::vector<Case>{
           {"abcdef", {{6, 3, "def"}, {6, 0, "abc"}}},
           {"is missing", {}},
           {"lacks a segment", {{6, 0, "abc"}}},
           {"lacks a segment", {{6, 3, "def"}}},
           {"lacks a segment", {{6, 0, "abc"}, {6, 4, "ef"}}},
           {"lacks a segment", {{127, 0, "abc"}, {127, 3, "def"}}},
           {"overlapping", {{6, 0, "abc"}, {6, 3, "def"}, {6, 3, "def"}}},
           {"overlapping", {{6, 0, "abcd"}, {6, 3, "def"}}},
           {"differ in its length", {{6, 0, "abc"}, {7, 3, "def"}}},
           {"longer than it says", {{5, 0, "abc"}, {5, 3, "def"}}},
           {"MD5 sum is another", {{6, 0, "abc"}, {6, 3, "deF"}}}}) {
    std::vector<std::string> segments = {std::string(32, '0') + "left over"};
    for (const auto& [size, offset, content] : pieces) {
      segments.push_back(kSumOfAToF + std::string(3, '\0') + size +
                         std::string(3, '\0') + offset + content);
    }
    std::string joined;
    try {
      joined = JoinExtendedXmp("file.jpg", segments, kSumOfAToF);
    } catch (const InputError& error) {
      joined = error.what();
    }
    EXPECT_NE(joined.find(result), std::string::npos) << joined;
    segments[0].resize(39);
    EXPECT_THROW(JoinExtendedXmp("", segments, kSumOfAToF), InputError);
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
}

TEST(JpegDepth, IsRefusedInEveryPieceAndSurvivesDamage) {
  for (const Bytes& whole :
       {JpegWithXmp(Packet(GDepth("RangeInverse"))),
        JpegWith(ExtendedSegments()), DynamicDepth(DynamicPacket(kElements))}) {
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
    return std::pair('\xe2',
                     std::string("ICC_PROFILE\0", 12) + place + content);
  };
  const auto second = profile("\2\2", "file");
  const JpegSegments read =
      ReadJpegSegments("", JpegWith({second,
                                     {'\xe1', exif},
                                     profile("\1\2", "pro"),
                                     {'\xe1', exif + "other"},
                                     {'\xe1', "Exif"}}));
  EXPECT_EQ(Text(read.exif), exif);
  EXPECT_EQ(Text(read.icc), "profile");
  EXPECT_EQ(Text(ReadJpegSegments("", JpegWith({second})).icc), "");
}

TEST(JpegSize, IsThatOfThePictureAlone) {
  for (const auto& [bytes, size] : std::vector<std::pair<Bytes, size_t>>{
           {{0xff, 0xd8, 0xff, 0xd9, 0xff, 0xd9}, 4},
           {{0xff, 0xd8, 0xff, 0xff, 0xd9, 0}, 5},              // filled up
           {{0xff, 0xd8, 0xff, 0xe1, 0, 4, 0xff, 0xd9, 0}, 0},  // no end
           {{0xff, 0xd8, 0xff, 0xe1, 0, 4, 0xff, 0xff, 0xd9}, 0},
           {{0xff, 0xd8, 0xff, 0xe1, 0, 1, 0xff, 0xd9}, 0},
           {{0xff, 0xd8, 0xff, 0xe1, 0}, 0},
           // Bytes of pixels, and a restart.
           {{0xff, 0xda, 0, 2, 9, 0xff, 0, 0xff, 0xd7, 8, 0xff, 0xd9, 1}, 12},
       }) {
    EXPECT_EQ(JpegSize(bytes).value_or(0), size);
  }
}

}  // namespace
}  // namespace zuqel::tools
