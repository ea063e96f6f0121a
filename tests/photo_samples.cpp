// Photos with depth, for the tests of their readers.
#include "photo_samples.h"

#include <regex>

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

Segments::value_type XmpSegment(const std::string& packet) {
  return {'\xe1', "http://ns.adobe.com/xap/1.0/" + ('\0' + packet)};
}

std::string Range(const std::string& prefix, const std::string& format) {
  return prefix + "Format='" + format + "'" + prefix + "Near='0.5'" + prefix +
         "Far=' 4.0 '" + prefix + "Units='m'";
}

std::string DepthMapElement(const std::string& uri, const std::string& format) {
  return "<Camera:DepthMap" + Range(" DepthMap:", format) +
         " DepthMap:DepthURI='uri/" + uri + "'/>";
}

std::string ListItem(const std::string& semantic, size_t length, int padding,
                     ListForm form) {
  const std::string item = " Item:Semantic='" + semantic +
                           "' Item:DataURI='uri/" + semantic +
                           "' Item:Length='" + std::to_string(length) +
                           "' Item:Padding='" + std::to_string(padding) + "'";
  if (form == kFlat) return "<rdf:li" + item + "/>";
  if (form == kAttributes) return "<rdf:li><C:Item" + item + "/></rdf:li>";
  return "<rdf:li><rdf:Description><C:Item rdf:parseType='Resource'>" +
         Elements(item) + "</C:Item></rdf:Description></rdf:li>";
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

Bytes JpegWith(const Segments& segments, const std::string& after) {
  std::string file = Text(Jpeg(NoisePicture(8, 6))) + after, added;
  for (const auto& [marker, content] : segments) {
    added += '\xff';
    added += marker + BigEndian(content.size() + 2, 2) + content;
  }
  file.insert(2, added);
  return {file.begin(), file.end()};
}

Bytes JpegWithXmp(const std::string& packet) {
  return JpegWith({XmpSegment(packet)});
}

std::string Packet(const std::string& attributes, const std::string& elements) {
  const std::string photos = "='http://ns.google.com/photos/";
  return "<?xpacket?><x:xmpmeta xmlns:x='adobe:ns:meta/'><rdf:RDF xmlns:rdf='"
         "http://www.w3.org/1999/02/22-rdf-syntax-ns#'><rdf:Description "
         "xmlns:xmpNote='http://ns.adobe.com/xmp/note/' xmlns:GDepth" +
         photos + "1.0/depthmap/' xmlns:GImage" + photos +
         "1.0/image/' xmlns:C" + photos + "dd/1.0/container/' xmlns:Item" +
         photos + "dd/1.0/item/' xmlns:Camera" + photos +
         "dd/1.0/camera/' xmlns:DepthMap" + photos + "dd/1.0/depthmap/'" +
         attributes + ">" + elements +
         "</rdf:Description></rdf:RDF></x:xmpmeta>\n" + '\0';
}

std::string Elements(const std::string& attributes) {
  return std::regex_replace(attributes, std::regex(" ([^=]+)='([^']*)'"),
                            "<$1>\n $2</$1>");
}

std::string GDepth(const std::string& format, const Bytes& depth,
                   const Bytes& original) {
  return Range(" GDepth:", format) + " GDepth:Data='" + Base64(depth) +
         "' GImage:Data='" + Base64(original) + "'";
}

Segments ExtendedSegments() {
  const std::string extended = Packet("", Elements(GDepth("RangeInverse"))),
                    name = Md5(extended);
  Segments segments;
  for (size_t at = 0; at < extended.size(); at += 64) {
    segments.emplace_back('\xe1',
                          "http://ns.adobe.com/xmp/extension/" + ('\0' + name) +
                              BigEndian(extended.size(), 4) + BigEndian(at, 4) +
                              extended.substr(at, 64));
  }
  segments.push_back(
      XmpSegment(Packet(" xmpNote:HasExtendedXMP='" + name + "'")));
  return segments;
}

Bytes DynamicDepth(const std::string& packet) {
  const std::string exif = std::string("Exif\0\0", 6) + Text(JpegWith({}));
  return JpegWith({{'\xe1', exif}, XmpSegment(packet)},
                  "...gain map..original" + Text(DepthPng()));
}

std::string DynamicPacket(ListForm form) {
  return Packet("", "<C:Directory><rdf:Seq>" + ListItem("Primary", 0, 3, form) +
                        ListItem("GainMap", 8, 2, form) +
                        ListItem("Original", 8, 0, form) +
                        ListItem("Depth", DepthPng().size(), 0, form) +
                        "</rdf:Seq></C:Directory>" +
                        DepthMapElement("Other", "RangeLinear") +
                        DepthMapElement("Depth", "RangeInverse"));
}

}  // namespace zuqel::tools
