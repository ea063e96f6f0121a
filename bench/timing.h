// Times the contenders of a row against each other.
#ifndef ZUQEL_BENCH_TIMING_H_
#define ZUQEL_BENCH_TIMING_H_

#include <string>
#include <vector>

#include "row.h"

namespace zuqel::bench {

struct Time {
  std::string name;
  double seconds;  // of one run, the fastest of all
};

struct Effort {
  int rounds;            // at least
  double row_seconds;    // rounds go on for as long
  double batch_seconds;  // runs between two looks at the clock take as long
};

// Of "ours", the peers, and "copy", one that reads and writes as many bytes.
// They take turns, in an order that changes from round to round, so that a slow
// moment of the machine meets all of them. `on_the_wall` counts other threads'
// work and waiting, too; else it is the processor's time.
std::vector<Time> TimeTrial(const Trial& trial, const Effort& effort,
                            bool on_the_wall);

}  // namespace zuqel::bench

#endif  // ZUQEL_BENCH_TIMING_H_
