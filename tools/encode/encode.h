/* Encodes pictures as JPEG and PNG files. In C because libpng and libjpeg
 * report errors by longjmp, which must not skip C++ destructors. */
#ifndef ZUQEL_TOOLS_ENCODE_ENCODE_H_
#define ZUQEL_TOOLS_ENCODE_ENCODE_H_

#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Rows are contiguous, with red, green, blue. */
struct RgbImage {
  int width, height;
  const uint8_t* rgb;
};

/* Without bytes, the file gets none. */
struct FileBlock {
  const uint8_t* bytes;
  size_t size;
};

enum { kEncodeReasonSize = 256 };

/* Row by row. Return 1, or 0 and write the reason to `reason`, which has room
 * for kEncodeReasonSize bytes. */

/* `quality` is 1 to 100. `exif` starts with "Exif\0\0" and fits in a segment.
 */
int EncodeJpeg(FILE* file, const struct RgbImage* image, int quality,
               struct FileBlock icc, struct FileBlock exif, char* reason);

/* Leaves out a profile that libpng finds a fault with. */
int EncodePng(FILE* file, const struct RgbImage* image, struct FileBlock icc,
              char* reason);

#ifdef __cplusplus
}
#endif

#endif /* ZUQEL_TOOLS_ENCODE_ENCODE_H_ */
