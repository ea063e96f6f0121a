// The check sum that names extended XMP.
#include "photo/md5.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace zuqel::tools {
namespace {

constexpr size_t kBlock = 64;

using State = std::array<uint32_t, 4>;

// 2^32 times the sine of 1 to 64.
constexpr std::array<uint32_t, 64> kSines = {
    0xd76aa478, 0xe8c7b756, 0x242070db, 0xc1bdceee, 0xf57c0faf, 0x4787c62a,
    0xa8304613, 0xfd469501, 0x698098d8, 0x8b44f7af, 0xffff5bb1, 0x895cd7be,
    0x6b901122, 0xfd987193, 0xa679438e, 0x49b40821, 0xf61e2562, 0xc040b340,
    0x265e5a51, 0xe9b6c7aa, 0xd62f105d, 0x02441453, 0xd8a1e681, 0xe7d3fbc8,
    0x21e1cde6, 0xc33707d6, 0xf4d50d87, 0x455a14ed, 0xa9e3e905, 0xfcefa3f8,
    0x676f02d9, 0x8d2a4c8a, 0xfffa3942, 0x8771f681, 0x6d9d6122, 0xfde5380c,
    0xa4beea44, 0x4bdecfa9, 0xf6bb4b60, 0xbebfbc70, 0x289b7ec6, 0xeaa127fa,
    0xd4ef3085, 0x04881d05, 0xd9d4d039, 0xe6db99e5, 0x1fa27cf8, 0xc4ac5665,
    0xf4292244, 0x432aff97, 0xab9423a7, 0xfc93a039, 0x655b59c3, 0x8f0ccc92,
    0xffeff47d, 0x85845dd1, 0x6fa87e4f, 0xfe2ce6e0, 0xa3014314, 0x4e0811a1,
    0xf7537e82, 0xbd3af235, 0x2ad7d2bb, 0xeb86d391};

uint32_t LittleEndian(const char* bytes) {
  uint32_t value = 0;
  for (size_t i = 0; i < 4; ++i) {
    value |= uint32_t{static_cast<uint8_t>(bytes[i])} << 8 * i;
  }
  return value;
}

void AddBlock(const char* block, State& state) {
  constexpr std::array<std::array<uint32_t, 4>, 4> kTurns = {
      {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}}};
  auto [a, b, c, d] = state;
  for (size_t step = 0; step < 64; ++step) {
    const size_t round = step / 16;
    uint32_t mixed = 0;
    size_t word = 0;
    if (round == 0) {
      mixed = (b & c) | (~b & d);
      word = step;
    } else if (round == 1) {
      mixed = (d & b) | (~d & c);
      word = 5 * step + 1;
    } else if (round == 2) {
      mixed = b ^ c ^ d;
      word = 3 * step + 5;
    } else {
      mixed = c ^ (b | ~d);
      word = 7 * step;
    }
    const uint32_t sum =
        a + mixed + kSines.at(step) + LittleEndian(block + word % 16 * 4);
    a = d;
    d = c;
    c = b;
    const uint32_t turn = kTurns.at(round).at(step % 4);
    b += sum << turn | sum >> (32 - turn);
  }
  state = {state[0] + a, state[1] + b, state[2] + c, state[3] + d};
}

}  // namespace

std::string Md5(std::string_view bytes) {
  // The rest is followed by one bit, zeros and the length in bits.
  const size_t whole = bytes.size() / kBlock * kBlock;
  std::string rest(bytes.substr(whole));
  rest += '\x80';
  rest.resize((rest.size() + 8 + kBlock - 1) / kBlock * kBlock - 8);
  for (unsigned shift = 0; shift < 64; shift += 8) {
    rest += static_cast<char>(uint64_t{bytes.size()} * 8 >> shift);
  }

  State state = {0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476};
  for (size_t at = 0; at < whole; at += kBlock) {
    AddBlock(bytes.data() + at, state);
  }
  for (size_t at = 0; at < rest.size(); at += kBlock) {
    AddBlock(rest.data() + at, state);
  }

  std::string digits;
  for (const uint32_t word : state) {
    for (unsigned shift = 0; shift < 32; shift += 8) {
      digits += "0123456789ABCDEF"[word >> (shift + 4) & 15];
      digits += "0123456789ABCDEF"[word >> shift & 15];
    }
  }
  return digits;
}

}  // namespace zuqel::tools
