"""Where the calls of a session run, one after another."""

import os
import threading
from collections.abc import Callable
from concurrent.futures import Future
from queue import SimpleQueue
from typing import Any, TypeVar

from .errors import SessionClosed, WrongThread

T = TypeVar("T")


class OwnThread:
    """A thread for all calls, whoever makes them. A context that is current
    elsewhere is not touched, and an interrupt does not end a call halfway: it
    reaches the caller, while the call goes on and keeps its arrays."""

    def __init__(self) -> None:
        self._process = os.getpid()
        self._jobs: SimpleQueue[tuple[Callable[[], Any], Future[Any]] |
                                None] = SimpleQueue()
        self._stopping = threading.Lock()
        self._is_stopped = False
        # The interpreter does not wait for it, so that it can close sessions
        # that are still open at exit.
        self._thread = threading.Thread(target=self._run, name="zuqel",
                                        daemon=True)
        self._thread.start()

    def _run(self) -> None:
        while (job := self._jobs.get()) is not None:
            function, future = job
            try:
                future.set_result(function())
            except BaseException as error:
                future.set_exception(error)
            # Else the arrays would live until the next.
            del job, function, future

    def check(self) -> None:
        """A fork has no thread but the one that forked."""
        if os.getpid() != self._process:
            raise SessionClosed("the session is another process's")

    def call(self, function: Callable[[], T]) -> T:
        self.check()
        if threading.current_thread() is self._thread:  # the collector's call
            return function()
        future: Future[T] = Future()
        with self._stopping:
            if self._is_stopped:
                raise SessionClosed("the session has ended")
            self._jobs.put((function, future))
        try:
            return future.result()
        finally:
            # With its traceback, an exception refers to this frame.
            del future

    def stop(self) -> None:
        with self._stopping:
            self._is_stopped = True
            self._jobs.put(None)
        if threading.current_thread() is not self._thread:
            self._thread.join()


class CallersThread:
    """The thread that makes this, which has its context current."""

    def __init__(self) -> None:
        self._thread = threading.get_ident()

    def check(self) -> None:
        if threading.get_ident() != self._thread:
            raise WrongThread("an on-screen session belongs to the thread that "
                              "opened it, where its context is current")

    def call(self, function: Callable[[], T]) -> T:
        self.check()
        return function()

    def stop(self) -> None:
        """Nothing to stop."""
