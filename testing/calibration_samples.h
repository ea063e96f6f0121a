// Calibration containers of every length, and keys to seal and wrap with.
#ifndef ZUQEL_TESTING_CALIBRATION_SAMPLES_H_
#define ZUQEL_TESTING_CALIBRATION_SAMPLES_H_

#include <openssl/evp.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

#include "calib/aes256.h"
#include "calib/gcm.h"
#include "calib/key_wrap.h"

namespace zuqel::calib {

using Bytes = std::vector<uint8_t>;

// A container: unit k begins at first + k * stride. A sealed unit is a nonce,
// 4 zeros, the encrypted bytes and their tag.
struct Form {
  size_t length;
  bool sealed;
  int32_t kind;
  size_t count, first, stride, unit_size, record_size;

  // Where the optical values stand in a record.
  [[nodiscard]] constexpr size_t optics() const {
    return kind == 1 ? 320 : 340;
  }
};
inline constexpr auto kForms = std::to_array<Form>({
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

inline const Form& FormOf(size_t length) {
  return *std::find_if(kForms.begin(), kForms.end(),
                       [=](const Form& form) { return form.length == length; });
}

inline Bytes MakeKey(uint8_t first) {
  Bytes key(kAesKeySize);
  for (uint8_t& byte : key) byte = first++;
  return key;
}

inline Bytes RecordKey() {
  return MakeKey(7);
}

inline Bytes OtherKey() {
  return MakeKey(99);
}

// Wraps a key with another one, by libcrypto.
inline Bytes Wrap(const Bytes& wrapping_key, const Bytes& key) {
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

inline void PutHeader(Bytes& unit, const Header& header) {
  Put(unit, 0, header.version);
  Put(unit, 2, header.count);
  Put(unit, 4, header.first_count);
  Put(unit, 244, header.second_count);
}

// Units that differ in every byte past the header.
inline std::vector<Bytes> MakeUnits(const Form& form) {
  std::vector<Bytes> units(form.count, Bytes(form.unit_size));
  for (size_t k = 0; k < form.count; ++k) {
    for (size_t i = 0; i < form.unit_size; ++i) {
      units[k][i] = static_cast<uint8_t>(i % 251 * 3 + k + 1);
    }
    if (form.kind == 3) PutHeader(units[k], {2, 5, 5, 1});
  }
  return units;
}

inline Bytes Join(Bytes a, const Bytes& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

// Bytes outside the units are 0xEE.
inline Bytes MakeContainer(const Form& form, const std::vector<Bytes>& units) {
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

}  // namespace zuqel::calib

#endif  // ZUQEL_TESTING_CALIBRATION_SAMPLES_H_
