/* Decodes PNG files in memory. */
#include <png.h>
#include <setjmp.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "decode/decode.h"

struct PngSource {
  const uint8_t* bytes;
  size_t left;
  enum DecodeStatus status;
  char* reason;
};

static void OnError(png_structp png, png_const_charp message) {
  struct PngSource* source = png_get_error_ptr(png);
  if (source->status == kDecodeDone) source->status = kDecodeDamaged;
  snprintf(source->reason, kDecodeReasonSize, "%s", message);
  png_longjmp(png, 1);
}

static void OnWarning(png_structp png, png_const_charp message) {
  (void)png;
  (void)message;
}

static void ReadBytes(png_structp png, png_bytep target, size_t size) {
  struct PngSource* source = png_get_io_ptr(png);
  if (size > source->left) {
    source->status = kDecodeTruncated;
    png_error(png, "the file ends early");
  }
  memcpy(target, source->bytes, size);
  source->bytes += size;
  source->left -= size;
}

static void SetTransforms(png_structp png, enum PngLayout layout) {
  const uint16_t one = 1;
  const int little_endian = *(const uint8_t*)&one == 1;
  png_set_expand(png);
  if (layout == kPngRgb8) {
    png_set_scale_16(png);
    png_set_gray_to_rgb(png);
    const png_color_16 white = {0, 255, 255, 255, 255};
    png_set_background(png, &white, PNG_BACKGROUND_GAMMA_SCREEN, 0, 1);
    return;
  }
  png_set_strip_alpha(png);
  /* With the weights of sRGB. Grey pixels keep their value. */
  png_set_rgb_to_gray(png, PNG_ERROR_ACTION_NONE, -1, -1);
  if (layout == kPngGrey16 && little_endian) png_set_swap(png);
}

struct PngTarget {
  enum PngLayout layout;
  uint8_t* pixels;
  size_t size;
  struct PngBlocks* blocks; /* or null */
};

static uint8_t* Copy(png_structp png, const uint8_t* bytes, size_t size) {
  uint8_t* copy = malloc(size);
  if (copy == NULL) png_error(png, "out of memory");
  return memcpy(copy, bytes, size);
}

static void CopyBlocks(png_structp png, png_infop info,
                       struct PngBlocks* blocks) {
  png_charp name = NULL;
  int compression = 0;
  png_bytep bytes = NULL;
  png_uint_32 size = 0;
  if (png_get_iCCP(png, info, &name, &compression, &bytes, &size) != 0) {
    blocks->icc = Copy(png, bytes, size);
    blocks->icc_size = size;
  }
  if (png_get_eXIf_1(png, info, &size, &bytes) != 0) {
    blocks->exif = Copy(png, bytes, size);
    blocks->exif_size = size;
  }
}

static void ReadRows(png_structp png, png_infop info,
                     const struct PngTarget* target) {
  SetTransforms(png, target->layout);
  const int passes = png_set_interlace_handling(png);
  png_read_update_info(png, info);
  const size_t row_bytes = png_get_rowbytes(png, info);
  const png_uint_32 height = png_get_image_height(png, info);
  if (row_bytes * height != target->size) {
    png_error(png, "the pixels have another size than the header says");
  }
  for (int pass = 0; pass < passes; ++pass) {
    for (png_uint_32 y = 0; y < height; ++y) {
      png_read_row(png, target->pixels + y * row_bytes, NULL);
    }
  }
  png_read_end(png, info);
  if (target->blocks != NULL) CopyBlocks(png, info, target->blocks);
}

static void CopyHeader(png_structp png, png_infop info,
                       struct PngHeader* header) {
  header->width = (int)png_get_image_width(png, info);
  header->height = (int)png_get_image_height(png, info);
  header->bit_depth = png_get_bit_depth(png, info);
  header->is_grey = png_get_color_type(png, info) == PNG_COLOR_TYPE_GRAY;
}

/* Errors jump back to here; the caller cleans up. One of `header` and `target`
 * is null. */
static void Decode(png_structp png, png_infop info, struct PngHeader* header,
                   const struct PngTarget* target) {
  if (setjmp(png_jmpbuf(png)) != 0) return;
  png_set_read_fn(png, png_get_error_ptr(png), ReadBytes);
  /* No limit here: the caller checks the size and words the error. */
  png_set_user_limits(png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
  /* Texts and the like, which may unpack to gigabytes, are skipped;
   * transparency is not one of them. */
  png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_NEVER, NULL, -1);
  if (target != NULL && target->blocks != NULL) {
    png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_AS_DEFAULT,
                                (png_const_bytep) "iCCP\0eXIf", 2);
  }
  png_read_info(png, info);
  if (header != NULL) CopyHeader(png, info, header);
  if (target != NULL) ReadRows(png, info, target);
}

static enum DecodeStatus Read(struct PngSource source, struct PngHeader* header,
                              const struct PngTarget* target) {
  png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, &source,
                                           OnError, OnWarning);
  png_infop info = png != NULL ? png_create_info_struct(png) : NULL;
  if (info != NULL) {
    Decode(png, info, header, target);
  } else {
    source.status = kDecodeDamaged;
    snprintf(source.reason, kDecodeReasonSize, "out of memory");
  }
  png_destroy_read_struct(&png, &info, NULL);
  return source.status;
}

enum DecodeStatus ReadPngHeader(const uint8_t* bytes, size_t size,
                                struct PngHeader* header, char* reason) {
  const struct PngSource source = {bytes, size, kDecodeDone, reason};
  return Read(source, header, NULL);
}

enum DecodeStatus DecodePng(const uint8_t* bytes, size_t size,
                            enum PngLayout layout, void* pixels,
                            size_t pixels_size, struct PngBlocks* blocks,
                            char* reason) {
  const struct PngSource source = {bytes, size, kDecodeDone, reason};
  const struct PngTarget target = {layout, pixels, pixels_size, blocks};
  return Read(source, NULL, &target);
}
