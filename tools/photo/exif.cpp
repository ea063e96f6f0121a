// The EXIF block of a photo.
#include "photo/exif.h"

#include <libexif/exif-data.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string_view>

namespace zuqel::tools {
namespace {

// A segment of a JPEG file holds 65535 bytes with its length.
constexpr size_t kLargestBlock = 65533;

struct ReleaseBlock {
  void operator()(ExifData* block) const { exif_data_unref(block); }
};
using Block = std::unique_ptr<ExifData, ReleaseBlock>;

Block Load(std::span<const uint8_t> exif) {
  Block block(exif_data_new());
  if (block == nullptr) return block;
  // All entries stay, and stay as they are.
  exif_data_unset_option(block.get(), EXIF_DATA_OPTION_IGNORE_UNKNOWN_TAGS);
  exif_data_unset_option(block.get(), EXIF_DATA_OPTION_FOLLOW_SPECIFICATION);
  exif_data_load_data(block.get(), exif.data(),
                      static_cast<unsigned>(exif.size()));
  return block;
}

ExifContent& Directory(const Block& block, ExifIfd number) {
  return *block->ifd[number];
}

// Null if there is none.
ExifEntry* FindMakerNote(const Block& block) {
  return exif_content_get_entry(&Directory(block, EXIF_IFD_EXIF),
                                EXIF_TAG_MAKER_NOTE);
}

// Many have offsets that libexif adapts to their new place. Apple's count from
// the note, and libexif would drop it.
void KeepMakerNote(const Block& block) {
  constexpr std::string_view kApple = "Apple iOS";
  const ExifEntry* note = FindMakerNote(block);
  if (note != nullptr && note->size >= kApple.size() &&
      std::equal(kApple.begin(), kApple.end(), note->data)) {
    exif_data_set_option(block.get(), EXIF_DATA_OPTION_DONT_CHANGE_MAKER_NOTE);
  }
}

// Null if it is missing or is no number.
ExifEntry* FindNumber(ExifContent& directory, ExifTag tag) {
  ExifEntry* entry = exif_content_get_entry(&directory, tag);
  if (entry == nullptr || entry->data == nullptr || entry->components != 1) {
    return nullptr;
  }
  const bool is_number =
      entry->format == EXIF_FORMAT_SHORT || entry->format == EXIF_FORMAT_LONG;
  return is_number && entry->size >= exif_format_get_size(entry->format)
             ? entry
             : nullptr;
}

void SetNumber(const Block& block, ExifIfd number, ExifTag tag, int value) {
  const ExifEntry* entry = FindNumber(Directory(block, number), tag);
  if (entry == nullptr) return;
  const ExifByteOrder order = exif_data_get_byte_order(block.get());
  if (entry->format == EXIF_FORMAT_SHORT) {
    exif_set_short(entry->data, order, static_cast<ExifShort>(value));
  } else {
    exif_set_long(entry->data, order, static_cast<ExifLong>(value));
  }
}

void RemoveThumbnail(const Block& block) {
  std::free(block->data);
  block->data = nullptr;
  block->size = 0;
  ExifContent& directory = Directory(block, EXIF_IFD_1);
  while (directory.count > 0) {
    exif_content_remove_entry(&directory, directory.entries[0]);
  }
}

Bytes Save(const Block& block) {
  unsigned char* bytes = nullptr;
  unsigned size = 0;
  exif_data_save_data(block.get(), &bytes, &size);
  const std::unique_ptr<unsigned char, decltype(&std::free)> owner(bytes,
                                                                   std::free);
  return bytes == nullptr ? Bytes{} : Bytes(bytes, bytes + size);
}

bool HasEntries(const Block& block) {
  return Directory(block, EXIF_IFD_0).count > 0 ||
         Directory(block, EXIF_IFD_EXIF).count > 0;
}

}  // namespace

int ReadOrientation(std::span<const uint8_t> exif) {
  const Block block = Load(exif);
  if (block == nullptr) return 0;
  const ExifEntry* entry =
      FindNumber(Directory(block, EXIF_IFD_0), EXIF_TAG_ORIENTATION);
  if (entry == nullptr || entry->format != EXIF_FORMAT_SHORT) return 0;
  const int value =
      exif_get_short(entry->data, exif_data_get_byte_order(block.get()));
  return value >= 1 && value <= 8 ? value : 0;
}

Bytes UprightExif(std::span<const uint8_t> exif, Size size) {
  const Block block = Load(exif);
  if (block == nullptr || !HasEntries(block)) return {};
  RemoveThumbnail(block);
  KeepMakerNote(block);
  SetNumber(block, EXIF_IFD_0, EXIF_TAG_ORIENTATION, 1);
  SetNumber(block, EXIF_IFD_0, EXIF_TAG_IMAGE_WIDTH, size.width);
  SetNumber(block, EXIF_IFD_0, EXIF_TAG_IMAGE_LENGTH, size.height);
  SetNumber(block, EXIF_IFD_EXIF, EXIF_TAG_PIXEL_X_DIMENSION, size.width);
  SetNumber(block, EXIF_IFD_EXIF, EXIF_TAG_PIXEL_Y_DIMENSION, size.height);
  Bytes upright = Save(block);
  // What makers add for themselves can be as large as a segment.
  ExifEntry* note = FindMakerNote(block);
  if (upright.size() > kLargestBlock && note != nullptr) {
    exif_content_remove_entry(&Directory(block, EXIF_IFD_EXIF), note);
    upright = Save(block);
  }
  return upright.size() > kLargestBlock ? Bytes{} : upright;
}

}  // namespace zuqel::tools
