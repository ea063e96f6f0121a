// Tells of calls that overlap where they must not.
#ifndef ZUQEL_API_CALL_IN_PROGRESS_H_
#define ZUQEL_API_CALL_IN_PROGRESS_H_

#include <atomic>
#include <cassert>
#include <cstdint>

namespace zuqel {

// Calls of one family share what they change, those of different ones do not.
// Initialisation and close belong to all.
enum CallFamily : uint32_t {
  kFrameCalls = 1,
  kRefocusMapCalls = 2,
  kCpuFrameCalls = 4,
  kAllCalls = 7,
};

// Lives as long as a call. Where assertions are compiled, the process ends when
// a call of the same family is in progress on another thread.
class CallInProgress {
 public:
  // Relaxed: it must not order the threads whose order it checks.
  CallInProgress(CallFamily family, std::atomic<uint32_t>& in_progress)
      : family_(family), in_progress_(in_progress) {
    [[maybe_unused]] const uint32_t before =
        in_progress_.fetch_or(family_, std::memory_order_relaxed);
    assert((before & family_) == 0 && "calls overlap that must not");
  }
  ~CallInProgress() {
    in_progress_.fetch_and(~uint32_t{family_}, std::memory_order_relaxed);
  }
  CallInProgress(const CallInProgress&) = delete;
  CallInProgress& operator=(const CallInProgress&) = delete;

 private:
  CallFamily family_;
  std::atomic<uint32_t>& in_progress_;
};

}  // namespace zuqel

#endif  // ZUQEL_API_CALL_IN_PROGRESS_H_
