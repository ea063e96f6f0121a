// Frame dumps turned into pictures.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
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
constexpr std::ptrdiff_t kPixels = 170;

class RawCommand : public testing::Test {
 protected:
  RawCommand() {
    WriteBytes(folder_ / output_, bytes_);
    WriteBytes(folder_ / "frame.raw", bytes_);
    WriteBytes(folder_ / luma_, grey_);
    WriteBytes(folder_ / "plane", grey_);
  }

  // The path of the picture that it writes.
  [[nodiscard]] std::string Show(const std::string& arguments) const {
    const Outcome outcome = RunZuqel(folder_ / "", "raw -o o.png " + arguments);
    EXPECT_EQ(outcome.exit_code, 0) << arguments << "\n" << outcome.err;
    EXPECT_EQ(outcome.err, "") << arguments;
    return folder_ / "o.png";
  }

  // Dumps whose names give size and kind.
  const std::string end_ = "_v0.54.07_0007_1_-2.raw";
  const std::string output_ = "GLOutput_34x5" + end_;
  const std::string luma_ = "GLBokeh_34x5" + end_;
  const TemporaryFolder folder_;
  // The output has four bytes per pixel, a plane one.
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
            << arguments << ": " << i << ", " << c;
      }
    }
  }
  const Picture screen = ReadPicture(Show("--rgb " + output_));
  for (size_t i = 0; i < 3 * grey_.size(); ++i) {
    ASSERT_EQ(screen.rgb[i], bytes_[i / 3 * 4 + i % 3]) << i;
  }
}

TEST_F(RawCommand, ShowsBytePlanesAsGreyThatOtherCommandsTake) {
  EXPECT_EQ(ReadWeights(Show(luma_)).values, grey_);
  EXPECT_EQ(ReadWeights(Show("plane --size 34x5 --kind weights")).values,
            grey_);
}

TEST_F(RawCommand, RefusesContradictionsInOneLineAndTouchesNothing) {
  const std::string none = "GLRM_2x2" + end_;
  WriteBytes(folder_ / "kept.png", {'o', 'l', 'd'});
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"", "FILE is required"},
      {none, none + ": cannot be opened"},
      {"frame.raw --size 34x5",
       "frame.raw: the name does not give size and kind"},
      {output_ + " --size 5x34", "--size 5x34: the name says 34x5"},
      {output_ + " --kind luma", "--kind luma: the name says output"},
      {luma_ + " --rgb", "--rgb: is for output; this is luma"},
      {"plane --kind luma --size 34", "--size 34: is not WxH"},
      {"plane --kind luma --size 8193x1", "--size: 8193x1 is not"},
      {"GLRM_-1x-1" + end_, ": -1x-1 is not between"},
      {"plane --size 34x5 --kind output",
       ": has 170 bytes; output of 34x5 has 680"},
  };
  const std::set<std::string> before = FilesIn(folder_ / "");
  for (const auto& [arguments, message] : cases) {
    const Outcome outcome =
        RunZuqel(folder_ / "", "raw -o kept.png " + arguments);
    SCOPED_TRACE(arguments);
    EXPECT_EQ(outcome.exit_code, 2);
    EXPECT_THAT(outcome.err, HasSubstr(message));
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1);
    EXPECT_EQ(outcome.out, "");
  }
  EXPECT_EQ(FilesIn(folder_ / ""), before);
  EXPECT_EQ(ReadText(folder_ / "kept.png"), "old");
}

}  // namespace
}  // namespace zuqel::tools
