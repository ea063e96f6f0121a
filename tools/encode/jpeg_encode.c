/* Encodes pictures as JPEG files. */
#include <setjmp.h>
#include <stdio.h>

/* Needs FILE and size_t before it. */
#include <jpeglib.h>

#include "encode/encode.h"

/* Below, colours have half the resolution. */
enum { kFullColourQuality = 90 };

struct JpegEncoder {
  struct jpeg_compress_struct compress;
  struct jpeg_error_mgr errors; /* found again through compress.client_data */
  jmp_buf failed;
  char* reason;
};

static void OnError(j_common_ptr common) {
  struct JpegEncoder* encoder = common->client_data;
  char message[JMSG_LENGTH_MAX];
  common->err->format_message(common, message);
  snprintf(encoder->reason, kEncodeReasonSize, "%s", message);
  longjmp(encoder->failed, 1);
}

static void OnMessage(j_common_ptr common, int level) {
  (void)common;
  (void)level;
}

static void Open(struct JpegEncoder* encoder, FILE* file,
                 const struct RgbImage* image, int quality) {
  struct jpeg_compress_struct* compress = &encoder->compress;
  compress->err = jpeg_std_error(&encoder->errors);
  encoder->errors.error_exit = OnError;
  encoder->errors.emit_message = OnMessage;
  compress->client_data = encoder;
  jpeg_create_compress(compress);
  jpeg_stdio_dest(compress, file);
  compress->image_width = (JDIMENSION)image->width;
  compress->image_height = (JDIMENSION)image->height;
  compress->input_components = 3;
  compress->in_color_space = JCS_RGB;
  jpeg_set_defaults(compress);
  jpeg_set_quality(compress, quality, TRUE);
  if (quality >= kFullColourQuality) {
    compress->comp_info[0].h_samp_factor = 1;
    compress->comp_info[0].v_samp_factor = 1;
  }
}

/* Errors jump back to here; the caller cleans up. */
static int Encode(struct JpegEncoder* encoder, FILE* file,
                  const struct RgbImage* image, int quality,
                  struct FileBlock icc, struct FileBlock exif) {
  struct jpeg_compress_struct* compress = &encoder->compress;
  if (setjmp(encoder->failed) != 0) return 0;
  Open(encoder, file, image, quality);
  jpeg_start_compress(compress, TRUE);
  if (exif.size > 0) {
    jpeg_write_marker(compress, JPEG_APP0 + 1, exif.bytes, (unsigned)exif.size);
  }
  if (icc.size > 0) {
    jpeg_write_icc_profile(compress, icc.bytes, (unsigned)icc.size);
  }
  const size_t row_bytes = (size_t)image->width * 3;
  while (compress->next_scanline < compress->image_height) {
    /* libjpeg takes rows that can be written, and does not write them. */
    JSAMPROW row = (JSAMPROW)image->rgb + compress->next_scanline * row_bytes;
    jpeg_write_scanlines(compress, &row, 1);
  }
  jpeg_finish_compress(compress);
  return 1;
}

int EncodeJpeg(FILE* file, const struct RgbImage* image, int quality,
               struct FileBlock icc, struct FileBlock exif, char* reason) {
  struct JpegEncoder encoder = {.reason = reason};
  const int is_done = Encode(&encoder, file, image, quality, icc, exif);
  jpeg_destroy_compress(&encoder.compress);
  return is_done;
}
