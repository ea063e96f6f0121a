// Calls that find no memory: what they are given stays as it is.
#include <gtest/gtest.h>
#include <zuQelRT_generators.h>

#include <algorithm>
#include <array>
#include <vector>

#include "driver_turns.h"
#include "fresh_session.h"
#include "library_allocations.h"
#include "scoped_property.h"

namespace zuqel {
namespace {

using library_allocations::BytesHeld;
using library_allocations::FailingBlock;

// Every block that an initialisation takes, in turn.
TEST(OutOfMemory, ARefusedInitialisationKeepsNothing) {
  const GLInitInfo info = SmallInfo();
  std::vector<uint8_t> cache(kProgramCacheBytes);
  const auto initialise = [&](bool cached) {
    return cached ? InitCachedSession(info, cache.data()) : InitSession(info);
  };
  for (const bool cached : {false, true}) {
    ResetSession();
    const int before = library_allocations::Count();
    EXPECT_EQ(initialise(cached), 0U);
    const int blocks = library_allocations::Count() - before;
    EXPECT_GT(blocks, 0);
    zuQelRT_GLClose();
    zuQelRT_GenRefocusMap_Deinit();
    for (int number = 1; number <= blocks; ++number) {
      SCOPED_TRACE(testing::Message() << "block " << number << " of " << blocks
                                      << ", cached " << cached);
      {
        const FailingBlock failing(number);
        EXPECT_EQ(initialise(cached), 0x200EU);
      }
      EXPECT_EQ(BytesHeld(), 0U);
      EXPECT_EQ(TheSession().QelMode, kModeClosed);
      const CallerFrame frame(info);
      const auto contents = frame.Contents();
      EXPECT_EQ(frame.Render({}), 0U);
      EXPECT_EQ(frame.Contents(), contents);
      EXPECT_EQ(BytesHeld(), 0U);
    }
  }
}

// What a call may change, as it is handed in.
struct Handed {
  explicit Handed(const GLInitInfo& info) : frame(info), map(size_t{64} * 48) {
    std::fill(map.span().begin(), map.span().end(), uint8_t{77});
  }

  [[nodiscard]] std::vector<uint16_t> Contents() const {
    std::vector<uint16_t> all = frame.Contents();
    all.insert(all.end(), map.span().begin(), map.span().end());
    all.insert(all.end(), out.begin(), out.end());
    return all;
  }

  CallerFrame frame;
  GuardedMemory<uint8_t> map;
  std::array<uint32_t, 3> out = {7, 7, 7};
};

struct CallCase {
  const char* name;
  void (*call)(Handed&);
};

// The generators' two kinds of arguments.
template <typename Y>
void Generate(uint32_t (*generator)(uint8_t*, uint16_t*, uint32_t, Y, uint32_t*,
                                    uint32_t*, uint32_t*),
              Handed& handed) {
  generator(handed.map.data(), handed.frame.depth.data(), 2, 2,
            handed.out.data(), &handed.out[1], &handed.out[2]);
}
void Generate(uint32_t (*generator)(uint8_t*, uint16_t*, uint32_t, int32_t),
              Handed& handed) {
  generator(handed.map.data(), handed.frame.depth.data(), 2, 2);
}

#define GENERATOR_CASE(id, name, call, y_type, input, map_size, summary) \
  {name, [](Handed& handed) { Generate(call, handed); }},
constexpr auto kCalls = std::to_array<CallCase>(
    {{"frame", [](Handed& handed) { EXPECT_EQ(handed.frame.Render({}), 0U); }},
     {"frame from depth",
      [](Handed& handed) {
        EXPECT_EQ(handed.frame.Render({.from_depth = true}), 0U);
      }},
     {"frame on the CPU",
      [](Handed& handed) {
        zuQelRT_Bokeh_ZU4410_DisparityBase_Expansion_CPU(
            handed.frame.luma.data(), handed.frame.chroma.data(),
            handed.frame.depth.data(), 9, 9);
      }},
     ZUQEL_REFOCUS_GENERATORS(GENERATOR_CASE)});
#undef GENERATOR_CASE

// Odd and planar, with dumps and a focus dot: everything that a call may
// reserve or change early.
constexpr GLInitInfo kOddInfo = {61, 47, 16, 12, 32, 24, 61, 47, 0, 1, 2, 0};

TEST(OutOfMemory, FailedCallsTouchNothingOfTheCallers) {
  const ScopedProperty dumps("persist.zu.VLGLbokeh.readfile", "1");
  const ScopedProperty directory("persist.zu.LVGLbokeh.fileDir", "/nowhere/");
  const ScopedProperty dot("persist.zu.LVGLbokeh.FocusDot", "1");
  const auto untouched = Handed(kOddInfo).Contents();
  int turn = 0;
  for (const CallCase& row : kCalls) {
    for (const bool maps_have_started : {true, false}) {
      // What the call leaves in a session of its own, so that it takes all that
      // it needs. The `failing`-th block is not to be had; 0 for none.
      int blocks = 0;
      const auto run = [&](int failing) {
        const ScopedSession session(kOddInfo);
        EXPECT_EQ(session.status(), 0U);
        // Ending the maps takes their buffers away.
        (maps_have_started ? zuQelRT_GenRefocusMap_init
                           : zuQelRT_GenRefocusMap_Deinit)();
        Handed handed(kOddInfo);
        const int before = library_allocations::Count();
        {
          const FailingBlock block(failing);
          row.call(handed);
        }
        blocks = library_allocations::Count() - before;
        zuQelRT_GenRefocusMap_Deinit();
        return handed.Contents();
      };
      ResetSession();
      const auto unfailed = run(0);
      const int needed = blocks;
      EXPECT_NE(unfailed, untouched) << row.name;
      EXPECT_GT(needed, 0) << row.name;
      for (int number = 1; number <= needed; ++number) {
        if (!TakesTurn(turn++, 3)) continue;
        const auto failed = run(number);
        EXPECT_TRUE(failed == untouched || failed == unfailed)
            << row.name << ", block " << number << " of " << needed
            << ", maps started " << maps_have_started;
      }
    }
  }
}

}  // namespace
}  // namespace zuqel
