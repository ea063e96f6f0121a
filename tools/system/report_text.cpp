// The report as text.
#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "system/system_report.h"

namespace zuqel::tools {
namespace {

using Row = std::array<std::string, 4>;

// A heading and the rows below it, in columns.
std::string Section(const std::string& heading, const std::vector<Row>& rows) {
  std::array<size_t, 4> widths = {};
  for (const Row& row : rows) {
    for (size_t i = 0; i < row.size(); ++i) {
      widths.at(i) = std::max(widths.at(i), row.at(i).size());
    }
  }
  std::string text = "\n" + heading + "\n";
  for (const Row& row : rows) {
    std::string line;
    for (size_t i = 0; i < row.size(); ++i) {
      if (widths.at(i) == 0) continue;
      line +=
          "  " + row.at(i) + std::string(widths.at(i) - row.at(i).size(), ' ');
    }
    line.erase(line.find_last_not_of(' ') + 1);
    text += line + "\n";
  }
  return text;
}

std::string OrUnknown(const std::string& text) {
  return text.empty() ? "unknown" : text;
}

std::string GlSection(const SystemReport& report) {
  if (!report.gl_failure.empty()) {
    return Section("OpenGL ES", {{"does not work", report.gl_failure}});
  }
  return Section("OpenGL ES",
                 {{"drawn by", report.is_software ? "software" : "hardware"},
                  {"vendor", OrUnknown(report.gl_vendor)},
                  {"renderer", OrUnknown(report.gl_renderer)},
                  {"version", OrUnknown(report.gl_version)}});
}

std::string EglSection(const SystemReport& report) {
  std::vector<Row> rows = {{"platform", OrUnknown(report.platform)}};
  for (const auto& [name, value] : report.display_variables) {
    rows.push_back(
        {name, value + (report.display_failed ? " (cannot be opened)" : "")});
  }
  rows.push_back({"vendor", OrUnknown(report.egl_vendor)});
  rows.push_back({"version", OrUnknown(report.egl_version)});
  return Section("EGL", rows);
}

std::string DeviceSection(const SystemReport& report) {
  std::vector<Row> rows;
  for (const DeviceReport& device : report.devices) {
    rows.push_back(
        {std::to_string(device.number),
         device.is_software ? "software" : "hardware",
         device.is_in_use ? "in use" : "",
         device.name + (device.name.empty() ? "" : " ") + device.file});
  }
  if (rows.empty()) rows.push_back({"none that EGL can tell"});
  return Section("Devices", rows);
}

std::string ExtensionSection(const SystemReport& report) {
  std::vector<Row> rows;
  for (const ExtensionReport& extension : report.extensions) {
    const char* const state = !extension.is_present   ? "unknown"
                              : *extension.is_present ? "present"
                                                      : "missing";
    rows.push_back({extension.name, state, extension.purpose});
  }
  return Section("Extensions", rows);
}

std::string PropertySection(const SystemReport& report) {
  std::vector<Row> rows;
  for (const PropertyReport& property : report.properties) {
    const std::string origin = property.origin;
    rows.push_back({property.name,
                    property.value.empty() ? "-" : property.value,
                    origin == "default" ? origin : "from the " + origin,
                    property.is_known ? "" : "(unknown)"});
  }
  std::string heading = "Properties";
  if (!report.properties_file.empty()) {
    heading += ", file " + report.properties_file;
    if (!report.has_properties_file) heading += " (cannot be read)";
  }
  return Section(heading, rows);
}

}  // namespace

std::string ReportText(const SystemReport& report) {
  return "zuqel " + report.program_version + ", library " +
         report.library_version + ", built for " + report.instruction_set +
         "\n" + GlSection(report) + EglSection(report) + DeviceSection(report) +
         ExtensionSection(report) + PropertySection(report);
}

}  // namespace zuqel::tools
