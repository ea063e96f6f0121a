// XMP that is too large for one segment of a JPEG file.
#include "photo/extended_xmp.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "photo/md5.h"
#include "tool_error.h"

namespace zuqel::tools {
namespace {

constexpr size_t kNameSize = 32;
constexpr size_t kHeaderSize = kNameSize + 4 + 4;

struct Piece {
  uint32_t whole_size, offset;
  std::string_view content;
};

[[noreturn]] void Refuse(const std::string& path, const char* fault) {
  throw InputError(path + ": its extended XMP " + fault);
}

uint32_t BigEndian(std::string_view bytes) {
  uint32_t value = 0;
  for (const char byte : bytes) value = value << 8 | static_cast<uint8_t>(byte);
  return value;
}

std::vector<Piece> PiecesInOrder(const std::string& path,
                                 std::span<const std::string> all,
                                 std::string_view name) {
  std::vector<Piece> pieces;
  for (const std::string_view piece : all) {
    if (piece.size() < kHeaderSize) Refuse(path, "has a segment cut short");
    if (piece.substr(0, kNameSize) != name) continue;
    pieces.push_back({BigEndian(piece.substr(kNameSize, 4)),
                      BigEndian(piece.substr(kNameSize + 4, 4)),
                      piece.substr(kHeaderSize)});
  }
  std::stable_sort(
      pieces.begin(), pieces.end(),
      [](const Piece& a, const Piece& b) { return a.offset < b.offset; });
  return pieces;
}

}  // namespace

std::string JoinExtendedXmp(const std::string& path,
                            std::span<const std::string> pieces,
                            std::string_view name) {
  const std::vector<Piece> in_order = PiecesInOrder(path, pieces, name);
  if (in_order.empty()) Refuse(path, "is missing");
  std::string whole;
  for (const Piece& piece : in_order) {
    if (piece.whole_size != in_order.front().whole_size) {
      Refuse(path, "has segments that differ in its length");
    }
    if (piece.offset < whole.size()) Refuse(path, "has overlapping segments");
    if (piece.offset > whole.size()) Refuse(path, "lacks a segment");
    whole += piece.content;
  }
  const size_t expected = in_order.front().whole_size;
  if (whole.size() < expected) Refuse(path, "lacks a segment");
  if (whole.size() > expected) Refuse(path, "is longer than it says");
  if (Md5(whole) != name) Refuse(path, "is damaged: its MD5 sum is another");
  return whole;
}

}  // namespace zuqel::tools
