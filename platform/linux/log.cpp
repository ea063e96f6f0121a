// The log: messages go to standard error, or to a logger that a program sets.
#include <android/log.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <mutex>
#include <string_view>

namespace {

constexpr size_t kLongestMessage = 1024;  // as on the device, where it is cut

std::mutex logger_mutex;
__android_logger_function logger = nullptr;
std::atomic<int32_t> minimum_priority{ANDROID_LOG_DEFAULT};

char PriorityLetter(int32_t priority) {
  constexpr std::string_view kLetters = "??VDIWEFS";
  const auto index = static_cast<size_t>(priority);
  return index < kLetters.size() ? kLetters[index] : '?';
}

void WriteBrief(const __android_log_message& message) {
  static_cast<void>(std::fprintf(stderr, "%c/%s(%5d): %s\n",
                                 PriorityLetter(message.priority), message.tag,
                                 getpid(), message.message));
}

}  // namespace

extern "C" {

// The device's own interface is a C variadic function.
// NOLINTNEXTLINE(cert-dcl50-cpp)
int __android_log_print(int prio, const char* tag, const char* fmt, ...) {
  if (prio < minimum_priority) return -EPERM;
  std::array<char, kLongestMessage> text = {};
  va_list arguments;
  va_start(arguments, fmt);
  static_cast<void>(std::vsnprintf(text.data(), text.size(), fmt, arguments));
  va_end(arguments);

  const __android_log_message message = {
      sizeof(__android_log_message), 0, prio, tag, nullptr, 0, text.data()};
  const std::lock_guard lock(logger_mutex);
  if (logger != nullptr) {
    logger(&message);
  } else {
    WriteBrief(message);
  }
  return 1;
}

int32_t __android_log_set_minimum_priority(int32_t priority) {
  return minimum_priority.exchange(priority);
}

void __android_log_set_logger(__android_logger_function new_logger) {
  const std::lock_guard lock(logger_mutex);
  logger = new_logger;
}

}  // extern "C"
