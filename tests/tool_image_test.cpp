// What the tools do with pictures before and after the library.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

#include "demo/stereo_holes.h"
#include "false_colour.h"
#include "focus_point.h"
#include "frame_progress.h"
#include "image_file.h"
#include "image_samples.h"
#include "nv21.h"
#include "panel.h"
#include "tool_error.h"

namespace zuqel::tools {
namespace {

using testing::ElementsAre;

int LargestDifference(const std::vector<uint8_t>& a,
                      const std::vector<uint8_t>& b) {
  if (a.size() != b.size()) return 256;
  int largest = 0;
  for (size_t i = 0; i < a.size(); ++i) {
    largest = std::max(largest, std::abs(a[i] - b[i]));
  }
  return largest;
}

TEST(Nv21, EachByteIsTheRoundedFormulaOfItsPixels) {
  const Picture picture = NoisePicture(18, 12);
  const Nv21Frame frame = ToNv21(picture);
  ASSERT_EQ(frame.luma.size(), 18U * 12U);
  ASSERT_EQ(frame.chroma.size(), 18U * 6U);
  const auto near = [](uint8_t byte, double value) {
    // Half a step of rounding, and the factors' own.
    return std::abs(byte - std::clamp(value, 0.0, 255.0)) < 0.51;
  };
  for (int y = 0; y < 12; y += 2) {
    for (int x = 0; x < 18; x += 2) {
      double r = 0, g = 0, b = 0;
      for (int i = 0; i < 4; ++i) {
        const uint8_t* rgb = picture.Pixel(x + i % 2, y + i / 2);
        const double luma = 0.299 * rgb[0] + 0.587 * rgb[1] + 0.114 * rgb[2];
        const size_t at =
            PixelCount(18, y + i / 2) + static_cast<size_t>(x + i % 2);
        EXPECT_TRUE(near(frame.luma[at], luma)) << at;
        r += rgb[0] / 4.0;
        g += rgb[1] / 4.0;
        b += rgb[2] / 4.0;
      }
      const double luma = 0.299 * r + 0.587 * g + 0.114 * b;
      const size_t at = PixelCount(18, y / 2) + static_cast<size_t>(x);
      EXPECT_TRUE(near(frame.chroma[at], (r - luma) / 1.402 + 128)) << at;
      EXPECT_TRUE(near(frame.chroma[at + 1], (b - luma) / 1.772 + 128)) << at;
    }
  }
}

TEST(Nv21, RoundTripKeepsGreyExactlyAndEvenColoursToTwoSteps) {
  Picture grey(512, 2);
  for (size_t i = 0; i < grey.rgb.size(); ++i) {
    grey.rgb[i] = static_cast<uint8_t>(i / 3 % 512 / 2);
  }
  EXPECT_EQ(ToPicture(ToNv21(grey)).rgb, grey.rgb);

  Picture colours(2 * 6 * 6 * 6, 2);
  for (int x = 0; x < colours.width; ++x) {
    const int colour = x / 2;
    for (const int y : {0, 1}) {
      uint8_t* rgb = colours.Pixel(x, y);
      rgb[0] = static_cast<uint8_t>(51 * (colour / 36));
      rgb[1] = static_cast<uint8_t>(51 * (colour / 6 % 6));
      rgb[2] = static_cast<uint8_t>(51 * (colour % 6));
    }
  }
  // The chroma's half step weighs up to 1.772 / 2, the luma's 1 / 2.
  EXPECT_LE(LargestDifference(ToPicture(ToNv21(colours)).rgb, colours.rgb), 2);
}

// A smooth picture, so that JPEG keeps it.
std::vector<uint8_t> Ramp(size_t channels) {
  std::vector<uint8_t> bytes;
  for (int y = 0; y < 12; ++y) {
    for (int x = 0; x < 16; ++x) {
      const std::array pixel = {60 + 9 * x, 200 - 5 * y, 90 + 4 * x, 7 * x + y};
      for (size_t i = 0; i < channels; ++i) {
        bytes.push_back(static_cast<uint8_t>(pixel[i]));
      }
    }
  }
  return bytes;
}

std::vector<uint8_t> Repeat3(const std::vector<uint8_t>& grey) {
  std::vector<uint8_t> rgb;
  for (const uint8_t value : grey) rgb.insert(rgb.end(), 3, value);
  return rgb;
}

TEST(ReadPicture, TakesEveryKind) {
  const TemporaryFolder folder;
  const std::string path = folder / "picture";
  const std::vector<uint8_t> rgb = Ramp(3), grey = Ramp(1), rgba = Ramp(4);

  WriteSamplePng(path, 16, 12, PNG_FORMAT_RGB, rgb.data());
  EXPECT_EQ(ReadPicture(path).rgb, rgb) << "colour";
  WriteSamplePng(path, 16, 12, PNG_FORMAT_RGBA, rgba.data());
  EXPECT_EQ(ReadPicture(path).rgb, rgb) << "with alpha";
  WriteSamplePng(path, 16, 12, PNG_FORMAT_GRAY, grey.data());
  EXPECT_EQ(ReadPicture(path).rgb, Repeat3(grey)) << "grey";

  const std::vector<uint8_t> indices(PixelCount(16, 12), 1);
  WriteSamplePng(path, 16, 12, PNG_FORMAT_RGB_COLORMAP, indices.data(),
                 {9, 9, 9, 10, 20, 30});
  const Picture palette = ReadPicture(path);
  EXPECT_THAT(
      std::vector<uint8_t>(palette.Pixel(15, 11), palette.Pixel(15, 11) + 3),
      ElementsAre(10, 20, 30))
      << "palette";

  std::vector<uint16_t> deep(rgb.size());
  std::transform(rgb.begin(), rgb.end(), deep.begin(), [](uint8_t value) {
    return static_cast<uint16_t>(257 * value + 60);
  });
  WriteSamplePng(path, 16, 12, PNG_FORMAT_LINEAR_RGB, deep.data());
  EXPECT_EQ(ReadPicture(path).rgb, rgb) << "16 bits";

  WriteSampleJpeg(path, 16, 12, 3, rgb);
  EXPECT_LE(LargestDifference(ReadPicture(path).rgb, rgb), 6) << "JPEG";
  WriteSampleJpeg(path, 16, 12, 1, grey);
  EXPECT_LE(LargestDifference(ReadPicture(path).rgb, Repeat3(grey)), 3)
      << "grey JPEG";
}

TEST(ReadPicture, RefusesEveryPieceOfAFileAndSurvivesDamage) {
  const TemporaryFolder folder;
  const std::string whole_path = folder / "whole", path = folder / "part";
  for (const bool png : {true, false}) {
    if (png) {
      WriteSamplePng(whole_path, 16, 12, PNG_FORMAT_RGB, Ramp(3).data());
    } else {
      WriteSampleJpeg(whole_path, 16, 12, 3, Ramp(3));
    }
    const std::vector<uint8_t> whole = ReadBytes(whole_path);
    for (size_t size = 0; size < whole.size(); ++size) {
      WriteBytes(path, {whole.data(), whole.data() + size});
      EXPECT_THROW(ReadPicture(path), InputError) << png << " cut at " << size;

      std::vector<uint8_t> damaged = whole;
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

TEST(ReadDisparity, GivesBackWhatWasWritten) {
  const TemporaryFolder folder;
  DisparityMap map(5, 3);
  for (size_t i = 0; i < map.values.size(); ++i) {
    map.values[i] = static_cast<uint16_t>(73 * i);
  }
  WriteDisparity(map, folder / "d.png");
  EXPECT_EQ(ReadDisparity(folder / "d.png").values, map.values);
  map.values[4] = kUnknownDisparity + 1;
  WriteDisparity(map, folder / "d.png");
  EXPECT_THROW(ReadDisparity(folder / "d.png"), InputError);
}

TEST(FalseColour, SpansWhatWasMeasuredAndBlackensTheRest) {
  DisparityMap map(4, 1);
  map.values = {300, 420, 310, kUnknownDisparity};
  const Picture narrow = FalseColour(map);
  map.values = {0, 960, 80, kUnknownDisparity};
  EXPECT_EQ(FalseColour(map).rgb, narrow.rgb);
  EXPECT_THAT(std::vector<uint8_t>(narrow.Pixel(3, 0), narrow.Pixel(3, 0) + 3),
              ElementsAre(0, 0, 0));
  EXPECT_LT(narrow.Pixel(0, 0)[0], narrow.Pixel(0, 0)[2]);
  EXPECT_GT(narrow.Pixel(1, 0)[0], narrow.Pixel(1, 0)[2]);
}

TEST(MakePanel, BringsTilesToOneSize) {
  const Picture first = NoisePicture(6, 4), second = NoisePicture(3, 2);
  const Picture panel = MakePanel({first, second});
  ASSERT_EQ(panel.width, 20);
  ASSERT_EQ(panel.height, 4);
  EXPECT_TRUE(
      std::equal(first.Pixel(0, 3), first.Pixel(0, 3) + 18, panel.Pixel(0, 3)));
  EXPECT_TRUE(std::equal(second.Pixel(2, 1), second.Pixel(2, 1) + 3,
                         panel.Pixel(19, 3)));
  EXPECT_EQ(*panel.Pixel(10, 2), 255);
}

TEST(Summarise, MedianAndWorst) {
  EXPECT_EQ(Summarise({7}).median_ms, 7);
  EXPECT_EQ(Summarise({9, 1, 2}).median_ms, 2);
  EXPECT_EQ(Summarise({4, 1, 9, 2}).median_ms, 3);
  EXPECT_EQ(Summarise({4, 1, 9, 2}).worst_ms, 9);
}

TEST(ParseFocusPoint, TakesPointsOfThePictureOnly) {
  EXPECT_EQ(ParseFocusPoint("0,0", 10, 8).x, 0);
  EXPECT_EQ(ParseFocusPoint("9,7", 10, 8).y, 7);
  for (const char* text :
       {"", "1", "1,", ",1", "1,2,3", "1;2", "1, 2", "1,2 ", "x,1", "-1,2",
        "10,2", "2,8", "99999999999,1", "1.5,2"}) {
    EXPECT_THROW(ParseFocusPoint(text, 10, 8), InputError) << text;
  }
}

TEST(MarkStereoHoles, LeavesAGapToTheLeftOfNearThings) {
  DisparityMap map(40, 1);
  std::fill(map.values.begin(), map.values.end(), uint16_t{100});
  std::fill_n(map.values.begin() + 20, 10, uint16_t{600});
  MarkStereoHoles(20, map);  // 2 columns far off, 12 near by
  for (int x = 0; x < 40; ++x) {
    const int expected = x >= 20 && x < 30   ? 600
                         : x >= 10 && x < 20 ? kUnknownDisparity
                                             : 100;
    EXPECT_EQ(map.At(x, 0), expected) << x;
  }
}

}  // namespace
}  // namespace zuqel::tools
