// Frame dumps, made here and by the library, turned into pictures.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include "image_file.h"
#include "image_samples.h"
#include "program_run.h"

namespace zuqel::tools {
namespace {

using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr int kWidth = 34, kHeight = 5;

// What comes behind the size in the name of a dump.
constexpr const char* kEnd = "_v0.54.07_0007_1_-2.raw";

class RawCommand : public testing::Test {
 protected:
  RawCommand() {
    const size_t pixels = PixelCount(kWidth, kHeight);
    bytes_ = NoisePicture(4 * kWidth, kHeight).rgb;
    bytes_.resize(4 * pixels);
    WriteBytes(File(output_name_), bytes_);
    grey_ = bytes_;
    grey_.resize(pixels);
    for (const std::string& name : {luma_name_, weight_name_}) {
      WriteBytes(File(name), grey_);
    }
  }

  [[nodiscard]] std::string File(const std::string& name) const {
    return folder_ / name;
  }

  [[nodiscard]] Outcome Run(
      const std::string& arguments,
      const std::vector<std::string>& environment = {}) const {
    return RunZuqel(folder_ / "", arguments, environment);
  }

  void RunWell(const std::string& arguments) const {
    const Outcome outcome = Run(arguments);
    EXPECT_EQ(outcome.exit_code, 0) << arguments << "\n" << outcome.err;
    EXPECT_EQ(outcome.out, "wrote o.png (34x5)\n") << arguments;
    EXPECT_THAT(outcome.err, IsEmpty()) << arguments;
  }

  const std::string output_name_ = std::string("GLOutput_34x5") + kEnd;
  const std::string luma_name_ = std::string("GLBokeh_34x5") + kEnd;
  const std::string weight_name_ = std::string("GLRM_34x5") + kEnd;
  TemporaryFolder folder_;
  std::vector<uint8_t> bytes_, grey_;
};

TEST_F(RawCommand, ShowsOutputAsColourThroughFullRangeBt601) {
  const std::string renamed = "folder" + output_name_;
  WriteBytes(File(renamed), bytes_);
  WriteBytes(File("frame.raw"), bytes_);
  const std::vector<std::string> cases = {
      output_name_, renamed, "frame.raw --size 34x5 --kind output",
      output_name_ + " --kind output --size 34x5"};
  for (const std::string& arguments : cases) {
    RunWell("raw -o o.png " + arguments);
    const Picture picture = ReadPicture(File("o.png"));
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
}

TEST_F(RawCommand, ShowsOutputOfAScreenAsItIs) {
  RunWell("raw -o o.png --rgb " + output_name_);
  std::vector<uint8_t> rgb = bytes_;
  size_t at = 0;
  rgb.erase(std::remove_if(rgb.begin(), rgb.end(),
                           [&](uint8_t) { return at++ % 4 == 3; }),
            rgb.end());
  EXPECT_EQ(ReadPicture(File("o.png")).rgb, rgb);
}

TEST_F(RawCommand, ShowsBytePlanesAsGreyThatOtherCommandsTake) {
  WriteBytes(File("plane"), grey_);
  for (const std::string& arguments :
       {luma_name_, weight_name_, std::string("plane --size 34x5 --kind luma"),
        std::string("plane --size 34x5 --kind weights")}) {
    RunWell("raw -o o.png " + arguments);
    EXPECT_THAT(ReadWeights(File("o.png")).values, ElementsAreArray(grey_))
        << arguments;
  }
}

TEST_F(RawCommand, RefusesContradictionsInOneLineAndTouchesNothing) {
  WriteBytes(File("frame.raw"), bytes_);
  WriteBytes(File("short_" + output_name_), {bytes_.begin(), bytes_.end() - 1});
  WriteBytes(File("kept.png"), {'o', 'l', 'd'});
  struct Case {
    const char* name;
    std::string arguments;
    std::string message;
  };
  const std::string none = std::string("GLRM_2x2") + kEnd;
  const std::string untold = "frame.raw: the name does not tell size and kind";
  const std::vector<Case> cases = {
      {"no file", "", "FILE is required"},
      {"missing", none, none + ": cannot be opened"},
      {"plain name", "frame.raw", untold},
      {"size alone", "frame.raw --size 34x5", untold},
      {"kind alone", "frame.raw --kind output", untold},
      {"other size", output_name_ + " --size 5x34",
       "--size 5x34: the name says 34x5"},
      {"other kind", output_name_ + " --kind luma",
       "--kind luma: the name says output"},
      {"rgb luma", luma_name_ + " --rgb", "--rgb: is for output; this is luma"},
      {"unknown kind", "frame.raw --size 34x5 --kind depth",
       "--kind: depth is not luma, weights or output"},
      {"no size", "frame.raw --kind luma --size 34", "--size 34: is not WxH"},
      {"past int", "frame.raw --kind luma --size 9999999999x1",
       "--size 9999999999x1: is not WxH"},
      {"zero", "frame.raw --kind luma --size 0x5",
       "--size: 0x5 is not between 1x1 and 8192x8192"},
      {"wide", "frame.raw --kind luma --size 8193x1", "--size: 8193x1 is not"},
      {"negative name", std::string("GLRM_-1x-1") + kEnd,
       ": -1x-1 is not between"},
      {"short", "short_" + output_name_,
       ": has 679 bytes; output of 34x5 has 680"},
      {"long", "frame.raw --size 34x5 --kind luma",
       "frame.raw: has 680 bytes; luma of 34x5 has 170"},
  };
  const std::set<std::string> before = FilesIn(File(""));
  for (const Case& row : cases) {
    const Outcome outcome = Run("raw -o kept.png " + row.arguments);
    EXPECT_EQ(outcome.exit_code, 2) << row.name;
    EXPECT_THAT(outcome.err, HasSubstr(row.message)) << row.name;
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1)
        << row.name;
    EXPECT_THAT(outcome.out, IsEmpty()) << row.name;
    EXPECT_EQ(FilesIn(File("")), before) << row.name;
  }
  EXPECT_EQ(ReadText(File("kept.png")), "old");
}

TEST_F(RawCommand, ShowsWhatTheLibraryDumps) {
  WritePicture(NoisePicture(64, 48), File("photo.png"));
  WriteSamplePng(File("w.png"), kWidth, kHeight, PNG_FORMAT_GRAY, grey_.data());
  std::ofstream(File("properties"))
      << "persist.zu.VLGLbokeh.readfile=1\n"
      << "persist.zu.LVGLbokeh.fileDir=" << File("dump_") << "\n";
  // The first frame's output has the size of the surface before it was drawn.
  const Outcome outcome =
      Run("render --image photo.png --weights w.png --focus 9,7 --repeat 2 "
          "-o bokeh.png",
          {"ZUQEL_PROPERTIES=" + File("properties"),
           "ASAN_OPTIONS=detect_leaks=0"});
  if (outcome.err.find("no OpenGL ES") != std::string::npos) {
    GTEST_SKIP() << outcome.err;
  }
  ASSERT_EQ(outcome.exit_code, 0) << outcome.err;
  const auto show = [&](const std::string& dump) {
    const Outcome shown =
        Run("raw -o o.png dump_" + dump + "_v0.54.07_0001_9_7.raw");
    EXPECT_EQ(shown.exit_code, 0) << shown.err;
    return File("o.png");
  };
  EXPECT_EQ(ReadWeights(show("GLRM_34x5")).values, grey_);
  const Picture output = ReadPicture(show("GLOutput_64x48"));
  const Picture bokeh = ReadPicture(File("bokeh.png"));
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
