// libcrypto's results, for comparison.
#ifndef ZUQEL_PEER_CIPHER_H_
#define ZUQEL_PEER_CIPHER_H_

#include <cstdint>
#include <vector>

namespace zuqel {

using Bytes = std::vector<uint8_t>;

struct Sealed {
  Bytes data;
  Bytes tag;  // 16 bytes
  bool operator==(const Sealed&) const = default;
};

struct Message {
  Bytes key, nonce, additional, plain;  // 32, 12, any, any bytes
};

// AES-256 alone (whole blocks), with GCM, and as a key wrap of `key`.
Bytes EncryptByPeer(const Bytes& key, const Bytes& blocks);
Sealed SealByPeer(const Message& message);
Bytes WrapByPeer(const Bytes& wrapping_key, const Bytes& key);

}  // namespace zuqel

#endif  // ZUQEL_PEER_CIPHER_H_
