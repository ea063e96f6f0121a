/* A plain C program that links the shared library alone: starts a session,
 * renders a frame with a weight map of zeros, which has to give the planes back
 * exactly, and one with full weights, which has to change them. */
#include <stdint.h>
#include <stdio.h>
#include <string.h>
#include <zuQelRT_GL.h>

enum { kWidth = 1280, kHeight = 960, kWorkWidth = 320, kWorkHeight = 240 };

static uint8_t luma[kWidth * kHeight];
static uint8_t chroma[kWidth * kHeight / 2];
static uint8_t luma_before[sizeof(luma)];
static uint8_t chroma_before[sizeof(chroma)];
static uint8_t weights[kWorkWidth * kWorkHeight];

static void FillWithNoise(uint8_t* bytes, size_t count) {
  uint32_t state = 1;
  for (size_t i = 0; i < count; ++i) {
    state = state * 1664525u + 1013904223u;
    bytes[i] = (uint8_t)(state >> 24);
  }
}

static uint32_t Render(void) {
  const FocusRect no_rect = {0, 0, 0, 0};
  return zuQelRT_GLStartV1(luma, chroma, weights, kWidth / 2, kHeight / 2, 0,
                           no_rect, 1.0f);
}

static int IsUnchanged(void) {
  return memcmp(luma, luma_before, sizeof(luma)) == 0 &&
         memcmp(chroma, chroma_before, sizeof(chroma)) == 0;
}

static int Fail(const char* what, uint32_t status) {
  fprintf(stderr, "%s (status 0x%x)\n", what, (unsigned)status);
  return 1;
}

int main(void) {
  const uint8_t calibration[512] = {0};
  const GLInitInfo info = {.PreviewWidth = kWidth,
                           .PreviewHeight = kHeight,
                           .DepthWidth = kWorkWidth,
                           .DepthHeight = kWorkHeight,
                           .WorkWidth = kWorkWidth,
                           .WorkHeight = kWorkHeight,
                           .offmode = 1};
  char version[256];
  uint32_t status = zuQel_GLVersionInfo_Get(version, sizeof(version));
  if (status != ZUQEL_SUCCESS || strcmp(version, "0.54.07") != 0) {
    return Fail("wrong version", status);
  }

  FillWithNoise(luma, sizeof(luma));
  FillWithNoise(chroma, sizeof(chroma));
  memcpy(luma_before, luma, sizeof(luma));
  memcpy(chroma_before, chroma, sizeof(chroma));

  status = zuQelRT_GLInitV1(calibration, sizeof(calibration), NULL, 0, &info);
  if (status != ZUQEL_SUCCESS) return Fail("initialisation refused", status);
  status = Render();
  if (status != ZUQEL_SUCCESS) return Fail("frame refused", status);
  if (!IsUnchanged()) return Fail("zero weights changed the planes", 0);

  memset(weights, 255, sizeof(weights));
  status = Render();
  if (status != ZUQEL_SUCCESS) return Fail("frame refused", status);
  if (IsUnchanged()) return Fail("full weights did not blur", 0);
  status = zuQelRT_GLClose();
  return status == ZUQEL_SUCCESS ? 0 : Fail("close refused", status);
}
