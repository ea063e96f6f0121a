// The driver that tests run on is the one that was asked for.
#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>

#include "caller_context.h"
#include "gl_driver.h"

namespace zuqel {
namespace {

TEST(GlDriver, IsTheOneAskedFor) {
  const CallerContext caller;
  ASSERT_TRUE(caller.is_current());
  for (const GLenum name :
       {GLenum{GL_VENDOR}, GLenum{GL_RENDERER}, GLenum{GL_VERSION}}) {
    std::cout << glGetString(name) << "\n";
  }
  const char* asked = std::getenv("ZUQEL_GL_DRIVER");
  if (asked != nullptr) {
    EXPECT_EQ(CurrentGlDriver().name, asked);
  }
}

}  // namespace
}  // namespace zuqel
