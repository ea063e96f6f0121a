/* Decodes JPEG files in memory. */
#include <setjmp.h>
#include <stdio.h>
#include <stdlib.h>

/* Needs FILE and size_t before it. */
#include <jpeglib.h>

#include <jerror.h>

#include "decode/decode.h"

/* A progressive file of a few bytes can have the whole picture gone over again
 * and again. Encoders make about ten scans. */
enum { kMostScans = 100 };

struct JpegDecoder {
  struct jpeg_decompress_struct decompress;
  struct jpeg_progress_mgr progress;
  struct jpeg_error_mgr errors; /* found again through decompress.client_data */
  jmp_buf failed;
  enum DecodeStatus status;
  char* reason;
};

static _Noreturn void Leave(struct JpegDecoder* decoder,
                            enum DecodeStatus status, const char* message) {
  snprintf(decoder->reason, kDecodeReasonSize, "%s", message);
  decoder->status = status;
  longjmp(decoder->failed, 1);
}

static _Noreturn void Fail(j_common_ptr common, enum DecodeStatus status) {
  char message[JMSG_LENGTH_MAX];
  common->err->format_message(common, message);
  Leave(common->client_data, status, message);
}

static void OnError(j_common_ptr common) {
  struct JpegDecoder* decoder = common->client_data;
  switch (common->err->msg_code) {
    case JERR_BAD_PRECISION:
      Leave(decoder, kDecodeUnsupported, "a JPEG with other than 8 bits");
    case JERR_SOF_UNSUPPORTED:
      Leave(decoder, kDecodeUnsupported, "a lossless or hierarchical JPEG");
    default:
      Fail(common, kDecodeDamaged);
  }
}

/* For libjpeg a file that ends early is only a warning, and it fills the rest
 * with grey; with other warnings the picture is still good enough. */
static void OnMessage(j_common_ptr common, int level) {
  if (level >= 0) return;
  const int code = common->err->msg_code;
  if (code == JWRN_JPEG_EOF || code == JWRN_HIT_MARKER) {
    Fail(common, kDecodeTruncated);
  }
}

static void OnProgress(j_common_ptr common) {
  if (((j_decompress_ptr)common)->input_scan_number > kMostScans) {
    Leave(common->client_data, kDecodeDamaged, "it has too many scans");
  }
}

static void Open(struct JpegDecoder* decoder, const uint8_t* bytes,
                 size_t size) {
  decoder->decompress.err = jpeg_std_error(&decoder->errors);
  decoder->errors.error_exit = OnError;
  decoder->errors.emit_message = OnMessage;
  decoder->decompress.client_data = decoder;
  decoder->progress.progress_monitor = OnProgress;
  jpeg_create_decompress(&decoder->decompress);
  decoder->decompress.progress = &decoder->progress;
  jpeg_mem_src(&decoder->decompress, bytes, size);
}

struct JpegTarget {
  enum JpegLayout layout;
  uint8_t* pixels;
  size_t size;
};

static void ReadRows(struct JpegDecoder* decoder,
                     const struct JpegTarget* target) {
  struct jpeg_decompress_struct* decompress = &decoder->decompress;
  decompress->out_color_space =
      target->layout == kJpegRgb8 ? JCS_RGB : JCS_GRAYSCALE;
  jpeg_start_decompress(decompress);
  const size_t row_bytes =
      (size_t)decompress->output_width * (size_t)decompress->output_components;
  if (row_bytes * decompress->output_height != target->size) {
    Leave(decoder, kDecodeDamaged,
          "the pixels have another size than the header says");
  }
  while (decompress->output_scanline < decompress->output_height) {
    JSAMPROW row = target->pixels + decompress->output_scanline * row_bytes;
    jpeg_read_scanlines(decompress, &row, 1);
  }
  jpeg_finish_decompress(decompress);
}

/* Errors jump back to here; the caller cleans up. Without `target` only the
 * header is read. */
