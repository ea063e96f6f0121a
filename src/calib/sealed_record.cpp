// Opens one encrypted unit of a calibration container.
#include "calib/sealed_record.h"

#include <algorithm>

namespace zuqel::calib {
namespace {

bool IsZero(uint8_t byte) {
  return byte == 0;
}

}  // namespace

bool OpenRecord(const Aes256& cipher, std::span<const uint8_t> sealed,
                std::span<uint8_t> plain) {
  Wipe(plain);
  if (sealed.size() != plain.size() + kSealOverhead) return false;
  // The tag does not vouch for the filler.
  const auto filler = sealed.subspan(kGcmNonceSize, kSealFillerSize);
  if (!std::all_of(filler.begin(), filler.end(), IsZero)) return false;
  const auto data = sealed.subspan(kSealedDataAt, plain.size());
  std::copy(data.begin(), data.end(), plain.begin());
  return GcmOpen(cipher, sealed.first<kGcmNonceSize>(), {}, plain,
                 sealed.last<kGcmTagSize>());
}

}  // namespace zuqel::calib
