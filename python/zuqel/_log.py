"""The library's log and what it prints, handed to `logging`.

The library's lines are collected while a call runs, and handed over when it has
ended: then handlers may take their time, and use the session themselves.
"""

import atexit
import ctypes
import logging
import os
from collections import deque
from collections.abc import Iterator
from contextlib import contextmanager

logger = logging.getLogger("zuqel")

# All that the library itself logs, at the priority of errors.
_TRACE_TAG = b"System.out"
_ALL, _NONE = 1, 8  # the least priority that comes through
_LEVELS = {5: logging.WARNING, 6: logging.ERROR, 7: logging.CRITICAL}

Lines = list[tuple[int, str]]  # levels and texts

# The oldest are dropped where nobody takes them.
_lines: deque[tuple[int, str]] = deque(maxlen=10000)


class _Message(ctypes.Structure):
    """struct __android_log_message"""

    _fields_ = [("struct_size", ctypes.c_size_t), ("buffer_id", ctypes.c_int32),
                ("priority", ctypes.c_int32), ("tag", ctypes.c_char_p),
                ("file", ctypes.c_char_p), ("line", ctypes.c_uint32),
                ("message", ctypes.c_char_p)]


def _add(level: int, text: bytes) -> None:
    _lines.append((level, text.decode(errors="replace").rstrip("\n")))


def _add_message(message: "ctypes._Pointer[_Message]") -> None:
    line = message.contents
    level = (logging.DEBUG if line.tag == _TRACE_TAG else
             _LEVELS.get(line.priority, logging.DEBUG))
    _add(level, line.message)


# Lives as long as the module, so longer than the library may call it.
_sink = ctypes.CFUNCTYPE(None, ctypes.POINTER(_Message))(_add_message)


class Tap:
    """Takes the log of the library, until the interpreter ends."""

    def __init__(self, library: ctypes.CDLL) -> None:
        self._set_least_priority = library["__android_log_set_minimum_priority"]
        self._is_open = True
        set_logger = library["__android_log_set_logger"]
        set_logger.argtypes, set_logger.restype = (ctypes.c_void_p,), None
        set_logger(ctypes.cast(_sink, ctypes.c_void_p))
        self._is_at_end = False
        atexit.register(self._end)

    def _end(self) -> None:
        """What is logged later must not reach an interpreter that is gone,
        not even from a session that is closed after this."""
        self.turn(False)
        self._is_at_end = True

    def turn(self, is_open: bool) -> None:
        """Each line that comes through waits for the GIL, so none does where
        nobody reads it."""
        if is_open != self._is_open and not self._is_at_end:
            self._set_least_priority(_ALL if is_open else _NONE)
            self._is_open = is_open


def taken_lines() -> Lines:
    """The lines since the last time."""
    return [_lines.popleft() for _ in range(len(_lines))]


def is_read() -> bool:
    return logger.isEnabledFor(logging.DEBUG)


def hand_over(lines: Lines) -> None:
    for level, text in lines:
        logger.log(level, "%s", text)


class _Printed:
    """A stream of C's stdio to a file in memory. It is never closed: another
    thread may have begun to print to it."""

    def __init__(self, process: ctypes.CDLL) -> None:
        self.process = os.getpid()  # a fork would share the file
        self._file = os.memfd_create("zuqel_printed")
        fdopen = process["fdopen"]
        fdopen.argtypes = (ctypes.c_int, ctypes.c_char_p)
        fdopen.restype = ctypes.c_void_p
        self._flush = process["fflush"]
        self._flush.argtypes = (ctypes.c_void_p,)
        self.stream: int | None = fdopen(self._file, b"a")
        if self.stream is None:
            raise MemoryError("no stream for what the library prints")
        self.standard_output = ctypes.c_void_p.in_dll(process, "stdout")

    def take(self) -> bytes:
        self._flush(self.stream)
        text = os.pread(self._file, 1 << 20, 0)
        if text:
            os.ftruncate(self._file, 0)
        return text


_printed: _Printed | None = None


@contextmanager
def printed_lines() -> Iterator[None]:
    """Adds to the log what the library prints meanwhile.

    It prints through C's `stdout`, a variable that GNU's C library lets one
    set. What Python writes does not go through it. With another C library the
    lines stay in the standard output.
    """
    global _printed
    if _printed is None or _printed.process != os.getpid():
        process = ctypes.CDLL(None)
        if not hasattr(process, "gnu_get_libc_version"):
            yield
            return
        _printed = _Printed(process)
    usual = _printed.standard_output.value
    _printed.standard_output.value = _printed.stream
    try:
        yield
    finally:
        _printed.standard_output.value = usual
        for line in _printed.take().splitlines():
            _add(logging.DEBUG, line)
