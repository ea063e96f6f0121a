// Decoding: containers, keys, the choice of a record, camera values, wiping.
#include "calib/calibration.h"

#include <gtest/gtest.h>
#include <openssl/evp.h>
#include <pthread.h>
#include <zuQelRT_GL.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <optional>
#include <span>
#include <unordered_set>
#include <utility>
#include <vector>

#include "calib/built_in_keys.h"
#include "calib/gcm.h"
#include "calib/key_wrap.h"
#include "guarded_memory.h"
#include "random.h"

namespace zuqel::calib {
namespace {

using Bytes = std::vector<uint8_t>;

// A container: unit k begins at first + k * stride. A sealed unit is a nonce,
// 4 zeros, the encrypted bytes and their tag.
struct Form {
  size_t length;
  bool sealed;
  int32_t kind;
  size_t count, first, stride, unit_size, record_size;
};
constexpr auto kForms = std::to_array<Form>({
    {464, false, 1, 1, 0, 0, 464, 464},
    {466, false, 1, 1, 0, 0, 464, 464},
    {1403, false, 1, 3, 7, 466, 464, 464},
    {2801, false, 1, 6, 7, 466, 464, 464},
    {512, false, 3, 1, 0, 0, 512, 512},
    {514, false, 3, 1, 0, 0, 512, 512},
    {1547, false, 3, 3, 7, 514, 512, 512},
    {1488, false, 4, 1, 0, 0, 1488, 512},
    {496, true, 1, 1, 0, 0, 464, 464},
    {1499, true, 1, 3, 7, 498, 464, 464},
    {2993, true, 1, 6, 7, 498, 464, 464},
    {544, true, 3, 1, 0, 0, 512, 512},
    {1643, true, 3, 3, 7, 546, 512, 512},
    {2080, true, 4, 1, 0, 0, 2048, 512},
});

const Form& FormOf(size_t length) {
  return *std::find_if(std::begin(kForms), std::end(kForms),
                       [=](const Form& form) { return form.length == length; });
}

Bytes MakeKey(uint8_t first) {
  Bytes key(kAesKeySize);
  for (uint8_t& byte : key) byte = first++;
  return key;
}

Bytes RecordKey() {
  return MakeKey(7);
}

Bytes OtherKey() {
  return MakeKey(99);
}

// Wraps a key with another one, by libcrypto.
Bytes Wrap(const Bytes& wrapping_key, const Bytes& key) {
  Bytes wrapped(kWrappedKeySize);
  int size = 0;
  EVP_CIPHER_CTX* context = EVP_CIPHER_CTX_new();
  EVP_CIPHER_CTX_set_flags(context, EVP_CIPHER_CTX_FLAG_WRAP_ALLOW);
  EVP_EncryptInit_ex(context, EVP_aes_256_wrap(), nullptr, wrapping_key.data(),
                     nullptr);
  EVP_EncryptUpdate(context, wrapped.data(), &size, key.data(), kAesKeySize);
  EVP_CIPHER_CTX_free(context);
  return wrapped;
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

void PutHeader(Bytes& unit, const Header& header) {
  Put(unit, 0, header.version);
  Put(unit, 2, header.count);
  Put(unit, 4, header.first_count);
  Put(unit, 244, header.second_count);
}

// Units that differ in every byte past the header.
std::vector<Bytes> MakeUnits(const Form& form) {
  std::vector<Bytes> units(form.count, Bytes(form.unit_size));
  for (size_t k = 0; k < form.count; ++k) {
    for (size_t i = 0; i < form.unit_size; ++i) {
      units[k][i] = static_cast<uint8_t>(i % 251 * 3 + k + 1);
    }
    if (form.kind == 3) PutHeader(units[k], {2, 5, 5, 1});
  }
  return units;
}

Bytes Join(Bytes a, const Bytes& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

// Bytes outside the units are 0xEE.
Bytes MakeContainer(const Form& form, const std::vector<Bytes>& units) {
  Bytes container(form.length, 0xEE);
  for (size_t k = 0; k < units.size(); ++k) {
    Bytes stored = units[k];
    if (form.sealed) {
      const Bytes nonce(kGcmNonceSize, static_cast<uint8_t>(k + 1));
      Bytes tag(kGcmTagSize);
      GcmSeal(Aes256(AesKey(RecordKey())), GcmNonce(nonce), {}, stored,
              std::span<uint8_t, kGcmTagSize>(tag));
      stored = Join(Join(Join(nonce, Bytes(4)), stored), tag);
    }
    std::copy(stored.begin(), stored.end(),
              &container[form.first + k * form.stride]);
  }
  return container;
}

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
  std::memcpy(optics.data(), &unit[offset + (form.kind == 1 ? 320 : 340)],
              sizeof(optics));
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
    // One bit in seven, in each byte, of several records; otherwise every bit.
    const size_t step = form.count > 1 ? 7 : 1;
    for (size_t bit = 0; bit < container.size() * 8; bit += step) {
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
    const size_t slope = form.kind == 1 ? 328 : 348;
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

// Runs `action` on a thread with the given stack and waits for its end.
void RunOnStack(std::span<uint8_t> stack, std::function<void()> action) {
  pthread_attr_t attributes;
  pthread_t thread = {};
  ASSERT_EQ(pthread_attr_init(&attributes), 0);
  ASSERT_EQ(pthread_attr_setstack(&attributes, stack.data(), stack.size()), 0);
  const auto run = [](void* argument) -> void* {
    (*static_cast<std::function<void()>*>(argument))();
    return nullptr;
  };
  ASSERT_EQ(pthread_create(&thread, &attributes, run, &action), 0);
  ASSERT_EQ(pthread_join(thread, nullptr), 0);
  ASSERT_EQ(pthread_attr_destroy(&attributes), 0);
}

// True if memory holds eight consecutive bytes of a secret.
bool Holds(std::span<const uint8_t> memory, std::span<const uint8_t> secret) {
  const auto sequence_at = [](std::span<const uint8_t> bytes, size_t i) {
    uint64_t sequence = 0;
    std::memcpy(&sequence, &bytes[i], sizeof(sequence));
    return sequence;
  };
  std::unordered_set<uint64_t> sequences;
  for (size_t i = 0; i + 8 <= secret.size(); ++i) {
    sequences.insert(sequence_at(secret, i));
  }
  for (size_t i = 0; i + 8 <= memory.size(); ++i) {
    if (sequences.contains(sequence_at(memory, i))) return true;
  }
  return false;
}

struct Secret {
  const char* name;
  Bytes bytes;
};

// A key and what is computed from it alone.
std::vector<Secret> SecretsOfKey(const Bytes& key) {
  const Aes256 cipher{AesKey(key)};
  const auto* const expanded = reinterpret_cast<const uint8_t*>(&cipher);
  // The two words of the authentication key, in the processor's byte order.
  Bytes hash_key(kAesBlockSize);
  cipher.Encrypt(AesBlock(hash_key));
  std::reverse(hash_key.begin(), hash_key.begin() + 8);
  std::reverse(hash_key.begin() + 8, hash_key.end());
  return {{"key", key},
          {"expanded key", Bytes(expanded, expanded + sizeof(cipher))},
          {"hash key", hash_key}};
}

TEST(Calibration, StackKeepsNoSecrets) {
  const DefaultKeys keys = BuiltInKeys();
  const Bytes wrapping_key(keys.general->begin(), keys.general->end());
  const Bytes wrapped = Wrap(wrapping_key, RecordKey());
  const GuardedMemory<uint8_t> memory(size_t{256} << 10);
  const std::span<uint8_t> stack = memory.span();
  for (const Form& form : kForms) {
    if (!form.sealed) continue;
    std::vector<Bytes> units = MakeUnits(form);
    std::vector<Secret> secrets = SecretsOfKey(RecordKey());
    for (const Secret& secret : SecretsOfKey(wrapping_key)) {
      secrets.push_back(secret);
    }
    for (Bytes& unit : units) {
      // No eight bytes past the header occur anywhere else.
      const auto seed = static_cast<uint32_t>(secrets.size());
      secrets.push_back(
          {"unit", Random(seed).Values<uint8_t>(form.unit_size - 248)});
      std::copy(secrets.back().bytes.begin(), secrets.back().bytes.end(),
                unit.begin() + 248);
    }
    const Bytes container = MakeContainer(form, units);
    const CalibrationInput input = {
        .block_a = container.data(),
        .block_a_size = static_cast<uint32_t>(container.size()),
        .block_b = wrapped.data(),
        .block_b_size = static_cast<uint32_t>(wrapped.size()),
        .selector = 1,
        .default_keys = keys};
    // A picture of this size is refused after the calibration was decoded.
    GLInitInfo info = {};
    info.PreviewWidth = info.PreviewHeight = 1 << 20;
    uint32_t status = 0;
    const auto decode = [&] {
      CalibrationRecord record;
      status = DecodeCalibration(input, record);
      if (!TakeCameraValues(record)) ADD_FAILURE();
    };
    const auto initialise = [&] {
      status = zuQelRT_GLInitV1(input.block_a, input.block_a_size,
                                input.block_b, input.block_b_size, &info);
    };
    const auto keep_unit = [&] {
      std::array<uint8_t, 512> kept = {};
      std::copy_n(units.back().end() - 200, 200, kept.begin());
      // As far as the compiler knows, this reads them.
      asm volatile("" : : "r"(kept.data()) : "memory");
    };

    RunOnStack(stack, keep_unit);
    EXPECT_TRUE(Holds(stack, secrets.back().bytes));
    std::fill(stack.begin(), stack.end(), 0);
    RunOnStack(stack, decode);
    EXPECT_EQ(status, ZUQEL_SUCCESS);
    for (const auto& [name, bytes] : secrets) {
      EXPECT_FALSE(Holds(stack, bytes)) << name << " of " << form.length;
    }
    std::fill(stack.begin(), stack.end(), 0);
    RunOnStack(stack, initialise);
    EXPECT_EQ(status, ZUQEL_INIT_REFUSED);
    for (const auto& [name, bytes] : secrets) {
      EXPECT_FALSE(Holds(stack, bytes))
          << name << " of " << form.length << " in the initialisation";
    }
  }
}

// This program's build has a general key, 0x20 to 0x3F, and no other.
TEST(Calibration, KeysOfTheBuild) {
  const DefaultKeys keys = BuiltInKeys();
  ASSERT_NE(keys.general, nullptr);
  EXPECT_EQ(Bytes(keys.general->begin(), keys.general->end()), MakeKey(0x20));
  EXPECT_EQ(keys.kind4, nullptr);
}

}  // namespace
}  // namespace zuqel::calib
