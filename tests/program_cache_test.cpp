// Program caches: what a start writes into one, and which ones it takes.
#include <driver_adaptation.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <functional>
#include <numeric>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "gl/extensions.h"
#include "guarded_memory.h"
#include "log_capture.h"
#include "render/cached_programs.h"
#include "test_frame.h"
#include "test_session.h"

namespace zuqel {
namespace {

using enum ProgramRole;
using Bytes = std::vector<uint8_t>;
using Cache =
    GuardedMemory<uint8_t>;  // fills whole pages: guarded on both ends

constexpr size_t kCacheBytes = 262144;
constexpr size_t kEntries = 11;
constexpr int32_t kHeadBytes = 92;
constexpr size_t kValidWord = 22;

// What is built, in order, and for each entry of the head its step and role.
constexpr size_t kSteps = 12;
constexpr std::array<size_t, kEntries> kStepOfEntry = {0, 1, 2, 3,  4, 7,
                                                       6, 8, 9, 10, 11};
constexpr std::array<ProgramRole, kEntries> kRoleOfEntry = {
    BlurHProgram,        BlurVProgram,
    CopyProgram,         DepthWeightProgram,
    CompositeProgram,    Nv21PackProgram,
    Nv21ToRgbProgram,    Min3x3Program,
    Max3x3Program,       AllInFocusWeightProgram,
    PlanarYuvPackProgram};
constexpr std::array<size_t, kEntries> kLoadOrder = {0, 1, 2, 3, 4, 6,
                                                     5, 7, 8, 9, 10};

GLInitInfo Info() {
  GLInitInfo info = DefaultInfo();
  info.PreviewWidth = 64;
  info.PreviewHeight = 48;
  return info;
}

// One little-endian word of a cache's head.
int32_t WordAt(std::span<const uint8_t> cache, size_t index) {
  uint32_t word = 0;
  for (size_t i = 4; i-- > 0;) word = word << 8 | cache[4 * index + i];
  return static_cast<int32_t>(word);
}

void SetWord(std::span<uint8_t> cache, size_t index, int32_t value) {
  for (size_t i = 0; i < 4; ++i) {
    cache[4 * index + i] =
        static_cast<uint8_t>(static_cast<uint32_t>(value) >> 8 * i);
  }
}

void SetEntry(std::span<uint8_t> cache, size_t index,
              const BinaryInfo::Entry& entry) {
  SetWord(cache, 2 * index, entry.offset);
  SetWord(cache, 2 * index + 1, entry.length);
}

// The numbers behind `prefix` in a log, line by line.
std::vector<int32_t> NumbersOf(const Lines& lines, std::string_view prefix) {
  std::vector<int32_t> numbers;
  for (const std::string& line : lines) {
    if (line.starts_with(prefix))
      numbers.push_back(std::stoi(line.substr(prefix.size())));
  }
  return numbers;
}

struct Calls {
  int compiled = driver::CallCount(driver::Call::kCompileShader);
  int linked = driver::CallCount(driver::Call::kLinkProgram);
  bool operator==(const Calls&) const = default;
};

Calls Since(const Calls& before) {
  const Calls now;
  return {now.compiled - before.compiled, now.linked - before.linked};
}

constexpr Calls kNone = {0, 0};
constexpr Calls kAllCompiled = {22, 11};
constexpr Calls kBuiltAndCompiled = {46, 23};

bool IsLinked(GLuint program) {
  GLint linked = 0;
  glGetProgramiv(program, GL_LINK_STATUS, &linked);
  return linked == GL_TRUE;
}

// Entries whose programs in the running session are linked.
std::set<size_t> LinkedEntries() {
  std::set<size_t> linked;
  for (size_t i = 0; i < kEntries; ++i) {
    if (IsLinked(TheSession().frame.render.programs[kRoleOfEntry[i]])) {
      linked.insert(i);
    }
  }
  return linked;
}

std::set<size_t> AllEntries() {
  std::set<size_t> all;
  for (size_t i = 0; i < kEntries; ++i) all.insert(i);
  return all;
}

// Frames that use every program that frames use, but the on-screen ones.
Bytes RenderFrames() {
  Bytes result;
  for (const bool from_depth : {false, true}) {
    TestFrame frame(Info());
    EXPECT_EQ(frame.Render(from_depth), ZUQEL_SUCCESS);
    result.insert(result.end(), frame.luma.begin(), frame.luma.end());
    result.insert(result.end(), frame.chroma.begin(), frame.chroma.end());
  }
  return result;
}

bool IsZero(std::span<const uint8_t> bytes) {
  return std::all_of(bytes.begin(), bytes.end(),
                     [](uint8_t byte) { return byte == 0; });
}

bool IsZero(const BinaryInfo& info) {
  static constexpr BinaryInfo kZero;
  return std::memcmp(&info, &kZero, sizeof(info)) == 0;
}

class ProgramCacheTest : public testing::Test {
 protected:
  ProgramCacheTest() { ResetSession(); }
  // What a first start makes of zeros.
  Bytes FreshCache() {
    Bytes cache(kCacheBytes);
    const ScopedSession session(Info(), cache.data());
    fresh_log_ = log_.Take();
    return cache;
  }
  [[nodiscard]] std::span<const uint8_t> SessionCopy() const {
    return {cache_.copy.bytes(), cache_.copy.size()};
  }
  void ExpectClosed() const {
    EXPECT_TRUE(IsZero(cache_.binaryInfo));
    EXPECT_FALSE(cache_.copy.exists());
  }

