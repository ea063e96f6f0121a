// HEIC and AVIF photos.
#include "photo/heif_photo.h"

#include <fcntl.h>
#include <libheif/heif.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <optional>
#include <vector>

#include "photo/heif_turns.h"
#include "photo/image_file.h"
#include "photo/orientation.h"
#include "tool_error.h"

namespace zuqel::tools {
namespace {

template <auto kRelease>
struct Releaser {
  template <typename Object>
  void operator()(Object* object) const {
    kRelease(object);
  }
};
using Context = std::unique_ptr<heif_context, Releaser<heif_context_free>>;
using Handle =
    std::unique_ptr<heif_image_handle, Releaser<heif_image_handle_release>>;
using Image = std::unique_ptr<heif_image, Releaser<heif_image_release>>;
using Options = std::unique_ptr<heif_decoding_options,
                                Releaser<heif_decoding_options_free>>;
using Representation =
    std::unique_ptr<const heif_depth_representation_info,
                    Releaser<heif_depth_representation_info_free>>;

// Keeps standard error, to which the decoders print about damage, from showing
// more than the one line that says what is wrong.
class SilentDecoders {
 public:
  SilentDecoders() : shown_(fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0)) {
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (shown_ >= 0 && nowhere >= 0) dup2(nowhere, STDERR_FILENO);
    if (nowhere >= 0) close(nowhere);
  }
  ~SilentDecoders() {
    if (shown_ < 0) return;
    dup2(shown_, STDERR_FILENO);
    close(shown_);
  }
  SilentDecoders(const SilentDecoders&) = delete;
  SilentDecoders& operator=(const SilentDecoders&) = delete;

 private:
  int shown_;  // duplicate of standard error; -1: there is none
};

// A file while it is read.
class HeifFile {
 public:
  HeifFile(const std::string& path, std::span<const uint8_t> bytes)
      : path_(path), bytes_(bytes), context_(heif_context_alloc()) {
    if (context_ == nullptr) Refuse("is too large for the memory");
    Check(heif_context_read_from_memory_without_copy(
        context_.get(), bytes.data(), bytes.size(), nullptr));
    heif_image_handle* main = nullptr;
    Check(heif_context_get_primary_image_handle(context_.get(), &main));
    main_.reset(main);
    Check(heif_context_get_primary_image_ID(context_.get(), &main_id_));
  }

  [[nodiscard]] Picture ReadPicture() const;
  [[nodiscard]] std::optional<DepthMap> ReadDepth() const;
  [[nodiscard]] Metadata ReadMetadata() const;

 private:
  [[noreturn]] void Refuse(const std::string& what) const {
    throw InputError(path_ + ": " + what);
  }
  void Check(const heif_error& error) const;

  [[nodiscard]] Image Decode(const Handle& handle, heif_colorspace space,
                             heif_chroma chroma) const;
  [[nodiscard]] Representation ReadRepresentation(heif_item_id depth) const;

  const std::string& path_;
  std::span<const uint8_t> bytes_;
  Context context_;
  Handle main_;
  heif_item_id main_id_ = 0;
};

void HeifFile::Check(const heif_error& error) const {
  if (error.code == heif_error_Ok) return;
  if (error.subcode == heif_suberror_End_of_data) Refuse("is truncated");
  // Some messages quote the file.
  std::string message = error.message;
  std::replace_if(
      message.begin(), message.end(), [](char c) { return c < ' ' || c > '~'; },
      ' ');
  const bool is_unsupported = error.code == heif_error_Unsupported_feature ||
                              error.code == heif_error_Unsupported_filetype;
  Refuse((is_unsupported ? "is of a kind that is not supported: "
                         : "is damaged: ") +
         message);
}

Image HeifFile::Decode(const Handle& handle, heif_colorspace space,
                       heif_chroma chroma) const {
  const Size size = {heif_image_handle_get_width(handle.get()),
                     heif_image_handle_get_height(handle.get())};
  RequireReadableSize(path_, size);
  const Options options(heif_decoding_options_alloc());
  if (options == nullptr) Refuse("is too large for the memory");
  options->convert_hdr_to_8bit = space == heif_colorspace_RGB ? 1 : 0;
  heif_image* decoded = nullptr;
  Check(
      heif_decode_image(handle.get(), &decoded, space, chroma, options.get()));
  Image image(decoded);
  RequireReadableSize(path_, {heif_image_get_primary_width(image.get()),
                              heif_image_get_primary_height(image.get())});
  return image;
}

// Rows of a channel of a decoded image.
struct Plane {
  Plane(const Image& image, heif_channel channel)
      : size{heif_image_get_width(image.get(), channel),
             heif_image_get_height(image.get(), channel)},
        first(heif_image_get_plane_readonly(image.get(), channel, &stride)) {}

