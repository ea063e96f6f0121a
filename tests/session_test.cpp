// The calls that read and change the session, and what initialisation takes
// from its arguments and from the system.
#include <sys/system_properties.h>

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <tuple>
#include <vector>

#include "fresh_session.h"

namespace zuqel {
namespace {

using SessionTest = FreshSessionTest;

TEST_F(SessionTest, CameraLayoutChoosesTheRecord) {
  // Two records, the second 183 words on, that differ in one camera value.
  std::array<float, 372> records = {};
  records[85] = 1;
  records[183 + 85] = 2;
  struct Row {
    int32_t layout;
    uint32_t status, stored;
  };
  const std::vector<Row> rows = {
      {0, 0x200C, 1},  {4, 0, 4}, {5, 0x200C, 4},         {1, 0, 1},
      {-1, 0x200C, 1}, {2, 0, 2}, {INT32_MIN, 0x200C, 2}, {3, 0, 3}};
  for (const auto& [layout, status, stored] : rows) {
    EXPECT_EQ(zuQelRT_CameraLayout_Set(layout), status) << layout;
    uint32_t read = 0;
    EXPECT_EQ(zuQelRT_CameraLayout_Get(&read), 0U);
    EXPECT_EQ(read, stored) << layout;
    const GLInitInfo info = SmallInfo();
    EXPECT_EQ(zuQelRT_GLInitV1(reinterpret_cast<uint8_t*>(records.data()),
                               sizeof(records), nullptr, 0, &info),
              0U);
    PinDriverLibraries();
    EXPECT_EQ(session_.camera.third, stored % 2 == 0 ? 2.0F : 1.0F);
    zuQelRT_GLClose();
  }
  EXPECT_EQ(zuQelRT_CameraLayout_Get(nullptr), 0x2004U);
}

TEST_F(SessionTest, VersionIsWritten) {
  std::string buffer(256, '#');
  EXPECT_EQ(zuQel_GLVersionInfo_Get(nullptr, 255), 0x2003U);
  EXPECT_EQ(zuQel_GLVersionInfo_Get(nullptr, 256), 0x2004U);
  EXPECT_EQ(zuQel_GLVersionInfo_Get(buffer.data(), 256), 0U);
  const std::string version(ZUQEL_VERSION "\0", sizeof(ZUQEL_VERSION));
  EXPECT_EQ(buffer, version + std::string(256 - version.size(), '#'));
}

// The session values that parameters can change.
auto ParameterValues(const Session& session) {
  return std::tuple(session.GsensorState, session.gsensor_value,
                    session.vcm_value, session.FadeInEffect,
                    session.PortraitFlag.load(), session.gInfo.PortraitMode);
}
using Values = decltype(ParameterValues(TheSession()));

TEST_F(SessionTest, ParametersSetTheirOwnValue) {
  struct Row {
    int32_t id;
    ParameterInfo info;
    uint32_t result;
    std::string lines;
    Values after;
  };
  const std::string gsensor =
      "Orvo Gsensor parameter set\nOrvo Gsensor value = ";
  const std::string fade_in = "FADE IN EFFECT parameter set\n";
  const std::string portrait = "PortraitModev set Portrait = 5\n";
  // Each value is read from its own word and stays until it is set again.
  const std::vector<Row> rows = {
      {0, {9, 0, 9, 9, 1, 9}, 1, gsensor + "0\n", {0, 0, 0, 1, 0, 0}},
      {0, {9, -8, 9, 9, 0, 9}, 4, gsensor + "-8\n", {2, -8, 0, 1, 0, 0}},
      {1, {9, 9, -3, 9, 0, 9}, 0, "VCM parameter set\n", {2, -8, -3, 1, 0, 0}},
      {2, {9, 9, 9, 9, 0, 9}, 0, fade_in, {2, -8, -3, 0, 0, 0}},
      {2, {0, 0, 0, 0, -1, 0}, 0, fade_in, {2, -8, -3, 1, 0, 0}},
      {3, {0, 0, 0, 0, 0, 5}, 0, portrait, {2, -8, -3, 1, 1, 5}},
      {-1, {9, 9, 9, 9, 0, 9}, 0, "", {2, -8, -3, 1, 1, 5}}};
  TakeLog();
  EXPECT_EQ(zuQelRT_SetParameter(0, &rows[0].info), 0x200DU);
  EXPECT_EQ(TakeLog(), "SetParameter error, QelMode = 4\n");
  const ScopedSession running(SmallInfo());
  EXPECT_EQ(ParameterValues(session_), Values(2, 0, 0, true, false, 0));
  for (const auto& [id, info, result, lines, after] : rows) {
    TakeLog();
    EXPECT_EQ(zuQelRT_SetParameter(id, &info), result);
    EXPECT_EQ(TakeLog(), lines + "zuQelRT_SetParameter return = 0x" +
                             std::to_string(result) + "\n");
    EXPECT_EQ(ParameterValues(session_), after) << id;
  }
  EXPECT_EQ(zuQelRT_SetParameter(0, nullptr), 0x2004U);
  EXPECT_EQ(TakeLog(), "");
}

TEST_F(SessionTest, RefusedInitialisationKeepsItsMode) {
  struct Row {
    const char* name;
    uint32_t status;
    uint32_t a_size, b_size;  // 0: null
    // Of the preview; widths of weights and depth.
    std::tuple<int32_t, int32_t, int32_t, int32_t> sizes;
  };
  constexpr int32_t kTooWide = 1 << 27;  // 4 bytes in each of 12 rows or more
  const std::vector<Row> rows = {
      {"no block", 0x600A, 0, 0, {8, 8, 8, 8}},
      {"key only", 0x600B, 0, 32, {8, 8, 8, 8}},
      {"no such container", 0x6002, 1000, 0, {8, 8, 8, 8}},
      {"not what the key encrypted", 0x6004, 496, 32, {8, 8, 8, 8}},
      {"preview bytes", 0x200E, 512, 0, {1 << 15, 1 << 14, 8, 8}},
      {"64 bits", 0x200E, 512, 0, {INT32_MAX, INT32_MAX, 8, 8}},
      {"work bytes", 0x200E, 512, 0, {8, 8, kTooWide, 8}},
      {"depth bytes", 0x200E, 512, 0, {8, 8, 8, kTooWide}}};
  const std::vector<uint8_t> zeros(1000);
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const int32_t mode = session_.QelMode;  // closed after the first
    GLInitInfo info = SmallInfo();
    std::tie(info.PreviewWidth, info.PreviewHeight, info.WorkWidth,
             info.DepthWidth) = row.sizes;
    TakeLog();
    EXPECT_EQ(zuQelRT_GLInitV1(
                  row.a_size == 0 ? nullptr : zeros.data(), row.a_size,
                  row.b_size == 0 ? nullptr : zeros.data(), row.b_size, &info),
              row.status);
    EXPECT_EQ(TakeLog(),
              "zuQelRT_GLInitV1 +\nQel status pass\ngInfo.offmode = 1, "
              "gInfo.srcformat = 0 InitV1_\n");
    EXPECT_EQ(session_.QelMode, mode);
    const ScopedSession good(SmallInfo());
    TakeLog();
    EXPECT_EQ(InitSession(info), 0x200EU) << "one runs";
    EXPECT_EQ(TakeLog(), "zuQelRT_GLInitV1 +\nQel status abnormal\n");
  }
  EXPECT_EQ(zuQelRT_GLInitV1(zeros.data(), 512, nullptr, 0, nullptr), 0x2004U);
}

TEST_F(SessionTest, PropertiesAreReadAsNumbers) {
  const std::vector<std::tuple<const char*, int32_t, int32_t>> rows = {
      {"12", 12, 12},      {"-5", 90, -5},
      {" 3 frames", 3, 3}, {"99999999999", INT32_MAX, INT32_MAX},
      {"many", 90, 0},     {"", 90, 0}};
  for (const auto& [text, still_count, focus_dot] : rows) {
    __system_property_set("persist.zu.LVGLbokeh.StillCount", text);
    __system_property_set("persist.zu.LVGLbokeh.FocusDot", text);
    const ScopedSession session(SmallInfo());
    EXPECT_EQ(session_.StillCount, still_count) << text;
    EXPECT_EQ(session_.FocusDotEnable, focus_dot) << text;
  }
}

}  // namespace
}  // namespace zuqel
