// How a HEIF file has its pictures turned. libheif applies it, but does not
// tell.
#include "photo/heif_turns.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

namespace zuqel::tools {
namespace {

using Span = std::span<const uint8_t>;

// The next bytes, also where there are fewer.
Span Take(Span& data, uint64_t size) {
  const auto available =
      static_cast<size_t>(std::min(size, static_cast<uint64_t>(data.size())));
  const Span taken = data.first(available);
  data = data.subspan(available);
  return taken;
}

// Big-endian.
uint64_t TakeNumber(Span& data, size_t size) {
  uint64_t number = 0;
  for (const uint8_t byte : Take(data, size)) number = number << 8 | byte;
  return number;
}

struct Box {
  std::string_view type;
  Span content;  // of a full box: from its version on
};

Box TakeBox(Span& data) {
  const size_t start = data.size();
  uint64_t size = TakeNumber(data, 4);
  const Span type = Take(data, 4);
  if (size == 1) size = TakeNumber(data, 8);
  const uint64_t header = start - data.size();
  // 0 for all that is left; less than its header is damage.
  const uint64_t rest = size == 0 ? data.size() : size - std::min(size, header);
  return {{reinterpret_cast<const char*>(type.data()), type.size()},
          Take(data, rest)};
}

// Empty if there is none.
Span FindBox(Span boxes, std::string_view type) {
  while (!boxes.empty()) {
    const Box box = TakeBox(boxes);
    if (box.type == type) return box.content;
  }
  return {};
}

std::vector<Box> ReadBoxes(Span data) {
  std::vector<Box> boxes;
  while (!data.empty()) boxes.push_back(TakeBox(data));
  return boxes;
}

// Of the properties that an "ipma" box associates with the item, from 1; 0 is
// for none.
std::vector<size_t> PropertiesOf(Span associations, uint32_t item) {
  const uint64_t version = TakeNumber(associations, 1);
  const bool has_long_numbers = (TakeNumber(associations, 3) & 1) != 0;
  const size_t number_bytes = has_long_numbers ? 2 : 1;
  const uint64_t mask = has_long_numbers ? 0x7fff : 0x7f;
  std::vector<size_t> numbers;
  for (uint64_t items = TakeNumber(associations, 4);
       items > 0 && !associations.empty(); --items) {
    const bool is_item = TakeNumber(associations, version < 1 ? 2 : 4) == item;
    for (uint64_t count = TakeNumber(associations, 1); count > 0; --count) {
      const uint64_t number = TakeNumber(associations, number_bytes) & mask;
      if (is_item) numbers.push_back(static_cast<size_t>(number));
    }
  }
  return numbers;
}

// 1 for other properties.
int OrientationOf(const Box& property) {
  constexpr std::array kRotations = {1, 8, 3, 6};  // counterclockwise
  constexpr std::array kMirrorings = {4, 2};       // top to bottom first
  if (property.content.empty()) return 1;
  const uint8_t value = property.content.front();
  if (property.type == "irot") return kRotations.at(value % 4);
  if (property.type == "imir") return kMirrorings.at(value % 2);
  return 1;
}

}  // namespace

std::vector<int> ReadHeifTurns(std::span<const uint8_t> file, uint32_t item) {
  Span meta = FindBox(file, "meta");
  Take(meta, 4);  // version and flags
  const Span properties = FindBox(meta, "iprp");
  const std::vector<Box> known = ReadBoxes(FindBox(properties, "ipco"));
  std::vector<int> turns;
  for (const Box& box : ReadBoxes(properties)) {
    if (box.type != "ipma") continue;
    for (const size_t number : PropertiesOf(box.content, item)) {
      const bool is_known = number >= 1 && number <= known.size();
      const int turn = is_known ? OrientationOf(known[number - 1]) : 1;
      if (turn != 1) turns.push_back(turn);
    }
  }
  return turns;
}

}  // namespace zuqel::tools
