// Runs the program as people do: arguments in; exit code, words and files out.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>

#include <filesystem>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "image_file.h"
#include "image_samples.h"
#include "nv21.h"

namespace zuqel::tools {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

constexpr int kWidth = 320, kHeight = 240;

struct Outcome {
  int exit_code = -1;
  std::string out, err;
};

std::string ReadText(const std::string& path) {
  const std::vector<uint8_t> bytes = ReadBytes(path);
  return {bytes.begin(), bytes.end()};
}

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
    std::set<std::string> names;
    for (const auto& entry :
         std::filesystem::directory_iterator(folder_ / "work")) {
      names.insert(entry.path().filename());
    }
    return names;
  }

  // Runs zuqel in the work folder; `arguments` are separated by spaces.
  [[nodiscard]] Outcome Run(
      const std::string& arguments,
      const std::vector<std::string>& environment = {}) const {
    std::istringstream words("zuqel " + arguments);
    std::vector<std::string> argv_text;
    for (std::string word; words >> word;) argv_text.push_back(word);
    std::vector<std::string> env_text = environment;
    for (char** entry = environ; *entry != nullptr; ++entry) {
      env_text.emplace_back(*entry);
    }
    std::vector<char*> argv, env;
    for (std::string& text : argv_text) argv.push_back(text.data());
    for (std::string& text : env_text) env.push_back(text.data());
    argv.push_back(nullptr);
    env.push_back(nullptr);

    const std::string out = folder_ / "out.txt", err = folder_ / "err.txt";
    constexpr int kFlags = O_WRONLY | O_CREAT | O_TRUNC;
    posix_spawn_file_actions_t actions = {};
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, out.c_str(), kFlags, 0600);
    posix_spawn_file_actions_addopen(&actions, 2, err.c_str(), kFlags, 0600);
    posix_spawn_file_actions_addchdir_np(&actions, (folder_ / "work").c_str());
    pid_t child = 0;
    int status = 0;
    const int failed = posix_spawn(&child, ZUQEL_PROGRAM, &actions, nullptr,
                                   argv.data(), env.data());
    posix_spawn_file_actions_destroy(&actions);
    if (failed != 0 || waitpid(child, &status, 0) != child) return {};
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, ReadText(out),
            ReadText(err)};
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
  };
  for (const auto& [arguments, piece] : cases) {
    const Outcome outcome = Run(arguments);
    EXPECT_EQ(outcome.exit_code, 0) << arguments;
    EXPECT_THAT(outcome.out, HasSubstr(piece)) << arguments;
    EXPECT_THAT(outcome.err, IsEmpty()) << arguments;
  }
}

struct BadCase {
  const char* name;
  std::string arguments;
  const char* message;
};

