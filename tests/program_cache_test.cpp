// Program caches: what a start writes into one, and which ones it takes.
#include <driver_adaptation.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <functional>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "caller_frame.h"
#include "driver_turns.h"
#include "gl/extensions.h"
#include "guarded_memory.h"
#include "log_capture.h"
#include "render/cached_programs.h"
#include "test_session.h"

namespace zuqel {
namespace {

using Bytes = std::vector<uint8_t>;
using Entries = std::set<size_t>;
// Fills whole pages: guarded on both ends.
using Cache = GuardedMemory<uint8_t>;

constexpr size_t kCacheBytes = 262144;
constexpr size_t kHeadBytes = 92;
constexpr size_t kValidWord = 22;
// Shaders that a start compiles with a usable cache, without one, and when it
// builds one.
constexpr int kUncached = 2 * (kProgramCount - kProgramCacheEntries);
constexpr int kCompiled = 2 * kProgramCount;
constexpr int kRebuilt = kCompiled + 2 * (kProgramCacheEntries + 1);
constexpr size_t kEntries = kProgramCacheEntries;
// Entry 6 is built twice; its first binary stays unreferenced.
constexpr std::array<size_t, 12> kBuildOrder = {0, 1, 2, 3, 4, 6,
                                                6, 5, 7, 8, 9, 10};

const ProgramRow& RowOfEntry(size_t entry) {
  return *std::find_if(
      std::begin(kPrograms), std::end(kPrograms),
      [=](const ProgramRow& row) { return row.cache_entry == entry; });
}

Entries All() {
  return {kBuildOrder.begin(), kBuildOrder.end()};
}

void SetWord(std::span<uint8_t> cache, size_t index, int32_t value) {
  std::memcpy(&cache[4 * index], &value, sizeof(value));
}

void SetEntry(std::span<uint8_t> cache, size_t index,
              const BinaryInfo::Entry& entry) {
  SetWord(cache, 2 * index, entry.offset);
  SetWord(cache, 2 * index + 1, entry.length);
}

// Binary of a program of the running session.
Bytes BinaryOf(size_t entry) {
  const GLuint program =
      RunningRender().programs[RowOfEntry(entry).role].name();
  GLint length = 0;
  glGetProgramiv(program, GL_PROGRAM_BINARY_LENGTH_OES, &length);
  Bytes binary(static_cast<size_t>(length));
  if (length == 0) return binary;
  GLenum format = 0;
  GetExtensions().GetProgramBinary(program, length, nullptr, &format,
                                   binary.data());
  return binary;
}

struct Built {
  Bytes cache = Bytes(kCacheBytes);
  Lines log = {};
  size_t end = kHeadBytes;  // of what is written
};

// What building into zeros gives, from the running session's programs.
Built Expected(const std::vector<size_t>& order) {
  Built built;
  size_t& end = built.end;
  for (const size_t entry : order) {
    const Bytes binary = BinaryOf(entry);
    if (binary.size() > kCacheBytes - end) {
      built.log.emplace_back("FAIL.");
      continue;
    }
    SetEntry(built.cache, entry,
             {static_cast<int32_t>(end), static_cast<int32_t>(binary.size())});
    std::copy(binary.begin(), binary.end(), &built.cache[end]);
    end += binary.size();
    built.log.push_back("binaryLength = " + std::to_string(binary.size()));
    built.log.push_back("dst_offset = " + std::to_string(end));
  }
  SetWord(built.cache, kValidWord, 1);
  return built;
}

class ProgramCacheTest : public testing::Test {
 protected:
  ProgramCacheTest() { ResetSession(); }

  // A start that compiles `shaders`, has the programs `linked` and keeps
  // `kept`; the luma that it renders.
  static Bytes Start(uint8_t* cache, int shaders, const Entries& linked,
                     const Bytes& kept) {
    const int before = driver::CallCount(driver::Call::kCompileShader);
    const ScopedSession session(SmallPreviewInfo(), cache);
    EXPECT_EQ(driver::CallCount(driver::Call::kCompileShader),
              before + shaders);
    for (size_t i = 0; i < kEntries; ++i) {
      GLint status = 0;
      glGetProgramiv(RunningRender().programs[RowOfEntry(i).role].name(),
                     GL_LINK_STATUS, &status);
      EXPECT_EQ(status == GL_TRUE, linked.contains(i)) << i;
    }
    EXPECT_EQ(std::memcmp(&Kept().binaryInfo, kept.data(), kHeadBytes), 0);
    // Without a cache there is nothing to keep a copy of.
    EXPECT_EQ(Kept().copy.exists(), cache != nullptr);
    if (cache != nullptr) {
      EXPECT_TRUE(std::equal(kept.begin(), kept.end(), Kept().copy.bytes(),
                             Kept().copy.bytes() + Kept().copy.size()));
    }
    TestFrame frame;
    EXPECT_EQ(frame.Render(/*from_depth=*/true), ZUQEL_SUCCESS);
    return frame.luma;
  }

