// Photos with depth, for the tests of their readers.
#ifndef ZUQEL_TESTS_PHOTO_SAMPLES_H_
#define ZUQEL_TESTS_PHOTO_SAMPLES_H_

#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "files/file_bytes.h"
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

// A JPEG file with these segments: the end of their marker, and their content.
using Segments = std::vector<std::pair<char, std::string>>;
Bytes JpegWith(const Segments& segments, const std::string& after = {});
Bytes JpegWithXmp(const std::string& packet);

// XMP with these attributes and elements; attributes as elements.
std::string Packet(const std::string& attributes,
                   const std::string& elements = {});
std::string Elements(const std::string& attributes);

// Attributes for this depth, from 0.5 to 4 metres, and for the picture before
// the blur.
std::string GDepth(const std::string& format, const Bytes& depth = DepthPng(),
                   const Bytes& original = {'o', 'r', 'i', 'g', 'i', 'n', 'a',
                                            'l'});
// The same, RangeInverse, with 64 bytes of extended XMP in each segment.
Segments ExtendedSegments();

// A picture, whose EXIF holds another, then a gain map, "original" and the
// depth; and a packet that lists them.
Bytes DynamicDepth(const std::string& packet);
enum ListForm { kAttributes, kElements, kFlat };
std::string DynamicPacket(ListForm form);

}  // namespace zuqel::tools

#endif  // ZUQEL_TESTS_PHOTO_SAMPLES_H_
