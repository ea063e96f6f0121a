"""Checks of what callers hand in, before anything is called."""

from collections.abc import Sequence
from typing import Any

import numpy as np
from numpy.typing import NDArray

Size = tuple[int, int]

LARGEST_SIDE = 8192
INVALID_DISPARITY = 1023


def _integers(name: str, values: Sequence[int], wanted: str,
              count: int) -> tuple[int, ...]:
    try:
        numbers = tuple(values)
        if len(numbers) != count:
            raise TypeError
        # Neither truncates what is not whole.
        return tuple(int(np.asarray(n).__index__()) for n in numbers)
    except TypeError:
        raise TypeError(f"{name}: is {values!r}; wanted are whole numbers, "
                        f"{wanted}") from None


def taken_size(name: str, size: Size) -> Size:
    """Width and height that the library takes."""
    width, height = _integers(name, size, "(width, height)", 2)
    if not (1 <= width <= LARGEST_SIDE and 1 <= height <= LARGEST_SIDE):
        raise ValueError(f"{name}: is {width}x{height}; wanted is 1x1 to "
                         f"{LARGEST_SIDE}x{LARGEST_SIDE}")
    return width, height


def taken_point(name: str, point: tuple[int, int], size: Size,
                what: str) -> tuple[int, int]:
    """A point in `what`, which has this size."""
    x, y = _integers(name, point, "(x, y)", 2)
    width, height = size
    if not (0 <= x < width and 0 <= y < height):
        raise ValueError(f"{name}: ({x}, {y}) is outside of the {what}, "
                         f"{width}x{height}")
    return x, y


def taken_rect(name: str, rect: tuple[int, int, int, int]) -> tuple[int, ...]:
    numbers = _integers(name, rect, "(x, y, right, bottom)", 4)
    if not all(-2**31 <= n < 2**31 for n in numbers):
        raise ValueError(f"{name}: is {numbers}; wanted are numbers of 32 bits")
    return numbers


def taken_number(name: str, number: float) -> float:
    try:
        value = float(number)
    except (TypeError, ValueError):
        raise TypeError(f"{name}: is {number!r}; wanted is a number") from None
    if not np.isfinite(value):
        raise ValueError(f"{name}: is {value}; wanted is a finite number")
    return value


def taken_bytes(name: str, block: bytes | None) -> bytes | None:
    if block is not None and not isinstance(block, bytes):
        raise TypeError(f"{name}: is {type(block).__name__}; wanted is bytes")
    return block


def taken_array(name: str, array: NDArray[Any], dtype: type[Any],
                shape: tuple[int | None, ...]) -> NDArray[Any]:
    """The array itself, if it has this type and shape; None is any number."""
    def text(numbers: Sequence[int | None]) -> str:
        return "x".join("any" if n is None else str(n) for n in numbers)

    wanted = f"; wanted is a NumPy array, {np.dtype(dtype)}, {text(shape)}"
    if not isinstance(array, np.ndarray):
        raise TypeError(f"{name}: is {type(array).__name__}{wanted}")
    if array.dtype != dtype:
        raise TypeError(f"{name}: is {array.dtype}{wanted}")
    if len(array.shape) != len(shape) or any(
            w is not None and n != w for n, w in zip(array.shape, shape)):
        raise ValueError(f"{name}: is {text(array.shape) or 'a number'}"
                         f"{wanted}")
    return array


def copied_array(name: str, array: NDArray[Any], dtype: type[Any],
                 shape: tuple[int, ...]) -> NDArray[Any]:
    """A contiguous copy, for the library to read and write."""
    copy = np.array(taken_array(name, array, dtype, shape), dtype, copy=True,
                    order="C", subok=False)
    # Another thread may have given the array another shape meanwhile.
    return taken_array(name, copy, dtype, shape)


def copied_disparity(name: str, array: NDArray[np.uint16],
                     size: Size) -> NDArray[np.uint16]:
    """A copy, of 10 bits."""
    width, height = size
    copy = copied_array(name, array, np.uint16, (height, width))
    largest = int(copy.max())
    if largest > INVALID_DISPARITY:
        raise ValueError(
            f"{name}: has values up to {largest}; wanted are disparities of at "
            f"most {INVALID_DISPARITY}, which marks no measurement")
    return copy
