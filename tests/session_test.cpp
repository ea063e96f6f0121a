// The calls that read and change the session, and what initialisation takes
// from its arguments and from the system.
#include <sys/system_properties.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <tuple>
#include <vector>

#include "caller_context.h"
#include "log_capture.h"
#include "test_session.h"

namespace zuqel {
namespace {

using Bytes = std::vector<uint8_t>;

GLInitInfo SmallInfo() {
  GLInitInfo info = DefaultInfo();
  std::tie(info.PreviewWidth, info.PreviewHeight) = std::pair(64, 48);
  std::tie(info.WorkWidth, info.WorkHeight) = std::pair(32, 24);
  std::tie(info.DepthWidth, info.DepthHeight) = std::pair(16, 12);
  std::tie(info.OutputWidth, info.OutputHeight) = std::pair(20, 10);
  return info;
}

uint32_t InitWith(const Bytes& calibration, const GLInitInfo& info) {
  return zuQelRT_GLInitV1(calibration.data(),
                          static_cast<uint32_t>(calibration.size()), nullptr, 0,
                          &info);
}

// Every test begins as the process does.
class SessionTest : public testing::Test {
 protected:
  SessionTest() { ResetSession(); }
  ~SessionTest() override { zuQelRT_GLClose(); }

  Session& session_ = TheSession();
};

TEST_F(SessionTest, CameraLayoutIsOneToFour) {
  struct Row {
    int32_t layout;
    uint32_t status;
    uint32_t stored;
  };
  const std::vector<Row> rows = {{0, 0x200C, 1},  {4, 0, 4},
                                 {5, 0x200C, 4},  {1, 0, 1},
                                 {-1, 0x200C, 1}, {INT32_MIN, 0x200C, 1},
                                 {3, 0, 3},       {INT32_MAX, 0x200C, 3}};
  uint32_t layout = 0;
  for (const auto& row : rows) {
    EXPECT_EQ(zuQelRT_CameraLayout_Set(row.layout), row.status) << row.layout;
    EXPECT_EQ(zuQelRT_CameraLayout_Get(&layout), 0U);
    EXPECT_EQ(layout, row.stored) << row.layout;
  }
  EXPECT_EQ(zuQelRT_CameraLayout_Get(nullptr), 0x2004U);

  { const ScopedSession first(SmallInfo()); }
  const ScopedSession second(SmallInfo());
  EXPECT_EQ(zuQelRT_CameraLayout_Get(&layout), 0U);
  EXPECT_EQ(layout, 3U);
}

TEST_F(SessionTest, VersionIsWrittenInEveryMode) {
  std::string buffer(256, '#');
  std::string expected = buffer;
  expected.replace(0, 8, std::string("0.54.07\0", 8));
  const auto check = [&] {
    buffer.assign(256, '#');
    EXPECT_EQ(zuQel_GLVersionInfo_Get(nullptr, 255), 0x2003U);
    EXPECT_EQ(zuQel_GLVersionInfo_Get(buffer.data(), INT32_MIN), 0x2003U);
    EXPECT_EQ(buffer, std::string(256, '#'));
    EXPECT_EQ(zuQel_GLVersionInfo_Get(nullptr, 256), 0x2004U);
    EXPECT_EQ(zuQel_GLVersionInfo_Get(buffer.data(), 256), 0U);
    EXPECT_EQ(buffer, expected);
  };
  check();
  {
    const ScopedSession running(SmallInfo());
    check();
  }
  check();
}

// The session values that parameters can change.
auto ParameterValues(const Session& session) {
  return std::tuple(session.GsensorState, session.gsensor_value,
                    session.vcm_value, session.FadeInEffect,
                    session.PortraitFlag.load(), session.gInfo.PortraitMode);
}
using Values = decltype(ParameterValues(TheSession()));

struct ParameterCase {
  int32_t id;
  ParameterInfo info;
  uint32_t result;
  Lines lines;
  Values after;
};

TEST_F(SessionTest, ParametersSetTheirOwnValue) {
  const std::string gsensor = "Orvo Gsensor parameter set";
  const std::string fade_in = "FADE IN EFFECT parameter set";
  // Each value is read from its own word and stays until it is set again.
  const std::vector<ParameterCase> rows = {
      {0,
       {9, 7, 9, 9, 0, 9},
       4,
       {gsensor, "Orvo Gsensor value = 7"},
       {2, 7, 0, true, false, 0}},
      {0,
       {9, 0, 9, 9, 0, 9},
       1,
       {gsensor, "Orvo Gsensor value = 0"},
       {0, 0, 0, true, false, 0}},
      {0,
       {9, -8, 9, 9, 0, 9},
       4,
       {gsensor, "Orvo Gsensor value = -8"},
       {2, -8, 0, true, false, 0}},
      {1,
       {9, 9, -3, 9, 0, 9},
       0,
       {"VCM parameter set"},
       {2, -8, -3, true, false, 0}},
      {2, {9, 9, 9, 9, 0, 9}, 0, {fade_in}, {2, -8, -3, false, false, 0}},
      {2, {0, 0, 0, 0, -1, 0}, 0, {fade_in}, {2, -8, -3, true, false, 0}},
      {3,
       {0, 0, 0, 0, 0, 5},
       0,
       {"PortraitModev set Portrait = 5"},
       {2, -8, -3, true, true, 5}},
      {3,
       {9, 9, 9, 9, 9, 0},
       0,
       {"PortraitModev set Portrait = 0"},
       {2, -8, -3, true, false, 0}},
      {4, {9, 9, 9, 9, 0, 9}, 0, {}, {2, -8, -3, true, false, 0}},
      {-1, {9, 9, 9, 9, 0, 9}, 0, {}, {2, -8, -3, true, false, 0}},
  };
  const ScopedSession running(SmallInfo());
  ASSERT_EQ(ParameterValues(session_), Values(2, 0, 0, true, false, 0));
  LogCapture log;
  for (const ParameterCase& row : rows) {
    EXPECT_EQ(zuQelRT_SetParameter(row.id, &row.info), row.result);
    Lines lines = row.lines;
    lines.push_back("zuQelRT_SetParameter return = 0x" +
                    std::to_string(row.result));
    EXPECT_EQ(log.Take(), lines);
    EXPECT_EQ(ParameterValues(session_), row.after) << "id " << row.id;
  }
  EXPECT_EQ(zuQelRT_SetParameter(0, nullptr), 0x2004U);
  EXPECT_EQ(log.Take(), Lines());
}

TEST_F(SessionTest, ParametersAreRefusedOutsideOfASession) {
  const ParameterInfo info = {1, 1, 1, 1, 0, 0};
  LogCapture log;
  for (const char* mode : {"4", "3"}) {
    const Values before = ParameterValues(session_);
    for (const int32_t id : {0, 1, 2, 3, 9}) {
      EXPECT_EQ(zuQelRT_SetParameter(id, &info), 0x200DU);
      EXPECT_EQ(log.Take(),
                Lines{std::string("SetParameter error, QelMode = ") + mode});
    }
    EXPECT_EQ(ParameterValues(session_), before);
    zuQelRT_GLClose();
    log.Take();
  }
}

TEST_F(SessionTest, SecondInitialisationIsRefused) {
  const ScopedSession running(SmallInfo());
  EXPECT_EQ(running.status(), 0U);
  LogCapture log;
  EXPECT_EQ(InitSession(DefaultInfo()), 0x200EU);
  EXPECT_EQ(log.Take(), (Lines{"zuQelRT_GLInitV1 +", "Qel status abnormal"}));
  EXPECT_EQ(session_.gInfo.PreviewWidth, 64);
  EXPECT_EQ(session_.QelMode, kModeRunning);
}

struct Refusal {
  const char* name;
  uint32_t status;
  uint32_t a_size;  // 0: null
  uint32_t b_size;
  GLInitInfo info;
};

GLInitInfo Sized(int32_t preview_width, int32_t preview_height,
                 int32_t work_width, int32_t depth_width) {
  GLInitInfo info = SmallInfo();
  std::tie(info.PreviewWidth, info.PreviewHeight) =
      std::pair(preview_width, preview_height);
  std::tie(info.WorkWidth, info.WorkHeight) = std::pair(work_width, 4);
  std::tie(info.DepthWidth, info.DepthHeight) = std::pair(depth_width, 4);
  return info;
}

constexpr int32_t kTooWide = 1 << 27;  // times 4 rows of 4 bytes: 2^31

TEST_F(SessionTest, RefusedInitialisationKeepsItsMode) {
  const std::vector<Refusal> rows = {
      {"no block", 0x600A, 0, 0, SmallInfo()},
      {"key only", 0x600B, 0, 32, SmallInfo()},
      {"not a key", 0x600C, 464, 31, SmallInfo()},
      {"no such container", 0x6002, 1000, 0, SmallInfo()},
      {"longer than any container", 0x6002, 3000, 0, SmallInfo()},
      {"not what the key encrypted", 0x6004, 496, 32, SmallInfo()},
      {"preview bytes overflow", 0x200E, 512, 0, Sized(1 << 15, 1 << 14, 8, 8)},
      {"preview samples overflow", 0x200E, 512, 0,
       Sized(1 << 16, 1 << 16, 8, 8)},
      {"preview product overflows 64 bits", 0x200E, 512, 0,
       Sized(INT32_MAX, INT32_MAX, 8, 8)},
      {"work bytes overflow", 0x200E, 512, 0, Sized(8, 8, kTooWide, 8)},
      {"depth bytes overflow", 0x200E, 512, 0, Sized(8, 8, 8, kTooWide)},
  };
  const Bytes zeros(3000);
  for (const int32_t mode : {kModeNeverInitialised, kModeClosed}) {
    for (const Refusal& row : rows) {
      SCOPED_TRACE(row.name);
      ResetSession();
      if (mode == kModeClosed) zuQelRT_GLClose();
      LogCapture log;
      EXPECT_EQ(
          zuQelRT_GLInitV1(row.a_size == 0 ? nullptr : zeros.data(), row.a_size,
                           row.b_size == 0 ? nullptr : zeros.data(), row.b_size,
                           &row.info),
          row.status);
      EXPECT_EQ(log.Take(),
                (Lines{"zuQelRT_GLInitV1 +", "Qel status pass",
                       "gInfo.offmode = 1, gInfo.srcformat = 0 InitV1 "}));
      EXPECT_EQ(session_.QelMode, mode);
      // The record has been copied; nothing was made or read after that.
      EXPECT_EQ(session_.gInfo.PreviewWidth, row.info.PreviewWidth);
      EXPECT_EQ(session_.gInfo.OutputWidth, 20);
      EXPECT_EQ(session_.context.display, EGL_NO_DISPLAY);
      EXPECT_FALSE(session_.buffers[BufferRole::kReadBack].exists());

      const ScopedSession good(SmallInfo());
      EXPECT_EQ(good.status(), 0U);
      EXPECT_EQ(session_.QelMode, kModeRunning);
    }
  }
  EXPECT_EQ(zuQelRT_GLInitV1(zeros.data(), 512, nullptr, 0, nullptr), 0x2004U);
  EXPECT_EQ(session_.QelMode, kModeClosed);
}

TEST_F(SessionTest, ByteCountsEndAt31Bits) {
  EXPECT_EQ(ByteCount(INT32_MAX / 4, 1, 4), size_t{INT32_MAX / 4} * 4);
  EXPECT_EQ(ByteCount(INT32_MAX / 4 + 1, 1, 4), std::nullopt);
  EXPECT_EQ(ByteCount(1, INT32_MAX, 1), size_t{INT32_MAX});
  EXPECT_EQ(ByteCount(-3, INT32_MAX, 4), size_t{0});
  EXPECT_EQ(ByteCount(-3, INT32_MIN, 4), size_t{0});
}

TEST_F(SessionTest, NegativeAndZeroSizesMakeEmptySessions) {
  for (const int32_t size : {0, -1, INT32_MIN}) {
    for (const int32_t format : {0, 2, 7, 1}) {
      GLInitInfo info = Sized(size, 5, size, size);
      info.srcformat = format;
      const ScopedSession session(info);
      EXPECT_EQ(session.status(), 0U);
      EXPECT_EQ(session_.buffers[BufferRole::kReadBack].size(), 0U);
      uint8_t luma = 1, chroma = 2;
      uint16_t depth = 1023;
      EXPECT_EQ(
          zuQelRT_GLStartV1(&luma, &chroma, &chroma, 1, 2, 0, {0, 0, 0, 0}, 1),
          0U);
      EXPECT_EQ(zuQelRT_GLStartV1HWDepth(&luma, &chroma, &depth, 1, 2, 0,
                                         {0, 0, 0, 0}, 1),
                0U);
      EXPECT_EQ(std::tuple(luma, chroma, depth), std::tuple(1, 2, 1023));
    }
  }
}

TEST_F(SessionTest, PropertiesAreReadAsNumbers) {
  struct Row {
    const char* text;
    int32_t still_count;
    int32_t focus_dot;
  };
  const std::vector<Row> rows = {{"", 90, 0},
                                 {"0", 90, 0},
                                 {"12", 12, 12},
                                 {"-5", 90, -5},
                                 {" 3 frames", 3, 3},
                                 {"many", 90, 0},
                                 {"99999999999", INT32_MAX, INT32_MAX}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.text);
    __system_property_set("persist.zu.LVGLbokeh.StillCount", row.text);
    __system_property_set("persist.zu.LVGLbokeh.FocusDot", row.text);
    LogCapture log;
    const ScopedSession session(SmallInfo());
    EXPECT_EQ(session_.StillCount, row.still_count);
    EXPECT_EQ(session_.FocusDotEnable, row.focus_dot);
    const Lines lines = log.Take();
    EXPECT_EQ(lines.at(lines.size() - 3),
              "Dot enable = " + std::to_string(row.focus_dot));
  }
  __system_property_set("persist.zu.LVGLbokeh.StillCount", "");
  __system_property_set("persist.zu.LVGLbokeh.FocusDot", "");
}

TEST_F(SessionTest, RecordIsTakenOverAndAdjusted) {
  const CallerContext caller;
  ASSERT_TRUE(caller.is_current());
  struct Row {
    int32_t off_screen;
    int32_t portrait;
    std::pair<int32_t, int32_t> output;
  };
  const std::vector<Row> rows = {
      {0, 0, {20, 10}}, {1, 7, {64, 48}}, {-1, 0, {64, 48}}};
  for (const auto& row : rows) {
    GLInitInfo info = SmallInfo();
    info.offmode = row.off_screen;
    info.PortraitMode = row.portrait;
    info.GraphicBufferFlag = 5;
    const ScopedSession session(info);
    EXPECT_EQ(session_.PortraitFlag, row.portrait != 0);
    std::tie(info.OutputWidth, info.OutputHeight) = row.output;
    info.GraphicBufferFlag = 0;  // no usable wrapper here
    EXPECT_EQ(std::memcmp(&session_.gInfo, &info, sizeof(info)), 0)
        << "offmode " << row.off_screen;
  }
}

// Puts `value` at a 32-bit word of a record.
void PutWord(Bytes& record, size_t word, float value) {
  std::memcpy(&record[word * 4], &value, sizeof(value));
}

TEST_F(SessionTest, CameraValuesComeFromTheRecord) {
  struct Row {
    size_t length;
    int32_t layout;
    size_t third, focal_length, divisor;  // words
  };
  const std::vector<Row> rows = {
      {464, 1, 80, 84, 81},
      {512, 1, 85, 89, 86},
      {466, 2, 80, 84, 81},  // a layout does not count where one record is
      {1488, 1, 85, 89, 86},
      {1488, 2, 183 + 85, 183 + 89, 183 + 86},  // second half: 732 bytes on
      {1488, 3, 85, 89, 86},
      {1488, 4, 183 + 85, 183 + 89, 183 + 86},
  };
  for (const auto& row : rows) {
    Bytes record(row.length);
    PutWord(record, row.third, 1.5F);
    PutWord(record, row.focal_length, -2.25F);
    PutWord(record, row.divisor, 8);
    ASSERT_EQ(zuQelRT_CameraLayout_Set(row.layout), 0U);
    ASSERT_EQ(InitWith(record, SmallInfo()), 0U);
    EXPECT_EQ(std::tuple(session_.camera.third, session_.camera.focal_length,
                         session_.camera.focal_length_divisor),
              std::tuple(1.5F, -2.25F, 8.0F))
        << row.length << " bytes, layout " << row.layout;
    zuQelRT_GLClose();
  }
}

TEST_F(SessionTest, BuffersHaveTheirSizesAndLifetimes) {
  constexpr size_t kPreview = 3072, kWork = 768, kDepth = 192;
  struct Row {
    size_t bytes;
    BufferRole role;
    bool outlives_close;
  };
  const std::vector<Row> rows = {
      {kPreview, BufferRole::kPreviewMap, false},
      {kPreview * 4, BufferRole::kPackedFrame, false},
      {kPreview * 4, BufferRole::kReadBack, false},
      {kWork * 4, BufferRole::kWork1, false},
      {kWork * 4, BufferRole::kWork2, false},
      {kWork, BufferRole::kWorkMap1, false},
      {kWork, BufferRole::kWorkMap2, false},
      {kWork * 4, BufferRole::kWeightMapRm, true},
      {kWork, BufferRole::kWeightMapCharRm, true},
      {kDepth * 4, BufferRole::kInputDepthRgbaRm, true},
      {kDepth * 4, BufferRole::kDepthRgba2, false},
  };
  std::vector<const uint8_t*> first;
  {
    const ScopedSession session(SmallInfo());
    for (const auto& row : rows) {
      EXPECT_EQ(session_.buffers[row.role].size(), row.bytes);
      first.push_back(session_.buffers[row.role].bytes());
    }
  }
  for (size_t i = 0; i < rows.size(); ++i) {
    const Buffer& buffer = session_.buffers[rows[i].role];
    EXPECT_EQ(buffer.bytes(), rows[i].outlives_close ? first[i] : nullptr) << i;
  }
  const Buffer& survivor = session_.buffers[BufferRole::kWeightMapRm];
  { const ScopedSession smaller(Sized(8, 8, 16, 16)); }
  EXPECT_EQ(survivor.bytes(), first[7]) << "large enough, so used again";
  { const ScopedSession larger(Sized(8, 8, 1000, 16)); }
  EXPECT_EQ(survivor.size(), 16000U) << "too small, so replaced";
}

}  // namespace
}  // namespace zuqel
