// Looks at what the library runs on. Calls of EGL and GL made here reach the
// driver.
#include "system/system_report.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GLES2/gl2.h>
#include <egl_display.h>
#include <property_list.h>
#include <unistd.h>
#include <zuQelRT_GL.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string_view>

#include "rendering/bokeh_session.h"
#include "tool_error.h"

namespace zuqel::tools {
namespace {

enum class Owner { kClient, kDisplay, kGl };

struct Extension {
  Owner owner;
  const char* name;
  const char* purpose;
  const char* part_of = "";  // an extension that includes it
};

constexpr const char* kDeviceBase = "EGL_EXT_device_base";

// What the library and its stand-ins ask for.
constexpr auto kExtensions = std::to_array<Extension>({
    {Owner::kClient, "EGL_EXT_platform_base", "displays without windows"},
    {Owner::kClient, "EGL_MESA_platform_surfaceless",
     "a display without windows"},
    {Owner::kClient, "EGL_EXT_device_enumeration", "choice of GPU",
     kDeviceBase},
    {Owner::kClient, "EGL_EXT_device_query", "choice of GPU", kDeviceBase},
    {Owner::kClient, "EGL_EXT_platform_device", "choice of GPU"},
    {Owner::kDisplay, "EGL_KHR_image_base", "graphic buffers", "EGL_KHR_image"},
    {Owner::kDisplay, "EGL_KHR_gl_texture_2D_image", "graphic buffers"},
    {Owner::kGl, "GL_OES_EGL_image", "graphic buffers"},
    {Owner::kGl, "GL_OES_get_program_binary", "program cache"},
    {Owner::kGl, "GL_OES_depth24", "refocus maps"},
});

struct KnownProperty {
  const char* name;
  const char* unset;  // what it means not to set it
};

constexpr auto kProperties = std::to_array<KnownProperty>({
    {"persist.zu.LVGLbokeh.FocusDot", "0"},
    {"persist.zu.LVGLbokeh.StillCount", "90"},
    {"persist.zu.LVGLbokeh.fileDir", ""},
    {"persist.zu.VLGLbokeh.readfile", "0"},
    {driver::kDeviceProperty, ""},
    {"zuqel.graphicbuffer", ""},
});

// The build's, for all of its processors.
constexpr const char* InstructionSet() {
#if defined(__aarch64__)
  return "arm64";
#elif defined(__AVX2__)
  return "x86-64-v3";
#else
  return "x86-64";
#endif
}

const char* NameOf(driver::Platform platform) {
  switch (platform) {
    case driver::Platform::kDefault:
      return "default";
    case driver::Platform::kDevice:
      return "device";
    case driver::Platform::kSurfaceless:
      break;
  }
  return "surfaceless";
}

std::string TextOrEmpty(const char* text) {
  return text == nullptr ? "" : text;
}

std::string GlText(GLenum name) {
  return TextOrEmpty(reinterpret_cast<const char*>(glGetString(name)));
}

const char* ClientExtensions() {
  return eglQueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS);
}

// Null where EGL cannot tell.
EGLDeviceEXT DeviceOf(EGLDisplay display) {
  const auto query = reinterpret_cast<PFNEGLQUERYDISPLAYATTRIBEXTPROC>(
      eglGetProcAddress("eglQueryDisplayAttribEXT"));
  const char* const client = ClientExtensions();
  const bool can_query = driver::HasName(client, kDeviceBase) ||
                         driver::HasName(client, "EGL_EXT_device_query");
  EGLAttrib device = 0;
  if (!can_query || query == nullptr ||
      query(display, EGL_DEVICE_EXT, &device) != EGL_TRUE) {
    return EGL_NO_DEVICE_EXT;
  }
  // EGL gives the handle as a number.
  // NOLINTNEXTLINE(performance-no-int-to-ptr)
  return reinterpret_cast<EGLDeviceEXT>(device);
}

// Not every driver has devices that say so.
bool IsSoftwareRenderer(std::string_view renderer) {
  constexpr std::array<std::string_view, 4> kNames = {
      "llvmpipe", "softpipe", "SwiftShader", "Software Rasterizer"};
  return std::any_of(kNames.begin(), kNames.end(), [=](std::string_view name) {
    return renderer.find(name) != std::string_view::npos;
  });
}

// Without a session, nothing of GL is known, and no device is in use.
void ExamineDisplay(SystemReport& report, bool has_session) {
  const driver::Display display = driver::FindDisplay();
  if (display.handle != EGL_NO_DISPLAY) {
    report.platform = NameOf(display.place.platform);
  }
  report.display_failed = driver::DefaultDisplayFailed();
  report.egl_vendor = TextOrEmpty(eglQueryString(display.handle, EGL_VENDOR));
  report.egl_version = TextOrEmpty(eglQueryString(display.handle, EGL_VERSION));
  const char* gl_extensions = nullptr;
  EGLDeviceEXT device = EGL_NO_DEVICE_EXT;
  if (has_session) {
    report.gl_vendor = GlText(GL_VENDOR);
    report.gl_renderer = GlText(GL_RENDERER);
    report.gl_version = GlText(GL_VERSION);
    report.is_software = IsSoftwareRenderer(report.gl_renderer);
    gl_extensions = reinterpret_cast<const char*>(glGetString(GL_EXTENSIONS));
    device = DeviceOf(display.handle);
  }
  for (const driver::Device& found : driver::Devices()) {
    const bool is_in_use =
        device != EGL_NO_DEVICE_EXT && found.handle == device;
    report.is_software |= is_in_use && found.is_software;
    report.devices.push_back({report.devices.size(), found.is_software,
                              is_in_use, found.name, found.file});
  }
  for (const Extension& extension : kExtensions) {
    const char* const list =
        extension.owner == Owner::kClient ? ClientExtensions()
        : extension.owner == Owner::kDisplay
            ? eglQueryString(display.handle, EGL_EXTENSIONS)
            : gl_extensions;
    auto& row = report.extensions.emplace_back(
        ExtensionReport{extension.name, extension.purpose, {}});
    if (list == nullptr) continue;
    row.is_present = driver::HasName(list, extension.name) ||
                     driver::HasName(list, extension.part_of);
  }
}

void ExamineProperties(SystemReport& report) {
  report.properties_file = TextOrEmpty(std::getenv("ZUQEL_PROPERTIES"));
  report.has_properties_file =
      access(report.properties_file.c_str(), R_OK) == 0;
  auto& list = report.properties;
  for (const KnownProperty& known : kProperties) {
    list.push_back({known.name, known.unset});
  }
  for (const SetProperty& set : SetProperties()) {
    const char* const origin =
        set.origin == PropertyOrigin::kFile ? "file" : "program";
    const auto known = std::find_if(
        list.begin(), list.end(),
        [&](const PropertyReport& row) { return row.name == set.name; });
    if (known == list.end()) {
      list.push_back({set.name, set.value, origin, false});
    } else {
      *known = {set.name, set.value, origin};
    }
  }
}

}  // namespace

SystemReport ExamineSystem() {
  SystemReport report;
  report.program_version = ZUQEL_PROGRAM_VERSION;
  std::array<char, ZUQEL_VERSION_BUFFER_SIZE> version = {};
  zuQel_GLVersionInfo_Get(version.data(), static_cast<int32_t>(version.size()));
  report.library_version = version.data();
  report.instruction_set = InstructionSet();
  for (const char* variable : {"DISPLAY", "WAYLAND_DISPLAY"}) {
    const std::string value = TextOrEmpty(std::getenv(variable));
    if (!value.empty()) report.display_variables.emplace_back(variable, value);
  }
  try {
    const BokehSession session({.picture = {64, 64}, .depth = {64, 64}});
    ExamineDisplay(report, true);
  } catch (const WorkError& error) {
    report.gl_failure = error.what();
    ExamineDisplay(report, false);
  }
  ExamineProperties(report);
  return report;
}

}  // namespace zuqel::tools
