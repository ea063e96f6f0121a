// Times copies.
#include "time_rounds.h"

#include <cstring>
#include <vector>

namespace zuqel::bench {

double CopySeconds(size_t bytes) {
  constexpr int kRounds = 1000;
  const std::vector<uint8_t> source(bytes / 2, 1);
  std::vector<uint8_t> copy(bytes / 2, 2);
  const std::clock_t start = std::clock();
  for (int i = 0; i < kRounds; ++i) {
    std::memcpy(copy.data(), source.data(), copy.size());
    benchmark::ClobberMemory();
  }
  const auto ticks = static_cast<double>(std::clock() - start);
  return ticks / CLOCKS_PER_SEC / kRounds;
}

}  // namespace zuqel::bench
