// The JSON files of scenes and reports. It hides a library that takes long to
// compile.
#ifndef ZUQEL_TOOLS_REPORT_JSON_FILES_H_
#define ZUQEL_TOOLS_REPORT_JSON_FILES_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "image.h"
#include "report/report_record.h"

namespace zuqel::tools {

// The largest files that are read.
inline constexpr size_t kLargestMeta = size_t{1} << 20;
inline constexpr size_t kLargestRecord = size_t{8} << 20;

// The largest number of focus points of a scene, and length of a text in bytes.
inline constexpr size_t kMostFoci = 64;
inline constexpr size_t kLongestText = 1000;

// meta.json of a scene: an object with, if wanted, a "title" and a list called
// "focus_points" or "focus_points_WxH". A point is an object with "x", "y" and,
// if wanted, "what". All else is passed over.
struct SceneMeta {
  std::string title;
  std::vector<NamedFocus> foci;
  std::optional<Size> frame;  // whose pixels the points are in, else picture's
};

// `name` is what errors call the file. Throws InputError, as does the other.
SceneMeta ParseSceneMeta(const std::string& name,
                         std::span<const uint8_t> bytes);

// The file beside a report's page, report.json.
std::string ToJson(const std::vector<ReportEntry>& entries);
std::vector<ReportEntry> ParseReport(const std::string& name,
                                     std::span<const uint8_t> bytes);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_REPORT_JSON_FILES_H_
