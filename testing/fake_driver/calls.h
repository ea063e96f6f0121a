// Counts calls, decides which fail, and keeps what was done wrong.
#ifndef TESTING_FAKE_DRIVER_CALLS_H_
#define TESTING_FAKE_DRIVER_CALLS_H_

#include <atomic>
#include <string>

#include "fake_driver/fake_driver.h"

namespace zuqel::fake_driver {

// Counts a call. True if it has to fail.
bool Fails(Call call);

void NoteMisuse(Call call, const std::string& what);
void NoteError(Call call, unsigned code);
void NoteAbandoned(const std::string& names);

// Counters that any thread may change, without ordering anything else.
class Counter {
 public:
  int Add(int change) {
    return value_.fetch_add(change, std::memory_order_relaxed) + change;
  }
  [[nodiscard]] int value() const {
    return value_.load(std::memory_order_relaxed);
  }

 private:
  std::atomic<int> value_{0};
};

struct LivingCounters {
  Counter contexts, surfaces, images, names;
};
inline LivingCounters living;

}  // namespace zuqel::fake_driver

#endif  // TESTING_FAKE_DRIVER_CALLS_H_
