// Names of numbered files, from a pattern.
#include "series/file_series.h"

#include <algorithm>

#include "tool_error.h"

namespace zuqel::tools {

// Parsed by hand: a pattern from the command line must not reach printf.
FileSeries::FileSeries(const std::string& option, const std::string& pattern) {
  const size_t percent = pattern.find('%');
  before_ = pattern.substr(0, percent);
  if (percent != std::string::npos) after_ = pattern.substr(percent + 1);
  if (after_.size() > 2 && after_[0] == '0' && after_[1] >= '1' &&
      after_[1] <= '9') {
    digits_ = static_cast<size_t>(after_[1] - '0');
    after_.erase(0, 2);
  }
  if (after_.empty() || after_[0] != 'd' ||
      after_.find('%') != std::string::npos) {
    throw InputError(option + " " + pattern +
                     ": needs one %d or %04d for the number, and no other %");
  }
  after_.erase(0, 1);
}

std::string FileSeries::Name(int number) const {
  const std::string text = std::to_string(number);
  const size_t zeros = digits_ - std::min(digits_, text.size());
  return before_ + std::string(zeros, '0') + text + after_;
}

}  // namespace zuqel::tools
