// The frame that the CPU render path is timed on.
#ifndef ZUQEL_BENCH_BOKEH_FRAME_H_
#define ZUQEL_BENCH_BOKEH_FRAME_H_

#include <cstdint>
#include <vector>

#include "bench_images.h"
#include "cpu_bokeh/expansion.h"

namespace zuqel::bench {

// 1280 x 960 NV21 with disparity of 320 x 240: a near subject before a ground
// that comes nearer from the top to the bottom, textured all over, with holes
// beside the subject. The focus is on the subject.
struct BokehFrame {
  BokehFrame();

  // Puts back what a call has changed; about the cost of a copy.
  void Restore();
  ExpansionFrame View();

  Image luma, chroma;  // chroma: rows of V and U pairs
  std::vector<uint16_t> disparity;

 private:
  Image source_luma_, source_chroma_;
  std::vector<uint16_t> source_disparity_;
};

// While it lives, what the call logs and prints goes nowhere: the table of
// benchmarks is on standard output, too.
class Silence {
 public:
  Silence();
  ~Silence();
  Silence(const Silence&) = delete;
  Silence& operator=(const Silence&) = delete;

 private:
  int output_;  // a second name of standard output
};

}  // namespace zuqel::bench

#endif  // ZUQEL_BENCH_BOKEH_FRAME_H_
