// The names of numbered files, as people write them.
#ifndef ZUQEL_TOOLS_FILE_SERIES_H_
#define ZUQEL_TOOLS_FILE_SERIES_H_

#include <string>

namespace zuqel::tools {

// A name with one %d, or %0Nd for at least N digits, N of 1..9.
class FileSeries {
 public:
  // InputError, which begins with `option`, when `pattern` is not that.
  FileSeries(const std::string& option, const std::string& pattern);

  // `number` is not negative.
  [[nodiscard]] std::string Name(int number) const;

 private:
  std::string before_, after_;
  size_t digits_ = 1;
};

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_FILE_SERIES_H_
