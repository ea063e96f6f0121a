// Turns what the decoders report into errors.
#ifndef ZUQEL_TOOLS_PHOTO_DECODE_ERROR_H_
#define ZUQEL_TOOLS_PHOTO_DECODE_ERROR_H_

#include <array>
#include <string>

#include "decode/decode.h"
#include "tool_error.h"

namespace zuqel::tools {

using Reason = std::array<char, kDecodeReasonSize>;

inline void CheckDecoded(const std::string& path, DecodeStatus status,
                         const Reason& reason) {
  if (status == kDecodeTruncated) throw InputError(path + ": is truncated");
  if (status == kDecodeDamaged) {
    throw InputError(path + ": is damaged: " + reason.data());
  }
  if (status == kDecodeUnsupported) {
    throw InputError(path + ": is " + reason.data() +
                     ", which is not supported");
  }
}

}  // namespace zuqel::tools

#endif  // ZUQEL_TOOLS_PHOTO_DECODE_ERROR_H_
