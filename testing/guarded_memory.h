// Memory whose end is the end of what may be touched.
#ifndef ZUQEL_TESTING_GUARDED_MEMORY_H_
#define ZUQEL_TESTING_GUARDED_MEMORY_H_

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <type_traits>

namespace zuqel {

// Owns elements, zeroed or copied, between two protected pages. The second page
// begins right after the last element; the first ends at the first element only
// when the elements fill whole pages. Touching either ends the program.
template <typename T>
class GuardedMemory {
  static_assert(std::is_trivial_v<T>);

 public:
  explicit GuardedMemory(size_t count) {
    const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    const size_t bytes = count * sizeof(T);
    const size_t used = (bytes + page - 1) / page * page;
    mapped_ = used + 2 * page;
    void* mapping = mmap(nullptr, mapped_, PROT_NONE,
                         MAP_PRIVATE | MAP_ANONYMOUS, /*fd=*/-1, /*offset=*/0);
    if (mapping == MAP_FAILED) std::abort();
    mapping_ = static_cast<uint8_t*>(mapping);
    uint8_t* first_page = mapping_ + page;
    if (used > 0 && mprotect(first_page, used, PROT_READ | PROT_WRITE) != 0) {
      std::abort();
    }
    span_ = {reinterpret_cast<T*>(first_page + used - bytes), count};
  }
  explicit GuardedMemory(std::span<const T> values)
      : GuardedMemory(values.size()) {
    std::copy(values.begin(), values.end(), data());
  }
  ~GuardedMemory() { munmap(mapping_, mapped_); }
  GuardedMemory(const GuardedMemory&) = delete;
  GuardedMemory& operator=(const GuardedMemory&) = delete;

  [[nodiscard]] T* data() const { return span_.data(); }
  [[nodiscard]] size_t size() const { return span_.size(); }
  [[nodiscard]] std::span<T> span() const { return span_; }

 private:
  uint8_t* mapping_ = nullptr;
  size_t mapped_ = 0;
  std::span<T> span_;
};

}  // namespace zuqel

#endif  // ZUQEL_TESTING_GUARDED_MEMORY_H_
