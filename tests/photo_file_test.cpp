// Photos as files, and what is written of them, with ExifTool as another
// reader and writer.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "heif_samples.h"
#include "image_samples.h"
#include "photo/even_size.h"
#include "photo/exif.h"
#include "photo/image_file.h"
#include "photo/jpeg_segments.h"
#include "photo/output_files.h"
#include "photo/photo.h"
#include "photo/picture_writer.h"
#include "program_run.h"
#include "random.h"
#include "tool_error.h"

namespace zuqel::tools {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

// Every column and row is different, and smooth enough for an encoder. The
// depth is the red.
HeifSample Scene() {
  HeifSample sample = {.picture = {192, 128}, .depth = {96, 64}};
  for (int i = 0; i < 192 * 128; ++i) {
    const int x = i % 192, y = i / 192;
    const std::array pixel = {20 + (2 * x + y) / 3, 30 + y, 128};
    std::copy(pixel.begin(), pixel.end(), sample.picture.Pixel(x, y));
    sample.depth.At(x / 2, y / 2) = static_cast<uint16_t>(pixel[0]);
  }
  return sample;
}

// Of a display, with a copyright notice, and bytes for libpng, which takes only
// what does not pack to less than a header.
Bytes Profile(std::string_view space) {
  Bytes profile(160);
  const Bytes bytes = Random(1).Values<uint8_t>(160);
  profile.insert(profile.end(), bytes.begin(), bytes.end());
  for (const auto& [at, text] :
       {std::pair<int, std::string_view>{2, "\x01\x40"},  // its size
        {8, "\x02\x10"},
        {12, "mntr"},
        {16, space},
        {20, "XYZ "},
        {36, "acsp"},
        {68, {"\0\0\xf6\xd6\0\1\0\0\0\0\xd3\x2d", 12}},
        {128, {"\0\0\0\1cprt\0\0\0\x90\0\0\0\x10text\0\0\0\0made", 28}}}) {
    std::copy(text.begin(), text.end(), profile.begin() + at);
  }
  return profile;
}

class PhotoFile : public CommandLine {
 protected:
  [[nodiscard]] Photo Read(const Bytes& bytes) const {
    WriteBytes(File("photo"), bytes);
    return ReadPhoto(File("photo"));
  }
  // Without the name of the file; empty if it is read.
  [[nodiscard]] std::string Refusal(const Bytes& bytes) const {
    try {
      static_cast<void>(Read(bytes));
      return {};
    } catch (const InputError& error) {
      const std::string line = error.what(), start = File("photo") + ": ";
      EXPECT_THAT(line, AllOf(StartsWith(start), Not(HasSubstr("\n"))));
      return line.substr(start.size());
    }
  }
  [[nodiscard]] std::string ExifTool(const std::string& arguments) const {
    const Outcome outcome = Shell("exiftool -n -q " + arguments);
    return outcome.out + outcome.err;
  }
  // A JPEG file with these tags.
  [[nodiscard]] Bytes Tagged(const std::string& tags,
                             const Picture& picture) const {
    WriteBytes(File("tagged.jpg"), Jpeg(picture));
    EXPECT_EQ(ExifTool("-overwrite_original " + tags + " tagged.jpg"), "");
    return ReadBytes(File("tagged.jpg"));
  }
  [[nodiscard]] Bytes ExifBlock(const std::string& tags) const {
    return ReadJpegSegments("tagged.jpg", Tagged(tags, scene_.picture)).exif;
  }
  void Write(const Picture& picture, const Metadata& metadata,
             const std::string& name, int quality = kDefaultQuality) const {
    PendingFile file(File(name));
    WritePicture(picture, metadata, quality, file);
    file.Close();
    file.Commit();
  }

