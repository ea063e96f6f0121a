// Frame dumps, made here and by the library, turned into pictures.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "image_file.h"
#include "image_samples.h"
#include "program_run.h"

namespace zuqel::tools {
namespace {

using testing::HasSubstr;

constexpr int kWidth = 34, kHeight = 5;
constexpr std::ptrdiff_t kPixels{34 * 5};

class RawCommand : public testing::Test {
 protected:
  RawCommand() {
    for (const std::string& name : {output_, std::string("frame.raw")}) {
      WriteBytes(folder_ / name, bytes_);
    }
    for (const std::string& name : {luma_, std::string("plane")}) {
      WriteBytes(folder_ / name, grey_);
    }
  }

  [[nodiscard]] Outcome Run(
      const std::string& arguments,
      const std::vector<std::string>& environment = {}) const {
    return RunZuqel(folder_ / "", arguments, environment);
  }

  // The path of the picture that it writes.
  [[nodiscard]] std::string Show(const std::string& arguments) const {
    const Outcome outcome = Run("raw -o o.png " + arguments);
    EXPECT_EQ(outcome.exit_code, 0) << arguments << "\n" << outcome.err;
    EXPECT_EQ(outcome.err, "") << arguments;
    return folder_ / "o.png";
  }

  // Dumps whose names tell what they are.
  const std::string end_ = "_v0.54.07_0007_1_-2.raw";
  const std::string output_ = "GLOutput_34x5" + end_;
  const std::string luma_ = "GLBokeh_34x5" + end_;
  const TemporaryFolder folder_;
  // Of the output four bytes a pixel, of a plane one.
  const std::vector<uint8_t> noise_ = NoisePicture(4 * kWidth, kHeight).rgb;
  const std::vector<uint8_t> bytes_{noise_.begin(),
                                    noise_.begin() + 4 * kPixels};
  const std::vector<uint8_t> grey_{noise_.begin(), noise_.begin() + kPixels};
};

TEST_F(RawCommand, ShowsOutputAsColourThroughFullRangeBt601) {
  for (const std::string& arguments :
       {output_, std::string("frame.raw --size 34x5 --kind output")}) {
    const Picture picture = ReadPicture(Show(arguments));
    ASSERT_EQ(picture.rgb.size(), 3 * grey_.size()) << arguments;
    for (size_t i = 0; i < grey_.size(); ++i) {
      const double y = bytes_[4 * i], u = bytes_[4 * i + 1] - 128.0,
                   v = bytes_[4 * i + 2] - 128.0;
      const std::array<double, 3> rgb = {
          y + 1.402 * v, y - 0.344136 * u - 0.714136 * v, y + 1.772 * u};
      for (size_t c = 0; c < 3; ++c) {
        // Half a step of rounding, and the factors' own.
        ASSERT_NEAR(picture.rgb[3 * i + c], std::clamp(rgb.at(c), 0.0, 255.0),
                    0.51)
            << arguments << ": pixel " << i << ", channel " << c;
      }
    }
  }
  // Of a screen as it is.
  const Picture screen = ReadPicture(Show("--rgb " + output_));
  for (size_t i = 0; i < grey_.size(); ++i) {
    ASSERT_TRUE(
        std::equal(&bytes_[4 * i], &bytes_[4 * i + 3], &screen.rgb[3 * i]))
        << i;
  }
}

TEST_F(RawCommand, ShowsBytePlanesAsGreyThatOtherCommandsTake) {
  for (const std::string& arguments :
       {luma_, std::string("plane --size 34x5 --kind weights")}) {
    EXPECT_EQ(ReadWeights(Show(arguments)).values, grey_) << arguments;
  }
}

TEST_F(RawCommand, RefusesContradictionsInOneLineAndTouchesNothing) {
  const std::string longer = "more_" + luma_, none = "GLRM_2x2" + end_;
  WriteBytes(folder_ / longer, bytes_);
  WriteBytes(folder_ / "kept.png", {'o', 'l', 'd'});
  const std::string untold = "frame.raw: the name does not tell size and kind";
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"", "FILE is required"},
      {none, none + ": cannot be opened"},
      {"frame.raw --size 34x5", untold},
      {"frame.raw --kind output", untold},
      {output_ + " --size 5x34", "--size 5x34: the name says 34x5"},
      {output_ + " --kind luma", "--kind luma: the name says output"},
      {luma_ + " --rgb", "--rgb: is for output; this is luma"},
      {"plane --size 34x5 --kind depth",
       "--kind: depth is not luma, weights or output"},
      {"plane --kind luma --size 34", "--size 34: is not WxH"},
      {"plane --kind luma --size 9999999999x1",
       "--size 9999999999x1: is not WxH"},
      {"plane --kind luma --size 0x5",
       "--size: 0x5 is not between 1x1 and 8192x8192"},
      {"plane --kind luma --size 8193x1", "--size: 8193x1 is not"},
      {"GLRM_-1x-1" + end_, ": -1x-1 is not between"},
      {"plane --size 34x5 --kind output",
       ": has 170 bytes; output of 34x5 has 680"},
      {longer, ": has 680 bytes; luma of 34x5 has 170"},
  };
  const std::set<std::string> before = FilesIn(folder_ / "");
  for (const auto& [arguments, message] : cases) {
    const Outcome outcome = Run("raw -o kept.png " + arguments);
    EXPECT_EQ(outcome.exit_code, 2) << arguments;
    EXPECT_THAT(outcome.err, HasSubstr(message)) << arguments;
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1)
        << arguments;
    EXPECT_EQ(outcome.out, "") << arguments;
  }
  EXPECT_EQ(FilesIn(folder_ / ""), before);
  EXPECT_EQ(ReadText(folder_ / "kept.png"), "old");
}

TEST_F(RawCommand, ShowsWhatTheLibraryDumps) {
  WritePicture(NoisePicture(64, 48), folder_ / "photo.png");
  WriteSamplePng(folder_ / "w.png", kWidth, kHeight, PNG_FORMAT_GRAY,
                 grey_.data());
  std::ofstream(folder_ / "properties")
      << "persist.zu.VLGLbokeh.readfile=1\n"
      << "persist.zu.LVGLbokeh.fileDir=" << (folder_ / "dump_") << "\n";
  // The first frame's output has the size of the surface before it was drawn.
  const Outcome outcome =
      Run("render --image photo.png --weights w.png --focus 9,7 --repeat 2 "
          "-o bokeh.png",
          {"ZUQEL_PROPERTIES=" + (folder_ / "properties"),
           "ASAN_OPTIONS=detect_leaks=0"});
  if (outcome.err.find("no OpenGL ES") != std::string::npos) {
    GTEST_SKIP() << outcome.err;
  }
  ASSERT_EQ(outcome.exit_code, 0) << outcome.err;
  const std::string end = "_v0.54.07_0001_9_7.raw";
  EXPECT_EQ(ReadWeights(Show("dump_GLRM_34x5" + end)).values, grey_);
  const Picture output = ReadPicture(Show("dump_GLOutput_64x48" + end));
  const Picture bokeh = ReadPicture(folder_ / "bokeh.png");
  ASSERT_EQ(output.rgb.size(), bokeh.rgb.size());
  // A 2x2 block of the frame takes its chroma from the last of its pixels.
  for (int y = 1; y < output.height; y += 2) {
    for (int x = 1; x < output.width; x += 2) {
      ASSERT_TRUE(std::equal(output.Pixel(x, y), output.Pixel(x, y) + 3,
                             bokeh.Pixel(x, y)))
          << x << ", " << y;
    }
  }
}

}  // namespace
}  // namespace zuqel::tools
