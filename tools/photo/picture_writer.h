// Writes pictures made from photos.
#ifndef ZUQEL_TOOLS_PHOTO_PICTURE_WRITER_H_
#define ZUQEL_TOOLS_PHOTO_PICTURE_WRITER_H_

#include <string>

#include "files/pending_file.h"
#include "image.h"
#include "photo/metadata.h"

namespace zuqel::tools {

constexpr int kDefaultQuality = 95;

bool IsJpegName(const std::string& path);

// Of the result of a photo whose user names none: a PNG file stays one, all
// else becomes JPEG.
std::string ResultExtension(const std::string& photo);

// InputError, which begins with `option`, if no picture is written to files of
// this name.
void CheckPictureName(const std::string& option, const std::string& path);

// As JPEG if the target's name says so, and otherwise as PNG: so to standard
// output. Both keep the
// profile; JPEG keeps the EXIF block, for an upright picture. `quality` is 1
// to 100 and for JPEG alone; from 90 on, colours have the full resolution.
// Throws WorkError.
void WritePicture(const Picture& picture, const Metadata& metadata, int quality,
                  PendingFile& file);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_PHOTO_PICTURE_WRITER_H_
