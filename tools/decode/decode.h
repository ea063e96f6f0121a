/* Decodes PNG and JPEG files in memory. In C because libpng and libjpeg report
 * errors by longjmp, which must not skip C++ destructors. */
#ifndef ZUQEL_TOOLS_DECODE_DECODE_H_
#define ZUQEL_TOOLS_DECODE_DECODE_H_

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* On failure every function writes the reason to `reason`, which has room for
 * kDecodeReasonSize bytes. */
enum DecodeStatus { kDecodeDone, kDecodeTruncated, kDecodeDamaged };
enum { kDecodeReasonSize = 256 };

/* What the file's header says. */
struct PngHeader {
  int width, height;
  int bit_depth; /* of a channel */
  int is_grey;   /* without alpha */
};

enum DecodeStatus ReadPngHeader(const uint8_t* bytes, size_t size,
                                struct PngHeader* header, char* reason);

/* Layout of the decoded pixels. The grey ones are for files of just that kind.
 */
enum PngLayout {
  kPngRgb8,  /* any file: 3 bytes; alpha dropped, palette and grey expanded */
  kPngGrey8, /* 1 byte */
  kPngGrey16 /* one uint16_t, native byte order */
};

/* Writes width x height pixels, as ReadPngHeader gives them for the same bytes,
 * to the `pixels_size` bytes at `pixels`; fails if that is not their size. On
 * failure `pixels` may be partly written. */
enum DecodeStatus DecodePng(const uint8_t* bytes, size_t size,
                            enum PngLayout layout, void* pixels,
                            size_t pixels_size, char* reason);

enum DecodeStatus ReadJpegSize(const uint8_t* bytes, size_t size, int* width,
                               int* height, char* reason);

/* Writes width x height pixels, 3 bytes each (red, green, blue), with the size
 * that ReadJpegSize gives for the same bytes, to the `rgb_size` bytes at `rgb`;
 * fails if that is not their size. On failure `rgb` may be partly written. */
enum DecodeStatus DecodeJpeg(const uint8_t* bytes, size_t size, uint8_t* rgb,
                             size_t rgb_size, char* reason);

#ifdef __cplusplus
}
#endif

#endif /* ZUQEL_TOOLS_DECODE_DECODE_H_ */
