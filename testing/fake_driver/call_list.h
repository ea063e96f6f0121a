// The calls that the fake driver knows, and whether each can fail.
#ifndef TESTING_FAKE_DRIVER_CALL_LIST_H_
#define TESTING_FAKE_DRIVER_CALL_LIST_H_

// Asking for errors, texts and what is current always succeeds, as does setting
// plain state, which takes no memory; and a deletion that failed would leave
// nobody with a name to delete.
#define ZUQEL_FAKE_CALLS(ROW)             \
  ROW(eglChooseConfig, true)              \
  ROW(eglCreateContext, true)             \
  ROW(eglCreateImageKHR, true)            \
  ROW(eglCreatePbufferSurface, true)      \
  ROW(eglDestroyContext, true)            \
  ROW(eglDestroyImageKHR, false)          \
  ROW(eglDestroySurface, true)            \
  ROW(eglGetCurrentContext, false)        \
  ROW(eglGetCurrentDisplay, false)        \
  ROW(eglGetCurrentSurface, false)        \
  ROW(eglGetDisplay, true)                \
  ROW(eglGetError, false)                 \
  ROW(eglGetPlatformDisplay, true)        \
  ROW(eglGetProcAddress, true)            \
  ROW(eglInitialize, true)                \
  ROW(eglMakeCurrent, true)               \
  ROW(eglQueryString, true)               \
  ROW(eglTerminate, true)                 \
  ROW(glActiveTexture, false)             \
  ROW(glAttachShader, true)               \
  ROW(glBindAttribLocation, true)         \
  ROW(glBindBuffer, false)                \
  ROW(glBindFramebuffer, true)            \
  ROW(glBindRenderbuffer, true)           \
  ROW(glBindTexture, true)                \
  ROW(glBindVertexArray, true)            \
  ROW(glBlendFunc, false)                 \
  ROW(glBufferData, true)                 \
  ROW(glClear, true)                      \
  ROW(glClearColor, false)                \
  ROW(glColorMask, false)                 \
  ROW(glCompileShader, true)              \
  ROW(glCreateProgram, true)              \
  ROW(glCreateShader, true)               \
  ROW(glDeleteBuffers, false)             \
  ROW(glDeleteFramebuffers, false)        \
  ROW(glDeleteProgram, false)             \
  ROW(glDeleteRenderbuffers, false)       \
  ROW(glDeleteShader, false)              \
  ROW(glDeleteTextures, false)            \
  ROW(glDepthFunc, false)                 \
  ROW(glDetachShader, false)              \
  ROW(glDisable, false)                   \
  ROW(glDisableVertexAttribArray, false)  \
  ROW(glDrawElements, true)               \
  ROW(glEGLImageTargetTexture2DOES, true) \
  ROW(glEnable, false)                    \
  ROW(glEnableVertexAttribArray, false)   \
  ROW(glFinish, false)                    \
  ROW(glFlush, false)                     \
  ROW(glFramebufferRenderbuffer, true)    \
  ROW(glFramebufferTexture2D, true)       \
  ROW(glGenBuffers, true)                 \
  ROW(glGenFramebuffers, true)            \
  ROW(glGenRenderbuffers, true)           \
  ROW(glGenTextures, true)                \
  ROW(glGenVertexArrays, true)            \
  ROW(glGetAttribLocation, true)          \
  ROW(glGetBooleanv, true)                \
  ROW(glGetError, false)                  \
  ROW(glGetIntegerv, true)                \
  ROW(glGetProgramBinaryOES, true)        \
  ROW(glGetProgramiv, true)               \
  ROW(glGetString, false)                 \
  ROW(glGetUniformLocation, true)         \
  ROW(glGetVertexAttribPointerv, true)    \
  ROW(glGetVertexAttribiv, true)          \
  ROW(glIsEnabled, true)                  \
  ROW(glLinkProgram, true)                \
  ROW(glPixelStorei, false)               \
  ROW(glProgramBinaryOES, true)           \
  ROW(glReadPixels, true)                 \
  ROW(glRenderbufferStorage, true)        \
  ROW(glScissor, false)                   \
  ROW(glShaderSource, true)               \
  ROW(glTexImage2D, true)                 \
  ROW(glTexParameteri, false)             \
  ROW(glTexSubImage2D, true)              \
  ROW(glUniform1f, true)                  \
  ROW(glUniform1i, true)                  \
  ROW(glUniformMatrix4fv, true)           \
  ROW(glUseProgram, false)                \
  ROW(glVertexAttribDivisor, false)       \
  ROW(glVertexAttribIPointer, false)      \
  ROW(glVertexAttribPointer, false)       \
  ROW(glViewport, false)

#endif  // TESTING_FAKE_DRIVER_CALL_LIST_H_
