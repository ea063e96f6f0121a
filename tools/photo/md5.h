// The check sum that names extended XMP.
#ifndef ZUQEL_TOOLS_PHOTO_MD5_H_
#define ZUQEL_TOOLS_PHOTO_MD5_H_

#include <string>
#include <string_view>

namespace zuqel::tools {

// As 32 hexadecimal digits, in capitals.
std::string Md5(std::string_view bytes);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_PHOTO_MD5_H_
