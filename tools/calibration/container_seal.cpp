// Encrypts a plain calibration container.
#include "calibration/container_seal.h"

#include <sys/random.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <string>

#include "calib/aes256.h"
#include "calib/container.h"
#include "calib/gcm.h"
#include "tool_error.h"

namespace zuqel::tools {
namespace {

using calib::Container;

std::array<uint8_t, calib::kGcmNonceSize> RandomNonce() {
  std::array<uint8_t, calib::kGcmNonceSize> nonce = {};
  if (getrandom(nonce.data(), nonce.size(), 0) !=
      static_cast<ssize_t>(nonce.size())) {
    throw WorkError("the system has no random numbers");
  }
  return nonce;
}

// The encrypted container for as many records of the same kind.
Container EncryptedForm(const Container& plain) {
  const auto* const found =
      std::find_if(calib::kContainers.begin(), calib::kContainers.end(),
                   [&](const Container& row) {
                     return row.encrypted && row.kind == plain.kind &&
                            row.count == plain.count;
                   });
  if (found == calib::kContainers.end()) {
    throw InputError("has no encrypted form");
  }
  return *found;
}

Container PlainForm(size_t length) {
  const std::optional<Container> form = calib::FindContainer(length);
  if (!form) {
    throw InputError("has " + std::to_string(length) +
                     " bytes; no container has this length");
  }
  if (form->encrypted) throw InputError("is encrypted already");
  return *form;
}

// Encrypts `plain` into `sealed`, all zeros so far and longer by the overhead.
void SealUnit(const calib::Aes256& cipher, const Bytes& plain,
              std::span<uint8_t> sealed) {
  const auto nonce = RandomNonce();
  std::copy(nonce.begin(), nonce.end(), sealed.begin());
  const auto data = sealed.subspan(calib::kSealedDataAt, plain.size());
  std::copy(plain.begin(), plain.end(), data.begin());
  calib::GcmSeal(cipher, nonce, {}, data, sealed.last<calib::kGcmTagSize>());
}

}  // namespace

Bytes SealContainer(const Bytes& plain, const calib::Key& key) {
  const Container from = PlainForm(plain.size());
  const Container to = EncryptedForm(from);
  const calib::Aes256 cipher(key);
  Bytes sealed(to.length);
  std::copy_n(plain.begin(), from.First(), sealed.begin());
  for (size_t k = 0; k < from.count; ++k) {
    const auto source =
        std::span(plain).subspan(from.First() + k * from.Stride());
    const auto target = std::span(sealed).subspan(to.First() + k * to.Stride());
    // An encrypted unit may be longer; it is padded with zeros.
    Bytes unit(to.unit_size);
    std::copy_n(source.begin(), from.unit_size, unit.begin());
    SealUnit(cipher, unit, target.first(to.StoredSize()));
    if (k + 1 == from.count) break;
    const auto gap = source.first(from.Stride()).subspan(from.StoredSize());
    std::copy(gap.begin(), gap.end(), target.subspan(to.StoredSize()).begin());
  }
  return sealed;
}

}  // namespace zuqel::tools
