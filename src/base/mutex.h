// A lock that cannot throw.
#ifndef ZUQEL_BASE_MUTEX_H_
#define ZUQEL_BASE_MUTEX_H_

#include <pthread.h>

namespace zuqel {

// For std::lock_guard. std::mutex would do, but for the exception that it
// announces.
class Mutex {
 public:
  void lock() { pthread_mutex_lock(&mutex_); }
  void unlock() { pthread_mutex_unlock(&mutex_); }

 private:
  pthread_mutex_t mutex_ = PTHREAD_MUTEX_INITIALIZER;
};

}  // namespace zuqel

#endif  // ZUQEL_BASE_MUTEX_H_
