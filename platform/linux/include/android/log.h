/* The device's log on Linux: the same names and records as the device's own. */
#ifndef PLATFORM_LINUX_ANDROID_LOG_H_
#define PLATFORM_LINUX_ANDROID_LOG_H_

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef enum android_LogPriority {
  ANDROID_LOG_UNKNOWN = 0,
  ANDROID_LOG_DEFAULT,
  ANDROID_LOG_VERBOSE,
  ANDROID_LOG_DEBUG,
  ANDROID_LOG_INFO,
  ANDROID_LOG_WARN,
  ANDROID_LOG_ERROR,
  ANDROID_LOG_FATAL,
  ANDROID_LOG_SILENT
} android_LogPriority;

struct __android_log_message {
  size_t struct_size;
  int32_t buffer_id;
  int32_t priority;
  const char* tag;
  const char* file;
  uint32_t line;
  const char* message;
};

typedef void (*__android_logger_function)(
    const struct __android_log_message* log_message);

/* Formats one message and hands it to the logger. Returns 1 when it was logged,
 * -EPERM when its priority is below the minimum. */
int __android_log_print(int prio, const char* tag, const char* fmt, ...)
    __attribute__((format(printf, 3, 4)));

/* Sets the lowest priority that is logged (initially everything is) and
 * returns the previous one. */
int32_t __android_log_set_minimum_priority(int32_t priority);

/* Replaces the logger; null restores the one that writes to standard error
 * in logcat's brief form. Calls of the logger never overlap. */
void __android_log_set_logger(__android_logger_function logger);

#ifdef __cplusplus
}
#endif

#endif /* PLATFORM_LINUX_ANDROID_LOG_H_ */
