// Linked programs kept by the caller between runs, as one flat buffer.
//
//   offset  bytes  content, little-endian
//   0       88     eleven entries: offset from the start of the buffer, length
//   88      4      isValid: 1 when the entries are filled
//   92      rest   the program binaries, back to back
#ifndef ZUQEL_GL_PROGRAM_CACHE_H_
#define ZUQEL_GL_PROGRAM_CACHE_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "base/buffer.h"
#include "gl/program.h"

namespace zuqel {

inline constexpr size_t kProgramCacheBytes = 262144;
inline constexpr size_t kProgramCacheEntries = 11;

using ProgramCacheBytes = std::span<const uint8_t, kProgramCacheBytes>;

// The head of the buffer.
struct BinaryInfo {
  struct Entry {
    int32_t offset = 0;
    int32_t length = 0;
  };
  std::array<Entry, kProgramCacheEntries> entries = {};
  int32_t isValid = 0;
};
static_assert(sizeof(BinaryInfo) == 92);

// One program to build into the cache, and the entry it fills. A later step may
// fill an entry again; the bytes of the earlier one stay, unreferenced.
struct CacheStep {
  const ProgramSource* source = nullptr;
  size_t entry = 0;
};

// What a session keeps of its caller's cache.
struct ProgramCache {
  BinaryInfo binaryInfo;
  Buffer copy;  // all of it, or zeros
};

// Makes `program` from one entry of a cache and returns its link status, 1 when
// it was loaded. An entry that reaches outside the cache does not load.
GLint LoadProgramBinary(ProgramCacheBytes cache, const BinaryInfo::Entry& entry,
                        Program& program);

// Links the program of each step and appends its binary, then writes the head
// with `isValid` set. A step that does not link, or whose
// binary does not fit, is logged and leaves its entry as it is.
void BuildProgramCache(std::span<const CacheStep> steps,
                       AttributeNames attributes,
                       std::span<uint8_t, kProgramCacheBytes> cache);

}  // namespace zuqel

#endif  // ZUQEL_GL_PROGRAM_CACHE_H_
