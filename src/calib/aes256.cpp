// AES-256, byte by byte: a calibration has a few hundred blocks.
#include "calib/aes256.h"

#include <algorithm>
#include <array>
#include <bit>

namespace zuqel::calib {
namespace {

// Product in GF(2^8) modulo x^8 + x^4 + x^3 + x + 1. Branches depend on
// `factor` only, since `value` may be secret.
constexpr uint8_t Multiply(uint8_t value, uint8_t factor) {
  uint32_t product = 0;
  for (int bit = std::bit_width(factor) - 1; bit >= 0; --bit) {
    product = (product << 1) ^ ((product >> 7) * 0x11B);
    if (((factor >> bit) & 1) != 0) product ^= value;
  }
  return static_cast<uint8_t>(product);
}

// 1 / x as x^254; 0 for 0.
constexpr uint8_t Invert(uint8_t x) {
  uint8_t power = x;
  uint8_t inverse = 1;
  for (int i = 0; i < 7; ++i) {
    power = Multiply(power, power);
    inverse = Multiply(inverse, power);
  }
  return inverse;
}

using ByteTable = std::array<uint8_t, 256>;

constexpr ByteTable MakeSubstitution() {
  ByteTable table = {};
  for (size_t x = 0; x < table.size(); ++x) {
    const uint8_t inverse = Invert(static_cast<uint8_t>(x));
    // Constants, since standard libraries disagree on the count's signedness.
    table[x] = static_cast<uint8_t>(
        0x63 ^ inverse ^ std::rotl(inverse, 1) ^ std::rotl(inverse, 2) ^
        std::rotl(inverse, 3) ^ std::rotl(inverse, 4));
  }
  return table;
}

constexpr ByteTable Reverse(const ByteTable& table) {
  ByteTable reverse = {};
  for (size_t x = 0; x < table.size(); ++x) {
    reverse[table[x]] = static_cast<uint8_t>(x);
  }
  return reverse;
}

constexpr ByteTable kSubstitution = MakeSubstitution();
constexpr ByteTable kInverseSubstitution = Reverse(kSubstitution);

// The state is stored by columns. Each byte is replaced by its entry in the
// table, and row r rotates left by r * `columns`.
void SubstituteAndShiftRows(AesBlock state, const ByteTable& table,
                            size_t columns) {
  SecretBytes<kAesBlockSize> old;
  std::copy(state.begin(), state.end(), old.values.begin());
  for (size_t i = 0; i < kAesBlockSize; ++i) {
    const size_t row = i % 4;
    state[i] = table[old.values[(i + 4 * row * columns) % kAesBlockSize]];
  }
}

// A column of the state as a polynomial, times `factors` modulo x^4 + 1.
using Factors = std::array<uint8_t, 4>;
constexpr Factors kMix = {2, 3, 1, 1};
constexpr Factors kInverseMix = {14, 11, 13, 9};

template <const Factors& kFactors>
void MixColumns(AesBlock state) {
  SecretBytes<kAesBlockSize> old;
  std::copy(state.begin(), state.end(), old.values.begin());
  for (size_t i = 0; i < kAesBlockSize; ++i) {
    const size_t row = i % 4;
    const size_t column = i - row;
    uint8_t sum = 0;
    for (size_t k = 0; k < 4; ++k) {
      sum ^= Multiply(old.values[column + (row + k) % 4], kFactors[k]);
    }
    state[i] = sum;
  }
}

}  // namespace

Aes256::Aes256(AesKey key) {
  auto& bytes = round_keys_.values;
  std::copy(key.begin(), key.end(), bytes.begin());
  uint8_t round_constant = 1;
  for (size_t word = kAesKeySize; word < bytes.size(); word += 4) {
    const bool is_rotated = word % 32 == 0;
    const bool is_substituted = word % 16 == 0;
    for (size_t i = 0; i < 4; ++i) {
      uint8_t byte = bytes[word - 4 + (is_rotated ? (i + 1) % 4 : i)];
      if (is_substituted) byte = kSubstitution[byte];
      bytes[word + i] = byte ^ bytes[word - kAesKeySize + i];
    }
    if (is_rotated) {
      bytes[word] ^= round_constant;
      round_constant = Multiply(round_constant, 2);
    }
  }
}

void Aes256::AddRoundKey(AesBlock state, size_t round) const {
  for (size_t i = 0; i < kAesBlockSize; ++i) {
    state[i] ^= round_keys_.values[round * kAesBlockSize + i];
  }
}

void Aes256::Encrypt(AesBlock block) const {
  AddRoundKey(block, 0);
  for (size_t round = 1; round <= kRounds; ++round) {
    SubstituteAndShiftRows(block, kSubstitution, 1);
    if (round != kRounds) MixColumns<kMix>(block);
    AddRoundKey(block, round);
  }
}

void Aes256::Decrypt(AesBlock block) const {
  for (size_t round = kRounds; round >= 1; --round) {
    AddRoundKey(block, round);
    if (round != kRounds) MixColumns<kInverseMix>(block);
    SubstituteAndShiftRows(block, kInverseSubstitution, 3);
  }
  AddRoundKey(block, 0);
}

}  // namespace zuqel::calib
