// The display that the library draws on: the one that the environment names, or
// one of a GPU.
#ifndef PLATFORM_LINUX_EGL_DISPLAY_H_
#define PLATFORM_LINUX_EGL_DISPLAY_H_

#include <EGL/egl.h>
#include <EGL/eglext.h>

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zuqel::driver {

// The property that holds the number of the device to draw on.
inline constexpr const char* kDeviceProperty = "zuqel.device";

// A GPU, or a renderer in software.
struct Device {
  EGLDeviceEXT handle = EGL_NO_DEVICE_EXT;
  bool is_software = false;
  std::string name, file;  // empty where the driver does not give them
};

// In EGL's order, which numbers them from 0; none where EGL cannot tell.
std::vector<Device> Devices();

// EGL's default display is the window system's, which the environment names.
enum class Platform { kDefault, kDevice, kSurfaceless };

struct Place {
  bool operator==(const Place&) const = default;

  Platform platform = Platform::kSurfaceless;
  size_t device = 0;  // of Platform::kDevice
};

// Where to look for a display; the first that opens is taken. A `chosen` device
// is the only place, or none if it does not exist. Else the default display, if
// the environment names one, goes before devices of hardware, and these before
// the surfaceless platform, where drivers may render in software.
std::vector<Place> PlacesOfDisplays(std::span<const Device> devices,
                                    std::optional<size_t> chosen,
                                    bool names_display);

struct Display {
  EGLDisplay handle = EGL_NO_DISPLAY;
  Place place;
};

// What the library gets for EGL_DEFAULT_DISPLAY; no handle if the chosen device
// does not exist. The display may have been initialised. Once in a process, a
// line of the log says that the environment's display cannot be opened, which
// is not tried again.
Display FindDisplay();

// True for a name in a list separated by spaces, which may be null.
bool HasName(const char* list, std::string_view name);

// True if FindDisplay could not open the display that the environment names.
bool DefaultDisplayFailed();

// Settings that the driver reads once, when it is first used. The library's own
// first use is preceded by this; a program that draws with OpenGL before that
// calls it earlier.
void PrepareDriver();

// As eglInitialize, after PrepareDriver.
EGLBoolean Initialise(EGLDisplay display, EGLint* major, EGLint* minor);

}  // namespace zuqel::driver

#endif  // PLATFORM_LINUX_EGL_DISPLAY_H_
