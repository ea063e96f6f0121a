// Keys and decrypted bytes are wiped; the keys that a build has.
#include <gtest/gtest.h>
#include <malloc.h>
#include <pthread.h>
#include <zuQelRT_GL.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <new>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "calib/built_in_keys.h"
#include "calib/calibration.h"
#include "calibration/key_file.h"
#include "calibration_samples.h"
#include "guarded_memory.h"
#include "random.h"

namespace zuqel::calib {
namespace {

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

// True if memory holds eight consecutive bytes of a secret. Takes no memory: it
// is called where memory is freed.
bool Holds(std::span<const uint8_t> memory, std::span<const uint8_t> secret) {
  constexpr size_t kLength = 8;
  for (size_t i = 0; i + kLength <= secret.size(); ++i) {
    if (memmem(memory.data(), memory.size(), &secret[i], kLength) != nullptr) {
      return true;
    }
  }
  return false;
}

// Looked for in the blocks of the heap that are freed, while not empty.
std::span<const uint8_t> heap_secret;
bool was_freed_with_secret = false;

}  // namespace
}  // namespace zuqel::calib

[[gnu::noinline]] void* operator new(size_t size) {
  constexpr size_t kAlignment = alignof(std::max_align_t);
  void* block =
      std::aligned_alloc(kAlignment, (size / kAlignment + 1) * kAlignment);
  if (block != nullptr) return block;
  throw std::bad_alloc();
}

[[gnu::noinline]] void operator delete(void* block) noexcept {
  using namespace zuqel::calib;
  if (!heap_secret.empty()) {
    was_freed_with_secret |=
        Holds({static_cast<const uint8_t*>(block), malloc_usable_size(block)},
              heap_secret);
  }
  std::free(block);
}

void operator delete(void* block, size_t /*size*/) noexcept {
  operator delete(block);
}

namespace zuqel::calib {
namespace {

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

TEST(CalibrationSecrets, StackKeepsNone) {
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
    const auto keep_unit = [&] {
      std::array<uint8_t, 512> kept = {};
      std::copy_n(units.back().end() - 200, 200, kept.begin());
      // As far as the compiler knows, this reads them.
      asm volatile("" : : "r"(kept.data()) : "memory");
    };

    RunOnStack(stack, keep_unit);
    EXPECT_TRUE(Holds(stack, secrets.back().bytes));
    for (const bool initialises : {false, true}) {
      uint32_t status = 0;
      std::fill(stack.begin(), stack.end(), 0);
      RunOnStack(stack, [&] {
        if (initialises) {
          status = zuQelRT_GLInitV1(input.block_a, input.block_a_size,
                                    input.block_b, input.block_b_size, &info);
          return;
        }
        CalibrationRecord record;
        status = DecodeCalibration(input, record);
        if (!TakeCameraValues(record)) ADD_FAILURE();
      });
      EXPECT_EQ(status, initialises ? ZUQEL_INIT_REFUSED : ZUQEL_SUCCESS);
      for (const auto& [name, bytes] : secrets) {
        EXPECT_FALSE(Holds(stack, bytes))
            << name << " of " << form.length << ", initialises " << initialises;
      }
    }
  }
}

TEST(CalibrationSecrets, ReadingAKeyFileKeepsNone) {
  const Bytes key = Random(5).Values<uint8_t>(kAesKeySize);
  Bytes digits;
  for (const uint8_t byte : key) {
    for (const int digit : {byte >> 4, byte & 15}) {
      digits.push_back(static_cast<uint8_t>("0123456789aBcDeF"[digit]));
    }
  }
  const Bytes secrets = Join(key, digits);
  const GuardedMemory<uint8_t> memory(size_t{256} << 10);
  const std::span<uint8_t> stack = memory.span();
  const std::string path = testing::TempDir() + "zuqel_key_file";
  for (const Bytes& file : {key, digits, Join(digits, {'\r', '\n'})}) {
    std::ofstream(path).write(reinterpret_cast<const char*>(file.data()),
                              static_cast<std::streamsize>(file.size()));
    std::fill(stack.begin(), stack.end(), 0);
    RunOnStack(stack, [&] {
      SecretBytes<kAesKeySize> read;
      heap_secret = secrets;
      tools::ReadKey(path, read);
      heap_secret = {};
      EXPECT_TRUE(std::equal(key.begin(), key.end(), read.values.begin()));
    });
    EXPECT_FALSE(Holds(stack, secrets)) << file.size();
    EXPECT_FALSE(was_freed_with_secret) << file.size();
  }
  static_cast<void>(std::remove(path.c_str()));
}

// This program's build has a general key, 0x20 to 0x3F, and no other.
TEST(CalibrationSecrets, KeysOfTheBuild) {
  const DefaultKeys keys = BuiltInKeys();
  ASSERT_NE(keys.general, nullptr);
  EXPECT_EQ(Bytes(keys.general->begin(), keys.general->end()), MakeKey(0x20));
  EXPECT_EQ(keys.kind4, nullptr);
}

}  // namespace
}  // namespace zuqel::calib
