// HEIC and AVIF files for tests, put together from encoded pictures.
#include "heif_samples.h"

#include <libheif/heif.h>

#include <algorithm>
#include <array>
#include <bitset>
#include <cmath>
#include <stdexcept>

// The encoder of HEVC loses some of its memory.
// NOLINTNEXTLINE(bugprone-reserved-identifier): the sanitizer's name
extern "C" const char* __lsan_default_suppressions() {
  return "leak:libx265";
}

namespace zuqel::tools {
namespace {

using Text = std::string;

void Check(const heif_error& error) {
  if (error.code != heif_error_Ok) throw std::runtime_error(error.message);
}

Text Number(size_t value, size_t bytes) {
  Text text(bytes, '\0');
  for (char& byte : text) byte = static_cast<char>(value >> 8 * --bytes);
  return text;
}

Text Box(const Text& type, const Text& content) {
  return Number(content.size() + 8, 4) + type + content;
}

Text FullBox(const Text& type, const Text& content, size_t version = 0) {
  return Box(type, Number(version << 24, 4) + content);
}

struct Item {
  size_t id;
  Text type;
  std::vector<Text> properties;
  Text data;
};

// What a file of a single image says about it: all boxes are small but the
// last, of the data.
Item Dissect(const Text& file, size_t id, bool is_avif) {
  Item item = {id, is_avif ? "av01" : "hvc1", {}, {}};
  const size_t start = file.find("ipco"), end = file.find("ipma") - 4;
  for (size_t box = start + 4; box < end;) {
    const size_t size = static_cast<uint8_t>(file[box + 3]);
    item.properties.push_back(file.substr(box, size));
    box += size;
  }
  item.data = file.substr(file.find("mdat") + 4);
  return item;
}

Item Encode(heif_image* image, size_t id, bool is_avif) {
  heif_context* context = heif_context_alloc();
  heif_encoder* encoder = nullptr;
  Check(heif_context_get_encoder_for_format(
      context, is_avif ? heif_compression_AV1 : heif_compression_HEVC,
      &encoder));
  if (is_avif) {
    Check(heif_encoder_set_lossy_quality(encoder, 100));
    Check(heif_encoder_set_parameter_integer(encoder, "speed", 9));
  } else {
    Check(heif_encoder_set_lossless(encoder, 1));
  }
  Check(heif_context_encode_image(context, image, encoder, nullptr, nullptr));
  Text file;
  heif_writer writer = {
      1, [](heif_context*, const void* data, size_t size, void* target) {
        static_cast<Text*>(target)->assign(static_cast<const char*>(data),
                                           size);
        return heif_error{heif_error_Ok, heif_suberror_Unspecified, ""};
      }};
  Check(heif_context_write(context, &writer, &file));
  heif_image_release(image);
  heif_encoder_release(encoder);
  heif_context_free(context);
  return Dissect(file, id, is_avif);
}

struct Target {
  Target(Size size, heif_colorspace space, heif_chroma chroma,
         heif_channel channel, int bits) {
    Check(heif_image_create(size.width, size.height, space, chroma, &image));
    Check(heif_image_add_plane(image, channel, size.width, size.height, bits));
    plane = heif_image_get_plane(image, channel, &stride);
  }

