// Frame dumps: the files' names and bytes.
#include "gl/frame_dump.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include "compare.h"
#include "log_capture.h"
#include "test_frame.h"

namespace zuqel {
namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<uint8_t>;
using Files = std::map<std::string, Bytes>;

constexpr const char* kSwitch = "persist.zu.VLGLbokeh.readfile";
constexpr const char* kDirectory = "persist.zu.LVGLbokeh.fileDir";

class FrameDumpTest : public testing::Test {
 protected:
  FrameDumpTest() {
    ResetSession();
    fs::create_directories(directory_);
    SetDirectory("/");
  }
  ~FrameDumpTest() override {
    __system_property_set(kDirectory, "");
    fs::remove_all(directory_);
  }
  void SetDirectory(const std::string& behind) {
    __system_property_set(kDirectory, (directory_.string() + behind).c_str());
  }
  // Files written since the last call.
  Files NewFiles() {
    Files files;
    for (const auto& file : fs::directory_iterator(directory_)) {
      std::ifstream stream(file.path(), std::ios::binary);
      files[file.path().filename()] =
          Bytes(std::istreambuf_iterator<char>(stream), {});
      fs::remove(file.path());
    }
    return files;
  }
  // How often the log since the last call has the line.
  int Logged(const std::string& line) {
    const Lines log = log_.Take();
    return static_cast<int>(std::count(log.begin(), log.end(), line));
  }
  static Bytes Output(reference::Size size = {64, 48}) {
    return ReadPixels(
               TheSession().frame.render.targets.framebuffer(kOutputTarget),
               size)
        .rgba;
  }

  LogCapture log_;
  const CallerContext caller_{32, 24};
  fs::path directory_ =
      fs::temp_directory_path() / ("zuqel_dump_" + std::to_string(getpid()));
};

TEST_F(FrameDumpTest, NamesTellFrameAndFocus) {
  const ScopedProperty on(kSwitch, "1");
  const Bytes bytes = PatternBytes(Pattern::kNoise, 100, 1, 1);
  DumpFrame({bytes.data(), 100, 640, 480, "Output"}, {7, 1, 0});
  SetDirectory("/in");
  DumpFrame({bytes.data(), 0, 0, 0, "RM"}, {UINT32_MAX, INT32_MIN, INT32_MAX});
  EXPECT_EQ(log_.Take(), Lines{});
  EXPECT_EQ(
      NewFiles(),
      (Files{{"GLOutput_640x480_v0.54.07_0007_1_0.raw", bytes},
             {"inGLRM_0x0_v0.54.07_-001_-2147483648_2147483647.raw", {}}}));
}

TEST_F(FrameDumpTest, FilesHoldTheFrame) {
  const ScopedProperty on(kSwitch, "1");
  const ScopedProperty dot("persist.zu.LVGLbokeh.FocusDot", "1");
  const Bytes luma = TestFrame().luma;  // without the focus dot
  TestFrame frame;
  {
    const ScopedSession session(SmallInfo());
    TheSession().frame.counters.dump_number = 9998;
    EXPECT_EQ(frame.Render(), ZUQEL_SUCCESS);
    // The viewport of the first frame's beginning is the context's own.
    EXPECT_EQ(NewFiles(),
              (Files{{"GLBokeh_64x48_v0.54.07_9998_3_4.raw", luma},
                     {"GLOutput_32x24_v0.54.07_9998_3_4.raw", Output({32, 24})},
                     {"GLRM_320x240_v0.54.07_9998_3_4.raw", frame.weights}}));
    frame = TestFrame();
    EXPECT_EQ(frame.Render(/*from_depth=*/true), ZUQEL_SUCCESS);
    EXPECT_EQ(NewFiles(),
              (Files{{"GLBokeh_64x48_v0.54.07_9999_3_4.raw", luma},
                     {"GLOutput_64x48_v0.54.07_9999_3_4.raw", Output()}}));
    // Calls that end early are not counted.
    frame = TestFrame();
    EXPECT_EQ(frame.Render(false, /*bypass=*/1), ZUQEL_SUCCESS);
    EXPECT_EQ(frame.Render(true, /*bypass=*/1), ZUQEL_SUCCESS);
    EXPECT_EQ(
        zuQelRT_GLStartV1(nullptr, nullptr, nullptr, 0, 0, 0, {0, 0, 0, 0}, 1),
        ZUQEL_NULL_POINTER);
    EXPECT_EQ(NewFiles(), Files{});
  }
  // On screen a bypass ends like any frame; it has no output to dump.
  frame = TestFrame();
  const ScopedSession session(SmallInfo(0));
  EXPECT_EQ(frame.Render(false, /*bypass=*/1), ZUQEL_SUCCESS);
  EXPECT_EQ(NewFiles(),
            (Files{{"GLBokeh_64x48_v0.54.07_10000_3_4.raw", luma},
                   {"GLRM_320x240_v0.54.07_10000_3_4.raw", frame.weights}}));
}

struct SwitchRow {
  const char* value;
  const char* directory;
  size_t files;
  int failures;
};

TEST_F(FrameDumpTest, SwitchAndDirectoryAreReadAtEveryDump) {
  const ScopedSession session(SmallInfo());
  for (const SwitchRow& row : std::vector<SwitchRow>{{"", "/", 0, 0},
                                                     {"1", "/", 3, 0},
                                                     {"0", "/", 0, 0},
                                                     {"-3", "/", 3, 0},
                                                     {"on", "/", 0, 0},
                                                     {"1", "/none/", 0, 3}}) {
    const ScopedProperty property(kSwitch, row.value);
    SetDirectory(row.directory);
    TestFrame frame;
    EXPECT_EQ(frame.Render(), ZUQEL_SUCCESS);
    EXPECT_NE(frame.luma, TestFrame().luma);
    EXPECT_EQ(NewFiles().size(), row.files) << row.value;
    EXPECT_EQ(Logged("*VX* WriteRAW Image Failed!!!"), row.failures);
  }
}

TEST_F(FrameDumpTest, NullImagesAreLoggedOnAndOff) {
  const ScopedSession session(SmallInfo());
  for (const char* value : {"", "1"}) {
    const ScopedProperty property(kSwitch, value);
    TestFrame frame;
    EXPECT_EQ(zuQelRT_GLStartV1(frame.luma.data(), frame.chroma.data(), nullptr,
                                3, UINT32_MAX, 0, {0, 0, 0, 0}, 1),
              ZUQEL_SUCCESS);
    EXPECT_EQ(Logged("pointer is NULL in FrameDump"), 1);
    EXPECT_EQ(frame.Render(/*from_depth=*/true), ZUQEL_SUCCESS);
    EXPECT_EQ(Logged("pointer is NULL in FrameDump"), 0) << "has no weights";
  }
  const Files files = NewFiles();
  EXPECT_EQ(files.size(), 4U);
  EXPECT_TRUE(files.contains("GLBokeh_64x48_v0.54.07_0002_3_-1.raw"));
}

}  // namespace
}  // namespace zuqel
