// The folder of a report while it is made.
#include "report/picture_folder.h"

#include <utility>

#include "look/thumbnail.h"
#include "photo/picture_writer.h"

namespace zuqel::tools {

PictureFolder::PictureFolder(std::string path, OutputFiles& outputs)
    : path_(std::move(path)), outputs_(&outputs) {
  outputs.CreateFolder(path_);
}

KeptPicture PictureFolder::Keep(const std::string& stem, const Picture& picture,
                                const Bytes& icc) {
  KeptPicture kept = {stem, SizeOf(picture)};
  Write(kept.file(), picture, icc);
  Write(kept.small(), MakeThumbnail(picture, kThumbnailSide), icc);
  return kept;
}

// Without a size there is no line about it: reports have many files.
void PictureFolder::Write(const std::string& name, const Picture& picture,
                          const Bytes& icc) {
  constexpr int kQuality = 85;
  const std::string path = PathOf(name);
  outputs_->Announce(path);
  PendingFile& file = outputs_->Begin(path, "").file;
  WritePicture(picture, {icc, {}}, kQuality, file);
  file.Close();
}

}  // namespace zuqel::tools
