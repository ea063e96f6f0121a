// Bytes written as text.
#include "photo/base64.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace zuqel::tools {
namespace {

enum : uint8_t { kSpace = 64, kPadding = 65, kForeign = 66 };

// What each character stands for: 6 bits or one of those above.
constexpr std::array<uint8_t, 256> MakeMeanings() {
  constexpr std::string_view kDigits =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::array<uint8_t, 256> meanings = {};
  for (uint8_t& meaning : meanings) meaning = kForeign;
  for (const char space : {' ', '\t', '\r', '\n'}) {
    meanings[static_cast<uint8_t>(space)] = kSpace;
  }
  meanings['='] = kPadding;
  for (size_t i = 0; i < kDigits.size(); ++i) {
    meanings[static_cast<uint8_t>(kDigits[i])] = static_cast<uint8_t>(i);
  }
  return meanings;
}

constexpr std::array<uint8_t, 256> kMeanings = MakeMeanings();

}  // namespace

std::optional<Bytes> DecodeBase64(std::string_view text) {
  Bytes bytes;
  bytes.reserve(text.size() / 4 * 3 + 2);
  uint32_t bits = 0;
  size_t digits = 0;
  bool is_padded = false;
  for (const char character : text) {
    const uint8_t meaning = kMeanings[static_cast<uint8_t>(character)];
    if (meaning == kSpace) continue;
    if (meaning == kPadding) {
      is_padded = true;
      continue;
    }
    if (meaning == kForeign || is_padded) return std::nullopt;
    bits = bits << 6 | meaning;
    // 6 bits wait after the first digit of four, then 12, 18 and 24.
    const size_t phase = ++digits % 4;
    if (phase == 1) continue;
    const unsigned left = phase == 2 ? 4 : phase == 3 ? 2 : 0;
    bytes.push_back(static_cast<uint8_t>(bits >> left));
  }
  if (digits % 4 == 1) return std::nullopt;
  return bytes;
}

}  // namespace zuqel::tools
