// What the tools do with pictures before and after the library.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <iterator>
#include <numeric>
#include <string>
#include <vector>

#include "focus_point.h"
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
