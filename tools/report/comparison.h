// A report beside an earlier one.
#ifndef ZUQEL_TOOLS_REPORT_COMPARISON_H_
#define ZUQEL_TOOLS_REPORT_COMPARISON_H_

#include <map>
#include <string>
#include <vector>

#include "image.h"
#include "report/picture_folder.h"
#include "report/report_record.h"

namespace zuqel::tools {

// A picture that is not the same in both.
struct Change {
  ReportEntry entry;
  SharpnessKept earlier_sharpness;
  double psnr_db = 0;
  int largest = 0;  // difference of a colour
  KeptPicture earlier, difference;
};

struct Findings {
  std::string folder;           // as it was given, in UTF-8
  std::vector<Change> changes;  // the worst first
  int same = 0;
  std::vector<std::string> notes;  // on what could not be compared
};

// "aloe, focus 696,300, gpu, f/2.8": what the picture is of. Of those for which
// this is the same, the later report's is compared with the earlier one's.
std::string Describe(const ReportEntry& entry);

class Comparison {
 public:
  // Reads the earlier report's record. Throws InputError.
  explicit Comparison(const std::string& folder);

  // If the earlier picture differs, writes it and the difference to the folder.
  // One that is missing or broken is noted.
  void Add(const ReportEntry& entry, const Picture& picture, const Bytes& icc,
           PictureFolder& folder);

  // After the last one.
  Findings Finish();

 private:
  std::string folder_;
  std::map<std::string, ReportEntry> earlier_;  // by Describe, until compared
  Findings findings_;
};

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_REPORT_COMPARISON_H_
