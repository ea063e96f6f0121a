// Containers, the choice of a record, and the values taken from it.
#include "calib/calibration.h"

#include <gtest/gtest.h>
#include <zuQelRT_GL.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
#include <vector>

#include "guarded_memory.h"

namespace zuqel::calib {
namespace {

// A container whose bytes tell their places, up to a period that no distance
// between records divides.
std::vector<uint8_t> NumberedBytes(size_t size) {
  std::vector<uint8_t> bytes(size);
  for (size_t i = 0; i < size; ++i) bytes[i] = static_cast<uint8_t>(i % 251);
  return bytes;
}

struct Decoded {
  uint32_t status = 0;
  CalibrationRecord record;
};

// Decodes a copy of `block` that nothing readable follows; a record that was
// used before must not shine through.
Decoded Decode(const std::vector<uint8_t>& block, CalibrationInput input = {}) {
  const GuardedMemory<uint8_t> memory(block);
  input.block_a = memory.data();
  input.block_a_size = static_cast<uint32_t>(block.size());
  Decoded decoded;
  decoded.record.bytes.fill(0xEE);
  decoded.status = DecodeCalibration(input, decoded.record);
  return decoded;
}

void ExpectRecord(const Decoded& decoded, const std::vector<uint8_t>& block,
                  int32_t kind, size_t size, size_t offset, uint32_t index) {
  ASSERT_EQ(decoded.status, ZUQEL_SUCCESS);
  EXPECT_EQ(decoded.record.kind, kind);
  EXPECT_EQ(decoded.record.size, size);
  EXPECT_EQ(decoded.record.index, index);
  std::array<uint8_t, 512> expected = {};
  std::copy_n(block.begin() + static_cast<std::ptrdiff_t>(offset), size,
              expected.begin());
  EXPECT_EQ(decoded.record.bytes, expected);
}

TEST(Calibration, PlainContainers) {
  struct Case {
    size_t length;
    int32_t kind;
    uint32_t records;
    size_t size, first, stride;
  };
  const std::vector<Case> cases = {
      {464, 1, 1, 464, 0, 0},    {466, 1, 1, 464, 0, 0},
      {1403, 1, 3, 464, 7, 466}, {2801, 1, 6, 464, 7, 466},
      {512, 3, 1, 512, 0, 0},    {514, 3, 1, 512, 0, 0},
      {1547, 3, 3, 512, 7, 514},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.length);
    const std::vector<uint8_t> block = NumberedBytes(row.length);
    for (uint32_t k = 0; k < row.records; ++k) {
      ExpectRecord(Decode(block, {.forced_index = k}), block, row.kind,
                   row.size, row.first + k * row.stride, k);
    }
    // A single record is taken whatever the index.
    const uint32_t past = Decode(block, {.forced_index = row.records}).status;
    EXPECT_EQ(past, row.records == 1 ? ZUQEL_SUCCESS : ZUQEL_CALIB_BAD_LENGTH);
    const uint32_t far = Decode(block, {.forced_index = 0xFFFFFFFE}).status;
    EXPECT_EQ(far, past);
  }
}

TEST(Calibration, SelectorChoosesTheHalfOfKindFour) {
  const std::vector<uint8_t> block = NumberedBytes(1488);
  for (const int32_t selector : {INT32_MIN, -1, 0, 1, 2, 3, 4, INT32_MAX}) {
    SCOPED_TRACE(selector);
    const size_t offset = selector == 1 || selector == 3 ? 732 : 0;
    for (const uint32_t index : {0U, 1U, 9U, kByLensPosition}) {
      ExpectRecord(Decode(block, {.selector = selector, .forced_index = index}),
                   block, 4, 512, offset, 0);
    }
  }
}

TEST(Calibration, EveryOtherLengthIsRefused) {
  const std::vector<size_t> plain = {464, 466, 1403, 2801,
                                     512, 514, 1547, 1488};
  const std::vector<size_t> encrypted = {496, 1499, 2993, 544, 1643, 2080};
  const auto has = [](const std::vector<size_t>& list, size_t length) {
    return std::find(list.begin(), list.end(), length) != list.end();
  };
  for (size_t length = 1; length < 3100; ++length) {
    const uint32_t expected = has(plain, length) ? ZUQEL_SUCCESS
                              : has(encrypted, length)
                                  ? ZUQEL_CALIB_NOT_DECRYPTED
                                  : ZUQEL_CALIB_BAD_LENGTH;
    ASSERT_EQ(Decode(std::vector<uint8_t>(length)).status, expected) << length;
  }
}

TEST(Calibration, BlocksAreCheckedInOrder) {
  const GuardedMemory<uint8_t> a(3000);
  const GuardedMemory<uint8_t> b(100);
  struct Case {
    const char* name;
    const uint8_t* block_a;
    uint32_t size_a;
    const uint8_t* block_b;
    uint32_t size_b;
    uint32_t status;
  };
  const std::vector<Case> cases = {
      {"both null", nullptr, 464, nullptr, 32, ZUQEL_CALIB_NO_BLOCK},
      {"key", a.data(), 464, b.data(), 32, ZUQEL_SUCCESS},
      {"null key of any size", a.data(), 464, nullptr, 7, ZUQEL_SUCCESS},
      {"wrapped key", a.data(), 464, b.data(), 40, ZUQEL_CALIB_NO_KEY},
      {"short key", a.data(), 464, b.data(), 31, ZUQEL_CALIB_NO_KEY},
      {"empty key", a.data(), 464, b.data(), 0, ZUQEL_CALIB_NO_KEY},
      {"key before length", a.data(), 1, b.data(), 40, ZUQEL_CALIB_NO_KEY},
      {"key before payload", nullptr, 0, b.data(), 100, ZUQEL_CALIB_NO_KEY},
      {"key alone", nullptr, 464, b.data(), 32, ZUQEL_CALIB_NO_PAYLOAD},
      {"key, empty first", a.data(), 0, b.data(), 32, ZUQEL_CALIB_NO_PAYLOAD},
      {"empty first", a.data(), 0, nullptr, 0, ZUQEL_CALIB_NO_PAYLOAD},
      {"null second of a size", a.data(), 0, nullptr, 99,
       ZUQEL_CALIB_NO_PAYLOAD},
      {"too long", a.data(), 2994, b.data(), 32, ZUQEL_CALIB_BAD_LENGTH},
      {"huge", a.data(), UINT32_MAX, nullptr, 0, ZUQEL_CALIB_BAD_LENGTH},
      {"encrypted", a.data(), 496, b.data(), 32, ZUQEL_CALIB_NOT_DECRYPTED},
  };
  for (const Case& row : cases) {
    CalibrationRecord record;
    EXPECT_EQ(DecodeCalibration({.block_a = row.block_a,
                                 .block_a_size = row.size_a,
                                 .block_b = row.block_b,
                                 .block_b_size = row.size_b},
                                record),
              row.status)
        << row.name;
  }
}

// Where multi-record containers keep their floats.
struct Layout {
  size_t length, stride;
  size_t slope, offset, focal_length, distance;
};
constexpr std::array<Layout, 3> kLayouts = {{{1403, 466, 328, 332, 336, 340},
                                             {2801, 466, 328, 332, 336, 340},
                                             {1547, 514, 348, 352, 356, 360}}};

void PutFloat(std::vector<uint8_t>& block, size_t place, float value) {
  std::memcpy(block.data() + place, &value, sizeof(value));
}

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

TEST(Calibration, LensPositionChoosesAmongThree) {
  // With focal length 2, slope 50 and offset 0 a record at distance d expects
  // (2 d / (d - 2) - 2) * 50 = 200 / (d - 2).
  struct Case {
    const char* name;
    std::array<float, 3> distances;
    float slope, offset;
    int32_t lens;
    uint32_t index;
  };
  // Positions 100, 200 and 300, within float rounding of the third.
  constexpr std::array<float, 3> kRising = {4.0F, 3.0F, 2.0F + 2.0F / 3.0F};
  const std::vector<Case> cases = {
      {"tie of 0 and 1", kRising, 50, 0, 150, 0},
      {"beyond the tie", kRising, 50, 0, 151, 1},
      {"nearest 1", kRising, 50, 0, 240, 1},
      {"nearest 2", kRising, 50, 0, 290, 2},
      {"below all", kRising, 50, 0, INT32_MIN, 0},
      {"above all", kRising, 50, 0, INT32_MAX, 2},
      {"offset", kRising, 50, 1000, 1240, 1},
      {"tie of 1 and 2 is 1", {4, 3, 3}, 50, 0, 999, 1},
      {"tie of all is 0", {3, 3, 3}, 50, 0, 7, 0},
      {"2 must beat the better of both", {3, 4, 4}, 50, 0, 100, 1},
      // 12.5 and 12.9 are both cut to 12.
      {"cut, not rounded", {18, 17.5F, 4}, 50, 0, 13, 0},
      // -25 and -25.3 are both cut to -25.
      {"cut toward zero below it", {10, 9.9F, 4}, -50, 0, -26, 0},
      {"saturated above", {2, 3, 4}, 50, 0, INT32_MAX, 0},
      {"saturated below", {2, 3, 4}, -50, 0, INT32_MIN, 0},
      {"64-bit distance", {2, 4, 4}, 50, 0, INT32_MIN, 1},
      {"not a number is 0", {kNan, 3, 4}, 50, 0, 1, 0},
      {"infinite distance is not a number", {3, kInfinity, 4}, 50, 0, 1, 1},
  };
  for (const Layout& layout : kLayouts) {
    for (const Case& row : cases) {
      std::vector<uint8_t> block(layout.length);
      PutFloat(block, 7 + layout.slope, row.slope);
      PutFloat(block, 7 + layout.offset, row.offset);
      PutFloat(block, 7 + layout.focal_length, 2);
      for (size_t k = 0; k < 3; ++k) {
        PutFloat(block, 7 + k * layout.stride + layout.distance,
                 row.distances[k]);
      }
      const Decoded decoded = Decode(
          block, {.lens_position = row.lens, .forced_index = kByLensPosition});
      EXPECT_EQ(decoded.status, ZUQEL_SUCCESS);
      EXPECT_EQ(decoded.record.index, row.index)
          << row.name << " in " << layout.length;
    }
  }
}

TEST(Calibration, CameraValuesByKind) {
  struct Case {
    int32_t kind;
    size_t third, focal_length, divisor;
  };
  for (const Case& row : {Case{1, 320, 336, 324}, Case{3, 340, 356, 344},
                          Case{4, 340, 356, 344}}) {
    std::vector<uint8_t> bytes(512, 0xEE);
    PutFloat(bytes, row.third, 1.25F);
    PutFloat(bytes, row.focal_length, 2.5F);
    PutFloat(bytes, row.divisor, -0.5F);
    CalibrationRecord record{.kind = row.kind};
    std::copy(bytes.begin(), bytes.end(), record.bytes.begin());
    const std::optional<CameraValues> values = TakeCameraValues(record);
    ASSERT_TRUE(values.has_value()) << row.kind;
    EXPECT_EQ(values->third, 1.25F);
    EXPECT_EQ(values->focal_length, 2.5F);
    EXPECT_EQ(values->focal_length_divisor, -0.5F);
  }
  for (const int32_t kind : {0, 2, 5, -1}) {
    EXPECT_FALSE(TakeCameraValues({.kind = kind}).has_value()) << kind;
  }
}

}  // namespace
}  // namespace zuqel::calib
