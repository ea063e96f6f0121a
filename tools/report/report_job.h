// Makes a report: what zuqel report does.
#ifndef ZUQEL_TOOLS_REPORT_REPORT_JOB_H_
#define ZUQEL_TOOLS_REPORT_REPORT_JOB_H_

#include "report/report_plan.h"

namespace zuqel::tools {

// Holds one scene in memory at a time. Throws InputError and WorkError.
void MakeReport(const ReportOptions& options);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_REPORT_REPORT_JOB_H_
