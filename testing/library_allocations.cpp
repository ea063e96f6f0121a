// Stands between the program's objects and the allocator, by the linker's
// --wrap. Of all that is linked only the library's buffers call
// posix_memalign.
#include "library_allocations.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <mutex>

extern "C" {
int __real_posix_memalign(void** block, size_t alignment, size_t size);
void __real_free(void* block);
int __wrap_posix_memalign(void** block, size_t alignment, size_t size);
void __wrap_free(void* block);
}

namespace zuqel::library_allocations {
namespace {

struct Block {
  const void* begin = nullptr;
  size_t bytes = 0;
};

// Takes no memory itself: that would come back here.
struct State {
  std::mutex mutex;
  std::array<Block, 1024> blocks;  // unused ones begin nowhere
  size_t bytes_held = 0;
  size_t most_bytes_held = 0;
  int count = 0;
  int first_failing = 0;  // the number of a block, 0 for none
  int last_failing = 0;
};

State& TheState() {
  static State state;
  return state;
}

Block& UnusedBlock() {
  for (Block& block : TheState().blocks) {
    if (block.begin == nullptr) return block;
  }
  std::abort();
}

}  // namespace

size_t BytesHeld() {
  const std::lock_guard lock(TheState().mutex);
  return TheState().bytes_held;
}

size_t MostBytesHeld() {
  const std::lock_guard lock(TheState().mutex);
  return TheState().most_bytes_held;
}

void ForgetMostBytesHeld() {
  const std::lock_guard lock(TheState().mutex);
  TheState().most_bytes_held = TheState().bytes_held;
}

int Count() {
  const std::lock_guard lock(TheState().mutex);
  return TheState().count;
}

FailingBlock::FailingBlock(int number, bool and_later) {
  const std::lock_guard lock(TheState().mutex);
  const int first = TheState().count + number;
  TheState().first_failing = first;
  TheState().last_failing = and_later ? INT_MAX : first;
}

FailingBlock::~FailingBlock() {
  const std::lock_guard lock(TheState().mutex);
  TheState().first_failing = TheState().last_failing = 0;
}

namespace {

int Take(void** block, size_t alignment, size_t size) {
  State& state = TheState();
  const std::lock_guard lock(state.mutex);
  ++state.count;
  if (state.count >= state.first_failing && state.count <= state.last_failing) {
    return ENOMEM;
  }
  const int error = __real_posix_memalign(block, alignment, size);
  if (error != 0) return error;
  UnusedBlock() = {*block, size};
  state.bytes_held += size;
  state.most_bytes_held = std::max(state.most_bytes_held, state.bytes_held);
  return 0;
}

void GiveBack(void* block) {
  State& state = TheState();
  {
    const std::lock_guard lock(state.mutex);
    for (Block& known : state.blocks) {
      if (block == nullptr || known.begin != block) continue;
      state.bytes_held -= known.bytes;
      known = {};
    }
  }
  __real_free(block);
}

}  // namespace
}  // namespace zuqel::library_allocations

int __wrap_posix_memalign(void** block, size_t alignment, size_t size) {
  return zuqel::library_allocations::Take(block, alignment, size);
}

void __wrap_free(void* block) {
  zuqel::library_allocations::GiveBack(block);
}
