// Photos with depth, for the tests of their readers.
#ifndef ZUQEL_TESTS_PHOTO_SAMPLES_H_
#define ZUQEL_TESTS_PHOTO_SAMPLES_H_

#include <cstddef>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "file_bytes.h"
#include "image_samples.h"

namespace zuqel::tools {

std::string Text(const Bytes& bytes);

// The bytes of a PNG file.
template <typename Image>
Bytes Png(const Image& image) {
  const TemporaryFolder folder;
  if constexpr (std::is_same_v<Image, Picture>) {
    WritePicture(image, folder / "png");
  } else if constexpr (std::is_same_v<Image, DisparityMap>) {
    WriteDisparity(image, folder / "png");
  } else {
    WriteGrey(image, folder / "png");
  }
  return ReadBytes(folder / "png");
}

// One row of 0, 51 and 255.
Bytes DepthPng();

// A segment of a JPEG file: the last byte of its marker, and its content.
using App = std::pair<int, std::string>;
App Standard(const std::string& packet);
App Extended(const std::string& name, size_t size, size_t offset,
             const std::string& content);
// A picture with these segments, and bytes after it.
Bytes JpegWith(const std::vector<App>& segments, const Bytes& after = {});

// Properties in XMP, in two forms, and a packet of them.
using Pairs = std::vector<std::pair<std::string, std::string>>;
std::string Attributes(const Pairs& pairs);
std::string Elements(const Pairs& pairs);
std::string Packet(const std::string& attributes,
                   const std::string& elements = {});

// From 0.5 to 4 metres.
Pairs Range(const std::string& prefix, const std::string& format);
// The depth in this file; "original" is the picture before the blur.
Pairs Data(const Bytes& depth);
std::string GDepth(const Bytes& depth, const std::string& format);
// The same, RangeInverse, with 64 bytes of extended XMP in each segment.
std::vector<App> InSegments(const Bytes& depth);

// A list of files in XMP, in three forms.
struct Listed {
  std::string semantic;
  Bytes file;
  size_t padding = 0;
};
enum ListForm { kAttributes, kElements, kFlat };
std::string List(const std::vector<Listed>& files, ListForm form);

// A picture, whose EXIF holds another, followed by a gain map, "original" and
// the depth, which the packet lists.
std::string DynamicPacket(ListForm form);
Bytes DynamicDepth(const std::string& packet);

}  // namespace zuqel::tools

#endif  // ZUQEL_TESTS_PHOTO_SAMPLES_H_
