// The report as JSON. No other source includes the library that writes it.
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "system/system_report.h"

namespace zuqel::tools {
namespace {

using Json = nlohmann::ordered_json;

Json OrNull(const std::string& text) {
  return text.empty() ? Json() : Json(text);
}

Json OrNull(const std::optional<bool>& flag) {
  return flag ? Json(*flag) : Json();
}

Json Gl(const SystemReport& report) {
  const bool works = report.gl_failure.empty();
  return {{"works", works},
          {"failure", OrNull(report.gl_failure)},
          {"is_software", works ? Json(report.is_software) : Json()},
          {"vendor", OrNull(report.gl_vendor)},
          {"renderer", OrNull(report.gl_renderer)},
          {"version", OrNull(report.gl_version)}};
}

Json Egl(const SystemReport& report) {
  Json variables = Json::object();
  for (const auto& [name, value] : report.display_variables) {
    variables[name] = value;
  }
  return {{"platform", OrNull(report.platform)},
          {"display_variables", variables},
          {"display_failed", report.display_failed},
          {"vendor", OrNull(report.egl_vendor)},
          {"version", OrNull(report.egl_version)}};
}

// A list with an object for each row.
template <typename Rows, typename ToObject>
Json List(const Rows& rows, ToObject to_object) {
  Json list = Json::array();
  for (const auto& row : rows) list.push_back(to_object(row));
  return list;
}

}  // namespace

std::string ReportJson(const SystemReport& report) {
  const Json json = {
      {"program", report.program_version},
      {"library", report.library_version},
      {"instruction_set", report.instruction_set},
      {"gl", Gl(report)},
      {"egl", Egl(report)},
      {"devices", List(report.devices,
                       [](const DeviceReport& device) -> Json {
                         return {{"number", device.number},
                                 {"is_software", device.is_software},
                                 {"is_in_use", device.is_in_use},
                                 {"name", OrNull(device.name)},
                                 {"file", OrNull(device.file)}};
                       })},
      {"extensions", List(report.extensions,
                          [](const ExtensionReport& extension) -> Json {
                            return {
                                {"name", extension.name},
                                {"purpose", extension.purpose},
                                {"is_present", OrNull(extension.is_present)}};
                          })},
      {"properties_file", OrNull(report.properties_file)},
      {"properties", List(report.properties,
                          [](const PropertyReport& property) -> Json {
                            return {{"name", property.name},
                                    {"value", property.value},
                                    {"origin", property.origin},
                                    {"is_known", property.is_known}};
                          })},
  };
  // A property may hold any bytes.
  return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace zuqel::tools
