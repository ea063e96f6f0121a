/* One frame: a chequered picture, near on its left half and far on its right,
 * focused on the near half. The far half comes out grey. */
#include <stdio.h>
#include <zuQelRT_GL.h>

enum { kWidth = 1280, kHeight = 960, kMapWidth = 320, kMapHeight = 240 };
static uint8_t luma[kWidth * kHeight];
static uint8_t chroma[kWidth * kHeight / 2]; /* NV21 */
static uint16_t disparity[kMapWidth * kMapHeight];

int main(void) {
  for (int i = 0; i < kWidth * kHeight; ++i)
    luma[i] = (i % kWidth / 4 + i / kWidth / 4) % 2 ? 200 : 50;
  for (int i = 0; i < kWidth * kHeight / 2; ++i) chroma[i] = 128;
  for (int i = 0; i < kMapWidth * kMapHeight; ++i)
    disparity[i] = i % kMapWidth < kMapWidth / 2 ? 800 : 100;

  const uint8_t calibration[512] = {0}; /* from the camera module */
  const GLInitInfo info = {
      kWidth,    kHeight,    kMapWidth,    kMapHeight,
      kMapWidth, kMapHeight, .offmode = 1, .srcformat = ZUQEL_SRCFORMAT_NV21};
  if (zuQelRT_GLInitV1(calibration, 512, NULL, 0, &info) != ZUQEL_SUCCESS)
    return 1;
  zuQelRT_GLStartV1HWDepth(luma, chroma, disparity, kWidth / 4, kHeight / 2, 0,
                           (FocusRect){0, 0, 0, 0}, 1.0f);
  zuQelRT_GLClose();

  printf("near %d and %d, far %d and %d\n", luma[17], luma[21], luma[961],
         luma[965]);
  return 0;
}
