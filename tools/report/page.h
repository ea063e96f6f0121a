// The page of a report.
#ifndef ZUQEL_TOOLS_REPORT_PAGE_H_
#define ZUQEL_TOOLS_REPORT_PAGE_H_

#include <optional>
#include <string>
#include <vector>

#include "report/comparison.h"
#include "report/scene_rendering.h"

namespace zuqel::tools {

// HTML that needs nothing but the pictures beside it.
std::string WritePage(const std::vector<SceneResult>& scenes,
                      const std::optional<Findings>& findings);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_REPORT_PAGE_H_
