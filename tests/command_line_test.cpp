// The command-line program: arguments in; exit code, messages and files out.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>
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

  [[nodiscard]] Outcome Run(
      const std::string& arguments,
      const std::vector<std::string>& environment = {}) const {
    return RunZuqel(folder_ / "work", arguments, environment);
  }

  TemporaryFolder folder_;
  Picture picture_;
};

TEST_F(CommandLine, PrintsHelpAndVersion) {
  const std::vector<std::pair<const char*, const char*>> cases = {
      {"--help", "COMMAND --help"},
      {"--version", "zuqel 0.54.07\n"},
      {"render --help", "\n  zuqel render --image "},
      {"refocus-map --help", "\n  zuqel refocus-map --disparity "},
      {"sequence --help", "\n  zuqel sequence --demo -o "},
      {"demo --help", "\n  zuqel demo -o "},
      {"raw --help", "\n  zuqel raw GLOutput_"},
      {"calibration seal --help", "\n  zuqel calibration seal "},
  };
  for (const auto& [arguments, piece] : cases) {
    const Outcome outcome = Run(arguments);
    EXPECT_EQ(outcome.exit_code, 0) << arguments;
    EXPECT_THAT(outcome.out, HasSubstr(piece)) << arguments;
    EXPECT_THAT(outcome.err, IsEmpty()) << arguments;
  }
}

TEST_F(CommandLine, RefusesBadInputInOneLineAndTouchesNothing) {
  std::vector<uint8_t> png = ReadBytes(File("photo.png"));
  png[png.size() / 2] ^= 1;
  WriteBytes(File("damaged.png"), png);
  const uint16_t high = kUnknownDisparity + 1;
  WriteSamplePng(File("high.png"), 1, 1, PNG_FORMAT_LINEAR_Y, &high);
  WritePicture(NoisePicture(63, 48), File("odd.png"));

  const std::string image = "render --image ", at = " --focus 9,9";
  const std::string map = " --disparity d.png" + at, rest = map + " -o o.png";
  const std::string photo = image + "photo.png", to = at + " -o o.png";
  const std::string good = photo + map, renders = good + " -o kept.png";
  const std::string refocus = "refocus-map" + to + " --generator ";
  const std::vector<std::pair<std::string, const char*>> cases = {
      {"", "subcommand is required"},
      {good, "--output is required"},
      {image + "none.png" + rest, "none.png: cannot be opened"},
      {image + "kept.png" + rest, "kept.png: is not a PNG or JPEG picture"},
      {image + "damaged.png" + rest, "damaged.png: is damaged: "},
      {image + "odd.png" + map + " -o kept.png", "odd.png: is 63 x 48 pixels"},
      {photo + to, "give one of --disparity and --weights"},
      {photo + " --disparity high.png" + to, "high.png: has a value of 1024"},
      {photo + " --weights d.png" + to, "d.png: is 16-bit grey; 8-bit grey is"},
      {photo + " --disparity d.png --focus 320,9 -o o.png",
       "--focus 320,9: lies outside the picture of 320 x 240"},
      {good + " -o o.png --f-number nan", "--f-number: is not"},
      {good + " -o none/o.png", "none/o.png: the folder none "},
      {good + " -o /dev/null", "/dev/null: is not a regular file"},
      {good + " -o o.png --panel ./o.png", "./o.png: is given for two outputs"},
      {photo + " --weights d.png --map-from gpu" + to,
       "--map-from: works with"},
      {refocus + "cpu --disparity d.png",
       "--generator: cpu is not one of gpu "},
      {refocus + "gpu --distance d.png", "--distance: gpu takes --disparity"},
      {refocus + "distance --distance d.png --size 9x9", "--size: distance "},
      {"demo -o kept.png", "kept.png: the folder cannot be"},
      {renders, "no OpenGL ES 2.0 to render with: egl"},
  };
  const std::set<std::string> before = FilesIn(File(""));
  for (const auto& [arguments, message] : cases) {
    SCOPED_TRACE(arguments);
    const Outcome outcome =
        Run(arguments, {"__EGL_VENDOR_LIBRARY_FILENAMES=/nonexistent"});
    EXPECT_EQ(outcome.exit_code, arguments == renders ? 1 : 2);
    EXPECT_THAT(outcome.err, HasSubstr(message));
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1);
    EXPECT_THAT(outcome.out, IsEmpty());
    EXPECT_EQ(FilesIn(File("")), before);
    EXPECT_EQ(ReadText(File("kept.png")), "old");
  }
}

TEST_F(CommandLine, RefusesToReplaceAnInput) {
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
  const std::vector<std::pair<std::string, std::string>> cases = {
      {render + "-o ", "photo.png"},
      {render + "-o ", "../work/d.png"},
      {render + "-o ", "link.png"},
      {render + "-o ", "hard.png"},
      {render + "-o o.png --panel ", "link.png"},
      {render + "-o o.png --compare ", "hard.png"},
      {"render --image photo.png --weights sharp.png --focus 9,9 -o ",
       "sharp.png"},
      {refocus + "-o ", "d.png"},
      {refocus + "-o ", "link.png"},
      {refocus + "-o o.png --panel ", "photo.png"},
      {sequence, "in%d"},
      {sequence, "d%d"},
      {sequence, "o%d"},
      {sequence, "video.y4m"},
      {raw, dump},
      {seal, "container.bin"},
      {seal, "key.bin"},
  };
  const auto contents = [&] {
    std::map<std::string, std::string> bytes;
    for (const std::string& name : FilesIn(File(""))) {
      bytes[name] = ReadText(File(name));
    }
    return bytes;
  };
  const auto before = contents();
  for (const auto& [arguments, output] : cases) {
    SCOPED_TRACE(arguments + output);
    const Outcome outcome =
        Run(arguments + output, {"__EGL_VENDOR_LIBRARY_FILENAMES=/none"});
    EXPECT_EQ(outcome.exit_code, 2);
    EXPECT_THAT(outcome.err, HasSubstr(": is one of the inputs\n"));
    EXPECT_THAT(outcome.out, IsEmpty());
    EXPECT_TRUE(contents() == before);
    EXPECT_TRUE(fs::is_symlink(File("link.png")));
  }
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
  const Picture result = ReadPicture(File("o.png"));
  for (int y = 0; y < kHeight; ++y) {
    const uint8_t* row = result.Pixel(0, y);
    ASSERT_TRUE(std::equal(row, row + size_t{3} * kWidth, panel.Pixel(656, y)))
        << y;
  }
}

TEST_F(Rendering, DemoWritesASceneThatRenderTakes) {
  const Outcome outcome = Render("demo -o new");
  EXPECT_EQ(outcome.exit_code, 0) << outcome.err;
  const Outcome again = Render(
      "render --image new/scene.png --disparity new/disparity.png "
      "--focus 330,300 -o again.png");
  EXPECT_EQ(again.exit_code, 0) << again.err;
  EXPECT_EQ(ReadBytes(File("again.png")), ReadBytes(File("new/near_f1.png")));
}

}  // namespace
}  // namespace zuqel::tools
