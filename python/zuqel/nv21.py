"""NV21, the camera's frame format, and its conversion from and to RGB.

Full-range BT.601 with 16 fractional bits, as the program `zuqel` converts: the
same bytes.
"""

import numpy as np
from numpy.typing import NDArray

from ._checks import taken_array

Bytes = NDArray[np.uint8]
Planes = tuple[Bytes, Bytes]

# Each row sums to exactly 1 (luma) or 0 (chroma), so that grey stays grey.
_LUMA = 19595, 38470, 7471
_V = 32768, -27439, -5329
_U = -11058, -21710, 32768


def _weighted(channels: list[NDArray[np.int32]], factors: tuple[int, int, int],
              bits: int) -> NDArray[np.int32]:
    """The weighted sum without `bits` fractional bits, halves rounded up."""
    total = channels[0] * np.int32(factors[0])
    for channel, factor in zip(channels[1:], factors[1:]):
        total += channel * np.int32(factor)
    total += np.int32(1 << (bits - 1))
    total >>= np.int32(bits)
    return total


def to_nv21(rgb: Bytes) -> Planes:
    """Converts a picture to luma and chroma.

    `rgb`: uint8, (height, width, 3), height and width even.
    Returns uint8 (height, width), and (height / 2, width / 2, 2): V, then U, of
    the mean colour of each 2x2 pixels.
    """
    rgb = taken_array("rgb", rgb, np.uint8, (None, None, 3))
    height, width, _ = rgb.shape
    if height % 2 or width % 2:
        raise ValueError(f"rgb: is {width}x{height}; NV21 has even sizes")
    channels = [rgb[..., i].astype(np.int32) for i in range(3)]
    luma = _weighted(channels, _LUMA, 16).astype(np.uint8)
    sums = [c[0::2, 0::2] + c[0::2, 1::2] + c[1::2, 0::2] + c[1::2, 1::2]
            for c in channels]
    vu = np.stack([_weighted(sums, factors, 18) for factors in (_V, _U)],
                  axis=-1)
    vu += 128
    return luma, np.clip(vu, 0, 255).astype(np.uint8)


def to_rgb(luma: Bytes, vu: Bytes) -> Bytes:
    """Converts luma and chroma, shaped as to_nv21 returns them, to a picture:
    uint8, (height, width, 3). Chroma is repeated over each 2x2 pixels."""
    luma = taken_array("luma", luma, np.uint8, (None, None))
    height, width = luma.shape
    vu = taken_array("vu", vu, np.uint8, (height // 2, width // 2, 2))
    if height % 2 or width % 2:
        raise ValueError(f"luma: is {width}x{height}; NV21 has even sizes")
    v = vu[..., 0].astype(np.int32) - 128
    u = vu[..., 1].astype(np.int32) - 128
    half = 1 << 15
    rgb = np.empty((height, width, 3), np.uint8)
    # A block's four pixels differ from their luma alike.
    blocks = luma.reshape(height // 2, 2, width // 2, 2)
    for channel, difference in enumerate((
            (91881 * v + half) >> 16,
            (-22554 * u - 46802 * v + half) >> 16,
            (116130 * u + half) >> 16)):
        values = blocks + difference.astype(np.int16)[:, None, :, None]
        rgb[..., channel] = np.clip(values, 0, 255).reshape(height, width)
    return rgb
