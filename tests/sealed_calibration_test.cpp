// Encrypted containers, wrapped keys and the default keys.
#include <gtest/gtest.h>
#include <zuQelRT_GL.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <utility>
#include <vector>

#include "calib/built_in_keys.h"
#include "calib/calibration.h"
#include "guarded_memory.h"
#include "peer_cipher.h"

namespace zuqel::calib {
namespace {

// The encrypted containers. Units are what is encrypted as a whole.
struct Form {
  size_t length;
  int32_t kind;
  size_t units, unit_size, record_size;

  [[nodiscard]] size_t PlaceOf(size_t unit) const {
    return units == 1 ? 0 : 7 + unit * (unit_size + 34);
  }
};
constexpr std::array<Form, 6> kForms = {{{496, 1, 1, 464, 464},
                                         {1499, 1, 3, 464, 464},
                                         {2993, 1, 6, 464, 464},
                                         {544, 3, 1, 512, 512},
                                         {1643, 3, 3, 512, 512},
                                         {2080, 4, 1, 2048, 512}}};

Bytes MakeKey(uint8_t first) {
  Bytes key(32);
  for (size_t i = 0; i < key.size(); ++i) {
    key[i] = static_cast<uint8_t>(first + i);
  }
  return key;
}

Bytes RecordKey() {
  return MakeKey(7);
}

template <typename T>
void Put(Bytes& bytes, size_t place, T value) {
  std::memcpy(bytes.data() + place, &value, sizeof(value));
}

// The header of a kind-3 record.
struct Header {
  int16_t version, count;
  int32_t first_count, second_count;
};
constexpr Header kGoodHeader = {2, 5, 5, 1};

void PutHeader(Bytes& unit, const Header& header) {
  Put(unit, 0, header.version);
  Put(unit, 2, header.count);
  Put(unit, 4, header.first_count);
  Put(unit, 244, header.second_count);
}

// Units that are told apart by every byte but those of the header.
std::vector<Bytes> MakeUnits(const Form& form) {
  std::vector<Bytes> units;
  for (size_t k = 0; k < form.units; ++k) {
    Bytes unit(form.unit_size);
    for (size_t i = 0; i < unit.size(); ++i) {
      unit[i] = static_cast<uint8_t>(i % 251 * 3 + k + 1);
    }
    if (form.kind == 3) PutHeader(unit, kGoodHeader);
    units.push_back(unit);
  }
  return units;
}

Bytes Join(Bytes a, const Bytes& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

// What is not a unit is 0xEE.
Bytes SealUnits(const Form& form, const std::vector<Bytes>& units,
                const Bytes& key) {
  Bytes container(form.length, 0xEE);
  for (size_t k = 0; k < units.size(); ++k) {
    const Bytes nonce(12, static_cast<uint8_t>(k + 1));
    const Sealed sealed = SealByPeer({key, nonce, {}, units[k]});
    const Bytes stored =
        Join(Join(Join(nonce, Bytes(4)), sealed.data), sealed.tag);
    std::copy(stored.begin(), stored.end(),
              container.begin() + static_cast<std::ptrdiff_t>(form.PlaceOf(k)));
  }
  return container;
}

// What reaches the decoder; an absent block is a null one.
struct Blocks {
  std::optional<Bytes> a = {}, b = {};
  std::optional<Bytes> general_key = {}, kind4_key = {};
};

struct Decoded {
  uint32_t status = 0;
  CalibrationRecord record;
};

// Nothing readable follows either block.
Decoded Decode(const Blocks& blocks, CalibrationInput input = {}) {
  const GuardedMemory<uint8_t> a{
      std::span<const uint8_t>(blocks.a.value_or(Bytes()))};
  const GuardedMemory<uint8_t> b{
      std::span<const uint8_t>(blocks.b.value_or(Bytes()))};
  input.block_a = blocks.a ? a.data() : nullptr;
  input.block_a_size = static_cast<uint32_t>(a.size());
  input.block_b = blocks.b ? b.data() : nullptr;
  input.block_b_size = static_cast<uint32_t>(b.size());
  const auto take = [](const std::optional<Bytes>& bytes, Key& key) {
    if (bytes) std::copy(bytes->begin(), bytes->end(), key.begin());
    return bytes ? &key : nullptr;
  };
  Key general = {};
  Key kind4 = {};
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

TEST(SealedCalibration, EveryContainerAndWayToItsKey) {
  for (const Form& form : kForms) {
    const std::vector<Bytes> units = MakeUnits(form);
    const Bytes sealed = SealUnits(form, units, RecordKey());
    const Bytes other = MakeKey(99);
    const Bytes wrapped = WrapByPeer(other, RecordKey());
    Blocks built_in{
        .a = sealed, .general_key = RecordKey(), .kind4_key = other};
    if (form.kind == 4) std::swap(built_in.general_key, built_in.kind4_key);
    const std::vector<std::pair<const char*, Blocks>> ways = {
        {"key", {.a = sealed, .b = RecordKey()}},
        {"key before default", {sealed, RecordKey(), other, other}},
        {"default key", built_in},
        {"wrapped key", {.a = sealed, .b = wrapped, .general_key = other}},
        {"all in one", {.b = Join(wrapped, sealed), .general_key = other}},
        {"empty first block",
         {.a = Bytes(), .b = Join(wrapped, sealed), .general_key = other}},
    };
    for (const auto& [name, blocks] : ways) {
      for (uint32_t k = 0; k < form.units; ++k) {
        SCOPED_TRACE(testing::Message()
                     << form.length << ' ' << name << ' ' << k);
        const Decoded decoded = Decode(blocks, {.forced_index = k});
        ASSERT_EQ(decoded.status, ZUQEL_SUCCESS);
        EXPECT_EQ(decoded.record.kind, form.kind);
        EXPECT_EQ(decoded.record.size, form.record_size);
        EXPECT_EQ(decoded.record.index, k);
        EXPECT_EQ(decoded.record.count, form.units);
        std::array<uint8_t, 512> expected = {};
        std::copy_n(units[k].begin(), form.record_size, expected.begin());
        EXPECT_EQ(decoded.record.bytes, expected);
      }
    }
    const uint32_t past =
        Decode({.a = sealed, .b = RecordKey()},
               {.forced_index = static_cast<uint32_t>(form.units)})
            .status;
    EXPECT_EQ(past, form.units == 1 ? ZUQEL_SUCCESS : ZUQEL_CALIB_BAD_LENGTH);
    EXPECT_EQ(Decode({.a = sealed, .b = other}).status,
              ZUQEL_CALIB_NOT_DECRYPTED);
  }
}

TEST(SealedCalibration, KeysAndBlocksInOrder) {
  const Bytes plain(464);
  const Bytes sealed = SealUnits(kForms[0], MakeUnits(kForms[0]), RecordKey());
  const Bytes kind4 = SealUnits(kForms[5], MakeUnits(kForms[5]), RecordKey());
  const Bytes other = MakeKey(99);
  const Bytes wrapped = WrapByPeer(other, RecordKey());
  const Bytes short_wrapped(wrapped.begin(), wrapped.end() - 1);
  struct Case {
    const char* name;
    Blocks blocks;
    uint32_t status;
  };
  const std::vector<Case> cases = {
      {"no key", {.a = sealed}, ZUQEL_CALIB_NOT_DECRYPTED},
      {"kind 4's key for kind 1",
       {.a = sealed, .kind4_key = RecordKey()},
       ZUQEL_CALIB_NOT_DECRYPTED},
      {"general key for kind 4",
       {.a = kind4, .general_key = RecordKey()},
       ZUQEL_CALIB_NOT_DECRYPTED},
      {"no key to unwrap", {.a = plain, .b = wrapped}, ZUQEL_CALIB_NO_KEY},
      {"kind 4's key to unwrap",
       {.a = kind4, .b = wrapped, .kind4_key = other},
       ZUQEL_CALIB_NO_KEY},
      {"wrapped with another key",
       {.a = plain, .b = wrapped, .general_key = RecordKey()},
       ZUQEL_CALIB_NO_KEY},
      {"one byte short of a wrapped key",
       {.a = plain, .b = short_wrapped, .general_key = other},
       ZUQEL_CALIB_NO_KEY},
      {"key before payload",
       {.b = Join(wrapped, plain), .general_key = RecordKey()},
       ZUQEL_CALIB_NO_KEY},
      {"nothing behind the key",
       {.b = wrapped, .general_key = other},
       ZUQEL_CALIB_NO_PAYLOAD},
      {"one byte behind the key",
       {.b = Join(wrapped, Bytes(1)), .general_key = other},
       ZUQEL_CALIB_BAD_LENGTH},
      {"plain payload behind the key",
       {.b = Join(wrapped, plain), .general_key = other},
       ZUQEL_SUCCESS},
      {"first block before payload",
       {.a = Bytes(1), .b = Join(wrapped, plain), .general_key = other},
       ZUQEL_CALIB_BAD_LENGTH},
  };
  for (const Case& row : cases) {
    EXPECT_EQ(Decode(row.blocks).status, row.status) << row.name;
  }
}

// The bits that do not count are those of the header and the gaps.
TEST(SealedCalibration, OneWrongBitIsRefused) {
  for (const Form& form : kForms) {
    Bytes container = SealUnits(form, MakeUnits(form), RecordKey());
    for (size_t i = 0; i < container.size(); ++i) {
      const size_t stride = form.unit_size + 34;
      const bool is_outside =
          form.units > 1 && (i < 7 || (i - 7) % stride >= stride - 2);
      // A bit of each byte where there are many records, else all of them.
      for (size_t bit = 0; bit < 8; ++bit) {
        if (form.units > 1 && bit != i % 8) continue;
        const auto flip = static_cast<uint8_t>(1U << bit);
        container[i] ^= flip;
        ASSERT_EQ(StatusOf(container),
                  is_outside ? ZUQEL_SUCCESS : ZUQEL_CALIB_NOT_DECRYPTED)
            << form.length << " byte " << i << " bit " << bit;
        container[i] ^= flip;
      }
    }
    ASSERT_EQ(StatusOf(container), ZUQEL_SUCCESS);
  }
}

TEST(SealedCalibration, HeadersOfKindThree) {
  struct Case {
    const char* name;
    Header header;
    uint32_t status;
  };
  constexpr int16_t kMost = INT16_MAX;
  const std::vector<Case> cases = {
      {"count is the first", {2, 5, 5, 1}, ZUQEL_SUCCESS},
      {"count is the second", {kMost, 5, 1, 5}, ZUQEL_SUCCESS},
      {"all one", {2, 1, 1, 1}, ZUQEL_SUCCESS},
      {"old", {1, 5, 5, 5}, ZUQEL_CALIB_BAD_VERSION},
      {"negative version", {-1, 5, 5, 5}, ZUQEL_CALIB_BAD_VERSION},
      {"old and more", {1, 5, 0, 0}, ZUQEL_CALIB_BAD_VERSION},
      {"neither", {2, 5, 4, 6}, ZUQEL_CALIB_BAD_COUNT},
      {"half of the first", {2, 5, 0x10005, 6}, ZUQEL_CALIB_BAD_COUNT},
      {"neither and more", {2, 5, 0, 0}, ZUQEL_CALIB_BAD_COUNT},
      {"first is 0", {2, 5, 0, 5}, ZUQEL_CALIB_BAD_FIRST_COUNT},
      {"both are 0", {2, 0, 0, 0}, ZUQEL_CALIB_BAD_FIRST_COUNT},
      {"first is negative", {2, -1, -1, 5}, ZUQEL_CALIB_BAD_FIRST_COUNT},
      {"second is 0", {2, 5, 5, 0}, ZUQEL_CALIB_BAD_SECOND_COUNT},
      {"second is negative",
       {2, 5, 5, INT32_MIN},
       ZUQEL_CALIB_BAD_SECOND_COUNT},
  };
  for (const Form& form : {kForms[3], kForms[4]}) {
    for (const Case& row : cases) {
      // The last one counts although the first is taken.
      std::vector<Bytes> units = MakeUnits(form);
      PutHeader(units.back(), row.header);
      EXPECT_EQ(StatusOf(SealUnits(form, units, RecordKey())), row.status)
          << row.name << " in " << form.length;
    }
  }
  // The first failure counts: records are opened and checked one by one.
  const Form& three = kForms[4];
  std::vector<Bytes> units = MakeUnits(three);
  PutHeader(units[1], {1, 5, 5, 5});
  for (const size_t damaged : {size_t{0}, size_t{2}}) {
    Bytes container = SealUnits(three, units, RecordKey());
    container[three.PlaceOf(damaged) + 20] ^= 1;
    EXPECT_EQ(StatusOf(container), damaged == 0 ? ZUQEL_CALIB_NOT_DECRYPTED
                                                : ZUQEL_CALIB_BAD_VERSION);
  }
}

TEST(SealedCalibration, SelectorChoosesTheHalfOfKindFour) {
  const std::vector<Bytes> units = MakeUnits(kForms[5]);
  const Bytes container = SealUnits(kForms[5], units, RecordKey());
  for (const int32_t selector : {-1, 0, 1, 2, 3, 4}) {
    const Decoded decoded = Decode({.a = container, .b = RecordKey()},
                                   {.selector = selector, .forced_index = 9});
    ASSERT_EQ(decoded.status, ZUQEL_SUCCESS);
    EXPECT_EQ(decoded.record.index, 0U);
    const std::ptrdiff_t at = selector == 1 || selector == 3 ? 732 : 0;
    EXPECT_TRUE(std::equal(decoded.record.bytes.begin(),
                           decoded.record.bytes.end(), units[0].begin() + at))
        << selector;
  }
}

TEST(SealedCalibration, LensPositionChoosesAmongThree) {
  for (const Form& form : {kForms[1], kForms[2], kForms[4]}) {
    const size_t slope = form.kind == 1 ? 328 : 348;
    std::vector<Bytes> units = MakeUnits(form);
    Put(units[0], slope, 50.0F);
    Put(units[0], slope + 4, 0.0F);
    Put(units[0], slope + 8, 2.0F);  // focal length
    // Expected at 200 / (distance - 2).
    Put(units[0], slope + 12, 4.0F);
    Put(units[1], slope + 12, 3.0F);
    Put(units[2], slope + 12, 2.5F);
    const Bytes container = SealUnits(form, units, RecordKey());
    for (const auto& [lens, index] :
         {std::pair{100, 0U}, std::pair{190, 1U}, std::pair{390, 2U}}) {
      const Decoded decoded =
          Decode({.a = container, .b = RecordKey()},
                 {.lens_position = lens, .forced_index = kByLensPosition});
      EXPECT_EQ(decoded.status, ZUQEL_SUCCESS);
      EXPECT_EQ(decoded.record.index, index) << form.length;
    }
  }
}

// This program's build has a general key, 0x20 to 0x3F, and no other.
TEST(SealedCalibration, KeysOfTheBuild) {
  const DefaultKeys keys = BuiltInKeys();
  ASSERT_NE(keys.general, nullptr);
  EXPECT_EQ(Bytes(keys.general->begin(), keys.general->end()), MakeKey(0x20));
  EXPECT_EQ(keys.kind4, nullptr);
}

}  // namespace
}  // namespace zuqel::calib