static void Decode(struct JpegDecoder* decoder, const uint8_t* bytes,
                   size_t size, const struct JpegTarget* target) {
  if (setjmp(decoder->failed) != 0) return;
  Open(decoder, bytes, size);
  jpeg_read_header(&decoder->decompress, TRUE);
  const J_COLOR_SPACE space = decoder->decompress.jpeg_color_space;
  if (space == JCS_CMYK || space == JCS_YCCK) {
    Leave(decoder, kDecodeUnsupported, "a CMYK JPEG");
  }
  if (target != NULL) ReadRows(decoder, target);
}

enum DecodeStatus ReadJpegSize(const uint8_t* bytes, size_t size, int* width,
                               int* height, char* reason) {
  struct JpegDecoder decoder = {.status = kDecodeDone, .reason = reason};
  Decode(&decoder, bytes, size, NULL);
  *width = (int)decoder.decompress.image_width;
  *height = (int)decoder.decompress.image_height;
  jpeg_destroy_decompress(&decoder.decompress);
  return decoder.status;
}

enum DecodeStatus DecodeJpeg(const uint8_t* bytes, size_t size,
                             enum JpegLayout layout, uint8_t* pixels,
                             size_t pixels_size, char* reason) {
  const struct JpegTarget target = {layout, pixels, pixels_size};
  struct JpegDecoder decoder = {.status = kDecodeDone, .reason = reason};
  Decode(&decoder, bytes, size, &target);
  jpeg_destroy_decompress(&decoder.decompress);
  return decoder.status;
}

struct JpegMarkers {
  struct JpegDecoder decoder;
  jpeg_saved_marker_ptr next;
  JOCTET* profile;
  unsigned profile_size;
};

/* Errors jump back to here; the caller cleans up. */
static void ReadMarkers(struct JpegMarkers* markers, const uint8_t* bytes,
                        size_t size) {
  enum { kWhole = 0xffff };
  struct jpeg_decompress_struct* decompress = &markers->decoder.decompress;
  if (setjmp(markers->decoder.failed) != 0) return;
  Open(&markers->decoder, bytes, size);
  jpeg_save_markers(decompress, JPEG_APP0 + 1, kWhole);
  jpeg_save_markers(decompress, JPEG_APP0 + 2, kWhole);
  jpeg_read_header(decompress, TRUE);
  markers->next = decompress->marker_list;
  jpeg_read_icc_profile(decompress, &markers->profile, &markers->profile_size);
}

enum DecodeStatus OpenJpegMarkers(const uint8_t* bytes, size_t size,
                                  struct JpegMarkers** markers, char* reason) {
  *markers = calloc(1, sizeof(struct JpegMarkers));
  if (*markers == NULL) {
    snprintf(reason, kDecodeReasonSize, "out of memory");
    return kDecodeDamaged;
  }
  (*markers)->decoder.reason = reason;
  ReadMarkers(*markers, bytes, size);
  const enum DecodeStatus status = (*markers)->decoder.status;
  if (status != kDecodeDone) {
    CloseJpegMarkers(*markers);
    *markers = NULL;
  }
  return status;
}

const uint8_t* NextJpegSegment(struct JpegMarkers* markers, size_t* size) {
  jpeg_saved_marker_ptr marker = markers->next;
  while (marker != NULL && marker->marker != JPEG_APP0 + 1) {
    marker = marker->next;
  }
  if (marker == NULL) return NULL;
  markers->next = marker->next;
  *size = marker->data_length;
  return marker->data;
}

const uint8_t* JpegProfile(const struct JpegMarkers* markers, size_t* size) {
  *size = markers->profile_size;
  return markers->profile;
}

void CloseJpegMarkers(struct JpegMarkers* markers) {
  free(markers->profile);
  jpeg_destroy_decompress(&markers->decoder.decompress);
  free(markers);
}
