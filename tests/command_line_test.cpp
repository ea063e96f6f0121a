// The program as people run it: arguments in; exit code, words and files out.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "false_colour.h"
#include "image_file.h"
#include "image_samples.h"
#include "nv21.h"
#include "program_run.h"

namespace zuqel::tools {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

constexpr int kWidth = 320, kHeight = 240;

class CommandLine : public testing::Test {
 protected:
  CommandLine() {
    std::filesystem::create_directory(folder_ / "work");
    picture_ = NoisePicture(kWidth, kHeight);
    WritePicture(picture_, File("photo.png"));
    // The left half is near, the right half far.
    DisparityMap disparity(80, 60);
    for (int i = 0; i < 80 * 60; ++i) {
      disparity.At(i % 80, i / 80) = i % 80 < 40 ? 900 : 100;
    }
    WriteDisparity(disparity, File("d.png"));
    const std::vector<uint8_t> zeros(PixelCount(64, 48));
    WriteSamplePng(File("sharp.png"), 64, 48, PNG_FORMAT_GRAY, zeros.data());
    WriteBytes(File("kept.png"), {'o', 'l', 'd'});
  }

  [[nodiscard]] std::string File(const std::string& name) const {
    return folder_ / ("work/" + name);
  }

  [[nodiscard]] std::set<std::string> Files() const {
    return FilesIn(folder_ / "work");
  }

  [[nodiscard]] Outcome Run(
      const std::string& arguments,
      const std::vector<std::string>& environment = {}) const {
    return RunZuqel(folder_ / "work", arguments, environment);
  }

  TemporaryFolder folder_;
  Picture picture_;
};

TEST_F(CommandLine, TellsAboutItself) {
  const std::vector<std::pair<const char*, const char*>> cases = {
      {"--help", "COMMAND --help"},
      {"--version", "zuqel 0.54.07\n"},
      {"render --help", "\n  zuqel render --image "},
      {"demo --help", "\n  zuqel demo -o "},
      {"raw --help", "\n  zuqel raw GLOutput_"},
      {"calibration --help", "calibration COMMAND --help"},
      {"calibration inspect --help", "\n  zuqel calibration inspect "},
      {"calibration seal --help", "\n  zuqel calibration seal "},
  };
  for (const auto& [arguments, piece] : cases) {
    const Outcome outcome = Run(arguments);
    EXPECT_EQ(outcome.exit_code, 0) << arguments;
    EXPECT_THAT(outcome.out, HasSubstr(piece)) << arguments;
    EXPECT_THAT(outcome.err, IsEmpty()) << arguments;
  }
}

struct BadCase {
  std::string arguments;
  const char* message;
  int exit_code = 2;
};

TEST_F(CommandLine, RefusesBadInputInOneLineAndTouchesNothing) {
  WriteSampleJpeg(File("photo.jpg"), kWidth, kHeight, 3, picture_.rgb);
  std::vector<uint8_t> png = ReadBytes(File("photo.png"));
  WriteBytes(File("cut.png"), {png.begin(), png.end() - 2000});
  png[png.size() / 2] ^= 1;
  WriteBytes(File("damaged.png"), png);
  const uint16_t high = kUnknownDisparity + 1;
  WriteSamplePng(File("high.png"), 1, 1, PNG_FORMAT_LINEAR_Y, &high);
  WritePicture(NoisePicture(63, 48), File("odd.png"));
  WritePicture(NoisePicture(8194, 2), File("wide.png"));
  std::filesystem::create_directory(File("folder"));

  const std::string image = "render --image ", at = " --focus 9,9";
  const std::string map = " --disparity d.png" + at, rest = map + " -o o.png";
  const std::string photo = image + "photo.png", to = at + " -o o.png";
  const std::string good = photo + map;
  const std::vector<BadCase> cases = {
      {"", "subcommand is required"},
      {"frobnicate", "unknown option or command: frobnicate"},
      {good, "--output is required"},
      {image + "none.png" + rest, "none.png: cannot be opened"},
      {image + "folder" + rest, "folder: is a folder"},
      {image + "kept.png" + rest, "kept.png: is not a PNG or JPEG picture"},
      {image + "cut.png" + rest, "cut.png: is truncated"},
      {image + "damaged.png" + rest, "damaged.png: is damaged: "},
      {image + "odd.png" + map + " -o kept.png", "odd.png: is 63 x 48 pixels"},
      {image + "wide.png" + rest, "wide.png: is 8194 x 2 pixels; at most 8192"},
      {photo + to, "give one of --disparity and --weights"},
      {good + " -o o.png --weights sharp.png", "give one of --disparity and"},
      {photo + " --disparity photo.png" + to, "photo.png: is 8-bit colour; 16"},
      {photo + " --disparity high.png" + to, "high.png: has a value of 1024"},
      {photo + " --weights d.png" + to, "d.png: is 16-bit grey; 8-bit grey is"},
      {photo + " --disparity photo.jpg" + to, "photo.jpg: is not a PNG"},
      {photo + " --disparity d.png --focus 320,9 -o o.png",
       "--focus 320,9: lies outside the picture of 320 x 240"},
      {good + " -o o.png --f-number nan", "--f-number: is not"},
      {good + " -o o.png --repeat 0", "--repeat: Value 0 not in"},
      {good + " -o none/o.png", "none/o.png: the folder none "},
      {good + " -o o.png --panel none/p.png", "none/p.png: "},
      {good + " -o folder", "folder: is a folder"},
      {good + " -o /dev/null", "/dev/null: is not a regular file"},
      {good + " -o o.png --panel ./o.png", "./o.png: is given for two outputs"},
      {"demo -o none/demo", "none/demo: the folder cannot be"},
      {"demo -o kept.png", "kept.png: the folder cannot be"},
      {good + " -o kept.png", "no OpenGL ES 2.0 to render with: egl", 1},
  };
  const std::set<std::string> before = Files();
  for (const auto& [arguments, message, exit_code] : cases) {
    SCOPED_TRACE(arguments);
    const Outcome outcome =
        Run(arguments, {"__EGL_VENDOR_LIBRARY_FILENAMES=/nonexistent"});
    EXPECT_EQ(outcome.exit_code, exit_code);
    EXPECT_THAT(outcome.err, HasSubstr(message));
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1);
    EXPECT_THAT(outcome.out, IsEmpty());
    EXPECT_EQ(Files(), before);
    EXPECT_EQ(ReadText(File("kept.png")), "old");
  }
}

