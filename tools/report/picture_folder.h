// The folder of a report while it is made.
#ifndef ZUQEL_TOOLS_REPORT_PICTURE_FOLDER_H_
#define ZUQEL_TOOLS_REPORT_PICTURE_FOLDER_H_

#include <string>

#include "files/file_bytes.h"
#include "image.h"
#include "photo/output_files.h"
#include "report/report_record.h"

namespace zuqel::tools {

// The longer side of a thumbnail.
inline constexpr int kThumbnailSide = 320;

// Files go to the disk as they come, and appear with the others in
// OutputFiles::Commit.
class PictureFolder {
 public:
  PictureFolder(std::string path, OutputFiles& outputs);

  [[nodiscard]] std::string PathOf(const std::string& name) const {
    return path_ + "/" + name;
  }

  // As PNG, which keeps every bit for later comparison, and a thumbnail as
  // JPEG. Both have the colour profile `icc` unless it is empty.
  KeptPicture Keep(const std::string& stem, const Picture& picture,
                   const Bytes& icc);

 private:
  void Write(const std::string& name, const Picture& picture, const Bytes& icc);

  std::string path_;
  OutputFiles* outputs_;
};

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_REPORT_PICTURE_FOLDER_H_
