#!/usr/bin/env python3
"""Opens the window of zuqel view on a display of its own, and uses mouse and
keyboard on it. What is seen is judged by screenshots, what is saved by the bytes
that zuqel render writes."""

import argparse
import ctypes
import os
import random
import re
import shutil
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

SKIPPED = 77  # SKIP_RETURN_CODE of the test
SCREEN = (640, 560)  # smaller than the photo, which is shrunk to fit
PHOTO = (800, 600)   # near on the left, far on the right
BLOCK = 4            # of the photo's chequers, which the blur melts
PATIENCE_S = 20      # of a machine with other things to do
LINE = 24            # below the picture
NEAR, FAR = (0.25, 0.5), (0.75, 0.5)
# The leak checker cannot name what an unloaded driver still holds. Without one
# it looks for leaks.
CHECKS = os.environ.get("ASAN_OPTIONS", "")
GL = {"ASAN_OPTIONS": "detect_leaks=0:" + CHECKS}
NO_GL = {"__EGL_VENDOR_LIBRARY_FILENAMES": "/none", "LD_LIBRARY_PATH": "",
         "SDL_RENDER_DRIVER": "software", "ASAN_OPTIONS": CHECKS}
program = ""


def run(*command, **settings):
    return subprocess.run([*map(str, command)], check=True,
                          capture_output=True, **settings).stdout


def xdotool(*words):
    return run("xdotool", *words).decode()


