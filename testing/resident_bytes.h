// The memory of the process.
#ifndef TESTING_RESIDENT_BYTES_H_
#define TESTING_RESIDENT_BYTES_H_

#include <unistd.h>

#include <cstdint>
#include <fstream>

namespace zuqel {

// Bytes of the process that are in memory now.
inline int64_t ResidentBytes() {
  int64_t total_pages = 0, resident_pages = 0;
  std::ifstream("/proc/self/statm") >> total_pages >> resident_pages;
  return resident_pages * sysconf(_SC_PAGESIZE);
}

}  // namespace zuqel

#endif  // TESTING_RESIDENT_BYTES_H_
