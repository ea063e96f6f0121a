// Frame times, and the progress of a longer run.
#ifndef ZUQEL_TOOLS_RENDERING_FRAME_PROGRESS_H_
#define ZUQEL_TOOLS_RENDERING_FRAME_PROGRESS_H_

#include <vector>

namespace zuqel::tools {

struct FrameTimes {
  double median_ms;
  double worst_ms;
};

// With an even number of frames the median is the mean of the middle two.
// `times_ms` is not empty.
FrameTimes Summarise(std::vector<double> times_ms);

// A bar on standard error if that is a terminal, else nothing.
class ProgressBar {
 public:
  // `of` is what is counted.
  explicit ProgressBar(int total, const char* of = "frames");
  ~ProgressBar();  // erases the bar
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;

  void Show(int done) const;

 private:
  int total_;
  const char* of_;
  bool on_terminal_;
};

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_RENDERING_FRAME_PROGRESS_H_
