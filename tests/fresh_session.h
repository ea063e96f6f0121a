// A session that begins as the process does, and its log, for tests that link
// the library's objects.
#ifndef TESTS_FRESH_SESSION_H_
#define TESTS_FRESH_SESSION_H_

#include <gtest/gtest.h>
#include <zuQelRT_GL.h>

#include <string>

#include "caller_frame.h"
#include "log_capture.h"
#include "test_session.h"

namespace zuqel {

// The log of making the context of one slot.
inline std::string CreationLog(int index) {
  return "There is no openGL context, going to create opengl context, tid = #, "
         "index " +
         std::to_string(index) + R"(
OpenGLCreateContextSurface
eglDisplay return successfully
eglInitialize successfully
eglChooseConfig successfully
eglCreatePbufferSurface successfully
eglCreateContext successfully
eglMakeCurrent successfully
)";
}

// Every test begins as the process does and can look at the log, where a space
// at the end of a line is shown as "_".
class FreshSessionTest : public testing::Test {
 protected:
  FreshSessionTest() { ResetSession(); }
  ~FreshSessionTest() override { zuQelRT_GLClose(); }

  // The lines since the last call, each with a line feed.
  std::string TakeLog() {
    std::string text;
    for (std::string& line : log_.Take()) {
      if (line.ends_with(' ')) line.back() = '_';
      text += line + "\n";
    }
    return text;
  }

  Session& session_ = TheSession();

 private:
  LogCapture log_;
};

}  // namespace zuqel

#endif  // TESTS_FRESH_SESSION_H_
