// Texts from outside, for where only good ones can go.
#include "report/text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>

namespace zuqel::tools {
namespace {

constexpr std::string_view kReplacement = "\xef\xbf\xbd";

// The smallest character of so many bytes.
constexpr std::array<uint32_t, 5> kSmallest = {0, 0, 0x80, 0x800, 0x10000};

// How many bytes the character at the start of `text` has; 0 if there is none.
size_t CharacterSize(std::string_view text) {
  const auto byte = [&](size_t i) {
    return static_cast<uint32_t>(static_cast<unsigned char>(text[i]));
  };
  const uint32_t first = byte(0);
  if (first < 0x80) return first >= 0x20 && first != 0x7f ? 1 : 0;
  const size_t size = first >= 0xf0 ? 4 : first >= 0xe0 ? 3 : 2;
  if (first < 0xc0 || first >= 0xf8 || size > text.size()) return 0;
  uint32_t character = first & (0x7fU >> size);
  for (size_t i = 1; i < size; ++i) {
    if ((byte(i) & 0xc0U) != 0x80) return 0;
    character = character << 6 | (byte(i) & 0x3fU);
  }
  const bool is_surrogate = character >= 0xd800 && character < 0xe000;
  const bool is_control = character < 0xa0;
  const bool is_good = character >= kSmallest.at(size) &&
                       character < 0x110000 && !is_surrogate && !is_control;
  return is_good ? size : 0;
}

bool MayStandInName(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') ||
         (c >= 'a' && c <= 'z') || c == '-' || c == '_' || c == '.';
}

}  // namespace

std::string ToUtf8(std::string_view text) {
  std::string good;
  while (!text.empty()) {
    const size_t size = CharacterSize(text);
    good += size == 0 ? kReplacement : text.substr(0, size);
    text.remove_prefix(std::max<size_t>(size, 1));
  }
  return good;
}

std::string ToFileStem(std::string_view text) {
  constexpr size_t kLongest = 60;
  std::string stem(text.substr(0, kLongest));
  std::replace_if(
      stem.begin(), stem.end(), [](char c) { return !MayStandInName(c); }, '_');
  if (stem.empty() || stem.front() == '.') stem.insert(0, 1, '_');
  return stem;
}

std::string ToText(double number) {
  std::array<char, 32> text = {};
  static_cast<void>(std::snprintf(text.data(), text.size(), "%g", number));
  return text.data();
}

}  // namespace zuqel::tools