  const HeifSample scene_ = Scene();
};

TEST_F(PhotoFile, HasDepthOfHeifInEveryRepresentation) {
  const std::string inverse = ", uniform inverse depth",
                    disparity = ", uniform disparity",
                    depth = ", uniform depth";
  struct Case {
    std::string kind, representation;
    std::array<float, 3> values;  // of samples 0, most / 2 and most
    int bits = 8;
    bool is_length = false, is_avif = false;
  };
  const std::vector<Case> cases = {
      {"", "", {0, 127, 255}},
      {inverse, DepthRepresentation(0, {}), {0, 127, 255}},
      {inverse,
       DepthRepresentation(0, {.z_near = 0.5, .z_far = 8}),
       {0.125, 1.0588F, 2}},
      {inverse, DepthRepresentation(0, {.z_near = 0.5}), {0, 127, 255}},
      {disparity,
       DepthRepresentation(1, {.d_min = -1, .d_max = 4}),
       {-1, 1.4902F, 4}},
      {disparity,
       DepthRepresentation(1, {.d_min = 0, .d_max = 2046}),
       {0, 1022, 2046},
       10},
      {depth, DepthRepresentation(2, {}), {255, 128, 0}},
      {depth,
       DepthRepresentation(2, {.z_near = 1, .z_far = 3}),
       {1, 1.9961F, 3},
       8,
       true},
      {"", "", {0, 127, 255}, 8, false, true},
  };
  for (const Case& c : cases) {
    HeifSample sample = scene_;
    const int most = (1 << c.bits) - 1;
    for (size_t i = 0; i < sample.depth.values.size(); ++i) {
      sample.depth.values[i] =
          static_cast<uint16_t>(static_cast<int>(i % 96 / 32) * most / 2);
    }
    sample.depth_bits = c.bits;
    sample.depth_subtypes = c.representation;
    sample.is_avif = c.is_avif;
    if (c.is_avif) {
      sample.depth_type = "urn:mpeg:mpegB:cicp:systems:auxiliary:depth";
    }
    const Photo photo = Read(Heif(sample));
    ASSERT_TRUE(photo.depth);
    const DepthMap& map = *photo.depth;
    SCOPED_TRACE(map.kind);
    EXPECT_EQ(map.kind, "HEIF depth image" + c.kind + ", " +
                            std::to_string(c.bits) + " bits");
    EXPECT_EQ(map.meaning == DepthMeaning::kLength, c.is_length);
    EXPECT_TRUE(SizeOf(map) == SizeOf(sample.depth));
    EXPECT_NEAR(map.At(0, 3), c.values[0], 1e-4);
    EXPECT_NEAR(map.At(40, 9), c.values[1], 1e-4);
    EXPECT_NEAR(map.At(95, 63), c.values[2], 1e-4);
    for (size_t i = 0; i < photo.picture.rgb.size(); ++i) {
      ASSERT_NEAR(photo.picture.rgb[i], sample.picture.rgb[i], 4) << i;
    }
  }
}

TEST_F(PhotoFile, HasNoDepthFromOtherImagesAndRefusesUnknownScales) {
  HeifSample sample = scene_;
  sample.depth = Map<uint16_t>(192, 128);
  std::fill(sample.depth.values.begin(), sample.depth.values.end(), 51);
  for (const std::string name :
       {"com:apple:photo:2020:aux:hdrgainmap",
        "com:apple:photo:2018:aux:portraiteffectsmatte",
        "mpeg:hevc:2015:auxid:1"}) {
    sample.depth_type = "urn:" + name;
    const Photo photo = Read(Heif(sample));
    EXPECT_FALSE(photo.depth) << name;
    // The last is alpha.
    const int green = name.ends_with(":1") ? (90 + 4 * 255) / 5 : 90;
    EXPECT_NEAR(photo.picture.Pixel(40, 60)[1], green, 4);
  }
  sample.depth_type = scene_.depth_type;
  const auto refusal = [&](size_t type, const Limits& limits = {}) {
    sample.depth_subtypes = DepthRepresentation(type, limits);
    return Refusal(Heif(sample));
  };
  EXPECT_THAT(refusal(3), StartsWith("has depth in a scale of its own"));
  EXPECT_THAT(refusal(4), HasSubstr("representation 4, which is not known"));
  const std::string disorder =
      "is damaged: the limits of its depth are not in order";
  EXPECT_EQ(refusal(0, {.z_near = 2, .z_far = 1}), disorder);
  EXPECT_EQ(refusal(2, {.z_near = -1, .z_far = 1}), disorder);
  EXPECT_EQ(refusal(1, {.d_min = 1, .d_max = -1}), disorder);
}

// The corners top left, top right, bottom left and bottom right are those that
// had these numbers before the turn, and the depth is the red.
void ExpectTurned(const Photo& photo, const char* corners) {
  const auto red = [&](int x, int y) { return photo.picture.Pixel(x, y)[0]; };
  constexpr std::array kReds = {20, 147, 62, 189};
  const int right = photo.picture.width - 1, low = photo.picture.height - 1;
  const std::array found = {red(0, 0), red(right, 0), red(0, low),
                            red(right, low)};
  for (size_t i = 0; i < 4; ++i) {
    EXPECT_NEAR(found.at(i), kReds.at(static_cast<size_t>(corners[i] - '0')), 4)
        << i;
  }
  ASSERT_TRUE(photo.depth);
  const DepthMap& depth = *photo.depth;
  ASSERT_EQ(2 * depth.width, photo.picture.width);
  for (int y = 0; y < depth.height; ++y) {
    for (int x = 0; x < depth.width; ++x) {
      const int mean = (red(2 * x, 2 * y) + red(2 * x + 1, 2 * y + 1)) / 2;
      ASSERT_NEAR(depth.At(x, y), mean, 5) << x << "," << y;
    }
  }
}

TEST_F(PhotoFile, IsUprightWithItsDepth) {
  using Turned = std::pair<std::string, const char*>;
  // The file turns the depth with the picture, or the picture alone.
  for (const auto& [turns, corners] :
       {Turned{"", "0123"}, Turned{"r1", "1302"}, Turned{"r2", "3210"},
        Turned{"r3", "2031"}, Turned{"m0", "2301"}, Turned{"m1", "1032"},
        Turned{"r1m0", "0213"}, Turned{"r1m1", "3120"},
        Turned{"m0r1", "3120"}}) {
    for (const std::string& depth_turns : {turns, std::string()}) {
      SCOPED_TRACE(turns);
      HeifSample sample = scene_;
      sample.turns = turns;
      sample.depth_turns = depth_turns;
      ExpectTurned(Read(Heif(sample)), corners);
    }
  }
  Map<uint8_t> depth(96, 64);
  std::copy(scene_.depth.values.begin(), scene_.depth.values.end(),
            depth.values.begin());
  WriteGrey(depth, File("depth.png"));
  // The scene is what the phone has blurred beyond recognition.
  WriteBytes(File("original"), Jpeg(scene_.picture));
  const Bytes jpeg = Tagged(
      "-Orientation=1 -XMP-GDepth:Format=RangeLinear -XMP-GDepth:Near=0.001 "
      "-XMP-GDepth:Far=255 -XMP-GDepth:Mime=image/png "
      "'-XMP-GDepth:DepthImage<=depth.png' '-XMP-GImage:ImageData<=original' "
      "-XMP-GImage:ImageMimeType=image/jpeg",
      NoisePicture(192, 128));
  // The last byte of its number, one, which is a count, and the value.
  const std::string_view tag("\1\x12\0\3\0\0\0\1\0", 9);
  constexpr std::array kOrientations = {"0123", "1032", "3210", "2301",
                                        "0213", "2031", "3120", "1302"};
  for (size_t i = 0; i < kOrientations.size(); ++i) {
    SCOPED_TRACE(i + 1);
    Bytes turned = jpeg;
    const auto value =
        std::search(turned.begin(), turned.end(), tag.begin(), tag.end()) + 9;
    ASSERT_LT(value, turned.end());
    *value = static_cast<uint8_t>(i + 1);
    ExpectTurned(Read(turned), kOrientations.at(i));
  }
}

TEST_F(PhotoFile, CarriesProfileAndExifToWhatIsWritten) {
  const Bytes icc = Profile("RGB "),
              exif = ExifBlock(
                  "-Orientation=6 -Make=Maker -Model=Camera -GPSLatitude=12.5 "
                  "'-DateTimeOriginal=2024:05:06 07:08:09' -ExifImageWidth=9 "
                  "-ExifImageHeight=9 '-ThumbnailImage<=tagged.jpg'");
  HeifSample sample = scene_;
  sample.icc = icc;
  sample.exif = {0, 0, 0, 6};
  sample.exif.insert(sample.exif.end(), exif.begin(), exif.end());
  const Photo heif = Read(Heif(sample));
  // The rotation is one that the file itself does not have.
  EXPECT_TRUE(SizeOf(heif.picture) == SizeOf(scene_.picture));
  EXPECT_EQ(heif.metadata.icc, icc);
  EXPECT_EQ(heif.metadata.exif, exif);
  sample.exif.resize(6);
  EXPECT_EQ(Read(Heif(sample)).metadata.exif, Bytes{});

  Write(heif.picture, heif.metadata, "o.JPG");
  Write(heif.picture, heif.metadata, "o.png");
  EXPECT_EQ(ExifTool("-s3 -ColorSpaceData -ProfileCopyright -Make o.png"),
            "RGB\nmade\n");
  EXPECT_EQ(
      ExifTool("-s3 -ColorSpaceData -ProfileCopyright -Orientation -Make "
               "-Model -DateTimeOriginal -GPSLatitude -ThumbnailImage "
               "-ExifImageWidth -ExifImageHeight -YCbCrSubSampling o.JPG"),
      "RGB\nmade\n1\nMaker\nCamera\n2024:05:06 07:08:09\n12.5\n192\n128\n"
      "1 1\n");
  // From a PNG file and from a JPEG file, turned.
  EXPECT_EQ(ExifTool("-overwrite_original -Orientation=8 o.png o.JPG"), "");
  for (const char* name : {"o.png", "o.JPG"}) {
    const Photo photo = ReadPhoto(File(name));
    EXPECT_TRUE(SizeOf(photo.picture) == (Size{128, 192})) << name;
    EXPECT_EQ(photo.metadata.icc, icc) << name;
    Write(photo.picture, photo.metadata, "again.jpeg", 80);
    EXPECT_EQ(ExifTool("-s3 -Orientation -YCbCrSubSampling again.jpeg"),
              "1\n2 2\n");
    EXPECT_NEAR(ReadPicture(File("again.jpeg")).Pixel(0, 0)[0], 147, 6);
  }
  // For colours that are not the picture's.
  for (const char* space : {"GRAY", "CMYK"}) {
    sample.icc = Profile(space);
    EXPECT_EQ(Read(Heif(sample)).metadata.icc, Bytes{}) << space;
  }
}

TEST_F(PhotoFile, IsWrittenAsItsNameSays) {
  for (const char* name : {"a", "a.tif", "a.jpg.heic", ".png", "a.pngx"}) {
    EXPECT_THROW(CheckPictureName("--output", name), InputError) << name;
  }
  CheckPictureName("--output", "b/a.JPG");
  CheckPictureName("--output", "a.b.jpeg");
  // What is no profile is left out.
  Write(scene_.picture, {.icc = Bytes(200, 1), .exif = {}}, "o.png");
  EXPECT_EQ(ReadPicture(File("o.png")).rgb, scene_.picture.rgb);
  const Picture noise = NoisePicture(101, 77);
  Write(noise, {.icc = {}, .exif = Bytes(9, 1)}, "fine.jpg", 98);
  OutputFiles outputs;
  outputs.Write(File("coarse.jpg"), noise, {}, 30);
  outputs.Commit();
  EXPECT_TRUE(SizeOf(ReadPicture(File("coarse.jpg"))) == SizeOf(noise));
  EXPECT_GT(ReadBytes(File("fine.jpg")).size(),
            2 * ReadBytes(File("coarse.jpg")).size());
  // No space is left.
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  rlimit old = {};
  getrlimit(RLIMIT_FSIZE, &old);
  const rlimit small = {4096, old.rlim_max};
  setrlimit(RLIMIT_FSIZE, &small);
  EXPECT_THROW(Write(noise, {}, "full.jpg"), WorkError);
  EXPECT_THROW(Write(noise, {}, "full.png"), WorkError);
  setrlimit(RLIMIT_FSIZE, &old);
  static_cast<void>(std::signal(SIGXFSZ, handler));
}

TEST_F(PhotoFile, ReadsExifWithAnyDamage) {
  const Bytes good = ExifBlock(
      "-Orientation=6 -Make=Maker -UserComment=text "
      "'-ThumbnailImage<=tagged.jpg'");
  EXPECT_EQ(ReadOrientation(good), 6);
  EXPECT_EQ(ReadOrientation({}), 0);
  EXPECT_EQ(UprightExif({}, {1, 1}), Bytes{});
  Random random(7);
  for (int round = 0; round < 3000; ++round) {
    Bytes bad = good;
    for (int i = 0; i < 3; ++i) {
      bad[random.Bits() % 120] = static_cast<uint8_t>(random.Bits());
    }
    bad.resize(random.Bits() % (bad.size() + 1));
    const int orientation = ReadOrientation(bad);
    EXPECT_TRUE(orientation >= 0 && orientation <= 8);
    EXPECT_LE(ReadOrientation(UprightExif(bad, {192, 128})), 1);
  }
}

TEST_F(PhotoFile, IsRefusedInOneLineWhenCutDamagedOrAbsurd) {
  HeifSample sample = scene_;
  sample.exif = Bytes(40);
  testing::internal::CaptureStderr();
  testing::internal::CaptureStdout();
  for (const bool is_avif : {false, true}) {
    sample.is_avif = is_avif;
    const Bytes whole = Heif(sample);
    EXPECT_EQ(Refusal(whole), "");
    for (size_t size = 0; size < whole.size(); size += 64) {
      EXPECT_NE(Refusal({whole.data(), whole.data() + size}), "") << size;
    }
    Random random(3);
    for (int round = 0; round < 300; ++round) {
      Bytes damaged = whole;
      // What is not pixels comes first.
      damaged[random.Bits() % (round % 2 == 0 ? 900 : whole.size())] ^=
          static_cast<uint8_t>(1U << random.Below(8));
      static_cast<void>(Refusal(damaged));
    }
    // Widths of the picture, and then of the depth.
    const std::string_view name = "ispe";
    auto place = whole.begin();
    for (const char* what : {"picture", "depth"}) {
      place = std::search(place + 1, whole.end(), name.begin(), name.end());
      for (const size_t byte : {8U, 10U}) {
        Bytes absurd = whole;
        absurd[static_cast<size_t>(place - whole.begin()) + byte] = 0x7f;
        EXPECT_NE(Refusal(absurd), "") << what << byte;
      }
    }
  }
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(PhotoFile, OfAnotherKindIsCalledByItsName) {
  const std::string read = "; PNG, JPEG, HEIC and AVIF are read",
                    none = "is not a PNG, JPEG, HEIC or AVIF picture",
                    kind = ", which is not supported", box(3, '\0');
  using namespace std::string_literals;
  for (const auto& [start, refusal] :
       Cases{{"GIF89a", "is a GIF picture" + read},
             {"RIFF\1\1\1\1WEBPVP8 ", "is a WebP picture" + read},
             {"II*\0"s, "is a TIFF picture or raw photo" + read},
             {"BM", "is a BMP picture" + read},
             {box + "\x18"
                    "ftypcrx ",
              "is a raw photo" + read},
             {box + "\x18"
                    "ftypmp42",
              "is a video" + read},
             {box + "\x18"
                    "ftypavis",
              "is an animated AVIF" + read},
             {"text", none},
             {"", none}}) {
    EXPECT_EQ(Refusal({start.begin(), start.end()}), refusal);
  }
  const auto with_frame = [&](uint8_t marker, uint8_t precision) {
    Bytes jpeg = Jpeg(scene_.picture);
    const std::array<uint8_t, 4> frame = {0xff, 0xc0, 0, 17};
    const auto found =
        std::search(jpeg.begin(), jpeg.end(), frame.begin(), frame.end());
    found[1] = marker;
    found[4] = precision;
    return jpeg;
  };
  EXPECT_EQ(Refusal(with_frame(0xc0, 12)),
            "is a JPEG with other than 8 bits" + kind);
  EXPECT_EQ(Refusal(with_frame(0xc3, 8)),
            "is a lossless or hierarchical JPEG" + kind);
  EXPECT_EQ(Refusal(Jpeg(scene_.picture, false, true)),
            "is a CMYK JPEG" + kind);
}

TEST(EvenSize, RepeatsTheEndsAndCutsThem) {
  for (const Size size : {Size{7, 5}, Size{8, 5}, Size{7, 4}, Size{1, 1}}) {
    const Picture picture = NoisePicture(size.width, size.height);
    Picture even = picture;
    PadToEvenSize(even);
    ASSERT_EQ(even.width, (size.width + 1) / 2 * 2);
    ASSERT_EQ(even.height, (size.height + 1) / 2 * 2);
    for (int y = 0; y < even.height; ++y) {
      for (int x = 0; x < even.width; ++x) {
        const uint8_t* pixel = picture.Pixel(std::min(x, size.width - 1),
                                             std::min(y, size.height - 1));
        EXPECT_TRUE(std::equal(pixel, pixel + 3, even.Pixel(x, y)));
      }
    }
    CutToSize(even, size);
    EXPECT_EQ(even.rgb, picture.rgb);
  }
}

}  // namespace
}  // namespace zuqel::tools
