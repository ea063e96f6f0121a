// Frame dumps: the files' names and bytes.
#include "gl/frame_dump.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include "caller_frame.h"
#include "compare.h"
#include "log_capture.h"
#include "scoped_property.h"
#include "test_session.h"

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
    __system_property_set(kDirectory, (directory_.string() + "/").c_str());
  }
  ~FrameDumpTest() override {
    __system_property_set(kDirectory, "");
    fs::remove_all(directory_);
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
  static Bytes Output(reference::Size size) {
    const auto& targets = RunningRender().targets;
    return ReadPixels(targets.framebuffer(kOutputTarget), size).rgba;
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
  DumpFrame({bytes.data(), 0, 0, 0, "RM"}, {UINT32_MAX, INT32_MIN, INT32_MAX});
  DumpFrame({nullptr, 4, 1, 1, "RM"}, {});
  EXPECT_EQ(log_.Take(), Lines{"pointer is NULL in FrameDump"});
  EXPECT_EQ(
      NewFiles(),
      (Files{{"GLOutput_640x480_v" ZUQEL_VERSION "_0007_1_0.raw", bytes},
             {"GLRM_0x0_v" ZUQEL_VERSION "_-001_-2147483648_2147483647.raw",
              {}}}));
}

TEST_F(FrameDumpTest, FollowsNoLinkAndWaitsForNoPipe) {
  const ScopedProperty on(kSwitch, "1");
  const fs::path victim = directory_ / "victim";
  std::ofstream(victim) << "kept";
  const auto dump = [&](int focus_x) {
    return directory_ / ("GLRM_1x1_v" ZUQEL_VERSION "_0000_" +
                         std::to_string(focus_x) + "_0.raw");
  };
  fs::create_symlink(victim, dump(0));
  fs::create_symlink(directory_ / "new", dump(1));
  ASSERT_EQ(mkfifo(dump(2).c_str(), 0600), 0);
  ASSERT_EQ(mkfifo(dump(3).c_str(), 0600), 0);
  const int reader = open(dump(3).c_str(), O_RDONLY | O_NONBLOCK);
  for (const int focus_x : {0, 1, 2, 3}) {
    DumpFrame({"raw", 3, 1, 1, "RM"}, {0, focus_x, 0});
    EXPECT_TRUE(fs::remove(dump(focus_x)));
  }
  close(reader);
  EXPECT_EQ(log_.Take(), Lines(4, "*VX* WriteRAW Image Failed!!!"));
  EXPECT_EQ(NewFiles(), (Files{{"victim", {'k', 'e', 'p', 't'}}}));
}

TEST_F(FrameDumpTest, FilesHoldTheFrame) {
  const ScopedProperty on(kSwitch, "1");
  const Bytes luma = TestFrame().luma;
  TestFrame frame;
  const ScopedSession session(SmallPreviewInfo());
  TheSession().frames.counters.dump_number = 9998;
  EXPECT_EQ(frame.Render(), ZUQEL_SUCCESS);
  // The viewport of the first frame's beginning is the context's own.
  EXPECT_EQ(
      NewFiles(),
      (Files{
          {"GLBokeh_64x48_v" ZUQEL_VERSION "_9998_3_4.raw", luma},
          {"GLOutput_32x24_v" ZUQEL_VERSION "_9998_3_4.raw", Output({32, 24})},
          {"GLRM_320x240_v" ZUQEL_VERSION "_9998_3_4.raw", frame.weights}}));
  EXPECT_EQ(TestFrame().Render(/*from_depth=*/true), ZUQEL_SUCCESS);
  EXPECT_EQ(NewFiles(),
            (Files{{"GLBokeh_64x48_v" ZUQEL_VERSION "_9999_3_4.raw", luma},
                   {"GLOutput_64x48_v" ZUQEL_VERSION "_9999_3_4.raw",
                    Output({64, 48})}}));
}

TEST_F(FrameDumpTest, SwitchAndDirectoryAreReadAtEveryDump) {
  const ScopedSession session(SmallPreviewInfo());
  const auto dumped = [&](const char* value) {
    const ScopedProperty property(kSwitch, value);
    EXPECT_EQ(TestFrame().Render(), ZUQEL_SUCCESS);
    return NewFiles().size();
  };
  EXPECT_EQ(dumped(""), 0U);
  EXPECT_EQ(dumped("-3"), 3U);
  EXPECT_EQ(dumped("0"), 0U);
  const ScopedProperty unwritable(kDirectory, "/none/");
  EXPECT_EQ(dumped("1"), 0U);
  const Lines log = log_.Take();
  EXPECT_EQ(std::count(log.begin(), log.end(), "*VX* WriteRAW Image Failed!!!"),
            3);
}

}  // namespace
}  // namespace zuqel
