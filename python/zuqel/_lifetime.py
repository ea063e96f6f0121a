"""What a session holds of the library, from its initialisation to its close."""

import threading
from collections.abc import Callable
from contextlib import nullcontext

from . import _log
from ._library import InitInfo, Library
from ._threads import CallersThread, OwnThread
from .errors import NoOpenGL, SessionClosed, SessionRunning, WrongThread

_one_per_process = threading.Lock()


def _is_context_failure(line: str) -> bool:
    """The library tells nowhere else that it has no context."""
    return line.startswith("egl") and ("failed" in line or
                                       "EGL_NO_DISPLAY" in line)


class Lifetime:
    """At most one at a time is open."""

    def __init__(self, library: Library, info: InitInfo,
                 calibration: bytes | None, key_block: bytes | None) -> None:
        if not _one_per_process.acquire(blocking=False):
            raise SessionRunning("a session is open; there is one per process, "
                                 "so close it first")
        self._library = library
        self._has_begun = False
        self._has_maps = False
        self._failure: str | None = None
        try:
            off_screen = info.offmode != 0
            self._thread: OwnThread | CallersThread = (
                OwnThread() if off_screen else CallersThread())
        except BaseException:
            _one_per_process.release()
            raise

        def begin(library: Library) -> None:
            library.call("zuQelRT_GLInitV1", calibration,
                         len(calibration or b""), key_block,
                         len(key_block or b""), info)
            self._has_begun = True

        try:
            lines = self.run(begin, needs_log=True)
        except BaseException:
            self.end()
            raise
        if off_screen:
            self._failure = next((text for _, text in lines
                                  if _is_context_failure(text)), None)

    def check(self) -> None:
        """Raises an error where the session cannot be used."""
        self._thread.check()

    def require_gl(self) -> None:
        if self._failure is not None:
            raise NoOpenGL("no OpenGL ES 2.0 to render with: " + self._failure)

    def run(self, function: Callable[[Library], None], prints: bool = False,
            needs_log: bool = False) -> _log.Lines:
        """Runs it on the session's thread, and hands over what it logs, and
        what it prints if it does. Returns the same."""
        lines: _log.Lines = []

        def run() -> None:
            _log.taken_lines()  # of nobody's call
            self._library.log.turn(needs_log or _log.is_read())
            try:
                with _log.printed_lines() if prints else nullcontext():
                    function(self._library)
            finally:
                lines.extend(_log.taken_lines())

        try:
            self._thread.call(run)
        finally:
            _log.hand_over(lines)
        return lines

    def start_maps(self) -> None:
        """Before the first refocus map. On the session's thread."""
        if not self._has_maps:
            self._library.call("zuQelRT_GenRefocusMap_init")
            self._has_maps = True

    def end(self) -> None:
        """Once. Also the collector's and the interpreter's last call, where
        nothing is done that only another thread or process may do."""
        def end(library: Library) -> None:
            try:
                if self._has_maps:
                    library.call("zuQelRT_GenRefocusMap_Deinit")
                if self._has_begun:
                    library.call("zuQelRT_GLClose")
            finally:
                _one_per_process.release()

        try:
            self.check()
        except (SessionClosed, WrongThread):
            return
        try:
            self.run(end)
        finally:
            self._thread.stop()
