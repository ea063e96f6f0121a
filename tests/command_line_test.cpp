// The command-line program: arguments in; exit code, messages and files out.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "image_samples.h"
#include "photo/image_file.h"
#include "photo/nv21.h"
#include "program_run.h"
#include "random.h"

namespace zuqel::tools {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

constexpr int kWidth = 320, kHeight = 240;

class Rendering : public CommandLine {
 protected:
  Rendering() {
    WritePicture(picture_, File("photo.png"));
    // The left half is near, the right half far.
    DisparityMap disparity(80, 60);
    for (int i = 0; i < 80 * 60; ++i) {
      disparity.At(i % 80, i / 80) = i % 80 < 40 ? 900 : 100;
    }
    WriteDisparity(disparity, File("d.png"));
    WriteGrey(WeightMap(64, 48), File("sharp.png"));
    WriteBytes(File("kept.png"), {'o', 'l', 'd'});
  }

  const Picture picture_ = NoisePicture(kWidth, kHeight);
};

TEST_F(CommandLine, PrintsHelpAndVersion) {
  const Cases cases = {
      {"--help", "COMMAND --help"},
      {"--version", "zuqel " ZUQEL_VERSION "\n"},
      {"render --help", "\n  zuqel render photo.heic "},
      {"depth --help", "\n  zuqel depth photo.heic "},
      {"refocus-map --help", "\n  zuqel refocus-map --disparity "},
      {"sequence --help", "\n  zuqel sequence --demo -o "},
      {"report --help", "\n  zuqel report -o report photo.heic "},
      {"demo --help", "\n  zuqel demo -o "},
      {"view --help", "\n  zuqel view photo.heic\n"},
      {"raw --help", "\n  zuqel raw GLOutput_"},
      {"info --help", "\n  zuqel info --device "},
      {"calibration seal --help", "\n  zuqel calibration seal "},
  };
  for (const auto& [arguments, piece] : cases) {
    const Outcome outcome = Run(arguments);
    EXPECT_EQ(outcome.exit_code, 0) << arguments;
    EXPECT_THAT(outcome.out, HasSubstr(piece)) << arguments;
    EXPECT_THAT(outcome.err, IsEmpty()) << arguments;
  }
}

TEST_F(Rendering, RefusesBadInput) {
  std::vector<uint8_t> png = ReadBytes(File("photo.png"));
  png[png.size() / 2] ^= 1;
  WriteBytes(File("damaged.png"), png);

  const std::string image = "render --image ", at = " --focus 9,9";
  const std::string map = " --disparity d.png" + at, rest = map + " -o o.png";
  const std::string photo = image + "photo.png", to = at + " -o o.png";
  const std::string good = photo + map;
  const std::string refocus = "refocus-map" + to + " --generator ";
  ExpectRefused({
      {"", "subcommand is required"},
      {good, "--output is required"},
      {image + "none.png" + rest, "none.png: cannot be opened"},
      {image + "kept.png" + rest,
       "kept.png: is not a PNG, JPEG, HEIC or AVIF picture"},
      {image + "damaged.png" + rest, "damaged.png: is damaged: "},
      {good + " -o kept.gif", "kept.gif: has to end in .png, .jpg or .jpeg"},
      {photo + " --weights d.png" + to, "d.png: is 16-bit grey; 8-bit grey is"},
      {photo + " --disparity d.png --focus 320,9 -o o.png",
       "--focus 320,9: lies outside the picture of 320 x 240"},
      {"view", "give a photo or --demo"},
      {"view photo.png --f-number 11", "--f-number: is not between 1 and 10"},
      {good + " -o o.png --f-number nan", "--f-number: is not"},
      {good + " -o o.png --panel ./o.png", "./o.png: is given for two outputs"},
      {photo + " --weights d.png --map-from gpu" + to,
       "--map-from: works with"},
      {refocus + "cpu --disparity d.png",
       "--generator: cpu is not one of gpu "},
      {refocus + "gpu", "give --disparity, --depth or an --image with depth"},
      {refocus + "distance --distance d.png --size 9x9", "--size: distance "},
  });
  ExpectRefused(
      {{good + " -o kept.png", "no OpenGL ES 2.0 to render with: egl"}}, 1);
}

TEST_F(Rendering, RefusesToReplaceAnInput) {
  namespace fs = std::filesystem;
  const std::string dump = "GLRM_2x2_v0.raw";
  WriteBytes(File(dump), {1, 2, 3, 4});
  WriteBytes(File("container.bin"), std::vector<uint8_t>(464));
  WriteBytes(File("key.bin"), std::vector<uint8_t>(32));
  for (const std::string number : {"1", "2"}) {
    fs::copy_file(File("photo.png"), File("in" + number));
    fs::copy_file(File("d.png"), File("d" + number));
  }
  fs::create_symlink("photo.png", File("link.png"));
  fs::create_hard_link(File("d.png"), File("hard.png"));
  fs::create_symlink("in2", File("video.y4m"));
  fs::create_hard_link(File("d2"), File("o1"));

  const std::string render =
      "render --renderer cpu --image photo.png --disparity d.png --focus 9,9 ";
  const std::string refocus =
      "refocus-map --image photo.png --disparity d.png --focus 9,9 "
      "--generator disparity-base-cpu ";
  const std::string sequence =
      "sequence --images in%d --disparities d%d --first 1 --count 2 "
      "--focus 9,9 -o ";
  const std::string raw = "raw " + dump + " -o ";
  const std::string seal = "calibration seal container.bin --key key.bin -o ";
  const Cases outputs = {
      {render + "-o ", "photo.png"},
      {render + "-o ", "./d.png"},
      {render + "-o ", "link.png"},
      {render + "-o o.png --panel ", "link.png"},
      {render + "-o o.png --compare ", "hard.png"},
      {"render --image photo.png --weights sharp.png --focus 9,9 -o ",
       "sharp.png"},
      {refocus + "-o ", "d.png"},
      {refocus + "-o o.png --panel ", "photo.png"},
      {sequence, "in%d"},
      {sequence, "d%d"},
      {sequence, "o%d"},
      {sequence, "video.y4m"},
      {raw, dump},
      {seal, "container.bin"},
      {seal, "key.bin"},
  };
  Cases cases;
  for (const auto& [arguments, output] : outputs) {
    cases.emplace_back(arguments + output, ": is one of the inputs\n");
  }
  ExpectRefused(cases);
  EXPECT_TRUE(fs::is_symlink(File("link.png")));
}

// The sum of the squared steps of green in 121 columns from `left` on.
int Contrast(const Picture& picture, int left) {
  int sum = 0;
  for (int i = 0; i < 120 * kHeight; ++i) {
    const uint8_t* rgb = picture.Pixel(left + i % 120, i / 120);
    sum += (rgb[1] - rgb[4]) * (rgb[1] - rgb[4]);
  }
  return sum;
}

class RenderingWithGl : public Rendering {
 protected:
  void SetUp() override {
    const Outcome outcome = Run(
        "render --image photo.png --weights sharp.png --focus 9,9 -o try.png",
        kGl);
    if (outcome.err.find("no OpenGL ES") != std::string::npos) {
      GTEST_SKIP() << outcome.err;
    }
    ASSERT_EQ(outcome.exit_code, 0) << outcome.err;
  }
};

TEST_F(RenderingWithGl, BlursAwayFromTheFocus) {
  const Picture plain = ReadPicture(File("try.png"));
  // The conversion to the camera's format and back is all that remains.
  EXPECT_EQ(plain.rgb, ToPicture(ToNv21(picture_)).rgb);

  const auto render = [&](const std::string& arguments) {
    const Outcome outcome =
        Run("render --image photo.png --disparity d.png -o kept.png --focus " +
                arguments,
            kGl);
    EXPECT_EQ(outcome.exit_code, 0) << outcome.err;
    return ReadPicture(File("kept.png"));
  };
  // The step of the map is at 160.
  const Picture near = render("20,100"), far = render("300,100 --focus-dot");
  EXPECT_EQ(Contrast(near, 0), Contrast(plain, 0));
  EXPECT_LT(Contrast(near, 199), Contrast(plain, 199) / 4);
  EXPECT_LT(Contrast(far, 0), Contrast(plain, 0) / 4);
  EXPECT_NE(Contrast(far, 199), Contrast(plain, 199));  // the dot
  EXPECT_GT(Contrast(render("20,100 --f-number 8"), 199),
            2 * Contrast(near, 199));
}

TEST_F(RenderingWithGl, PanelRepeatAndLog) {
  const Outcome outcome =
      Run("render --image photo.png --disparity d.png --focus 9,9 -o o.png "
          "--panel p.png --repeat 3 --verbose",
          kGl);
  EXPECT_EQ(outcome.exit_code, 0);
  EXPECT_THAT(outcome.out, HasSubstr("wrote o.png (320x240)\n"
                                     "wrote p.png (976x240)\n"
                                     "frame time: median "));
  EXPECT_THAT(outcome.out, HasSubstr("(3 frames)\n"));
  EXPECT_THAT(outcome.err, HasSubstr("zuQelRT_GLInitV1 +"));
  const Picture panel = ReadPicture(File("p.png"));
  const Picture result = ReadPicture(File("o.png"));
  for (int y = 0; y < kHeight; ++y) {
    const uint8_t* row = result.Pixel(0, y);
    ASSERT_TRUE(std::equal(row, row + size_t{3} * kWidth, panel.Pixel(656, y)))
        << y;
  }
}

TEST_F(RenderingWithGl, DemoWritesASceneThatRenderTakes) {
  const Outcome outcome = Run("demo -o new", kGl);
  EXPECT_EQ(outcome.exit_code, 0) << outcome.err;
  const Outcome again =
      Run("render --image new/scene.png --disparity new/disparity.png "
          "--focus 330,300 -o again.png",
          kGl);
  EXPECT_EQ(again.exit_code, 0) << again.err;
  EXPECT_EQ(ReadBytes(File("again.png")), ReadBytes(File("new/near_f1.png")));
}

// Frame dumps of 34 x 5 turned into pictures.
class RawCommand : public CommandLine {
 protected:
  RawCommand() {
    WriteBytes(File(output_), bytes_);
    WriteBytes(File("frame.raw"), bytes_);
    WriteBytes(File(luma_), grey_);
    WriteBytes(File("plane"), grey_);
  }