  LogCapture log_;
  Lines fresh_log_;
  ProgramCache& cache_ = TheSession().program_cache;
};

TEST_F(ProgramCacheTest, LayoutFollowsTheLog) {
  const Bytes cache = FreshCache();
  const auto lengths = NumbersOf(fresh_log_, "binaryLength = ");
  ASSERT_EQ(lengths.size(), kSteps);
  std::array<int32_t, kSteps> offsets = {};
  std::exclusive_scan(lengths.begin(), lengths.end(), offsets.begin(),
                      kHeadBytes);
  std::vector<int32_t> ends(kSteps);
  std::transform(lengths.begin(), lengths.end(), offsets.begin(), ends.begin(),
                 std::plus<>());
  EXPECT_EQ(NumbersOf(fresh_log_, "dst_offset = "), ends);
  EXPECT_EQ(WordAt(cache, 0), 92);
  EXPECT_EQ(WordAt(cache, kValidWord), 1);
  EXPECT_TRUE(
      IsZero(std::span(cache).subspan(static_cast<size_t>(ends.back()))))
      << "bytes behind the last binary stay";

  // Each step's bytes are those of the program that its entry names.
  const ScopedSession session(Info(), nullptr);
  const auto get_binary = GetExtensions().GetProgramBinary;
  ASSERT_NE(get_binary, nullptr);
  for (size_t entry = 0; entry < kEntries; ++entry) {
    SCOPED_TRACE(entry);
    const size_t step = kStepOfEntry[entry];
    EXPECT_EQ(WordAt(cache, 2 * entry), offsets[step]);
    EXPECT_EQ(WordAt(cache, 2 * entry + 1), lengths[step]);
    EXPECT_EQ(CacheEntryOf(kRoleOfEntry[entry]), entry);
    Bytes binary(static_cast<size_t>(lengths[step]));
    GLenum format = 0;
    GLsizei written = 0;
    get_binary(TheSession().frame.render.programs[kRoleOfEntry[entry]],
               lengths[step], &written, &format, binary.data());
    EXPECT_EQ(written, lengths[step]);
    const auto at = [&](size_t i) { return cache.begin() + offsets[i]; };
    EXPECT_TRUE(std::equal(binary.begin(), binary.end(), at(step)));
    // The sixth step's bytes lie unreferenced in front of their twin.
    if (kRoleOfEntry[entry] == Nv21ToRgbProgram) {
      EXPECT_TRUE(std::equal(binary.begin(), binary.end(), at(5)));
    }
  }
}

TEST_F(ProgramCacheTest, ValidCacheCompilesNothing) {
  Cache cache(kCacheBytes);
  Bytes compiled;
  {
    const Calls before;
    const ScopedSession session(Info(), cache.data());
    EXPECT_EQ(Since(before), kBuiltAndCompiled);
    EXPECT_EQ(LinkedEntries(), AllEntries());
    EXPECT_TRUE(IsZero(cache_.binaryInfo));
    EXPECT_EQ(SessionCopy().size(), kCacheBytes);
    EXPECT_TRUE(IsZero(SessionCopy()));
    compiled = RenderFrames();
  }
  ExpectClosed();
  const Bytes kept(cache.data(), cache.data() + kCacheBytes);
  {
    const Calls before;
    const ScopedSession session(Info(), cache.data());
    EXPECT_EQ(Since(before), kNone);
    EXPECT_EQ(LinkedEntries(), AllEntries());
    EXPECT_EQ(std::memcmp(&cache_.binaryInfo, kept.data(), kHeadBytes), 0);
    EXPECT_TRUE(std::equal(kept.begin(), kept.end(), SessionCopy().begin(),
                           SessionCopy().end()));
    EXPECT_EQ(RenderFrames(), compiled);
  }
  ExpectClosed();
  EXPECT_TRUE(std::equal(kept.begin(), kept.end(), cache.data()));
}

TEST_F(ProgramCacheTest, WithoutACacheProgramsAreCompiled) {
  const Calls before;
  const ScopedSession session(Info(), nullptr);
  EXPECT_EQ(Since(before), kAllCompiled);
  EXPECT_EQ(LinkedEntries(), AllEntries());
  EXPECT_EQ(SessionCopy().size(), kCacheBytes);
  EXPECT_TRUE(NumbersOf(log_.Take(), "binaryInfo isValid = ").empty());
}

struct CacheRow {
  std::string name;
  std::set<size_t> loaded;  // entries; none: the cache is refused
  std::function<void(std::span<uint8_t>)> change;
};

std::vector<CacheRow> CacheRows() {
  constexpr int32_t kMax = INT32_MAX, kMin = INT32_MIN;
  constexpr auto kSize = static_cast<int32_t>(kCacheBytes);
  std::vector<CacheRow> rows;
  for (const int32_t valid : {0, 2, -1, 1 << 24, kMin}) {
    rows.push_back({"isValid " + std::to_string(valid), {}, [=](auto cache) {
                      SetWord(cache, kValidWord, valid);
                    }});
  }
  rows.push_back({"flipped bytes", {}, [](auto cache) {
                    for (uint8_t& byte : cache.subspan(kHeadBytes))
                      byte = static_cast<uint8_t>(~byte);
                  }});
  rows.push_back({"binaries of zeros", {}, [](auto cache) {
                    std::fill(cache.begin() + kHeadBytes, cache.end(), 0);
                  }});
  using Entry = BinaryInfo::Entry;
  constexpr std::array<Entry, 16> kOutside = {{{-1, 2},
                                               {kMin, 100},
                                               {kMax, 1},
                                               {kMax, kMax},
                                               {kMin, kMin},
                                               {kSize, 1},
                                               {kSize, 0},
                                               {kSize - 1, 2},
                                               {92, kSize - 91},
                                               {92, kMax},
                                               {92, -1},
                                               {92, 0},
                                               {1, kMax},
                                               {kSize, kMin},
                                               {0, kSize + 1},
                                               {kSize + 1, -1}}};
  for (const Entry& entry : kOutside) {
    // Everywhere, and everywhere but in one entry.
    for (const auto& good : {std::set<size_t>{}, std::set<size_t>{4}}) {
      rows.push_back({"entries (" + std::to_string(entry.offset) + ", " +
                          std::to_string(entry.length) + ")",
                      good, [=](auto cache) {
                        for (size_t i = 0; i < kEntries; ++i) {
                          if (!good.contains(i)) SetEntry(cache, i, entry);
                        }
                      }});
    }
  }
  for (size_t good = 0; good < kEntries; ++good) {
    rows.push_back(
        {"only entry " + std::to_string(good), {good}, [=](auto cache) {
           for (size_t i = 0; i < kEntries; ++i) {
             if (i != good) SetEntry(cache, i, {});
           }
         }});
  }
  rows.push_back({"unused bytes changed", AllEntries(),
                  [](auto cache) { cache[kCacheBytes - 1] = 1; }});
  return rows;
}

// The link status of each entry in the order of loading.
Lines LoadLines(const std::set<size_t>& loaded) {
  Lines lines;
  for (const size_t entry : kLoadOrder) {
    const bool is_loaded = loaded.contains(entry);
    lines.emplace_back(is_loaded ? "*VX* 1" : "*VX* 0");
    lines.emplace_back(is_loaded ? "*VX* GL_TRUE ." : "*VX* GL_FALSE .");
  }
  return lines;
}

TEST_F(ProgramCacheTest, OneGoodEntryIsEnough) {
  const Bytes fresh = FreshCache();
  const int32_t end_of_fresh = WordAt(fresh, 20) + WordAt(fresh, 21);
  for (const CacheRow& row : CacheRows()) {
    SCOPED_TRACE(row.name);
    Cache cache(fresh);
    row.change(cache.span());
    const Bytes changed(cache.data(), cache.data() + kCacheBytes);
    const bool accepted = !row.loaded.empty();
    const Calls before;
    {
      const ScopedSession session(Info(), cache.data());
      EXPECT_EQ(session.status(), ZUQEL_SUCCESS);
      EXPECT_EQ(Since(before), accepted ? kNone : kBuiltAndCompiled);
      EXPECT_EQ(LinkedEntries(), accepted ? row.loaded : AllEntries());
      EXPECT_EQ(IsZero(cache_.binaryInfo), !accepted);
      EXPECT_EQ(IsZero(SessionCopy()), !accepted);
      TestFrame frame(Info());
      EXPECT_EQ(frame.Render(), ZUQEL_SUCCESS);
    }
    const Lines log = log_.Take();
    const auto begin = std::find(
        log.begin(), log.end(),
        "binaryInfo isValid = " + std::to_string(WordAt(changed, kValidWord)));
    ASSERT_NE(begin, log.end());
    if (WordAt(changed, kValidWord) == 1) {
      const Lines expected = LoadLines(row.loaded);
      EXPECT_TRUE(std::equal(expected.begin(), expected.end(), begin + 1));
    }
    // What is rebuilt is what was built at first; the rest stays.
    Bytes expected = changed;
    if (!accepted) std::copy_n(fresh.begin(), end_of_fresh, expected.begin());
    EXPECT_TRUE(std::equal(expected.begin(), expected.end(), cache.data()));
  }
}

TEST_F(ProgramCacheTest, BuilderStaysInsideTheCache) {
  FreshCache();
  const auto lengths = NumbersOf(fresh_log_, "binaryLength = ");
  const ScopedSession session(Info(), nullptr);
  log_.Take();
  // Large programs until none fits, then small ones.
  const int32_t large = lengths[kStepOfEntry[9]];
  const int32_t small = lengths[kStepOfEntry[2]];
  ASSERT_GT(large, small);
  constexpr auto kSize = static_cast<int32_t>(kCacheBytes);
  const auto count = static_cast<size_t>((kSize - kHeadBytes) / large + 2);
  std::vector<CacheStep> steps(count, {&SourceOf(AllInFocusWeightProgram), 3});
  const auto small_count = static_cast<size_t>(large / small + 2);
  steps.resize(count + small_count, {&SourceOf(CopyProgram), 4});

  Lines expected;
  std::array<int32_t, kEntries> offsets = {};
  int32_t end = kHeadBytes;
  for (const CacheStep& step : steps) {
    const int32_t length = step.entry == 3 ? large : small;
    if (length > kSize - end) {
      expected.emplace_back("FAIL.");
      continue;
    }
    offsets.at(step.entry) = end;
    end += length;
    expected.push_back("binaryLength = " + std::to_string(length));
    expected.push_back("dst_offset = " + std::to_string(end));
  }
  Cache cache(kCacheBytes);
  BuildProgramCache(steps, cache.span().first<kCacheBytes>());
  EXPECT_EQ(log_.Take(), expected);
  EXPECT_GT(std::count(expected.begin(), expected.end(), "FAIL."), 1);
  EXPECT_EQ(WordAt(cache.span(), kValidWord), 1);
  for (size_t i = 0; i < kEntries; ++i) {
    EXPECT_EQ(WordAt(cache.span(), 2 * i), offsets.at(i)) << i;
  }
}

TEST_F(ProgramCacheTest, ProgramsThatDoNotLinkLeaveTheirEntries) {
  Cache cache(kCacheBytes);
  driver::SetFailing(driver::Call::kLinkProgram, true);
  { const ScopedSession session(Info(), cache.data()); }
  driver::SetFailing(driver::Call::kLinkProgram, false);
  const Lines log = log_.Take();
  EXPECT_EQ(std::count(log.begin(), log.end(), "FAIL."), int{kSteps});
  for (size_t i = 0; i < kCacheBytes; ++i) {
    ASSERT_EQ(cache.data()[i], i == 4 * kValidWord ? 1 : 0) << i;
  }
  const Calls before;
  const ScopedSession session(Info(), cache.data());
  EXPECT_EQ(Since(before), kBuiltAndCompiled) << "nothing in it loads";
  EXPECT_EQ(WordAt(cache.span(), 0), 92);
}

// The refocus-map buffers, by the names of the log.
Lines PointerLines(const std::string& event) {
  constexpr std::array<std::pair<BufferRole, const char*>, 3> kBuffers = {
      {{BufferRole::kInputDepthRgbaRm, "pucInputDepthRGBA_RM"},
       {BufferRole::kWeightMapRm, "WeightMap_buffer_RM"},
       {BufferRole::kWeightMapCharRm, "WeightMap_buffer_char_RM"}}};
  Lines lines;
  for (const auto& [role, name] : kBuffers) {
    std::array<char, 80> text = {};
    const void* bytes = TheSession().buffers[role].bytes();
    static_cast<void>(std::snprintf(
        text.data(), text.size(), "%s %s = 0x%x", event.c_str(), name,
        static_cast<unsigned>(reinterpret_cast<uintptr_t>(bytes))));
    lines.emplace_back(text.data());
  }
  lines.push_back(event + " gLastDepth = 0x0");
  return lines;
}

void Append(Lines& lines, const Lines& more) {
  lines.insert(lines.end(), more.begin(), more.end());
}

TEST_F(ProgramCacheTest, StartLogsTheBuffersItAbandonsAndMakes) {
  const CallerContext caller;
  Bytes cache(kCacheBytes);
  const auto begun = [] {
    Lines lines = {"zuQelRT_GLInitV1_1 +", "Qel status pass"};
    Append(lines, PointerLines("Init pointer status"));
    lines.emplace_back("gInfo.offmode = 1, gInfo.srcformat = 0 InitV1_1");
    return lines;
  };
  for (const bool is_valid : {false, true, true}) {
    Lines expected = begun();
    const Lines old = PointerLines("Init");
    log_.Take();
    const ScopedSession session(Info(), cache.data());
    const Lines log = log_.Take();
    Append(expected, {"check context + ", "check context - ", "Dot enable = 0",
                      "Graphics buffer flag = 0",
                      "binaryInfo isValid = " + std::to_string(is_valid)});
    if (is_valid) Append(expected, LoadLines(AllEntries()));
    const auto lengths = NumbersOf(log, "binaryLength = ");
    const auto ends = NumbersOf(log, "dst_offset = ");
    for (size_t i = 0; !is_valid && i < kSteps; ++i) {
      Append(expected, {"binaryLength = " + std::to_string(lengths.at(i)),
                        "dst_offset = " + std::to_string(ends.at(i))});
    }
    const Lines fresh = PointerLines("Init");
    Append(expected, fresh);
    Append(expected, {"zuQelRT_GLInitV1_1 -"});
    EXPECT_EQ(log, expected);
    for (size_t i = 0; i < 3; ++i) {
      EXPECT_NE(fresh[i], old[i]) << "made anew, beside the abandoned one";
    }
  }
  // A refused calibration comes after that.
  const Lines expected = begun();
  const Bytes before = cache;
  const GLInitInfo info = Info();
  log_.Take();
  EXPECT_EQ(
      zuQelRT_GLInitV1_1(cache.data(), 7, nullptr, 0, &info, cache.data()),
      ZUQEL_CALIB_BAD_LENGTH);
  EXPECT_EQ(log_.Take(), expected);
  EXPECT_EQ(cache, before);
  EXPECT_EQ(PointerLines("")[0], " pucInputDepthRGBA_RM = 0x0");
  zuQelRT_GLClose();
}

}  // namespace
}  // namespace zuqel
