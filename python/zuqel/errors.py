"""What goes wrong beyond arguments, which raise TypeError and ValueError."""

from enum import IntEnum


class Status(IntEnum):
    """The library's status codes, by the names of its header."""

    ZUQEL_SUCCESS = 0x0000
    ZUQEL_BUFFER_TOO_SMALL = 0x2003
    ZUQEL_NULL_POINTER = 0x2004
    ZUQEL_BAD_CAMERA_LAYOUT = 0x200C
    ZUQEL_PARAMETER_REFUSED = 0x200D
    ZUQEL_INIT_REFUSED = 0x200E
    ZUQEL_CALIB_BAD_LENGTH = 0x6002
    ZUQEL_CALIB_NOT_DECRYPTED = 0x6004
    ZUQEL_CALIB_BAD_VERSION = 0x6005
    ZUQEL_CALIB_BAD_COUNT = 0x6006
    ZUQEL_CALIB_BAD_FIRST_COUNT = 0x6007
    ZUQEL_CALIB_BAD_SECOND_COUNT = 0x6008
    ZUQEL_CALIB_NO_BLOCK = 0x600A
    ZUQEL_CALIB_NO_PAYLOAD = 0x600B
    ZUQEL_CALIB_NO_KEY = 0x600C


class Error(Exception):
    """The base of all below."""


class LibraryNotFound(Error):
    """There is no libzuQelRT_GL.so, or it does not load."""


class ProgramNotFound(Error):
    """There is no program `zuqel`, which reads photos."""


class PhotoError(Error):
    """The program cannot read a photo; the text is what it says."""


class SessionRunning(Error):
    """A second session is asked for: there is one per process."""


class SessionClosed(Error):
    """A session is used after its end."""


class WrongThread(Error):
    """An on-screen session is used outside the thread that opened it."""


class NoOpenGL(Error):
    """OpenGL ES 2.0 cannot be had; the text says at which step it fails."""


class StatusError(Error):
    """A call of the library returned something other than success."""

    def __init__(self, call: str, code: int) -> None:
        known = code in Status.__members__.values()
        self.code: int = Status(code) if known else code
        self.name = Status(code).name if known else "an unknown code"
        super().__init__(f"{call} returned {self.name} (0x{code:04x})")
