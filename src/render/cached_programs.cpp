// Loads, accepts and rebuilds the program cache.
#include "render/cached_programs.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <span>
#include <utility>

#include "base/log.h"

namespace zuqel {
namespace {

using enum ProgramRole;

// Entries in the order in which they are loaded and built.
constexpr std::array<size_t, kProgramCacheEntries> kEntryOrder = {
    0, 1, 2, 3, 4, 6, 5, 7, 8, 9, 10};

const ProgramRow& RowOfEntry(size_t entry) {
  return *std::find_if(
      std::begin(kPrograms), std::end(kPrograms),
      [=](const ProgramRow& row) { return row.cache_entry == entry; });
}

size_t EntryOf(ProgramRole role) {
  return RowOf(role).cache_entry.value_or(kProgramCacheEntries);
}

// True if at least one of them loads.
bool Load(ProgramCacheBytes cache, const BinaryInfo& info,
          std::span<const size_t> entries, ProgramTable& programs) {
  GLint loaded = 0;
  for (const size_t entry : entries) {
    Program program;
    loaded |= LoadProgramBinary(cache, info.entries[entry], program);
    programs.Set(RowOfEntry(entry).role, std::move(program));
  }
  return loaded == GL_TRUE;
}

void Rebuild(std::span<uint8_t, kProgramCacheBytes> cache) {
  // The conversion to RGB is built twice: the repacking program takes over the
  // entry of the first binary, whose bytes stay unreferenced. Existing caches
  // have this layout.
  const size_t built_twice = EntryOf(Nv21ToRgbProgram);
  std::array<CacheStep, kEntryOrder.size() + 1> steps;
  CacheStep* step = steps.data();
  for (const size_t entry : kEntryOrder) {
    const ProgramSource& source = RowOfEntry(entry).source;
    if (entry == built_twice) *step++ = {&source, EntryOf(Nv21PackProgram)};
    *step++ = {&source, entry};
  }
  BuildProgramCache(steps, kAttributeNames, cache);
}

}  // namespace

void PreparePrograms(uint8_t* cache, ProgramCache& session_cache,
                     ProgramTable& programs) {
  if (cache == nullptr) {
    programs.BuildAll();
    return;
  }
  const ProgramCacheBytes bytes(cache, kProgramCacheBytes);
  BinaryInfo& info = session_cache.binaryInfo;
  std::memcpy(&info, cache, sizeof(info));
  std::memcpy(session_cache.copy.bytes(), cache, kProgramCacheBytes);
  ZUQEL_LOG("binaryInfo isValid = %d", info.isValid);
  if (info.isValid == 1 && Load(bytes, info, kEntryOrder, programs)) {
    for (const ProgramRow& row : kPrograms) {
      if (!row.cache_entry) programs.Build(row.role);
    }
    return;
  }

  // Built in the session's copy, so that the caller never holds half a cache.
  info = {};
  uint8_t* copy = session_cache.copy.bytes();
  Rebuild(std::span<uint8_t, kProgramCacheBytes>(copy, kProgramCacheBytes));
  std::memcpy(cache, copy, kProgramCacheBytes);
  std::memset(copy, 0, kProgramCacheBytes);
  programs.BuildAll();
}

void PrepareRefocusMapPrograms(const ProgramCache& session_cache,
                               ProgramTable& programs) {
  const BinaryInfo& info = session_cache.binaryInfo;
  ZUQEL_LOG("gbinaryInfo.isValid  = %d", info.isValid);
  const bool has_cache = info.isValid == 1 && session_cache.copy.exists();
  if (has_cache) {
    const ProgramCacheBytes bytes(session_cache.copy.bytes(),
                                  kProgramCacheBytes);
    const std::array entries = {EntryOf(DepthWeightProgram),
                                EntryOf(BlurHProgram), EntryOf(BlurVProgram)};
    if (Load(bytes, info, entries, programs)) return;
    ZUQEL_LOG("load binary fail");
  } else {
    ZUQEL_LOG("create binary");
    programs.Build(AllInFocusWeightProgram);
  }
  programs.Build(DepthWeightProgram);
  programs.Build(BlurHProgram);
  programs.Build(BlurVProgram);
}

}  // namespace zuqel
