// Decrypts the units of a container.
#include "calib/container.h"

#include <zuQelRT_GL.h>

#include <cstring>

namespace zuqel::calib {
namespace {

bool IsZero(uint8_t byte) {
  return byte == 0;
}

// `sealed` is longer than `plain` by the overhead. False when the key is
// another one or a bit has changed; then `plain` is wiped.
bool OpenUnit(const Aes256& cipher, std::span<const uint8_t> sealed,
              std::span<uint8_t> plain) {
  Wipe(plain);
  // The tag does not cover the filler.
  const auto filler = sealed.subspan(kGcmNonceSize, kSealFillerSize);
  if (!std::all_of(filler.begin(), filler.end(), IsZero)) return false;
  const auto data = sealed.subspan(kSealedDataAt, plain.size());
  std::copy(data.begin(), data.end(), plain.begin());
  return GcmOpen(cipher, sealed.first<kGcmNonceSize>(), {}, plain,
                 sealed.last<kGcmTagSize>());
}

template <typename T>
int32_t ReadInteger(std::span<const uint8_t> record, size_t at) {
  T value = 0;
  std::memcpy(&value, record.subspan(at, sizeof(T)).data(), sizeof(T));
  return value;
}

uint32_t CheckHeader(std::span<const uint8_t> record) {
  const int32_t version = ReadInteger<int16_t>(record, 0);
  const int32_t count = ReadInteger<int16_t>(record, 2);
  const int32_t first_count = ReadInteger<int32_t>(record, 4);
  const int32_t second_count = ReadInteger<int32_t>(record, 244);
  if (version < 2) return ZUQEL_CALIB_BAD_VERSION;
  if (count != first_count && count != second_count) {
    return ZUQEL_CALIB_BAD_COUNT;
  }
  if (first_count < 1) return ZUQEL_CALIB_BAD_FIRST_COUNT;
  if (second_count < 1) return ZUQEL_CALIB_BAD_SECOND_COUNT;
  return ZUQEL_SUCCESS;
}

}  // namespace

uint32_t OpenUnits(std::span<const uint8_t> payload, const Container& container,
                   const RecordKind& kind, const Aes256& cipher,
                   std::span<uint8_t> plain) {
  for (size_t k = 0; k < container.count; ++k) {
    const auto sealed = payload.subspan(
        container.First() + k * container.Stride(), container.StoredSize());
    const auto unit =
        plain.subspan(k * container.unit_size, container.unit_size);
    if (!OpenUnit(cipher, sealed, unit)) return ZUQEL_CALIB_NOT_DECRYPTED;
    if (!kind.has_header) continue;
    const uint32_t status = CheckHeader(unit);
    if (status != ZUQEL_SUCCESS) return status;
  }
  return ZUQEL_SUCCESS;
}

}  // namespace zuqel::calib
