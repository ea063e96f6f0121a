// Frame dumps: the files' names and bytes.
#include "gl/frame_dump.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "log_capture.h"
#include "test_frame.h"
#include "test_session.h"

namespace zuqel {
namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<uint8_t>;

constexpr const char* kSwitch = "persist.zu.VLGLbokeh.readfile";
constexpr const char* kDirectory = "persist.zu.LVGLbokeh.fileDir";

GLInitInfo Info(int32_t off_screen = 1) {
  GLInitInfo info = DefaultInfo();
  info.PreviewWidth = 64;
  info.PreviewHeight = 48;
  info.OutputWidth = 64;
  info.OutputHeight = 48;
  info.offmode = off_screen;
  return info;
}

class FrameDumpTest : public testing::Test {
 protected:
  FrameDumpTest() {
    ResetSession();
    fs::create_directories(directory_ / "in");
    __system_property_set(kDirectory, (directory_.string() + "/in/").c_str());
  }
  ~FrameDumpTest() override {
    __system_property_set(kDirectory, "");
    fs::remove_all(directory_);
  }

  // Names of the files written since the last call, sorted, in `folder` of the
  // test's own; their bytes can be had until the next call.
  std::vector<std::string> NewFiles(const char* folder = "in") {
    bytes_.clear();
    std::vector<std::string> names;
    for (const auto& file : fs::directory_iterator(directory_ / folder)) {
      if (file.is_regular_file()) names.push_back(file.path().filename());
    }
    std::sort(names.begin(), names.end());
    for (const std::string& name : names) {
      std::ifstream stream(directory_ / folder / name, std::ios::binary);
      bytes_.emplace_back(std::istreambuf_iterator<char>(stream),
                          std::istreambuf_iterator<char>());
      fs::remove(directory_ / folder / name);
    }
    return names;
  }

