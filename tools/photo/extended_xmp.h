// XMP that is too large for one segment of a JPEG file.
#ifndef ZUQEL_TOOLS_PHOTO_EXTENDED_XMP_H_
#define ZUQEL_TOOLS_PHOTO_EXTENDED_XMP_H_

#include <span>
#include <string>
#include <string_view>

namespace zuqel::tools {

// Puts together the pieces that have this name, in any order: each begins with
// the name, the length of the whole and its own offset there. The name is the
// MD5 sum of the whole. Pieces of another name are left over from an earlier
// version. Throws InputError, which names `path`.
std::string JoinExtendedXmp(const std::string& path,
                            std::span<const std::string> pieces,
                            std::string_view name);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_PHOTO_EXTENDED_XMP_H_
