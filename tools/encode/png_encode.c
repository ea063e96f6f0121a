/* Encodes pictures as PNG files. */
#include <png.h>
#include <setjmp.h>
#include <stdio.h>

#include "encode/encode.h"

static void OnError(png_structp png, png_const_charp message) {
  snprintf(png_get_error_ptr(png), kEncodeReasonSize, "%s", message);
  png_longjmp(png, 1);
}

static void OnWarning(png_structp png, png_const_charp message) {
  (void)png;
  (void)message;
}

/* Errors jump back to here; the caller cleans up. */
static int Encode(png_structp png, png_infop info, FILE* file,
                  const struct RgbImage* image, struct FileBlock icc) {
  if (setjmp(png_jmpbuf(png)) != 0) return 0;
  png_init_io(png, file);
  /* A profile with a fault is a warning. */
  png_set_benign_errors(png, 1);
  png_set_IHDR(png, info, (png_uint_32)image->width, (png_uint_32)image->height,
               8, PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  if (icc.size > 0) {
    png_set_iCCP(png, info, "ICC profile", PNG_COMPRESSION_TYPE_BASE, icc.bytes,
                 (png_uint_32)icc.size);
  } else {
    png_set_sRGB(png, info, PNG_sRGB_INTENT_PERCEPTUAL);
  }
  png_write_info(png, info);
  const size_t row_bytes = (size_t)image->width * 3;
  for (int y = 0; y < image->height; ++y) {
    png_write_row(png, image->rgb + (size_t)y * row_bytes);
  }
  png_write_end(png, info);
  return 1;
}

int EncodePng(FILE* file, const struct RgbImage* image, struct FileBlock icc,
              char* reason) {
  snprintf(reason, kEncodeReasonSize, "out of memory");
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, reason,
                                            OnError, OnWarning);
  png_infop info = png != NULL ? png_create_info_struct(png) : NULL;
  const int is_done = info != NULL && Encode(png, info, file, image, icc);
  png_destroy_write_struct(&png, &info);
  return is_done;
}