TEST_F(CommandLine, RefusesBadInputInOneLineAndTouchesNothing) {
  WriteBytes(File("text.png"), {'t', 'e', 'x', 't'});
  const std::vector<uint8_t> png = ReadBytes(File("photo.png"));
  WriteBytes(File("cut.png"), {png.begin(), png.end() - 2000});
  WriteSampleJpeg(File("photo.jpg"), kWidth, kHeight, 3, picture_.rgb);
  const std::vector<uint8_t> jpeg = ReadBytes(File("photo.jpg"));
  WriteBytes(File("cut.jpg"), {jpeg.begin(), jpeg.end() - 2000});
  std::vector<uint8_t> damaged = png;
  damaged[damaged.size() / 2] ^= 1;
  WriteBytes(File("damaged.png"), damaged);
  WritePicture(NoisePicture(63, 48), File("odd.png"));
  WritePicture(NoisePicture(8194, 2), File("wide.png"));
  std::filesystem::create_directory(File("folder"));

  const std::string map = " --disparity d.png", at = " --focus 9,9";
  const std::string good = "render --image photo.png" + map + at;
  const std::vector<BadCase> cases = {
      {"nothing", "", "subcommand is required"},
      {"command", "frobnicate", "unknown option or command: frobnicate"},
      {"option", good + " -o o.png --sharp", "unknown option or command: --sh"},
      {"no output", good, "--output is required"},
      {"no file", "render --image none.png" + map + at + " -o o.png",
       "none.png: cannot be opened"},
      {"folder", "render --image folder" + map + at + " -o o.png",
       "folder: is a folder"},
      {"text", "render --image text.png" + map + at + " -o o.png",
       "text.png: is not a PNG or JPEG picture"},
      {"cut PNG", "render --image cut.png" + map + at + " -o o.png",
       "cut.png: is truncated"},
      {"cut JPEG", "render --image cut.jpg" + map + at + " -o o.png",
       "cut.jpg: is truncated"},
      {"damaged", "render --image damaged.png" + map + at + " -o o.png",
       "damaged.png: is damaged: "},
      {"odd", "render --image odd.png" + map + at + " -o o.png",
       "odd.png: is 63 x 48 pixels; an even"},
      {"wide", "render --image wide.png" + map + " --focus 0,0 -o o.png",
       "wide.png: is 8194 x 2 pixels; at most 8192"},
      {"no map", "render --image photo.png" + at + " -o o.png",
       "give one of --disparity and --weights"},
      {"two maps", good + " --weights sharp.png -o o.png",
       "give one of --disparity and --weights"},
      {"colour map",
       "render --image photo.png --disparity photo.png" + at + " -o o.png",
       "photo.png: is 8-bit colour; 16-bit grey is needed"},
      {"8-bit map",
       "render --image photo.png --disparity sharp.png" + at + " -o o.png",
       "sharp.png: is 8-bit grey; 16-bit grey is needed"},
      {"16-bit weights",
       "render --image photo.png --weights d.png" + at + " -o o.png",
       "d.png: is 16-bit grey; 8-bit grey is needed"},
      {"JPEG map",
       "render --image photo.png --disparity photo.jpg" + at + " -o o.png",
       "photo.jpg: is not a PNG picture"},
      {"focus", "render --image photo.png" + map + " --focus 320,9 -o o.png",
       "--focus 320,9: lies outside the picture of 320 x 240"},
      {"f-number", good + " -o o.png --f-number nan", "--f-number: is not"},
      {"repeat", good + " -o o.png --repeat 0", "--repeat: Value 0 not in"},
      {"output folder", good + " -o none/o.png",
       "none/o.png: the folder none "},
      {"panel folder", good + " -o o.png --panel none/p.png", "none/p.png: "},
      {"output is folder", good + " -o folder", "folder: is a folder"},
      {"device", good + " -o /dev/null", "/dev/null: is not a regular file"},
      {"one output twice", good + " -o o.png --panel ./o.png", "two outputs"},
      {"existing", "render --image odd.png" + map + at + " -o kept.png",
       "odd.png: "},
      {"demo folder", "demo -o none/demo", "none/demo: the folder cannot be"},
      {"demo file", "demo -o kept.png", "kept.png: the folder cannot be"},
  };
  const std::set<std::string> before = Files();
  for (const BadCase& row : cases) {
    const Outcome outcome = Run(row.arguments);
    EXPECT_EQ(outcome.exit_code, 2) << row.name;
    EXPECT_THAT(outcome.err, HasSubstr(row.message)) << row.name;
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1)
        << row.name;
    EXPECT_THAT(outcome.out, IsEmpty()) << row.name;
    EXPECT_EQ(Files(), before) << row.name;
  }
  EXPECT_EQ(ReadText(File("kept.png")), "old");
}

TEST_F(CommandLine, SaysThatThereIsNothingToRenderWith) {
  const std::set<std::string> before = Files();
  const std::string where = " --focus 9,9 -o kept.png";
  const Outcome outcome =
      Run("render --image photo.png --disparity d.png" + where,
          {"__EGL_VENDOR_LIBRARY_FILENAMES=/nonexistent"});
  EXPECT_EQ(outcome.exit_code, 1);
  EXPECT_THAT(outcome.err, HasSubstr("no OpenGL ES 2.0 to render with: egl"));
  EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1);
  EXPECT_EQ(Files(), before);
  EXPECT_EQ(ReadText(File("kept.png")), "old");
}

