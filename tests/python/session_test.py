"""A session from its start to its end."""

import ctypes
import gc
import logging
import os
import re
import subprocess
import sys
import threading
from pathlib import Path

import numpy as np
import pytest
import zuqel
from conftest import DEPTH, FLAT, GOOD, GREY, WORK, open_session
from zuqel import _library

ROOT = Path(__file__).parents[2]
TILTED = FLAT + np.arange(DEPTH[0], dtype=np.uint16)
WEIGHTS = np.full(WORK[::-1], 100, np.uint8)


def in_own_process(code, **settings):
    """Runs it; what it writes is returned."""
    head = ("import sys, numpy as np, zuqel\n"
            "grey = np.full((64, 64, 3), 128, np.uint8)\n"
            "flat = np.full((48, 64), 500, np.uint16)\n")
    done = subprocess.run([sys.executable, "-c", head + code], text=True,
                          env=os.environ | settings, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, timeout=60)
    assert done.returncode == 0, done.stdout
    return done.stdout


def test_always_ends():
    with pytest.raises(KeyError), open_session() as session:
        raise KeyError
    with pytest.raises(zuqel.SessionClosed):
        session.frame(**GOOD)
    with pytest.raises(zuqel.SessionClosed), session:
        pass
    session.close()
    session = open_session()
    del session  # collected
    gc.collect()
    with open_session() as session:
        pass
    # Interrupted, open at exit, and forked.
    assert in_own_process(
        "import os, signal, threading\n"
        "signal.signal(signal.SIGINT, signal.default_int_handler)\n"
        "kill = os.getpid(), signal.SIGINT\n"
        "threading.Timer(0.2, os.kill, kill).start()\n"
        "try:\n"
        "    with zuqel.Session((64, 64), (64, 48)) as session:\n"
        "        while True:\n"
        "            session.frame(rgb=grey, disparity=flat, focus=(1, 1))\n"
        "except KeyboardInterrupt: zuqel.Session((64, 64)).close()\n") == ""
    assert in_own_process(
        "import logging, os\n"
        "logging.getLogger('zuqel').setLevel(logging.DEBUG)\n"
        "session = zuqel.Session((64, 64), (64, 48))\n"
        "session.refocus_map(flat, (1, 1))\n"
        "if os.fork() == 0:\n"
        "    try: session.frame(rgb=grey, disparity=flat, focus=(1, 1))\n"
        "    except zuqel.SessionClosed as error: print(error, flush=True)\n"
        "    sys.exit()\n"
        "assert os.wait()[1] == 0\n") == "the session is another process's\n"


