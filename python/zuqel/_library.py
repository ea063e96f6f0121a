"""Finds and loads the library, and declares its calls."""

import ctypes
import os
import sysconfig
from functools import lru_cache
from pathlib import Path
from typing import Any

from . import _log
from .errors import LibraryNotFound, ProgramNotFound, StatusError
from .generators import GENERATORS

NAME = "libzuQelRT_GL.so"
VERSION_BUFFER_SIZE = 256
SRCFORMAT_NV21 = 0


class InitInfo(ctypes.Structure):
    """GLInitInfo"""

    _fields_ = [(name, ctypes.c_int32) for name in (
        "PreviewWidth", "PreviewHeight", "DepthWidth", "DepthHeight",
        "WorkWidth", "WorkHeight", "OutputWidth", "OutputHeight",
        "PortraitMode", "offmode", "srcformat", "GraphicBufferFlag")]


class FocusRect(ctypes.Structure):
    """FocusRect"""

    _fields_ = [(name, ctypes.c_int32) for name in ("x", "y", "right",
                                                    "bottom")]


_POINTER, _INT, _UINT = ctypes.c_void_p, ctypes.c_int32, ctypes.c_uint32
_FRAME = (_POINTER, _POINTER, _POINTER, _UINT, _UINT, _INT, FocusRect,
          ctypes.c_float)
_CALLS: dict[str, tuple[type[Any], ...]] = {
    "zuQel_GLVersionInfo_Get": (_POINTER, _INT),
    "zuQelRT_GLInitV1": (_POINTER, _UINT, _POINTER, _UINT,
                         ctypes.POINTER(InitInfo)),
    "zuQelRT_GLClose": (),
    "zuQelRT_GLStartV1": _FRAME,
    "zuQelRT_GLStartV1HWDepth": _FRAME,
    "zuQelRT_GenRefocusMap_init": (),
    "zuQelRT_GenRefocusMap_Deinit": (),
    "zuQelRT_Bokeh_ZU4410_DisparityBase_Expansion_CPU":
        (_POINTER, _POINTER, _POINTER, _INT, _UINT),
    # A focus point is inside of the map, where int32_t and uint32_t agree.
    **{row.call: (_POINTER, _POINTER, _UINT, _INT) +
       (_POINTER,) * 3 * (row.takes == "disparity")
       for row in GENERATORS.values()},
}


class Library:
    """The calls of the shared library at `path`, by their names."""

    def __init__(self, path: str) -> None:
        handle = ctypes.CDLL(path)
        self._calls = {name: handle[name] for name in _CALLS}
        for name, function in self._calls.items():
            function.argtypes, function.restype = _CALLS[name], _UINT
        self.log = _log.Tap(handle)

    def call(self, name: str, *arguments: Any) -> None:
        """Raises StatusError unless the call succeeds. Without the GIL, as
        all of ctypes.CDLL's calls."""
        status = self._calls[name](*arguments)
        if status != 0:
            raise StatusError(name, status)

    def version(self) -> str:
        text = ctypes.create_string_buffer(VERSION_BUFFER_SIZE)
        self.call("zuQel_GLVersionInfo_Get", text, len(text))
        return text.value.decode()


def _prefixes(file: Path) -> list[Path]:
    """What the file may be installed in, the nearest first."""
    return [folder.parent for folder in file.parents
            if folder.name in ("lib", "lib64")]


_PACKAGE = Path(__file__).resolve()


def _library_beside_package() -> str | None:
    multiarch = sysconfig.get_config_var("MULTIARCH") or ""
    for prefix in _prefixes(_PACKAGE):
        for folder in ("lib", f"lib/{multiarch}", "lib64"):
            file = prefix / folder / NAME
            if file.exists():
                return str(file)
    return None


@lru_cache(maxsize=None)
def _load(path: str) -> Library:
    try:
        return Library(path)
    except OSError as error:
        raise LibraryNotFound(
            f"the library cannot be loaded: {error}; it is the one that "
            "ZUQEL_LIBRARY names, or the one installed with this package, or "
            "the loader's") from error
    except AttributeError as error:
        raise LibraryNotFound(
            f"{path} is not the library, or is another version of it: "
            f"{error}") from error


def load() -> Library:
    """The library, which is loaded once."""
    return _load(os.environ.get("ZUQEL_LIBRARY") or _library_beside_package()
                 or NAME)


def find_program() -> str:
    """The program `zuqel`."""
    named = os.environ.get("ZUQEL_PROGRAM")
    if named:
        places = [Path(named)]
    else:
        library = os.environ.get("ZUQEL_LIBRARY")
        prefixes = _prefixes(_PACKAGE)
        if library:
            prefixes = _prefixes(Path(os.path.abspath(library))) + prefixes
        search = os.environ.get("PATH", os.defpath).split(os.pathsep)
        places = [prefix / "bin" / "zuqel" for prefix in prefixes]
        places += [Path(folder) / "zuqel" for folder in search]
    for place in places:
        if place.is_file() and os.access(place, os.X_OK):
            return str(place.absolute())
    raise ProgramNotFound(
        f"ZUQEL_PROGRAM is {named}, which is not a program" if named else
        "the program zuqel is neither beside the library nor in PATH; "
        "ZUQEL_PROGRAM can name it")