  // A cache built into zeros, and the log of that.
  Built Build(const std::vector<size_t>& order,
              AttributeNames names = kAttributeNames) {
    std::vector<CacheStep> steps;
    steps.reserve(order.size());
    for (const size_t entry : order) {
      steps.push_back({&RowOfEntry(entry).source, entry});
    }
    Cache cache(kCacheBytes);
    log_.Take();
    BuildProgramCache(steps, names, cache.span().first<kCacheBytes>());
    return {{cache.data(), cache.data() + kCacheBytes}, log_.Take()};
  }

  static const ProgramCache& Kept() {
    return TheSession().RunningProgramCache();
  }

  const CallerContext caller_;
  LogCapture log_;
};

struct CacheRow {
  std::string name;
  Entries loaded;  // none: the cache is refused
  std::function<void(std::span<uint8_t>)> change;
};

std::vector<CacheRow> CacheRows() {
  constexpr int32_t kMax = INT32_MAX, kMin = INT32_MIN;
  constexpr auto kSize = static_cast<int32_t>(kCacheBytes);
  const auto fill = [](size_t from, uint8_t byte) {
    return [=](auto cache) {
      const auto rest = cache.subspan(from);
      std::fill(rest.begin(), rest.end(), byte);
    };
  };
  std::vector<CacheRow> rows = {{"valid", All(), fill(kCacheBytes - 1, 1)},
                                {"zeros", {}, fill(0, 0)},
                                {"corrupted", {}, fill(kHeadBytes, 0xA5)},
                                {"validity mark", {}, [](auto cache) {
                                   SetWord(cache, kValidWord, -1);
                                 }}};
  const auto spoil = [&rows](const Entries& good, BinaryInfo::Entry entry) {
    rows.push_back(
        {testing::PrintToString(entry.offset), good, [=](auto cache) {
           for (size_t i = 0; i < kEntries; ++i) {
             if (!good.contains(i)) SetEntry(cache, i, entry);
           }
         }});
  };
  for (size_t good = 0; good < kEntries; ++good) spoil({good}, {});
  const std::vector<BinaryInfo::Entry> outside = {
      {-1, 2},  {kMax, kMax},   {kMin, kMin},   {kSize - 1, 2},
      {92, -1}, {0, kSize + 1}, {kSize + 1, -1}};
  for (const BinaryInfo::Entry& entry : outside) spoil({}, entry);
  return rows;
}

// Callers keep caches that earlier versions have built.
TEST(ProgramCacheFormatTest, EntriesStayWhereTheyAre) {
  using enum ProgramRole;
  std::vector<ProgramRole> roles;
  for (size_t i = 0; i < kEntries; ++i) roles.push_back(RowOfEntry(i).role);
  EXPECT_EQ(roles,
            (std::vector{BlurHProgram, BlurVProgram, CopyProgram,
                         DepthWeightProgram, CompositeProgram, Nv21PackProgram,
                         Nv21ToRgbProgram, Min3x3Program, Max3x3Program,
                         AllInFocusWeightProgram, PlanarYuvPackProgram}));
}

TEST_F(ProgramCacheTest, OneGoodEntryIsEnough) {
  const Built fresh = [] {
    const ScopedSession session(SmallPreviewInfo(), nullptr);
    return Expected({kBuildOrder.begin(), kBuildOrder.end()});
  }();
  const Bytes none(kCacheBytes);
  const Bytes compiled = Start(nullptr, kCompiled, All(), none);
  int turn = 0;
  for (const CacheRow& row : CacheRows()) {
    if (!TakesTurn(turn++, 5)) continue;
    SCOPED_TRACE(row.name);
    Cache cache(fresh.cache);
    row.change(cache.span());
    Bytes expected(cache.data(), cache.data() + kCacheBytes);
    const bool accepted = !row.loaded.empty() && KeepsPrograms();
    const Bytes picture =
        accepted ? Start(cache.data(), kUncached, row.loaded, expected)
                 : Start(cache.data(), kRebuilt, All(), none);
    if (!accepted || row.loaded.size() != 1) {
      EXPECT_EQ(picture, compiled);
    }
    EXPECT_EQ(std::memcmp(&Kept().binaryInfo, none.data(), kHeadBytes), 0);
    EXPECT_FALSE(Kept().copy.exists());
    // What is rebuilt is what was built at first; the rest stays.
    if (!accepted) {
      std::copy_n(fresh.cache.begin(), fresh.end, expected.begin());
    }
    EXPECT_TRUE(std::equal(expected.begin(), expected.end(), cache.data()));
  }
}

TEST_F(ProgramCacheTest, BuilderStaysInsideTheCache) {
  // What is filled leaves room for a small program but not for a large one.
  const ScopedSession session(SmallPreviewInfo(), nullptr);
  const size_t small = BinaryOf(2).size(), large = BinaryOf(9).size();
  std::vector<size_t> order;
  if (KeepsPrograms()) {
    ASSERT_GT(large, small);
    const size_t room = kCacheBytes - kHeadBytes, count = room / small - 1;
    const size_t larges = (room - (count + 1) * small) / (large - small);
    order.resize(larges, 9);
    order.resize(count, 2);
  }
  order.insert(order.end(), {9, 2, 2});
  const Built expected = Expected(order);
  if (KeepsPrograms()) {
    ASSERT_EQ(std::count(expected.log.begin(), expected.log.end(), "FAIL."), 2);
    ASSERT_EQ(expected.log.back(), "FAIL.");
    ASSERT_NE(*(expected.log.end() - 2), "FAIL.") << "the small one fits";
  }
  const Built built = Build(order);
  EXPECT_EQ(built.log, expected.log);
  EXPECT_TRUE(built.cache == expected.cache);
}

TEST_F(ProgramCacheTest, BinariesMayPlaceTheirAttributes) {
  const Bytes none(kCacheBytes);
  const Bytes compiled = Start(nullptr, kCompiled, All(), none);
  constexpr std::array kElsewhere = {"a", "b", "inputTextureCoordinate", "c",
                                     "position"};
  const Bytes kept =
      Build({kBuildOrder.begin(), kBuildOrder.end()}, kElsewhere).cache;
  Bytes cache = kept;
  for (const GLuint location : {2U, 4U}) {
    glVertexAttribPointer(location, 3, GL_SHORT, GL_TRUE, 8, cache.data());
    glEnableVertexAttribArray(location);
  }
  EXPECT_EQ(KeepsPrograms() ? Start(cache.data(), kUncached, All(), kept)
                            : Start(cache.data(), kRebuilt, All(), none),
            compiled);
  for (const GLuint location : {2U, 4U}) {
    void* pointer = nullptr;
    GLint type = 0, is_enabled = 0;
    glGetVertexAttribPointerv(location, GL_VERTEX_ATTRIB_ARRAY_POINTER,
                              &pointer);
    glGetVertexAttribiv(location, GL_VERTEX_ATTRIB_ARRAY_TYPE, &type);
    glGetVertexAttribiv(location, GL_VERTEX_ATTRIB_ARRAY_ENABLED, &is_enabled);
    EXPECT_EQ(pointer, cache.data());
    EXPECT_EQ(type, GL_SHORT);
    EXPECT_EQ(is_enabled, GL_TRUE);
  }
}

// As on a driver that links programs but keeps no binaries, which has no cache
// to start from.
TEST_F(ProgramCacheTest, BinaryWithoutBytesIsRemembered) {
  Bytes expected(kCacheBytes);
  for (const size_t i : kBuildOrder) SetEntry(expected, i, {kHeadBytes, 0});
  SetWord(expected, kValidWord, 1);
  Cache cache(kCacheBytes);
  driver::SetFailing(driver::Call::kProgramBinaryLength, true);
  for (const bool is_built : {false, true}) {
    log_.Take();
    Start(cache.data(), kRebuilt, All(), Bytes(kCacheBytes));
    const Lines log = log_.Take();
    Lines lines = {is_built ? "binaryInfo isValid = 1"
                            : "binaryInfo isValid = 0"};
    const auto repeat = [&](size_t count, const char* line, const char* next) {
      for (; count > 0; --count) lines.insert(lines.end(), {line, next});
    };
    if (is_built) repeat(kEntries, "*VX* 0", "*VX* GL_FALSE .");
    repeat(kBuildOrder.size(), "binaryLength = 0", "dst_offset = 92");
    const auto begin = std::find(log.begin(), log.end(), lines.front());
    const auto length = std::min(std::ssize(lines), log.end() - begin);
    EXPECT_EQ(Lines(begin, begin + length), lines);
    EXPECT_TRUE(std::equal(expected.begin(), expected.end(), cache.data()));
  }
  driver::SetFailing(driver::Call::kProgramBinaryLength, false);
}

}  // namespace
}  // namespace zuqel
