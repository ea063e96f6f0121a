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
enum DecodeStatus {
  kDecodeDone,
  kDecodeTruncated,
  kDecodeDamaged,
  kDecodeUnsupported /* the reason says what the file is: "a CMYK JPEG" */
};
enum { kDecodeReasonSize = 256 };

/* What the file's header says. */
struct PngHeader {
  int width, height;
  int bit_depth; /* of a channel */
  int is_grey;   /* without alpha */
};

enum DecodeStatus ReadPngHeader(const uint8_t* bytes, size_t size,
                                struct PngHeader* header, char* reason);

/* Layout of the decoded pixels. Palettes are expanded. */
enum PngLayout {
  kPngRgb8,  /* 3 bytes, on white */
  kPngGrey8, /* 1 byte, alpha dropped; not for files with a bit depth of 16 */
  kPngGrey16 /* one uint16_t, native byte order; only for those */
};

/* What the file holds besides its pixels, null where it holds none; for the
 * caller to free, also on failure. */
struct PngBlocks {
  uint8_t *icc, *exif; /* the latter without "Exif\0\0" */
  size_t icc_size, exif_size;
};

/* Writes width x height pixels, as ReadPngHeader gives them for the same bytes,
 * to the `pixels_size` bytes at `pixels`; fails if that is not their size. On
 * failure `pixels` may be partly written. `blocks` may be null. */
enum DecodeStatus DecodePng(const uint8_t* bytes, size_t size,
                            enum PngLayout layout, void* pixels,
                            size_t pixels_size, struct PngBlocks* blocks,
                            char* reason);

enum DecodeStatus ReadJpegSize(const uint8_t* bytes, size_t size, int* width,
                               int* height, char* reason);

enum JpegLayout { kJpegRgb8, kJpegGrey8 };

/* Writes width x height pixels, as ReadJpegSize gives them for the same bytes,
 * to the `pixels_size` bytes at `pixels`; fails if that is not their size. On
 * failure `pixels` may be partly written. */
enum DecodeStatus DecodeJpeg(const uint8_t* bytes, size_t size,
                             enum JpegLayout layout, uint8_t* pixels,
                             size_t pixels_size, char* reason);

/* What a file holds besides its picture. */
struct JpegMarkers;

/* Reads what comes before the first scan. `markers` is closed by
 * CloseJpegMarkers; null on failure. */
enum DecodeStatus OpenJpegMarkers(const uint8_t* bytes, size_t size,
                                  struct JpegMarkers** markers, char* reason);

/* The content of the next APP1 segment, where EXIF and XMP are; null after the
 * last. */
const uint8_t* NextJpegSegment(struct JpegMarkers* markers, size_t* size);

/* The ICC profile; null without a whole one. */
const uint8_t* JpegProfile(const struct JpegMarkers* markers, size_t* size);

void CloseJpegMarkers(struct JpegMarkers* markers);

#ifdef __cplusplus
}
#endif

#endif /* ZUQEL_TOOLS_DECODE_DECODE_H_ */