  heif_image* image = nullptr;
  int stride = 0;
  uint8_t* plane;
};

Item EncodePicture(const HeifSample& sample) {
  const Picture& picture = sample.picture;
  const Target to(SizeOf(picture), heif_colorspace_RGB,
                  heif_chroma_interleaved_RGB, heif_channel_interleaved, 8);
  for (int y = 0; y < picture.height; ++y) {
    std::copy_n(picture.Pixel(0, y), 3 * picture.width,
                to.plane + std::ptrdiff_t{y} * to.stride);
  }
  return Encode(to.image, 1, sample.is_avif);
}

Item EncodeDepth(const HeifSample& sample) {
  const Map<uint16_t>& depth = sample.depth;
  const Target to(SizeOf(depth), heif_colorspace_monochrome,
                  heif_chroma_monochrome, heif_channel_Y, sample.depth_bits);
  const int step = sample.depth_bits > 8 ? 2 : 1;
  for (int y = 0; y < depth.height; ++y) {
    uint8_t* value = to.plane + std::ptrdiff_t{y} * to.stride;
    for (int x = 0; x < depth.width; ++x, value += step) {
      value[step - 1] = static_cast<uint8_t>(depth.At(x, y) >> 8);
      value[0] = static_cast<uint8_t>(depth.At(x, y));
    }
  }
  Item item = Encode(to.image, 2, sample.is_avif);
  item.properties.push_back(FullBox(
      "auxC", sample.depth_type + Text(1, '\0') + sample.depth_subtypes));
  return item;
}

void AddTurns(const Text& turns, Item& item) {
  for (size_t i = 0; i < turns.size(); i += 2) {
    const auto value = static_cast<size_t>(turns[i + 1] - '0');
    item.properties.push_back(
        Box(turns[i] == 'r' ? "irot" : "imir", Number(value, 1)));
  }
}

// With the items' data at `start` in the file.
Text Meta(const std::vector<Item>& items, size_t start) {
  Text entries, references, properties, associations, places;
  size_t property_count = 0;
  for (const Item& item : items) {
    const Text id = Number(item.id, 2);
    entries += FullBox("infe", id + Number(0, 2) + item.type + Number(0, 1), 2);
    if (item.id > 1) {
      references += Box(item.type == "Exif" ? "cdsc" : "auxl",
                        id + Number(1, 2) + Number(1, 2));
    }
    associations += id + Number(item.properties.size(), 1);
    for (const Text& property : item.properties) {
      properties += property;
      associations += Number(++property_count, 1);
    }
    places += id + Number(0, 2) + Number(1, 2) + Number(start, 4) +
              Number(item.data.size(), 4);
    start += item.data.size();
  }
  const size_t count = items.size();
  return FullBox(
      "meta",
      FullBox("hdlr", Number(0, 4) + "pict" + Text(13, '\0')) +
          FullBox("pitm", Number(1, 2)) +
          FullBox("iinf", Number(count, 2) + entries) +
          FullBox("iref", references) +
          Box("iprp", Box("ipco", properties) +
                          FullBox("ipma", Number(count, 4) + associations)) +
          FullBox("iloc", Number(0x4400, 2) + Number(count, 2) + places));
}

Text Bits(unsigned value, size_t count) {
  return std::bitset<32>(value).to_string().substr(32 - count);
}

// Sign, exponent, and 23 bits of the fraction.
Text RealBits(double value) {
  int exponent = -30;
  double fraction = 1;
  if (value != 0) fraction = 2 * std::frexp(std::abs(value), &exponent);
  return Bits(value < 0 ? 1 : 0, 1) +
         Bits(static_cast<unsigned>(exponent + 30), 7) + Bits(22, 5) +
         Bits(static_cast<unsigned>(std::ldexp(fraction - 1, 23)), 23);
}

}  // namespace

Bytes Heif(const HeifSample& sample) {
  std::vector<Item> items = {EncodePicture(sample)};
  AddTurns(sample.turns, items[0]);
  if (!sample.icc.empty()) {
    items[0].properties.push_back(
        Box("colr", "prof" + Text(sample.icc.begin(), sample.icc.end())));
  }
  if (sample.depth.width > 0) {
    items.push_back(EncodeDepth(sample));
    AddTurns(sample.depth_turns, items.back());
  }
  if (!sample.exif.empty()) {
    items.push_back({3, "Exif", {}, {sample.exif.begin(), sample.exif.end()}});
  }
  const Text brand = sample.is_avif ? "avif" : "heic";
  const Text type = Box("ftyp", brand + Number(0, 4) + "mif1" + brand);
  Text data;
  for (const Item& item : items) data += item.data;
  const size_t start = type.size() + Meta(items, 0).size() + 8;
  const Text file = type + Meta(items, start) + Box("mdat", data);
  return {file.begin(), file.end()};
}

std::string DepthRepresentation(size_t type, const Limits& limits) {
  constexpr std::array kCodes = {"1", "010", "011", "00100", "00101"};
  Text flags, values;
  for (const auto& value :
       {limits.z_near, limits.z_far, limits.d_min, limits.d_max}) {
    flags += value ? '1' : '0';
    if (value) values += RealBits(*value);
  }
  const bool has_view = limits.d_min || limits.d_max;
  Text bits = flags + kCodes.at(type) + (has_view ? "1" : "") + values + "1";
  bits.resize((bits.size() + 7) / 8 * 8, '0');
  Text message = "\x4e\x01\xb1" + Number(bits.size() / 8, 1);
  for (size_t i = 0; i < bits.size(); i += 8) {
    message += static_cast<char>(std::bitset<8>(bits, i, 8).to_ulong());
  }
  return Number(message.size() + 4, 4) + Number(message.size(), 4) + message;
}

}  // namespace zuqel::tools
