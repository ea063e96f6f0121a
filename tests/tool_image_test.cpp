// What the tools do with pictures before and after the library.
#include <gtest/gtest.h>
#include <png.h>
#include <sys/resource.h>
#include <zlib.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <initializer_list>
#include <string>
#include <vector>

#include "coordinates.h"
#include "image_samples.h"
#include "photo/image_file.h"
#include "photo/nv21.h"
#include "tool_error.h"

namespace zuqel::tools {
namespace {

using Bytes = std::vector<uint8_t>;

TEST(Nv21, IsFullRangeBt601WithTheMeanColourOfABlock) {
  // A red, a green and a blue block, and one of red above black.
  Picture picture(8, 2);
  for (size_t x = 0; x < 8; ++x) {
    picture.rgb[3 * x + x / 2 % 3] = 255;
    if (x < 6) picture.rgb[3 * (8 + x) + x / 2] = 255;
  }
  const Nv21Frame frame = ToNv21(picture);
  EXPECT_EQ(frame.luma, (Bytes{76, 76, 150, 150, 29, 29, 76, 76,  //
                               76, 76, 150, 150, 29, 29, 0, 0}));
  EXPECT_EQ(frame.chroma, (Bytes{255, 85, 21, 44, 107, 255, 192, 106}));
  const Picture back = ToPicture(frame);
  for (size_t i = 0; i < 18; ++i) {
    // The chroma's half step weighs up to 1.772 / 2, the luma's 1 / 2.
    EXPECT_NEAR(back.rgb[i], picture.rgb[i], 2) << i;
  }
}

Bytes Join(std::initializer_list<Bytes> parts) {
  Bytes joined;
  for (const Bytes& part : parts) {
    joined.insert(joined.end(), part.begin(), part.end());
  }
  return joined;
}

Bytes BigEndian(uLong value) {
  Bytes bytes(4);
  png_save_uint_32(bytes.data(), static_cast<png_uint_32>(value));
  return bytes;
}

Bytes Chunk(const std::string& type, const Bytes& data) {
  const Bytes checked = Join({{type.begin(), type.end()}, data});
  const auto size = static_cast<uInt>(checked.size());
  return Join({BigEndian(data.size()), checked,
               BigEndian(crc32(0, checked.data(), size))});
}

Bytes Header(uLong width, uLong height, uint8_t depth = 8,
             uint8_t colour = PNG_COLOR_TYPE_RGB,
             uint8_t interlace = PNG_INTERLACE_NONE) {
  return Chunk("IHDR", Join({BigEndian(width),
                             BigEndian(height),
                             {depth, colour, 0, 0, interlace}}));
}

// An unknown chunk whose data is another header, where IHDR usually is.
Bytes Decoy(const Bytes& header) {
  return Chunk("deCy", {header.begin() + 8, header.end() - 4});
}

// Each row has its filter type, 0, in front.
Bytes Png(const Bytes& chunks, const Bytes& rows) {
  uLongf size = compressBound(rows.size());
  Bytes data(size);
  compress(data.data(), &size, rows.data(), rows.size());
  data.resize(size);
  return Join({{0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'},
               chunks,
               Chunk("IDAT", data),
               Chunk("IEND", {})});
}

// Smooth so that JPEG keeps it.
Picture Ramp() {
  Picture picture(16, 12);
  for (size_t i = 0; i < picture.rgb.size(); ++i) {
    const size_t x = i / 3 % 16, y = i / 48;
    const std::array pixel = {60 + 9 * x, 200 - 5 * y, 90 + 4 * x};
    picture.rgb[i] = static_cast<uint8_t>(pixel.at(i % 3));
  }
  return picture;
}

// Reads as the picture, or is refused with these words.
struct File {
  const char* name;
  Bytes bytes;
  std::string refusal = {};  // empty: the picture
  bool may_refuse = false;   // newer decoders do
};

void ExpectReadOrRefused(const std::vector<File>& files,
                         const Picture& expected, int most) {
  const TemporaryFolder folder;
  for (const File& file : files) {
    SCOPED_TRACE(file.name);
    WriteBytes(folder / "picture", file.bytes);
    std::string refusal;
    try {
      const Picture picture = ReadPicture(folder / "picture");
      EXPECT_EQ(picture.width, expected.width);
      EXPECT_EQ(picture.height, expected.height);
      EXPECT_TRUE(
          std::equal(expected.rgb.begin(), expected.rgb.end(),
                     picture.rgb.begin(), picture.rgb.end(),
                     [=](int a, int b) { return std::abs(a - b) <= most; }));
    } catch (const InputError& error) {
      refusal = error.what();
    }
    EXPECT_TRUE(refusal.empty() == file.refusal.empty() || file.may_refuse)
        << refusal;
    EXPECT_NE(refusal.find(file.refusal), std::string::npos) << refusal;
  }
}

TEST(ReadPicture, RefusesEveryPieceOfAFileAndSurvivesDamage) {
  const TemporaryFolder folder;
  const std::string path = folder / "picture";
  WritePicture(Ramp(), path);
  for (const Bytes& whole : {ReadBytes(path), Jpeg(Ramp())}) {
    for (size_t size = 0; size < whole.size(); ++size) {
      WriteBytes(path, {whole.data(), whole.data() + size});
      EXPECT_THROW(ReadPicture(path), InputError) << "cut at " << size;
      Bytes damaged = whole;
      damaged[size] ^= 0x5a;
      WriteBytes(path, damaged);
      try {
        ReadPicture(path);  // many a flipped bit is only another picture
      } catch (const InputError& error) {
        EXPECT_NE(std::string(error.what()).find(path), std::string::npos);
      }
    }
  }
}

TEST(ReadPicture, TakesEveryKindOfPngAndItsDecodersSizesAlone) {
  Picture picture(2, 2), grey(2, 2);
  picture.rgb = {10, 20, 30, 200, 90, 40, 70, 80, 250, 0, 255, 128};
  grey.rgb = {5, 5, 5, 60, 60, 60, 128, 128, 128, 250, 250, 250};
  const Bytes rows = {0, 10, 20, 30,  200, 90,  40,  //
                      0, 70, 80, 250, 0,   255, 128};
  // The first, sixth and seventh pass; the others are empty.
  const Bytes passes = {0, 10, 20, 30,  0, 200, 90, 40,
                        0, 70, 80, 250, 0, 255, 128};
  // 257 times the value and 60 more, which rounds down to it.
  Bytes deep;
  for (size_t i = 0; i < 12; ++i) {
    const int value = picture.rgb[i] * 257 + (picture.rgb[i] < 255 ? 60 : 0);
    if (i % 6 == 0) deep.push_back(0);
    deep.push_back(static_cast<uint8_t>(value >> 8));
    deep.push_back(static_cast<uint8_t>(value));
  }
  const Bytes good = Header(2, 2), linear = Chunk("gAMA", {0, 1, 0x86, 0xa0});
  const Bytes palette = Header(2, 2, 8, PNG_COLOR_TYPE_PALETTE);
  const Bytes interlaced =
      Header(2, 2, 8, PNG_COLOR_TYPE_RGB, PNG_INTERLACE_ADAM7);
  const Bytes whole = Png(good, rows);
  const std::string damaged = "is damaged: ";
  const auto decoy = [&](uLong side) {
    return Png(Join({Decoy(Header(side, side)), good}), rows);
  };
  ExpectReadOrRefused(
      {{"colour", whole},
       {"palette",
        Png(Join({palette, Chunk("PLTE", picture.rgb)}), {0, 0, 1, 0, 2, 3})},
       {"16 bits, whatever their gamma",
        Png(Join({Header(2, 2, 16), linear}), deep)},
       {"interlaced", Png(interlaced, passes)},
       {"smaller decoy first", decoy(1), "", true},
       {"larger decoy first", decoy(99), "", true},
       {"huge decoy first", decoy(~0U), "", true},
       {"empty chunk first", Png(Join({Chunk("deCy", {}), good}), rows), "",
        true},
       {"two headers", Png(Join({good, Header(999, 999)}), rows), damaged},
       {"no header", Png({}, rows), damaged},
       {"no width", Png(Header(0, 2), rows), damaged},
       {"a side too long", Png(Header(8193, 2), rows),
        "is 8193 x 2 pixels; at most 8192 x 8192 is supported"},
       {"as large as the format can", Png(Header(~0U >> 1, ~0U >> 1), rows),
        "is 2147483647 x 2147483647 pixels; at most"},
       {"negative", Png(Header(0x80000000, 2), rows), damaged},
       {"more rows than data", Png(Header(2, 8192), rows), damaged},
       {"interlaced, data for one pass", Png(interlaced, {0, 10, 20, 30}),
        damaged},
       {"depth unknown", Png(Header(2, 2, 3), rows), damaged},
       {"depth not of the colour type", Png(Header(2, 2, 4), rows), damaged},
       {"palette that is missing", Png(palette, rows), damaged},
       {"data ends early", {whole.begin(), whole.end() - 21}, "is truncated"}},
      picture, 0);
  ExpectReadOrRefused({{"grey", Png(Header(2, 2, 8, PNG_COLOR_TYPE_GRAY),
                                    {0, 5, 60, 0, 128, 250})}},
                      grey, 0);
}

TEST(ReadPicture, LaysWhatIsTransparentOnWhite) {
  Picture picture(2, 1), grey(2, 1);
  picture.rgb = {10, 100, 200, 255, 255, 255};
  grey.rgb = {105, 105, 105, 255, 255, 255};
  const auto png = [](uint8_t depth, uint8_t colour, const Bytes& rows,
                      const Bytes& chunks = {}) {
    return Png(Join({Header(2, 1, depth, colour), chunks}), rows);
  };
  const Bytes palette = Chunk("PLTE", {10, 100, 200, 9, 9, 9});
  ExpectReadOrRefused(
      {{"opaque and clear",
        png(8, PNG_COLOR_TYPE_RGB_ALPHA, {0, 10, 100, 200, 255, 9, 9, 9, 0})},
       {"16 bits",
        png(16, PNG_COLOR_TYPE_RGB_ALPHA,
            {0, 10, 10, 100, 100, 200, 200, 255, 255, 9, 9, 9, 9, 9, 9, 0, 0})},
       {"a colour", png(8, PNG_COLOR_TYPE_RGB, {0, 10, 100, 200, 9, 9, 9},
                        Chunk("tRNS", {0, 9, 0, 9, 0, 9}))},
       {"of a palette", png(8, PNG_COLOR_TYPE_PALETTE, {0, 0, 1},
                            Join({palette, Chunk("tRNS", {255, 0})}))}},
      picture, 0);
  ExpectReadOrRefused(
      {{"grey, half", png(8, PNG_COLOR_TYPE_GRAY_ALPHA, {0, 5, 153, 9, 0})},
       {"16 bits",
        png(16, PNG_COLOR_TYPE_GRAY_ALPHA, {0, 5, 5, 153, 153, 9, 9, 0, 0})}},
      grey, 0);
}

TEST(ReadPicture, TakesSizesOfJpegFromItsDecoderAlone) {
  const Bytes whole = Jpeg(Ramp());
  const std::array<uint8_t, 2> marker = {0xff, 0xc0};  // of the frame header
  const auto frame =
      std::search(whole.begin(), whole.end(), marker.begin(), marker.end());
  ASSERT_NE(frame, whole.end());
  const auto frame_end = frame + 2 + frame[3];
  const Bytes original(frame, frame_end);
  const auto resized = [&](int width, int height) {
    Bytes header = original;
    header[5] = static_cast<uint8_t>(height >> 8);
    header[6] = static_cast<uint8_t>(height);
    header[7] = static_cast<uint8_t>(width >> 8);
    header[8] = static_cast<uint8_t>(width);
    return header;
  };
  // The file with its frame header replaced.
  const auto with = [&](const Bytes& header) {
    return Join({{whole.begin(), frame}, header, {frame_end, whole.end()}});
  };
  ExpectReadOrRefused(
      {{"as encoders write it", whole},
       {"decoy first",
        with(Join({{0xff, 0xef, 0, 21}, resized(1, 1), original}))},
       {"two headers", with(Join({original, resized(999, 999)})),
        "is damaged: "},
       {"no width", with(resized(0, 12)), "is damaged: "},
       {"largest", with(resized(65500, 65500)), "is 65500 x 65500 pixels; at"},
       {"larger than libjpeg can", with(resized(65535, 12)), "is damaged: "},
       {"more rows than data", with(resized(16, 8192)), "is truncated"}},
      Ramp(), 6);
}

TEST(ReadPicture, LimitsWhatAFileUnpacksTo) {
  const Bytes whole = Jpeg(Ramp(), /*is_progressive=*/true);
  // Tables come before each scan; the first can be repeated.
  const auto find = [&](Bytes::const_iterator from, uint8_t marker) {
    const std::array<uint8_t, 2> bytes = {0xff, marker};
    return std::search(from, whole.end(), bytes.begin(), bytes.end());
  };
  const auto scan = find(whole.begin(), 0xda), next = find(scan, 0xc4);
  ASSERT_NE(next, whole.end());
  const auto with_scans = [&](int more) {
    Bytes file(whole.begin(), next);
    for (int i = 0; i < more; ++i) file.insert(file.end(), scan, next);
    return Join({file, {next, whole.end()}});
  };
  ExpectReadOrRefused(
      {{"progressive", whole},
       {"many scans", with_scans(90)},
       {"too many scans", with_scans(91), "is damaged: it has too many scans"}},
      Ramp(), 6);

  // 7 MiB of text, just below libpng's own limit for one, 150 times.
  const Bytes unpacked(size_t{7} << 20, ' ');
  uLongf size = compressBound(unpacked.size());
  Bytes packed(size);
  compress(packed.data(), &size, unpacked.data(), unpacked.size());
  packed.resize(size);
  const Bytes text = Chunk("zTXt", Join({{'T', 0, 0}, packed}));
  Bytes chunks = Header(1, 1);
  for (int i = 0; i < 150; ++i)
    chunks.insert(chunks.end(), text.begin(), text.end());
  const auto peak_kib = [] {
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
  };
  const auto before = peak_kib();
  ExpectReadOrRefused({{"texts", Png(chunks, Bytes(4))}}, Picture(1, 1), 0);
  EXPECT_LT(peak_kib() - before, 100 << 10);
}

TEST(ReadWeights, TakesMapsOfTheLargestSize) {
  const TemporaryFolder folder;
  WriteGrey(WeightMap(kLargestSide, kLargestSide), folder / "map");
  EXPECT_EQ(ReadWeights(folder / "map").values.size(), size_t{1} << 26);
}

TEST(ReadWeights, TakesDepthAndColourOfPngFromItsDecoderAlone) {
  const TemporaryFolder folder;
  const auto read = [&](const Bytes& header, const Bytes& rows) {
    const Bytes decoy = Decoy(Header(2, 2, 8, PNG_COLOR_TYPE_GRAY));
    WriteBytes(folder / "map", Png(Join({decoy, header}), rows));
    return ReadWeights(folder / "map").values;
  };
  try {
    EXPECT_EQ(read(Header(2, 2, 8, PNG_COLOR_TYPE_GRAY), {0, 1, 2, 0, 3, 4}),
              (Bytes{1, 2, 3, 4}));
  } catch (const InputError&) {  // newer decoders refuse the decoy
  }
  for (const Bytes& header :
       {Header(2, 2, 16, PNG_COLOR_TYPE_GRAY), Header(2, 2),
        Header(2, 2, 8, PNG_COLOR_TYPE_GRAY_ALPHA),
        Header(8, 8, 1, PNG_COLOR_TYPE_GRAY)}) {
    EXPECT_THROW(read(header, Bytes(16)), InputError);
  }
}

TEST(ParseFocusPoint, TakesPointsOfThePictureOnly) {
  EXPECT_EQ(ParseFocusPoint("--focus", "9,7", "picture", {10, 8}).y, 7);
  for (const char* text : {"", "1", ",1", "1,2,3", "1, 2", "1,2 ", "-1,2",
                           "10,2", "2,8", "99999999999,1"}) {
    EXPECT_THROW(ParseFocusPoint("--focus", text, "picture", {10, 8}),
                 InputError)
        << text;
  }
}

}  // namespace
}  // namespace zuqel::tools
