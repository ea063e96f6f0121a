// The memory that the library's objects take, apart from the driver's and from
// what the standard library takes for a test.
#ifndef TESTING_LIBRARY_ALLOCATIONS_H_
#define TESTING_LIBRARY_ALLOCATIONS_H_

#include <cstddef>

namespace zuqel::library_allocations {

// Bytes that the library holds now.
size_t BytesHeld();

// The most that it has held at a time, since the process began or this was
// forgotten.
size_t MostBytesHeld();
void ForgetMostBytesHeld();

// Blocks taken since the process began, failed ones included.
int Count();

// While it lives, the `number`-th block taken, from 1 on, is not to be had, nor
// any later one where asked for.
class FailingBlock {
 public:
  explicit FailingBlock(int number, bool and_later = false);
  ~FailingBlock();
  FailingBlock(const FailingBlock&) = delete;
  FailingBlock& operator=(const FailingBlock&) = delete;
};

}  // namespace zuqel::library_allocations

#endif  // TESTING_LIBRARY_ALLOCATIONS_H_
