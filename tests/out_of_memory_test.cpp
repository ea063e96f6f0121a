// Calls that find no memory: no exception leaves them, and what they are given
// stays as it is.
#include <gtest/gtest.h>
#include <sys/system_properties.h>

#include <array>
#include <string>
#include <vector>

#include "fresh_session.h"
#include "library_allocations.h"
#include "test_scene.h"

namespace zuqel {
namespace {

using library_allocations::BytesHeld;
using library_allocations::FailingBlock;
using library_allocations::FailingNew;

void RenderDumped(const GLInitInfo& info) {
  const std::string folder = testing::TempDir();
  __system_property_set("persist.zu.VLGLbokeh.readfile", "1");
  __system_property_set("persist.zu.LVGLbokeh.fileDir", folder.c_str());
  const CallerFrame frame(info);
  {
    const FailingNew failing;
    EXPECT_EQ(frame.Render({}), 0U);
  }
  __system_property_set("persist.zu.VLGLbokeh.readfile", "");
  __system_property_set("persist.zu.LVGLbokeh.fileDir", "");
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

}  // namespace
}  // namespace zuqel
