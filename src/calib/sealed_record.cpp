// Opens and seals one unit of a calibration container.
#include "calib/sealed_record.h"

#include <algorithm>

namespace zuqel::calib {
namespace {

constexpr size_t kDataAt = kGcmNonceSize + kSealFillerSize;

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
  const auto data = sealed.subspan(kDataAt, plain.size());
  std::copy(data.begin(), data.end(), plain.begin());
  return GcmOpen(cipher, sealed.first<kGcmNonceSize>(), {}, plain,
                 sealed.last<kGcmTagSize>());
}

std::vector<uint8_t> SealRecord(const Aes256& cipher, GcmNonce nonce,
                                std::span<const uint8_t> plain) {
  std::vector<uint8_t> sealed(plain.size() + kSealOverhead);
  std::copy(nonce.begin(), nonce.end(), sealed.begin());
  const auto data = std::span(sealed).subspan(kDataAt, plain.size());
  std::copy(plain.begin(), plain.end(), data.begin());
  GcmSeal(cipher, nonce, {}, data, std::span(sealed).last<kGcmTagSize>());
  return sealed;
}

}  // namespace zuqel::calib
