// Reads and writes picture files.
#ifndef ZUQEL_TOOLS_PHOTO_IMAGE_FILE_H_
#define ZUQEL_TOOLS_PHOTO_IMAGE_FILE_H_

#include <cstdint>
#include <span>
#include <string>

#include "files/pending_file.h"
#include "image.h"
#include "photo/metadata.h"

namespace zuqel::tools {

// The readers throw InputError, which names the file and its fault.

// `name` is what errors call the file.
void RequireReadableSize(const std::string& name, Size size);

// The same, for a camera frame: width and height must be even.
void RequireFrameSize(const std::string& name, Size size);

// By its first bytes.
bool IsPngOrJpeg(std::span<const uint8_t> bytes);

// A PNG or JPEG picture. Grey becomes colour, 16 bits are reduced to 8, and
// what is transparent is laid on white.
Picture ReadPicture(const std::string& path);

// The same, for a camera frame.
Picture ReadFramePicture(const std::string& path);

// The same as ReadPicture from a file in memory; `name` is what errors call it.
Picture DecodePicture(const std::string& name, std::span<const uint8_t> bytes);

// From a PNG file, with its metadata unless that is null.
Picture DecodePngPicture(const std::string& name,
                         std::span<const uint8_t> bytes, Metadata* metadata);

// A PNG or JPEG picture without its colours and alpha. 16-bit PNG keeps its
// values; all others have 8 bits.
struct GreyPicture {
  Map<uint16_t> map;
  int white = 255;  // or 65535
};
GreyPicture DecodeGreyPicture(const std::string& name,
                              std::span<const uint8_t> bytes);

// A 16-bit grey PNG with values up to 1023.
DisparityMap ReadDisparity(const std::string& path);

// An 8-bit grey PNG.
WeightMap ReadWeights(const std::string& path);

// The writers make PNG files and throw WorkError; see photo/picture_writer.h
// for pictures.
void WriteGrey(const Map<uint8_t>& map, PendingFile& file);
void WriteDisparity(const DisparityMap& map, PendingFile& file);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_PHOTO_IMAGE_FILE_H_
