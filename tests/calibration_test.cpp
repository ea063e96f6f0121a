// Decoding: containers, keys, the choice of a record, camera values.
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
#include <utility>
#include <vector>

#include "calibration_samples.h"
#include "guarded_memory.h"

namespace zuqel::calib {
namespace {

// The decoder's arguments. An absent block is null, with a size to be ignored.
struct Blocks {
  std::optional<Bytes> a = {}, b = {};
  std::optional<Bytes> general_key = {}, kind4_key = {};
};

struct Decoded {
  uint32_t status = 0;
  CalibrationRecord record;
};

// Reading past either block ends the program. The record starts out full of
// 0xEE, of which nothing may be left.
Decoded Decode(const Blocks& blocks, CalibrationInput input = {}) {
  const Bytes a = blocks.a.value_or(Bytes()), b = blocks.b.value_or(Bytes());
  const GuardedMemory<uint8_t> guarded_a(a), guarded_b(b);
  input.block_a = blocks.a ? guarded_a.data() : nullptr;
  input.block_a_size = blocks.a ? static_cast<uint32_t>(a.size()) : 464;
  input.block_b = blocks.b ? guarded_b.data() : nullptr;
  input.block_b_size = blocks.b ? static_cast<uint32_t>(b.size()) : 99;
  const auto take = [](const std::optional<Bytes>& bytes, Key& key) {
    if (bytes) std::copy(bytes->begin(), bytes->end(), key.begin());
    return bytes ? &key : nullptr;
  };
  Key general = {}, kind4 = {};
  input.default_keys = {.general = take(blocks.general_key, general),
                        .kind4 = take(blocks.kind4_key, kind4)};
  Decoded decoded;
  decoded.record.bytes.fill(0xEE);
  decoded.status = DecodeCalibration(input, decoded.record);
  return decoded;
}

uint32_t StatusOf(const Bytes& container) {
  return Decode({.a = container, .b = RecordKey()}).status;
}

void ExpectRecord(const Decoded& decoded, const Form& form, const Bytes& unit,
                  size_t offset, uint32_t index) {
  ASSERT_EQ(decoded.status, ZUQEL_SUCCESS);
  const CalibrationRecord& record = decoded.record;
  EXPECT_EQ(record.kind, form.kind);
  EXPECT_EQ(record.size, form.record_size);
  EXPECT_EQ(record.index, index);
  EXPECT_EQ(record.count, form.count);
  std::array<uint8_t, 512> expected = {};
  std::copy_n(&unit[offset], form.record_size, expected.begin());
  EXPECT_EQ(record.bytes, expected);
  std::array<float, 5> optics = {};
  std::memcpy(optics.data(), &unit[offset + form.optics()], sizeof(optics));
  const std::optional<CameraValues> values = TakeCameraValues(record);
  ASSERT_TRUE(values.has_value());
  EXPECT_EQ(values->third, optics[0]);
  EXPECT_EQ(values->focal_length_divisor, optics[1]);
  EXPECT_EQ(values->focal_length, optics[4]);
}

TEST(Calibration, EveryContainerAndWayToItsKey) {
  for (const Form& form : kForms) {
    const std::vector<Bytes> units = MakeUnits(form);
    const Bytes container = MakeContainer(form, units);
    const Bytes wrapped = Wrap(OtherKey(), RecordKey());
    Blocks built_in{
        .a = container, .general_key = RecordKey(), .kind4_key = OtherKey()};
    if (form.kind == 4) std::swap(built_in.general_key, built_in.kind4_key);
    const std::vector<Blocks> ways = {
        {.a = container, .b = RecordKey()},
        {container, RecordKey(), OtherKey(), OtherKey()},
        built_in,
        {.a = container, .b = wrapped, .general_key = OtherKey()},
        {.b = Join(wrapped, container), .general_key = OtherKey()},
        {.a = Bytes(),
         .b = Join(wrapped, container),
         .general_key = OtherKey()},
    };
    for (size_t way = 0; way < ways.size(); ++way) {
      for (uint32_t k = 0; k < form.count; ++k) {
        SCOPED_TRACE(testing::Message()
                     << form.length << ' ' << way << ' ' << k);
        ExpectRecord(Decode(ways[way], {.forced_index = k}), form, units[k], 0,
                     k);
      }
    }
    // A single record is picked whatever the index.
    for (const uint32_t index : {static_cast<uint32_t>(form.count), ~1U}) {
      EXPECT_EQ(Decode(ways[0], {.forced_index = index}).status,
                form.count == 1 ? ZUQEL_SUCCESS : ZUQEL_CALIB_BAD_LENGTH);
    }
    for (const int32_t selector : {INT32_MIN, -1, 0, 1, 2, 3, 4, INT32_MAX}) {
      SCOPED_TRACE(testing::Message() << form.length << " by " << selector);
      const bool is_second = selector == 1 || selector == 3;
      ExpectRecord(Decode(ways[0], {.selector = selector}), form, units[0],
                   form.kind == 4 && is_second ? 732 : 0, 0);
    }
  }
}

TEST(Calibration, EveryOtherLengthIsRefused) {
  for (size_t length = 1; length < 3100; ++length) {
    const auto* form =
        std::find_if(kForms.begin(), kForms.end(),
                     [&](const Form& row) { return row.length == length; });
    const uint32_t expected = form == kForms.end() ? ZUQEL_CALIB_BAD_LENGTH
                              : form->sealed       ? ZUQEL_CALIB_NOT_DECRYPTED
                                                   : ZUQEL_SUCCESS;
    ASSERT_EQ(Decode({.a = Bytes(length)}).status, expected) << length;
  }
}

TEST(Calibration, KeysAndBlocksInOrder) {
  const Bytes plain(464), empty, key = RecordKey(), other = OtherKey();
  const Bytes wrapped = Wrap(other, key);
  const Form &form = FormOf(496), &kind4_form = FormOf(2080);
  const Bytes sealed = MakeContainer(form, MakeUnits(form));
  const Bytes kind4 = MakeContainer(kind4_form, MakeUnits(kind4_form));
  const Bytes short_wrapped(wrapped.begin(), wrapped.end() - 1);
  const Bytes both = Join(wrapped, plain), longer = Join(wrapped, Bytes(1));
  const auto none = std::nullopt;
  struct Case {
    const char* name;
    Blocks blocks;  // first, second, general key, kind 4's key
    uint32_t status;
  };
  const std::vector<Case> cases = {
      {"both null", {}, ZUQEL_CALIB_NO_BLOCK},
      {"null key", {plain}, ZUQEL_SUCCESS},
      {"empty key", {plain, empty}, ZUQEL_CALIB_NO_KEY},
      {"short key", {plain, Bytes(31)}, ZUQEL_CALIB_NO_KEY},
      {"key before length", {Bytes(1), Bytes(40)}, ZUQEL_CALIB_NO_KEY},
      {"key alone", {none, key}, ZUQEL_CALIB_NO_PAYLOAD},
      {"key, empty first", {empty, key}, ZUQEL_CALIB_NO_PAYLOAD},
      {"empty first", {empty}, ZUQEL_CALIB_NO_PAYLOAD},
      {"no key to open", {sealed}, ZUQEL_CALIB_NOT_DECRYPTED},
      {"wrong key", {sealed, other}, ZUQEL_CALIB_NOT_DECRYPTED},
      {"key of kind 4", {sealed, none, none, key}, ZUQEL_CALIB_NOT_DECRYPTED},
      {"not of kind 4", {kind4, none, key}, ZUQEL_CALIB_NOT_DECRYPTED},
      {"no key to unwrap", {plain, wrapped}, ZUQEL_CALIB_NO_KEY},
      {"unwrap by kind 4", {kind4, wrapped, none, other}, ZUQEL_CALIB_NO_KEY},
      {"other wrapping key", {plain, wrapped, key}, ZUQEL_CALIB_NO_KEY},
      {"short wrap", {plain, short_wrapped, other}, ZUQEL_CALIB_NO_KEY},
      {"before payload", {none, both, key}, ZUQEL_CALIB_NO_KEY},
      {"nothing follows", {none, wrapped, other}, ZUQEL_CALIB_NO_PAYLOAD},
      {"one byte follows", {none, longer, other}, ZUQEL_CALIB_BAD_LENGTH},
      {"first first", {Bytes(1), both, other}, ZUQEL_CALIB_BAD_LENGTH},
  };
  for (const Case& row : cases) {
    EXPECT_EQ(Decode(row.blocks).status, row.status) << row.name;
  }
}

// Only the bits of the header and of the gaps do not count.
TEST(Calibration, OneWrongBitIsRefused) {
  for (const Form& form : kForms) {
    if (!form.sealed) continue;
    Bytes container = MakeContainer(form, MakeUnits(form));
    // Every bit of a nonce, its filler and a tag, where there is one record;
    // otherwise one in seven, which is one or two of each byte. Six records lie
    // as three do: a bit of every eighth byte.
    const auto step = [&](size_t i) -> size_t {
      if (form.count == 6) return 61;
      return form.count == 1 && (i < 16 || i + 17 >= container.size()) ? 1 : 7;
    };
    for (size_t bit = 0; bit < container.size() * 8; bit += step(bit / 8)) {
      const size_t i = bit / 8;
      const bool is_outside =
          form.count > 1 &&
          (i < 7 || (i - 7) % form.stride >= form.unit_size + 32);
      container[i] ^= static_cast<uint8_t>(1U << bit % 8);
      ASSERT_EQ(StatusOf(container),
                is_outside ? ZUQEL_SUCCESS : ZUQEL_CALIB_NOT_DECRYPTED)
          << form.length << " bit " << bit;
      container[i] ^= static_cast<uint8_t>(1U << bit % 8);
    }
  }
}

TEST(Calibration, HeadersOfKindThree) {
  constexpr auto kCases = std::to_array<std::pair<Header, uint32_t>>({
      {{2, 5, 5, 1}, ZUQEL_SUCCESS},
      {{INT16_MAX, 5, 1, 5}, ZUQEL_SUCCESS},
      {{1, 5, 0, 0}, ZUQEL_CALIB_BAD_VERSION},
      {{-1, 5, 5, 5}, ZUQEL_CALIB_BAD_VERSION},
      {{2, 5, 4, 6}, ZUQEL_CALIB_BAD_COUNT},
      {{2, 5, 0x10005, 6}, ZUQEL_CALIB_BAD_COUNT},
      {{2, 5, 0, 0}, ZUQEL_CALIB_BAD_COUNT},
      {{2, 0, 0, 0}, ZUQEL_CALIB_BAD_FIRST_COUNT},
      {{2, -1, -1, 5}, ZUQEL_CALIB_BAD_FIRST_COUNT},
      {{2, 5, 5, 0}, ZUQEL_CALIB_BAD_SECOND_COUNT},
      {{2, 5, 5, INT32_MIN}, ZUQEL_CALIB_BAD_SECOND_COUNT},
  });
  for (size_t i = 0; i < kCases.size(); ++i) {
    for (const Form& form : {FormOf(544), FormOf(1643)}) {
      // The last one is checked although the first is picked.
      std::vector<Bytes> units = MakeUnits(form);
      PutHeader(units.back(), kCases.at(i).first);
      EXPECT_EQ(StatusOf(MakeContainer(form, units)), kCases.at(i).second) << i;
    }
  }
  // The first failure is returned: each record is decrypted, then checked.
  const Form& three = FormOf(1643);
  std::vector<Bytes> units = MakeUnits(three);
  PutHeader(units[1], {1, 5, 5, 5});
  for (const size_t damaged : {size_t{0}, size_t{2}}) {
    Bytes container = MakeContainer(three, units);
    container[7 + damaged * three.stride] ^= 1;
    EXPECT_EQ(StatusOf(container), damaged == 0 ? ZUQEL_CALIB_NOT_DECRYPTED
                                                : ZUQEL_CALIB_BAD_VERSION);
  }
}

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
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  // Positions 100, 200 and 300, within float rounding of the third.
  constexpr std::array<float, 3> kRising = {4.0F, 3.0F, 2.0F + 2.0F / 3.0F};
  constexpr auto kCases = std::to_array<Case>({
      {"tie of 0 and 1", kRising, 50, 0, 150, 0},
      {"beyond the tie", kRising, 50, 0, 151, 1},
      {"nearest 2", kRising, 50, 0, 290, 2},
      {"offset", kRising, 50, 1000, 1240, 1},
      {"tie of 1 and 2 is 1", {4, 3, 3}, 50, 0, 999, 1},
      {"2 must beat the better of both", {3, 4, 4}, 50, 0, 100, 1},
      // 12.5 and 12.9 both become 12.
      {"truncated, not rounded", {18, 17.5F, 4}, 50, 0, 13, 0},
      // -25 and -25.3 both become -25.
      {"truncated toward zero when negative", {10, 9.9F, 4}, -50, 0, -26, 0},
      {"saturated above", {2, 3, 4}, 50, 0, INT32_MAX, 0},
      {"saturated below", {2, 3, 4}, -50, 0, INT32_MIN, 0},
      {"64-bit distance", {2, 4, 4}, 50, 0, INT32_MIN, 1},
      {"infinite distance is not a number", {3, kInfinity, 4}, 50, 0, 1, 1},
  });
  for (const Form& form : kForms) {
    if (form.count == 1) continue;
    const size_t slope = form.optics() + 8;
    for (const Case& row : kCases) {
      std::vector<Bytes> units = MakeUnits(form);
      Put(units[0], slope, row.slope);
      Put(units[0], slope + 4, row.offset);
      Put(units[0], slope + 8, 2.0F);
      for (size_t k = 0; k < 3; ++k) {
        Put(units[k], slope + 12, row.distances.at(k));
      }
      const Decoded decoded =
          Decode({.a = MakeContainer(form, units), .b = RecordKey()},
                 {.lens_position = row.lens, .forced_index = kByLensPosition});
      EXPECT_EQ(decoded.status, ZUQEL_SUCCESS);
      EXPECT_EQ(decoded.record.index, row.index)
          << row.name << " in " << form.length;
    }
  }
}

}  // namespace
}  // namespace zuqel::calib
