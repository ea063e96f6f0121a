// Collects what the library logs.
#ifndef ZUQEL_LOG_CAPTURE_H_
#define ZUQEL_LOG_CAPTURE_H_

#include <android/log.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zuqel {

using Lines = std::vector<std::string>;

// Takes the log from its construction on and gives it back at its end; one
// lives at a time. What changes from run to run is masked: "= 12 (ms)" becomes
// "= # (ms)", so do "take 12 ms" and its like, and "tid = 7" becomes "tid = #".
// A line that is not an error of "System.out" comes with its priority and tag
// in front.
class LogCapture {
 public:
  LogCapture() {
    current_ = this;
    __android_log_set_logger(&Append);
  }
  ~LogCapture() { __android_log_set_logger(nullptr); }
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;

  // The lines since the last call.
  Lines Take() { return std::exchange(lines_, {}); }

 private:
  // Puts "#" in place of the digits between two texts.
  static void Mask(std::string& line, std::string_view before,
                   std::string_view after) {
    const size_t found = line.find(before);
    if (found == std::string::npos) return;
    const size_t begin = found + before.size();
    const size_t end =
        std::min(line.find_first_not_of("0123456789", begin), line.size());
    if (end == begin || line.compare(end, after.size(), after) != 0) return;
    line.replace(begin, end - begin, 1, '#');
  }

  static void Append(const __android_log_message* message) {
    std::string line = message->message;
    Mask(line, "= ", " (ms)");
    Mask(line, "tid = ", "");
    Mask(line, "take ", " ms");
    Mask(line, "takes ", " ms");
    Mask(line, "take test ", " ms");
    if (message->priority != ANDROID_LOG_ERROR ||
        std::string_view(message->tag) != "System.out") {
      line.insert(0,
                  std::to_string(message->priority) + "/" + message->tag + " ");
    }
    current_->lines_.push_back(line);
  }

  static inline LogCapture* current_ = nullptr;
  Lines lines_;
};

}  // namespace zuqel

#endif  // ZUQEL_LOG_CAPTURE_H_
