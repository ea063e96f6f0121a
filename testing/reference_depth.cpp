// Trims ranges and fills holes.
#include "reference_depth.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <vector>

namespace zuqel::reference {

// With valid values sorted, the trimmed ends are those after the pixels to
// trim, counted from either side.
MinMax TrimmedRange(const Map& map, int64_t percent, const RangeRule& rule) {
  std::map<uint16_t, size_t> counts;
  for (const uint16_t value : map.values) {
    if (value < rule.none[0]) ++counts[std::min(value, kInvalidDisparity)];
  }
  if (counts.empty()) return rule.none;
  std::vector<uint16_t> valid;
  for (const auto& [value, count] : counts) {
    valid.insert(valid.end(), count % rule.modulus, value);
  }
  const int first = counts.begin()->first, last = counts.rbegin()->first;
  const auto wrapped = static_cast<int32_t>(
      percent * static_cast<int64_t>(map.values.size()) & 0xFFFFFFFF);
  const auto trimmed = static_cast<uint64_t>(int64_t{wrapped / 100});
  if (trimmed >= valid.size()) return {first, last};
  const int max = valid[valid.size() - 1 - trimmed];
  return {valid[trimmed] < max ? valid[trimmed] : first, max};
}

// Lists the holes first; then walks over the list, and backwards over those
// that are left.
Map FillHoles(Map map, bool (*is_hole)(uint16_t)) {
  const auto fill = [&map, is_hole](int32_t hole) {
    const int32_t x = hole % map.width, y = hole / map.width;
    int32_t sum = 0, count = 0;
    for (int32_t near_y = y - 1; near_y <= y + 1; ++near_y) {
      for (int32_t near_x = x - 1; near_x <= x + 1; ++near_x) {
        const uint16_t* value = map.At(near_x, near_y);
        if (value == nullptr || is_hole(*value)) continue;
        sum += *value;
        ++count;
      }
    }
    if (count == 0) return false;
    *map.At(x, y) = static_cast<uint16_t>(sum / count);
    return true;
  };
  std::vector<int32_t> holes, left;
  for (size_t i = 0; i < map.values.size(); ++i) {
    if (is_hole(map.values[i])) holes.push_back(static_cast<int32_t>(i));
  }
  std::remove_copy_if(holes.begin(), holes.end(), std::back_inserter(left),
                      fill);
  std::for_each(left.rbegin(), left.rend(), fill);
  return map;
}

}  // namespace zuqel::reference
