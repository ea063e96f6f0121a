"""The library's session: frames and refocus maps."""

import weakref
from types import TracebackType
from typing import Any, overload

import numpy as np
from numpy.typing import NDArray

from . import _checks, _library, _log
from ._checks import Size
from ._lifetime import Lifetime
from .errors import SessionClosed
from .generators import GENERATORS
from .nv21 import Bytes, Planes, to_nv21, to_rgb

Point = tuple[int, int]
Rect = tuple[int, int, int, int]
Map16 = NDArray[np.uint16]

# Frames from disparity require it.
WORK_SIZE = 320, 240
# A camera module's calibration does not change pictures.
_NO_CALIBRATION = bytes(512)
_NO_RECT = 0, 0, 0, 0


class Session:
    """A session of the library, of which a process has one at a time.

        with Session((1280, 960), depth_size=(320, 240)) as session:
            result = session.frame(rgb=rgb, disparity=disparity,
                                   focus=(640, 480))

    It is open from here on; `with`, or close(), ends it, and what is open when
    it is collected or the interpreter ends is closed then.

    Sizes are (width, height) and points (x, y), in pixels, from 1x1 to
    8192x8192; arrays have the shape (height, width). Arrays of callers are
    copied, whatever their strides, and never changed.

    - `frame_size`: of each frame. With an odd side, frames can be `rgb` only.
    - `depth_size`: of disparity and distance maps; not needed where there are
      none.
    - `work_size`: of weights, and of the refocus maps of the generators "gpu"
      and "disparity-base". Frames from disparity need 320x240.
    - `calibration`, `key_block`: the camera module's calibration and its second
      block, with the key of an encrypted one. None: neither is needed.
    - `off_screen`: False draws with the OpenGL ES 2.0 context that is current
      on this thread, into its default framebuffer; see draw().
    - `output_size`: of that framebuffer; None: `frame_size`.

    Threads: methods may be called from any, and take turns; an off-screen
    session makes its calls on a thread of its own. One that is on screen may be
    used by the thread that opens it alone, else WrongThread is raised. The GIL
    is released during calls. After a fork, a session is the parent's alone.

    Raises TypeError and ValueError for arguments, SessionRunning,
    LibraryNotFound, and StatusError for what the library refuses, such as a
    calibration. All methods but close() raise SessionClosed after the end.

    The library's log goes to the logger "zuqel" when a call has ended: its own
    lines at level DEBUG, the platform's warnings at WARNING.
    """

    def __init__(self, frame_size: Size, depth_size: Size | None = None, *,
                 work_size: Size = WORK_SIZE, calibration: bytes | None = None,
                 key_block: bytes | None = None, off_screen: bool = True,
                 output_size: Size | None = None) -> None:
        # Read-only: the library reads and writes as much as they say.
        self._frame_size = _checks.taken_size("frame_size", frame_size)
        self._depth_size = (None if depth_size is None else
                            _checks.taken_size("depth_size", depth_size))
        self._work_size = _checks.taken_size("work_size", work_size)
        self._off_screen = bool(off_screen)
        output = _checks.taken_size(
            "output_size", frame_size if output_size is None else output_size)
        _checks.taken_bytes("calibration", calibration)
        _checks.taken_bytes("key_block", key_block)
        if calibration is None and key_block is None:
            calibration = _NO_CALIBRATION

        # The library draws even sizes only.
        width, height = (side + side % 2 for side in self._frame_size)
        self._padding = (width - self._frame_size[0],
                         height - self._frame_size[1])
        depth = self._depth_size or (0, 0)
        info = _library.InitInfo(
            width, height, *depth, *self._work_size, *output, 0,
            int(self._off_screen), _library.SRCFORMAT_NV21, 0)
        self._lifetime = Lifetime(_library.load(), info, calibration, key_block)
        self._end = weakref.finalize(self, self._lifetime.end)

    @property
    def frame_size(self) -> Size:
        return self._frame_size

    @property
    def depth_size(self) -> Size | None:
        return self._depth_size

    @property
    def work_size(self) -> Size:
        return self._work_size

    def close(self) -> None:
        """Ends the session; harmless when it has ended."""
        if self._end.alive:
            self._lifetime.check()
            self._end()

    def __enter__(self) -> "Session":
        self._check_open()
        return self

    def __exit__(self, kind: type[BaseException] | None,
                 error: BaseException | None,
                 trace: TracebackType | None) -> None:
        self.close()

    @overload
    def frame(self, *, rgb: Bytes, disparity: Map16 | None = None,
              weights: Bytes | None = None, focus: Point,
              f_number: float = 1.0, rect: Rect | None = None) -> Bytes: ...

    @overload
    def frame(self, *, luma_vu: Planes, disparity: Map16 | None = None,
              weights: Bytes | None = None, focus: Point,
              f_number: float = 1.0, rect: Rect | None = None) -> Planes: ...

    def frame(self, *, luma_vu: Planes | None = None, rgb: Bytes | None = None,
              disparity: Map16 | None = None, weights: Bytes | None = None,
              focus: Point, f_number: float = 1.0,
              rect: Rect | None = None) -> Bytes | Planes:
        """Renders a frame on the GPU and returns it, in new arrays.

        One of
        - `rgb`: uint8, (height, width, 3) of the frame size. The result is one
          too. Converted as the program `zuqel` does: see zuqel.nv21.
        - `luma_vu`: NV21, full range: luma, uint8 (height, width), and chroma,
          uint8 (height / 2, width / 2, 2): V, then U. So is the result.

        and one of
        - `disparity`: uint16, of the depth size: 0 to 1022, larger is nearer;
          1023 marks a pixel without a measurement.
        - `weights`: uint8, of the work size: 0 keeps a pixel sharp, 255 blurs
          it fully. So are refocus_map()'s, if they have this size.

        - `focus`: a point in the frame.
        - `f_number`: cut to 1 (strongest blur) to 10 (hardly any).
        - `rect`: (x, y, right, bottom), right and bottom exclusive; used when
          larger than 31x31 and inside of the frame. Where the library is set to
          mark the focus, its centre is marked.

        Raises TypeError, ValueError, StatusError, and NoOpenGL where there is
        none; ValueError too if the session is on screen.
        """
        if not self._off_screen:
            raise ValueError("frame: the session is on screen; take draw()")
        planes = self._render(luma_vu, rgb, disparity, weights, focus, f_number,
                              rect)
        return self._result(planes, rgb)

    def draw(self, *, luma_vu: Planes | None = None, rgb: Bytes | None = None,
             disparity: Map16 | None = None, weights: Bytes | None = None,
             focus: Point, f_number: float = 1.0,
             rect: Rect | None = None) -> None:
        """Renders a frame into the default framebuffer of the current context,
        with a viewport of 1280x960, whatever the sizes. Arguments and errors
        are frame()'s; the session has to be on screen."""
        if self._off_screen:
            raise ValueError("draw: the session is off screen; take frame()")
        self._render(luma_vu, rgb, disparity, weights, focus, f_number, rect)

    def refocus_map(self, depth: Map16, focus: Point,
                    generator: str = "gpu") -> Bytes:
        """Makes a refocus map: uint8, 0 stays sharp, 255 is blurred most.

        - `depth`: uint16, of the depth size: disparities as frame() takes them;
          for the generator "distance" distances, 1 to 65535 in any unit, larger
          is farther, 0 marks a pixel without a measurement.
        - `focus`: a point in that map.
        - `generator`: a name in zuqel.GENERATORS. The map of "gpu" and
          "disparity-base" has the work size, others' the depth size.

        Raises TypeError, ValueError, StatusError, and NoOpenGL where there is
        none for the two that need it.
        """
        row = GENERATORS.get(generator)
        if row is None:
            raise ValueError(f"generator: {generator!r} is not one of "
                             f"{', '.join(GENERATORS)}")
        lifetime = self._check_open()
        size = self._map_size("depth")
        if row.takes == "disparity":
            copy = _checks.copied_disparity("depth", depth, size)
        else:
            copy = _checks.copied_array("depth", depth, np.uint16, size[::-1])
        x, y = _checks.taken_point("focus", focus, size, "map")
        on_gpu = row.map_size == "work"
        if on_gpu:
            lifetime.require_gl()
        width, height = self._work_size if on_gpu else size
        weights = np.zeros((height, width), np.uint8)
        call = row.call
        # Minimum, maximum and focus, which are not asked for.
        found = (None,) * 3 * (row.takes == "disparity")

        def make(library: _library.Library) -> None:
            lifetime.start_maps()
            library.call(call, weights.ctypes.data, copy.ctypes.data, x, y,
                         *found)

        lifetime.run(make, prints=True)
        return weights

    @overload
    def cpu_frame(self, *, rgb: Bytes, disparity: Map16,
                  focus: Point) -> Bytes: ...

    @overload
    def cpu_frame(self, *, luma_vu: Planes, disparity: Map16,
                  focus: Point) -> Planes: ...

    def cpu_frame(self, *, luma_vu: Planes | None = None,
                  rgb: Bytes | None = None, disparity: Map16,
                  focus: Point) -> Bytes | Planes:
        """Renders a frame on the CPU, with a fixed strength of blur, and
        returns it. Needs no OpenGL ES; takes and returns frames as frame().

        From a session's fourth call on, the mask is smoothed with those of the
        calls before, so the result depends on them, and a change of focus takes
        some calls to settle.

        It is for a focus in the foreground: with the background in focus it is
        blurred all the same, of which the logger "zuqel" is warned. A focus in
        the outermost row or column of the map, and a map without any difference
        in depth, blur the whole frame.

        Raises TypeError, ValueError and StatusError.
        """
        lifetime = self._check_open()
        luma, vu = self._planes(luma_vu, rgb)
        size = self._map_size("disparity")
        map_copy = _checks.copied_disparity("disparity", disparity, size)
        x, y = _checks.taken_point("focus", focus, self._frame_size, "frame")
        lines = lifetime.run(lambda library: library.call(
            "zuQelRT_Bokeh_ZU4410_DisparityBase_Expansion_CPU",
            luma.ctypes.data, vu.ctypes.data, map_copy.ctypes.data, x, y),
            prints=True)
        if "Focus at BG!" in (text for _, text in lines):
            _log.logger.warning("cpu_frame: the background is in focus and is "
                                "blurred anyway; frame() keeps it sharp")
        return self._result((luma, vu), rgb)

    def _check_open(self) -> Lifetime:
        if not self._end.alive:
            raise SessionClosed("the session has ended")
        self._lifetime.check()
        return self._lifetime

    def _map_size(self, name: str) -> Size:
        if self._depth_size is None:
            raise ValueError(f"{name}: the session was opened without a "
                             "depth_size")
        return self._depth_size

    def _planes(self, luma_vu: Planes | None, rgb: Bytes | None) -> Planes:
        """Copies, of an even size."""
        if (luma_vu is None) == (rgb is None):
            raise TypeError("give one of luma_vu and rgb")
        width, height = self._frame_size
        if rgb is not None:
            _checks.taken_array("rgb", rgb, np.uint8, (height, width, 3))
            right, below = self._padding
            if right or below:
                rgb = np.pad(rgb, ((0, below), (0, right), (0, 0)), "edge")
            luma, vu = to_nv21(rgb)
            # Another thread may have given rgb another shape meanwhile.
            _checks.taken_array("rgb", luma, np.uint8,
                                (height + below, width + right))
            return luma, vu
        if any(self._padding):
            raise ValueError(f"luma_vu: frames are {width}x{height}; NV21 has "
                             "even sizes, so give rgb")
        if not isinstance(luma_vu, (tuple, list)) or len(luma_vu) != 2:
            raise TypeError("luma_vu: wanted is a pair of arrays")
        return (_checks.copied_array("luma_vu[0]", luma_vu[0], np.uint8,
                                     (height, width)),
                _checks.copied_array("luma_vu[1]", luma_vu[1], np.uint8,
                                     (height // 2, width // 2, 2)))

    def _result(self, planes: Planes, rgb: Bytes | None) -> Bytes | Planes:
        """In the form that the frame had."""
        if rgb is None:
            return planes
        width, height = self._frame_size
        return np.ascontiguousarray(to_rgb(*planes)[:height, :width])

    def _render(self, luma_vu: Planes | None, rgb: Bytes | None,
                disparity: Map16 | None, weights: Bytes | None, focus: Point,
                f_number: float, rect: Rect | None) -> Planes:
        lifetime = self._check_open()
        luma, vu = self._planes(luma_vu, rgb)
        if (disparity is None) == (weights is None):
            raise TypeError("give one of disparity and weights")
        made_from: NDArray[Any]
        if disparity is not None:
            call = "zuQelRT_GLStartV1HWDepth"
            made_from = _checks.copied_disparity(
                "disparity", disparity, self._map_size("disparity"))
            if self._work_size != WORK_SIZE:
                raise ValueError("disparity: needs a session with a work_size "
                                 "of 320x240, not %dx%d" % self._work_size)
        else:
            call = "zuQelRT_GLStartV1"
            assert weights is not None
            made_from = _checks.copied_array("weights", weights, np.uint8,
                                             self._work_size[::-1])
        x, y = _checks.taken_point("focus", focus, self._frame_size, "frame")
        corners = _checks.taken_rect("rect", _NO_RECT if rect is None else rect)
        number = _checks.taken_number("f_number", f_number)
        lifetime.require_gl()
        lifetime.run(lambda library: library.call(
            call, luma.ctypes.data, vu.ctypes.data, made_from.ctypes.data, x, y,
            0, _library.FocusRect(*corners), number))
        return luma, vu
