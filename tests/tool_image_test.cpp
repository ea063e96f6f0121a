// What the tools do with pictures before and after the library.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <iterator>
#include <numeric>
#include <optional>
#include <string>
#include <vector>

#include "coordinates.h"
#include "image_file.h"
#include "image_samples.h"
#include "nv21.h"
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

// A picture of 16 x 12 pixels, smooth so that JPEG keeps it.
Bytes Ramp(size_t channels) {
  Bytes bytes;
  for (int i = 0; i < 16 * 12; ++i) {
    const int x = i % 16, y = i / 16;
    const std::array pixel = {60 + 9 * x, 200 - 5 * y, 90 + 4 * x, 7 * x + y};
    std::copy_n(pixel.begin(), channels, std::back_inserter(bytes));
  }
  return bytes;
}

TEST(ReadPicture, TakesEveryKind) {
  const TemporaryFolder folder;
  const std::string path = folder / "picture";
  const Bytes rgb = Ramp(3), grey = Ramp(1);
  Bytes grey_rgb, indices(rgb.size() / 3);
  for (const uint8_t value : grey) grey_rgb.insert(grey_rgb.end(), 3, value);
  std::iota(indices.begin(), indices.end(), uint8_t{0});
  std::vector<uint16_t> deep(rgb.begin(), rgb.end());
  for (uint16_t& value : deep) value = static_cast<uint16_t>(value * 257 + 60);

  const auto expect_near = [&](const Bytes& expected, int most) {
    const Bytes read = ReadPicture(path).rgb;
    const auto is_near = [=](int a, int b) { return std::abs(a - b) <= most; };
    EXPECT_TRUE(std::equal(read.begin(), read.end(), expected.begin(),
                           expected.end(), is_near));
  };
  const auto expect_png = [&](png_uint_32 format, const void* pixels,
                              const Bytes& expected) {
    SCOPED_TRACE(format);
    WriteSamplePng(path, 16, 12, format, pixels, rgb);
    expect_near(expected, 0);
  };
  expect_png(PNG_FORMAT_RGB, rgb.data(), rgb);
  expect_png(PNG_FORMAT_RGBA, Ramp(4).data(), rgb);
  expect_png(PNG_FORMAT_GRAY, grey.data(), grey_rgb);
  expect_png(PNG_FORMAT_RGB_COLORMAP, indices.data(), rgb);
  expect_png(PNG_FORMAT_LINEAR_RGB, deep.data(), rgb);
  WriteSampleJpeg(path, 16, 12, 3, rgb);
  expect_near(rgb, 6);
}

