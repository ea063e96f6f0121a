"""Photos with depth inside, read by the program `zuqel`."""

import os
import re
import subprocess
import tempfile
from dataclasses import dataclass
from pathlib import Path

import numpy as np
from numpy.typing import NDArray

from ._checks import Size
from ._library import find_program
from .errors import PhotoError

_REPORT = re.compile(
    r"picture: \d+x\d+(?P<before>, from before.*)?\n"
    r"depth: (?P<kind>.*), \d+x\d+, (?P<meaning>lengths|disparity), .*\n"
    r"(range: (?P<least>\S+) to (?P<most>\S+)( (?P<unit>.*))?\n)?"
    r"known: (?P<known>\S+) %\n")


@dataclass(frozen=True)
class Photo:
    """A photo and its depth, both upright and of the same view."""

    picture: NDArray[np.uint8]
    """RGB, (height, width, 3)."""
    disparity: NDArray[np.uint16]
    """(height, width), as Session takes it: what is known spans 1 to 1000,
    larger is nearer; 1023 is unknown. Its size is the depth's own."""
    kind: str
    """What the depth was made from, for people: "GDepth, RangeLinear"."""
    is_length: bool
    """The file has lengths, of which `disparity` is the inverse, scaled; else
    disparities, scaled."""
    range: tuple[float, float] | None
    """Least and most of what the file has, in `unit`; None: nothing known."""
    unit: str
    """"m" or "1/m"; empty where the file does not say."""
    known: float
    """The part of the depth's pixels that is known, 0 to 1."""
    is_before_blur: bool
    """The picture is the one from before the phone's own blur."""

    @property
    def size(self) -> Size:
        """(width, height) of the picture."""
        return self.picture.shape[1], self.picture.shape[0]

    @property
    def depth_size(self) -> Size:
        """(width, height) of the disparity."""
        return self.disparity.shape[1], self.disparity.shape[0]


def read_photo(path: "str | os.PathLike[str]") -> Photo:
    """Reads a JPEG, HEIC or AVIF file with depth inside.

    It runs the program `zuqel`, the one that the environment's ZUQEL_PROGRAM
    names, or else the one beside the library, or else PATH's. Needs Pillow.

    Raises PhotoError for what the program refuses: no such file, no depth, a
    damaged file; ProgramNotFound where there is no program.
    """
    from PIL import Image

    with tempfile.TemporaryDirectory(prefix="zuqel") as name:
        folder = Path(name)
        depth, picture = folder / "depth.png", folder / "picture.png"
        # A whole path is neither an option nor standard input.
        done = subprocess.run(
            [find_program(), "depth", os.path.abspath(path), "--output", depth,
             "--picture", picture],
            stdin=subprocess.DEVNULL, capture_output=True, text=True,
            encoding="utf-8", errors="replace")
        if done.returncode != 0:
            raise PhotoError(done.stderr.strip().removeprefix("zuqel: ") or
                             f"zuqel depth ended with {done.returncode}")
        report = _REPORT.search(done.stdout)
        if report is None:
            raise PhotoError("zuqel depth is of another version: it says "
                             f"{done.stdout!r}")
        with Image.open(depth) as image:
            disparity = np.array(image).astype(np.uint16)
        with Image.open(picture) as image:
            rgb = np.array(image.convert("RGB"))
    has_range = report["least"] is not None
    return Photo(
        picture=rgb, disparity=disparity, kind=report["kind"],
        is_length=report["meaning"] == "lengths",
        range=((float(report["least"]), float(report["most"]))
               if has_range else None),
        unit=report["unit"] or "", known=float(report["known"]) / 100,
        is_before_blur=report["before"] is not None)