  [[nodiscard]] const uint8_t* Row(int y) const {
    return first + static_cast<std::ptrdiff_t>(y) * stride;
  }

  Size size;
  int stride = 0;
  const uint8_t* first;
};

// On white; `is_premultiplied` if the colours have been by their alpha.
void CopyOpaque(const uint8_t* rgba, int width, bool is_premultiplied,
                uint8_t* rgb) {
  for (int x = 0; x < width; ++x, rgba += 4, rgb += 3) {
    const int alpha = rgba[3], white = 255 * (255 - alpha);
    for (int i = 0; i < 3; ++i) {
      const int colour = rgba[i] * (is_premultiplied ? 255 : alpha);
      rgb[i] =
          static_cast<uint8_t>(std::min((colour + white + 127) / 255, 255));
    }
  }
}

Picture HeifFile::ReadPicture() const {
  const bool has_alpha = heif_image_handle_has_alpha_channel(main_.get()) != 0;
  const bool is_premultiplied =
      heif_image_handle_is_premultiplied_alpha(main_.get()) != 0;
  const Image image = Decode(
      main_, heif_colorspace_RGB,
      has_alpha ? heif_chroma_interleaved_RGBA : heif_chroma_interleaved_RGB);
  const Plane plane(image, heif_channel_interleaved);
  if (plane.first == nullptr) Refuse("is damaged: it has no colours");
  Picture picture(plane.size.width, plane.size.height);
  for (int y = 0; y < picture.height; ++y) {
    uint8_t* row = picture.Pixel(0, y);
    if (has_alpha) {
      CopyOpaque(plane.Row(y), picture.width, is_premultiplied, row);
    } else {
      std::copy_n(plane.Row(y), 3 * static_cast<size_t>(picture.width), row);
    }
  }
  return picture;
}

// Samples become values in a straight line.
struct Scale {
  DepthMeaning meaning = DepthMeaning::kDisparity;
  const char* name = "";
  double at_zero = 0, at_most = 0;
};

// None if the limits are not in order.
std::optional<Scale> ScaleOf(const heif_depth_representation_info& info,
                             double most) {
  const bool has_lengths = info.has_z_near != 0 && info.has_z_far != 0;
  const bool has_disparities = info.has_d_min != 0 && info.has_d_max != 0;
  Scale scale = {.at_most = most};
  switch (info.depth_representation_type) {
    case heif_depth_representation_type_uniform_inverse_Z:
      scale.name = ", uniform inverse depth";
      if (!has_lengths) return scale;
      scale.at_zero = 1 / info.z_far;
      scale.at_most = 1 / info.z_near;
      break;
    case heif_depth_representation_type_uniform_disparity:
      scale.name = ", uniform disparity";
      if (!has_disparities) return scale;
      scale.at_zero = info.d_min;
      scale.at_most = info.d_max;
      return scale.at_zero <= scale.at_most ? std::optional(scale)
                                            : std::nullopt;
    default:
      scale.name = ", uniform depth";
      if (!has_lengths) return Scale{scale.meaning, scale.name, most, 0};
      scale.meaning = DepthMeaning::kLength;
      scale.at_zero = info.z_near;
      scale.at_most = info.z_far;
      break;
  }
  const bool is_in_order = info.z_near > 0 && info.z_near <= info.z_far;
  return is_in_order ? std::optional(scale) : std::nullopt;
}

Representation HeifFile::ReadRepresentation(heif_item_id depth) const {
  const heif_depth_representation_info* info = nullptr;
  if (heif_image_handle_get_depth_image_representation_info(main_.get(), depth,
                                                            &info) == 0) {
    return nullptr;
  }
  Representation representation(info);
  // Codes that libheif does not know come as they are, and an enumeration of
  // C++ cannot hold them.
  int type = 0;
  static_assert(sizeof(type) == sizeof(info->depth_representation_type));
  std::memcpy(&type, &info->depth_representation_type, sizeof(type));
  if (type == heif_depth_representation_type_nonuniform_disparity) {
    Refuse(
        "has depth in a scale of its own, nonuniform disparity, which is "
        "not read");
  }
  if (type < 0 || type > heif_depth_representation_type_nonuniform_disparity) {
    Refuse("has depth in the representation " + std::to_string(type) +
           ", which is not known");
  }
  return representation;
}

std::optional<DepthMap> HeifFile::ReadDepth() const {
  heif_item_id id = 0;
  if (heif_image_handle_get_list_of_depth_image_IDs(main_.get(), &id, 1) < 1) {
    return std::nullopt;
  }
  heif_image_handle* found = nullptr;
  Check(heif_image_handle_get_depth_image_handle(main_.get(), id, &found));
  const Handle handle(found);
  const Representation info = ReadRepresentation(id);
  const Image image =
      Decode(handle, heif_colorspace_undefined, heif_chroma_undefined);
  const Plane plane(image, heif_channel_Y);
  const int bits =
      heif_image_get_bits_per_pixel_range(image.get(), heif_channel_Y);
  if (plane.first == nullptr || bits < 1 || bits > 16) {
    Refuse("is damaged: its depth has no luma");
  }
  const double most = std::pow(2.0, bits) - 1;
  const std::optional<Scale> scale =
      info != nullptr ? ScaleOf(*info, most) : Scale{.at_most = most};
  if (!scale) Refuse("is damaged: the limits of its depth are not in order");
  DepthMap depth(plane.size.width, plane.size.height);
  depth.meaning = scale->meaning;
  depth.kind = std::string("HEIF depth image") + scale->name + ", " +
               std::to_string(bits) + " bits";
  const double step = (scale->at_most - scale->at_zero) / most;
  for (int y = 0; y < depth.height; ++y) {
    const uint8_t* row = plane.Row(y);
    for (int x = 0; x < depth.width; ++x) {
      uint16_t sample = row[x];
      if (bits > 8) std::memcpy(&sample, row + std::ptrdiff_t{2} * x, 2);
      depth.At(x, y) = static_cast<float>(scale->at_zero + step * sample);
    }
  }
  if (!ReadHeifTurns(bytes_, id).empty()) return depth;
  for (const int turn : ReadHeifTurns(bytes_, main_id_)) {
    TurnUpright(depth, turn);
  }
  return depth;
}

// An EXIF item has the offset of the block's TIFF header in front.
Bytes BlockOfItem(const Bytes& item) {
  constexpr size_t kOffsetBytes = 4;
  if (item.size() < kOffsetBytes) return {};
  size_t offset = 0;
  for (size_t i = 0; i < kOffsetBytes; ++i) offset = offset << 8 | item[i];
  if (offset >= item.size() - kOffsetBytes) return {};
  Bytes block = {'E', 'x', 'i', 'f', 0, 0};
  block.insert(
      block.end(),
      item.begin() + static_cast<std::ptrdiff_t>(kOffsetBytes + offset),
      item.end());
  return block;
}

Metadata HeifFile::ReadMetadata() const {
  Metadata metadata;
  metadata.icc.resize(
      heif_image_handle_get_raw_color_profile_size(main_.get()));
  if (!metadata.icc.empty()) {
    Check(heif_image_handle_get_raw_color_profile(main_.get(),
                                                  metadata.icc.data()));
  }
  heif_item_id id = 0;
  if (heif_image_handle_get_list_of_metadata_block_IDs(main_.get(), "Exif", &id,
                                                       1) == 1) {
    Bytes item(heif_image_handle_get_metadata_size(main_.get(), id));
    if (!item.empty()) {
      Check(heif_image_handle_get_metadata(main_.get(), id, item.data()));
    }
    metadata.exif = BlockOfItem(item);
  }
  return metadata;
}

}  // namespace

Photo ReadHeifPhoto(const std::string& path, std::span<const uint8_t> file) {
  const SilentDecoders silence;
  const HeifFile heif(path, file);
  return {.picture = heif.ReadPicture(),
          .depth = heif.ReadDepth(),
          .metadata = heif.ReadMetadata()};
}

}  // namespace zuqel::tools
