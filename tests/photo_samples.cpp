// Photos with depth, for the tests of their readers.
#include "photo_samples.h"

#include "photo/md5.h"

namespace zuqel::tools {
namespace {

std::string BigEndian(size_t value, int bytes) {
  std::string text;
  while (bytes-- > 0) text += static_cast<char>(value >> 8 * bytes);
  return text;
}

std::string Base64(const Bytes& bytes) {
  std::string text;
  for (size_t bit = 0; bit < 8 * bytes.size(); bit += 6) {
    const size_t at = bit / 8;
    const int next = at + 1 < bytes.size() ? bytes[at + 1] : 0;
    const int digit = (bytes[at] << 8 | next) >> (10 - bit % 8) & 63;
    text += "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/"
        [digit];
  }
  return text.append((4 - text.size() % 4) % 4, '=');
}

std::string DepthMapElement(const std::string& uri, const Pairs& range) {
  return "<Camera:DepthMap" + Attributes(range) +
         Attributes({{"DepthMap:DepthURI", uri}}) + "/>";
}

const std::vector<Listed>& Files() {
  static const std::vector<Listed> files = {
      {"Primary", {}, 3},
      {"GainMap", {1, 2, 3, 4, 5}, 2},
      {"Original", {'o', 'r', 'i', 'g', 'i', 'n', 'a', 'l'}},
      {"Depth", DepthPng()}};
  return files;
}

}  // namespace

std::string Text(const Bytes& bytes) {
  return {bytes.begin(), bytes.end()};
}

Bytes DepthPng() {
  Map<uint8_t> map(3, 1);
  map.values = {0, 51, 255};
  return Png(map);
}

Bytes JpegWith(const std::vector<App>& segments, const Bytes& after) {
  Bytes file = {0xff, 0xd8};
  const auto add = [&](const auto& bytes) {
    file.insert(file.end(), bytes.begin(), bytes.end());
  };
  for (const auto& [marker, content] : segments) {
    add(BigEndian(0xff00U + static_cast<unsigned>(marker), 2));
    add(BigEndian(content.size() + 2, 2));
    add(content);
  }
  const Bytes picture = Jpeg(NoisePicture(8, 6));
  file.insert(file.end(), picture.begin() + 2, picture.end());
  add(after);
  return file;
}

App Standard(const std::string& packet) {
  return {0xe1, std::string("http://ns.adobe.com/xap/1.0/\0", 29) + packet};
}

App Extended(const std::string& name, size_t size, size_t offset,
             const std::string& content) {
  return {0xe1, std::string("http://ns.adobe.com/xmp/extension/\0", 35) + name +
                    BigEndian(size, 4) + BigEndian(offset, 4) + content};
}

std::string Attributes(const Pairs& pairs) {
  std::string text;
  for (const auto& [name, value] : pairs) {
    text.append(" ").append(name).append("='").append(value).append("'");
  }
  return text;
}

std::string Elements(const Pairs& pairs) {
  std::string text;
  for (const auto& [name, value] : pairs) {
    text.append("<" + name + ">\n ").append(value).append("</" + name + ">");
  }
  return text;
}

std::string Packet(const std::string& attributes, const std::string& elements) {
  const std::string photos = "http://ns.google.com/photos/";
  return "<?xpacket?><x:xmpmeta xmlns:x='adobe:ns:meta/'><rdf:RDF xmlns:rdf='"
         "http://www.w3.org/1999/02/22-rdf-syntax-ns#'><rdf:Description" +
         Attributes({{"xmlns:GDepth", photos + "1.0/depthmap/"},
                     {"xmlns:GImage", photos + "1.0/image/"},
                     {"xmlns:C", photos + "dd/1.0/container/"},
                     {"xmlns:Item", photos + "dd/1.0/item/"},
                     {"xmlns:Camera", photos + "dd/1.0/camera/"},
                     {"xmlns:DepthMap", photos + "dd/1.0/depthmap/"},
                     {"xmlns:xmpNote", "http://ns.adobe.com/xmp/note/"}}) +
         attributes + ">" + elements +
         "</rdf:Description></rdf:RDF></x:xmpmeta>\n" + std::string(3, '\0');
}

Pairs Range(const std::string& prefix, const std::string& format) {
  return {{prefix + ":Format", format},
          {prefix + ":Near", "0.5"},
          {prefix + ":Far", " 4.0 "},
          {prefix + ":Units", "m"}};
}

Pairs Data(const Bytes& depth) {
  return {{"GDepth:Data", Base64(depth)}, {"GImage:Data", "b3JpZ2luYWw="}};
}

std::string GDepth(const Bytes& depth, const std::string& format) {
  return Packet(Attributes(Range("GDepth", format)) + Attributes(Data(depth)));
}

std::vector<App> InSegments(const Bytes& depth) {
  const std::string extended = Packet("", Elements(Data(depth))),
                    name = Md5(extended);
  std::vector<App> segments = {
      Standard(Packet(Attributes(Range("GDepth", "RangeInverse")) +
                      Attributes({{"xmpNote:HasExtendedXMP", name}})))};
  for (size_t at = 0; at < extended.size(); at += 64) {
    segments.push_back(
        Extended(name, extended.size(), at, extended.substr(at, 64)));
  }
  return segments;
}

std::string List(const std::vector<Listed>& files, ListForm form) {
  std::string list = "<C:Directory><rdf:Seq>";
  for (const auto& [semantic, file, padding] : files) {
    const Pairs item = {{"Item:Semantic", semantic},
                        {"Item:Mime", "image/png"},
                        {"Item:DataURI", "uri/" + semantic},
                        {"Item:Length", std::to_string(file.size())},
                        {"Item:Padding", std::to_string(padding)}};
    if (form == kFlat) {
      list += "<rdf:li" + Attributes(item) + "/>";
    } else if (form == kAttributes) {
      list += "<rdf:li rdf:parseType='Resource'><C:Item" + Attributes(item) +
              "/></rdf:li>";
    } else {
      list += "<rdf:li><rdf:Description><C:Item rdf:parseType='Resource'>" +
              Elements(item) + "</C:Item></rdf:Description></rdf:li>";
    }
  }
  return list + "</rdf:Seq></C:Directory>";
}

Bytes DynamicDepth(const std::string& packet) {
  Bytes after;
  for (const auto& [semantic, file, padding] : Files()) {
    after.insert(after.end(), file.begin(), file.end());
    after.resize(after.size() + padding);
  }
  const std::string exif = std::string("Exif\0\0", 6) + Text(JpegWith({}));
  return JpegWith({{0xe1, exif}, Standard(packet)}, after);
}

std::string DynamicPacket(ListForm form) {
  return Packet(
      "", List(Files(), form) +
              DepthMapElement("uri/Other", Range("DepthMap", "RangeLinear")) +
              DepthMapElement("uri/Depth", Range("DepthMap", "RangeInverse")));
}

}  // namespace zuqel::tools