def write_samples(folder):
    width, height = PHOTO
    rgb = bytearray()
    for y in range(height):
        for x in range(width):
            tone = 210 if (x // BLOCK + y // BLOCK) % 2 else 40
            rgb += bytes((tone, tone * x // width, 128))
    run("convert", "-depth", 8, "-size", f"{width}x{height}", "rgb:-",
        folder / "photo.png", input=bytes(rgb))
    row = b"".join((900 if x < 40 else 100).to_bytes(2, "big")
                   for x in range(80))
    run("convert", "-depth", 16, "-endian", "MSB", "-size", "80x60", "gray:-",
        folder / "d.png", input=row * 60)


class Picture:
    """A screenshot, or a part of one."""

    def __init__(self, ppm):
        header, size, _, self.rgb = ppm.split(b"\n", 3)
        assert header == b"P6"
        self.width, self.height = map(int, size.split())

    def pixel(self, x, y):
        at = 3 * (y * self.width + x)
        return self.rgb[at:at + 3]

    def around(self, part, reach=60):
        """Pixels about a place, row by row."""
        middle = (int(part[0] * self.width),
                  int(part[1] * (self.height - LINE)))
        # The frame that marks the focus is left out.
        return [[self.pixel(x, y)
                 for x in range(middle[0] - reach, middle[0] + reach)]
                for y in range(middle[1] + 20, middle[1] + reach)]

    def sharpness(self, part):
        """Mean step of the red between neighbours."""
        rows = self.around(part)
        steps = [abs(a[0] - b[0]) for row in rows for a, b in zip(row, row[1:])]
        return sum(steps) / len(steps)

    def mean(self, part):
        pixels = [p for row in self.around(part) for p in row]
        return [sum(p[i] for p in pixels) / len(pixels) for i in range(3)]


class View:
    """zuqel view, and a user of it."""

    def __init__(self, test, *arguments, **environment):
        self.test = test
        self.process = subprocess.Popen(
            [program, "view", *arguments], cwd=test.folder,
            env={**os.environ, **environment}, stdout=subprocess.PIPE,
            stderr=subprocess.PIPE, text=True)
        test.addCleanup(self.process.communicate)
        test.addCleanup(self.process.kill)
        self.id = self.wait_for("a window", self.find).split()[-1]

    def find(self):
        assert self.process.poll() is None, self.process.communicate()
        return subprocess.run(["xdotool", "search", "--name", "zuqel view"],
                              capture_output=True, text=True).stdout

    def wait_for(self, what, look):
        end = time.monotonic() + PATIENCE_S
        while time.monotonic() < end:
            found = look()
            if found:
                return found
            time.sleep(0.1)
        self.test.fail(f"there is not {what}")

    def geometry(self):
        lines = xdotool("getwindowgeometry", "--shell", self.id).split()
        pairs = dict(line.split("=") for line in lines)
        return [int(pairs[key]) for key in ("X", "Y", "WIDTH", "HEIGHT")]

    def place(self, part):
        x, y, width, height = self.geometry()
        return (x + int(part[0] * width), y + int(part[1] * (height - LINE)))

    def click(self, part):
        xdotool("mousemove", *self.place(part), "click", 1)

    def look(self):
        return Picture(run("import", "-window", self.id, "-depth", 8, "ppm:-"))

    def expect(self, what, holds):
        self.wait_for(what, lambda: holds(self.look()))

    def expect_sharp(self, sharp, blurred):
        self.expect(f"at {sharp} three times the sharpness of {blurred}",
                    lambda seen: seen.sharpness(sharp) >
                    3 * seen.sharpness(blurred))

    def expect_all_sharp(self):
        self.expect("the same sharpness everywhere",
                    lambda seen: seen.sharpness(NEAR) <
                    1.2 * seen.sharpness(FAR))

    def end(self):
        out, err = self.process.communicate(timeout=PATIENCE_S)
        self.test.assertEqual((self.process.returncode, err), (0, ""))
        return out

    def ask_to_close(self):
        """As the button of a window's frame does."""
        x11 = ctypes.CDLL("libX11.so.6")
        x11.XOpenDisplay.restype = ctypes.c_void_p
        x11.XInternAtom.restype = ctypes.c_ulong
        display = ctypes.c_void_p(x11.XOpenDisplay(None))
        atoms = [x11.XInternAtom(display, name, 0)
                 for name in (b"WM_PROTOCOLS", b"WM_DELETE_WINDOW")]
        # A record of 24 longs: ClientMessage is 33.
        event = (ctypes.c_long * 24)(33, 0, 0, 0, int(self.id), atoms[0], 32,
                                     atoms[1])
        x11.XSendEvent(display, ctypes.c_ulong(int(self.id)), 0, ctypes.c_long(0),
                       event)
        x11.XCloseDisplay(display)


class ViewTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        temporary = tempfile.TemporaryDirectory()
        cls.addClassCleanup(temporary.cleanup)
        cls.folder = Path(temporary.name)
        write_samples(cls.folder)

    def view(self, *more, **environment):
        return View(self, "photo.png", "--disparity", "d.png", *more,
                    **environment)

    def test_mouse_moves_the_focus(self):
        view = self.view()
        view.expect_sharp(NEAR, FAR)  # the nearest surface, to begin with
        view.click(FAR)
        view.expect_sharp(FAR, NEAR)
        steps = [word for i in range(1, 20) for word in
                 ("mousemove", *view.place((0.75 - i / 40, 0.5)))]
        xdotool("mousedown", 1, *steps, "mouseup", 1)
        view.expect_sharp(NEAR, FAR)
        xdotool("click", "--repeat", 25, "--delay", 5, 4)
        view.expect_all_sharp()  # f/10
        xdotool("click", "--repeat", 25, "--delay", 5, 5)
        view.expect_sharp(NEAR, FAR)
        # In the middle of a frame.
        view.click(FAR)
        view.ask_to_close()
        view.end()

    def test_keys_change_what_is_shown(self):
        view = self.view("--focus", "200,300")
        view.expect_sharp(NEAR, FAR)
        xdotool("mousemove", *view.place((0.5, 0.1)), "keydown", "space")
        view.expect_all_sharp()
        xdotool("keyup", "space", "key", "d")
        view.expect("red for near and blue for far", lambda seen:
                    seen.mean(NEAR)[0] > 2 * seen.mean(NEAR)[2] and
                    seen.mean(FAR)[2] > 1.5 * seen.mean(FAR)[0])
        for maker in "12345":
            xdotool("key", maker, "key", "w" if maker == "1" else "F12")
            view.expect("blue where it is blurred", lambda seen:
                        seen.mean(FAR)[2] > seen.mean(NEAR)[2] + 40 and
                        seen.sharpness(NEAR) > 5)
        xdotool("key", "w", "key", "h")
        dark = lambda seen: sum(seen.mean((0.5, 0.5))) < 200
        view.expect("a dark sheet of keys", dark)
        xdotool("key", "h")
        view.expect("no sheet", lambda seen: not dark(seen))
        xdotool("key", "z", "keydown", "space")
        view.expect("pixels as they are", self.shows_the_photo)
        xdotool("keyup", "space", "key", "Escape")
        view.end()

    def shows_the_photo(self, seen):
        """One-to-one around (200, 300), which stops at the left edge; colours
        to within what half their resolution leaves."""
        top = 300 - (seen.height - LINE) // 2
        photo = Picture(run("convert", self.folder / "photo.png", "ppm:-"))
        return all(
            abs(a - b) < 12
            for x in range(2, seen.width, 12)
            for y in range(2 - top % BLOCK, seen.height - 60, 12)
            for a, b in zip(seen.pixel(x, y), photo.pixel(x, y + top)))

    def test_saves_what_render_writes(self):
        view = self.view("--focus", "640,300", "--f-number", "1.4")
        view.expect_sharp(FAR, NEAR)
        xdotool("mousemove", *view.place((0.5, 0.1)))
        names = ["photo_bokeh.png",
                 *(f"photo_bokeh_{i}.png" for i in range(2, 7))]
        for maker in range(1, 7):
            xdotool("key", maker, "key", "s")
        xdotool("key", "q")
        out = view.end()
        self.assertEqual(out.splitlines()[:6],
                         [f"wrote {name} (800x600)" for name in names])
        generators = ["gpu", "disparity-base", "disparity-base-cpu", "distance"]
        lens = ["--f-number", "1.4"]
        options = [lens, *([*lens, "--map-from", name] for name in generators),
                   ["--renderer", "cpu"]]
        results = set()
        for name, its in zip(names, options):
            run(program, "render", "photo.png", "--disparity", "d.png",
                "--focus", "640,300", "-o", "expected.png", *its,
                cwd=self.folder)
            saved = (self.folder / name).read_bytes()
            self.assertEqual(saved,
                             (self.folder / "expected.png").read_bytes(), its)
            results.add(saved)
        self.assertGreater(len(results), 3)

    def after_random_events(self, count, keys, environment):
        numbers = random.Random(1)
        view = self.view(**environment)
        xdotool("mousemove", *view.place((0.5, 0.5)), "key", keys[-1])
        words = []
        for _ in range(count):
            place = view.place((numbers.random(), numbers.random()))
            words += numbers.choice([
                ["mousemove", *place], ["mousemove", *place],
                ["click", 1], ["mousedown", 1], ["mouseup", 1],
                ["click", numbers.choice([4, 5])],
                ["key", numbers.choice(keys)],
                ["keydown", "space"], ["keyup", "space"],
                ["windowsize", view.id, *(numbers.randrange(9, 600)
                                          for _ in "wh")]])
        xdotool(*words, "mouseup", 1, "keyup", "space", "windowsize", view.id,
                600, 400)
        xdotool("mousemove", *view.place((0.5, 0.5)), "key", "q")
        return view

    def test_random_events_break_nothing(self):
        self.after_random_events(200, "dwzfh123456", GL).end()
        # What SDL's libraries leave behind at the end does not grow.
        leaks = []
        for count in 0, 200:
            view = self.after_random_events(count, "dwzfh6", NO_GL)
            _, err = view.process.communicate(timeout=PATIENCE_S)
            leaks.append((view.process.returncode,
                          re.findall("SUMMARY.*|.*runtime error.*", err)))
        self.assertEqual(*leaks)
        if not CHECKS:
            self.assertEqual(leaks[0], (0, []))

    def test_without_a_display_render_is_named(self):
        without = {key: value for key, value in os.environ.items()
                   if key not in ("DISPLAY", "WAYLAND_DISPLAY")}
        for environment in without, {**without, "DISPLAY": ":9999"}:
            done = subprocess.run(
                [program, "view", "photo.png", "--disparity", "d.png"],
                cwd=self.folder, env=environment, capture_output=True,
                text=True)
            self.assertEqual((done.returncode, done.stdout), (2, ""))
            self.assertEqual(done.stderr, "zuqel: no display to open a window "
                                          "on; zuqel render needs none\n")


def start_display():
    """The number of a free display, once it can be used."""
    reading, writing = os.pipe()
    server = subprocess.Popen(
        ["Xvfb", "-displayfd", str(writing), "-noreset", "-screen", "0",
         f"{SCREEN[0]}x{SCREEN[1]}x24"], pass_fds=[writing],
        stderr=subprocess.DEVNULL)
    os.close(writing)
    with os.fdopen(reading) as pipe:
        return server, f":{pipe.readline().strip()}"


def main():
    global program
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--program", required=True)
    options, rest = parser.parse_known_args()
    program = options.program
    missing = [name for name in ("Xvfb", "xdotool", "import", "convert")
               if shutil.which(name) is None]
    if missing:
        print("not installed:", *missing)
        sys.exit(1 if "CI" in os.environ else SKIPPED)
    server, display = start_display()
    os.environ.update(GL, DISPLAY=display)
    os.environ.pop("WAYLAND_DISPLAY", None)
    try:
        unittest.main(argv=[sys.argv[0], *rest])
    finally:
        server.terminate()
        server.wait()


if __name__ == "__main__":
    main()
