// Runs contenders in turns.
#include "timing.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <limits>
#include <utility>

#include "random.h"

namespace zuqel::bench {
namespace {

double Seconds(clockid_t clock) {
  timespec now = {};
  clock_gettime(clock, &now);
  return static_cast<double>(now.tv_sec) +
         static_cast<double>(now.tv_nsec) * 1e-9;
}

// Seconds of one of `runs` runs: the fastest where each is timed, for what is
// restored in between.
double TimeRuns(const Contender& contender, int64_t runs, clockid_t clock) {
  if (contender.restore) {
    double fastest = std::numeric_limits<double>::infinity();
    for (int64_t i = 0; i < runs; ++i) {
      contender.restore();
      const double start = Seconds(clock);
      contender.run();
      fastest = std::min(fastest, Seconds(clock) - start);
    }
    return fastest;
  }
  const double start = Seconds(clock);
  for (int64_t i = 0; i < runs; ++i) contender.run();
  return (Seconds(clock) - start) / static_cast<double>(runs);
}

// How many runs last as long, and enough for caches to hold what is used again.
int64_t RunsIn(double seconds, const Contender& contender, clockid_t clock) {
  constexpr int64_t kFewest = 3;
  TimeRuns(contender, 1, clock);
  const double one = std::max(TimeRuns(contender, 1, clock), 1e-8);
  return std::max(static_cast<int64_t>(seconds / one), kFewest);
}

class Copy {
 public:
  explicit Copy(size_t bytes) : source_(bytes / 2, 1), target_(bytes / 2, 2) {}
  void Run() {
    std::memcpy(target_.data(), source_.data(), target_.size());
    // The compiler must not see that nobody reads it.
    asm volatile("" : : "r"(target_.data()) : "memory");
  }

 private:
  std::vector<uint8_t> source_, target_;
};

}  // namespace

std::vector<Time> TimeTrial(const Trial& trial, const Effort& effort,
                            bool on_the_wall) {
  const clockid_t clock =
      on_the_wall ? CLOCK_MONOTONIC : CLOCK_THREAD_CPUTIME_ID;
  Copy copy(trial.bytes);
  std::vector<Contender> contenders = trial.peers;
  contenders.push_back({"ours", trial.ours, trial.restore});
  if (trial.bytes > 0) contenders.push_back({"copy", [&copy] { copy.Run(); }});

  std::vector<int64_t> runs;
  std::vector<size_t> order;
  std::vector<Time> times;
  for (const Contender& contender : contenders) {
    order.push_back(order.size());
    runs.push_back(RunsIn(effort.batch_seconds, contender, clock));
    times.push_back({contender.name, std::numeric_limits<double>::infinity()});
  }
  Random random(1);
  const double end = Seconds(CLOCK_MONOTONIC) + effort.row_seconds;
  for (int round = 0; round < effort.rounds || Seconds(CLOCK_MONOTONIC) < end;
       ++round) {
    for (size_t i = order.size(); i > 1; --i) {
      std::swap(order[i - 1], order[random.Below(static_cast<uint32_t>(i))]);
    }
    for (const size_t i : order) {
      times[i].seconds =
          std::min(times[i].seconds, TimeRuns(contenders[i], runs[i], clock));
    }
  }
  return times;
}

}  // namespace zuqel::bench