  // The path of the picture that it writes.
  [[nodiscard]] std::string Show(const std::string& arguments) const {
    const Outcome outcome = Run("raw -o o.png " + arguments);
    EXPECT_EQ(outcome.exit_code, 0) << arguments << "\n" << outcome.err;
    EXPECT_EQ(outcome.err, "") << arguments;
    return File("o.png");
  }

  // Dumps whose names give size and kind.
  const std::string end_ = "_v1.2_0007_1_-2.raw";
  const std::string output_ = "GLOutput_34x5" + end_;
  const std::string luma_ = "GLBokeh_34x5" + end_;
  // The output has four bytes for each of its 170 pixels, a plane one.
  const std::vector<uint8_t> bytes_ = Random(1).Values<uint8_t>(680);
  const std::vector<uint8_t> grey_{bytes_.begin(), bytes_.begin() + 170};
};

TEST_F(RawCommand, ShowsOutputAsColourThroughFullRangeBt601) {
  const Picture picture = ReadPicture(Show(output_));
  ASSERT_EQ(picture.rgb.size(), 3 * grey_.size());
  for (size_t i = 0; i < picture.rgb.size(); ++i) {
    const uint8_t* yuv = &bytes_[i / 3 * 4];
    const double y = yuv[0], u = yuv[1] - 128.0, v = yuv[2] - 128.0;
    const std::array<double, 3> rgb = {
        y + 1.402 * v, y - 0.344136 * u - 0.714136 * v, y + 1.772 * u};
    // Half a step of rounding, and the factors' own.
    ASSERT_NEAR(picture.rgb[i], std::clamp(rgb.at(i % 3), 0.0, 255.0), 0.51)
        << i;
  }
  const std::string unnamed = "frame.raw --size 34x5 --kind output";
  EXPECT_EQ(ReadPicture(Show(unnamed)).rgb, picture.rgb);
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

TEST_F(RawCommand, RefusesContradictions) {
  const std::string raw = "raw -o kept.png ", none = "GLRM_2x2" + end_;
  WriteBytes(File("kept.png"), {'o', 'l', 'd'});
  ExpectRefused({
      {raw, "FILE is required"},
      {raw + none, none + ": cannot be opened"},
      {raw + "frame.raw --size 34x5",
       "frame.raw: the name does not give size and kind"},
      {raw + output_ + " --size 5x34", "--size 5x34: the name says 34x5"},
      {raw + output_ + " --kind luma", "--kind luma: the name says output"},
      {raw + luma_ + " --rgb", "--rgb: is for output; this is luma"},
      {raw + "plane --kind luma --size 34", "--size 34: is not WxH"},
      {raw + "plane --kind luma --size 8193x1", "--size: 8193x1 is not"},
      {raw + "GLRM_-1x-1" + end_, ": -1x-1 is not between"},
      {raw + "plane --size 34x5 --kind output",
       ": has 170 bytes; output of 34x5 has 680"},
  });
}

constexpr size_t kPixels = size_t{128} * 96, kBytes = 3 * kPixels;

// Grey frames whose near part, on the left, grows from one to the next.
class SequenceCommand : public CommandLine {
 protected:
  SequenceCommand() {
    for (size_t i = 0; i < names_.size(); ++i) {
      Picture grey = NoisePicture(128, 96);
      for (size_t j = 0; j < kBytes; ++j) grey.rgb[j] = grey.rgb[j / 3 * 3];
      WritePicture(grey, File("in_" + names_[i]));
      DisparityMap map(32, 24);
      for (size_t j = 0; j < map.values.size(); ++j) {
        map.values[j] = j % 32 < 12 + 3 * i ? 900 : 100;
      }
      WriteDisparity(map, File("d_" + names_[i]));
    }
  }

  [[nodiscard]] std::vector<uint8_t> Rgb(const std::string& name) const {
    return ReadPicture(File(name)).rgb;
  }

  const std::vector<std::string> names_ = {"07", "08", "09", "10"};
  const std::string series_ =
      "sequence --images in_%02d --disparities d_%02d --first 7 --count 4 "
      "--focus 20,50 --renderer cpu -o ";
  const std::string cpu_ =
      "render --focus 20,50 --renderer cpu -o one.png --disparity d_";
};

TEST_F(SequenceCommand, VideoAndPicturesHoldTheSameSmoothedFrames) {
  WritePicture(NoisePicture(128, 96), File("in_08"));  // has colours
  EXPECT_EQ(Run(series_ + "o.y4m --fps 30").out,
            "wrote o.y4m (128x96, 4 frames)\n");
  EXPECT_THAT(Run(series_ + "%02d").out, HasSubstr("wrote 08 (128x96)\n"));
  const std::string video = ReadText(File("o.y4m"));
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
    EXPECT_EQ(Rgb("one.png") == Rgb(names_[i]), i < 3) << i;
  }
}

TEST_F(SequenceCommand, RefusesBadInput) {
  WritePicture(NoisePicture(64, 48), File("in_10"));
  WritePicture(NoisePicture(64, 48), File("in_1"));
  DisparityMap high(1, 1);
  high.At(0, 0) = kUnknownDisparity + 1;
  WriteDisparity(high, File("d_1"));
  Cases cases = {
      {"sequence --images in_%d --disparities d_%d --first 1 --count 1 --focus "
       "1,1 -o o%d",
       "d_1: has a value of 1024"},
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
  ExpectRefused(cases);
}

TEST_F(SequenceCommand, CpuBlursTheBackgroundAndIsComparedWithTheGpu) {
  const std::string render = "render --image in_07 --disparity d_07 --focus ";
  EXPECT_THAT(Run(render + "99,50 -o one.png --renderer cpu").out,
              HasSubstr(")\nthe background is in focus: "));
  EXPECT_EQ(Run(cpu_ + "07 --image in_07").out, "wrote one.png (128x96)\n");
  const auto source = Rgb("in_07"), cpu = Rgb("one.png");
  EXPECT_NE(cpu, source);
  const auto [code, out, err] =
      Run(render + "20,50 -o two.png --compare difference.png", kGl);
  if (err.find("no OpenGL ES") != std::string::npos) GTEST_SKIP() << err;
  const auto gpu = Rgb("two.png"), difference = Rgb("difference.png");
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
