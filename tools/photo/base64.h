// Bytes written as text.
#ifndef ZUQEL_TOOLS_PHOTO_BASE64_H_
#define ZUQEL_TOOLS_PHOTO_BASE64_H_

#include <optional>
#include <string_view>

#include "files/file_bytes.h"

namespace zuqel::tools {

// White space between the digits and missing padding are fine; anything else
// that is not base64 gives nothing.
std::optional<Bytes> DecodeBase64(std::string_view text);

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_PHOTO_BASE64_H_