TEST(ReadPicture, RefusesEveryPieceOfAFileAndSurvivesDamage) {
  const TemporaryFolder folder;
  const std::string path = folder / "picture";
  WriteSamplePng(path, 16, 12, PNG_FORMAT_RGB, Ramp(3).data());
  const Bytes png = ReadBytes(path);
  WriteSampleJpeg(path, 16, 12, 3, Ramp(3));
  for (const Bytes& whole : {png, ReadBytes(path)}) {
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

// The rows of a 16 x 12 picture as PNG data, each with filter type 0 in front;
// `interlaced` gives the seven passes of Adam7.
Bytes PngRows(const Bytes& rgb, bool interlaced) {
  struct Pass {
    int left, top, dx, dy;
  };
  static constexpr auto kPasses = std::to_array<Pass>({{0, 0, 8, 8},
                                                       {4, 0, 8, 8},
                                                       {0, 4, 4, 8},
                                                       {2, 0, 4, 4},
                                                       {0, 2, 2, 4},
                                                       {1, 0, 2, 2},
                                                       {0, 1, 1, 2}});
  Bytes rows;
  const auto add = [&](const Pass& pass) {
    for (int y = pass.top; y < 12; y += pass.dy) {
      rows.push_back(0);
      for (int x = pass.left; x < 16; x += pass.dx) {
        std::copy_n(&rgb[size_t{3} * static_cast<size_t>(16 * y + x)], 3,
                    std::back_inserter(rows));
      }
    }
  };
  if (interlaced) {
    std::for_each(kPasses.begin(), kPasses.end(), add);
  } else {
    add({0, 0, 1, 1});
  }
  return rows;
}

// Reads as the picture of Ramp(3), or is refused with these words.
struct HostileFile {
  const char* name;
  Bytes bytes;
  std::string refusal;      // empty: the picture
  bool may_refuse = false;  // newer decoders do
};

void ExpectHarmless(const std::vector<HostileFile>& files, int most) {
  const TemporaryFolder folder;
  const Bytes expected = Ramp(3);
  for (const HostileFile& file : files) {
    SCOPED_TRACE(file.name);
    WriteBytes(folder / "picture", file.bytes);
    std::string refusal;
    try {
      const Picture picture = ReadPicture(folder / "picture");
      EXPECT_EQ(picture.width, 16);
      EXPECT_EQ(picture.height, 12);
      EXPECT_TRUE(
          std::equal(expected.begin(), expected.end(), picture.rgb.begin(),
                     picture.rgb.end(),
                     [=](int a, int b) { return std::abs(a - b) <= most; }));
    } catch (const InputError& error) {
      refusal = error.what();
    }
    EXPECT_TRUE(refusal.empty() == file.refusal.empty() || file.may_refuse)
        << refusal;
    EXPECT_NE(refusal.find(file.refusal), std::string::npos) << refusal;
  }
}

TEST(ReadPicture, TakesSizesOfPngFromItsDecoderAlone) {
  const Bytes end = PngChunk("IEND", {});
  const Bytes rows = PngRows(Ramp(3), false), data = PngDataChunk(rows);
  const Bytes passes = PngRows(Ramp(3), true);
  const auto header = [](png_uint_32 width, png_uint_32 height, int depth = 8,
                         int colour = PNG_COLOR_TYPE_RGB) {
    return PngHeaderChunk(width, height, static_cast<uint8_t>(depth),
                          static_cast<uint8_t>(colour));
  };
  const Bytes good = header(16, 12),
              interlaced = PngHeaderChunk(16, 12, 8, PNG_COLOR_TYPE_RGB,
                                          PNG_INTERLACE_ADAM7);
  // An unknown chunk whose data is another header, where IHDR usually is.
  const auto decoy = [](png_uint_32 width, png_uint_32 height) {
    const Bytes chunk = PngHeaderChunk(width, height, 8, PNG_COLOR_TYPE_RGB);
    return PngChunk("deCy", {chunk.begin() + 8, chunk.end() - 4});
  };
  const std::vector<HostileFile> files = {
      {"as encoders write it", PngFile({good, data, end}), ""},
      {"smaller decoy first", PngFile({decoy(1, 1), good, data, end}), "",
       true},
      {"larger decoy first", PngFile({decoy(99, 99), good, data, end}), "",
       true},
      {"huge decoy first", PngFile({decoy(~0U, ~0U), good, data, end}), "",
       true},
      {"empty chunk first", PngFile({PngChunk("deCy", {}), good, data, end}),
       "", true},
      {"two headers", PngFile({good, header(999, 999), data, end}),
       "is damaged: "},
      {"no header", PngFile({data, end}), "is damaged: "},
      {"no width", PngFile({header(0, 12), data, end}), "is damaged: "},
      {"a side too long", PngFile({header(8193, 12), data, end}),
       "is 8193 x 12 pixels; at most 8192 x 8192 is supported"},
      {"as large as the format can",
       PngFile({header(0x7fffffff, 0x7fffffff), data, end}),
       "is 2147483647 x 2147483647 pixels; at most"},
      {"negative", PngFile({header(0x80000000, 12), data, end}),
       "is damaged: "},
      {"more rows than data", PngFile({header(16, 8192), data, end}),
       "is damaged: "},
      {"interlaced", PngFile({interlaced, PngDataChunk(passes), end}), ""},
      {"interlaced, data for one pass",
       PngFile({interlaced, PngDataChunk({passes.begin(), passes.begin() + 14}),
                end}),
       "is damaged: "},
      {"depth unknown", PngFile({header(16, 12, 3), data, end}),
       "is damaged: "},
      {"depth not of the colour type", PngFile({header(16, 12, 4), data, end}),
       "is damaged: "},
      {"palette that is missing",
       PngFile({header(16, 12, 8, PNG_COLOR_TYPE_PALETTE), data, end}),
       "is damaged: "},
      {"data ends early", PngFile({good, {data.begin(), data.end() - 9}}),
       "is truncated"},
  };
  ExpectHarmless(files, 0);
}

TEST(ReadPicture, TakesSizesOfJpegFromItsDecoderAlone) {
  const TemporaryFolder folder;
  WriteSampleJpeg(folder / "jpeg", 16, 12, 3, Ramp(3));
  const Bytes whole = ReadBytes(folder / "jpeg");
  const std::array<uint8_t, 2> marker = {0xff, 0xc0};  // of the frame header
  const auto frame =
      std::search(whole.begin(), whole.end(), marker.begin(), marker.end());
  ASSERT_NE(frame, whole.end());
  const auto frame_end = frame + 2 + frame[3];
  const auto resized = [&](int width, int height) {
    Bytes header(frame, frame_end);
    header[5] = static_cast<uint8_t>(height >> 8);
    header[6] = static_cast<uint8_t>(height);
    header[7] = static_cast<uint8_t>(width >> 8);
    header[8] = static_cast<uint8_t>(width);
    return header;
  };
  // The file with its frame header replaced.
  const auto with = [&](const Bytes& header) {
    Bytes file(whole.begin(), frame);
    file.insert(file.end(), header.begin(), header.end());
    file.insert(file.end(), frame_end, whole.end());
    return file;
  };
  Bytes two = resized(999, 999), decoy = {0xff, 0xef, 0, 21};
  two.insert(two.begin(), frame, frame_end);
  const Bytes small = resized(1, 1);
  decoy.insert(decoy.end(), small.begin(), small.end());
  decoy.insert(decoy.end(), frame, frame_end);
  const std::vector<HostileFile> files = {
      {"as encoders write it", whole, ""},
      {"decoy first", with(decoy), ""},
      {"two headers", with(two), "is damaged: "},
      {"no width", with(resized(0, 12)), "is damaged: "},
      {"largest", with(resized(65500, 65500)), "is 65500 x 65500 pixels; at"},
      {"larger than libjpeg can", with(resized(65535, 12)), "is damaged: "},
      {"more rows than data", with(resized(16, 8192)), "is truncated"},
  };
  ExpectHarmless(files, 6);
}

TEST(ReadWeights, TakesDepthAndColourOfPngFromItsDecoderAlone) {
  const TemporaryFolder folder;
  const std::string path = folder / "map";
  const auto read = [&](png_uint_32 size, uint8_t depth, uint8_t colour,
                        const Bytes& rows) -> std::optional<Bytes> {
    const Bytes grey = PngHeaderChunk(2, 2, 8, PNG_COLOR_TYPE_GRAY);
    WriteBytes(path,
               PngFile({PngChunk("deCy", {grey.begin() + 8, grey.end() - 4}),
                        PngHeaderChunk(size, size, depth, colour),
                        PngDataChunk(rows), PngChunk("IEND", {})}));
    try {
      return ReadWeights(path).values;
    } catch (const InputError&) {
      return std::nullopt;
    }
  };
  const Bytes values = {1, 2, 3, 4};  // newer decoders refuse the decoy
  EXPECT_EQ(
      read(2, 8, PNG_COLOR_TYPE_GRAY, {0, 1, 2, 0, 3, 4}).value_or(values),
      values);
  EXPECT_FALSE(read(2, 16, PNG_COLOR_TYPE_GRAY, Bytes(10)));
  EXPECT_FALSE(read(2, 8, PNG_COLOR_TYPE_RGB, Bytes(14)));
  EXPECT_FALSE(read(2, 8, PNG_COLOR_TYPE_GRAY_ALPHA, Bytes(10)));
  EXPECT_FALSE(read(8, 1, PNG_COLOR_TYPE_GRAY, Bytes(16)));
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
