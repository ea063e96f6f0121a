// Chooses a display. Calls made here reach the driver.
#include "egl_display.h"

#include <android/log.h>
#include <sys/system_properties.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <system_error>

namespace zuqel::driver {
namespace {

constexpr const char* kTag = "zuqel";

std::atomic<bool> default_display_failed{false};

template <typename Function>
Function LookUp(const char* name) {
  return reinterpret_cast<Function>(eglGetProcAddress(name));
}

bool IsSet(const char* variable) {
  const char* value = std::getenv(variable);
  return value != nullptr && value[0] != '\0';
}

// What is not a number is a device that does not exist.
std::optional<size_t> ChosenDevice() {
  std::array<char, PROP_VALUE_MAX> text = {};
  const int length = __system_property_get(kDeviceProperty, text.data());
  if (length == 0) return std::nullopt;
  const char* const end = text.data() + length;
  size_t number = 0;
  const auto [rest, error] = std::from_chars(text.data(), end, number);
  return error == std::errc() && rest == end ? number : SIZE_MAX;
}

EGLDisplay DisplayAt(const Place& place, std::span<const Device> devices) {
  if (place.platform == Platform::kDefault) {
    return eglGetDisplay(EGL_DEFAULT_DISPLAY);
  }
  const auto get_display =
      LookUp<PFNEGLGETPLATFORMDISPLAYEXTPROC>("eglGetPlatformDisplayEXT");
  EGLDisplay display = EGL_NO_DISPLAY;
  if (get_display != nullptr) {
    display = place.platform == Platform::kDevice
                  ? get_display(EGL_PLATFORM_DEVICE_EXT,
                                devices[place.device].handle, nullptr)
                  : get_display(EGL_PLATFORM_SURFACELESS_MESA,
                                EGL_DEFAULT_DISPLAY, nullptr);
  }
  // A driver may know no platform but its own.
  const bool has_other =
      display == EGL_NO_DISPLAY && place.platform == Platform::kSurfaceless;
  return has_other ? eglGetDisplay(EGL_DEFAULT_DISPLAY) : display;
}

// A GPU may be there for computing alone.
bool CanDraw(EGLDisplay display) {
  constexpr std::array kAttributes = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT,
                                      EGL_RENDERABLE_TYPE, EGL_OPENGL_ES2_BIT,
                                      EGL_NONE};
  EGLConfig config = nullptr;
  EGLint count = 0;
  return display != EGL_NO_DISPLAY &&
         Initialise(display, nullptr, nullptr) == EGL_TRUE &&
         eglChooseConfig(display, kAttributes.data(), &config, 1, &count) ==
             EGL_TRUE &&
         count > 0;
}

void ReportFailure(const Place& place) {
  if (place.platform == Platform::kDevice) {
    __android_log_print(ANDROID_LOG_WARN, kTag, "device %zu cannot be opened",
                        place.device);
  } else if (!default_display_failed.exchange(true)) {
    __android_log_print(
        ANDROID_LOG_WARN, kTag,
        "the display of DISPLAY or WAYLAND_DISPLAY cannot be opened; drawing "
        "without one");
  }
}

}  // namespace

std::vector<Device> Devices() {
  const char* const client = eglQueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS);
  const auto query_devices =
      LookUp<PFNEGLQUERYDEVICESEXTPROC>("eglQueryDevicesEXT");
  const auto query_string =
      LookUp<PFNEGLQUERYDEVICESTRINGEXTPROC>("eglQueryDeviceStringEXT");
  // A function that the driver lacks need not be null.
  const bool can_enumerate = HasName(client, "EGL_EXT_device_base") ||
                             HasName(client, "EGL_EXT_device_enumeration");
  EGLint count = 0;
  if (!can_enumerate || query_devices == nullptr || query_string == nullptr ||
      query_devices(0, nullptr, &count) != EGL_TRUE || count < 1) {
    return {};
  }
  std::vector<EGLDeviceEXT> handles(static_cast<size_t>(count));
  if (query_devices(count, handles.data(), &count) != EGL_TRUE) return {};
  handles.resize(static_cast<size_t>(count));

  std::vector<Device> devices;
  for (EGLDeviceEXT handle : handles) {
    const char* const extensions = query_string(handle, EGL_EXTENSIONS);
    const auto text = [&](const char* extension, EGLint name) {
      const char* const value =
          HasName(extensions, extension) ? query_string(handle, name) : nullptr;
      return std::string(value == nullptr ? "" : value);
    };
    devices.push_back({handle, HasName(extensions, "EGL_MESA_device_software"),
                       text("EGL_EXT_device_query_name", EGL_RENDERER_EXT),
                       text("EGL_EXT_device_drm", EGL_DRM_DEVICE_FILE_EXT)});
  }
  return devices;
}

std::vector<Place> PlacesOfDisplays(std::span<const Device> devices,
                                    std::optional<size_t> chosen,
                                    bool names_display) {
  std::vector<Place> places;
  if (chosen) {
    if (*chosen < devices.size()) places = {{Platform::kDevice, *chosen}};
    return places;
  }
  if (names_display) places.push_back({Platform::kDefault});
  for (size_t i = 0; i < devices.size(); ++i) {
    if (!devices[i].is_software) places.push_back({Platform::kDevice, i});
  }
  places.push_back({Platform::kSurfaceless});
  return places;
}

Display FindDisplay() {
  const std::vector<Device> devices = Devices();
  const bool names_display =
      !default_display_failed && (IsSet("DISPLAY") || IsSet("WAYLAND_DISPLAY"));
  const std::vector<Place> places =
      PlacesOfDisplays(devices, ChosenDevice(), names_display);
  for (const Place& place : places) {
    EGLDisplay handle = DisplayAt(place, devices);
    // Whoever asked reports a failure of the last.
    if (&place == &places.back() || CanDraw(handle)) {
      return {handle, place};
    }
    ReportFailure(place);
  }
  __android_log_print(
      ANDROID_LOG_ERROR, kTag,
      "eglGetDisplay failed: no device has the number that %s gives",
      kDeviceProperty);
  return {};
}

bool HasName(const char* list, std::string_view name) {
  std::string_view rest(list == nullptr ? "" : list);
  while (!rest.empty()) {
    const size_t end = std::min(rest.find(' '), rest.size());
    if (rest.substr(0, end) == name) return true;
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return false;
}

bool DefaultDisplayFailed() {
  return default_display_failed;
}

void PrepareDriver() {
  // The software renderer's fast 8-bit filter rounds each channel separately,
  // which corrupts a 16-bit value packed in two channels.
  setenv("GALLIVM_PERF", "no_aos_sampling", 0);
}

EGLBoolean Initialise(EGLDisplay display, EGLint* major, EGLint* minor) {
  PrepareDriver();
  return eglInitialize(display, major, minor);
}

}  // namespace zuqel::driver
