// Names of numbered files, from a pattern.
#ifndef ZUQEL_TOOLS_SERIES_FILE_SERIES_H_
#define ZUQEL_TOOLS_SERIES_FILE_SERIES_H_

#include <string>

namespace zuqel::tools {

// Of the files of a series.
struct FrameNumbers {
  int first = 0;
  int count = 0;  // 0: all that a video has
};

// A pattern has one %d, or one %0Nd for at least N digits, N in 1..9.
class FileSeries {
 public:
  // InputError, starting with `option`, if `pattern` is not that.
  FileSeries(const std::string& option, const std::string& pattern);

  // `number` is not negative.
  [[nodiscard]] std::string Name(int number) const;

 private:
  std::string before_, after_;
  size_t digits_ = 1;
};

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_SERIES_FILE_SERIES_H_
