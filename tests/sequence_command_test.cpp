// Series of frames, and single ones on the CPU, from the command line.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "image_file.h"
#include "image_samples.h"
#include "nv21.h"
#include "program_run.h"

namespace zuqel::tools {
namespace {

using testing::HasSubstr;
constexpr size_t kPixels = size_t{128} * 96, kBytes = 3 * kPixels;

// Grey frames whose near part, on the left, grows from one to the next.
class SequenceCommand : public testing::Test {
 protected:
  SequenceCommand() {
    for (size_t i = 0; i < names_.size(); ++i) {
      Picture grey = NoisePicture(128, 96);
      for (size_t j = 0; j < kBytes; ++j) grey.rgb[j] = grey.rgb[j / 3 * 3];
      WritePicture(grey, folder_ / ("in_" + names_[i]));
      DisparityMap map(32, 24);
      for (size_t j = 0; j < map.values.size(); ++j) {
        map.values[j] = j % 32 < 12 + 3 * i ? 900 : 100;
      }
      WriteDisparity(map, folder_ / ("d_" + names_[i]));
    }
  }
  // See command_line_test.cpp for why leaks are not checked.
  [[nodiscard]] Outcome Run(
      const std::string& arguments,
      const char* setting = "__EGL_VENDOR_LIBRARY_FILENAMES=/none") const {
    return RunZuqel(folder_ / "", arguments, {setting});
  }
  [[nodiscard]] std::vector<uint8_t> Rgb(const std::string& name) const {
    return ReadPicture(folder_ / name).rgb;
  }

  const TemporaryFolder folder_;
  const std::vector<std::string> names_ = {"07", "08", "09", "10"};
  const std::string series_ =
      "sequence --images in_%02d --disparities d_%02d --first 7 --count 4 "
      "--focus 20,50 -o ";
  const std::string cpu_ =
      "render --focus 20,50 --renderer cpu -o one --disparity d_";
};

TEST_F(SequenceCommand, VideoAndPicturesHoldTheSameSmoothedFrames) {
  WritePicture(NoisePicture(128, 96), folder_ / "in_08");  // has colours
  EXPECT_EQ(Run(series_ + "o.y4m --fps 30").out,
            "wrote o.y4m (128x96, 4 frames)\n");
  EXPECT_THAT(Run(series_ + "%02d").out, HasSubstr("wrote 08 (128x96)\n"));
  const std::string video = ReadText(folder_ / "o.y4m");
  const std::string head =
      "YUV4MPEG2 W128 H96 F30:1 Ip A1:1 C420jpeg XCOLORRANGE=FULL\nFRAME\n";
  constexpr size_t kFrameSize = kPixels * 3 / 2 + 6;
  ASSERT_EQ(video.size(), head.size() - 6 + names_.size() * kFrameSize);
  EXPECT_EQ(video.substr(0, head.size()), head);
  for (size_t i = 0; i < names_.size(); ++i) {
    const char* y = &video[head.size() + i * kFrameSize];
    Nv21Frame frame = {128, 96, {y, y + kPixels}, {}};
    for (const char* u = y + kPixels; u < y + kPixels * 5 / 4; ++u) {
      frame.chroma.push_back(static_cast<uint8_t>(u[kPixels / 4]));
      frame.chroma.push_back(static_cast<uint8_t>(*u));
    }
    EXPECT_EQ(ToPicture(frame).rgb, Rgb(names_[i])) << i;
    // The fourth frame of a session is the first whose mask is smoothed.
    EXPECT_EQ(Run(cpu_ + names_[i] + " --image in_" + names_[i]).err, "");
    EXPECT_EQ(Rgb("one") == Rgb(names_[i]), i < 3) << i;
  }
}

TEST_F(SequenceCommand, RefusesAndLeavesNothing) {
  WritePicture(NoisePicture(64, 48), folder_ / "in_10");
  std::vector<std::pair<std::string, const char*>> cases = {
      {"sequence -o o%d", "give one of --images and --demo"},
      {series_ + "o.y4m --focus-to 9,96", "--focus-to 9,96: lies outside"},
      {series_ + "o.y4m", "in_10: is 64x48; the series began with 128x96"},
      {cpu_ + "07 --image in_07 --map-from gpu", "--map-from: does not work"},
      {cpu_ + "07 --image in_07 --f-number 2", "--f-number: does not work"},
  };
  for (const char* pattern : {"o", "%s", "%n%d", "%d%d", "%%%d", "%0d", "%00d",
                              "%4d", "%04u", "%012d", "%*d", "%d%", "%"}) {
    cases.emplace_back(series_ + pattern, "needs one %d or %04d");
  }
  const auto before = FilesIn(folder_ / "");
  for (const auto& [arguments, message] : cases) {
    const Outcome outcome = Run(arguments);
    EXPECT_EQ(outcome.exit_code, 2) << arguments;
    EXPECT_THAT(outcome.err, HasSubstr(message)) << arguments;
    EXPECT_EQ(FilesIn(folder_ / ""), before) << arguments;
  }
}

TEST_F(SequenceCommand, CpuBlursTheBackgroundAndIsComparedWithTheGpu) {
  const std::string render = "render --image in_07 --disparity d_07 --focus ";
  EXPECT_THAT(Run(render + "99,50 -o one --renderer cpu").out,
              HasSubstr(")\nthe background is in focus: "));
  EXPECT_EQ(Run(cpu_ + "07 --image in_07").out, "wrote one (128x96)\n");
  const auto source = Rgb("in_07"), cpu = Rgb("one");
  EXPECT_NE(cpu, source);
  const auto [code, out, err] =
      Run(render + "20,50 -o two --compare difference",
          "ASAN_OPTIONS=detect_leaks=0");
  if (err.find("no OpenGL ES") != std::string::npos) GTEST_SKIP() << err;
  const auto gpu = Rgb("two"), difference = Rgb("difference");
  int largest = 0;
  for (size_t i = 0; i < kBytes; ++i) {  // the step of the map is at 48
    ASSERT_TRUE(i / 3 % 128 >= 42 || cpu[i] == source[i]) << i;
    const int step = std::abs(cpu[i] - gpu[i]);
    ASSERT_EQ(difference[i], std::min(4 * step, 255));
    largest = std::max(largest, step);
  }
  EXPECT_THAT(out, HasSubstr("dB, largest difference " +
                             std::to_string(largest) + "\nU: PSNR inf dB, "));
}

}  // namespace
}  // namespace zuqel::tools
