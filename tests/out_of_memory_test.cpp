// Calls that find no memory: no exception leaves them, and what they are given
// stays as it is.
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "fresh_session.h"
#include "library_allocations.h"
#include "scoped_property.h"

namespace zuqel {
namespace {

using library_allocations::BytesHeld;
using library_allocations::FailingBlock;
using library_allocations::FailingNew;

void RenderDumped(const GLInitInfo& info) {
  const std::string folder = testing::TempDir();
  const ScopedProperty dumps("persist.zu.VLGLbokeh.readfile", "1");
  const ScopedProperty directory("persist.zu.LVGLbokeh.fileDir",
                                 folder.c_str());
  const CallerFrame frame(info);
  const FailingNew failing;
  EXPECT_EQ(frame.Render({}), 0U);
}

TEST(OutOfMemory, NoExceptionLeavesACall) {
  ResetSession();
  std::vector<uint8_t> cache(kProgramCacheBytes);
  constexpr std::array<uint8_t, 512> kRecord = {};
  const GLInitInfo info = SmallInfo();
  for (int session = 0; session < 2; ++session) {
    {
      const FailingNew failing;
      zuQelRT_GLInitV1_1(kRecord.data(), uint32_t{kRecord.size()}, nullptr, 0,
                         &info, cache.data());
      zuQelRT_GenRefocusMap_init();
      zuQelRT_GenRefocusMap_init();
    }
    PinDriverLibraries();
    RenderDumped(info);
    const FailingNew failing;
    if (session == 1) zuQelRT_GenRefocusMap_Deinit();
    zuQelRT_GLClose();
  }
}

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

}  // namespace
}  // namespace zuqel
