// Frame times, and the progress of a longer run.
#include "rendering/frame_progress.h"

#include <unistd.h>

#include <algorithm>
#include <iostream>
#include <string>

namespace zuqel::tools {

FrameTimes Summarise(std::vector<double> times_ms) {
  std::sort(times_ms.begin(), times_ms.end());
  const size_t count = times_ms.size();
  const double median = (times_ms[(count - 1) / 2] + times_ms[count / 2]) / 2.0;
  return {median, times_ms.back()};
}

ProgressBar::ProgressBar(int total, const char* of)
    : total_(total),
      of_(of),
      on_terminal_(total > 1 && isatty(STDERR_FILENO) == 1) {}

ProgressBar::~ProgressBar() {
  if (on_terminal_) std::cerr << "\r\033[K";
}

void ProgressBar::Show(int done) const {
  constexpr int kCells = 40;
  if (!on_terminal_) return;
  const auto filled =
      static_cast<size_t>(static_cast<int64_t>(done) * kCells / total_);
  std::string bar(kCells, '.');
  std::fill_n(bar.begin(), filled, '#');
  std::cerr << "\r[" << bar << "] " << done << "/" << total_ << " " << of_
            << std::flush;
}

}  // namespace zuqel::tools