  LogCapture log_;
  fs::path directory_ =
      fs::temp_directory_path() / ("zuqel_dump_" + std::to_string(getpid()));
  std::vector<Bytes> bytes_;
  uint32_t& dump_number_ = TheSession().frame.counters.dump_number;
};

struct NameRow {
  DumpName name;
  const char* tag;
  int32_t width, height;
  const char* file;
};

TEST_F(FrameDumpTest, NamesTellFrameAndFocus) {
  const ScopedProperty on(kSwitch, "1");
  constexpr auto kRows = std::to_array<NameRow>({
      {{7, 1, 0}, "Output", 640, 480, "GLOutput_640x480_v0.54.07_0007_1_0.raw"},
      {{12345, -1, 9}, "RM", 3, 2, "GLRM_3x2_v0.54.07_12345_-1_9.raw"},
      {{UINT32_MAX, INT32_MIN, INT32_MAX},
       "Bokeh",
       0,
       0,
       "GLBokeh_0x0_v0.54.07_-001_-2147483648_2147483647.raw"},
  });
  const Bytes bytes = PatternBytes(Pattern::kNoise, 100, 1, 1);
  for (const NameRow& row : kRows) {
    DumpFrame({bytes.data(), bytes.size(), row.width, row.height, row.tag},
              row.name);
    EXPECT_EQ(NewFiles(), std::vector<std::string>{row.file});
    EXPECT_EQ(bytes_, std::vector<Bytes>{bytes});
  }
  EXPECT_EQ(log_.Take(), Lines{});
}

TEST_F(FrameDumpTest, FilesHoldTheFrame) {
  const ScopedProperty on(kSwitch, "1");
  const ScopedProperty dot("persist.zu.LVGLbokeh.FocusDot", "1");
  const ScopedSession session(Info());
  dump_number_ = 9998;
  for (const bool first : {true, false}) {
    TestFrame frame(Info());
    ASSERT_EQ(frame.Render(), ZUQEL_SUCCESS);
    const std::string number = first ? "9998" : "9999";
    const std::string tail = "_v0.54.07_" + number + "_3_4.raw";
    // The viewport of the first frame's beginning is the context's own.
    ASSERT_EQ(NewFiles(),
              (std::vector<std::string>{
                  "GLBokeh_64x48" + tail,
                  (first ? "GLOutput_1x1" : "GLOutput_64x48") + tail,
                  "GLRM_320x240" + tail}));
    EXPECT_EQ(bytes_[0], TestFrame(Info()).luma) << "without the focus dot";
    EXPECT_EQ(bytes_[2], frame.weights);
    const Bytes& output = bytes_[1];
    ASSERT_EQ(output.size(), first ? 4U : size_t{64} * 48 * 4);
    for (size_t i = 0; i < output.size() / 4; ++i) {
      ASSERT_EQ(output[4 * i], frame.luma[i]) << i;
    }
    if (first) continue;
    // The bottom right pixel of each block gives the chroma.
    for (size_t i = 0; i < frame.chroma.size(); i += 2) {
      const size_t pixel = (i / 64 * 2 + 1) * 64 + i % 64 + 1;
      ASSERT_EQ(output[4 * pixel + 2], frame.chroma[i]) << i;
      ASSERT_EQ(output[4 * pixel + 1], frame.chroma[i + 1]) << i;
    }
  }

  TestFrame frame(Info());
  ASSERT_EQ(frame.Render(/*from_depth=*/true), ZUQEL_SUCCESS);
  EXPECT_EQ(NewFiles(),
            (std::vector<std::string>{"GLBokeh_64x48_v0.54.07_10000_3_4.raw",
                                      "GLOutput_64x48_v0.54.07_10000_3_4.raw"}))
      << "no depth";
}

TEST_F(FrameDumpTest, CountsFinishedCalls) {
  const ScopedProperty on(kSwitch, "1");
  TestFrame frame(Info());
  {
    const ScopedSession session(Info());
    EXPECT_EQ(frame.Render(), ZUQEL_SUCCESS);
    EXPECT_EQ(frame.Render(/*from_depth=*/true), ZUQEL_SUCCESS);
    EXPECT_EQ(dump_number_, 2U);
    EXPECT_EQ(NewFiles().size(), 5U);
    EXPECT_EQ(frame.Render(false, /*bypass=*/1), ZUQEL_SUCCESS);
    EXPECT_EQ(frame.Render(true, /*bypass=*/1), ZUQEL_SUCCESS);
    EXPECT_EQ(
        zuQelRT_GLStartV1(nullptr, nullptr, nullptr, 0, 0, 0, {0, 0, 0, 0}, 1),
        ZUQEL_NULL_POINTER);
    EXPECT_EQ(dump_number_, 2U);
    EXPECT_EQ(NewFiles().size(), 0U);
  }
  // On screen a bypass ends like any frame; it has no output to dump.
  const CallerContext caller(64, 48);
  const ScopedSession session(Info(0));
  EXPECT_EQ(frame.Render(false, /*bypass=*/1), ZUQEL_SUCCESS);
  EXPECT_EQ(dump_number_, 3U);
  EXPECT_EQ(NewFiles(),
            (std::vector<std::string>{"GLBokeh_64x48_v0.54.07_0002_3_4.raw",
                                      "GLRM_320x240_v0.54.07_0002_3_4.raw"}));
}

struct SwitchRow {
  const char* value;
  bool on;
};

TEST_F(FrameDumpTest, SwitchIsReadAtEveryDump) {
  const ScopedSession session(Info());
  constexpr auto kRows = std::to_array<SwitchRow>({{"", false},
                                                   {"1", true},
                                                   {"0", false},
                                                   {"-3", true},
                                                   {"on", false},
                                                   {" 2x", true},
                                                   {"", false}});
  for (const SwitchRow& row : kRows) {
    const ScopedProperty property(kSwitch, row.value);
    TestFrame frame(Info());
    log_.Take();
    EXPECT_EQ(frame.Render(), ZUQEL_SUCCESS);
    EXPECT_EQ(NewFiles().size(), row.on ? 3U : 0U) << row.value;
    for (const std::string& line : log_.Take()) {
      EXPECT_EQ(line.find("FrameDump"), std::string::npos);
      EXPECT_EQ(line.find("WriteRAW"), std::string::npos);
    }
  }
}

TEST_F(FrameDumpTest, DirectoryIsPutInFrontOfTheName) {
  const ScopedProperty on(kSwitch, "1");
  const uint8_t byte = 7;
  const DumpImage image = {&byte, 1, 1, 1, "RM"};
  const std::string root = directory_.string();

  ASSERT_EQ(__system_property_set(kDirectory, (root + "/in").c_str()), 0);
  DumpFrame(image, {});
  EXPECT_EQ(NewFiles(), std::vector<std::string>{});
  EXPECT_EQ(NewFiles("."),
            std::vector<std::string>{"inGLRM_1x1_v0.54.07_0000_0_0.raw"});
  EXPECT_EQ(log_.Take(), Lines{});

  ASSERT_EQ(__system_property_set(kDirectory, (root + "/none/").c_str()), 0);
  DumpFrame(image, {});
  EXPECT_EQ(log_.Take(), Lines{"*VX* WriteRAW Image Failed!!!"});
  // A frame goes on without its three files.
  const ScopedSession session(Info());
  TestFrame frame(Info());
  log_.Take();
  EXPECT_EQ(frame.Render(), ZUQEL_SUCCESS);
  const Lines log = log_.Take();
  EXPECT_EQ(std::count(log.begin(), log.end(), "*VX* WriteRAW Image Failed!!!"),
            3);
  EXPECT_NE(frame.luma, TestFrame(Info()).luma);
}

TEST_F(FrameDumpTest, NullImagesAreLoggedOnAndOff) {
  const ScopedSession session(Info());
  const std::string line = "pointer is NULL in FrameDump";
  for (const char* value : {"", "1"}) {
    const ScopedProperty property(kSwitch, value);
    TestFrame frame(Info());
    log_.Take();
    EXPECT_EQ(zuQelRT_GLStartV1(frame.luma.data(), frame.chroma.data(), nullptr,
                                3, UINT32_MAX, 0, {0, 0, 0, 0}, 1),
              ZUQEL_SUCCESS);
    Lines log = log_.Take();
    ASSERT_GE(log.size(), 2U);
    EXPECT_EQ(log[0], "zuQelRT_GLStartV1 +");
    EXPECT_EQ(log[1], line);
    EXPECT_EQ(std::count(log.begin(), log.end(), line), 1);
    EXPECT_EQ(frame.Render(/*from_depth=*/true), ZUQEL_SUCCESS);
    log = log_.Take();
    EXPECT_EQ(std::count(log.begin(), log.end(), line), 0) << "has no weights";
  }
  EXPECT_EQ(NewFiles(),
            (std::vector<std::string>{"GLBokeh_64x48_v0.54.07_0002_3_-1.raw",
                                      "GLBokeh_64x48_v0.54.07_0003_3_4.raw",
                                      "GLOutput_64x48_v0.54.07_0002_3_-1.raw",
                                      "GLOutput_64x48_v0.54.07_0003_3_4.raw"}));
}

}  // namespace
}  // namespace zuqel
