// Has every block of memory begin with a cache line, as the buffers of cameras
// do: a vector that lies across two takes longer, for us and for the others.
#include <cstddef>
#include <new>

namespace {

constexpr std::align_val_t kCacheLine{64};

}  // namespace

void* operator new(size_t size) {
  return operator new(size, kCacheLine);
}
void operator delete(void* block) noexcept {
  operator delete(block, kCacheLine);
}
void operator delete(void* block, size_t /*size*/) noexcept {
  operator delete(block, kCacheLine);
}
