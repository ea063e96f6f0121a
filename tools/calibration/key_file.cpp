// Reads keys from files.
#include "calibration/key_file.h"

#include <algorithm>
#include <cctype>
#include <span>

#include "files/file_bytes.h"
#include "tool_error.h"

namespace zuqel::tools {
namespace {

int DigitValue(uint8_t digit) {
  if (std::isdigit(digit) != 0) return digit - '0';
  return std::tolower(digit) - 'a' + 10;
}

bool IsHexKey(std::span<const uint8_t> text) {
  if (text.size() < 2 * kKeySize) return false;
  const auto digits = text.first(2 * kKeySize);
  const auto rest = text.subspan(digits.size());
  return std::all_of(digits.begin(), digits.end(),
                     [](uint8_t c) { return std::isxdigit(c) != 0; }) &&
         std::all_of(rest.begin(), rest.end(),
                     [](uint8_t c) { return std::isspace(c) != 0; });
}

}  // namespace

void ReadSecondBlock(const std::string& path, SecondBlock& block) {
  const std::span<uint8_t> bytes = block.bytes.values;
  const std::span<uint8_t> text = bytes.first(ReadFileInto(path, bytes));
  block.size = static_cast<uint32_t>(text.size());
  if (!IsHexKey(text)) return;
  for (size_t i = 0; i < kKeySize; ++i) {
    bytes[i] = static_cast<uint8_t>(16 * DigitValue(text[2 * i]) +
                                    DigitValue(text[2 * i + 1]));
  }
  block.size = kKeySize;
}

void ReadKey(const std::string& path, calib::SecretBytes<kKeySize>& key) {
  SecondBlock block;
  ReadSecondBlock(path, block);
  if (block.size != kKeySize) {
    throw InputError(path + ": is not a key; 64 hex digits or 32 bytes are");
  }
  std::copy_n(block.bytes.values.begin(), kKeySize, key.values.begin());
}

}  // namespace zuqel::tools