// Variance of the green channel over the columns from `left` to `right`.
double Variance(const Picture& picture, int left, int right) {
  double sum = 0, squares = 0;
  for (int y = 0; y < picture.height; ++y) {
    for (int x = left; x < right; ++x) {
      const double value = picture.Pixel(x, y)[1];
      sum += value;
      squares += value * value;
    }
  }
  const double count = (right - left) * picture.height;
  return squares / count - (sum / count) * (sum / count);
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

TEST_F(Rendering, ZeroWeightsGiveThePictureBack) {
  // The conversion to the camera's format and back is all that remains.
  EXPECT_EQ(ReadPicture(File("try.png")).rgb, ToPicture(ToNv21(picture_)).rgb);
}

TEST_F(Rendering, BlursAwayFromTheFocus) {
  const Picture plain = ReadPicture(File("try.png"));
  constexpr int kBorder = 40;  // around the step of the map
  const int half = kWidth / 2;
  const auto render = [&](const std::string& arguments) {
    const Outcome outcome = Render(
        "render --image photo.png --disparity d.png -o kept.png --focus " +
        arguments);
    EXPECT_EQ(outcome.exit_code, 0) << outcome.err;
    return ReadPicture(File("kept.png"));
  };
  const double left = Variance(plain, 0, half - kBorder);
  const double right = Variance(plain, half + kBorder, kWidth);

  const Picture near = render("20,100");
  EXPECT_EQ(Variance(near, 0, half - kBorder), left);
  EXPECT_LT(Variance(near, half + kBorder, kWidth), right / 4);
  const Picture far = render("300,100");
  EXPECT_LT(Variance(far, 0, half - kBorder), left / 4);
  EXPECT_EQ(Variance(far, half + kBorder, kWidth), right);
  const Picture small_lens = render("20,100 --f-number 8");
  EXPECT_GT(Variance(small_lens, half + kBorder, kWidth),
            2 * Variance(near, half + kBorder, kWidth));
  EXPECT_NE(render("20,100 --focus-dot").rgb, near.rgb);
}

TEST_F(Rendering, PanelRepeatAndLog) {
  WriteSampleJpeg(File("photo.jpg"), kWidth, kHeight, 3, picture_.rgb);
  const Outcome outcome = Render(
      "render --image photo.jpg --disparity d.png --focus 9,9 -o o.png "
      "--panel p.png --repeat 3 --verbose");
  EXPECT_EQ(outcome.exit_code, 0);
  EXPECT_THAT(outcome.out, HasSubstr("wrote o.png (320x240)\n"
                                     "wrote p.png (976x240)\n"
                                     "frame time: median "));
  EXPECT_THAT(outcome.out, HasSubstr("(3 frames)\n"));
  EXPECT_THAT(outcome.err, HasSubstr("zuQelRT_GLInitV1 +"));
  const Picture input = ReadPicture(File("photo.jpg"));
  const Picture result = ReadPicture(File("o.png"));
  const Picture panel = ReadPicture(File("p.png"));
  const int right = panel.width - kWidth;
  for (int y = 0; y < kHeight; ++y) {
    ASSERT_TRUE(std::equal(panel.Pixel(0, y), panel.Pixel(kWidth, y),
                           input.Pixel(0, y)))
        << y;
    ASSERT_TRUE(std::equal(panel.Pixel(right, y), panel.Pixel(panel.width, y),
                           result.Pixel(0, y)))
        << y;
  }
}

TEST_F(Rendering, DemoWritesASceneThatRenderTakes) {
  const Outcome outcome = Render("demo -o new");
  EXPECT_EQ(outcome.exit_code, 0) << outcome.err;
  EXPECT_EQ(std::count(outcome.out.begin(), outcome.out.end(), '\n'), 9);
  const Picture near = ReadPicture(File("new/near_f1.png"));
  const Picture far = ReadPicture(File("new/far_f1.png"));
  EXPECT_LT(Variance(near, 1000, 1280), Variance(far, 1000, 1280));
  const Outcome again = Render(
      "render --image new/scene.png --disparity new/disparity.png "
      "--focus 330,300 -o again.png");
  EXPECT_EQ(again.exit_code, 0) << again.err;
  EXPECT_EQ(ReadPicture(File("again.png")).rgb, near.rgb);
}

}  // namespace
}  // namespace zuqel::tools
