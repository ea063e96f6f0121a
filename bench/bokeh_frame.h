// The frame that the CPU render path is timed on.
#ifndef ZUQEL_BENCH_BOKEH_FRAME_H_
#define ZUQEL_BENCH_BOKEH_FRAME_H_

#include <cstdint>

#include "cpu_bokeh/expansion.h"
#include "plane_image.h"

namespace zuqel::bench {

// 1280 x 960 NV21, textured all over, with a subject's disparity of 320 x 240.
// The focus is on the subject.
struct BokehFrame {
  BokehFrame();

  // Undoes what a call has changed, at about the cost of a copy.
  void Restore();
  ExpansionFrame View();

  Image<uint8_t> luma, chroma;  // chroma: rows of V and U pairs
  Image<uint16_t> disparity;

 private:
  Image<uint8_t> source_luma_, source_chroma_;
  Image<uint16_t> source_disparity_;
};

// Discards what the library logs and prints while it lives: the table of
// benchmarks goes to standard output, too.
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