def test_threads_take_turns():
    with open_session() as session:
        expected = [session.refocus_map(TILTED, (9 * i, 9)) for i in range(4)]
        results = [None] * 4

        def work(i):
            results[i] = session.refocus_map(TILTED, (9 * i, 9))
        threads = [threading.Thread(target=work, args=(i,)) for i in range(4)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
    np.testing.assert_array_equal(results, expected)
    assert (expected[0] != expected[1]).any()


def test_log_goes_to_logging(caplog, capfd):
    with caplog.at_level(logging.DEBUG, "zuqel"), open_session() as session:
        session.cpu_frame(rgb=GREY, disparity=FLAT, focus=(80, 60))
        session.cpu_frame(rgb=GREY, disparity=TILTED, focus=(5, 60))
    rows = [(r.name, r.levelno, r.getMessage()) for r in caplog.records]
    for line in ("eglInitialize successfully", "Focus at BG!",
                 "zuQelRT_GLClose -"):
        assert ("zuqel", logging.DEBUG, line) in rows
    assert ["cpu_frame: the background is in focus" in text for _, level, text
            in rows if level >= logging.WARNING] == [True]
    assert capfd.readouterr() == ("", "")


@pytest.fixture
def framebuffer():
    """A context of the caller's, current; a function reads its pixels."""
    size = 1280, 960
    egl, gl = ctypes.CDLL("libEGL.so.1"), ctypes.CDLL("libGLESv2.so.2")
    names = ("eglGetPlatformDisplay", "eglCreatePbufferSurface",
             "eglCreateContext", "eglInitialize", "eglChooseConfig",
             "eglMakeCurrent")
    get, surface_of, context_of, start, choose, make_current = (
        ctypes.CFUNCTYPE(ctypes.c_void_p, *[ctypes.c_void_p] * count)(
            (name, egl)) for name, count in zip(names, (3, 3, 4, 3, 5, 4)))

    def attributes(*values):
        return (ctypes.c_int32 * (len(values) + 1))(*values, 0x3038)  # EGL_NONE
    surfaceless, pbuffer, es2 = 0x31DD, (0x3033, 1), (0x3040, 4)
    display, config, count = get(surfaceless, None, None), ctypes.c_void_p(), \
        ctypes.c_int32()
    assert start(display, None, None)
    assert choose(display, attributes(*pbuffer, *es2, 0x3021, 8),
                  ctypes.addressof(config), 1, ctypes.addressof(count))
    surface = surface_of(display, config,
                         attributes(0x3057, size[0], 0x3056, size[1]))
    context = context_of(display, config, None, attributes(0x3098, 2))
    assert make_current(display, surface, surface, context)

    def read():
        pixels = np.empty((size[1], size[0], 4), np.uint8)
        gl.glReadPixels(0, 0, *size, 0x1908, 0x1401,
                        ctypes.c_void_p(pixels.ctypes.data))
        return pixels[::-1, :, :3]
    yield read
    make_current(display, None, None, None)


def test_on_screen(framebuffer):
    rows, columns = np.indices((960, 1280))
    picture = np.stack([rows // 4, columns // 6, 255 - columns // 6], -1)
    good = GOOD | {"rgb": picture.astype(np.uint8)}
    with zuqel.Session((1280, 960), DEPTH, off_screen=False) as session:
        session.draw(**good)
        drawn = framebuffer()
        with pytest.raises(ValueError, match="on screen; take draw()"):
            session.frame(**good)
        errors = []

        def elsewhere():
            for call in session.close, lambda: session.draw(**good):
                try:
                    call()
                except zuqel.WrongThread as error:
                    errors.append(error)
        thread = threading.Thread(target=elsewhere)
        thread.start()
        thread.join()
        assert len(errors) == 2
    # Slightly enlarged, and upright.
    assert abs(drawn.astype(int) - picture).mean() < 3


def test_memory_stays_flat():
    def resident():
        pages = Path("/proc/self/statm").read_text().split()[1]
        return int(pages) * os.sysconf("SC_PAGE_SIZE")

    with open_session() as session:
        def render(count):
            for i in range(count // 4):
                session.frame(**GOOD)
                session.frame(**GOOD | {"disparity": None, "weights": WEIGHTS})
                session.cpu_frame(**GOOD)
                session.refocus_map(FLAT, (i % 64, 7))
        render(40)
        before = resident()
        render(200)
        assert resident() - before < 1 << 20


def test_rectangle_says_where_the_focus_is_marked(tmp_path):
    properties = tmp_path / "properties"
    properties.write_text("persist.zu.LVGLbokeh.FocusDot=1\n")
    assert in_own_process(
        "weights = np.zeros((240, 320), np.uint8)\n"
        "with zuqel.Session((64, 64)) as session:\n"
        "    here, there, marked = (session.frame(rgb=grey, weights=weights,\n"
        "        focus=focus, rect=rect) for focus, rect in (\n"
        "            ((9, 9), None), ((40, 32), None),\n"
        "            ((9, 9), (24, 16, 56, 48))))\n"
        "print((here != there).any(), (marked == there).all())",
        ZUQEL_PROPERTIES=str(properties)) == "True True\n"


def test_without_opengl_only_the_cpu_renders():
    assert in_own_process(
        "with zuqel.Session((64, 64), (64, 48)) as session:\n"
        "    for call in (lambda: session.frame(rgb=grey, disparity=flat,\n"
        "                                       focus=(1, 1)),\n"
        "                 lambda: session.refocus_map(flat, (1, 1), 'gpu')):\n"
        "        try: call()\n"
        "        except zuqel.NoOpenGL as error: print(error)\n"
        "    session.refocus_map(flat, (1, 1), 'disparity-base-cpu')\n"
        "    print(session.cpu_frame(rgb=grey, disparity=flat, focus=(1, 1))"
        ".shape)\n",
        __EGL_VENDOR_LIBRARY_FILENAMES="/none", LD_LIBRARY_PATH=""
    ).count("no OpenGL ES 2.0 to render with: egl") == 2


def test_library_and_program_are_found(tmp_path, monkeypatch):
    # As they are installed, moved, and with nothing said about them.
    build = Path(os.environ["ZUQEL_LIBRARY"]).parents[1]
    subprocess.run(["cmake", "--install", build, "--component", "python",
                    "--prefix", tmp_path / "usr"], check=True,
                   stdout=subprocess.DEVNULL)
    libraries = tmp_path / f"usr/lib/{os.uname().machine}-linux-gnu"
    libraries.mkdir()
    for file in (build / "lib").glob("lib*.so"):
        (libraries / file.name).write_bytes(file.read_bytes())
    (tmp_path / "usr/bin").mkdir()
    (tmp_path / "usr/bin/zuqel").symlink_to(os.environ["ZUQEL_PROGRAM"])
    moved = (tmp_path / "usr").rename(tmp_path / "a prefix")
    package = next(moved.rglob("zuqel/py.typed")).parent
    assert sorted(file.name for file in package.iterdir()) == sorted(
        file.name for file in (ROOT / "python/zuqel").iterdir()
        if file.name != "__pycache__")
    printed = in_own_process(
        "print(zuqel.__version__, zuqel.find_program(), flush=True)\n"
        "print(next(l for l in open('/proc/self/maps') if 'RT_GL.so' in l))",
        PYTHONPATH=str(package.parent), ZUQEL_LIBRARY="", ZUQEL_PROGRAM="")
    version, *_ = printed.split()
    assert re.search(rf"VERSION {re.escape(version)}\b",
                     (ROOT / "CMakeLists.txt").read_text())
    assert f"{moved}/bin/zuqel" in printed and f"{moved}/lib/" in printed

    other = build / "lib/libzuqel_linux_device.so"
    for path, text in (("/none/lib.so", "cannot be loaded: /none/lib.so: "),
                       (str(other), "is not the library, or is another")):
        monkeypatch.setenv("ZUQEL_LIBRARY", path)
        with pytest.raises(zuqel.LibraryNotFound, match=text):
            _library.load()
    monkeypatch.setenv("ZUQEL_PROGRAM", "/none/zuqel")
    with pytest.raises(zuqel.ProgramNotFound, match="ZUQEL_PROGRAM is /none/z"):
        zuqel.find_program()
    monkeypatch.delenv("ZUQEL_PROGRAM")
    monkeypatch.setenv("ZUQEL_LIBRARY", str(build / "lib/any.so"))
    assert zuqel.find_program() == os.path.abspath(f"{build}/bin/zuqel")
    monkeypatch.setenv("ZUQEL_LIBRARY", "/none/lib.so")
    monkeypatch.setenv("PATH", "/none")
    with pytest.raises(zuqel.ProgramNotFound, match="neither beside .* nor in"):
        zuqel.find_program()
