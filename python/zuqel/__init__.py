"""Synthetic shallow depth of field: the library libzuQelRT_GL from Python.

    import zuqel
    photo = zuqel.read_photo("photo.heic")
    with zuqel.Session(photo.size, photo.depth_size) as session:
        result = session.frame(rgb=photo.picture, disparity=photo.disparity,
                               focus=(2000, 1500), f_number=1.4)

The library is the one that the environment's ZUQEL_LIBRARY names, or else the
one in the prefix that this package is installed in, or else the loader's.
"""

from typing import TYPE_CHECKING

from ._library import find_program, load
from .errors import (Error, LibraryNotFound, NoOpenGL, PhotoError,
                     ProgramNotFound, SessionClosed, SessionRunning, Status,
                     StatusError, WrongThread)
from .generators import GENERATORS, Generator
from .nv21 import to_nv21, to_rgb
from .photo import Photo, read_photo
from .session import Session

__all__ = [
    "Error", "GENERATORS", "Generator", "LibraryNotFound", "NoOpenGL", "Photo",
    "PhotoError", "ProgramNotFound", "Session", "SessionClosed",
    "SessionRunning", "Status", "StatusError", "WrongThread", "find_program",
    "read_photo", "to_nv21", "to_rgb"
]

if TYPE_CHECKING:
    __version__: str
else:
    def __getattr__(name):
        """`__version__` is the library's."""
        if name == "__version__":
            return load().version()
        raise AttributeError(f"module {__name__!r} has no attribute {name!r}")
