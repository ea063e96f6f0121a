// Tells how long frames took, and how far a longer run has come.
#ifndef ZUQEL_TOOLS_FRAME_PROGRESS_H_
#define ZUQEL_TOOLS_FRAME_PROGRESS_H_

#include <vector>

namespace zuqel::tools {

struct FrameTimes {
  double median_ms;
  double worst_ms;
};

// Of an even number of frames the median is the mean of the middle two.
// `times_ms` is not empty.
FrameTimes Summarise(std::vector<double> times_ms);

// A bar on standard error where that is a terminal; nothing elsewhere.
class ProgressBar {
 public:
  explicit ProgressBar(int total);
  ~ProgressBar();  // wipes the bar
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;

  void Show(int done) const;

 private:
  int total_;
  bool on_terminal_;
};

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_FRAME_PROGRESS_H_
