// Collects what GL and EGL find wrong.
#ifndef TESTS_GL_MESSAGES_H_
#define TESTS_GL_MESSAGES_H_

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GLES2/gl2.h>
#include <GLES2/gl2ext.h>

#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zuqel {

// One lives at a time. Besides errors it takes the driver's messages of
// undefined, deprecated and unportable use. Advice on speed, and notices of
// what went well, are no faults: a driver gives them as it likes.
class GlMessages {
 public:
  GlMessages() {
    current_ = this;
    eglGetError();
    SetEglCallback(&OnEglMessage);
  }
  ~GlMessages() { SetEglCallback(nullptr); }
  GlMessages(const GlMessages&) = delete;
  GlMessages& operator=(const GlMessages&) = delete;

  // Has the current context report from now on, where it can.
  static bool ListenToContext() {
    const auto set_callback =
        LookUp<PFNGLDEBUGMESSAGECALLBACKKHRPROC>("glDebugMessageCallbackKHR");
    const auto* extensions =
        reinterpret_cast<const char*>(glGetString(GL_EXTENSIONS));
    if (set_callback == nullptr || extensions == nullptr ||
        std::string(extensions).find("GL_KHR_debug") == std::string::npos) {
      return false;
    }
    glEnable(GL_DEBUG_OUTPUT_KHR);
    glEnable(GL_DEBUG_OUTPUT_SYNCHRONOUS_KHR);
    set_callback(&OnGlMessage, nullptr);
    return true;
  }

  static void StopListening() { glDisable(GL_DEBUG_OUTPUT_KHR); }

  // Lets `call` answer for what has come up since the last time. EGL keeps the
  // error of its latest call only.
  void EndOf(const std::string& call) {
    const auto egl_error = static_cast<unsigned>(eglGetError());
    if (egl_error != EGL_SUCCESS) Add("eglGetError", egl_error, "");
    const bool has_context = eglGetCurrentContext() != EGL_NO_CONTEXT;
    const GLenum gl_error = has_context ? glGetError() : GL_NO_ERROR;
    if (gl_error != GL_NO_ERROR) Add("glGetError", gl_error, "");
    for (const std::string& text : pending_) found_.push_back(call + text);
    pending_.clear();
  }

  std::vector<std::string> Take() { return std::exchange(found_, {}); }

 private:
  template <typename Function>
  static Function LookUp(const char* name) {
    return reinterpret_cast<Function>(eglGetProcAddress(name));
  }

  static void SetEglCallback(EGLDEBUGPROCKHR callback) {
    const auto control =
        LookUp<PFNEGLDEBUGMESSAGECONTROLKHRPROC>("eglDebugMessageControlKHR");
    if (control != nullptr) control(callback, nullptr);
  }

  static void Add(const char* source, unsigned code, const char* text) {
    std::ostringstream line;
    line << ": " << source << " 0x" << std::hex << code << " " << text;
    current_->pending_.push_back(line.str());
  }

  static void GL_APIENTRY OnGlMessage(GLenum, GLenum type, GLuint,
                                      GLenum severity, GLsizei,
                                      const GLchar* text, const void*) {
    const bool is_fault = type == GL_DEBUG_TYPE_ERROR_KHR ||
                          type == GL_DEBUG_TYPE_UNDEFINED_BEHAVIOR_KHR ||
                          type == GL_DEBUG_TYPE_DEPRECATED_BEHAVIOR_KHR ||
                          type == GL_DEBUG_TYPE_PORTABILITY_KHR;
    if (is_fault && severity != GL_DEBUG_SEVERITY_NOTIFICATION_KHR) {
      Add("GL message", type, text);
    }
  }
  // Mesa reports every graphics processor that it looks for in vain before it
  // takes the software renderer. A failed initialisation shows in what follows.
  static void EGLAPIENTRY OnEglMessage(EGLenum error, const char* call, EGLint,
                                       EGLLabelKHR, EGLLabelKHR, const char*) {
    if (std::string_view(call) == "eglInitialize") return;
    Add("EGL message", error, call);
  }

  static inline GlMessages* current_ = nullptr;
  std::vector<std::string> pending_, found_;
};

}  // namespace zuqel

#endif  // TESTS_GL_MESSAGES_H_
