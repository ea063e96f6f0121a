/* A plain C program that links the shared library alone: a frame with a weight
 * map of zeros has to give the planes back exactly, one with full weights has
 * to change both, and the header's names stand for the numbers that count. */
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

static int NamesAreTrue(void) {
  const ParameterInfo set = {.GsensorValue = 1}, zero = {.VcmValue = 1};
  char version[ZUQEL_VERSION_BUFFER_SIZE];
  return zuQelRT_SetParameter(ZUQEL_PARAMETER_GSENSOR, &set) ==
             ZUQEL_GSENSOR_NONZERO &&
         zuQelRT_SetParameter(ZUQEL_PARAMETER_GSENSOR, &zero) ==
             ZUQEL_GSENSOR_ZERO &&
         zuQelRT_SetParameter(ZUQEL_PARAMETER_VCM, &set) == ZUQEL_SUCCESS &&
         zuQel_GLVersionInfo_Get(version, sizeof(version)) == ZUQEL_SUCCESS &&
         zuQel_GLVersionInfo_Get(version, sizeof(version) - 1) ==
             ZUQEL_BUFFER_TOO_SMALL &&
         zuQelRT_CameraLayout_Set(ZUQEL_CAMERA_LAYOUTS) == ZUQEL_SUCCESS &&
         zuQelRT_CameraLayout_Set(ZUQEL_CAMERA_LAYOUTS + 1) ==
             ZUQEL_BAD_CAMERA_LAYOUT;
}

int main(void) {
  const uint8_t calibration[512] = {0};
  const GLInitInfo info = {
      kWidth,     kHeight,     kWorkWidth,   kWorkHeight,
      kWorkWidth, kWorkHeight, .offmode = 1, .srcformat = ZUQEL_SRCFORMAT_NV21};
  for (uint32_t i = 0; i < sizeof(luma); ++i) {
    luma[i] = luma_before[i] = (uint8_t)(i * i * 2654435761u >> 24);
  }
  memcpy(chroma, luma, sizeof(chroma));
  memcpy(chroma_before, luma, sizeof(chroma));

  if (zuQelRT_GLInitV1(calibration, sizeof(calibration), NULL, 0, &info) !=
      ZUQEL_SUCCESS)
    return Fail("the session was refused");
  if (!NamesAreTrue()) return Fail("a name stands for a wrong number");
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
