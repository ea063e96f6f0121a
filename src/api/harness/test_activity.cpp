// Native methods of a bare test activity,
// com.example.lvglrefocusing.MainActivity: they load sample files from the
// device's shared storage and exercise the library's lifecycle. The harness
// keeps its own state beside the session.
#include <pthread.h>
#include <sys/stat.h>
#include <zuQelRT_GL.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <optional>

#include "base/buffer.h"
#include "base/clock.h"
#include "base/log.h"
#include "base/never_destroyed.h"

namespace {

using zuqel::Buffer;

constexpr int32_t kImageWidth = 1280;
constexpr int32_t kImageHeight = 960;
constexpr int32_t kDepthWidth = 320;
constexpr int32_t kDepthHeight = 240;
constexpr size_t kImageBytes = size_t{kImageWidth} * kImageHeight * 3 / 2;
constexpr size_t kDepthBytes = size_t{kDepthWidth} * kDepthHeight * 2;

constexpr char const* kCalibrationPath = "/sdcard/OTP_DATA.bin";
constexpr char const* kImagePath = "/sdcard/filesmain.raw";
constexpr char const* kDepthPath = "/sdcard/filesdepth320x240.raw";

struct Harness {
  // Usable before the first initGL and after the last closeGL too.
  pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
  Buffer image;
  Buffer depth;
};

Harness& TheHarness() {
  return zuqel::NeverDestroyed<Harness>();
}

// Bytes of a file, 0 of a missing one. Nothing for one past 2^31 - 1 bytes,
// which counts as out of memory.
std::optional<size_t> SizeOfFile(const char* path) {
  struct stat status = {};
  if (stat(path, &status) != 0) return 0;
  if (status.st_size > INT32_MAX) return std::nullopt;
  return static_cast<size_t>(status.st_size);
}

// Fills the buffer from the start of a file; a short file leaves the rest as it
// was. False when the file cannot be opened or read.
bool ReadFile(const char* path, const Buffer& buffer) {
  std::FILE* file = std::fopen(path, "rb");
  if (file == nullptr) return false;
  static_cast<void>(std::fread(buffer.bytes(), 1, buffer.size(), file));
  const bool is_read = std::ferror(file) == 0;
  static_cast<void>(std::fclose(file));
  return is_read;
}

// Makes the buffer where there is none, reads the file, and logs the outcome.
void ReadInto(Buffer& buffer, std::optional<size_t> size, const char* path) {
  const bool is_read = buffer.Reserve(size) && ReadFile(path, buffer);
  ZUQEL_LOG("%s", is_read ? "*VX* Read File Success." : "*VX* Read File Fail.");
}

}  // namespace

// Called by the Java runtime, which finds them by their names. The runtime's
// environment and the calling object are not used.
#pragma GCC visibility push(default)
extern "C" {

void Java_com_example_lvglrefocusing_MainActivity_initGL(void* /*env*/,
                                                         void* /*object*/) {
  Harness& harness = TheHarness();
  Buffer calibration;
  const std::optional<size_t> calibration_size = SizeOfFile(kCalibrationPath);
  ZUQEL_LOG("*VX* dOTPSize = %d",
            static_cast<int>(calibration_size.value_or(0)));
  ReadInto(calibration, calibration_size, kCalibrationPath);
  ReadInto(harness.image, kImageBytes, kImagePath);
  ReadInto(harness.depth, kDepthBytes, kDepthPath);
  // A marker only: the session is not initialised here.
  ZUQEL_LOG("*VX* zuQel_GLInit errNum = %d", 0);
  pthread_mutex_init(&harness.mutex, nullptr);
}

int32_t Java_com_example_lvglrefocusing_MainActivity_closeGL(void* /*env*/,
                                                             void* /*object*/) {
  Harness& harness = TheHarness();
  ZUQEL_LOG("*VX* Close");
  pthread_mutex_lock(&harness.mutex);
  zuQelRT_GLClose();
  harness.image.Release();
  harness.depth.Release();
  pthread_mutex_unlock(&harness.mutex);
  const int32_t result = pthread_mutex_destroy(&harness.mutex);
  harness.mutex = PTHREAD_MUTEX_INITIALIZER;
  return result;
}

int32_t Java_com_example_lvglrefocusing_MainActivity_startGL(void* /*env*/,
                                                             void* /*object*/) {
  Harness& harness = TheHarness();
  const uint32_t start = zuqel::MillisecondClock();
  pthread_mutex_lock(&harness.mutex);
  ZUQEL_LOG("*VX* Runtime = %d (ms)",
            static_cast<int>(zuqel::MillisecondClock() - start));
  return pthread_mutex_unlock(&harness.mutex);
}

}  // extern "C"
#pragma GCC visibility pop
