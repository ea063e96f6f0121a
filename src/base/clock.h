// The clock of the timing lines.
#ifndef ZUQEL_BASE_CLOCK_H_
#define ZUQEL_BASE_CLOCK_H_

#include <sys/time.h>

#include <cstdint>

namespace zuqel {

// Time of day in milliseconds, cut to 32 bits. The difference of two readings
// is right across the wrap.
inline uint32_t MillisecondClock() {
  timeval now = {};
  gettimeofday(&now, nullptr);
  return static_cast<uint32_t>(static_cast<uint64_t>(now.tv_sec) * 1000 +
                               static_cast<uint64_t>(now.tv_usec) / 1000);
}

// Milliseconds since an earlier reading, for a log line.
inline int ElapsedSince(uint32_t start) {
  return static_cast<int>(MillisecondClock() - start);
}

}  // namespace zuqel

#endif  // ZUQEL_BASE_CLOCK_H_
