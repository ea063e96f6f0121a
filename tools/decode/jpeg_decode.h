/* Decodes a JPEG file that lies in memory. */
#ifndef ZUQEL_TOOLS_DECODE_JPEG_DECODE_H_
#define ZUQEL_TOOLS_DECODE_JPEG_DECODE_H_

#include <stddef.h>
#include <stdint.h>

#include "decode/decode_status.h"

#ifdef __cplusplus
extern "C" {
#endif

/* On failure `reason` (kDecodeReasonSize bytes) says why. */
enum DecodeStatus ReadJpegSize(const uint8_t* bytes, size_t size, int* width,
                               int* height, char* reason);

/* Writes width x height x 3 bytes, red, green, blue, with the size that
 * ReadJpegSize gives for the same bytes, to the `rgb_size` bytes at `rgb`;
 * fails where that is not their size. `rgb` is partly written on failure. */
enum DecodeStatus DecodeJpeg(const uint8_t* bytes, size_t size, uint8_t* rgb,
                             size_t rgb_size, char* reason);

#ifdef __cplusplus
}
#endif

#endif /* ZUQEL_TOOLS_DECODE_JPEG_DECODE_H_ */
