// Two integers as people write them: a point, a size.
#ifndef ZUQEL_TOOLS_NUMBER_PAIR_H_
#define ZUQEL_TOOLS_NUMBER_PAIR_H_

#include <charconv>
#include <optional>
#include <string_view>
#include <system_error>

namespace zuqel::tools {

struct NumberPair {
  int first = 0, second = 0;
};

// Reads two integers with a separator between them and nothing else. Nothing
// when `text` is not that or a number passes an int.
inline std::optional<NumberPair> ParseNumberPair(std::string_view text,
                                                 char separator) {
  const char* const end = text.data() + text.size();
  NumberPair pair;
  const auto first = std::from_chars(text.data(), end, pair.first);
  if (first.ec != std::errc() || first.ptr == end || *first.ptr != separator) {
    return std::nullopt;
  }
  const auto second = std::from_chars(first.ptr + 1, end, pair.second);
  if (second.ec != std::errc() || second.ptr != end) return std::nullopt;
  return pair;
}

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_NUMBER_PAIR_H_
