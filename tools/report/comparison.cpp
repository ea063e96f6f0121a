// A report beside an earlier one.
#include "report/comparison.h"

#include <algorithm>
#include <utility>

#include "coordinates.h"
#include "files/file_bytes.h"
#include "look/frame_difference.h"
#include "photo/image_file.h"
#include "report/json_files.h"
#include "report/text.h"
#include "tool_error.h"

namespace zuqel::tools {
std::string Describe(const ReportEntry& entry) {
  const auto& [what, point] = entry.focus;
  std::string text = entry.scene + ", focus " + std::to_string(point.x) + "," +
                     std::to_string(point.y) + ", " + entry.maker;
  if (entry.f_number) text += ", f/" + ToText(*entry.f_number);
  return text;
}

Comparison::Comparison(const std::string& folder) : folder_(folder) {
  const std::string record = folder + "/" + kRecordName;
  Bytes bytes(kLargestRecord);
  bytes.resize(ReadFileInto(record, bytes));
  for (ReportEntry& entry : ParseReport(record, bytes)) {
    std::string key = Describe(entry);
    earlier_.emplace(std::move(key), std::move(entry));
  }
  findings_.folder = ToUtf8(folder);
}

void Comparison::Add(const ReportEntry& entry, const Picture& picture,
                     const Bytes& icc, PictureFolder& folder) {
  const auto found = earlier_.find(Describe(entry));
  if (found == earlier_.end()) {
    findings_.notes.push_back(Describe(entry) + ": is only here");
    return;
  }
  const ReportEntry earlier = std::move(found->second);
  earlier_.erase(found);
  const std::string path = folder_ + "/" + earlier.picture.file();
  Picture before;
  try {
    before = ReadPicture(path);
  } catch (const InputError& error) {
    findings_.notes.push_back(ToUtf8(error.what()));
    return;
  }
  if (SizeOf(before) != SizeOf(picture)) {
    findings_.notes.push_back(Describe(entry) + ": was " +
                              ToText(SizeOf(before)) + ", is " +
                              ToText(SizeOf(picture)));
    return;
  }
  if (before.rgb == picture.rgb) {
    ++findings_.same;
    return;
  }
  const PlaneDifference difference = Compare(before, picture);
  Change change = {
      entry, earlier.sharpness, difference.psnr_db, difference.largest, {}, {}};
  const std::string& stem = entry.picture.stem;
  change.earlier = folder.Keep(stem + "-earlier", before, icc);
  change.difference = folder.Keep(
      stem + "-difference", ShowDifference(std::move(before), picture), {});
  findings_.changes.push_back(std::move(change));
}

Findings Comparison::Finish() {
  for (const auto& [key, entry] : earlier_) {
    findings_.notes.push_back(Describe(entry) + ": is only there");
  }
  std::stable_sort(
      findings_.changes.begin(), findings_.changes.end(),
      [](const Change& a, const Change& b) { return a.psnr_db < b.psnr_db; });
  return std::move(findings_);
}

}  // namespace zuqel::tools
