/* A plain C program that links the shared library alone: a frame with a weight
 * map of zeros has to give the planes back exactly, one with full weights has
 * to change both. */
#include <stdint.h>
#include <stdio.h>
#include <string.h>
#include <zuQelRT_GL.h>

enum { kWidth = 320, kHeight = 240, kWorkWidth = 80, kWorkHeight = 60 };

static uint8_t luma[kWidth * kHeight], luma_before[sizeof(luma)];
static uint8_t chroma[sizeof(luma) / 2], chroma_before[sizeof(chroma)];
static uint8_t weights[kWorkWidth * kWorkHeight];

static int Fail(const char* what) {
  fprintf(stderr, "%s\n", what);
  return 1;
}

static int IsRendered(void) {
  const FocusRect no_rect = {0, 0, 0, 0};
  return zuQelRT_GLStartV1(luma, chroma, weights, 9, 9, 0, no_rect, 1.0f) ==
         ZUQEL_SUCCESS;
}

int main(void) {
  const uint8_t calibration[512] = {0};
  const GLInitInfo info = {kWidth,     kHeight,     kWorkWidth,  kWorkHeight,
                           kWorkWidth, kWorkHeight, .offmode = 1};
  for (uint32_t i = 0; i < sizeof(luma); ++i) {
    luma[i] = luma_before[i] = (uint8_t)(i * i * 2654435761u >> 24);
  }
  memcpy(chroma, luma, sizeof(chroma));
  memcpy(chroma_before, luma, sizeof(chroma));

  if (zuQelRT_GLInitV1(calibration, sizeof(calibration), NULL, 0, &info) !=
      ZUQEL_SUCCESS)
    return Fail("the session was refused");
  if (!IsRendered()) return Fail("the frame of zero weights was refused");
  if (memcmp(luma, luma_before, sizeof(luma)) != 0 ||
      memcmp(chroma, chroma_before, sizeof(chroma)) != 0)
    return Fail("zero weights changed the planes");
  memset(weights, 255, sizeof(weights));
  if (!IsRendered()) return Fail("the frame of full weights was refused");
  if (memcmp(luma, luma_before, sizeof(luma)) == 0 ||
      memcmp(chroma, chroma_before, sizeof(chroma)) == 0)
    return Fail("full weights did not blur");
  return zuQelRT_GLClose() == ZUQEL_SUCCESS ? 0 : Fail("the end was refused");
}
