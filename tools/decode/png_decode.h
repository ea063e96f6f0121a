/* Decodes a PNG file that lies in memory. */
#ifndef ZUQEL_TOOLS_DECODE_PNG_DECODE_H_
#define ZUQEL_TOOLS_DECODE_PNG_DECODE_H_

#include <stddef.h>
#include <stdint.h>

#include "decode/decode_status.h"

#ifdef __cplusplus
extern "C" {
#endif

/* What the file's header says. */
struct PngHeader {
  int width, height;
  int bit_depth; /* of a channel */
  int is_grey;   /* without alpha */
};

/* On failure `reason` (kDecodeReasonSize bytes) says why. */
enum DecodeStatus ReadPngHeader(const uint8_t* bytes, size_t size,
                                struct PngHeader* header, char* reason);

/* How a pixel leaves the decoder. Grey is for files that are just that. */
enum PngLayout {
  kPngRgb8,  /* any file: 3 bytes; alpha dropped, palette and grey expanded */
  kPngGrey8, /* 1 byte */
  kPngGrey16 /* one uint16_t of this machine's byte order */
};

/* Writes width x height pixels, as ReadPngHeader gives them for the same bytes,
 * to the `pixels_size` bytes at `pixels`; fails where that is not their size.
 * On failure `reason` says why; `pixels` is then partly written. */
enum DecodeStatus DecodePng(const uint8_t* bytes, size_t size,
                            enum PngLayout layout, void* pixels,
                            size_t pixels_size, char* reason);

#ifdef __cplusplus
}
#endif

#endif /* ZUQEL_TOOLS_DECODE_PNG_DECODE_H_ */
