"""One frame: a chequered picture, near on its left half and far on its right,
focused on the near half. The far half comes out grey."""

import numpy as np
import zuqel

WIDTH, HEIGHT = 1280, 960
row, column = np.indices((HEIGHT, WIDTH)) // 4
luma = np.where((row + column) % 2, 200, 50).astype(np.uint8)
chroma = np.full((HEIGHT // 2, WIDTH // 2, 2), 128, np.uint8)  # NV21
disparity = np.full((240, 320), 100, np.uint16)
disparity[:, :160] = 800

with zuqel.Session((WIDTH, HEIGHT), depth_size=(320, 240)) as session:
    luma, _ = session.frame(luma_vu=(luma, chroma), disparity=disparity,
                            focus=(WIDTH // 4, HEIGHT // 2))
print(f"near {luma[0, 17]} and {luma[0, 21]}, "
      f"far {luma[0, 961]} and {luma[0, 965]}")
