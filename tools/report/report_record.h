// What a report says about its pictures.
#ifndef ZUQEL_TOOLS_REPORT_REPORT_RECORD_H_
#define ZUQEL_TOOLS_REPORT_REPORT_RECORD_H_

#include <optional>
#include <string>
#include <vector>

#include "image.h"

namespace zuqel::tools {

// Files of a report besides its pictures; the record is for programs.
inline constexpr const char* kPageName = "index.html";
inline constexpr const char* kRecordName = "report.json";

// A picture in the report's folder, and its thumbnail.
struct KeptPicture {
  [[nodiscard]] std::string file() const { return stem + ".png"; }
  [[nodiscard]] std::string small() const { return stem + ".jpg"; }

  std::string stem;
  Size size;
};

// What is in focus; `what` is for people and may be empty.
struct NamedFocus {
  std::string what;
  FocusPoint point;
};

// Sharpness of the result in parts of that of its source, measured at the focus
// and elsewhere (look/sharpness.h). Nothing where the source has no detail.
struct SharpnessKept {
  std::optional<double> at_focus, elsewhere;
};

// A rendered picture. Texts are UTF-8.
struct ReportEntry {
  std::string scene;  // its name
  NamedFocus focus;
  std::string maker;
  std::optional<double> f_number;  // none for a fixed strength of blur
  KeptPicture picture;
  SharpnessKept sharpness;
  std::optional<double> frame_ms;
};

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_REPORT_REPORT_RECORD_H_
