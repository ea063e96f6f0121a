// Counts the calls that the library makes to the desktop's EGL, and makes
// chosen ones fail, so that tests can go through the failures of a driver.
#ifndef PLATFORM_LINUX_DRIVER_ADAPTATION_H_
#define PLATFORM_LINUX_DRIVER_ADAPTATION_H_

namespace zuqel::driver {

enum class Call {
  kChooseConfig,
  kCompileShader,
  kCreateContext,
  kCreatePbufferSurface,
  kDestroyContext,
  kDestroySurface,
  kGetAttribLocation,
  kGetDisplay,
  kGetUniformLocation,
  kInitialize,
  kLinkProgram,
  kMakeCurrent,
  kProgramBinaryLength,  // when it fails, a program has no binary
  kTerminate,
  kCount,
};

// Makes every later call of this kind fail without reaching the driver, until
// this is called again with `fails` false. A call made to fail leaves
// EGL_BAD_ALLOC for the library's next eglGetError.
void SetFailing(Call call, bool fails);

// Calls since the process began, including failed ones.
int CallCount(Call call);

}  // namespace zuqel::driver

#endif  // PLATFORM_LINUX_DRIVER_ADAPTATION_H_
