// What the library runs on: versions, EGL and OpenGL ES, GPUs, properties.
#ifndef ZUQEL_TOOLS_SYSTEM_SYSTEM_REPORT_H_
#define ZUQEL_TOOLS_SYSTEM_SYSTEM_REPORT_H_

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zuqel::tools {

struct DeviceReport {
  size_t number = 0;
  bool is_software = false;
  bool is_in_use = false;
  std::string name, file;
};

struct ExtensionReport {
  std::string name, purpose;
  std::optional<bool> is_present;  // unknown without a display or a context
};

struct PropertyReport {
  std::string name, value;
  const char* origin = "default";  // or "file" or "program"
  bool is_known = true;            // the library or its stand-ins read it
};

// A text is empty where it is not known.
struct SystemReport {
  std::string program_version, library_version;
  std::string instruction_set;

  std::string platform;  // of EGL
  // Of the environment, which name a display.
  std::vector<std::pair<std::string, std::string>> display_variables;
  bool display_failed = false;  // the environment's cannot be opened
  std::string egl_vendor, egl_version;

  std::string gl_failure;  // why OpenGL ES does not work, if so
  bool is_software = false;
  std::string gl_vendor, gl_renderer, gl_version;

  std::vector<DeviceReport> devices;
  std::vector<ExtensionReport> extensions;
  std::string properties_file;  // that the environment names
  bool has_properties_file = false;
  std::vector<PropertyReport> properties;
};

// Opens a session, as a command that renders does, and looks at its context.
// None may be open.
SystemReport ExamineSystem();

// In aligned columns.
std::string ReportText(const SystemReport& report);

// One object.
std::string ReportJson(const SystemReport& report);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_SYSTEM_SYSTEM_REPORT_H_