// Squared steps of green from pixel to pixel, in columns 0 to 120 and 199 to
// 319; the step of the map is at 160.
struct Contrast {
  int left = 0, right = 0;
};

Contrast ContrastOf(const Picture& picture) {
  Contrast sum;
  for (int i = 0; i < 120 * kHeight; ++i) {
    const uint8_t* rgb = picture.Pixel(i % 120, i / 120);
    const int left = rgb[1] - rgb[4], right = rgb[598] - rgb[601];
    sum.left += left * left;
    sum.right += right * right;
  }
  return sum;
}

class Rendering : public CommandLine {
 protected:
  // The driver's libraries are unloaded with the session, so the leak checker
  // cannot tell what they still hold from what is lost. The library's own tests
  // look for leaks of a session.
  [[nodiscard]] Outcome Render(const std::string& arguments) const {
    return Run(arguments, {"ASAN_OPTIONS=detect_leaks=0"});
  }

  void SetUp() override {
    const Outcome outcome = Render(
        "render --image photo.png --weights sharp.png --focus 9,9 -o try.png");
    if (outcome.err.find("no OpenGL ES") != std::string::npos) {
      GTEST_SKIP() << outcome.err;
    }
    ASSERT_EQ(outcome.exit_code, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "wrote try.png (320x240)\n");
    EXPECT_THAT(outcome.err, IsEmpty());
  }
};

TEST_F(Rendering, BlursAwayFromTheFocus) {
  const Picture plain = ReadPicture(File("try.png"));
  // The conversion to the camera's format and back is all that remains.
  EXPECT_EQ(plain.rgb, ToPicture(ToNv21(picture_)).rgb);

  const auto render = [&](const std::string& arguments) {
    const Outcome outcome = Render(
        "render --image photo.png --disparity d.png -o kept.png --focus " +
        arguments);
    EXPECT_EQ(outcome.exit_code, 0) << outcome.err;
    return ContrastOf(ReadPicture(File("kept.png")));
  };
  const Contrast sharp = ContrastOf(plain), near = render("20,100"),
                 far = render("300,100"),
                 marked = render("20,100 --f-number 8 --focus-dot");
  EXPECT_EQ(near.left, sharp.left);
  EXPECT_LT(near.right, sharp.right / 4);
  EXPECT_LT(far.left, sharp.left / 4);
  EXPECT_EQ(far.right, sharp.right);
  EXPECT_GT(marked.right, 2 * near.right);
  EXPECT_NE(marked.left, sharp.left);
}

TEST_F(Rendering, PanelRepeatAndLog) {
  const Outcome outcome = Render(
      "render --image photo.png --disparity d.png --focus 9,9 -o o.png "
      "--panel p.png --repeat 3 --verbose");
  EXPECT_EQ(outcome.exit_code, 0);
  EXPECT_THAT(outcome.out, HasSubstr("wrote o.png (320x240)\n"
                                     "wrote p.png (976x240)\n"
                                     "frame time: median "));
  EXPECT_THAT(outcome.out, HasSubstr("(3 frames)\n"));
  EXPECT_THAT(outcome.err, HasSubstr("zuQelRT_GLInitV1 +"));
  const Picture panel = ReadPicture(File("p.png"));
  const Picture map = FalseColour(ReadDisparity(File("d.png")));
  const Picture result = ReadPicture(File("o.png"));
  for (int i = 0; i < kWidth * kHeight; ++i) {
    const int x = i % kWidth, y = i / kWidth;
    const auto is_at = [&](int left, const uint8_t* rgb) {
      return std::equal(rgb, rgb + 3, panel.Pixel(left + x, y));
    };
    ASSERT_TRUE(is_at(0, picture_.Pixel(x, y))) << x << ", " << y;
    ASSERT_TRUE(is_at(328, map.Pixel(x / 4, y / 4))) << x << ", " << y;
    ASSERT_TRUE(is_at(656, result.Pixel(x, y))) << x << ", " << y;
  }
}

TEST_F(Rendering, DemoWritesASceneThatRenderTakes) {
  const Outcome outcome = Render("demo -o new");
  EXPECT_EQ(outcome.exit_code, 0) << outcome.err;
  EXPECT_EQ(std::count(outcome.out.begin(), outcome.out.end(), '\n'), 9);
  const Outcome again = Render(
      "render --image new/scene.png --disparity new/disparity.png "
      "--focus 330,300 -o again.png");
  EXPECT_EQ(again.exit_code, 0) << again.err;
  EXPECT_EQ(ReadBytes(File("again.png")), ReadBytes(File("new/near_f1.png")));
  EXPECT_NE(ReadBytes(File("again.png")), ReadBytes(File("new/far_f1.png")));
}

}  // namespace
}  // namespace zuqel::tools
